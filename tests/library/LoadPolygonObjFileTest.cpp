#include "library/ObjModel.h"
#include "tests/support/Test.h"

namespace {

boost::shared_ptr<ObjModel> Load(const std::string& p_text) {
  std::istringstream stream(p_text);
  return LoadPolygonObj(stream);
}

/// The reports, by short names.
std::string Reported(const ReportCapture& p_reports) {
  const std::string signature = " - class boost::shared_ptr<class Vek::Chart::Library::ObjModel> __cdecl "
                                "Vek::Chart::Library::LoadPolygonObjFile(const class vekfile::filepath &)";
  const std::map<std::string, std::string> shortNames = {
      {"\"parts.size() == 4\"" + signature, " four"},
      {"\"parts.size() == 3\"" + signature, " three"},
      {"\"0 <= vertexIndex < vertices->size()\"" + signature, " vertex"},
      {"\"0 <= normalIndex < sourceNormals->size()\"" + signature, " normal"},
  };
  std::string names;
  for (const std::string& text : p_reports.Texts())
    names += shortNames.count(text) != 0 ? shortNames.at(text) : text;
  return names;
}

/// A file's model in one line, without empty items: "triangles v POSITIONS n NORMALS 'GROUP' INDICES ! REPORTS".
std::string Summary(const std::string& p_text) {
  const ReportCapture reports;
  const auto model = Load(p_text);
  std::ostringstream out;
  const std::map<int, const char*> types = {{Ogl::VertexBuffer::Undecided, "undecided"},
                                            {Ogl::VertexBuffer::LineSegments, "lines"},
                                            {Ogl::VertexBuffer::Triangles, "triangles"}};
  out << types.at(model->PrimitiveType());
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

/// Reads a text in pieces of a few characters; may fail at its end.
struct SlowBuffer : std::streambuf {
  std::streamsize xsgetn(char* p_to, std::streamsize p_count) override {
    if (text.empty() && fails)
      throw 1;
    const std::size_t size = text.copy(p_to, std::min<std::size_t>(7, static_cast<std::size_t>(p_count)));
    text.erase(0, size);
    return static_cast<std::streamsize>(size);
  }
  std::string text;
  bool fails = false;
};

} // namespace

TEST(LoadPolygonObjFile, ReadsKeywords) {
  Check({
      {"nothing", "", "undecided ''"},
      {"last line without line feed", "v 1 -2 .5", "undecided v 1 -2 0.5 ''"},
      {"ignored lines", "#v\n# v 1 2 3\nvt 1 2\no x\ns off\np 1\nV 1 2 3\nvv\nG g\n\n \t\n", "undecided ''"},
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
      {"the first one wins across groups", head + "f 1//1 1//2 2//2\ng a\nf 1//3 2//3 3//3\n",
       start + "n 1 0 0 0 1 0 0 0 1 '' 0 0 1 'a' 0 1 2"},
      {"pairs end with their group", head + "f 1 2 3//1\ng a\nf 2//2 2//2 2//2\n",
       start + "n 1 0 0 0 1 0 0 0 0 '' 0 1 2 'a' 1 1 1"},
      {"a normal read too late after one in time", ThreePoints + "vn 1 0 0\nf 1//1 2//2 3//1\nvn 0 1 0\n",
       start + "n 1 0 0 0 1 0 1 0 0 '' 0 1 2 ! normal"},
      {"a texture coordinate ends its line", head + "f 1/5 2/6 3/7\n1\n", start + "n 0 0 0 0 0 0 0 0 0 '' 0 1 2"},
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

TEST(LoadPolygonObjFile, ReportsBrokenLinesAndContinues) {
  Check({
      {"positions", "v\nv 1 2\nv 1 2 3 # note\n", "undecided v 0 0 0 1 2 0 1 2 3 '' ! four four four"},
      {"normals", "v 0 0 0\nvn 1\nvn 0 1 0 0\nf 1//2 1//2 1//2\n", "triangles v 0 0 0 n 0 1 0 '' 0 0 0 ! four four"},
      {"a blank behind what is read", "v 1 2 3  \nf 1 1 1  1\n", "triangles v 1 2 3 '' 0 0 0 ! four"},
      {"faces", ThreePoints + "f\nf 3\nf 1 2\nf 1 2 3 4\nf 3 2 1 x\r\n 3 1 2 9/\n",
       "triangles " + Three + "'' 2 0 1 0 1 2 2 1 0 ! four four four four four"},
      {"blanks at the end are no parts", "v 1 2 3 \nv 4 5 6 \r\nf 1 2 1 \nf 2 1 2 \t\r\n",
       "triangles v 1 2 3 4 5 6 '' 0 1 0 1 0 1"},
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

TEST(LoadPolygonObjFile, ThrowsWithLineAndCharacters) {
  const std::string cast = "bad lexical cast: source type value could not be interpreted as target (line ";
  const std::string number = ", expected a number)", integer = ", expected an integer)";
  const std::string noName = "LoadPolygonObjFile: a group has no name (line 2, found \"g\")";
  const std::array<std::string, 3> rows[] = {
      {"v 1 x 3", "", cast + "1, found \"x\"" + number},
      {"\n\nv 1  2 3", " four", cast + "3, found \"\"" + number},
      {"v 1 2 3\nvn 1 0x10 3", "", cast + "2, found \"0x10\"" + number},
      {"v 1 1e400 3", "", cast + "1, found \"1e400\"" + number},
      {"f / 1 1", "", cast + "1, found \"/\"" + integer},
      {"f 1 1 2147483648", " vertex vertex", cast + "1, found \"2147483648\"" + integer},
      {"l 1 x", " vertex", cast + "1, found \"x\"" + integer},
      {"f 1// 1 1", " vertex", cast + "1, found \"1//\"" + integer},
      {"f 1//1/x 2 3", " vertex", cast + "1, found \"1//1/x\"" + integer},
      {"v 1 2 3\ng", "", noName},
      {"v 1 2 3\n \tg \r\n", "", noName},
  };
  for (const auto& [text, reported, thrown] : rows) {
    const ReportCapture reports;
    std::string what;
    try {
      Load(text);
    } catch (const boost::bad_lexical_cast& error) {
      what = error.what();
    } catch (const std::out_of_range& error) {
      what = error.what();
    }
    EXPECT_EQ(what, thrown) << text;
    EXPECT_EQ(Reported(reports), reported) << text;
  }
}

TEST(LoadPolygonObjFile, ReportsShowPathLineAndValues) {
  const TempFolder folder;
  const std::string path =
      folder.Write("a.obj", ThreePoints + "# 4\n\nf 1 2 3 4\nf 1 2 9\r\n f 1 2\r\nl 1 0\nv 1 2 3 4\nf 1 1 1//7");
  const ReportCapture reports;
  LoadPolygonObjFile(path);
  EXPECT_EQ(Reported(reports), " four vertex four vertex four normal");
  EXPECT_EQ(reports.Details(), (Texts{path + ":6, found \"f 1 2 3 4\"", path + ":7, index 8, count 3",
                                      path + ":8, found \"f 1 2\"", path + ":9, index 4294967295, count 3",
                                      path + ":10, found \"v 1 2 3 4\"", path + ":11, index 6, count 0"}));
}

TEST(LoadPolygonObjFile, BoundsGrowByTheNumbersAsRead) {
  const auto model = Load("v 0.1 1e39 -3\nv 0.30000000000000004 5 nan\nv -inf 7 -1e-320\n");
  EXPECT_EQ(model->Bounds().Min(), (Types::Vector3_Base<double>(-INFINITY, 5, -3)));
  EXPECT_EQ(model->Bounds().Max(), (Types::Vector3_Base<double>(0.30000000000000004, 1e39, -1e-320)));
  EXPECT_TRUE(std::isnan(model->Vertices()->at(1).z));
}

TEST(LoadPolygonObjFile, ReadsFilesAndReportsThoseItCannot) {
  const TempFolder folder;
  const std::string file = folder.Write("a.obj", ThreePoints + "f 1 2 3\r\n");
  const auto model = LoadPolygonObjFile(file);
  EXPECT_EQ(model->Vertices()->size(), 3u);
  EXPECT_EQ(model->DefaultGroup()->indices, (std::vector<std::uint32_t>{0, 1, 2}));
  const std::string cannot = "WARNING: LoadPolygonObjFile: cannot open the file";
  const std::string failed = "WARNING: a stream failed while it was read: ";
  for (const auto& [path, report] : {std::pair(file + "x", cannot), {"", cannot}, {folder.Path().string(), failed}}) {
    const ReportCapture reports;
    EXPECT_EQ(LoadPolygonObjFile(path)->PrimitiveType(), Ogl::VertexBuffer::Undecided);
    ASSERT_EQ(reports.Details(), Texts{path});
    EXPECT_EQ(reports.Texts()[0].substr(0, report.size()), report);
  }
}

TEST(LoadPolygonObjFile, ReadsAnyStream) {
  SlowBuffer slow;
  std::istream stream(&slow);
  slow.text = ThreePoints + "f 1 2 3";
  EXPECT_EQ(LoadPolygonObj(stream)->DefaultGroup()->indices, (std::vector<std::uint32_t>{0, 1, 2}));
  std::istringstream begun(ThreePoints);
  begun.ignore(8);
  EXPECT_EQ(LoadPolygonObj(begun)->Vertices()->size(), 2u);
  std::istream none(nullptr);
  EXPECT_TRUE(LoadPolygonObj(none)->Vertices()->empty());

  // Lines before a failure stay, except for one that it may have cut off.
  const ReportCapture reports;
  slow.text = "v 1 2 3\nv 4 5 6";
  slow.fails = true;
  EXPECT_EQ(LoadPolygonObj(stream)->Vertices()->size(), 1u);
  EXPECT_EQ(reports.Texts(), Texts{"WARNING: a stream failed while it was read"});
  stream.exceptions(std::ios::badbit);
  EXPECT_THROW(LoadPolygonObj(stream), int);
}

TEST(LoadPolygonObjFile, ReadsLinesThatItsWindowCuts) {
  // Shifted by single characters, every kind of line is cut by the end of the first window at each of its characters.
  const std::string lines = "vn -0.25 1.5 0\nf 1//1 22/1/1 -3//1\r\nf 1/2/1 1/2/1 1/2/1\ng a b\nv 12.5 1e1 -7\n";
  const std::string head = "v 1 2 3\n#";
  const std::string tail = "\n" + lines + lines + lines;
  const std::string expected = Summary(head + tail);
  for (std::size_t shift = 0; shift <= 2 * lines.size(); ++shift) {
    const std::string comment((std::size_t(1) << 20) - 2 * lines.size() - head.size() + shift, '-');
    ASSERT_EQ(Summary(head + comment + tail), expected) << shift;
  }
}

TEST(LoadPolygonObjFile, ReadsLongLinesUpToABound) {
  const std::string blanks(std::size_t(2) << 20, ' ');
  EXPECT_EQ(Summary(blanks + "v 1 2 3" + blanks + "\ng " + blanks + "x\nv 4 5 6" + blanks),
            "undecided v 1 2 3 4 5 6 '' '" + blanks + "x'");

  const ReportCapture reports;
  EXPECT_EQ(Load("v 1 2 3\n#" + std::string(std::size_t(66) << 20, ' '))->Vertices()->size(), 1u);
  EXPECT_EQ(reports.Texts(), Texts{"WARNING: LoadPolygonObjFile: reading ends at a line longer than 64 MiB"});
  EXPECT_EQ(reports.Details(), Texts{"line 2"});
}

TEST(LoadPolygonObjFile, ReadsLargeFiles) {
  constexpr std::uint32_t Vertices = 70000, Faces = 100000;
  const auto number = [](std::uint32_t p_index) { return std::to_string(1 + p_index % Vertices); };
  std::string vertices;
  for (std::uint32_t i = 0; i < Vertices; ++i)
    vertices += "v " + number(i) + ".5 0 -" + number(i) + "\nvn 0 0 " + number(i) + "\n";
  for (const std::uint32_t step : {7u, 1000000u}) { // faces from one group line to the next
    std::string text = vertices;
    for (std::uint32_t i = 0; i < Faces; ++i)
      text += (i % step == step - 1 ? "g x\nf " : "f ") + number(i) + "//" + number(i + 2) + " " + number(i + 1) +
              "//" + number(i + 1) + " " + number(i + 2) + "//" + number(i) + "\n";
    const auto model = Load(text);
    ASSERT_TRUE(model->Vertices()->size() == Vertices && model->Normals()->size() == Vertices);
    for (std::uint32_t i = 0; i < Vertices; ++i) {
      const std::uint32_t normal = i < 3 ? 2 - i : i - 2; // of the first corner
      ASSERT_EQ((*model->Vertices())[i], (Ogl::Vec3<float>{float(i) + 1.5f, 0, -1.0f - float(i)}));
      ASSERT_EQ((*model->Normals())[i], (Ogl::Vec3<float>{0, 0, 1.0f + float(normal)})) << i;
    }
    std::uint32_t corner = 0;
    for (const auto& group : *model->Groups())
      for (const std::uint32_t index : group->indices) {
        ASSERT_EQ(index, (corner / 3 + corner % 3) % Vertices) << corner;
        ++corner;
      }
    EXPECT_EQ(corner, 3 * Faces);
    EXPECT_EQ(model->Groups()->size(), 1 + Faces / step);
  }
}
