#include "library/ObjScene.h"
#include "library/TriangulatePolygon.h"
#include "tests/support/Damage.h"
#include "tests/support/FileText.h"
#include "tests/support/Test.h"

namespace {

ObjScene Read(const std::string& p_text) {
  std::istringstream stream(p_text);
  return ReadObjScene(stream, "t.obj");
}

/// What a text yields, without empty items: "v POSITIONS n NORMALS t TEXCOORDS c COLOURS
/// object/group=material:INDICES".
std::string Summary(const std::string& p_text, bool p_normals = false) {
  const ObjScene scene = Read(p_text);
  std::ostringstream out;
  out << Rounded("v", scene.positions) << (p_normals ? Rounded(" n", scene.normals) : "")
      << Rounded(" t", scene.texCoords) << Rounded(" c", scene.colors);
  for (const ObjScene::Group& group : scene.groups) {
    out << ' ' << group.object << '/' << group.name
        << (group.material < 0 ? "" : '=' + scene.materials[std::size_t(group.material)].name) << ':'
        << "flp"[group.primitive];
    for (std::size_t i = 0; i < group.count; ++i)
      out << ' ' << scene.indices[group.first + i];
  }
  return out.str();
}

const std::string Square = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n";
const std::string SquareV = "v 0 0 0 1 0 0 1 1 0 0 1 0";

} // namespace

TEST(ObjScene, TakesTheDialectsOfFiles) {
  const std::array<std::string, 3> rows[] = {
      {"plain", Square + "f 1 2 3\n", SquareV + " /:f 0 1 2"},
      {"no line end", Square + "f 1 2 3", SquareV + " /:f 0 1 2"},
      {"CR LF", "v 0 0 0\r\nv 1 0 0\r\nv 1 1 0\r\nf 1 2 3\r\n", "v 0 0 0 1 0 0 1 1 0 /:f 0 1 2"},
      {"CR", "v 0 0 0\rv 1 0 0\rv 1 1 0\rf 1 2 3\r", "v 0 0 0 1 0 0 1 1 0 /:f 0 1 2"},
      {"tabs and blanks", "v\t0  0\t 0\n  v  1 0 0 \n\tv 1 1 0\t\nf\t1  2\t3  \n", "v 0 0 0 1 0 0 1 1 0 /:f 0 1 2"},
      {"continued", "\\\nv 0 \\\n0 0\nv 1 0 0\\\r\n\nv 1\\\n 1\\\n 0\nf 1 \\\n2 3\\\n",
       "v 0 0 0 1 0 0 1 1 0 /:f 0 1 2"},
      {"comments", "# a \\\nv 0 0 0 # first\n\nv 1 0 0 #\nv 1 1 0\nf 1 2 3 # all\n", ""},
      {"byte order mark", "\xEF\xBB\xBF" + Square + "f 1 2 3\n", SquareV + " /:f 0 1 2"},
      {"numbers", "v +1 -.5 1.\nv 1e-2 2E+1 .25\nv 1.#INF -1.#IND nan\n",
       "v 1 -0.5 1 0.01 20 0.25 inf nan nan /:p 0 1 2"},
      {"relative", Square + "f -4 -3 -2\nf -1 -4 3\n", SquareV + " /:f 0 1 2 3 0 2"},
      {"quad", Square + "f 1 2 3 4\n", SquareV + " /:f 0 1 2 0 2 3"},
      {"concave quads", "v 0 0 0\nv 4 0 0\nv 1 1 0\nv 0 4 0\nf 1 2 3 4\nf 2 3 4 1\nf 4 1 2 3\n",
       "v 0 0 0 4 0 0 1 1 0 0 4 0 /:f 0 1 2 0 2 3 2 3 0 2 0 1 0 1 2 0 2 3"},
      {"lines and points", Square + "l 1 2 3/1 -1\np 1 3 -1\nfo 1 2 3\n",
       SquareV + " /:l 0 1 1 2 2 3 /:p 0 2 3 /:f 0 1 2"},
      {"weight", "v 0 0 0 1\nv 1 0 0 0.5\nv 1 1 0 2\nf 1 2 3\n", "v 0 0 0 1 0 0 1 1 0 /:f 0 1 2"},
      {"colours", "v 0 0 0\nv 1 0 0 1 0.5 0\nv 1 1 0 0 0 1 0.5\n",
       "v 0 0 0 1 0 0 1 1 0 c 1 1 1 1 1 0.5 0 1 0 0 1 0.5 /:p 0 1 2"},
      {"colours to 255", "v 0 0 0 255 0 51\nv 1 0 0 0 0 0\n", "v 0 0 0 1 0 0 c 1 0 0.2 1 0 0 0 1 /:p 0 1"},
      {"groups", Square + "o box\ng a b\nf 1 2 3\ng\nf 1 3 4\nf 1 2 4\ng c\ng d\nf 2 3 4\n",
       SquareV + " box/a b:f 0 1 2 box/:f 0 2 3 0 1 3 box/d:f 1 2 3"},
      {"a material and a group named once more",
       Square + "g a\nusemtl red\nf 1 2 3\nusemtl blue\nusemtl red\nf 1 3 4\ng a\nf 1 2 4\nl 1 2\n",
       SquareV + " /a=red:f 0 1 2 0 2 3 0 1 3 /a=red:l 0 1"},
      {"materials", Square + "usemtl red\nf 1 2 3\nusemtl\nf 1 3 4\n", SquareV + " /=red:f 0 1 2 /:f 0 2 3"},
      {"a/b shares vertices", Square + "vt 0 0\nvt 1\nvt 1 1 5\nf 1/1 2/2 3/3\nf 1/1/ 3/3 4/2\n",
       SquareV + " t 0 0 1 0 1 1 1 0 /:f 0 1 2 0 2 3"},
      {"a/b splits where needed", Square + "vt 0 0\nvt 1 1\nf 1/1 2/1 3/1\nf 1/2 3/1 4/-1\nf 1/2 2/1 4/2\nv 9 9 9\n",
       SquareV + " 9 9 9 0 0 0 t 0 0 0 0 0 0 1 1 0 0 1 1 /:f 0 1 2 5 2 3 5 1 3"},
  };
  for (const auto& [name, text, expected] : rows)
    EXPECT_EQ(Summary(text), expected.empty() ? Summary("v 0 0 0\nv 1 0 0\nv 1 1 0\nf 1 2 3\n") : expected) << name;
}

