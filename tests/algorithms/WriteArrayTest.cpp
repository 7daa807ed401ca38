#include "algorithms/InterpretArray.h"
#include "tests/support/Test.h"

namespace {

constexpr std::uint64_t Huge = std::numeric_limits<std::uint64_t>::max();

const std::string Refusal =
    "\"p_index < _count\" - class Vek::Chart::DataInterface::Array<class Vek::Chart::Ogl::Attribute<class "
    "Vek::Chart::Ogl::Vec3<float> >,2>::WriteOnlyAccess __cdecl Vek::Chart::DataInterface::Array<class "
    "Vek::Chart::Ogl::Attribute<class Vek::Chart::Ogl::Vec3<float> >,2>::operator [](const unsigned __int64)";
const std::string FloatToVec3Copy =
    "\"sourceArray.size() + p_destArrayOffset <= p_destArray.size()\" - void __cdecl "
    "Vek::Chart::Algorithms::InterpretArray<class Vek::Chart::DataInterface::Array<float,0>,class "
    "Vek::Chart::DataInterface::Array<float,0> >::CopyArrayToWithOffset<class Vek::Chart::Ogl::Vec3<float>,class "
    "Vek::Chart::Ogl::BufferPool::WriteArray<class Vek::Chart::Ogl::Attribute<class Vek::Chart::Ogl::Vec3<float> > > "
    ">(const class Vek::Chart::DataInterface::Array<float,0> &,class Vek::Chart::Ogl::BufferPool::WriteArray<class "
    "Vek::Chart::Ogl::Attribute<class Vek::Chart::Ogl::Vec3<float> > > &,const unsigned __int64)";

class ArrayCalls : public Vek::Test::RecordingScopeFixture {
protected:
  /// Copies the scalars into a new buffer of three records and returns its scalars; those not written are 0.
  std::vector<float> Copied(const std::vector<float>& p_source, std::uint64_t p_offset) {
    using Source = DataInterface::Array<float, 0>;
    using Record = Ogl::Attribute<Ogl::Vec3<float>>;
    const auto buffer = gl->GetBufferPool().CreateBuffer<Record>(3, Ogl::BufferUsage::Default);
    {
      Ogl::BufferPool::WriteArray<Record> records(buffer, 0, 3, RGL_ARRAY_BUFFER);
      std::fill_n(records.Data(), 3, Record());
      Algorithms::InterpretArray<Source, Source>::CopyArrayToWithOffset<Ogl::Vec3<float>>(
          Source(p_source.data(), p_source.size()), records, p_offset);
    }
    const std::vector<unsigned char> bytes = recorder.BufferBytes(buffer.Name());
    std::vector<float> scalars(bytes.size() / sizeof(float));
    std::memcpy(scalars.data(), bytes.data(), bytes.size());
    return scalars;
  }
};

} // namespace

TEST_F(ArrayCalls, EachRefusedTupleIsReported) {
  const std::tuple<std::uint64_t, std::vector<float>, std::size_t> cases[] = {
      {1, {0, 0, 0, 1, 2, 3, 4, 5, 6}, 1},
      {2, {0, 0, 0, 0, 0, 0, 1, 2, 3}, 2},
      {3, std::vector<float>(9), 3},
      {Huge - 1, std::vector<float>(9), 3}}; // an index that wraps
  for (const auto& [offset, expected, refused] : cases) {
    SCOPED_TRACE(offset);
    const ReportCapture reports;
    EXPECT_EQ(Copied({1, 2, 3, 4, 5, 6, 7, 8, 9}, offset), expected);
    std::vector<std::string> texts{FloatToVec3Copy};
    texts.insert(texts.end(), refused, Refusal);
    EXPECT_EQ(reports.Texts(), texts);
  }
}
