#include "library/Arrow3D.h"
#include "library/Box.h"
#include "library/Cuboid.h"
#include "library/Cylinder.h"
#include "library/Disk.h"
#include "library/FilledBox.h"
#include "library/Geometry.h"
#include "library/Ring.h"
#include "library/Sphere.h"
#include "library/TexturedCube.h"
#include "library/TexturedQuad.h"
#include "tests/support/PixelFixture.h"
#include "tests/support/RecordingFixture.h"
#include "tests/support/ReportCapture.h"

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

using namespace Vek::Chart;
using namespace Vek::Chart::Library;
using Ogl::Library::Ring;
using Vek::Test::Lines;
using Vek::Test::PixelAt;
using Vek::Test::ReportCapture;
using Vector = Types::Vector3_Base<double>;
using Rect = Types::Viewport<0>;

namespace {

using Scope = Utility::Scoped<Rgl>;

class DrawablesCalls : public Vek::Test::RecordingFixture {
protected:
  template <class Drawable>
  Lines Drawn(const Drawable& p_drawable) {
    recorder.Clear();
    p_drawable(recorder.Handle());
    return recorder.Lines();
  }
};

class DrawablesPixels : public Vek::Test::PixelFixture {};

const std::string Black = "Color4d(0, 0, 0, 1)", Red = "Color4d(1, 0, 0, 1)";

Lines Corners(const char* p_mode, int p_left, int p_bottom, int p_right, int p_top) {
  const auto pixel = [](int p_x, int p_y) {
    return "Vertex2i(" + std::to_string(p_x) + ", " + std::to_string(p_y) + ")";
  };
  return {std::string("Begin(") + p_mode + ")",
          pixel(p_left, p_bottom),
          pixel(p_right, p_bottom),
          pixel(p_right, p_top),
          pixel(p_left, p_top),
          "End()"};
}
Lines Filled(int p_left, int p_bottom, int p_right, int p_top) {
  return Corners("GL_QUADS", p_left, p_bottom, p_right, p_top);
}
Lines Outlined(int p_left, int p_bottom, int p_right, int p_top) {
  return Corners("GL_LINE_LOOP", p_left, p_bottom, p_right, p_top);
}

Lines operator+(Lines p_a, const Lines& p_b) {
  p_a.insert(p_a.end(), p_b.begin(), p_b.end());
  return p_a;
}

/// What a quadric drawable at (1, 2, 3) sends; `p_number` is the number of its quadric.
Lines Quadric(int p_number, const std::string& p_style, const std::string& p_shape, const std::string& p_to = "1, 2, 3",
              const std::string& p_back = "-1, -2, -3") {
  const std::string quadric = "quadric" + std::to_string(p_number);
  return {"Translated(" + p_to + ")",
          "NewQuadric()",
          "QuadricDrawStyle(" + quadric + ", " + p_style + ")",
          "QuadricNormals(" + quadric + ", GLU_SMOOTH)",
          p_shape.substr(0, p_shape.find('(') + 1) + quadric + ", " + p_shape.substr(p_shape.find('(') + 1),
          "DeleteQuadric(" + quadric + ")",
          "Translated(" + p_back + ")"};
}

template <class Drawable>
Drawable At123() {
  Drawable drawable;
  drawable.position = {1, 2, 3};
  return drawable;
}

std::string QuadricReport(const std::string& p_class) {
  return "\"void*(obj)\" - void __cdecl Vek::Chart::Library::" + p_class +
         "::operator ()(const class Vek::Chart::Utility::Unscoped<class Vek::Chart::Ogl::Rgl> &) const";
}

} // namespace

