#include "platform/types/Angle.h"
#include "platform/types/ColorChannels.h"
#include "platform/types/Geometry.h"
#include "platform/types/Matrix.h"
#include "platform/types/Property.h"
#include "platform/types/Range.h"
#include "platform/types/Transformation.h"
#include "platform/types/Vector.h"
#include "tests/support/Test.h"

#include <ostream>

using namespace Vek::Chart::Types;

using Vector2 = Vector2_Base<double>;
using Vector3 = Vector3_Base<double>;
using Vector4 = Vector4_Base<double>;
using Box = BoundingBox_Base<double>;

namespace Vek::Chart::Types {

std::ostream& operator<<(std::ostream& p_stream, const Vector3_Base<double>& p_vector) {
  return p_stream << '(' << p_vector.x << ", " << p_vector.y << ", " << p_vector.z << ')';
}

} // namespace Vek::Chart::Types

namespace {

void ExpectNear(const Vector3& p_a, const Vector3& p_b) {
  EXPECT_LE(Length(p_a - p_b), 1e-12) << p_a << " and " << p_b;
}

} // namespace

TEST(Vector, WorksByComponents) {
  Vector3 v(1, 2, 3);
  EXPECT_EQ(-(v + Vector3(10, 20, 30)) * 2.0, Vector3(-22, -44, -66));
  EXPECT_EQ(2.0 * v - v / 2.0, Vector3(1.5, 3, 4.5));
  EXPECT_EQ(Dot(v, Vector3(4, 5, 6)), 32);
  EXPECT_EQ(v += Vector3(1, 1, 1), Vector3(2, 3, 4));
  EXPECT_EQ(v -= Vector3(2, 2, 2), Vector3(0, 1, 2));
  EXPECT_TRUE(v != Vector3(0, 1, 3));
  EXPECT_FALSE(Vector3(NaN, 0, 0) == Vector3(NaN, 0, 0));

  Vector2 w(1, 2);
  w += Vector2(3, 5);
  EXPECT_TRUE(-w / 2.0 == Vector2(-2, -3.5));
  EXPECT_EQ(Dot(w, Vector2(1, 10)), 74);

  const Vector4 h = Homogeneous::FromVector3(Vector3(1, 2, 3));
  EXPECT_TRUE(h * 2.0 - Vector4(0, 0, 0, 1) == Vector4(2, 4, 6, 1));
  EXPECT_EQ(Dot(h, Vector4(1, 10, 100, 1000)), 1321);
}

TEST(Vector, CrossIsRightHandedAndNormalizeKeepsTheDirection) {
  EXPECT_EQ(Cross(Vector3(1, 2, 3), Vector3(4, 5, 7)), Vector3(-1, 5, -3));
  EXPECT_EQ(Normalize(Vector3(0, 3, 4)), Vector3(0, 0.6, 0.8));
  EXPECT_EQ(Normalize(Vector3()), Vector3());
  EXPECT_EQ(Length(Vector2_Base<float>(3, 4)), 5.0f);
}

TEST(Matrix3, RowsColumnsAndProducts) {
  const Matrix3 a({1, 2, 3}, {4, 5, 6}, {7, 8, 10});
  const Matrix3 b({2, 0, 1}, {0, 3, 0}, {1, 0, 1});
  EXPECT_EQ(a.Row(1), Vector3(4, 5, 6));
  EXPECT_THROW(a.Row(3), std::out_of_range);
  EXPECT_EQ(a * Vector3(1, 10, 100), Vector3(321, 654, 1087));
  EXPECT_TRUE(a * b == Matrix3({5, 6, 4}, {14, 15, 10}, {24, 24, 17}));
  EXPECT_TRUE(a.Transposed() == Matrix3::FromColumns({1, 2, 3}, {4, 5, 6}, {7, 8, 10}));
}

