#include "library/Arrow3D.h"
#include "library/Box.h"
#include "library/Cuboid.h"
#include "library/Cylinder.h"
#include "library/Disk.h"
#include "library/FilledBox.h"
#include "library/Geometry.h"
#include "library/Ring.h"
#include "library/Sphere.h"
#include "tests/support/Test.h"

using Ogl::Library::Ring;
using Vector = Types::Vector3_Base<double>;
using Rect = Types::Viewport<0>;

namespace {

class DrawablesCalls : public RecordingFixture {
protected:
  template <class Drawable>
  Lines Drawn(const Drawable& p_drawable) {
    recorder.Clear();
    p_drawable(recorder.Handle());
    return recorder.Lines();
  }
};

/// A red face or a black outline.
Lines Corners(const std::string& p_begin, int p_left, int p_bottom, int p_right, int p_top) {
  std::string text = p_begin;
  for (const auto& [x, y] : {std::pair(p_left, p_bottom), {p_right, p_bottom}, {p_right, p_top}, {p_left, p_top}})
    text += "Vertex2i(" + std::to_string(x) + ", " + std::to_string(y) + "); ";
  return Calls(text + "End()");
}
Lines Fill(int p_left, int p_bottom, int p_right, int p_top) {
  return Corners("Color4d(1, 0, 0, 1); Begin(GL_QUADS); ", p_left, p_bottom, p_right, p_top);
}
Lines Outline(int p_left, int p_bottom, int p_right, int p_top) {
  return Corners("Color4d(0, 0, 0, 1); Begin(GL_LINE_LOOP); ", p_left, p_bottom, p_right, p_top);
}

/// The calls of a drawable that uses one quadric.
Lines Quadric(int p_number, const std::string& p_style, const std::string& p_shape, const std::string& p_to = "1, 2, 3",
              const std::string& p_back = "-1, -2, -3") {
  const std::string quadric = "quadric" + std::to_string(p_number);
  return Calls("Translated(" + p_to + "); NewQuadric(); QuadricDrawStyle(" + quadric + ", " + p_style +
               "); QuadricNormals(" + quadric + ", GLU_SMOOTH); " + p_shape.substr(0, p_shape.find('(') + 1) + quadric +
               ", " + p_shape.substr(p_shape.find('(') + 1) + "; DeleteQuadric(" + quadric + "); Translated(" + p_back +
               ")");
}

/// A drawable with some fields set: With(drawable, field, value, field, value, ...).
template <class Drawable>
Drawable With(const Drawable& p_drawable) {
  return p_drawable;
}
template <class Drawable, class Field, class Value, class... More>
Drawable With(Drawable p_drawable, Field p_field, const Value& p_value, const More&... p_more) {
  p_drawable.*p_field = static_cast<std::decay_t<decltype(p_drawable.*p_field)>>(p_value);
  return With(p_drawable, p_more...);
}

template <class Drawable, class... Settings>
Drawable At123(const Settings&... p_settings) {
  return With(Drawable(), &Drawable::position, Vector(1, 2, 3), p_settings...);
}

} // namespace

TEST_F(DrawablesCalls, Box) {
  const Rect rect(1, 2, 3, 4);
  const std::tuple<const char*, Rect, QColor, QColor, Lines> cases[] = {
      {"fill", rect, Qt::transparent, Qt::red, Fill(1, 2, 4, 6)},
      {"fill, then outline", rect, Qt::black, Qt::red, Fill(1, 2, 4, 6) + Outline(1, 2, 4, 6)},
      {"nothing", rect, Qt::transparent, Qt::transparent, {}},
      {"truncated toward zero", {-1.9f, 1.75f, 3.8f, 1.5f}, Qt::black, Qt::transparent, Outline(-1, 1, 1, 3)},
      {"in double precision", {16777216, 0, 1, 1}, Qt::black, Qt::transparent, Outline(16777216, 0, 16777217, 1)},
      {"no number", {NAN, -1e30f, 1e30f, 1e30f}, Qt::black, Qt::transparent, Outline(0, -2147483647 - 1, 0, 0)},
  };
  for (const auto& [name, area, line, fill, expected] : cases)
    EXPECT_EQ(Drawn(With(Box(), &Box::rect, area, &Box::lineColor, line, &Box::fillColor, fill)), expected) << name;
  EXPECT_EQ(Drawn(Box()), Outline(0, 0, 0, 0)) << "the defaults";
  const Box faint = With(Box(), &Box::lineColor, QColor::fromRgba64(0, 0, 0, 1));
  EXPECT_EQ(Drawn(faint).size(), 7u) << "hardly visible is visible";
}