TEST_F(DrawablesCalls, Box) {
  const struct {
    const char* name;
    Rect rect;
    QColor line, fill;
    Lines expected;
  } cases[] = {
      {"outline", {1, 2, 3, 4}, Qt::black, Qt::transparent, Lines{Black} + Outlined(1, 2, 4, 6)},
      {"fill", {1, 2, 3, 4}, Qt::transparent, Qt::red, Lines{Red} + Filled(1, 2, 4, 6)},
      {"fill, then outline",
       {1, 2, 3, 4},
       Qt::black,
       Qt::red,
       Lines{Red} + Filled(1, 2, 4, 6) + Lines{Black} + Outlined(1, 2, 4, 6)},
      {"nothing", {1, 2, 3, 4}, Qt::transparent, Qt::transparent, {}},
      {"truncated toward zero",
       {-1.9f, 1.75f, 3.8f, 1.5f},
       Qt::black,
       Qt::transparent,
       Lines{Black} + Outlined(-1, 1, 1, 3)},
      {"summed in double precision",
       {16777216, 0, 1, 1},
       Qt::black,
       Qt::transparent,
       Lines{Black} + Outlined(16777216, 0, 16777217, 1)},
      {"no number",
       {std::numeric_limits<float>::quiet_NaN(), -1e30f, 1e30f, 1e30f},
       Qt::black,
       Qt::transparent,
       Lines{Black} + Outlined(0, -2147483647 - 1, 0, 0)},
      {"hardly visible",
       {0, 0, 1, 1},
       QColor::fromRgba64(0, 0, 0, 1),
       Qt::transparent,
       Lines{"Color4d(0, 0, 0, 0.000015259021896696422)"} + Outlined(0, 0, 1, 1)},
  };
  for (const auto& c : cases) {
    Box box;
    box.rect = c.rect;
    box.lineColor = c.line;
    box.fillColor = c.fill;
    Lines drawn = Drawn(box);
    if (std::string(c.name) == "hardly visible") { // the number's form is not the point
      ASSERT_FALSE(drawn.empty()) << c.name;
      drawn[0] = c.expected[0];
    }
    EXPECT_EQ(drawn, c.expected) << c.name;
  }
  EXPECT_EQ(Drawn(Box()), Lines{Black} + Outlined(0, 0, 0, 0)) << "the defaults";
}

TEST_F(DrawablesCalls, FilledBox) {
  const Rect outer{10, 20, 50, 40}, inner{15, 26, 30, 20};
  const Lines outlines = Lines{Black} + Outlined(10, 20, 59, 59) + Lines{Black} + Outlined(15, 26, 44, 45);
  const struct {
    const char* name;
    std::int32_t mode;
    Rect outer, inner;
    Lines expected;
  } cases[] = {
      {"inner", 0, outer, inner, Lines{Red} + Filled(15, 26, 44, 45) + Lines{Black} + Outlined(15, 26, 44, 45)},
      {"other modes too", -7, outer, inner,
       Lines{Red} + Filled(15, 26, 44, 45) + Lines{Black} + Outlined(15, 26, 44, 45)},
      {"frame", 1, outer, inner,
       Lines{Red} + Filled(10, 20, 15, 60) + Lines{Red} + Filled(15, 20, 45, 26) + Lines{Red} + Filled(45, 20, 60, 60) +
           Lines{Red} + Filled(15, 46, 45, 60) + outlines},
      {"frame that touches on the left and above",
       1,
       outer,
       {10, 26, 30, 34},
       Lines{Red} + Filled(10, 20, 40, 26) + Lines{Red} + Filled(40, 20, 60, 60) + Lines{Black} +
           Outlined(10, 20, 59, 59) + Lines{Black} + Outlined(10, 26, 39, 59)},
      {"frame of nothing", 1, outer, outer,
       Lines{Black} + Outlined(10, 20, 59, 59) + Lines{Black} + Outlined(10, 20, 59, 59)},
      {"no numbers",
       1,
       outer,
       {std::numeric_limits<float>::quiet_NaN(), 26, 30, 34},
       Lines{Red} + Filled(0, 20, 0, 26) + Lines{Black} + Outlined(10, 20, 59, 59) + Lines{Black} +
           Outlined(0, 26, 0, 59)},
  };
  for (const auto& c : cases) {
    FilledBox box;
    box.mode = c.mode;
    box.outer = c.outer;
    box.inner = c.inner;
    box.fillColor = Qt::red;
    EXPECT_EQ(Drawn(box), c.expected) << c.name;
  }
  FilledBox clear;
  clear.mode = FilledBox::FillFrame;
  clear.outer = outer;
  clear.inner = inner;
  EXPECT_EQ(Drawn(clear), outlines) << "a transparent frame";
  clear.lineColor = Qt::transparent;
  EXPECT_EQ(Drawn(clear), Lines());
  EXPECT_EQ(Drawn(FilledBox()), Lines{Black} + Outlined(0, 0, -1, -1)) << "the defaults";
}

