// Layouts are kept until something changes.

#include "scene/Figure.h"

#include "tests/support/Figures.h"

namespace {

/// What a layout shows, in one string.
std::string Shown(const FigureLayout& p_layout) {
  std::ostringstream shown;
  shown.precision(17);
  const auto add = [&](const QString& p_text, double p_x, double p_y, double p_size, const QColor& p_color) {
    shown << p_text.toStdString() << ' ' << p_x << ' ' << p_y << ' ' << p_size << ' ' << p_color.rgba() << '\n';
  };
  for (const auto& block : p_layout.blocks)
    for (const auto& string : block.content.Strings())
      add(string.text, block.origin.x + string.position.x, block.origin.y + string.position.y, string.style.size,
          string.style.color);
  for (const auto& label : p_layout.axes.labels)
    add(label.text, label.center.x, label.center.y, 0, {});
  const Camera& camera = p_layout.camera;
  shown << camera.azimuth << ' ' << camera.elevation << ' ' << camera.distance << ' ' << camera.target.x;
  return shown.str();
}

using FigureLayouts = FigureFixture;

TEST_F(FigureLayouts, FollowEachChange) {
  Figure figure("Title");
  ScatterPlot* plot = &figure.Scatter(Cloud(20)).ColorBy(Ascending(20));
  const ScatterPlot* other = nullptr;
  Viewport viewport = wide;
  double ratio = 1;
  QString name = "one";
  const std::pair<const char*, std::function<void()>> changes[] = {
      {"title", [&] { figure.SetTitle("Other", "Subtitle"); }},
      {"subtitle", [&] { figure.SetTitle("Other", "Another"); }},
      {"axis titles", [&] { figure.SetAxisTitles("East", "North", "Up"); }},
      {"limits", [&] { figure.SetLimits(0, -3, 3); }},
      {"aspect", [&] { figure.SetAspect(1, 1, 2); }},
      {"extent",
       [&] {
         figure.SetExtent({{-5, -5, -5}, {5, 5, 5}});
       }},
      {"view", [&] { figure.Look(10, 20); }},
      {"camera", [&] { figure.camera = figure.Layout(viewport).camera, figure.camera->azimuth += 1; }},
      {"clip",
       [&] {
         figure.Clip(Types::Plane({0, 0, 0}, {1, 0, 0}));
       }},
      {"clip removed", [&] { figure.RemoveClip(0); }},
      {"notes", [&] { figure.SetNotes({"A note"}); }},
      {"size of letters", [&] { figure.theme.smallSize = 9; }},
      {"colour of letters", [&] { figure.theme.title = Qt::red; }},
      {"viewport", [&] { viewport.width += 50; }},
      {"pixel ratio", [&] { ratio = 1.25; }},
      {"colour range", [&] { plot->ColorRange(0, 100); }},
      {"colour title", [&] { plot->ColorTitle("Depth"); }},
      {"values", [&] { plot->AutoColorRange().ColorBy(Ascending(20, 1000)); }},
      {"positions",
       [&] {
         figure.SetExtent({}), plot->UpdatePositions(Cloud(20, {9, 9, 9}));
       }},
      {"another plot",
       [&] {
         other = &figure.Scatter(Cloud(5, {2, 30, 2})).Label("Second");
       }},
      {"label", [&] { plot->Label("First"); }},
      {"hidden plot", [&] { plot->SetVisible(false); }},
      {"plot shown again", [&] { plot->SetVisible(true); }},
      {"removed plot", [&] { figure.Remove(*other); }},
      {"ticks",
       [&] {
         figure.SetAxisNames(2, {"zero", "first", "second"});
       }},
      {"ticks of the host",
       [&] { figure.SetTicks(2, [&](double, double, std::size_t) {
               return Ticks({-2, 0, 2}, {name, "b", "c"});
             }); }},
      {"what they return", [&] { name = "two"; }}};
  std::string last;
  for (const auto& [what, change] : changes) {
    change();
    const std::string now = Shown(figure.Layout(viewport, ratio));
    EXPECT_NE(now, last) << what;
    EXPECT_EQ(Shown(figure.Layout(viewport, ratio)), now) << what;
    last = now;
  }
}

} // namespace