TEST(Matrix3, RotationIsRightHandedAboutItsAxis) {
  EXPECT_DOUBLE_EQ(Angle::FromRadians(-Angle::Pi / 6).Degrees(), -30);
  EXPECT_TRUE(Matrix3::Rotation(Angle::FromDegrees(90), {}) == Matrix3());
  const std::tuple<double, Vector3, Vector3, Vector3> cases[] = {
      // angle, axis, vector, turned
      {90, {0, 0, 3}, {5, 1, 2}, {-1, 5, 2}},           {-90, {0, 0.1, 0}, {5, 1, 2}, {-2, 1, 5}},
      {30, {2, 0, 0}, {5, 2, 0}, {5, std::sqrt(3), 1}}, {120, {1, 1, 1}, {5, 1, 2}, {2, 5, 1}},
      {180, {1, 2, 2}, {9, 0, 0}, {-7, 4, 4}},          {240, {1, -1, -1}, {5, 1, 2}, {-1, 2, -5}},
  };
  for (const auto& [degrees, axis, vector, turned] : cases)
    ExpectNear(Matrix3::Rotation(Angle::FromDegrees(degrees), axis) * vector, turned);
}

TEST(Matrix3, FromAxisTurnsTheAxisAndRollsUp) {
  const Vector3 x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
  const std::tuple<Vector3, Vector3, Vector3, Vector3> cases[] = {
      // direction, up, image of +z, image of +y
      {x, z, x, z},
      {{0, -7, 0}, {0, 0, 1e-300}, -y, z},
      {{3, 0, 3}, z, Normalize(Vector3(1, 0, 1)), Normalize(Vector3(-1, 0, 1))},
      {{1, 2, 2}, {0, -5, 0}, {1 / 3.0, 2 / 3.0, 2 / 3.0}, Normalize(Vector3(2, -5, 4))},
      {{0, 1e-320, 0}, z, y, z},
      {{1e308, 0, 1e308}, {0, 1e308, 0}, Normalize(Vector3(1, 0, 1)), y},
      // no roll from up: towards +y, or towards +z
      {z, z, z, y},
      {-z, z, -z, y},
      {z * 4.0, -z, z, y},
      {{1e-8, -1e-8, 1}, z, {1e-8, -1e-8, 1}, {0, 1, 1e-8}},
      {{-1e-8, 1e-8, 1}, z, {-1e-8, 1e-8, 1}, {0, 1, -1e-8}},
      {y, -y, y, z},
      {x, {}, x, y},
      {-y, {NaN, 0, 1}, -y, z},
      {x, {0, Infinity, 0}, x, y},
      // no direction
      {{}, x, z, y},
      {{1, NaN, 0}, x, z, y},
      {{0, 0, -Infinity}, x, z, y},
  };
  for (const auto& [direction, up, axis, side] : cases) {
    const Matrix3 frame = Matrix3::FromAxis(direction, up);
    ExpectNear(frame * z, axis);
    ExpectNear(frame * y, side);
    ExpectNear(frame * x, Cross(side, axis));
  }
  EXPECT_TRUE(Matrix3::FromAxis({0, 3, 1}) == Matrix3::FromAxis({0, 3, 1}, z));

  // Orthonormal, right-handed, as near to the up vector as can be, without a jump beside the line of up.
  std::mt19937 random(5);
  std::uniform_real_distribution<double> any(-1, 1);
  const auto vector = [&] { return Vector3(any(random), any(random), any(random)); };
  for (int i = 0; i < 1000; ++i) {
    const Vector3 up = vector();
    const Vector3 beside = up + Normalize(Cross(up, vector())) * (2e-6 * Length(up));
    const Vector3 direction = i % 2 == 0 ? vector() : beside;
    const Matrix3 frame = Matrix3::FromAxis(direction, up);
    ExpectNear(frame * z, Normalize(direction));
    ExpectNear(Cross(frame * y, frame * z), frame * x);
    EXPECT_NEAR(Dot(frame * x, up), 0, 1e-9);
    EXPECT_GT(Dot(frame * y, up), 0);
    EXPECT_NEAR(Length(frame * y), 1, 1e-9);
    if (i % 2 == 0)
      ExpectNear(Matrix3::FromAxis(direction + vector() * 1e-15, up) * y, frame * y);
  }
}

