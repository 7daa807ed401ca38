#include "scene/Axes.h"
#include "tests/support/Figures.h"

namespace {

using Box = Types::BoundingBox_Base<double>;
using Label = AxesLayout::Label;
using Line = AxesLayout::Line;
using Standard = Camera::StandardView;

/// Letters of 7 × 14 points at ticks and 8 × 18 points in titles.
QSizeF SizeOf(const QString& p_text, AxesLayout::Font p_font) {
  return p_font == AxesLayout::Font::Tick ? QSizeF(7.0 * p_text.size(), 14) : QSizeF(8.0 * p_text.size(), 18);
}

Axes Example(const Box& p_box = Box({0, 0, 0}, {4, 3, 2})) {
  return {p_box, {{{"Longitude", "degrees", -180, 180}, {"Depth", "m", 6000, 0}, {"Speed", "", -0.5, 12.5}}}, {}};
}

Axes::Target TargetOf(const Viewport& p_viewport) {
  return {p_viewport, 1, SizeOf};
}

/// The projected faces of a box, whose union is the projected box.
std::vector<QPolygonF> FacesOf(const AxesLayout& p_layout) {
  std::vector<QPolygonF> faces;
  for (const auto& [a, b, c, d] :
       {std::array{0, 1, 3, 2}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 3, 7, 6}, {0, 2, 6, 4}, {1, 3, 7, 5}}) {
    const auto corner = [&](int p_index) { return p_layout.corners.at(static_cast<std::size_t>(p_index)); };
    faces.push_back(PolygonOf({corner(a), corner(b), corner(c), corner(d)}));
  }
  return faces;
}

void ExpectNothingOverlaps(const AxesLayout& p_layout, const Viewport& p_viewport) {
  const QRectF image(-1e-6, -1e-6, p_viewport.width + 2e-6, p_viewport.height + 2e-6);
  const std::vector<QPolygonF> faces = FacesOf(p_layout);
  for (std::size_t i = 0; i < p_layout.labels.size(); ++i) {
    const Label& label = p_layout.labels[i];
    const QPolygonF polygon = PolygonOf(label);
    EXPECT_TRUE(label.rotation > -80 && label.rotation <= 100) << label.rotation;
    EXPECT_TRUE(image.contains(polygon.boundingRect())) << label.text.toStdString() << " leaves the image";
    for (const QPolygonF& face : faces)
      EXPECT_LT(AreaOf(polygon.intersected(face)), 1e-3) << label.text.toStdString() << " lies over the box";
    for (std::size_t k = 0; k < i; ++k)
      EXPECT_LT(AreaOf(polygon.intersected(PolygonOf(p_layout.labels[k]))), 1e-3)
          << label.text.toStdString() << " meets " << p_layout.labels[k].text.toStdString();
  }
}

std::size_t Values(const AxesLayout& p_layout, std::size_t p_axis, AxesLayout::Font p_font = AxesLayout::Font::Tick) {
  return static_cast<std::size_t>(
      std::count_if(p_layout.labels.begin(), p_layout.labels.end(),
                    [&](const Label& p_label) { return p_label.axis == p_axis && p_label.font == p_font; }));
}

/// Whether all corners lie on one side of the line through two positions.
bool IsOutline(const AxesLayout& p_layout, const AxesLayout::Position& p_from, const AxesLayout::Position& p_to) {
  const AxesLayout::Position normal = Normalize(AxesLayout::Position(p_from.y - p_to.y, p_to.x - p_from.x));
  double least = 0, most = 0;
  for (const AxesLayout::Position& corner : p_layout.corners) {
    least = std::min(least, Dot(normal, corner - p_from));
    most = std::max(most, Dot(normal, corner - p_from));
  }
  return std::min(-least, most) < 1e-6;
}

const Viewport Windows[] = {{0, 0, 800, 600}, {30, 40, 400, 700}, {0, 0, 1400, 300}};

} // namespace

