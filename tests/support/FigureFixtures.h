#pragma once

#include "scene/Figure.h"
#include "tests/support/Shown.h"
#include "tests/support/Test.h"

#include <limits>
#include <string>
#include <vector>

namespace Vek::Test {

// Short names for tests of plots.
using Point = Types::Vector3_Base<double>;
using Positions = std::vector<Point>;
using Numbers = std::vector<double>;
using Notes = std::vector<QString>;
using Bytes = std::vector<std::size_t>;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

/// Figures on the recorder.
class FigureCallsFixture : public RecordingScopeFixture {
protected:
  void SetUp() override {
    MakeApplication();
    recorder.SetVersion("3.3.0");
    constexpr Chart::Ogl::GlEnum ProfileMask = 0x9126;
    recorder.SetInteger(ProfileMask, {2});
  }
  /// The calls of a drawing.
  std::vector<std::string> CallsOf(Chart::Scene::Figure& p_figure) {
    recorder.Clear();
    p_figure.Draw(gl, {0, 0, 600, 400});
    return recorder.Lines();
  }
  /// The bytes of each upload of a drawing.
  Bytes UploadsOf(Chart::Scene::Figure& p_figure) {
    CallsOf(p_figure);
    Bytes bytes;
    for (const std::string& line : recorder.LinesOf({"MapBufferRange"}))
      bytes.push_back(std::stoul(line.substr(line.find(", 0, ") + 5)));
    EXPECT_TRUE(recorder.LinesOf({"BufferSubData"}).empty());
    return bytes;
  }
};

/// Figures on the rasteriser, in axes without visible lines.
class FigurePixelsFixture : public PixelScopeFixture {
public:
  FigurePixelsFixture()
      : PixelScopeFixture(Types::Size(300, 200)) {}

protected:
  const Types::Viewport<0> viewport{0, 0, 300, 200};
  void SetUp() override {
    MakeApplication();
    PixelScopeFixture::SetUp();
  }
  void Draw(Chart::Scene::Figure& p_figure) {
    p_figure.theme.grid = p_figure.theme.line = Qt::white;
    p_figure.Draw(gl, viewport);
  }
  /// Where a point of the data is.
  Chart::Scene::Camera::Pixel PixelOf(Chart::Scene::Figure& p_figure, const Point& p_data) {
    return p_figure.Layout(viewport).camera.Project(p_figure.ToScene(p_data), viewport);
  }
  /// The pixel at which a point of the data must appear, in the image that was drawn.
  QColor Seen(Chart::Scene::Figure& p_figure, const Point& p_data) {
    const Chart::Scene::Camera::Pixel pixel = PixelOf(p_figure, p_data);
    return At(static_cast<int>(pixel.x), static_cast<int>(pixel.y));
  }
};

} // namespace Vek::Test