TEST(Transformation, AppliesTheRightFactorFirst) {
  const Transformation move = Transformation::Translation({1, 2, 3});
  const Transformation scale = Transformation::Scaling({2, 4, 8});
  EXPECT_EQ(move * scale * Vector3(1, 1, 1), Vector3(3, 6, 11));
  EXPECT_EQ(scale * move * Vector3(1, 1, 1), Vector3(4, 12, 32));
  ExpectNear(Transformation(Angle::FromDegrees(90), {0, 0, 1}) * Vector3(1, 0, 0), {0, 1, 0});
  const Transformation t(Matrix3({1, 2, 3}, {4, 5, 6}, {7, 8, 9}), {10, 11, 12});
  EXPECT_EQ(t.ColumnMajor(), (std::array<double, 16>{1, 4, 7, 0, 2, 5, 8, 0, 3, 6, 9, 0, 10, 11, 12, 1}));
}

TEST(Plane, ThreePointsRunCounterClockwise) {
  const Plane plane({0, 0, 2}, {1, 0, 2}, {0, 3, 2});
  EXPECT_TRUE(plane.Equation() == Vector4(0, 0, 3, -6));
  EXPECT_TRUE(Plane().Equation() == Vector4(0, 0, 1, 0));
}

TEST(BoundingBox, GrowsFromEmptyAndIgnoresNaN) {
  Box box;
  box += Box();
  EXPECT_TRUE(box.Empty());
  EXPECT_EQ(box.Extent(), Vector3());
  EXPECT_EQ(box.Center(), Vector3());
  box += Vector3(1, -2, 3);
  EXPECT_EQ(box.Center(), Vector3(1, -2, 3));
  box += Vector3(-1, 4, 3);
  EXPECT_TRUE(box == Box({-1, -2, 3}, {1, 4, 3}));
  EXPECT_EQ(box.Extent(), Vector3(2, 6, 0));
  EXPECT_EQ(box.Center(), Vector3(0, 1, 3));
  box += Box({0, 0, 0}, {9, 0, 0});
  EXPECT_TRUE(box == Box({-1, -2, 0}, {9, 4, 3}));

  Box part;
  part += Vector3(NaN, 1, 1);
  EXPECT_TRUE(part.Empty());
  part += Vector3(2, NaN, 3);
  EXPECT_TRUE(part == Box({2, 1, 1}, {2, 1, 3}));
}

TEST(MinMax, GrowsFromEmptyAndIgnoresNaN) {
  MinMax_Base<double> range;
  range += NaN;
  EXPECT_TRUE(range.Empty());
  range += Infinity;
  EXPECT_TRUE(!range.Empty() && range.min == Infinity);
  range += -3;
  EXPECT_TRUE(range.min == -3 && range.max == Infinity);
}

TEST(Property, StateBitsFollowAssignments) {
  Property<int> property;
  EXPECT_FALSE(property.Defined());
  property = 0; // equal, but it was never set
  EXPECT_EQ(property.State(), 3u);
  property.ClearChanged();
  property = 0;
  EXPECT_EQ(property.State(), 2u);
  property = 7;
  EXPECT_EQ(property.State(), 3u);
  EXPECT_EQ(property, 7);
  EXPECT_EQ(Property<int>(1, 0xfeu).State(), 2u);
}

TEST(ColorChannels, KeepAll16BitsInDoublePrecision) {
  for (int bits = 0; bits <= 0xFFFF; ++bits) {
    const auto value = static_cast<quint16>(bits);
    const QColor color = QColor::fromRgba64(value, 0, 0xFFFF, static_cast<quint16>(0xFFFF - bits));
    const std::array<double, 4> channels = ColorChannels(color);
    ASSERT_EQ(channels, (std::array<double, 4>{bits / 65535.0, 0, 1, (0xFFFF - bits) / 65535.0}));
    ASSERT_EQ(ColorOfChannels(channels), color);
    // Halves round up, which single precision cannot tell from what lies just below.
    if (bits < 0xFFFF) {
      ASSERT_EQ(ColorOfChannels({(bits + 0.499999) / 65535, 0, 0, 1}).rgba64().red(), bits);
      ASSERT_EQ(ColorOfChannels({(bits + 0.500001) / 65535, 0, 0, 1}).rgba64().red(), bits + 1);
    }
  }
  EXPECT_EQ(ColorChannels(QColor::fromHsv(120, 255, 255, 51)), (std::array<double, 4>{0, 1, 0, 0.2}));
  EXPECT_EQ(ColorChannels(QColor::fromRgbF(2.5, -1, 0, 0.5)), (std::array<double, 4>{2.5, -1, 0, 0.5})) << "extended";
}