TEST(Axes, LetsNoStringsMeetInAnyView) {
  std::size_t complete = 0, drawn = 0;
  for (unsigned int seed = 0; seed < 200; ++seed)
    for (const Viewport& window : Windows)
      for (const auto projection : {Camera::Projection::Perspective, Camera::Projection::Parallel}) {
        SCOPED_TRACE(std::to_string(seed) + ' ' + std::to_string(window.width));
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> number(-1, 1);
        Camera camera;
        camera.Orbit(180 * number(random), 90 * number(random));
        camera.roll = seed % 10 == 0 ? 40 : 0;
        camera.fieldOfView = seed % 4 == 0 ? 70 : 30;
        camera.projection = projection;
        const Axes axes =
            Example(seed % 3 == 0 ? Box({1e6, 2e6, 0}, {1e6 + 9, 2e6 + 2, 1}) : Box({0, 0, 0}, {4, 3, 2}));
        Axes::State state;
        const AxesLayout layout = axes.Fit(camera, TargetOf(window), {}, state);
        ExpectNothingOverlaps(layout, window);
        for (std::size_t axis = 0; axis < 3; ++axis) {
          const std::size_t values = Values(layout, axis);
          EXPECT_TRUE(values != 1 && values <= Axes::MostTicks);
          complete += values >= 2 ? 1 : 0;
        }
        for (const Line& line : layout.lines) {
          if (line.kind == Line::Kind::Tick) {
            // A mark is perpendicular to its edge.
            const AxesLayout::Position mark = line.to - line.from;
            EXPECT_TRUE(IsOutline(layout, line.from, line.from + AxesLayout::Position(-mark.y, mark.x)));
          }
        }
        ++drawn;
      }
  EXPECT_GT(complete, drawn * 3 * 85 / 100) << "axes with values, of three in each of " << drawn << " layouts";
}

TEST(Axes, LabelsTheAxesThatAreSeen) {
  // Views, and the axes that have values: those along the line of sight do not.
  const std::tuple<Standard, std::array<bool, 3>> cases[] = {
      {Standard::Front, {true, false, true}}, {Standard::Back, {true, false, true}},
      {Standard::Left, {false, true, true}},  {Standard::Right, {false, true, true}},
      {Standard::Top, {true, true, false}},   {Standard::Bottom, {true, true, false}},
      {Standard::Chart, {true, true, true}},  {Standard::Isometric, {true, true, true}}};
  for (const auto& [view, expected] : cases)
    for (const auto projection : {Camera::Projection::Perspective, Camera::Projection::Parallel}) {
      SCOPED_TRACE(static_cast<int>(view));
      Camera camera;
      camera.Look(view);
      camera.projection = projection;
      Axes::State state;
      const AxesLayout layout = Example().Fit(camera, TargetOf(Windows[0]), {}, state);
      ExpectNothingOverlaps(layout, Windows[0]);
      for (std::size_t axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(Values(layout, axis) >= 2, expected[axis]) << axis;
        EXPECT_EQ(Values(layout, axis, AxesLayout::Font::Title), expected[axis] ? 1U : 0U) << axis;
        EXPECT_EQ(state.edges[axis] >= 0, expected[axis]) << axis;
      }
    }
}