TEST_F(DrawablesCalls, Quadrics) {
  Cylinder cylinder = At123<Cylinder>();
  EXPECT_EQ(Drawn(cylinder), Quadric(1, "GLU_FILL", "Cylinder(1, 0.5, 1, 25, 25)"));
  cylinder.filled = false;
  cylinder.baseRadius = 3;
  cylinder.topRadius = 4;
  cylinder.height = 5;
  cylinder.slices = 6;
  cylinder.stacks = 7;
  EXPECT_EQ(Drawn(cylinder), Quadric(2, "GLU_LINE", "Cylinder(3, 4, 5, 6, 7)"));

  Sphere sphere = At123<Sphere>();
  EXPECT_EQ(Drawn(sphere), Quadric(3, "GLU_FILL", "Sphere(1, 25, 25)"));
  sphere.filled = false;
  sphere.radius = 2;
  sphere.slices = 5;
  sphere.stacks = 4;
  EXPECT_EQ(Drawn(sphere), Quadric(4, "GLU_LINE", "Sphere(2, 5, 4)"));
  EXPECT_EQ(Drawn(Sphere()), Quadric(5, "GLU_FILL", "Sphere(1, 25, 25)", "0, 0, 0", "-0, -0, -0"))
      << "translated always";

  Disk disk = At123<Disk>();
  EXPECT_EQ(Drawn(disk), Quadric(6, "GLU_FILL", "Disk(0, 0, 25, 1)"));
  disk.filled = false;
  disk.innerRadius = 2;
  disk.outerRadius = 3;
  disk.slices = 6;
  disk.loops = 4;
  disk.startAngle = 30;
  EXPECT_EQ(Drawn(disk), Quadric(7, "GLU_SILHOUETTE", "Disk(2, 3, 6, 4)"));
  disk.sweepAngle = 359.999;
  EXPECT_EQ(Drawn(disk), Quadric(8, "GLU_SILHOUETTE", "PartialDisk(2, 3, 6, 4, 30, 359.999)"));
  disk.sweepAngle = -360;
  EXPECT_EQ(Drawn(disk), Quadric(9, "GLU_SILHOUETTE", "PartialDisk(2, 3, 6, 4, 30, -360)"));
}

TEST_F(DrawablesCalls, Arrow) {
  Arrow3D arrow = At123<Arrow3D>();
  EXPECT_EQ(Drawn(arrow), Quadric(1, "GLU_FILL", "Cylinder(0.075, 0.075, 0.7, 8, 1)") +
                              Quadric(2, "GLU_FILL", "Cylinder(0.15, 0, 0.3, 8, 1)", "1, 2, 3.7", "-1, -2, -3.7"));
  arrow.length = 8;
  arrow.headFraction = 0.25;
  arrow.shaftRadius = 0.5;
  arrow.headRadius = 2;
  arrow.segments = 5;
  arrow.filled = false;
  EXPECT_EQ(Drawn(arrow), Quadric(3, "GLU_LINE", "Cylinder(0.5, 0.5, 6, 5, 1)") +
                              Quadric(4, "GLU_FILL", "Cylinder(2, 0, 2, 5, 1)", "1, 2, 9", "-1, -2, -9"));
}

TEST_F(DrawablesCalls, QuadricsThatCannotBeMadeAreReported) {
  const auto left = [this](const auto& p_drawable, std::size_t p_failing, const Lines& p_reports) {
    for (std::size_t i = 1; i <= p_failing; ++i)
      recorder.Fail("NewQuadric", i);
    const ReportCapture reports;
    const Lines drawn = Drawn(p_drawable);
    EXPECT_EQ(reports.Texts(), p_reports);
    return drawn;
  };
  const Lines nothing = {"Translated(1, 2, 3)", "NewQuadric()", "Translated(-1, -2, -3)"};
  EXPECT_EQ(left(At123<Cylinder>(), 1, {QuadricReport("Cylinder")}), nothing);
  EXPECT_EQ(left(At123<Disk>(), 1, {QuadricReport("Disk")}), nothing);
  EXPECT_EQ(left(At123<Sphere>(), 1, {QuadricReport("Sphere")}), nothing);
  EXPECT_EQ(left(At123<Arrow3D>(), 2, Lines(2, QuadricReport("Cylinder"))),
            (nothing + Lines{"Translated(1, 2, 3.7)", "NewQuadric()", "Translated(-1, -2, -3.7)"}));
}

