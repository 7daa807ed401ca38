#include "scene/ColorBar.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Scene;

TEST(ColorBar, LogarithmicTicksAreWrittenAtPowersOfTenAndAtTheEnds) {
  const std::tuple<double, double, const char*> cases[] = {
      {10, 600, "0:10 0.17: 0.27: 0.34: 0.39: 0.44: 0.48: 0.51: 0.54: 0.56:100 0.73: 0.83: 0.9: 0.96: 1:600 "},
      {0.5, 3, "0:0.5 0.1: 0.19: 0.26: 0.33: 0.39:1 0.77: 1:3 "},
      {0, 1, ""},
      {2, 2, ""}};
  for (const auto& [min, max, expected] : cases) {
    QString ticks;
    for (const Canvas::Tick& tick : LogTicks(min, max))
      ticks += QString::number(std::round(tick.place * 100) / 100) + ':' + tick.text + ' ';
    EXPECT_EQ(ticks.toStdString(), expected) << min;
  }
}