TEST(ObjScene, GivesNormals) {
  const std::string roof =
      "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 1\nv 0 1 1\n"; // two squares with an edge at x = 0
  const std::string four = "vn 1 0 0\nvn 0 1 0\nvn 0 0 1\nvn 0 -1 0\n";
  const std::array<std::string, 3> rows[] = {
      {"of the file", Square + "vn 0 0 1\nvn 1 0 0\nf 1//1 2//1 3//2\nf 1//1 3//1 4//-1\n",
       SquareV + " 1 1 0 n 0 0 1 0 0 1 1 0 0 1 0 0 0 0 1 /:f 0 1 2 0 4 3"},
      {"of the vertices, one of which is not used", Square + four + "f 1//1 2//2 3//3\n",
       SquareV + " n 1 0 0 0 1 0 0 0 1 0 0 1 /:f 0 1 2"},
      {"in another order", Square + four + "f 1//4 2//3 3//2\nf 1//4 3//2 4//1\n",
       SquareV + " n 0 -1 0 0 0 1 0 1 0 1 0 0 /:f 0 1 2 0 2 3"},
      {"of the vertices, and a copy", Square + four + "f 1//1 2//2 3//3\nf 1//2 3//3 4//4\n",
       SquareV + " 0 0 0 n 1 0 0 0 1 0 0 0 1 0 -1 0 0 1 0 /:f 0 1 2 4 2 3"},
      {"some", Square + "vn 1 0 0\nf 1//1 2 3\n", SquareV + " n 1 0 0 0 0 1 0 0 1 0 0 1 /:f 0 1 2"},
      {"smooth", roof + "f 1 2 3 4\nf 1 4 6 5\n",
       "v 0 0 0 1 0 0 1 1 0 0 1 0 0 0 1 0 1 1 n 0.707 0 0.707 0 0 1 0 0 1 0.707 0 0.707 1 0 0 1 0 0"
       " /:f 0 1 2 0 2 3 0 3 5 0 5 4"},
      {"off", roof + "s off\nf 1 2 3 4\nf 1 4 6 5\n",
       "v 0 0 0 1 0 0 1 1 0 0 1 0 0 0 1 0 1 1 0 0 0 0 1 0"
       " n 0 0 1 0 0 1 0 0 1 0 0 1 1 0 0 1 0 0 1 0 0 1 0 0 /:f 0 1 2 0 2 3 6 7 5 6 5 4"},
      {"groups of smoothing", roof + "s 1\nf 1 2 3 4\ns 2\nf 1 4 6 5\ns 1\n",
       "v 0 0 0 1 0 0 1 1 0 0 1 0 0 0 1 0 1 1 0 0 0 0 1 0"
       " n 0 0 1 0 0 1 0 0 1 0 0 1 1 0 0 1 0 0 1 0 0 1 0 0 /:f 0 1 2 0 2 3 6 7 5 6 5 4"},
      {"smooth across texture seams", roof + "vt 0 0\nvt 1 1\nf 1/2 2/2 3/2 4/2\nf 1/1 4/1 6/1 5/1\n",
       "v 0 0 0 1 0 0 1 1 0 0 1 0 0 0 1 0 1 1 0 0 0 0 1 0"
       " n 0.707 0 0.707 0 0 1 0 0 1 0.707 0 0.707 1 0 0 1 0 0 0.707 0 0.707 0.707 0 0.707"
       " t 1 1 1 1 1 1 1 1 0 0 0 0 0 0 0 0 /:f 0 1 2 0 2 3 6 7 5 6 5 4"},
  };
  for (const auto& [name, text, expected] : rows)
    EXPECT_EQ(Summary(text, true), expected) << name;
}