TEST_F(DrawablesCalls, QuadricsCleanUpWhenDrawingThrows) {
  // A table that records, and whose shapes then throw.
  auto table = boost::make_shared<Ogl::GlFunctions>(*recorder.Handle().Object()->Functions());
  table->Cylinder = [](Ogl::GlQuadric*, double, double, double, int, int) { throw std::runtime_error("shape"); };
  table->Disk = [](Ogl::GlQuadric*, double, double, int, int) { throw std::runtime_error("shape"); };
  table->Sphere = [](Ogl::GlQuadric*, double, int, int) { throw std::runtime_error("shape"); };
  const Scope recording(recorder.Handle());
  const Utility::Unscoped<Rgl> throwing(boost::make_shared<Rgl>(table));
  int number = 0;
  const auto expect_clean = [&](const auto& p_drawable) {
    recorder.Clear();
    EXPECT_THROW(p_drawable(throwing), std::runtime_error);
    Lines expected = Quadric(++number, "GLU_FILL", "-()");
    expected.erase(expected.begin() + 4);
    EXPECT_EQ(recorder.Lines(), expected);
    EXPECT_EQ(throwing.Object()->ScopeDepth(), 0u);
  };
  expect_clean(At123<Cylinder>());
  expect_clean(At123<Disk>());
  expect_clean(At123<Sphere>());
  expect_clean(At123<Arrow3D>());
}

TEST_F(DrawablesCalls, Cuboid) {
  const Geometry geometry(recorder.Handle());
  Cuboid cuboid;
  EXPECT_EQ(cuboid.position.State(), 3u);
  EXPECT_EQ(cuboid.size.State(), 3u);
  EXPECT_EQ(cuboid.filled.State(), 3u);
  EXPECT_EQ(cuboid.inverseSize, Vector(0, 0, 0));
  cuboid.position = Vector(1, 2, 3);
  cuboid.size = Vector(2, 4, 0.5);
  const auto drawn = [&] {
    recorder.Clear();
    cuboid(recorder.Handle(), geometry);
    return recorder.Lines();
  };
  const auto expected = [](const std::string& p_mode, const std::string& p_size, const std::string& p_inverse) {
    return Lines{"PushAttrib(GL_POLYGON_BIT)",
                 "PolygonMode(GL_FRONT_AND_BACK, " + p_mode + ")",
                 "Translated(1, 2, 3)",
                 "Scaled(" + p_size + ")",
                 "CallList(2001)",
                 "Scaled(" + p_inverse + ")",
                 "Translated(-1, -2, -3)",
                 "PopAttrib()"};
  };
  EXPECT_EQ(drawn(), expected("GL_FILL", "2, 4, 0.5", "0.5, 0.25, 2"));
  EXPECT_EQ(cuboid.inverseSize, Vector(0.5, 0.25, 2));
  EXPECT_EQ(cuboid.size.State(), 2u);
  EXPECT_EQ(cuboid.position.State(), 3u) << "never used up";

  cuboid.inverseSize = {7, 7, 7}; // a cache that is not refreshed without a change
  cuboid.filled = false;
  EXPECT_EQ(drawn(), expected("GL_LINE", "2, 4, 0.5", "7, 7, 7"));
  cuboid.size = Vector(2, 4, 0);
  EXPECT_EQ(drawn(), expected("GL_LINE", "2, 4, 0", "0.5, 0.25, inf"));
}

