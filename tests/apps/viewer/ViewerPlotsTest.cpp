#include "tests/apps/viewer/ViewerFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSlider>

namespace {

class ViewerPlots : public ViewerFixture {
protected:
  /// Types into a field.
  void Type(const char* p_field, const QString& p_text) {
    auto& field = Find<QLineEdit>(p_field);
    field.setText(p_text);
    field.setModified(true);
    emit field.editingFinished();
  }
  std::string TextOf(const char* p_field) { return Find<QLineEdit>(p_field).text().toStdString(); }
};

std::string RampText() {
  std::string text = "TextArray 5 1 5 5\n";
  for (int i = 0; i < 125; ++i)
    text += std::to_string(i) + ' ';
  return text;
}

} // namespace

TEST_F(ViewerPlots, RangeScaleAndMapOfAVolume) {
  ASSERT_NE(OpenText("ramp.txt", RampText()), nullptr);
  EXPECT_EQ(TextOf("Colours/Range/low") + " " + TextOf("Colours/Range/high"), "0 130");
  Type("Colours/Range/high", "80");
  EXPECT_FALSE(Find<QCheckBox>("Colours/Range/automatic").isChecked());
  EXPECT_NE(Words().find("|80|"), std::string::npos) << Words();
  EXPECT_NE(Words().find("124"), std::string::npos) << "the true extreme: " << Words();
  Type("Colours/Range/high", "-5");
  EXPECT_NE(LastReport().find("expected"), std::string::npos);
  EXPECT_EQ(TextOf("Colours/Range/high"), "80") << "a refused value";
  Find<QCheckBox>("Colours/Range/automatic").setChecked(true);
  EXPECT_EQ(TextOf("Colours/Range/high"), "130");
  const QImage viridis = View().Image();
  auto& map = Find<QComboBox>("Colours/Map");
  emit map.activated(map.findText("inferno"));
  EXPECT_GT(Difference(View().Image(), viridis), 0.02);
}

TEST_F(ViewerPlots, SlicesMoveByNumberSliderAndDrag) {
  ASSERT_NE(OpenText("ramp.txt", RampText()), nullptr);
  Type("Slices/At x", "3");
  EXPECT_NE(Words().find("slices at x = 3"), std::string::npos) << Words();
  Find<QSlider>("Slices/At y/slider").setValue(0);
  EXPECT_EQ(TextOf("Slices/At y"), "-0.5");
  // The slice across z, dragged upwards by its corner nearest to the viewer, to where z = 3 was.
  Find<QCheckBox>("Slices/Across x").setChecked(false);
  Find<QCheckBox>("Slices/Across y").setChecked(false);
  View().Image();
  const QPointF from = PixelOf({3.5, 1, 2}), to = PixelOf({3.5, 1, 3});
  SendDrag(View(), from, to - from, Qt::LeftButton, Qt::ControlModifier);
  EXPECT_NEAR(std::get<double>(_window->Chart()->Find("Slices", "At z")->value), 3, 0.1);
  EXPECT_NEAR(Find<QLineEdit>("Slices/At z").text().toDouble(), 3, 0.1);
  // The value under the cursor: z is linear in the values, 25 a layer.
  const std::string readOut = ReadOutAt({3.5, 1, std::get<double>(_window->Chart()->Find("Slices", "At z")->value)});
  EXPECT_NE(readOut.find("x 3.5"), std::string::npos) << readOut;
  EXPECT_NE(readOut.find("value: 8"), std::string::npos) << readOut;
}

TEST_F(ViewerPlots, RaysSurfacesAndValuesLeftOut) {
  ASSERT_NE(OpenText("ramp.txt", RampText()), nullptr);
  const QImage slices = View().Image();
  Set("Slices", "Values from", 60.0);
  EXPECT_GT(Difference(View().Image(), slices), 0.02) << "half of the values are left out";
  Set("Slices", "Values from", 0.0);
  EXPECT_EQ(View().Image(), slices);
  for (const int shown : {1, 2, 3, 4, 5}) {
    Set("Volume", "Show", shown);
    EXPECT_GT(Difference(View().Image(), slices), 0.02) << shown;
  }
  Set("Volume", "Show", 4);
  Set("Isosurface", "Level", 100.0);
  EXPECT_NE(Words().find("100"), std::string::npos) << Words();
  Set("Volume", "Show", 0);
  Set("Volume", "Value", 124.0);
  Set("Volume", "Leave a value out", true);
  EXPECT_NE(Words().find("0 to 123, 1 without data"), std::string::npos) << Words();
}

TEST_F(ViewerPlots, MeshesHaveColorsUpAndCuts) {
  ASSERT_NE(OpenText("cube.obj", CubeText()), nullptr);
  EXPECT_NE(Words().find("8 vertices, 12 triangles"), std::string::npos) << Words();
  // y is up: the axes of the figure are z, x and y of the file.
  EXPECT_EQ(_window->Chart()->figure->AxisTitle(2).toStdString(), "y");
  EXPECT_NE(ReadOutAt({1, 0, 0}).find("z 1.0"), std::string::npos) << ReadOutAt({1, 0, 0});
  Set("Cut", "Across", 1);
  Set("Cut", "At", 0.0);
  EXPECT_EQ(_window->Chart()->figure->Clips().size(), 1u);
  EXPECT_EQ(ReadOutAt({1, 0, 0}).find("z 1.0"), std::string::npos) << "the half that is cut away";
  Set("Cut", "Across", 0);
  EXPECT_TRUE(_window->Chart()->figure->Clips().empty());
  Set("Colours", "Colour", 2);
  EXPECT_NE(ReadOutAt({1, 0.5, 0.25}).find("y: 1"), std::string::npos) << "of a corner: " << ReadOutAt({1, 0.5, 0.25});
}

TEST_F(ViewerPlots, TimeStepsKeepSettingsAndView) {
  ASSERT_NE(Open(DataFile("navy_winds_1987.nc")), nullptr);
  Set("Field", "Show", 1);
  Set("Colours", "Range", std::optional<Setting::Range>(Setting::Range(0, 30)));
  View().Look(Scene::Camera::StandardView::Bottom);
  const int before = _shown;
  Find<QSlider>("Field/Time/slider").setValue(1);
  ASSERT_TRUE(WaitFor([&] { return _shown > before; }, 20000));
  EXPECT_EQ(Words().find("1987-01-17 02:00"), std::string::npos) << Words();
  EXPECT_EQ(std::get<int>(_window->Chart()->Find("Field", "Show")->value), 1);
  EXPECT_EQ(std::get<int>(_window->Chart()->Find("Field", "Time")->value), 1);
  EXPECT_NE(Words().find("|30|"), std::string::npos) << Words();
  EXPECT_EQ(View().Camera().elevation, -90);
  EXPECT_EQ(_window->List().count(), 1);
}
