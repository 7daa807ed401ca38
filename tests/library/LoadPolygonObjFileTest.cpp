#include "library/ObjModel.h"
#include "tests/support/ObjReference.h"
#include "tests/support/Test.h"

namespace {

boost::shared_ptr<ObjModel> Load(const std::string& p_text) {
  std::istringstream stream(p_text);
  return LoadPolygonObj(stream);
}

/// The reports, by short names.
std::string Reported(const ReportCapture& p_reports) {
  std::string names;
  for (const std::string& text : p_reports.Texts())
    names += text == ObjReport("parts.size() == 4")                          ? " four"
             : text == ObjReport("parts.size() == 3")                        ? " three"
             : text == ObjReport("0 <= vertexIndex < vertices->size()")      ? " vertex"
             : text == ObjReport("0 <= normalIndex < sourceNormals->size()") ? " normal"
                                                                             : text;
  return names;
}

/// A file's model in a line: "triangles v POSITIONS n NORMALS 'GROUP' INDICES ! REPORTS"; what is empty is left out.
std::string Summary(const std::string& p_text) {
  const ReportCapture reports;
  const auto model = Load(p_text);
  std::ostringstream out;
  out << (model->PrimitiveType() == Ogl::VertexBuffer::Undecided      ? "undecided"
          : model->PrimitiveType() == Ogl::VertexBuffer::LineSegments ? "lines"
          : model->PrimitiveType() == Ogl::VertexBuffer::Triangles    ? "triangles"
                                                                      : "?");
  for (const auto& array : {model->Vertices(), model->Normals()}) {
    out << (array->empty() ? "" : array == model->Vertices() ? " v" : " n");
    for (const auto& element : *array)
      out << ' ' << element.x << ' ' << element.y << ' ' << element.z;
  }
  for (const auto& group : *model->Groups()) {
    out << " '" << group->name << "'";
    for (const std::uint32_t index : group->indices)
      out << ' ' << index;
  }
  return out.str() + (reports.Texts().empty() ? "" : " !") + Reported(reports);
}

/// Rows of a name, a text and its summary.
void Check(const std::vector<std::array<std::string, 3>>& p_rows) {
  for (const auto& [name, text, expected] : p_rows)
    EXPECT_EQ(Summary(text), expected) << name;
}

const std::string ThreePoints = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";
const std::string ThreeNormals = "vn 1 0 0\nvn 0 1 0\nvn 0 0 1\n";
const std::string Three = "v 0 0 0 1 0 0 0 1 0 "; // the points in a summary

/// Reads a text in pieces of a few characters and, if wanted, fails at its end.
struct SlowBuffer : std::streambuf {
  std::string text;
  bool fails = false;
  std::size_t next = 0;

  SlowBuffer(std::string p_text, bool p_fails)
      : text(std::move(p_text))
      , fails(p_fails) {}
  int_type underflow() override {
    if (next == text.size())
      return fails ? throw std::ios_base::failure("no more") : traits_type::eof();
    const std::size_t size = std::min<std::size_t>(7, text.size() - next);
    setg(&text[next], &text[next], &text[next] + size);
    next += size;
    return traits_type::to_int_type(*gptr());
  }
};

} // namespace

TEST(LoadPolygonObjFile, ReadsKeywords) {
  Check({
      {"nothing", "", "undecided ''"},
      {"last line without line feed", "v 1 -2 .5", "undecided v 1 -2 0.5 ''"},
      {"ignored lines", "#v\n# v 1 2 3\nvt 1 2\no x\ns off\np 1\nV 1 2 3\nvv\nG g\n\n \t\n", "undecided ''"},
      {"a triangle", ThreePoints + "f 3 1 2\n", "triangles " + Three + "'' 2 0 1"},
      {"a line segment", ThreePoints + ThreeNormals + "l 3/1 1//2\n", "lines " + Three + "n 0 0 0 0 0 0 0 0 0 '' 2 0"},
      {"the first kind decides", ThreePoints + "l 1 2\nf 1 2 3\n", "lines " + Three + "'' 0 1 0 1 2"},
      {"white space", "\t v 0 0 0\r\n\v\fv 1 0 0 \t\r\r\n  v 0 1 0 \n", "undecided " + Three + "''"},
      {"tabs do not split", "v\t1 2 3\nf\t1 2 3\ng\tx\n", "undecided ''"},
      {"names of groups", "g  a\ng a b  c \t\ng \tx\n g y\n", "undecided '' ' a' 'a b  c' '\tx' 'y'"},
      {"equal names", ThreePoints + "f 1 2 3\ng a\nf 2 3 1\nl 1 2\ng a\nf 3 1 2\n",
       "triangles " + Three + "'' 0 1 2 'a' 1 2 0 0 1 'a' 2 0 1"},
      {"beyond floats", "v 1e39 -inf 1e-46\n", "undecided v inf -inf 0 ''"},
  });
}