TEST(ObjScene, FindsEachOfManyCopies) {
  constexpr int Count = 3000;
  std::string text = Square, faces;
  for (int i = 1; i <= Count; ++i) {
    const std::string number = std::to_string(i);
    text += "vt " + number + " 0\n";
    faces += "f 1/" + number + " 2/" + number + " 3/" + number + "\n";
  }
  const ObjScene scene = Read(text + faces + faces);
  EXPECT_EQ(scene.positions.size() / 3, 3u * Count + 1);
  for (std::size_t i = 0; i < scene.indices.size(); ++i) {
    EXPECT_EQ(scene.texCoords[2 * std::size_t(scene.indices[i])], float(i / 3 % Count + 1));
    EXPECT_EQ(scene.positions[3 * std::size_t(scene.indices[i])], i % 3 == 0 ? 0.f : 1.f);
  }
}

TEST(ObjScene, ReadsMaterials) {
  const TempFolder folder;
  folder.Write("my mat.mtl",
               "\xEF\xBB\xBFnewmtl red\r\nKd 1 0 0\r\n\tKs .5\nNs 20\nd 0.25\nmap_Kd -s 1 2 -clamp on wood 1.png\n"
               "newmtl glass\nTr .75\nKe 1 2 x\nbump -bm 2 none.png\nmap_Bump C:\\art\\n.png\n");
  folder.Write("wood 1.png", "");
  folder.Write("n.png", "");
  const std::string path = folder.Write("a.obj", Square + "usemtl glass\nf 1 2 3\nmtllib my mat.mtl\nmtllib a.mtl\n"
                                                          "usemtl red\nf 1 3 4\nusemtl none\nf 1 2 4\n");
  const ObjScene scene = ReadObjScene(path);
  ASSERT_EQ(scene.materials.size(), 3u);
  const ObjScene::Material &glass = scene.materials[0], &red = scene.materials[1];
  EXPECT_EQ(red.name + glass.name + scene.materials[2].name, "redglassnone");
  EXPECT_EQ(red.diffuse, (std::array<float, 3>{1, 0, 0}));
  EXPECT_EQ(red.specular, (std::array<float, 3>{0.5f, 0.5f, 0.5f}));
  EXPECT_EQ(std::tuple(red.shininess, red.opacity, glass.opacity, glass.emission[0]),
            std::tuple(20.f, 0.25f, 0.25f, 0.f));
  EXPECT_EQ(red.diffuseTexture, folder.File("wood 1.png"));
  EXPECT_EQ(glass.bumpTexture, folder.File("n.png"));
  const Texts expected{folder.File("my mat.mtl") + ":9: expected a colour",
                       folder.File("my mat.mtl") + ":10: there is no texture \"none.png\"",
                       path + ":8: there is no material file \"a.mtl\"", path + ":11: there is no material \"none\""};
  EXPECT_EQ(scene.warnings, expected);
}

