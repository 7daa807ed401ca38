// Examples of the reference for ticks, colour bars and legends; it shows what lies between two marks.

#include "scene/Ticks.h"
#include "tests/support/Test.h"

using namespace Vek::Chart;

TEST(SceneLegendSnippets, Ticks) {
  //! [Ticks]
  const Scene::Ticks ticks = Scene::Ticks::Linear(0, 3e7, 4);
  const std::vector<double>& values = ticks.Values();      // 0, 1e7, 2e7, 3e7
  const std::vector<QString>& strings = ticks.Strings();   // "0", "10", "20", "30"
  const QString title = "Flow in m³/s " + ticks.Note();    // "Flow in m³/s ×10⁶"
  const QString readOut = ticks.Format(1.23e7, "m³/s", 1); // "12×10⁶ m³/s"
  //! [Ticks]
  EXPECT_EQ((strings[1] + title + readOut).toStdString(), "10Flow in m³/s ×10⁶12×10⁶ m³/s") << values.size();
}
