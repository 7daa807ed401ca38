#include "algorithms/InterpretArray.h"
#include "tests/support/Test.h"

namespace {

constexpr std::uint64_t Huge = std::numeric_limits<std::uint64_t>::max();

std::string Refusal(const std::string& p_vector) {
  const std::string array =
      "Vek::Chart::DataInterface::Array<class Vek::Chart::Ogl::Attribute<class Vek::Chart::Ogl::" + p_vector +
      " >,2>::";
  return "\"p_index < _count\" - class " + array + "WriteOnlyAccess __cdecl " + array +
         "operator [](const unsigned __int64)";
}
const std::string FloatToVec3Copy =
    "\"sourceArray.size() + p_destArrayOffset <= p_destArray.size()\" - void __cdecl "
    "Vek::Chart::Algorithms::InterpretArray<class Vek::Chart::DataInterface::Array<float,0>,class "
    "Vek::Chart::DataInterface::Array<float,0> >::CopyArrayToWithOffset<class Vek::Chart::Ogl::Vec3<float>,class "
    "Vek::Chart::Ogl::BufferPool::WriteArray<class Vek::Chart::Ogl::Attribute<class Vek::Chart::Ogl::Vec3<float> > > "
    ">(const class Vek::Chart::DataInterface::Array<float,0> &,class Vek::Chart::Ogl::BufferPool::WriteArray<class "
    "Vek::Chart::Ogl::Attribute<class Vek::Chart::Ogl::Vec3<float> > > &,const unsigned __int64)";

class ArrayCalls : public Vek::Test::RecordingScopeFixture {
protected:
  /// Copies the source into records of a new buffer and returns all of the buffer's scalars; those not written are 0.
  template <class D, class S>
  auto Copied(const std::vector<S>& p_source, std::size_t p_records, std::uint64_t p_offset) {
    using Source = DataInterface::Array<S, 0>;
    using Record = Ogl::Attribute<D>;
    const auto buffer = gl->GetBufferPool().template CreateBuffer<Record>(p_records, Ogl::BufferUsage::Default);
    {
      Ogl::BufferPool::WriteArray<Record> records(buffer, 0, p_records, RGL_ARRAY_BUFFER);
      std::memset(static_cast<void*>(records.Data()), 0, p_records * sizeof(Record));
      Algorithms::InterpretArray<Source, Source>::template CopyArrayToWithOffset<D>(
          Source(p_source.data(), p_source.size()), records, p_offset);
    }
    const std::vector<unsigned char> bytes = recorder.BufferBytes(buffer.Name());
    std::vector<typename Algorithms::TupleTraits<D>::Scalar> scalars(bytes.size() / sizeof(scalars[0]));
    std::memcpy(scalars.data(), bytes.data(), bytes.size());
    return scalars;
  }
};

} // namespace

TEST_F(ArrayCalls, AllInstancesConvertIntoMappedBuffers) {
  const ReportCapture reports;
  using Vec3 = Ogl::Vec3<float>;
  using Vec1 = Ogl::Vec1<unsigned int>;
  EXPECT_EQ((Copied<Vec3, float>({1, 2, 3, 4, 5, 6, 7}, 3, 1)), (std::vector<float>{0, 0, 0, 1, 2, 3, 4, 5, 6}));
  EXPECT_EQ((Copied<Vec3, double>({0.1, 1e39, -1e39, 0x1.000001p0, 4, 5}, 3, 0)),
            (std::vector<float>{0.1f, std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                                1, 4, 5, 0, 0, 0}));
  EXPECT_EQ((Copied<Vec1, unsigned char>({1, 128, 255}, 4, 1)), (std::vector<unsigned int>{0, 1, 128, 255}));
  EXPECT_EQ((Copied<Vec1, unsigned short>({1, 32768, 65535}, 4, 1)), (std::vector<unsigned int>{0, 1, 32768, 65535}));
  EXPECT_EQ((Copied<Vec1, unsigned int>({1, 2147483648u, 4294967295u}, 3, 0)),
            (std::vector<unsigned int>{1, 2147483648u, 4294967295u}));
  EXPECT_TRUE(reports.Texts().empty());
}

TEST_F(ArrayCalls, EachRefusedTupleIsReported) {
  const std::tuple<std::uint64_t, std::vector<float>, std::size_t> cases[] = {
      {1, {0, 0, 0, 1, 2, 3, 4, 5, 6}, 1},
      {2, {0, 0, 0, 0, 0, 0, 1, 2, 3}, 2},
      {3, std::vector<float>(9), 3},
      {Huge - 1, std::vector<float>(9), 3}}; // an index that wraps
  for (const auto& [offset, expected, refused] : cases) {
    SCOPED_TRACE(offset);
    const ReportCapture reports;
    EXPECT_EQ((Copied<Ogl::Vec3<float>, float>({1, 2, 3, 4, 5, 6, 7, 8, 9}, 3, offset)), expected);
    std::vector<std::string> texts{FloatToVec3Copy};
    texts.insert(texts.end(), refused, Refusal("Vec3<float>"));
    EXPECT_EQ(reports.Texts(), texts);
  }
}

TEST(WriteOnlyView, TakesValuesAndRefusesOthersPlaces) {
  const ReportCapture reports;
  using Record = Ogl::Attribute<Ogl::Vec1<unsigned int>>;
  Record memory[3];
  DataInterface::Array<Record, 2> view(memory, 2);
  view[1] = Record({7});
  view[2] = Record({8});
  DataInterface::Array<Record, 2>()[0] = Record({9});
  EXPECT_EQ(memory[0].x, 0u);
  EXPECT_EQ(memory[1].x, 7u);
  EXPECT_EQ(memory[2].x, 0u);
  EXPECT_EQ(reports.Texts(), std::vector<std::string>(2, Refusal("Vec1<unsigned int>")));
}