TEST(Ring, IsAClosedSolidWoundOutward) {
  const Ring ring;
  ASSERT_EQ(ring.vertices.size(), 144u);
  ASSERT_EQ(ring.indices.size(), 3u * 288);
  EXPECT_EQ(ring.thickness.State(), 1u);
  EXPECT_EQ(ring.style, 1);
  constexpr double turn = 2 * 3.14159265358979323846;
  for (std::size_t i = 0; i < ring.vertices.size(); ++i) {
    const double angle = turn / 36 * static_cast<double>(i / 4), radius = i % 2 == 0 ? 0.45 : 0.5;
    EXPECT_NEAR(ring.vertices[i].x, radius * std::cos(angle), 1e-12) << i;
    EXPECT_NEAR(ring.vertices[i].y, radius * std::sin(angle), 1e-12) << i;
    EXPECT_NEAR(ring.vertices[i].z, i % 4 < 2 ? 0.05 : -0.05, 1e-12) << i;
  }
  EXPECT_EQ(std::vector<std::uint32_t>(ring.indices.begin(), ring.indices.begin() + 24),
            (std::vector<std::uint32_t>{0, 4, 2, 2, 4, 6, 0, 1, 5, 5, 4, 0, 1, 7, 5, 1, 3, 7, 2, 7, 3, 2, 6, 7}));
  EXPECT_EQ(std::vector<std::uint32_t>(ring.indices.end() - 24, ring.indices.end()),
            (std::vector<std::uint32_t>{140, 0, 142, 142, 0,   2, 140, 141, 1,   1,   0, 140,
                                        141, 3, 1,   141, 143, 3, 142, 3,   143, 142, 2, 3}));

  std::set<std::pair<std::uint32_t, std::uint32_t>> edges;
  double volume = 0;
  for (std::size_t i = 0; i < ring.indices.size(); i += 3) {
    for (std::size_t k = 0; k < 3; ++k)
      EXPECT_TRUE(edges.emplace(ring.indices[i + k], ring.indices[i + (k + 1) % 3]).second) << "triangle " << i / 3;
    volume += Dot(ring.vertices[ring.indices[i]],
                  Cross(ring.vertices[ring.indices[i + 1]], ring.vertices[ring.indices[i + 2]])) /
              6;
  }
  for (const auto& [from, to] : edges)
    EXPECT_EQ(edges.count({to, from}), 1u);
  // Two prisms over regular polygons of 36 corners: area n / 2 r² sin(2π / n).
  EXPECT_NEAR(volume, 18 * std::sin(turn / 36) * (0.25 - 0.2025) * 0.1, 1e-12);
}

TEST_F(DrawablesCalls, RingSendsItsMeshWithTheNormalsOfItsFaces) {
  const Ring ring;
  const Lines lines = Drawn(ring);
  ASSERT_EQ(lines.size(), 2u + 2 * 864) << "no translation at the origin";
  EXPECT_EQ(lines.front(), "Begin(GL_TRIANGLES)");
  EXPECT_EQ(lines.back(), "End()");
  Ogl::RecordingGl other;
  {
    const Scope gl(other.Handle());
    gl->Begin(RGL_TRIANGLES);
    for (std::size_t k = 0; k < ring.indices.size(); ++k) {
      const Vector& v = ring.vertices[ring.indices[k]];
      const double length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); // z counts too
      const Vector normals[4] = {{-v.x / length, -v.y / length, -v.z / length},
                                 {0, 0, 1},
                                 {v.x / length, v.y / length, v.z / length},
                                 {0, 0, -1}};
      gl->Normal(normals[k / 6 % 4]);
      gl->Vertex(v);
    }
    gl->End();
  }
  EXPECT_EQ(lines, other.Lines());
}

TEST_F(DrawablesCalls, RingMovesBackBeforeEnd) {
  Ring ring = At123<Ring>();
  ring.indices.resize(24);
  const Lines lines = Drawn(ring);
  ASSERT_EQ(lines.size(), 52u);
  EXPECT_EQ(lines[0], "Translated(1, 2, 3)");
  EXPECT_EQ(lines[1], "Begin(GL_TRIANGLES)");
  EXPECT_EQ(lines[50], "Translated(-1, -2, -3)");
  EXPECT_EQ(lines[51], "End()");
  EXPECT_EQ(recorder.TakeComplaints(), Lines{"Translated: not allowed between Begin and End"});
}

TEST_F(DrawablesCalls, RingReportsABrokenMesh) {
  const std::string signature = "void __cdecl Vek::Chart::Ogl::Library::Ring::operator ()(const class "
                                "Vek::Chart::Utility::Unscoped<class Vek::Chart::Ogl::Rgl> &) const";
  Ring ring;
  ring.indices = {0, 1, 2, 144, 0xFFFFFFFFU};
  const ReportCapture reports;
  EXPECT_EQ(Drawn(ring).size(), 2u + 2 * 3);
  const Lines texts = reports.Texts();
  ASSERT_EQ(texts.size(), 3u);
  EXPECT_EQ(texts[0], "\"(indices.size() % 3) == 0\" - " + signature);
  EXPECT_NE(texts[1].find("0 <= indices[k] < vertices.size()"), std::string::npos);
  recorder.TakeComplaints(); // of the two vertices too few
  ring.indices.clear();
  EXPECT_EQ(Drawn(ring), (Lines{"Begin(GL_TRIANGLES)", "End()"}));
}

// On the rasteriser

