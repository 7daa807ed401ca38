#include "scene/Theme.h"

#include <tuple>

namespace Vek::Chart::Scene {

Theme Theme::Light() {
  return {};
}

Theme Theme::Dark() {
  Theme theme;
  theme.backgroundTop = QColor(0x18, 0x21, 0x2C);
  theme.backgroundBottom = QColor(0x0B, 0x10, 0x17);
  theme.title = QColor(0xF2, 0xF0, 0xEA);
  theme.text = QColor(0xB9, 0xC2, 0xCC);
  theme.faint = QColor(0x86, 0x91, 0x9D);
  theme.line = QColor(0x5C, 0x69, 0x78);
  theme.grid = QColor(0x2E, 0x39, 0x46);
  theme.halo = QColor(0x0B, 0x10, 0x17, 0xD8);
  return theme;
}

Theme Theme::Print() {
  Theme theme;
  theme.title = theme.text = QColor(Qt::black);
  theme.faint = QColor(0x50, 0x50, 0x50);
  theme.line = QColor(0x60, 0x60, 0x60);
  theme.grid = QColor(0xC8, 0xC8, 0xC8);
  theme.halo = QColor(Qt::white);
  return theme;
}

TextStyle Theme::WithHalo(TextStyle p_style) const {
  p_style.halo = halo;
  p_style.haloWidth = p_style.size / 8;
  return p_style;
}

bool operator==(const Theme& p_a, const Theme& p_b) {
  const auto all = [](const Theme& p_t) {
    return std::tie(p_t.backgroundTop, p_t.backgroundBottom, p_t.title, p_t.text, p_t.faint, p_t.line, p_t.grid,
                    p_t.halo, p_t.titleSize, p_t.textSize, p_t.smallSize, p_t.family);
  };
  return all(p_a) == all(p_b);
}

} // namespace Vek::Chart::Scene
