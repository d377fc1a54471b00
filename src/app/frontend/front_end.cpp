#include "app/frontend/front_end.h"

#include <cerrno>
#include <cstdlib>
#include <string_view>

#include "app/frontend/snapshot_json.h"
#include "app/frontend/status_text.h"
#include "base/clock.h"

namespace quillmark {

std::optional<FrontEndOptions> FrontEndOptions::parse(int argc, const char* const* argv, std::string& error) {
  FrontEndOptions options;
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    if (arg == "--json") {
      options.json = true;
    } else if (arg == "--help" || arg == "-h") {
      options.help = true;
    } else if (arg == "--version") {
      options.version = true;
    } else if (arg == "--count" || arg == "-n") {
      if (i + 1 >= argc) {
        error = "--count needs a number";
        return std::nullopt;
      }
      const char* text = argv[++i];
      char* end = nullptr;
      errno = 0;
      const long count = std::strtol(text, &end, 10);
      if (errno != 0 || end == text || *end != '\0' || count < 1) {
        error = std::string("--count needs a whole number of at least 1, not \"") + text + "\"";
        return std::nullopt;
      }
      options.count = count;
    } else {
      error = "unknown option \"" + std::string(arg) + "\"";
      return std::nullopt;
    }
  }
  return options;
}

FrontEnd::FrontEnd(FrontEndOptions options, FrontEndSettings settings, Monitor& monitor, std::FILE* out,
                   std::function<void()> finish)
    : options_(std::move(options)),
      settings_(std::move(settings)),
      monitor_(monitor),
      out_(out),
      finish_(std::move(finish)) {}

void FrontEnd::start() {
  if (options_.json) {
    monitor_.onSnapshot = [this](const Monitor::Snapshot& snapshot) {
      emit(snapshotJson(snapshot, Clock::system().unixNow()));
    };
    // As if the panel were open: every reader runs and every field is published.
    monitor_.setPublishingPaused(false);
  } else {
    monitor_.onTick = [this] {
      emit(statusText(monitor_.cpu(), monitor_.memory(), monitor_.network(), settings_.showNetSpeed()));
    };
  }
  monitor_.start(settings_.refreshInterval());
}

void FrontEnd::stop() {
  monitor_.stop();
  monitor_.onTick = nullptr;
  monitor_.onSnapshot = nullptr;
}

void FrontEnd::emit(const std::string& line) {
  if (outputFailed_ || (options_.count && printed_ >= *options_.count)) return;
  // Whole lines, flushed at once: a status bar reads line by line and must never see half a one.
  const bool ok = std::fwrite(line.data(), 1, line.size(), out_) == line.size() &&
                  std::fputc('\n', out_) != EOF && std::fflush(out_) == 0;
  if (!ok) {
    outputFailed_ = true;
    finish_();
    return;
  }
  ++printed_;
  if (options_.count && printed_ >= *options_.count) finish_();
}

}  // namespace quillmark
