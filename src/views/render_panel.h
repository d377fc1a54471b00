#pragma once

namespace quillmark {

// `quillmark --render-panel FILE.png [--skin glass|vitals|settings] [--scale 1|2]
// [--language CODE] [--snapshot FILE]`: draws the panel for a snapshot (lines of
// `quillmark --json`) into a PNG, with no window; without a snapshot every figure shows
// "no value". Returns the exit status; messages go to stderr. Main thread.
int renderPanelMain(int argc, const char* const* argv);

// Whether argv asks for a rendering (the front end dispatches on this).
[[nodiscard]] bool wantsRenderPanel(int argc, const char* const* argv);

}  // namespace quillmark
