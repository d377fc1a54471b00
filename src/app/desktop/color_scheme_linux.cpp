#include "app/desktop/color_scheme_linux.h"

#include <systemd/sd-bus.h>

namespace quillmark {
namespace {

constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";
constexpr const char* kSettings = "org.freedesktop.portal.Settings";
constexpr std::uint32_t kPreferLight = 2;

// The value comes as a variant, which Read() wraps in a second one.
bool readScheme(sd_bus_message* m, std::uint32_t& scheme) {
  for (int depth = 0; depth < 2; ++depth) {
    char type = 0;
    const char* contents = nullptr;
    if (sd_bus_message_peek_type(m, &type, &contents) < 0 || type != 'v') break;
    if (sd_bus_message_enter_container(m, 'v', contents) < 0) return false;
  }
  return sd_bus_message_read(m, "u", &scheme) > 0;
}

}  // namespace

struct ColorSchemeCallbacks {
  static int answer(sd_bus_message* reply, void* userdata, sd_bus_error*) {
    auto& watch = *static_cast<ColorSchemeWatch*>(userdata);
    watch.query_ = sd_bus_slot_unref(watch.query_);
    std::uint32_t scheme = 0;
    if (!sd_bus_message_is_method_error(reply, nullptr) && readScheme(reply, scheme)) watch.apply(scheme);
    return 0;
  }

  static int changed(sd_bus_message* m, void* userdata, sd_bus_error*) {
    const char* ns = nullptr;
    const char* key = nullptr;
    std::uint32_t scheme = 0;
    if (sd_bus_message_read(m, "ss", &ns, &key) < 0) return 0;
    if (readScheme(m, scheme)) static_cast<ColorSchemeWatch*>(userdata)->apply(scheme);
    return 0;
  }
};

ColorSchemeWatch::ColorSchemeWatch(BusConnection& bus, std::function<void(TrayGlyphs)> onChange)
    : bus_(bus), onChange_(std::move(onChange)) {}

ColorSchemeWatch::~ColorSchemeWatch() {
  sd_bus_slot_unref(query_);
  sd_bus_slot_unref(match_);
}

void ColorSchemeWatch::start() {
  (void)sd_bus_add_match(bus_.get(), &match_,
                         "type='signal',interface='org.freedesktop.portal.Settings',member='SettingChanged',"
                         "arg0='org.freedesktop.appearance',arg1='color-scheme'",
                         &ColorSchemeCallbacks::changed, this);
  // Without a portal the call fails and the default stays.
  (void)sd_bus_call_method_async(bus_.get(), &query_, kPortal, kPortalPath, kSettings, "Read",
                                 &ColorSchemeCallbacks::answer, this, "ss", "org.freedesktop.appearance",
                                 "color-scheme");
}

void ColorSchemeWatch::apply(std::uint32_t scheme) {
  const TrayGlyphs glyphs = scheme == kPreferLight ? TrayGlyphs::dark : TrayGlyphs::light;
  if (glyphs == glyphs_) return;
  glyphs_ = glyphs;
  if (onChange_) onChange_(glyphs_);
}

}  // namespace quillmark
