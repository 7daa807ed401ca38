#include "tests/apps/viewer/ViewerFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QSlider>

#include <cstring>

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

TEST_F(ViewerPlots, PointsHaveTheColorsOfTheFile) {
  ASSERT_NE(OpenText("a.ply", "ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\nproperty float y\n"
                              "property float z\nproperty uchar red\nproperty uchar green\nproperty uchar blue\n"
                              "end_header\n0 0 0 255 0 0\n1 1 1 0 0 255\n"),
            nullptr);
  const auto redOf = [&](const QImage& p_image) {
    int red = 0;
    for (int y = 0; y < p_image.height(); ++y)
      for (int x = 0; x < p_image.width(); ++x)
        red += p_image.pixelColor(x, y).red() > 100 && p_image.pixelColor(x, y).blue() < 60;
    return red;
  };
  Set("Figure", "Triad", false);
  EXPECT_GT(redOf(View().Image()), 20);
  Set("Colours", "Colour", 1); // one
  EXPECT_EQ(redOf(View().Image()), 0);
  Set("Colours", "Colour", 0);
  EXPECT_GT(redOf(View().Image()), 20);
}

TEST_F(ViewerPlots, ChoosesAmongTheVariablesOfAFile) {
  ASSERT_NE(Open(DataFile("navy_winds_1987.nc")), nullptr);
  for (const auto& [from, to, index, word] :
       {std::tuple("Field", "Surface", 2, "MERIDIONAL WIND"), std::tuple("Surface", "Surface", 1, "ZONAL WIND"),
        std::tuple("Surface", "Field", 0, "UWND, VWND")}) {
    const int before = _shown;
    emit Find<QComboBox>((from + std::string("/Variable")).c_str()).activated(index);
    ASSERT_TRUE(WaitFor([&, b = before] { return _shown > b; }, 20000)) << word;
    EXPECT_NE(Words().find(word), std::string::npos) << Words();
    EXPECT_EQ(std::get<int>(_window->Chart()->Find(to, "Variable")->value), index);
    if (index == 1) { // around the globe without a gap, which would lie between 17.5 and 20 degrees east
      EXPECT_NE(ReadOutAt({18.75, 40, 0}).find("ZONAL"), std::string::npos) << ReadOutAt({18.75, 40, 0});
    }
  }
}

TEST_F(ViewerPlots, VolumesHaveTheRangeOfTheFile) {
  std::string nifti(352, '\0');
  const auto put = [&](std::size_t p_at, auto p_value) { std::memcpy(&nifti[p_at], &p_value, sizeof p_value); };
  put(0, std::int32_t{348});
  for (const std::int16_t axis : {0, 1, 2, 3})
    put(40 + 2 * static_cast<std::size_t>(axis), std::int16_t(axis == 0 ? 3 : 2));
  put(70, std::int16_t{2});
  put(72, std::int16_t{8});
  put(108, 352.0f);
  put(124, 7.0f);
  put(128, 1.0f);
  nifti.replace(344, 4, std::string("n+1\0", 4));
  ASSERT_NE(OpenText("a.nii", nifti + "\1\2\3\4\5\6\7\x9"), nullptr);
  EXPECT_EQ(TextOf("Colours/Range/low") + " " + TextOf("Colours/Range/high"), "1 7");
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
