#include "views/theme.h"

namespace quillmark {

const Theme& Theme::glass() {
  static const Theme theme{
      .backgroundTop = Color::rgb(0x2a3444, 0.97),
      .backgroundBottom = Color::rgb(0x161b24, 0.97),
      .border = Color::rgb(0xffffff, 0.16),
      .card = Color::rgb(0xffffff, 0.06),
      .cardBorder = Color::rgb(0xffffff, 0.08),
      .text = Color::rgb(0xf2f5fa),
      .secondaryText = Color::rgb(0xa9b3c4),
      .track = Color::rgb(0xffffff, 0.10),
      .accent = Color::rgb(0x5ab0ff),
      .cpu = Color::rgb(0x5ab0ff),
      .memory = Color::rgb(0xb58cff),
      .network = Color::rgb(0x4fd1a5),
      .upload = Color::rgb(0xffb454),
      .gpu = Color::rgb(0xff7eb6),
      .temperature = Color::rgb(0xff8a5c),
      .power = Color::rgb(0xf5d547),
      .warning = Color::rgb(0xffb454),
      .destructive = Color::rgb(0xff5f57),
      .controlFill = Color::rgb(0xffffff, 0.10),
      .controlHover = Color::rgb(0xffffff, 0.16),
      .controlPressed = Color::rgb(0xffffff, 0.24),
  };
  return theme;
}

const Theme& Theme::vitals() {
  static const Theme theme{
      .backgroundTop = Color::rgb(0x0b0f0d, 0.98),
      .backgroundBottom = Color::rgb(0x050706, 0.98),
      .border = Color::rgb(0x3dff9a, 0.30),
      .card = Color::rgb(0x3dff9a, 0.05),
      .cardBorder = Color::rgb(0x3dff9a, 0.14),
      .text = Color::rgb(0xdffbe9),
      .secondaryText = Color::rgb(0x7fa690),
      .track = Color::rgb(0x3dff9a, 0.10),
      .accent = Color::rgb(0x3dff9a),
      .cpu = Color::rgb(0x3dff9a),
      .memory = Color::rgb(0x39c6ff),
      .network = Color::rgb(0xe4ff3d),
      .upload = Color::rgb(0xff9d3d),
      .gpu = Color::rgb(0xff4fd8),
      .temperature = Color::rgb(0xff6b3d),
      .power = Color::rgb(0xffe14f),
      .warning = Color::rgb(0xffb03d),
      .destructive = Color::rgb(0xff4d4d),
      .controlFill = Color::rgb(0x3dff9a, 0.10),
      .controlHover = Color::rgb(0x3dff9a, 0.18),
      .controlPressed = Color::rgb(0x3dff9a, 0.28),
      .corner = 4,
  };
  return theme;
}

}  // namespace quillmark
