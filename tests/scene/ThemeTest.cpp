#include "scene/Theme.h"
#include "tests/support/Test.h"

namespace {

/// Relative luminance and contrast as the Web Content Accessibility Guidelines 2.1 define them.
double Luminance(const QColor& p_color) {
  const auto linear = [](double p_channel) {
    return p_channel <= 0.03928 ? p_channel / 12.92 : std::pow((p_channel + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(p_color.redF()) + 0.7152 * linear(p_color.greenF()) + 0.0722 * linear(p_color.blueF());
}

double Contrast(const QColor& p_a, const QColor& p_b) {
  const double a = Luminance(p_a), b = Luminance(p_b);
  return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

} // namespace

TEST(Theme, KeepsItsContrasts) {
  ASSERT_NEAR(Contrast(Qt::white, Qt::black), 21, 1e-9);
  ASSERT_NEAR(Contrast(QColor(0x767676), Qt::white), 4.54, 0.005);
  for (const auto& [name, theme] :
       {std::pair("light", Theme::Light()), {"dark", Theme::Dark()}, {"print", Theme::Print()}})
    for (const QColor& background : {theme.backgroundTop, theme.backgroundBottom}) {
      for (const QColor& letters : {theme.title, theme.text, theme.faint})
        EXPECT_GE(Contrast(letters, background), 4.5) << name << ": " << letters.name().toStdString();
      EXPECT_GE(Contrast(theme.text, theme.halo), 4.5) << name;
      EXPECT_GE(Contrast(theme.line, background), 2) << name;
      EXPECT_GE(Contrast(theme.grid, background), 1.2) << name;
    }
}

TEST(Theme, GivesItsStyles) {
  Theme theme = Theme::Dark();
  theme.family = "Serif";
  const TextStyle small = theme.SmallStyle(), title = theme.TitleStyle(), over = theme.WithHalo(small);
  EXPECT_EQ(std::tuple(title.size, title.color, title.bold, title.halo.alpha(), title.family),
            std::tuple(theme.titleSize, theme.title, true, 0, theme.family));
  EXPECT_EQ(std::tuple(small.size, small.color, small.bold), std::tuple(theme.smallSize, theme.text, false));
  EXPECT_EQ(std::tuple(over.halo, over.haloWidth, over.color, over.family),
            std::tuple(theme.halo, theme.smallSize / 8, theme.text, theme.family));
}