TEST(ObjScene, NamesFileLineAndReason) {
  const std::pair<std::string, std::string> rows[] = {
      {"", "t.obj: expected positions (v), got none"},
      {"v 1 2\n", "t.obj:1: expected three coordinates, got \"\""},
      {"v 1 2 3\nv 1,5 2 3\n", "t.obj:2: expected three coordinates, got \"1,5\""},
      {"v 1 \\\n2 3\nv 1 2 x3\n", "t.obj:3: expected three coordinates, got \"x3\""},
      {"v 1 2 3 x\n", "t.obj:1: expected a number, got \"x\""},
      {Square + "f 1 2 5\n", "t.obj:5: expected a position from 1 to 4 or from -4 to -1, got \"5\""},
      {Square + "f 1 2 0\n", "t.obj:5: expected a position from 1 to 4 or from -4 to -1, got \"0\""},
      {Square + "l 1 -5\n", "t.obj:5: expected a position from 1 to 4 or from -4 to -1, got \"-5\""},
      {Square + "f 1//1 2//1 3//1\n", "t.obj:5: expected a normal above the line, got \"1\""},
      {Square + "vt 0 0\nf 1/2 2/1 3/1\n",
       "t.obj:6: expected a texture coordinate from 1 to 1 or from -1 to -1, got \"2\""},
      {Square + "f 1 2 3a\n", "t.obj:5: expected a corner such as 1, 1/2, 1//3 or 1/2/3, got \"3a\""},
      {Square + "f 1/0 2 3\n", "t.obj:5: expected a corner such as 1, 1/2, 1//3 or 1/2/3, got \"1/0\""},
      {Square + "f 99999999999 2 3\n", "t.obj:5: expected a corner such as 1, 1/2, 1//3 or 1/2/3, got \"99999999999\""},
      {"\xFF\xFEv", "t.obj: expected UTF-8, got UTF-16; save the file as UTF-8"},
      {std::string("v\0 \0", 4), "t.obj: expected UTF-8, got UTF-16; save the file as UTF-8"},
      {std::string("v 1 2 3\nx\0y 1\n", 14), "t.obj: expected a text file, got binary data"},
  };
  for (const auto& [text, message] : rows)
    EXPECT_EQ(ErrorOf<ObjError>([&, part = text] { Read(part); }), message) << text;
  EXPECT_EQ(ErrorOf<ObjError>([] { ReadObjScene("/none.obj"); }),
            "/none.obj: cannot be opened: No such file or directory");
  EXPECT_EQ(ErrorOf<ObjError>([] { ReadObjScene("/"); }), "/: expected a file, got a folder");
  const ObjScene scene = Read(Square + "f 1 2\nsurf 1\nsurf 2\nl 1\nf 1 2 3\n");
  const Texts expected{"t.obj:5: a face of less than three corners is left out",
                       "t.obj:6: statements \"surf\" are not read",
                       "t.obj:8: a line of less than two points is left out"};
  EXPECT_EQ(scene.warnings, expected);
  EXPECT_EQ(scene.indices.size(), 3u);
}

TEST(ObjScene, ReportsProgressAndCancels) {
  const TempFolder folder;
  std::string text;
  for (int i = 0; i < 400000; ++i)
    text += "v 1 2 3\r\n"; // blocks end between CR and LF, too
  const std::string path = folder.Write("a.obj", text);
  std::vector<double> shares;
  const ObjScene scene = ReadObjScene(path, [&](double p_share) { return shares.push_back(p_share), true; });
  EXPECT_EQ(scene.positions.size(), 1200000u);
  EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
  EXPECT_TRUE(shares.size() > 3 && shares.front() == 0 && shares.back() == 1);
  EXPECT_EQ(ErrorOf<ObjError>([&] { ReadObjScene(path, [](double p_share) { return p_share < 0.5; }); }),
            path + ": cancelled");
}

TEST(ObjScene, SurvivesDamage) {
  const std::string text = "mtllib a.mtl\no a\ng b c\ns 1\n" + Square +
                           "vn 0 0 1\nvt 0 0\nvt 1 0\\\n 2\nusemtl m\n"
                           "f 1/1/1 2/2/1 3/1/1 4/2/1\ns off\nf -1//-1 -2//1 3//1\nl 1 2 3\np 1 2\nf 1 2 3 4 2 3 1\n";
  CheckDamage<ObjError>(text, [](const std::string& p_text) {
    const ObjScene scene = Read(p_text);
    const std::size_t vertices = scene.positions.size() / 3;
    EXPECT_TRUE(
        std::all_of(scene.indices.begin(), scene.indices.end(), [&](std::uint32_t p_i) { return p_i < vertices; }));
    EXPECT_TRUE(scene.normals.empty() || scene.normals.size() == 3 * vertices);
    EXPECT_TRUE(scene.texCoords.empty() || scene.texCoords.size() == 2 * vertices);
  });
}