TEST_F(DrawablesPixels, BoxesToThePixel) {
  Scope gl(Handle());
  // Powers of two, so that window coordinates are exact where lines meet the centres of pixels.
  const Rect viewport(0, 0, 64, 32);
  gl->Viewport(viewport);
  const auto pixels = gl->PixelProjection(viewport);
  // Fills meet the corners of pixels; outlines are moved close to their centres.
  const auto rows = [](const std::function<void()>& p_draw, int p_width, int p_height) {
    Scope(Handle())->Clear(RGL_COLOR_BUFFER_BIT);
    p_draw();
    const QImage image = Image();
    Lines found;
    for (int y = p_height - 1; y >= 0; --y) {
      found.emplace_back();
      for (int x = 0; x < p_width; ++x) {
        const QRgb pixel = PixelAt(image, x, y);
        found.back() += pixel == QColor(Qt::red).rgba()    ? 'f'
                        : pixel == QColor(Qt::blue).rgba() ? 'l'
                        : qAlpha(pixel)                    ? '?'
                                                           : '.';
      }
    }
    return found;
  };
  Box box;
  box.rect = {2.9f, 1.2f, 5.1f, 3}; // to (8, 4.2)
  box.lineColor = Qt::transparent;
  box.fillColor = Qt::red;
  EXPECT_EQ(rows([&] { box(Handle()); }, 10, 6),
            (Lines{"..........", "..........", "..ffffff..", "..ffffff..", "..ffffff..", ".........."}));

  FilledBox frame;
  frame.mode = FilledBox::FillFrame;
  frame.outer = {1, 1, 9, 6};
  frame.inner = {3, 2, 4, 3};
  frame.lineColor = Qt::transparent;
  frame.fillColor = Qt::red;
  EXPECT_EQ(rows([&] { frame(Handle()); }, 11, 8), (Lines{"...........", ".fffffffff.", ".fffffffff.", ".ff....fff.",
                                                          ".ff....fff.", ".ff....fff.", ".fffffffff.", "..........."}));

  frame.lineColor = Qt::blue;
  gl->Translate({0.375, 0.375, 0});
  const Lines outlined = rows([&] { frame(Handle()); }, 11, 8);
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 11; ++x) {
      const bool on_outer = x >= 1 && x <= 9 && y >= 1 && y <= 6 && (x == 1 || x == 9 || y == 1 || y == 6);
      const bool on_inner = x >= 3 && x <= 6 && y >= 2 && y <= 4 && (x == 3 || x == 6 || y == 2 || y == 4);
      EXPECT_EQ(outlined[static_cast<std::size_t>(7 - y)][static_cast<std::size_t>(x)] == 'l', on_outer || on_inner)
          << x << ", " << y << ": the outlines lie in the rectangles' last columns and rows";
    }
}

TEST_F(DrawablesPixels, ACuboidIsStretchedAroundItsPosition) {
  Scope gl(Handle());
  const Geometry geometry(Handle());
  const auto pixels = gl->PixelProjection({0, 0, FrameSize.width, FrameSize.height});
  gl->Color(Qt::red);
  Cuboid cuboid;
  cuboid.position = Vector(20, 10, 0);
  cuboid.size = Vector(16, 8, 1);
  cuboid(Handle(), geometry);
  QImage expected(FrameSize.width, FrameSize.height, QImage::Format_ARGB32);
  expected.fill(Qt::transparent);
  for (int y = 6; y < 14; ++y)
    for (int x = 12; x < 28; ++x)
      expected.setPixelColor(x, FrameSize.height - 1 - y, Qt::red);
  EXPECT_TRUE(Vek::Test::SameImage(Image(), expected));
}

TEST_F(DrawablesPixels, ARingAwayFromTheOriginRaisesAnError) {
  Scope gl(Handle());
  gl->Color(Qt::red);
  Ring ring;
  ring(Handle());
  EXPECT_EQ(gl->GetError(), static_cast<Ogl::GlEnum>(RGL_NO_ERROR));
  EXPECT_EQ(qAlpha(PixelAt(Image(), FrameSize.width / 2, FrameSize.height / 2)), 0) << "its hole";
  EXPECT_NE(qAlpha(PixelAt(Image(), FrameSize.width * 47 / 64 + 1, FrameSize.height / 2)), 0) << "its body";
  ring.position = {0.25, 0, 0};
  ring(Handle());
  EXPECT_EQ(gl->GetError(), static_cast<Ogl::GlEnum>(RGL_INVALID_OPERATION));
  EXPECT_EQ(gl->GetError(), static_cast<Ogl::GlEnum>(RGL_NO_ERROR));
  double matrix[16];
  gl->GetDoublev(RGL_MODELVIEW_MATRIX, matrix);
  EXPECT_EQ(matrix[12], 0.25) << "the matrix stays moved";
}

