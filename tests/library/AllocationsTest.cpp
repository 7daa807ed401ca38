// Bounds on allocations, counted in operator new.

#include "library/CloneAttribute.h"
#include "library/HdrImage.h"
#include "library/Intersect.h"
#include "library/ObjModel.h"
#include "library/StreamLineShape.h"
#include "library/VolumeImage.h"
#include "platform/data/VertexAttribute.h"
#include "tests/support/OperatorNew.h"
#include "tests/support/Test.h"

namespace {

using namespace Vek::Chart::DataInterface;
using namespace Vek::SupportedInterface;

/// 50,000 elements, written in two runs.
class Source : public VertexAttribute3 {
public:
  std::uint32_t Count() const override { return 50000; }
  boost::shared_array<const char> Attribute3(FloatPrecision&) const override { return {}; }
  void Write(FloatAttributeStreamWriter<3>& p_writer) const override {
    p_writer.Write(_scalars.data(), 90000);
    p_writer.Write(_scalars.data() + 90000, 60000);
  }
  bool IsSupportedInterface(const InterfaceID& p_id) const override {
    return p_id == InterfaceID::Of<VertexAttribute3>();
  }
  AnyInterface QuerySupportedInterface(const InterfaceID&) override {
    return AnyInterface::Of<VertexAttribute3>(*this);
  }

private:
  std::vector<double> _scalars = std::vector<double>(150000);
};

TEST(Allocations, OneForTheDataOfAClone) {
  const auto source = boost::make_shared<Source>();
  const std::size_t before = RefuseMemory::large;
  const boost::shared_ptr<ISupportedInterface> clone = Library::CloneAttribute(source);
  EXPECT_EQ(RefuseMemory::large - before, 1u);
  const boost::shared_ptr<ISupportedInterface> second = Library::CloneAttribute(clone);
  EXPECT_EQ(RefuseMemory::large - before, 2u);
}

TEST(Allocations, NoneAfterTheFirstRingOrCut) {
  using Vector3 = Types::Vector3_Base<double>;
  const Library::StreamLineShape tube(Library::StreamLineShape::ShapeTube, {});
  const Types::BoundingBox_Base<double> box({0, 0, 0}, {1, 1, 1});
  std::vector<Vector3> vertices, normals, points;
  std::size_t before = RefuseMemory::all;
  const auto run = [&](int p_count) {
    for (int i = 1; i <= p_count; ++i) {
      tube.OrientShape(1, {i * 0.1, 0, 0}, 0.5, {}, vertices, normals);
      Library::Intersect::Intersection(box, Types::Plane({0.5, 0.5, 0.5}, Vector3(i % 7 - 3, i % 5, i % 3)), points);
    }
  };
  run(1);
  EXPECT_GE(RefuseMemory::all - before, 3u) << "nothing is counted";
  before = RefuseMemory::all;
  run(1000);
  EXPECT_EQ(RefuseMemory::all, before);
}

// A file may cause a report for each of its lines.
TEST(Allocations, ReportsTakeNoMemory) {
  struct SilentSink : vekdebug::sink {
    void write(const vekdebug::report&) override {}
  };
  const auto previous = vekdebug::logger::instance().set_sink(std::make_shared<SilentSink>());
  const auto taken = [](std::size_t p_count) {
    const std::size_t before = RefuseMemory::all;
    for (std::size_t i = 0; i < p_count; ++i) {
      VEK_ENSURE_AT(i > p_count, "i > p_count", std::string_view("int __cdecl Longer::Than::Any::Short::String(void)"),
                    {"longer/than/any/short/string.obj", i, "f 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17"});
      VEK_CHECK_RANGE(p_count, i, "0 <= p_count < some_longer_expression", "int __cdecl F(void)");
    }
    return RefuseMemory::all - before;
  };
  taken(1); // takes the memory that all others use
  EXPECT_EQ(taken(100), 0u);
  vekdebug::logger::instance().set_sink(previous);
}

/// A stream that claims 2^40 bytes more than it holds.
struct Claiming : std::stringbuf {
  using std::stringbuf::stringbuf;
  pos_type seekoff(off_type p_offset, std::ios::seekdir p_way, std::ios::openmode p_mode) override {
    const pos_type position = std::stringbuf::seekoff(p_offset, p_way, p_mode);
    return p_way == std::ios::end ? position + (off_type{1} << 40) : position;
  }
};

// A few bytes that claim large sizes. A reader allocates its window, and the result where the claim is plausible.
TEST(Allocations, ClaimsTakeNoMemory) {
  using namespace Library;
  constexpr std::size_t Window = std::size_t{1} << 20;
  constexpr std::size_t Little = std::size_t{1} << 17;
  const auto picture = [](std::istream& p_stream) { HdrImage image(p_stream); };
  const auto volume = [](std::istream& p_stream) { VolumeImage::LoadFromStream(p_stream, VolumeImage::TextArray); };
  const auto model = [](std::istream& p_stream) { LoadPolygonObj(p_stream); };
  const auto claimedModel = [](std::istream& p_stream) {
    Claiming claiming(std::string(std::istreambuf_iterator<char>(p_stream), {}));
    std::istream stream(&claiming);
    LoadPolygonObj(stream);
  };
  std::string faces = "v 0 0 0\n";
  for (std::size_t i = 0; i < Window / 4; ++i)
    faces += "f 1 1 1\n";
  const std::string radiance = "#?RADIANCE\n\n";
  std::string pointer = "v 0 0 0\nvn 0 0 1\n";
  for (int i = 0; i < 100; ++i)
    pointer += "f 2147483647//2147483647 -2147483648//-1 999999999//1\nl 2147483647 1\n";
  const struct {
    const char* name;
    std::function<void(std::istream&)> read;
    std::string text;
    std::size_t most;
  } rows[] = {
      {"picture, overflow", picture, radiance + "-Y 65536 +X 65536\n", Window},
      {"picture, just too much", picture, radiance + "-Y 8192 +X 8193\n\2\2\x20\1", 2 * Window},
      {"picture, a line without an end", picture, radiance + std::string(8 * Window, 'x'), 4 * Window},
      {"picture, one long row", picture, radiance + "-Y 0 +X 2147483647\n", 2 * Window},
      {"picture, separated row", picture, radiance + "-Y 1 +X 32767\n\2\2\x7f\xff\xff", Window + 32767 * 16},
      {"picture, run beyond the row", picture, radiance + "-Y 1 +X 9\n1234" + "\1\1\1\377\1\1\1\377", Window},
      {"volume, 2^60", volume, "TextArray 32768 32768 32768 32768 1", 2 * Window},
      {"volume, just too much", volume, "TextArray 1 67108865 1 1 1 2 3", 2 * Window},
      {"volume, to be believed", volume, "TextArray 4096 1 4096 4 1 2 3", Window + (std::size_t{1} << 26)},
      {"volume, of numbers", volume, "TextArray 1 67108864 1 1" + std::string(4000000, ' '), 16 * Window},
      {"model, indices", model, pointer, Window},
      {"model, several windows", model, std::string(3 * Window, '\n'), Window},
      {"model, a claim of 2^40", claimedModel, faces, 120 * Window},
      {"model, groups", model, "g a\ng b\ng c\nf 1 1 1\n", Window},
  };
  std::size_t mostTaken = 0;
  for (const auto& row : rows) {
    const ReportCapture reports;
    std::istringstream stream(row.text);
    const std::size_t before = RefuseMemory::bytes;
    try {
      row.read(stream);
    } catch (const std::length_error&) {
    } catch (const std::out_of_range&) {
    }
    const std::size_t ofReports = 3000 * reports.Texts().size();
    const std::size_t taken = RefuseMemory::bytes - before;
    EXPECT_LE(taken, row.most + Little + ofReports) << row.name;
    mostTaken = std::max(mostTaken, taken);
  }
  EXPECT_GE(mostTaken, std::size_t{1} << 26) << "nothing is counted";
}

} // namespace