namespace {

using Vector = Types::Vector3_Base<double>;

/// The sum of the areas of the triangles, and the number of those wound against the normal or without area.
std::pair<double, int> Areas(const std::vector<Vector>& p_polygon, const Vector& p_normal) {
  const std::vector<std::uint32_t> triangles = TriangulatePolygon(p_polygon.data(), p_polygon.size());
  EXPECT_EQ(triangles.size(), 3 * (p_polygon.size() - 2));
  double area = 0;
  int wrong = 0;
  for (std::size_t i = 0; i < triangles.size(); i += 3) {
    const Vector& a = p_polygon[triangles[i]];
    const double part = Dot(Cross(p_polygon[triangles[i + 1]] - a, p_polygon[triangles[i + 2]] - a), p_normal) / 2;
    area += std::abs(part);
    wrong += !(part > 0);
  }
  return {area, wrong};
}

std::vector<Vector> Flat(const std::vector<std::array<double, 2>>& p_points) {
  std::vector<Vector> points;
  for (const auto& [x, y] : p_points)
    points.push_back({5, x, y}); // the plane x = 5, counter-clockwise seen from +x
  return points;
}

} // namespace

TEST(TriangulatePolygon, CoversConcavePolygonsOnce) {
  const std::tuple<const char*, std::vector<Vector>, double> rows[] = {
      {"L", Flat({{0, 0}, {2, 0}, {2, 1}, {1, 1}, {1, 2}, {0, 2}}), 3},
      {"collinear corners", Flat({{0, 0}, {1, 0}, {2, 0}, {2, 2}, {1, 2}, {0, 2}, {0, 1}}), 4},
      {"comb", Flat({{0, 0}, {5, 0}, {5, 3}, {4, 3}, {4, 1}, {3, 1}, {3, 3}, {2, 3}, {2, 1}, {1, 1}, {1, 3}, {0, 3}}),
       11},
      {"a hole by a bridge", Flat({{0, 0}, {3, 0}, {3, 3}, {0, 3}, {0, 0}, {1, 1}, {1, 2}, {2, 2}, {2, 1}, {1, 1}}), 8},
  };
  for (const auto& [name, polygon, area] : rows)
    for (std::size_t start = 0; start < polygon.size(); ++start) {
      std::vector<Vector> turned = polygon;
      std::rotate(turned.begin(), turned.begin() + std::ptrdiff_t(start), turned.end());
      const auto [sum, wrong] = Areas(turned, {1, 0, 0});
      EXPECT_NEAR(sum, area, 1e-9) << name << start;
      EXPECT_EQ(wrong, 0) << name << start;
    }
}

TEST(TriangulatePolygon, CoversRandomStarsInTiltedPlanes) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (const std::size_t count : {5u, 8u, 50u, 1000u, 20000u}) {
    const Vector normal = Normalize(Vector(unit(random), unit(random) - 2, unit(random)));
    const Vector u = Normalize(Cross(normal, Vector(0, 0, 1))), v = Cross(normal, u);
    std::vector<Vector> star;
    double expected = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const double angle = 6.283185307179586 * double(i) / double(count), radius = 0.2 + unit(random);
      star.push_back(Vector(1e3, 2e3, 3e3) + (u * std::cos(angle) + v * std::sin(angle)) * radius);
    }
    for (std::size_t i = 0; i < count; ++i)
      expected +=
          Dot(Cross(star[i] - Vector(1e3, 2e3, 3e3), star[(i + 1) % count] - Vector(1e3, 2e3, 3e3)), normal) / 2;
    const auto [sum, wrong] = Areas(star, normal);
    EXPECT_NEAR(sum, expected, 1e-6) << count;
    EXPECT_EQ(wrong, 0) << count;
  }
}

