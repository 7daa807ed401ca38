#include "scene/Array.h"
#include "platform/interface/AnyInterface.h"
#include "tests/support/Test.h"

#include <QVector3D>
#include <QVector>

#include <deque>

namespace {

/// x, y and z of all points.
Doubles Flat(const Array3& p_array) {
  Doubles numbers;
  for (const Point& point : Points(p_array))
    numbers.insert(numbers.end(), {point.x, point.y, point.z});
  return numbers;
}

/// The part of Eigen's interface that is used: a block of a matrix, whose columns or rows are contiguous.
template <class T, bool RowMajor>
struct Matrix {
  static constexpr bool IsRowMajor = RowMajor;
  const T* first;
  int rowCount, columnCount, inner, outer;
  const T* data() const { return first; }
  int rows() const { return rowCount; }
  int cols() const { return columnCount; }
  int innerStride() const { return inner; }
  int outerStride() const { return outer; }
  int size() const { return rowCount * columnCount; }
};

struct Fields {
  float x, y, z;
};
struct Station { // sources have more than positions
  std::string name;
  double latitude, longitude;
  float height;
  std::int16_t code;
};
/// As large as its numbers; returns copies.
class Getters {
public:
  Getters(double p_x, double p_y, double p_z)
      : _numbers{p_x, p_y, p_z} {}
  double x() const { return _numbers[0]; }
  double y() const { return _numbers[1]; }
  double z() const { return _numbers[2]; }

private:
  double _numbers[3];
};
/// Not trivially copyable, with numbers and something else; returns references, as Eigen's vectors do.
class Indexed {
public:
  Indexed(float p_x, float p_y, float p_z)
      : _numbers{p_x, p_y, p_z} {}
  Indexed(const Indexed& p_other)
      : _numbers(p_other._numbers) {}
  const float& operator[](int p_index) const { return _numbers.at(static_cast<std::size_t>(p_index)); }

private:
  std::string _name;
  std::array<float, 3> _numbers;
};

/// As Eigen's vectors, whose size may be constant.
template <int Size>
struct Sized {
  static constexpr int SizeAtCompileTime = Size;
  double numbers[3];
  const double* data() const { return numbers; }
  int size() const { return 3; }
  const double& operator[](int p_index) const { return numbers[p_index]; }
};

// What is refused when it is compiled.
static_assert(ArrayForms::IsTriple<Sized<3>>() && !ArrayForms::IsTriple<Sized<-1>>());
static_assert(!ArrayForms::IsNumber<bool> && !ArrayForms::IsNumber<char> && !ArrayForms::IsNumber<long double>);
static_assert(std::is_void_v<ArrayForms::Element<std::deque<double>>> && std::is_void_v<ArrayForms::Element<int>>);
static_assert(!ArrayForms::IsTriple<std::vector<double>>() && !ArrayForms::IsTriple<double*>() &&
              !ArrayForms::IsTriple<std::array<double, 2>>() && !ArrayForms::IsTriple<std::array<double, 4>>() &&
              !ArrayForms::IsTriple<QVector2D>() && !ArrayForms::IsTriple<QVector4D>() &&
              !ArrayForms::IsTriple<double[4]>() && !ArrayForms::IsTriple<std::string>() &&
              !ArrayForms::IsTriple<Types::Vector2_Base<double>>() && !ArrayForms::IsTriple<double>());

TEST(Array, NumbersFromEachForm) {
  const std::vector<double> vector{1, 2, NaN};
  const std::array<float, 3> array{1, 2, static_cast<float>(NaN)};
  const double numbers[] = {NaN, 7, 2, 7, 1, 7};
  const QVector<float> list{1, 2, static_cast<float>(NaN)};
  const std::vector<Fields> structs{{0, 1, 0}, {0, 2, 0}, {0, static_cast<float>(NaN), 0}};
  const std::pair<const char*, Array1> cases[] = {
      {"vector", vector},
      {"array", array},
      {"list of Qt", list},
      {"member", Array1(structs, &Fields::y)},
      {"pointer, backwards", Array1(numbers + 4, 3, -16)},
      {"row of a matrix", Matrix<double, false>{vector.data(), 1, 3, 9, 1}},
      {"column of a matrix", Matrix<double, true>{vector.data(), 3, 1, 9, 1}},
      {"contiguous row", Matrix<double, true>{vector.data(), 1, 3, 1, 9}},
  };
  for (const auto& [name, form] : cases) {
    SCOPED_TRACE(name);
    const Doubles values = Values(form);
    ASSERT_EQ(values.size(), 3U);
    EXPECT_TRUE(values[0] == 1 && values[1] == 2 && std::isnan(values[2])) << values[0] << ' ' << values[1];
    EXPECT_EQ(FloatValues(form)[1], 2);
    EXPECT_EQ(CountMissing(form), 1U);
    const Types::MinMax_Base<double> range = FiniteRange(form);
    EXPECT_TRUE(range.min == 1 && range.max == 2);
  }
  EXPECT_EQ(Values(Array1::Constant(0.1, 2)), (Doubles{0.1, 0.1}));
  EXPECT_EQ(Values(Array1(Doubles())), Doubles());
  EXPECT_EQ(Values(Array1(std::vector<Fields>(), &Fields::x)), Doubles());
  EXPECT_TRUE(FiniteRange(Array1()).Empty());
  EXPECT_TRUE(FiniteRange(Doubles{NaN, Infinity, -Infinity}).Empty());
}

template <class T>
class ArrayNumbers : public testing::Test {};
using NumberTypes = testing::Types<signed char, unsigned char, short, unsigned short, int, unsigned int, long,
                                   unsigned long, long long, unsigned long long, float, double>;
TYPED_TEST_SUITE(ArrayNumbers, NumberTypes, ); // the empty name generator keeps clang from warning

// The limits of each type show a wrong size or sign; a stride shows a loop for packed numbers.
TYPED_TEST(ArrayNumbers, AreRead) {
  using Limits = std::numeric_limits<TypeParam>;
  const std::vector<TypeParam> numbers{Limits::lowest(), 3, Limits::max(), 5, TypeParam(100), 0};
  const Doubles expected(numbers.begin(), numbers.end());
  EXPECT_EQ(Values(numbers), expected);
  EXPECT_EQ(Values(Array1(numbers.data() + 1, 3, 2 * sizeof(TypeParam))), (Doubles{3, 5, 0}));
  EXPECT_EQ(FloatValues(numbers), std::vector<float>(numbers.begin(), numbers.end()));
  EXPECT_EQ(Flat(Array3(numbers.data(), 2)), expected);
  EXPECT_EQ(Flat(Array3(numbers.data() + 1, 2, 2 * sizeof(TypeParam))), (Doubles{3, expected[2], 5, 5, 100, 0}));
  EXPECT_EQ(CountMissing(numbers), 0U);
}

TEST(Array, PointsFromEachForm) {
  const Doubles packed{1, 2, 3, 4, 5, 6};
  const Doubles padded{1, 2, 3, 0, 4, 5, 6, 0};
  const Doubles byComponent{1, 4, 2, 5, 3, 6};
  const double array[2][3] = {{1, 2, 3}, {4, 5, 6}};
  const std::vector<std::array<double, 3>> arrays{{1, 2, 3}, {4, 5, 6}};
  const std::vector<std::array<std::int16_t, 3>> integers{{1, 2, 3}, {4, 5, 6}};
  const QVector<QVector3D> qtVectors{{1, 2, 3}, {4, 5, 6}};
  const std::vector<Fields> fields{{1, 2, 3}, {4, 5, 6}};
  const std::vector<Point> vectors{{1, 2, 3}, {4, 5, 6}};
  const std::vector<Getters> getters{{1, 2, 3}, {4, 5, 6}};
  const std::vector<Indexed> indexed{{1, 2, 3}, {4, 5, 6}};
  const std::vector<Station> stations{{"a", 2, 1, 3, 0}, {"b", 5, 4, 6, 0}};
  const std::vector<float> x{1, 4};
  const std::array<short, 2> y{2, 5};
  const Doubles z{3, 6}, yAndZ{2, 5, 3, 0, 0, 6};
  const std::pair<const char*, Array3> cases[] = {
      {"C array", array},
      {"arrays", arrays},
      {"integers", integers},
      {"vectors of Qt", qtVectors},
      {"vectors", vectors},
      {"getters", getters},
      {"indexed", indexed},
      {"members", Array3(stations, &Station::longitude, &Station::latitude, &Station::height)},
      {"numbers", Array3(packed.data(), 2)},
      {"numbers with a gap", Array3(padded.data(), 2, 32)},
      {"pointer to elements", Array3(fields.data(), 2)},
      {"three arrays", Array3(x, y, z)},
      {"three strides",
       Array3(Array1(packed.data(), 2, 24), Array1(yAndZ.data(), 2, 8), Array1(yAndZ.data() + 2, 2, 24))},
      {"n x 3, contiguous columns", Matrix<double, false>{byComponent.data(), 2, 3, 1, 2}},
      {"n x 3, contiguous rows", Matrix<double, true>{packed.data(), 2, 3, 1, 3}},
      {"3 x n, contiguous columns", Matrix<double, false>{packed.data(), 3, 2, 1, 3}},
      {"3 x n, contiguous rows", Matrix<double, true>{byComponent.data(), 3, 2, 1, 2}},
      {"block of a larger matrix", Matrix<double, false>{padded.data(), 3, 2, 1, 4}},
  };
  for (const auto& [name, form] : cases)
    EXPECT_EQ(Flat(form), packed) << name;
  EXPECT_EQ(Flat(Array3(fields.data() + 1, 2, -std::ptrdiff_t(sizeof(Fields)))), (Doubles{4, 5, 6, 1, 2, 3}));
  EXPECT_EQ(Flat(Array3(fields.data(), 2, 0)), (Doubles{1, 2, 3, 1, 2, 3}));
  EXPECT_EQ(Flat(Array3(x, y, 0)), (Doubles{1, 2, 0, 4, 5, 0}));
  EXPECT_EQ(Flat(Array3(std::vector<QVector3D>())), Doubles());
  EXPECT_EQ(Flat(Matrix<double, false>{nullptr, 0, 3, 1, 0}), Doubles());
}

// Numbers that need not be aligned: a record of a file.
TEST(Array, NumbersNeedNotBeAligned) {
  std::vector<char> record(1 + 6 * sizeof(double));
  const Doubles numbers{1, 2, 3, 4, 5, 6};
  std::memcpy(record.data() + 1, numbers.data(), 6 * sizeof(double));
  const auto* const first = reinterpret_cast<const double*>(record.data() + 1);
  EXPECT_EQ(Values(Array1(first, 6)), numbers);
  EXPECT_EQ(Flat(Array3(first, 2)), numbers);
}

TEST(Array, PartsEndWithTheArray) {
  const std::vector<Point> points{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  EXPECT_EQ(Flat(Array3(points).Part(1, 1)), (Doubles{4, 5, 6}));
  EXPECT_EQ(Flat(Array3(points).Part(1, 9)), (Doubles{4, 5, 6, 7, 8, 9}));
  EXPECT_EQ(Array3(points).Part(3, 1).Count(), 0U);
  EXPECT_EQ(Values(Array1::Constant(5, 3).Part(2, 7)), Doubles{5});
}

TEST(Array, SubtractsTheOriginInDouble) {
  const std::vector<Point> points{{4e6 + 0.125, -5e6 - 0.25, 1e9}, {4e6 + 0.25, -5e6, 1e9 + 0.5}};
  const std::vector<Types::Vector3_Base<float>> near = FloatPoints(points, {4e6, -5e6, 1e9});
  ASSERT_EQ(near.size(), 2U);
  EXPECT_TRUE(near[0].x == 0.125F && near[0].y == -0.25F && near[0].z == 0);
  EXPECT_TRUE(near[1].x == 0.25F && near[1].y == 0 && near[1].z == 0.5F);
  EXPECT_EQ(FloatPoints(points)[0].x, 4e6F);
}

TEST(Array, BoundsLeaveMissingPointsOut) {
  const std::vector<Point> points{{1, 2, 3}, {NaN, 99, 99}, {-1, 5, 3}, {99, Infinity, 99}, {99, 99, NaN}};
  EXPECT_EQ(CountMissingPoints(points), 3U);
  EXPECT_EQ(FiniteBounds(points), Types::BoundingBox_Base<double>({-1, 2, 3}, {1, 5, 3}));
  EXPECT_TRUE(FiniteBounds(Array3(points.data() + 3, 2)).Empty());
  EXPECT_TRUE(FiniteBounds(Array3()).Empty());
}

/// An attribute that gives its bytes, in one precision, or writes its numbers in pieces.
template <class Attribute, int N>
class Source : public Attribute {
public:
  enum Mode { Floats, DoublePrecisions, Writes };
  explicit Source(Mode p_mode)
      : _mode(p_mode) {}
  std::uint32_t Count() const override { return 3; }
  bool IsSupportedInterface(const Vek::SupportedInterface::InterfaceID&) const override { return false; }
  Vek::SupportedInterface::AnyInterface QuerySupportedInterface(const Vek::SupportedInterface::InterfaceID&) override {
    throw std::logic_error("not asked for");
  }

protected:
  boost::shared_array<const char> Bytes(DataInterface::FloatPrecision& p_precision) const {
    if (_mode == Writes)
      return {};
    p_precision = _mode == Floats ? DataInterface::SinglePrecision : DataInterface::DoublePrecision;
    boost::shared_array<char> bytes(new char[3 * N * sizeof(double)]);
    for (int i = 0; i < 3 * N; ++i) {
      const float single = static_cast<float>(i);
      const double number = i;
      if (_mode == Floats)
        std::memcpy(bytes.get() + sizeof(float) * std::size_t(i), &single, sizeof single);
      else
        std::memcpy(bytes.get() + sizeof(double) * std::size_t(i), &number, sizeof number);
    }
    return bytes;
  }
  /// Element 0, none for 1, then 2 and more than there is room for.
  template <class Writer>
  void WriteTo(Writer& p_writer) const {
    const double doubles[] = {0.1, 1, 2, 3, 4};
    const float floats[] = {6, 7, 8, 9, 10, 11};
    p_writer.Write(doubles, N + 1); // the last one is no whole element but where N is 1
    p_writer.Skip(N == 1 ? 0 : 1);
    p_writer.Write(floats, 2 * N);
    p_writer.Skip(~std::uint64_t(0));
    p_writer.Write(doubles, N);
  }
  Mode _mode;
};

struct Source1 : Source<DataInterface::VertexAttribute1, 1> {
  using Source::Source;
  boost::shared_array<const char> Attribute1(DataInterface::FloatPrecision& p_precision) const override {
    return Bytes(p_precision);
  }
  void Write(DataInterface::FloatAttributeStreamWriter<1>& p_writer) const override { WriteTo(p_writer); }
};
struct Source3 : Source<DataInterface::VertexAttribute3, 3> {
  using Source::Source;
  boost::shared_array<const char> Attribute3(DataInterface::FloatPrecision& p_precision) const override {
    return Bytes(p_precision);
  }
  void Write(DataInterface::FloatAttributeStreamWriter<3>& p_writer) const override { WriteTo(p_writer); }
};

TEST(Array, VertexAttributes) {
  for (const auto mode : {Source1::Floats, Source1::DoublePrecisions})
    EXPECT_EQ(Values(Source1(mode)), (Doubles{0, 1, 2})) << mode;
  for (const auto mode : {Source3::Floats, Source3::DoublePrecisions})
    EXPECT_EQ(Flat(Source3(mode)), (Doubles{0, 1, 2, 3, 4, 5, 6, 7, 8})) << mode;
  const Array1 kept = Source1(Source1::Floats); // the block outlives its source
  EXPECT_EQ(Values(kept), (Doubles{0, 1, 2}));
  EXPECT_EQ(Values(Source1(Source1::Writes)), (Doubles{0.1, 1, 6}));
  const Doubles written = Flat(Source3(Source3::Writes));
  EXPECT_EQ(Doubles(written.begin(), written.begin() + 3), (Doubles{0.1, 1, 2}));
  EXPECT_TRUE(std::isnan(written[3]) && std::isnan(written[5])) << "skipped";
  EXPECT_EQ(Doubles(written.begin() + 6, written.end()), (Doubles{6, 7, 8}));
}

/// Its numbers lie elsewhere.
struct Pointing {
  const double* numbers;
  double unused[2];
  const double& operator[](int p_index) const { return numbers[p_index]; }
};
/// As large as its numbers, in another order.
class Reversed : public Getters {
public:
  using Getters::Getters;
  double x() const { return Getters::z(); }
  double z() const { return Getters::x(); }
};

TEST(Array, ThrowsOnInvalidArguments) {
  const Doubles numbers{1, 2, 3};
  struct {
    double before[3] = {1, 2, 3};
    Pointing elements[2] = {{before, {}}, {after, {}}};
    double after[3] = {1, 2, 3};
  } elsewhere;
  const std::vector<Reversed> reversed{{1, 2, 3}};
  const double* const none = nullptr;
  const std::string null = "Array1: expected the address of 7 numbers, got a null pointer";
  const std::string matrix = "Array3: expected a matrix of n x 3 or 3 x n numbers, n not 3, got ";
  const std::string elements =
      "Array3: expected elements that contain their three numbers, got one with numbers elsewhere";
  ExpectErrors({
      {"Array3: expected as many y and z as x, got 3 x, 3 y and 2 z", [&] { Array3(numbers, numbers, Doubles(2)); }},
      {"Array3: expected as many y and z as x, got 3 x, 0 y and 3 z", [&] { Array3(numbers, Doubles(), 1); }},
      {null, [&] { Array1(none, 7); }},
      {null, [&] { Array3(none, 7); }},
      {null, [&] { Array3(static_cast<const Fields*>(nullptr), 7); }},
      {matrix + "3 x 3", VEK_CALL(Array3(Matrix<double, false>{none, 3, 3, 1, 3}))},
      {matrix + "4 x 2", VEK_CALL(Array3(Matrix<double, false>{none, 4, 2, 1, 4}))},
      {"Array1: expected a matrix with one row or one column, got 2 x 4",
       VEK_CALL(Array1(Matrix<double, true>{none, 2, 4, 1, 4}))},
      {elements, [&] { Array3(elsewhere.elements, 2); }},
      {elements, [&] { Array3(elsewhere.elements + 1, 1); }},
      {elements, [&] { Array3{reversed}; }},
      {"sizes: expected 7 elements, got 5", [&] { RequireCount("sizes", 5, 7); }},
  });
  EXPECT_NO_THROW(RequireCount("sizes", 7, 7));
  EXPECT_NO_THROW(Array1(none, 0));
}

} // namespace