TEST(Axes, PutsThoseOfAMapBelowAndAtTheLeft) {
  for (const auto projection : {Camera::Projection::Perspective, Camera::Projection::Parallel}) {
    const Axes axes = Example(Box({-180, -90, 5}, {180, 90, 5}));
    Camera camera;
    camera.Look(Standard::Top);
    camera.projection = projection;
    Axes::State state;
    const AxesLayout layout = axes.Fit(camera, TargetOf(Windows[0]), {0, 100, 0, 50}, state);
    ASSERT_EQ(layout.corners.size(), 8U);
    EXPECT_EQ(Values(layout, 2), 0U);
    EXPECT_EQ(Values(layout, 2, AxesLayout::Font::Title), 0U);
    for (const Label& label : layout.labels) {
      if (label.axis == 0)
        EXPECT_LT(label.center.y, layout.corners[0].y);
      else
        EXPECT_LT(label.center.x, layout.corners[0].x);
      EXPECT_NEAR(label.rotation, label.font == AxesLayout::Font::Title && label.axis == 1 ? 90 : 0, 1e-9);
    }
    EXPECT_GE(Values(layout, 0), 5U);
    EXPECT_GE(Values(layout, 1), 5U);
    EXPECT_GE(layout.Bounds().bottom, 99.5);
    EXPECT_LE(layout.Bounds().top, 550.5);
    const double width = layout.Bounds().right - layout.Bounds().left;
    EXPECT_GT(width, 790) << "the map fills the room";
  }
}

TEST(Axes, KeepsAnEdgeUntilAnotherIsClearlyBetter) {
  Axes::State state;
  Camera camera;
  camera.Look(Standard::Top);
  camera.projection = Camera::Projection::Parallel;
  const Axes axes = Example(Box({-2, -2, -1}, {2, 2, 1}));
  int changes = 0;
  double changedAt = 0;
  // To and fro over the azimuth at which two edges are equally low.
  for (const double azimuth : {-10.0, -3.0, -1.0, 1.0, -1.0, 1.0, 3.0, -3.0, 40.0}) {
    camera.azimuth = azimuth;
    const auto before = state.edges;
    axes.Layout(camera, TargetOf(Windows[0]), state);
    if (azimuth != -10 && state.edges[1] != before[1]) {
      ++changes;
      changedAt = azimuth;
    }
  }
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(changedAt, 40);
  Axes::State fresh;
  camera.azimuth = 3;
  axes.Layout(camera, TargetOf(Windows[0]), fresh);
  EXPECT_EQ(fresh.edges[1], state.edges[1]) << "without a past, the lower one";
}

TEST(Axes, DrawsTheGridOnTheFarFacesOnly) {
  Camera camera;
  camera.Look(Standard::Chart);
  Axes axes = Example();
  for (Axes::Axis& axis : axes.axes)
    axis.ticks = [](double p_low, double p_high, std::size_t) {
      const double step = (p_high - p_low) / 4;
      return Ticks({p_low - step, p_low, p_low + step, p_low + 2 * step, NAN}, {"out", "0", "", "1", "out"});
    };
  Axes::State state;
  const AxesLayout layout = axes.Fit(camera, TargetOf(Windows[0]), {}, state);
  std::map<Line::Kind, int> count;
  for (const Line& line : layout.lines)
    ++count[line.kind];
  EXPECT_EQ(count[Line::Kind::Grid], 6) << "two on each of three far faces";
  // The eye is at +x, −y, +z of the box: lines at the middle of two faces each.
  for (const auto& [from, to] : {std::pair(Point(2, 3, 0), Point(2, 3, 2)),
                                 {Point(2, 0, 0), Point(2, 3, 0)},
                                 {Point(0, 1.5, 0), Point(4, 1.5, 0)},
                                 {Point(0, 1.5, 0), Point(0, 1.5, 2)},
                                 {Point(0, 0, 1), Point(0, 3, 1)},
                                 {Point(0, 3, 1), Point(4, 3, 1)}}) {
    const Camera::Pixel a = camera.Project(from, Windows[0]), b = camera.Project(to, Windows[0]);
    EXPECT_EQ(std::count_if(layout.lines.begin(), layout.lines.end(),
                            [&](const Line& p_line) {
                              const auto isAt = [](const AxesLayout::Position& p_end, const Camera::Pixel& p_pixel) {
                                return std::hypot(p_end.x - p_pixel.x, p_end.y - p_pixel.y) < 1e-6;
                              };
                              return p_line.kind == Line::Kind::Grid && ((isAt(p_line.from, a) && isAt(p_line.to, b)) ||
                                                                         (isAt(p_line.from, b) && isAt(p_line.to, a)));
                            }),
              1)
        << from.x << ' ' << from.y << ' ' << from.z;
  }
  EXPECT_EQ(count[Line::Kind::Edge], 9) << "all but the three at the nearest corner";
  EXPECT_EQ(count[Line::Kind::Tick], 9) << "two with a value and a minor one on each axis";
  std::set<QString> texts;
  for (const Label& label : layout.labels)
    texts.insert(label.text);
  EXPECT_EQ(texts, (std::set<QString>{"0", "1", "Longitude (degrees)", "Depth (m)", "Speed"}));
}

