#include "library/ObjModel.h"
#include "tests/support/ObjReference.h"
#include "tests/support/ReportCapture.h"

#include <boost/lexical_cast.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

using namespace Vek::Chart;
using namespace Vek::Test;
using Library::LoadPolygonObj;
using Library::LoadPolygonObjFile;
using Library::ObjModel;

namespace {

constexpr auto Points = Ogl::VertexBuffer::Undecided; // what a file of positions only gives
constexpr auto Triangles = Ogl::VertexBuffer::Triangles;
constexpr auto Lines = Ogl::VertexBuffer::LineSegments;

const std::string FourParts = "parts.size() == 4";
const std::string ThreeParts = "parts.size() == 3";
const std::string VertexRange = "0 <= vertexIndex < vertices->size()";
const std::string NormalRange = "0 <= normalIndex < sourceNormals->size()";

std::vector<float> Flat(const ObjModel::VertexArray& p_array) {
  std::vector<float> values;
  for (const auto& element : p_array)
    values.insert(values.end(), {element.x, element.y, element.z});
  return values;
}

boost::shared_ptr<ObjModel> Load(const std::string& p_text) {
  std::istringstream stream(p_text);
  return LoadPolygonObj(stream);
}

/// Name and indices of a group.
using Group = std::pair<std::string, std::vector<std::uint32_t>>;

struct Case {
  const char* name;
  std::string text;
  Ogl::VertexBuffer::PrimitiveType type = Points;
  std::vector<float> vertices;
  std::vector<float> normals;
  std::vector<Group> groups;
  std::vector<std::string> reports;
};

const std::string ThreePoints = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
const std::vector<float> ThreeVertices = {0, 0, 0, 1, 0, 0, 0, 1, 0};
const std::string ThreeNormals = "vn 1 0 0\nvn 0 1 0\nvn 0 0 1\n";

void Check(const Case& p_case) {
  SCOPED_TRACE(p_case.name);
  const ReportCapture reports;
  const auto model = Load(p_case.text);
  EXPECT_EQ(model->PrimitiveType(), p_case.type);
  EXPECT_EQ(Flat(*model->Vertices()), p_case.vertices);
  EXPECT_EQ(Flat(*model->Normals()), p_case.normals);
  std::vector<Group> groups;
  for (const auto& group : *model->Groups())
    groups.emplace_back(group->name, group->indices);
  EXPECT_EQ(groups, p_case.groups);
  std::vector<std::string> expected;
  for (const std::string& expression : p_case.reports)
    expected.push_back(ObjReport(expression));
  EXPECT_EQ(reports.Texts(), expected);
}

/// Reads a text in pieces of a few characters and, if wanted, fails at its end.
class SlowBuffer : public std::streambuf {
public:
  SlowBuffer(std::string p_text, bool p_fails)
      : _text(std::move(p_text))
      , _fails(p_fails) {}

protected:
  int_type underflow() override {
    if (_next == _text.size()) {
      if (_fails)
        throw std::ios_base::failure("no more");
      return traits_type::eof();
    }
    const std::size_t size = std::min<std::size_t>(7, _text.size() - _next);
    setg(&_text[_next], &_text[_next], &_text[_next] + size);
    _next += size;
    return traits_type::to_int_type(*gptr());
  }

private:
  std::string _text;
  bool _fails;
  std::size_t _next = 0;
};

/// A folder that is removed at the end.
class TemporaryFolder {
public:
  TemporaryFolder()
      : _path(std::filesystem::temp_directory_path() / ("vek-obj-" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directory(_path);
  }
  ~TemporaryFolder() { std::filesystem::remove_all(_path); }
  std::string Path(const std::string& p_name = {}) const { return (_path / p_name).string(); }

private:
  std::filesystem::path _path;
};

} // namespace

TEST(LoadPolygonObjFile, ReadsKeywords) {
  const Case cases[] = {
      {"nothing", "", Points, {}, {}, {{"", {}}}, {}},
      {"positions only", "v 1 2 3\nv -1 .5 2.\n", Points, {1, 2, 3, -1, 0.5f, 2}, {}, {{"", {}}}, {}},
      {"last line without line feed", "v 1 2 3", Points, {1, 2, 3}, {}, {{"", {}}}, {}},
      {"ignored lines",
       "#v\n# v 1 2 3\nvt 1 2\no x\ns off\np 1\nmtllib a b\nV 1 2 3\nvv\nG g\n\n \t\n",
       Points,
       {},
       {},
       {{"", {}}},
       {}},
      {"a triangle", ThreePoints + "f 3 1 2\n", Triangles, ThreeVertices, {}, {{"", {2, 0, 1}}}, {}},
      {"a line segment", ThreePoints + "l 3 1\n", Lines, ThreeVertices, {}, {{"", {2, 0}}}, {}},
      {"corners of a line segment",
       ThreePoints + ThreeNormals + "l 3/1 1//2\n",
       Lines,
       ThreeVertices,
       {0, 0, 0, 0, 0, 0, 0, 0, 0},
       {{"", {2, 0}}},
       {}},
      {"the first kind decides",
       ThreePoints + "l 1 2\nf 1 2 3\n",
       Lines,
       ThreeVertices,
       {},
       {{"", {0, 1, 0, 1, 2}}},
       {}},
      {"white space at both ends",
       "\t v 0 0 0\r\n\v\fv 1 0 0 \t\r\r\n  v 0 1 0 \n",
       Points,
       ThreeVertices,
       {},
       {{"", {}}},
       {}},
      {"carriage returns",
       "v 0 0 0\r\nv 1 0 0\r\nv 0 1 0\r\nf 1 2 3\r\n",
       Triangles,
       ThreeVertices,
       {},
       {{"", {0, 1, 2}}},
       {}},
      {"tabs do not split", "v\t1 2 3\nf\t1 2 3\ng\tx\n", Points, {}, {}, {{"", {}}}, {}},
      {"number texts",
       "v +1 1e2 -1E-2\nv inf -INFINITY 1e-400\nv 1e39 -1e39 16777217\n",
       Points,
       {1, 100, -0.01f, INFINITY, -INFINITY, 0, INFINITY, -INFINITY, 16777216},
       {},
       {{"", {}}},
       {}},
  };
  for (const Case& row : cases)
    Check(row);
}

TEST(LoadPolygonObjFile, BeginsAGroupAtEveryGroupLine) {
  const Case cases[] = {
      {"first line", "g body\n", Points, {}, {}, {{"", {}}, {"body", {}}}, {}},
      {"names",
       "g  a\ng a b  c \t\ng \tx\n g y\n",
       Points,
       {},
       {},
       {{"", {}}, {" a", {}}, {"a b  c", {}}, {"\tx", {}}, {"y", {}}},
       {}},
      {"equal names",
       ThreePoints + "f 1 2 3\ng a\nf 2 3 1\nl 1 2\ng a\nf 3 1 2\n",
       Triangles,
       ThreeVertices,
       {},
       {{"", {0, 1, 2}}, {"a", {1, 2, 0, 0, 1}}, {"a", {2, 0, 1}}},
       {}},
  };
  for (const Case& row : cases)
    Check(row);
}

TEST(LoadPolygonObjFile, GivesAVertexTheFirstNormalOfItsCorners) {
  const std::string head = ThreePoints + ThreeNormals;
  const std::vector<float> none(9, 0.f);
  const Case cases[] = {
      {"by third field",
       head + "f 1//3 2//1 3//2\n",
       Triangles,
       ThreeVertices,
       {0, 0, 1, 1, 0, 0, 0, 1, 0},
       {{"", {0, 1, 2}}},
       {}},
      {"by last field",
       head + "f 1/9/3 2/x/1 3/1/9/2\n",
       Triangles,
       ThreeVertices,
       {0, 0, 1, 1, 0, 0, 0, 1, 0},
       {{"", {0, 1, 2}}},
       {}},
      {"texture coordinates only", head + "f 1/5 2/6 3/7\n", Triangles, ThreeVertices, none, {{"", {0, 1, 2}}}, {}},
      {"unused normals", head, Points, ThreeVertices, none, {{"", {}}}, {}},
      {"the first one wins across groups",
       head + "f 1//1 1//2 2//2\ng a\nf 1//3 2//3 3//3\n",
       Triangles,
       ThreeVertices,
       {1, 0, 0, 0, 1, 0, 0, 0, 1},
       {{"", {0, 0, 1}}, {"a", {0, 1, 2}}},
       {}},
      {"vertices after a face",
       "v 0 0 0\nvn 1 0 0\nf 1//1 1//1 1//1\nv 1 0 0\nv 0 1 0\n",
       Triangles,
       ThreeVertices,
       {1, 0, 0, 0, 0, 0, 0, 0, 0},
       {{"", {0, 0, 0}}},
       {}},
      {"k-th corner takes the k-th normal",
       head + "f 1 2//1 3//2\n",
       Triangles,
       ThreeVertices,
       {1, 0, 0, 0, 1, 0, 0, 0, 0},
       {{"", {0, 1, 2}}},
       {}},
      {"pairs end with their group",
       head + "f 1 2 3//1\ng a\nf 2//2 2//2 2//2\n",
       Triangles,
       ThreeVertices,
       {1, 0, 0, 0, 1, 0, 0, 0, 0},
       {{"", {0, 1, 2}}, {"a", {1, 1, 1}}},
       {}},
      {"normals read too late are used",
       ThreePoints + "f 1//1 2//2 3//3\n" + ThreeNormals,
       Triangles,
       ThreeVertices,
       {1, 0, 0, 0, 1, 0, 0, 0, 1},
       {{"", {0, 1, 2}}},
       {NormalRange, NormalRange, NormalRange}},
      {"a late corner still comes before later ones",
       ThreePoints + "vn 1 0 0\nf 1//2 1//1 2//1\nvn 0 1 0\n",
       Triangles,
       ThreeVertices,
       {0, 1, 0, 1, 0, 0, 0, 0, 0},
       {{"", {0, 0, 1}}},
       {NormalRange}},
      {"vertices read too late are used",
       "vn 1 0 0\nf 3//1 2//1 1//1\n" + ThreePoints,
       Triangles,
       ThreeVertices,
       {1, 0, 0, 1, 0, 0, 1, 0, 0},
       {{"", {2, 1, 0}}},
       {VertexRange, VertexRange, VertexRange}},
      {"no normal before the group ends",
       ThreePoints + "f 1//1 2//1 3//1\ng a\nvn 1 0 0\nf 1//1 1//1 1//1\n",
       Triangles,
       ThreeVertices,
       {1, 0, 0, 0, 0, 0, 0, 0, 0},
       {{"", {0, 1, 2}}, {"a", {0, 0, 0}}},
       {NormalRange, NormalRange, NormalRange}},
      {"an index without vertex is not marked",
       "vn 1 0 0\nvn 0 1 0\nv 0 0 0\nf 1//1 2//1 3//1\ng a\nv 1 0 0\nv 0 1 0\n"
       "f 1//2 2//2 3//2\n",
       Triangles,
       ThreeVertices,
       {1, 0, 0, 0, 1, 0, 0, 1, 0},
       {{"", {0, 1, 2}}, {"a", {0, 1, 2}}},
       {VertexRange, VertexRange}},
  };
  for (const Case& row : cases)
    Check(row);
}

TEST(LoadPolygonObjFile, ReportsBrokenLinesAndReadsThemOn) {
  const std::string head = ThreePoints + "vn 0 0 1\n";
  const std::vector<float> none(9, 0.f);
  const Case cases[] = {
      {"short positions",
       "v\nv 1\nv 1 2\n",
       Points,
       {0, 0, 0, 1, 0, 0, 1, 2, 0},
       {},
       {{"", {}}},
       {FourParts, FourParts, FourParts}},
      {"long positions",
       "v 1 2 3 # note\nv 1 2 3 1.0\n",
       Points,
       {1, 2, 3, 1, 2, 3},
       {},
       {{"", {}}},
       {FourParts, FourParts}},
      {"short and long normals",
       "v 0 0 0\nvn 1\nvn 0 1 0 0\nf 1//2 1//2 1//2\n",
       Triangles,
       {0, 0, 0},
       {0, 1, 0},
       {{"", {0, 0, 0}}},
       {FourParts, FourParts}},
      {"a quad", ThreePoints + "f 1 2 3 4\n", Triangles, ThreeVertices, {}, {{"", {0, 1, 2}}}, {FourParts}},
      {"short faces",
       ThreePoints + "f\nf 3\nf 1 2\n",
       Triangles,
       ThreeVertices,
       {},
       {{"", {2, 0, 1}}},
       {FourParts, FourParts, FourParts}},
      {"short and long lines",
       ThreePoints + "l\nl 3\nl 1 2 x\n",
       Lines,
       ThreeVertices,
       {},
       {{"", {2, 0, 1}}},
       {ThreeParts, ThreeParts, ThreeParts}},
      {"a blank behind what is read",
       "v 1 2 3  \nf 1 1 1  1\n",
       Triangles,
       {1, 2, 3},
       {},
       {{"", {0, 0, 0}}},
       {FourParts}},
      {"zero and negative indices",
       ThreePoints + "f 0 -1 4\n",
       Triangles,
       ThreeVertices,
       {},
       {{"", {4294967295u, 4294967294u, 3}}},
       {VertexRange, VertexRange, VertexRange}},
      {"ends of the index range",
       head + "l -2147483648 2147483647\nf +1//-2147483648 -0//+1 3//2147483647\n",
       Lines,
       ThreeVertices,
       none,
       {{"", {2147483647u, 2147483646u, 0, 4294967295u, 2}}},
       {VertexRange, VertexRange, NormalRange, VertexRange, NormalRange}},
      {"reports of a corner in order",
       "f 1//1 2 0//0\n",
       Triangles,
       {},
       {},
       {{"", {0, 1, 4294967295u}}},
       {VertexRange, NormalRange, VertexRange, VertexRange, NormalRange}},
      {"size before range",
       head + "f 4//2 1\n",
       Triangles,
       ThreeVertices,
       none,
       {{"", {3, 0}}},
       {FourParts, VertexRange, NormalRange}},
  };
  for (const Case& row : cases)
    Check(row);
}

TEST(LoadPolygonObjFile, ReportsThroughTheLoggersKinds) {
  const ReportCapture reports;
  Load("f 1\n");
  ASSERT_EQ(reports.Entries().size(), 2u);
  EXPECT_EQ(reports.Entries()[0].kind, vekdebug::severity::ensure);
  EXPECT_EQ(reports.Entries()[1].kind, vekdebug::severity::range);
  EXPECT_EQ(reports.Texts()[1], "\"0 <= vertexIndex < vertices->size()\" - class boost::shared_ptr<class "
                                "Vek::Chart::Library::ObjModel> __cdecl Vek::Chart::Library::LoadPolygonObjFile(const "
                                "class vekfile::filepath &)");
}

TEST(LoadPolygonObjFile, ThrowsWhatAConversionThrows) {
  const struct {
    const char* text;
    std::vector<std::string> reports; // that come before
  } numbers[] = {
      {"v 1 x 3", {}},
      {"v 1  2 3", {FourParts}},
      {"v 1 2  3", {FourParts}},
      {"vn 1 0x10 3", {}},
      {"v 1 1e400 3", {}},
      {"f 1 1 2147483648", {VertexRange, VertexRange}},
      {"f 1.0 1 1", {}},
      {"f / 1 1", {}},
      {"f 1// 1 1", {VertexRange}},
      {"f 1/1/ 1 1", {VertexRange}},
      {"f 1  2 3", {FourParts, VertexRange}},
      {"l 1 x", {VertexRange}},
      {"f 1//1/x 2 3", {VertexRange}},
  };
  for (const auto& row : numbers) {
    SCOPED_TRACE(row.text);
    const ReportCapture reports;
    try {
      Load(row.text);
      ADD_FAILURE() << "nothing thrown";
    } catch (const boost::bad_lexical_cast& error) {
      EXPECT_STREQ(error.what(), "bad lexical cast: source type value could not be interpreted as target");
    }
    std::vector<std::string> expected;
    for (const std::string& expression : row.reports)
      expected.push_back(ObjReport(expression));
    EXPECT_EQ(reports.Texts(), expected);
  }
  EXPECT_THROW(Load("g"), std::out_of_range);
  EXPECT_THROW(Load("v 1 2 3\n \tg \r\n"), std::out_of_range);
}

TEST(LoadPolygonObjFile, BoundsGrowByTheNumbersAsRead) {
  const auto model = Load("v 0.1 1e39 -3\nv 0.30000000000000004 5 nan\nv -inf 7 -1e-320\n");
  EXPECT_EQ(model->Bounds().Min(), (Types::Vector3_Base<double>(-INFINITY, 5, -3)));
  EXPECT_EQ(model->Bounds().Max(), (Types::Vector3_Base<double>(0.30000000000000004, 1e39, -1e-320)));
  EXPECT_TRUE(std::isnan(model->Vertices()->at(1).z));
}

TEST(LoadPolygonObjFile, ReadsFilesAndTakesMissingOnesAsEmpty) {
  const TemporaryFolder folder;
  std::ofstream(folder.Path("a.obj"), std::ios::binary) << ThreePoints << "f 1 2 3\r\n";
  const ReportCapture reports;
  const auto model = LoadPolygonObjFile(folder.Path("a.obj"));
  EXPECT_EQ(Flat(*model->Vertices()), ThreeVertices);
  EXPECT_EQ(model->DefaultGroup()->indices, (std::vector<std::uint32_t>{0, 1, 2}));
  for (const std::string& path : {folder.Path("missing.obj"), folder.Path(), std::string()}) {
    const auto empty = LoadPolygonObjFile(path);
    EXPECT_EQ(empty->PrimitiveType(), Points) << path;
    EXPECT_EQ(empty->Groups()->size(), 1u) << path;
    EXPECT_TRUE(empty->Vertices()->empty() && empty->Normals()->empty() && empty->Bounds().Empty()) << path;
  }
  EXPECT_TRUE(reports.Entries().empty());
}

TEST(LoadPolygonObjFile, ReadsAnyStream) {
  SlowBuffer slow(ThreePoints + "f 1 2 3", false);
  std::istream slowStream(&slow);
  EXPECT_EQ(LoadPolygonObj(slowStream)->DefaultGroup()->indices, (std::vector<std::uint32_t>{0, 1, 2}));

  std::istringstream begun(ThreePoints);
  begun.ignore(8);
  EXPECT_EQ(LoadPolygonObj(begun)->Vertices()->size(), 2u);

  std::istream none(nullptr);
  EXPECT_TRUE(LoadPolygonObj(none)->Vertices()->empty());

  // What was read before a failure stays, but for the window that it broke off.
  const std::string window(std::size_t(1) << 20, '#');
  SlowBuffer broken("v 1 2 3\n" + window + "\nv 4 5 6", true);
  std::istream brokenStream(&broken);
  EXPECT_EQ(Flat(*LoadPolygonObj(brokenStream)->Vertices()), (std::vector<float>{1, 2, 3}));
}