TEST_F(DrawablesCalls, FilledBox) {
  const Rect outer(10, 20, 50, 40), inner(15, 26, 30, 20), touching(10, 26, 30, 34), broken(NAN, 26, 30, 34);
  const Lines outlines = Outline(10, 20, 59, 59) + Outline(15, 26, 44, 45);
  const Lines inside = Fill(15, 26, 44, 45) + Outline(15, 26, 44, 45);
  const std::tuple<const char*, std::int32_t, Rect, QColor, QColor, Lines> cases[] = {
      {"inner", 0, inner, Qt::black, Qt::red, inside},
      {"other modes too", -7, inner, Qt::black, Qt::red, inside},
      {"frame", 1, inner, Qt::black, Qt::red,
       Fill(10, 20, 15, 60) + Fill(15, 20, 45, 26) + Fill(45, 20, 60, 60) + Fill(15, 46, 45, 60) + outlines},
      {"frame that touches on the left and above", 1, touching, Qt::black, Qt::red,
       Fill(10, 20, 40, 26) + Fill(40, 20, 60, 60) + Outline(10, 20, 59, 59) + Outline(10, 26, 39, 59)},
      {"frame of nothing", 1, outer, Qt::black, Qt::red, Outline(10, 20, 59, 59) + Outline(10, 20, 59, 59)},
      {"no numbers", 1, broken, Qt::black, Qt::red,
       Fill(0, 20, 0, 26) + Outline(10, 20, 59, 59) + Outline(0, 26, 0, 59)},
      {"transparent frame", 1, inner, Qt::black, Qt::transparent, outlines},
      {"nothing visible", 1, inner, Qt::transparent, Qt::transparent, {}},
  };
  using F = FilledBox;
  for (const auto& [name, mode, within, line, fill, expected] : cases)
    EXPECT_EQ(
        Drawn(With(F(), &F::mode, mode, &F::outer, outer, &F::inner, within, &F::lineColor, line, &F::fillColor, fill)),
        expected)
        << name;
  EXPECT_EQ(Drawn(FilledBox()), Outline(0, 0, -1, -1)) << "the defaults";
}