TEST(Axes, PlacesValuesByScaleAndKeepsNotes) {
  Axes axes = Example();
  axes.axes[0] = {"Length", "m", 1, 1e4, Axes::Scale::Logarithmic, {}};
  axes.axes[1] = {"Mass", "kg", 0, 4e-9};
  axes.axes[2] = {"", "K", 400, 200};
  Camera camera;
  camera.Look(Standard::Chart);
  camera.projection = Camera::Projection::Parallel; // fractions are those of pixels
  Axes::State state;
  const AxesLayout layout = axes.Fit(camera, TargetOf(Windows[0]), {}, state);
  std::map<QString, Label> labels;
  for (const Label& label : layout.labels)
    labels.emplace(label.text, label);
  for (const char* const title : {"Length (m)", "Mass (×10⁻⁹ kg)", "K"})
    EXPECT_EQ(labels.count(title), 1U) << title;
  EXPECT_GT(labels["100"].center.x, labels["1"].center.x);
  EXPECT_NEAR(labels["10000"].center.x - labels["100"].center.x, labels["100"].center.x - labels["1"].center.x, 25);
  EXPECT_GT(labels["200"].center.y, labels["400"].center.y) << "reversed";
}

TEST(Axes, NamesAllTheyHaveRoomForAndAtLeastBothEnds) {
  const auto labelsOf = [](const Axes& p_axes, const Viewport& p_viewport) {
    Camera camera;
    camera.Look(Standard::Chart);
    return p_axes.Fit(camera, TargetOf(p_viewport), {});
  };
  Axes axes = Example(Box({0, 0, 0}, {0.8, 1, 2.4})); // of three values that are too many, the ends remain
  axes.axes = {{{"x", "", -10.2, 10.2}, {"y", "", -15.2, 15.2}, {"z", "", -30, 30}}};
  for (const float size : {250.0F, 300.0F, 350.0F, 400.0F, 600.0F})
    for (std::size_t axis = 0; axis < 3; ++axis)
      EXPECT_GE(Values(labelsOf(axes, {0, 0, size, size}), axis), 2U) << size << ", axis " << axis;

  axes = Example({{0, 0, 0}, {4, 1, 1}}); // one long name takes no room of the others
  axes.axes[0] = {"", "", 0, 6, Axes::Scale::Linear, [](double, double, std::size_t p_most) {
                    const QString names[] = {
                        "Mali", "Peru", "Chad", "Fiji", "Laos", "Cuba", "United States of America"};
                    std::vector<double> values;
                    std::vector<QString> strings;
                    for (std::size_t i = 0, step = 6 / p_most + 1; i < 7; i += step) {
                      values.push_back(static_cast<double>(i));
                      strings.push_back(names[i]);
                    }
                    return Ticks(values, strings);
                  }};
  EXPECT_EQ(Values(labelsOf(axes, {0, 0, 800, 600}), 0), 7U);
}