TEST(TriangulatePolygon, EndsOnDegeneratePolygons) {
  EXPECT_TRUE(TriangulatePolygon(nullptr, 5).empty());
  for (const std::vector<Vector>& polygon :
       {Flat({{0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}}), Flat({{0, 0}, {1, 0}, {2, 0}, {3, 0}}),
        Flat({{0, 0}, {NaN, 0}, {2, 1}, {0, 1}}), Flat({{0, 0}, {2, 2}, {2, 0}, {0, 2}, {-1, 1}}),
        Flat({{0, 3}, {-2, -3}, {3, 1}, {-3, 1}, {2, -3}})})
    EXPECT_EQ(TriangulatePolygon(polygon.data(), polygon.size()).size(), 3 * (polygon.size() - 2));
  std::mt19937 random(2);
  std::vector<Vector> tangle(20000);
  for (Vector& point : tangle)
    point = {double(random() % 1000), double(random() % 1000), 0};
  EXPECT_EQ(TriangulatePolygon(tangle.data(), tangle.size()).size(), 3 * (tangle.size() - 2));
}

TEST(ObjScene, CornersOfEqualNumbersMayBeMixedWithOthers) {
  using Corner = std::array<int, 3>; // numbers of position, texture coordinates and normal; 0 for none
  constexpr int Positions = 40, Used = 35, Corners = 90; // of triangles
  const auto at = [](int p_number, int p_k) { return float((p_number * 7 + p_k * 5) % 11) / 8; };
  const Corner own[] = {{1, 0, 0}, {1, 1, 0}, {1, 0, 1}, {1, 1, 1}}; // times the number
  for (int row = 0; row < 4 * 4 * 2; ++row) {
    const int foreign = row / 4 % 4 * 15; // after so many faces; 45: none
    const int others = row < 16 ? Used : Positions + 5;
    std::mt19937 random(static_cast<unsigned int>(row));
    std::vector<std::vector<Corner>> faces;
    for (int i = 0; i < 44; ++i) {
      std::vector<Corner>& face = faces.emplace_back();
      if (i == foreign)
        face = {{1, 2, 3}, {2, 2, 3}, {3, 3, 2}};
      while (face.size() < (i < 30 ? 3 : 4)) {
        const int number = 1 + int(random() % Used);
        face.push_back({number, number * own[row % 4][1], number * own[row % 4][2]});
      }
    }
    std::string text, relative;
    for (int i = 1; i <= std::max(Positions, others); ++i)
      for (const auto& [keyword, count] : {std::pair("v", Positions), std::pair("vt", others), std::pair("vn", others)})
        if (i <= count)
          text += keyword + Rounded("", std::vector<float>{at(i, 0), at(i, 1), at(i, 2) + 1}) + '\n';
    relative = text;
    for (const std::vector<Corner>& face : faces) {
      for (std::string* const target : {&text, &relative}) {
        *target += 'f';
        for (const auto& [position, texCoord, normal] : face) {
          const int by = target == &relative ? Positions + 1 : 0;
          *target += ' ' + std::to_string(position - by);
          *target += (texCoord != 0 ? '/' + std::to_string(texCoord) : normal != 0 ? "/" : "");
          *target += normal != 0 ? '/' + std::to_string(normal) : "";
        }
        *target += '\n';
      }
    }
    const ObjScene scene = Read(text), oneByOne = Read(relative);
    EXPECT_TRUE(scene.positions == oneByOne.positions && scene.normals == oneByOne.normals &&
                scene.texCoords == oneByOne.texCoords && scene.indices == oneByOne.indices)
        << row;
    ASSERT_EQ(scene.indices.size(), std::size_t(Corners + 14 * 6));
    for (std::size_t i = 0; i < Corners; ++i) {
      const auto [position, texCoord, normal] = faces[i / 3][i % 3];
      const std::size_t vertex = scene.indices[i];
      const auto expect = [&](const std::vector<float>& p_array, int p_size, int p_number) {
        for (int k = 0; k < p_size; ++k)
          EXPECT_EQ(p_array[std::size_t(p_size) * vertex + std::size_t(k)],
                    p_number == 0 ? 0 : at(p_number, k) + (k == 2 ? 1 : 0))
              << row << ' ' << i;
      };
      expect(scene.positions, 3, position);
      if (!scene.texCoords.empty())
        expect(scene.texCoords, 2, texCoord);
      if (normal != 0)
        expect(scene.normals, 3, normal);
    }
    EXPECT_EQ(scene.texCoords.empty(), own[row % 4][1] == 0 && foreign >= 44) << row;
    const std::size_t unused = 3 * (Positions - 1);
    EXPECT_EQ(std::vector<float>(&scene.normals[unused], &scene.normals[unused] + 3), (std::vector<float>{0, 0, 1}));
    EXPECT_LE(scene.positions.size() / 3, Positions + (foreign < 44 ? 3u : 0u)) << row;
  }
}