TEST_F(DrawablesCalls, Quadrics) {
  using C = Cylinder;
  EXPECT_EQ(Drawn(At123<C>()), Quadric(1, "GLU_FILL", "Cylinder(1, 0.5, 1, 25, 25)"));
  EXPECT_EQ(Drawn(At123<C>(&C::filled, false, &C::baseRadius, 3, &C::topRadius, 4, &C::height, 5, &C::slices, 6,
                           &C::stacks, 7)),
            Quadric(2, "GLU_LINE", "Cylinder(3, 4, 5, 6, 7)"));

  EXPECT_EQ(Drawn(Sphere()), Quadric(3, "GLU_FILL", "Sphere(1, 25, 25)", "0, 0, 0", "-0, -0, -0"));
  EXPECT_EQ(Drawn(At123<Sphere>(&Sphere::filled, false, &Sphere::radius, 2, &Sphere::slices, 5, &Sphere::stacks, 4)),
            Quadric(4, "GLU_LINE", "Sphere(2, 5, 4)"));

  EXPECT_EQ(Drawn(At123<Disk>()), Quadric(5, "GLU_FILL", "Disk(0, 0, 25, 1)"));
  const Disk disk = At123<Disk>(&Disk::filled, false, &Disk::innerRadius, 2, &Disk::outerRadius, 3, &Disk::slices, 6,
                                &Disk::loops, 4, &Disk::startAngle, 30);
  EXPECT_EQ(Drawn(disk), Quadric(6, "GLU_SILHOUETTE", "Disk(2, 3, 6, 4)"));
  EXPECT_EQ(Drawn(With(disk, &Disk::sweepAngle, 359.999)),
            Quadric(7, "GLU_SILHOUETTE", "PartialDisk(2, 3, 6, 4, 30, 359.999)"));
  EXPECT_EQ(Drawn(With(disk, &Disk::sweepAngle, -360)),
            Quadric(8, "GLU_SILHOUETTE", "PartialDisk(2, 3, 6, 4, 30, -360)"));

  using A = Arrow3D;
  EXPECT_EQ(Drawn(At123<A>()),
            Quadric(9, "GLU_FILL", "Cylinder(0.075, 0.075, 0.7, 8, 1)") +
                Quadric(10, "GLU_FILL", "Cylinder(0.15, 0, 0.3, 8, 1)", "1, 2, 3.7", "-1, -2, -3.7"));
  EXPECT_EQ(Drawn(At123<A>(&A::length, 8, &A::headFraction, 0.25, &A::shaftRadius, 0.5, &A::headRadius, 2, &A::segments,
                           5, &A::filled, false)),
            Quadric(11, "GLU_LINE", "Cylinder(0.5, 0.5, 6, 5, 1)") +
                Quadric(12, "GLU_FILL", "Cylinder(2, 0, 2, 5, 1)", "1, 2, 9", "-1, -2, -9"));
}

TEST_F(DrawablesCalls, QuadricsThatFailAreReportedAndLeaveNothingBehind) {
  auto table = boost::make_shared<Ogl::GlFunctions>(*recorder.Handle().Object()->Functions());
  table->QuadricNormals = [](Ogl::GlQuadric*, Ogl::GlEnum) { throw std::runtime_error("of the host"); };
  const Utility::Unscoped<Rgl> throwing(boost::make_shared<Rgl>(table));
  const Scope recording(recorder.Handle());
  const Lines nothing = Calls("Translated(1, 2, 3); NewQuadric(); Translated(-1, -2, -3)");
  const std::pair<std::string, std::function<void(const Utility::Unscoped<Rgl>&)>> cases[] = {
      {"Cylinder", At123<Cylinder>()},
      {"Disk", At123<Disk>()},
      {"Sphere", At123<Sphere>()},
      {"Cylinder", At123<Arrow3D>()}, // whose head is drawn all the same
  };
  for (const auto& [name, draw] : cases) {
    recorder.Fail("NewQuadric");
    const ReportCapture reports;
    Lines lines = Drawn(draw);
    lines.resize(3);
    EXPECT_EQ(lines, nothing);
    EXPECT_EQ(reports.Texts(),
              Lines{"\"void*(obj)\" - void __cdecl Vek::Chart::Library::" + name +
                    "::operator ()(const class Vek::Chart::Utility::Unscoped<class Vek::Chart::Ogl::Rgl> &) const"});
    recorder.Clear();
    EXPECT_THROW(draw(throwing), std::runtime_error);
    EXPECT_EQ(recorder.LinesWithout({"QuadricDrawStyle", "DeleteQuadric"}), nothing);
    EXPECT_EQ(throwing.Object()->ScopeDepth(), 0u);
  }
}