TEST(Axes, GivesNothingWhereThereIsNothingToLabel) {
  Axes::State state;
  Camera inside;
  inside.target = {2, 1.5, 1};
  inside.distance = 0.1;
  const Axes::Target target = TargetOf(Windows[0]);
  EXPECT_TRUE(Example().Layout(inside, target, state).lines.empty());
  EXPECT_TRUE(Example(Box()).Layout(Camera(), target, state).lines.empty());
  EXPECT_TRUE(Example().Layout(Camera(), TargetOf({}), state).lines.empty());
  // Just outside of a face: some corners are behind the eye, and the grid alone is drawn, before the eye.
  Camera close = inside;
  close.elevation = 10;
  close.distance = 1.6;
  const AxesLayout grid = Example().Layout(close, target, state);
  EXPECT_TRUE(grid.labels.empty() && grid.corners.empty() && !grid.lines.empty());
  for (const Line& line : grid.lines)
    for (const auto& [x, y] : {line.from, line.to}) {
      EXPECT_TRUE(std::isfinite(x + y));
      EXPECT_FALSE(x == 0 && y == 0) << "a point behind the eye has no pixel";
    }
  // Boxes without extent, axes without ticks, a window without room.
  for (const Box& box : {Box({1, 1, 1}, {1, 1, 1}), Box({0, 0, 0}, {5, 0, 0}), Box({0, 0, 0}, {0, 4, 2})}) {
    Camera camera;
    camera.Look(Standard::Chart);
    Axes::State fresh;
    ExpectNothingOverlaps(Example(box).Fit(camera, target, {}, fresh), Windows[0]);
    Axes bare;
    bare.box = box;
    EXPECT_TRUE(bare.Fit(camera, target, {}, fresh).labels.empty());
    EXPECT_TRUE(Example(box).Fit(camera, TargetOf({0, 0, 20, 10}), {}, fresh).labels.empty());
  }
  EXPECT_THROW(Example().Layout(inside, {Windows[0], 1, {}}, state), std::invalid_argument);
}

namespace {

class AxesPixels : public PixelScopeFixture {
protected:
  AxesPixels()
      : PixelScopeFixture({240, 180}) {}
};

} // namespace

TEST_F(AxesPixels, DrawsLinesAndStringsWhereTheLayoutHasThem) {
  MakeApplication();
  Theme theme = Theme::Light();
  theme.line = Qt::red;
  theme.grid = Qt::blue;
  theme.text = Qt::black;
  const Viewport window(0, 0, 240, 180);
  Camera camera;
  camera.Look(Standard::Front);
  camera.projection = Camera::Projection::Parallel;
  Axes::State state;
  const AxesLayout layout = Example().Fit(camera, {window, 1, Axes::MeasureIn(theme, 1)}, {}, state);
  ASSERT_GE(layout.labels.size(), 6U);
  gl->ClearColor(Qt::white);
  gl->Clear(RGL_COLOR_BUFFER_BIT);
  const TextRenderer text;
  {
    Canvas canvas(gl, window, text);
    Axes::Draw(canvas, layout, theme);
  }
  const QImage image = Image();
  const auto holds = [&](const QRectF& p_rect, const QColor& p_color) {
    for (int x = static_cast<int>(p_rect.left()); x <= p_rect.right(); ++x)
      for (int y = static_cast<int>(p_rect.top()); y <= p_rect.bottom(); ++y)
        if (x >= 0 && y >= 0 && x < 240 && y < 180 && SameColor(PixelAt(image, x, y), p_color, 90))
          return true;
    return false;
  };
  for (const Line& line : layout.lines) {
    const AxesLayout::Position middle = (line.from + line.to) / 2.0;
    const QColor color = line.kind == Line::Kind::Grid ? Qt::blue : Qt::red;
    // Seen from the front, the lines of the four faces at the sides lie on edges.
    if (line.kind != Line::Kind::Grid || !holds({middle.x - 1, middle.y - 1, 2, 2}, Qt::red)) {
      EXPECT_TRUE(holds({middle.x - 1, middle.y - 1, 2, 2}, color)) << middle.x << ' ' << middle.y;
    }
  }
  for (const Label& label : layout.labels)
    EXPECT_TRUE(holds(PolygonOf(label).boundingRect(), Qt::black)) << label.text.toStdString();
}