TEST(LoadPolygonObjFile, GivesAVertexTheFirstNormalOfItsCorners) {
  const std::string head = ThreePoints + ThreeNormals;
  const std::string start = "triangles " + Three;
  Check({
      {"by third field", head + "f 1//3 2//1 3//2\n", start + "n 0 0 1 1 0 0 0 1 0 '' 0 1 2"},
      {"by last field", head + "f 1/9/3 2/x/1 3/1/9/2\n", start + "n 0 0 1 1 0 0 0 1 0 '' 0 1 2"},
      {"texture coordinates only", head + "f 1/5 2/6 3/7\n", start + "n 0 0 0 0 0 0 0 0 0 '' 0 1 2"},
      {"the first one wins across groups", head + "f 1//1 1//2 2//2\ng a\nf 1//3 2//3 3//3\n",
       start + "n 1 0 0 0 1 0 0 0 1 '' 0 0 1 'a' 0 1 2"},
      {"k-th corner takes the k-th normal", head + "f 1 2//1 3//2\n", start + "n 1 0 0 0 1 0 0 0 0 '' 0 1 2"},
      {"pairs end with their group", head + "f 1 2 3//1\ng a\nf 2//2 2//2 2//2\n",
       start + "n 1 0 0 0 1 0 0 0 0 '' 0 1 2 'a' 1 1 1"},
      {"normals read too late are used", ThreePoints + "f 1//1 2//2 3//3\n" + ThreeNormals,
       start + "n 1 0 0 0 1 0 0 0 1 '' 0 1 2 ! normal normal normal"},
      {"a late corner still comes before later ones", ThreePoints + "vn 1 0 0\nf 1//2 1//1 2//1\nvn 0 1 0\n",
       start + "n 0 1 0 1 0 0 0 0 0 '' 0 0 1 ! normal"},
      {"vertices read too late are used", "vn 1 0 0\nf 3//1 2//1 1//1\n" + ThreePoints,
       start + "n 1 0 0 1 0 0 1 0 0 '' 2 1 0 ! vertex vertex vertex"},
      {"no normal before the group ends", ThreePoints + "f 1//1 2//1 3//1\ng a\nvn 1 0 0\nf 1//1 1//1 1//1\n",
       start + "n 1 0 0 0 0 0 0 0 0 '' 0 1 2 'a' 0 0 0 ! normal normal normal"},
      {"an index without vertex is not marked",
       "vn 1 0 0\nvn 0 1 0\nv 0 0 0\nf 1//1 2//1 3//1\ng a\nv 1 0 0\nv 0 1 0\nf 1//2 2//2 3//2\n",
       start + "n 1 0 0 0 1 0 0 1 0 '' 0 1 2 'a' 0 1 2 ! vertex vertex"},
  });
}

TEST(LoadPolygonObjFile, ReportsBrokenLinesAndReadsThemOn) {
  Check({
      {"positions", "v\nv 1 2\nv 1 2 3 # note\n", "undecided v 0 0 0 1 2 0 1 2 3 '' ! four four four"},
      {"normals", "v 0 0 0\nvn 1\nvn 0 1 0 0\nf 1//2 1//2 1//2\n", "triangles v 0 0 0 n 0 1 0 '' 0 0 0 ! four four"},
      {"a blank behind what is read", "v 1 2 3  \nf 1 1 1  1\n", "triangles v 1 2 3 '' 0 0 0 ! four"},
      {"faces", ThreePoints + "f\nf 3\nf 1 2\nf 1 2 3 4\n",
       "triangles " + Three + "'' 2 0 1 0 1 2 ! four four four four"},
      {"lines", ThreePoints + "l\nl 3\nl 1 2 x\n", "lines " + Three + "'' 2 0 1 ! three three three"},
      {"ends of the index range",
       ThreePoints + "vn 0 0 1\nl -2147483648 2147483647\nf +1//-2147483648 -0//+1 3//2147483647\n",
       "lines " + Three +
           "n 0 0 0 0 0 0 0 0 0 '' 2147483647 2147483646 0 4294967295 2 ! vertex vertex normal vertex normal"},
      {"reports of a corner in order", "f 1//1 2 0//0\n",
       "triangles '' 0 1 4294967295 ! vertex normal vertex vertex normal"},
      {"size before range", ThreePoints + "vn 0 0 1\nf 4//2 1\n",
       "triangles " + Three + "n 0 0 0 0 0 0 0 0 0 '' 3 0 ! four vertex normal"},
  });
}

TEST(LoadPolygonObjFile, ThrowsWhatAConversionThrows) {
  const std::pair<const char*, const char*> rows[] = {
      {"v 1 x 3", ""},
      {"v 1  2 3", " four"},
      {"vn 1 0x10 3", ""},
      {"v 1 1e400 3", ""},
      {"f / 1 1", ""},
      {"f 1 1 2147483648", " vertex vertex"},
      {"l 1 x", " vertex"},
      {"f 1// 1 1", " vertex"},
      {"f 1  2 3", " four vertex"},
      {"f 1//1/x 2 3", " vertex"},
  };
  for (const auto& [text, reported] : rows) {
    SCOPED_TRACE(text);
    const ReportCapture reports;
    try {
      Load(text);
      ADD_FAILURE() << "nothing thrown";
    } catch (const boost::bad_lexical_cast& error) {
      EXPECT_STREQ(error.what(), "bad lexical cast: source type value could not be interpreted as target");
    }
    EXPECT_EQ(Reported(reports), reported);
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
  const TempFolder folder;
  const std::string file = folder.Write("a.obj", ThreePoints + "f 1 2 3\r\n");
  const ReportCapture reports;
  const auto model = LoadPolygonObjFile(file);
  EXPECT_EQ(model->Vertices()->size(), 3u);
  EXPECT_EQ(model->DefaultGroup()->indices, (std::vector<std::uint32_t>{0, 1, 2}));
  for (const std::string& path : {file + "x", folder.Path().string(), std::string()}) {
    const auto empty = LoadPolygonObjFile(path);
    EXPECT_EQ(empty->PrimitiveType(), Ogl::VertexBuffer::Undecided) << path;
    EXPECT_TRUE(empty->Vertices()->empty() && empty->Bounds().Empty()) << path;
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
  EXPECT_EQ(LoadPolygonObj(brokenStream)->Vertices()->size(), 1u);
}