TEST_F(DrawablesCalls, Cuboid) {
  const Geometry geometry(recorder.Handle());
  auto cuboid = At123<Cuboid>(&Cuboid::size, Vector(2, 4, 0.5));
  const auto drawn = [&] { return Drawn([&](const auto& p_gl) { cuboid(p_gl, geometry); }); };
  const auto expected = [](const std::string& p_mode, const std::string& p_size, const std::string& p_inverse) {
    return Calls("PushAttrib(GL_POLYGON_BIT); PolygonMode(GL_FRONT_AND_BACK, " + p_mode +
                 "); Translated(1, 2, 3); Scaled(" + p_size + "); CallList(2001); Scaled(" + p_inverse +
                 "); Translated(-1, -2, -3); PopAttrib()");
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

TEST(Ring, HasTheMeshOfATube) {
  const Ring ring;
  ASSERT_EQ(ring.vertices.size(), 144u);
  constexpr double Turn = 2 * 3.14159265358979323846;
  for (std::size_t i = 0; i < ring.vertices.size(); ++i) {
    const double angle = Turn / 36 * static_cast<double>(i / 4), radius = i % 2 == 0 ? 0.45 : 0.5;
    EXPECT_NEAR(ring.vertices[i].x, radius * std::cos(angle), 1e-12) << i;
    EXPECT_NEAR(ring.vertices[i].y, radius * std::sin(angle), 1e-12) << i;
    EXPECT_NEAR(ring.vertices[i].z, i % 4 < 2 ? 0.05 : -0.05, 1e-12) << i;
  }
  // Inside, front, outside and back: four vertices a segment, the next segment's four following them round.
  const std::uint32_t first[] = {0, 4, 2, 2, 4, 6, 0, 1, 5, 5, 4, 0, 1, 7, 5, 1, 3, 7, 2, 7, 3, 2, 6, 7};
  std::vector<std::uint32_t> expected;
  for (std::uint32_t segment = 0; segment < 36; ++segment)
    for (const std::uint32_t index : first)
      expected.push_back((index + 4 * segment) % 144);
  EXPECT_EQ(ring.indices, expected);
}

TEST_F(DrawablesCalls, RingDrawsItsMesh) {
  const Ring ring = At123<Ring>();
  RecordingGl other;
  {
    const Scope gl(other.Handle());
    gl->Translate({1, 2, 3});
    gl->Begin(RGL_TRIANGLES);
    for (std::size_t k = 0; k < ring.indices.size(); ++k) {
      const Vector& v = ring.vertices[ring.indices[k]];
      const Vector out = v / std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z); // z counts too
      const Vector normals[4] = {{-out.x, -out.y, -out.z}, {0, 0, 1}, out, {0, 0, -1}};
      gl->Normal(normals[k / 6 % 4]);
      gl->Vertex(v);
    }
    gl->Translate({-1, -2, -3});
    gl->End();
  }
  EXPECT_EQ(Drawn(ring), other.Lines());
  EXPECT_EQ(recorder.TakeComplaints(), Lines{"Translated: not allowed between Begin and End"});
}

TEST_F(DrawablesCalls, RingReportsABrokenMesh) {
  const std::string signature = "void __cdecl Vek::Chart::Ogl::Library::Ring::operator ()(const class "
                                "Vek::Chart::Utility::Unscoped<class Vek::Chart::Ogl::Rgl> &) const";
  Ring ring;
  ring.indices = {0, 1, 2, 144, 0xFFFFFFFFU};
  {
    const ReportCapture reports;
    EXPECT_EQ(Drawn(ring).size(), 2u + 2 * 3);
    const Lines texts = reports.Texts();
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(texts[0], "\"(indices.size() % 3) == 0\" - " + signature);
    EXPECT_NE(texts[1].find("0 <= indices[k] < vertices.size()"), std::string::npos);
  }
  recorder.TakeComplaints(); // of the two vertices too few
  ring.indices.clear();
  EXPECT_EQ(Drawn(ring), (Lines{"Begin(GL_TRIANGLES)", "End()"}));

  const ReportCapture throwing(true);
  ring = At123<Ring>();
  ring.indices = {0, 1, 144};
  EXPECT_THROW(Drawn(ring), std::runtime_error);
  EXPECT_EQ(recorder.LinesOf({"Begin", "Translated", "End"}),
            Calls("Translated(1, 2, 3); Begin(GL_TRIANGLES); Translated(-1, -2, -3); End()"));
  recorder.TakeComplaints(); // of two vertices, and of moving back inside the pair
}