TEST_F(DrawablesPixels, ADefaultDiskShowsNothing) {
  Disk()(Handle());
  EXPECT_EQ(Vek::Test::Map(Image(), Qt::white).find_first_not_of(".\n"), std::string::npos);
}

/// The GL state before and after each drawable: exactly what its header names has changed.
TEST_F(DrawablesPixels, LeaveTheStateAsTheirHeadersSay) {
  Scope gl(Handle());
  const Geometry geometry(Handle());
  QImage image(5, 3, QImage::Format_ARGB32);
  image.fill(Qt::red);
  const boost::shared_ptr<Texture> texture(new Texture(image, gl)), layer(new Texture(image, gl));
  (*texture)(gl, RGL_TEXTURE0); // uploads
  (*layer)(gl, RGL_TEXTURE0);

  const struct {
    const char* name;
    Ogl::GlEnum token;
    int count;
  } variables[] = {
      {"current colour", RGL_CURRENT_COLOR, 4},
      {"current normal", RGL_CURRENT_NORMAL, 3},
      {"texture coordinate", RGL_CURRENT_TEXTURE_COORDS, 4},
      {"model view", RGL_MODELVIEW_MATRIX, 16},
      {"projection", RGL_PROJECTION_MATRIX, 16},
      {"matrix mode", RGL_MATRIX_MODE, 1},
      {"matrix depth", RGL_MODELVIEW_STACK_DEPTH, 1},
      {"attribute depth", RGL_ATTRIB_STACK_DEPTH, 1},
      {"polygon mode", RGL_POLYGON_MODE, 2},
      {"depth function", RGL_DEPTH_FUNC, 1},
      {"depth mask", RGL_DEPTH_WRITEMASK, 1},
      {"blend function", RGL_BLEND_SRC_RGB, 1},
      {"blend function", RGL_BLEND_DST_RGB, 1},
      {"blend function", RGL_BLEND_SRC_ALPHA, 1},
      {"blend function", RGL_BLEND_DST_ALPHA, 1},
      {"active texture", RGL_ACTIVE_TEXTURE, 1},
      {"bound texture", RGL_TEXTURE_BINDING_2D, 1},
      {"line width", RGL_LINE_WIDTH, 1},
      {"shade model", RGL_SHADE_MODEL, 1},
      {"unpack alignment", RGL_UNPACK_ALIGNMENT, 1},
      {"enabled", RGL_BLEND, 1},
      {"enabled", RGL_DEPTH_TEST, 1},
      {"enabled", RGL_TEXTURE_2D, 1},
      {"enabled", RGL_TEXTURE_GEN_S, 1},
      {"enabled", RGL_TEXTURE_GEN_T, 1},
      {"enabled", RGL_LIGHTING, 1},
      {"enabled", RGL_CULL_FACE, 1},
      {"enabled", RGL_LINE_SMOOTH, 1},
      {"enabled", RGL_NORMALIZE, 1},
      {"enabled", RGL_POLYGON_STIPPLE, 1},
  };
  const auto state = [&] {
    std::vector<std::vector<double>> values;
    for (const auto& variable : variables) {
      values.emplace_back(16);
      gl->GetDoublev(variable.token, values.back().data());
    }
    return values;
  };

  const Rect rect(3, 2, 20, 10);
  const struct {
    const char* name;
    std::function<void()> draw;
    std::set<std::string> changed;
  } cases[] = {
      {"Box",
       [&] {
         Box box;
         box.rect = rect;
         box.fillColor = Qt::red;
         box(Handle());
       },
       {"current colour"}},
      {"invisible Box",
       [&] {
         Box box;
         box.lineColor = Qt::transparent;
         box(Handle());
       },
       {}},
      {"FilledBox",
       [&] {
         FilledBox box;
         box.mode = 1;
         box.outer = rect;
         box(Handle());
       },
       {"current colour"}},
      {"Cylinder",
       [&] {
         auto c = At123<Cylinder>();
         c.filled = false;
         c(Handle());
       },
       {"current normal"}},
      {"Disk",
       [&] {
         auto d = At123<Disk>();
         d.outerRadius = 1;
         d(Handle());
       },
       {"current normal"}},
      {"Sphere", [&] { At123<Sphere>()(Handle()); }, {"current normal"}},
      {"Arrow3D",
       [&] {
         Arrow3D a;
         a.headFraction = 0.25;
         a.position = {1, 2, 3};
         a(Handle());
       },
       {"current normal"}},
      {"Cuboid",
       [&] {
         Cuboid c;
         c.position = Vector(1, 2, 3);
         c.size = Vector(2, 4, 0.5);
         c.filled = false;
         c(Handle(), geometry);
       },
       {"current normal"}},
      {"Ring", [&] { Ring()(Handle()); }, {"current normal"}},
      {"TexturedCube", [&] { TexturedCube(0)(gl); }, {"texture coordinate"}},
      {"TexturedCube on another unit", [&] { TexturedCube(1)(gl); }, {}},
      {"Geometry::Cube", [&] { geometry.Cube(gl); }, {"current normal"}},
      {"Geometry::Sphere", [&] { geometry.Sphere(gl); }, {"current normal"}},
      {"Geometry::Cylinder", [&] { geometry.Cylinder(gl); }, {"current normal"}},
      {"Geometry::Cone", [&] { geometry.Cone(gl); }, {"current normal"}},
      {"Geometry::Disk", [&] { geometry.Disk(gl); }, {"current normal"}},
      {"Geometry::CircularArrow", [&] { geometry.CircularArrow(gl); }, {"current normal"}},
      {"Geometry::Ring", [&] { geometry.Ring(gl); }, {}},
      {"Geometry::Voxel", [&] { geometry.Voxel(gl); }, {"texture coordinate"}},
      {"TexturedQuad without a size", [&] { TexturedQuad()(Handle(), *texture); }, {}},
      {"TexturedQuad",
       [&] {
         TexturedQuad quad;
         quad.rect = rect;
         quad(Handle(), *texture);
       },
       {"current colour", "texture coordinate"}},
      {"TexturedQuad of layers",
       [&] {
         TexturedQuad quad;
         quad.rect = rect;
         quad.border = 1;
         quad(Handle(), {texture, layer});
       },
       {"current colour", "texture coordinate"}},
      {"TexturedQuad of blended layers",
       [&] {
         layer->environment = Texture::Decal;
         TexturedQuad quad;
         quad.rect = rect;
         quad(Handle(), {texture, layer});
       },
       {"current colour", "texture coordinate", "blend function"}},
      {"TexturedQuad that uploads",
       [&] {
         const Texture fresh(image, gl);
         TexturedQuad quad;
         quad.rect = rect;
         quad(Handle(), fresh);
       },
       {"current colour", "texture coordinate", "unpack alignment"}},
  };
  const auto bound = gl->GenTexture();
  for (const auto& c : cases) {
    // A state that differs from what any drawable would set.
    const auto attributes = gl->PushAttribScope(RGL_ALL_ATTRIB_BITS);
    gl->ActiveTexture(RGL_TEXTURE0);
    gl->Bind(bound, Rgl::Sampler2D);
    gl->Disable(RGL_TEXTURE_2D);
    gl->Enable(RGL_TEXTURE_GEN_S);
    gl->Enable(RGL_LIGHTING);
    gl->PolygonMode(RGL_FRONT_AND_BACK, RGL_POINT);
    gl->DepthFunc(RGL_GEQUAL);
    gl->BlendFuncSeparate(RGL_DST_ALPHA, RGL_SRC_COLOR, RGL_ONE_MINUS_DST_ALPHA, RGL_SRC_ALPHA);
    gl->PixelStorei(RGL_UNPACK_ALIGNMENT, 8);
    gl->ShadeModel(RGL_FLAT);
    gl->Color(QColor(255, 127, 63, 31));
    gl->Normal(0.6, 0, 0.8);
    gl->TexCoord(0.25, 0.125);
    gl->MatrixMode(RGL_MODELVIEW);
    gl->LoadIdentity();
    gl->Translate({0.5, 0.25, 8});

    const auto before = state();
    c.draw();
    const auto after = state();
    std::set<std::string> changed;
    for (std::size_t i = 0; i < before.size(); ++i)
      if (before[i] != after[i])
        changed.insert(variables[i].name);
    EXPECT_EQ(changed, c.changed) << c.name;
    EXPECT_TRUE(gl->CheckError(c.name));
  }
  gl->PixelStorei(RGL_UNPACK_ALIGNMENT, 4);
}
