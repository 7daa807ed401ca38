#include "io/ReadMesh.h"
#include "io/FileError.h"
#include "tests/support/Damage.h"
#include "tests/support/FileText.h"
#include "tests/support/Formats.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Io;

namespace {

Mesh Read(const std::string& p_bytes, const std::string& p_name = "mesh") {
  std::istringstream stream(p_bytes);
  return ReadMesh(stream, p_name);
}

/// What a file yields, without empty items: "v POSITIONS n NORMALS t TEXCOORDS c COLOURS name:INDICES ! WARNINGS".
std::string Summary(const Mesh& p_mesh) {
  std::ostringstream out;
  out << Rounded("v", p_mesh.positions) << Rounded(" n", p_mesh.normals) << Rounded(" t", p_mesh.texCoords)
      << Rounded(" c", p_mesh.colors);
  for (const Mesh::Group& group : p_mesh.groups) {
    out << ' ' << group.name << ':' << "flp"[group.primitive];
    for (std::size_t i = 0; i < group.count; ++i)
      out << ' ' << p_mesh.indices[group.first + i];
  }
  for (const std::string& warning : p_mesh.warnings)
    out << " ! " << warning;
  return out.str();
}

const std::string SquareProperties = "element vertex 4\nproperty float x\nproperty float y\nproperty double z\n"
                                     "property uchar red\nproperty uint8 green\nproperty uchar blue\n"
                                     "element face 2\nproperty list uchar int vertex_indices\nend_header\n";
const std::string SquareText = "ply\nformat ascii 1.0\ncomment made by hand\n" + SquareProperties +
                               "0 0 0 255 0 0\n2 0 0 0 255 0\n2 1 0 0 0 255\n0 1 0 51 51 51\n4 0 1 2 3\n3 0 2 1\n";
const std::string SquareSummary = "v 0 0 0 2 0 0 2 1 0 0 1 0 n 0 0 1 0 0 1 0 0 1 0 0 1"
                                  " c 1 0 0 1 0 1 0 1 0 0 1 1 0.2 0.2 0.2 1 :f 0 1 2 0 2 3 0 2 1";

std::string BinarySquare(bool p_bigEndian) {
  std::string bytes =
      std::string("ply\nformat binary_") + (p_bigEndian ? "big" : "little") + "_endian 1.0\n" + SquareProperties;
  const double vertices[4][6] = {
      {0, 0, 0, 255, 0, 0}, {2, 0, 0, 0, 255, 0}, {2, 1, 0, 0, 0, 255}, {0, 1, 0, 51, 51, 51}};
  for (const auto& v : vertices)
    bytes += BytesOf<float>({v[0], v[1]}, p_bigEndian) + BytesOf<double>({v[2]}, p_bigEndian) +
             BytesOf<std::uint8_t>({v[3], v[4], v[5]});
  return bytes + "\4" + BytesOf<std::int32_t>({0, 1, 2, 3}, p_bigEndian) + "\3" +
         BytesOf<std::int32_t>({0, 2, 1}, p_bigEndian);
}

std::string Replaced(std::string p_text, const std::string& p_from, const std::string& p_to) {
  p_text.replace(p_text.find(p_from), p_from.size(), p_to);
  return p_text;
}

std::string TextPly(const std::string& p_header, const std::string& p_data) {
  return "ply\nformat ascii 1.0\n" + p_header + "end_header\n" + p_data;
}
const std::string Xyz = "property float x\nproperty float y\nproperty float z\n";

const std::string TextStl =
    "solid first one\n facet normal 0 0 1\n  outer loop\n   vertex 0 0 0\n   vertex 1 0 -0\n"
    "   vertex 0 1 0\n  endloop\n endfacet\nendsolid first one\nSOLID\r\n"
    "FACET NORMAL nan nan nan\r\nOUTER LOOP VERTEX 0 1 0 VERTEX 1 0 0 VERTEX 1 1e0 0 ENDLOOP\r\n"
    "ENDFACET\r\nENDSOLID\r\n";
const std::string StlSummary = "v 0 0 0 1 0 0 0 1 0 1 1 0 n 0 0 1 0 0 1 0 0 1 0 0 1";

std::string BinaryStl(std::string p_header) {
  p_header.resize(80, ' ');
  return p_header + BytesOf<std::uint32_t>({2}) + BytesOf<float>({9, 9, 9, 0, 0, 0, 1, 0, 0, 0, 1, 0}) +
         BytesOf<std::uint16_t>({7}) + BytesOf<float>({0, 0, 0, 0, 1, -0.0, 1, 0, 0, 1, 1, 0}) +
         BytesOf<std::uint16_t>({0});
}

/// A quad with a material under a node that moves it by 10 in x, and a coloured triangle without normals and indices
/// under one that mirrors it; with the JSON and the data of a binary file.
const std::string GltfJson =
    R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0,1]}],)"
    R"("nodes":[{"mesh":0,"name":"quad","translation":[10,0,0]},{"mesh":1,"scale":[-2,2,2]}],)"
    R"("meshes":[{"name":"q","primitives":[{"attributes":{"POSITION":0,"NORMAL":1,"TEXCOORD_0":2},)"
    R"("indices":3,"material":0}]},{"primitives":[{"attributes":{"POSITION":4,"COLOR_0":5}}]}],)"
    R"("materials":[{"name":"paint","pbrMetallicRoughness":{"baseColorFactor":[1,0.5,0.25,0.75],)"
    R"("baseColorTexture":{"index":0}}}],"textures":[{"source":0}],"images":[{"uri":"a b.png"}],)"
    R"("accessors":[{"bufferView":0,"componentType":5126,"count":4,"type":"VEC3"},)"
    R"({"bufferView":0,"byteOffset":48,"componentType":5126,"count":4,"type":"VEC3"},)"
    R"({"bufferView":0,"byteOffset":96,"componentType":5126,"count":4,"type":"VEC2"},)"
    R"({"bufferView":0,"byteOffset":128,"componentType":5123,"count":6,"type":"SCALAR"},)"
    R"({"bufferView":0,"byteOffset":140,"componentType":5126,"count":3,"type":"VEC3"},)"
    R"({"bufferView":0,"byteOffset":176,"componentType":5126,"count":3,"type":"VEC4"}],)"
    R"("bufferViews":[{"buffer":0,"byteLength":224}],"buffers":[{"byteLength":224}]})";
const std::string GltfSummary =
    "v 10 0 0 11 0 0 11 1 0 10 1 0 0 0 0 -4 0 0 0 4 0"
    " n 0 1 0 0 1 0 0 1 0 0 1 0 0 0 1 0 0 1 0 0 1"
    " t 0 0 1 0 1 1 0 1 0 0 0 0 0 0 c 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 0 0 1 0 1 0 1 0 0 1 0.5"
    " q:f 0 1 2 0 2 3 ";

std::string GltfData() {
  // Normals along y, which triangles would not give.
  return BytesOf<float>(
             {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 1, 1, 1, 0, 0, 0}) +
         BytesOf<std::uint16_t>({0, 1, 2, 0, 2, 3}) +
         BytesOf<float>({0, 0, 0, 2, 0, 0, 0, 2, 0, 1, 0, 0, 1, 0, 1, 0, 1, 0, 0, 1, 0.5});
}

std::string Glb(std::string p_json, const std::string& p_data) {
  p_json.resize((p_json.size() + 3) / 4 * 4, ' ');
  const auto sizeOf = [](const std::string& p_part) { return double(p_part.size()); };
  const std::string json = BytesOf<std::uint32_t>({sizeOf(p_json)});
  const std::string data = BytesOf<std::uint32_t>({sizeOf(p_data)});
  const std::string head = "glTF" + BytesOf<std::uint32_t>({2, 28 + sizeOf(p_json) + sizeOf(p_data)});
  return head + json + "JSON" + p_json + data + std::string("BIN\0", 4) + p_data;
}

} // namespace

TEST(ReadMesh, ReadsGltf) {
  const std::string binary = Glb(GltfJson, GltfData());
  if (!Reads("glTF")) {
    EXPECT_EQ(ErrorOf<FileError>([&] { Read(binary); }),
              "mesh: this build does not read glTF files; build it with the package libassimp-dev");
    return;
  }
  const TempFolder folder;
  folder.Write("a.bin", GltfData());
  folder.Write("a b.png", "x");
  const std::string path =
      folder.Write("a.txt", Replaced(GltfJson, "{\"byteLength\":224}", "{\"byteLength\":224,\"uri\":\"a.bin\"}"));
  const Mesh text = ReadMesh(path);
  EXPECT_EQ(Summary(text).substr(0, GltfSummary.size()), GltfSummary);
  EXPECT_EQ(text.groups[0].object, "quad");
  EXPECT_EQ(text.materials.at(std::size_t(text.groups[0].material)).diffuseTexture, folder.File("a b.png"));
  EXPECT_EQ(text.materials[0].diffuse, (std::array<float, 3>{1, 0.5f, 0.25f}));
  EXPECT_EQ(text.materials[0].opacity, 0.75f);
  // The mirrored triangle is counter-clockwise around its normal.
  EXPECT_EQ(std::vector<std::uint32_t>(text.indices.end() - 3, text.indices.end()),
            (std::vector<std::uint32_t>{6, 5, 4}));
  const Mesh mesh = Read(binary);
  EXPECT_EQ(Summary(mesh).substr(0, GltfSummary.size()), GltfSummary);
  EXPECT_EQ(mesh.warnings, (std::vector<std::string>{"mesh: the texture a b.png is missing"}));
  const Mesh inside =
      Read(Glb(Replaced(GltfJson, "{\"uri\":\"a b.png\"}", R"({"bufferView":0,"mimeType":"image/png"})"), GltfData()));
  EXPECT_EQ(std::string(inside.materials[0].diffuseImage.begin(), inside.materials[0].diffuseImage.end()), GltfData());

  const std::string moved = R"("baseColorTexture":{"extensions":{"KHR_texture_transform":{"offset":[0.5,0]}},)";
  EXPECT_EQ(Read(Glb(Replaced(Replaced(GltfJson, "\"baseColorTexture\":{", moved), "\"scene\":0",
                              "\"scene\":0,\"extensionsUsed\":[\"KHR_texture_transform\"]"),
                     GltfData()))
                .warnings.at(1),
            "mesh: the texture transform of material \"paint\" is not read");

  const std::pair<std::string, std::string> faults[] = {
      {Replaced(binary, "2.0", "1.0"), "mesh: expected glTF of version 2, got \"1.0\""},
      {binary.substr(0, 100), "mesh: byte 12: expected a chunk of "},
      {Glb(Replaced(GltfJson, "\"count\":4", "\"count\":4e9"), ""), "mesh: expected accessors within the buffers, got"},
      {Glb(Replaced(GltfJson, "\"mesh\":1", "\"children\":[1]"), ""), "mesh: expected at most 256 levels of nodes"},
      {Glb(Replaced(GltfJson, "\"mesh\":1", "\"children\":[2]"), ""), "mesh: node 1: expected children that are nodes"},
      {Glb(Replaced(GltfJson, "\"scene\":0", "\"extensionsRequired\":[\"KHR_x\"]"), GltfData()),
       "mesh: needs the extension \"KHR_x\", which is not read"},
      {GltfJson, "mesh: not a sound glTF file: "},
      {"{\"a\":}", "mesh: byte 6 of the JSON: "},
  };
  for (const auto& [bytes, message] : faults)
    EXPECT_EQ(ErrorOf<FileError>([&, part = bytes] { Read(part); }).substr(0, message.size()), message);
}

TEST(ReadMesh, SplitsVerticesAtCreases) {
  // A roof of two squares with an angle of 60 degrees between them, and a flat square beside it.
  std::string roof = "solid roof\n";
  const char* const triangles[] = {"0 0 0 1 0 0 1 1 0", "0 0 0 1 1 0 0 1 0", "0 1 0 1 1 0 1 1.5 0.8660254",
                                   "0 1 0 1 1.5 0.8660254 0 1.5 0.8660254", "1 0 0 2 0 0 1 1 0"};
  for (const char* const triangle : triangles) {
    std::istringstream numbers(triangle);
    roof += "facet normal 0 0 0 outer loop";
    for (std::string x, y, z; numbers >> x >> y >> z;)
      roof += " vertex " + x + ' ' + y + ' ' + z;
    roof += " endloop endfacet\n";
  }
  const auto vertices = [&](std::optional<double> p_angle) {
    std::istringstream stream(roof + "endsolid roof\n");
    const Mesh mesh = ReadMesh(stream, "a.stl", MeshOptions{p_angle});
    EXPECT_EQ(mesh.normals.size(), mesh.positions.size());
    return mesh.positions.size() / 3;
  };
  EXPECT_EQ(vertices({}), 9u) << "two vertices of the ridge twice";
  EXPECT_EQ(vertices(59), 9u);
  EXPECT_EQ(vertices(61), 7u);
  std::istringstream stream(roof + "endsolid roof\n");
  const Mesh mesh = ReadMesh(stream, "a.stl");
  const auto normal = [&](std::size_t p_corner) { return &mesh.normals[3 * mesh.indices[p_corner]]; };
  EXPECT_FLOAT_EQ(normal(2)[2], 1) << "flat on one side of the ridge";
  EXPECT_FLOAT_EQ(normal(6)[2], 0.5f) << "and sloping on the other one";
}

TEST(ReadMesh, ReadsEachFormat) {
  const std::string points = TextPly("element vertex 2\n" + Xyz, "1 2 3\n4 5 6");
  const std::array<std::string, 3> rows[] = {
      {"PLY text", SquareText, SquareSummary},
      {"PLY text, all of it one line", Replaced(SquareText, "\n2 0 0", " 2 0 0"), SquareSummary},
      {"PLY little endian", BinarySquare(false), SquareSummary},
      {"PLY big endian", BinarySquare(true), SquareSummary},
      {"PLY with bytes behind", BinarySquare(true) + "ab",
       SquareSummary + " ! mesh: 2 bytes behind the last element are left out"},
      {"PLY with comments in front of the format, and without the word",
       TextPly("Created by a program, element face 3\nelement vertex 1\n" + Xyz, "1 2 3")
           .replace(4, 0, "comment x\nobj_info y\n"),
       "v 1 2 3 :p 0 ! mesh: 1 lines of the header are left out"},
      {"PLY with colours of faces",
       TextPly("element vertex 3\n" + Xyz +
                   "element face 1\nproperty uchar red\nproperty list uchar int vertex_index\n"
                   "property list uchar float texcoord\n",
               "0 0 0 1 0 0 0 1 0 255 3 0 1 2 0"),
       "v 0 0 0 1 0 0 0 1 0 n 0 0 1 0 0 1 0 0 1 :f 0 1 2 ! mesh: colours of faces are not read"
       " ! mesh: texture coordinates of faces are not read"},
      {"PLY lists without entries",
       Replaced(TextPly("element vertex 1\n" + Xyz + "element face 2\nproperty list uchar int vertex_index\n", ""),
                "ascii", "binary_little_endian") +
           BytesOf<float>({1, 2, 3}) + BytesOf<std::uint8_t>({0, 0}),
       "v 1 2 3 :p 0 ! mesh: 2 faces of less than three corners are left out"},
      {"PLY points", points, "v 1 2 3 4 5 6 :p 0 1"},
      {"PLY edges",
       Replaced(points, "end_header", "element edge 1\nproperty int vertex1\nproperty int vertex2\nend_header") +
           "\n1 0\n",
       "v 1 2 3 4 5 6 :l 1 0"},
      {"PLY concave, faces first",
       TextPly("element face 2\nproperty list int64 ushort vertex_index\nelement vertex 4\n" + Xyz,
               "4 3 0 1 2 2 0 1 0 0 0 4 0 0 1 1 0 0 4 0"),
       "v 0 0 0 4 0 0 1 1 0 0 4 0 n 0 0 1 0 0 1 0 0 1 0 0 1 :f 2 3 0 0 1 2"
       " ! mesh: 1 faces of less than three corners are left out"},
      {"PLY strips",
       TextPly("element vertex 4\n" + Xyz + "element tristrips 1\nproperty list int int vertex_indices\n",
               "0 0 0 1 0 0 0 1 0 1 1 0  8 0 1 2 3 -1 0 2 1"),
       "v 0 0 0 1 0 0 0 1 0 1 1 0 n 0 0 1 0 0 1 0 0 1 0 0 1 :f 0 1 2 2 1 3 0 2 1"},
      {"PLY normals, texture coordinates, what is skipped",
       TextPly("obj_info x\nelement vertex 1\nproperty list uchar float tags\n" + Xyz +
                   "property float nx\nproperty float ny\nproperty float nz\nproperty float s\nproperty float t\n"
                   "element statement 1\nproperty int a\n",
               "2 7 8 1 2 3 0 1 0 .5 +.25 9"),
       "v 1 2 3 n 0 1 0 t 0.5 0.25 :p 0 ! mesh: elements \"statement\" are not read"},
      {"STL text", TextStl, StlSummary + " first one:f 0 1 2 :f 2 1 3"},
      {"STL text with a byte order mark and a colour",
       "\xEF\xBB\xBF" + Replaced(TextStl, "solid first one", "solid first one\ncolor 0.5 0.5 0.5"),
       StlSummary + " first one:f 0 1 2 :f 2 1 3"},
      {"STL binary", BinaryStl("made by hand"), StlSummary + " :f 0 1 2 2 1 3"},
      {"STL binary, solid", BinaryStl("solid facet normal"), StlSummary + " :f 0 1 2 2 1 3"},
      {"OBJ", "# c\n\n# v\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n", "v 0 0 0 1 0 0 0 1 0 n 0 0 1 0 0 1 0 0 1 :f 0 1 2"},
  };
  for (const auto& [name, bytes, expected] : rows) {
    std::string summary;
    const std::string error = ErrorOf<FileError>([&, part = bytes] { summary = Summary(Read(part)); });
    EXPECT_EQ(error + summary, expected) << name;
  }
}

/// A ring as one face that goes around both its edges, from x = -1.146, with two corners at each end of the seam.
TEST(ReadMesh, DividesARingOfAModellingProgram) {
  const Mesh mesh = ReadMesh(VEK_SOURCE_DIR "/tests/io/files/concave_polygon.obj");
  ASSERT_EQ(mesh.indices.size(), 3u * 64);
  ASSERT_EQ(mesh.materials.size(), 1u);
  EXPECT_FLOAT_EQ(mesh.materials[0].diffuse[2], 0.411765f);
  double area = 0;
  for (std::size_t i = 0; i < mesh.indices.size(); i += 3) {
    const auto at = [&](std::size_t p_corner, std::size_t p_axis) {
      return double(mesh.positions[3 * std::size_t{mesh.indices[i + p_corner]} + p_axis]);
    };
    area += std::abs((at(1, 1) - at(0, 1)) * (at(2, 2) - at(0, 2)) - (at(2, 1) - at(0, 1)) * (at(1, 2) - at(0, 2))) / 2;
  }
  EXPECT_NEAR(area, 0.245497, 1e-5); // by Python: no triangle overlaps another
}

TEST(ReadMesh, ReadsFilesOfOtherPrograms) {
  // Their numbers as Python's struct and an editor show them. The fan of the glTF file has the indices 0 3 2 1.
  const std::pair<std::string, std::string> rows[] = {
      {"cube_binary.ply", "v 0 0 0 0 0 1 0 1 1 0 1 0 1 0 0 1 0 1 1 1 1 1 1 0 | :f 0 1 2 0 2 3 7 6 5 7 5 4 0 4 5 0 5 1 "
                          "1 5 6 1 6 2 2 6 7 2 7 3 3 7 4 3 4 0"},
      {"triangle_with_two_solids.stl",
       "v 1 1 0 -1 1 0 0 -1 0 3 3 0 2 3 0 0 2 0 | testTriangle_1:f 0 1 2 testTriangle_2:f 3 4 5"},
      {"Mesh_PrimitiveMode_12.gltf", "v 0.5 -0.5 0 -0.5 -0.5 0 -0.5 0.5 0 0.5 0.5 0 | meshes[0]:f 0 3 2 0 2 1"},
  };
  for (const auto& [name, expected] : rows) {
    const std::string path = VEK_SOURCE_DIR "/tests/io/files/" + name;
    if (name.find(".gltf") != std::string::npos && !Reads("glTF")) {
      EXPECT_NE(ErrorOf<FileError>([&] { ReadMesh(path); }).find("libassimp-dev"), std::string::npos);
      continue;
    }
    std::string summary = Summary(ReadMesh(path));
    const std::size_t normals = summary.find(" n "), groups = summary.find_first_not_of(" n0123456789.-", normals);
    EXPECT_EQ(summary.replace(normals, summary.rfind(' ', groups) - normals, " |"), expected);
  }
}

TEST(ReadMesh, RecognisesByContentThenByName) {
  const TempFolder folder;
  EXPECT_EQ(Summary(ReadMesh(folder.Write("a.stl", SquareText))), SquareSummary);
  EXPECT_EQ(ReadMesh(folder.Write("b.ply", TextStl)).groups[0].name, "first one");
  EXPECT_EQ(ReadMesh(folder.Write("c.obj", BinaryStl("v 1 2 3"))).indices.size(), 6u);
  EXPECT_EQ(ReadMesh(folder.Write("d.txt", "v 1 2 3\np 1\n")).indices.size(), 1u);
  EXPECT_EQ(ReadMesh(folder.Write("e.OBJ", "vp 1\nv 1 2 3\np 1\n")).indices.size(), 1u);
  const std::string textured = Replaced(SquareText, "made by hand", "\ncomment TextureFile t x.png");
  folder.Write("t x.png", "");
  EXPECT_EQ(ReadMesh(folder.Write("f", textured)).materials.at(0).diffuseTexture, folder.File("t x.png"));
  std::string large;
  while (large.size() < 3000000)
    large += "v 1 2 3\n";
  EXPECT_EQ(ReadMesh(folder.Write("g", large)).positions.size() / 3, large.size() / 8);
}

TEST(ReadMesh, NamesFileLineAndReason) {
  const std::string square = BinarySquare(false);
  const std::pair<std::string, std::string> rows[] = {
      {"", "mesh: expected OBJ, PLY, STL or glTF, got an empty file"},
      {"hello\nworld", "mesh:1: expected OBJ, PLY, STL or glTF, got \"hello\""},
      {"v 1 2 3\nv 1 2\n", "mesh:2: expected three coordinates, got \"\""},
      {"\xFF\xFEv", "mesh: expected UTF-8, got UTF-16; save the file as UTF-8"},
      {"ply\nformat ebcdic 1.0\n", "mesh:2: expected ascii, binary_little_endian or binary_big_endian, got \"ebcdic\""},
      {"ply\nformat ascii 1.0\nelement vertex -1\n", "mesh:3: expected a number of elements, got \"-1\""},
      {"ply\nformat ascii 1.0\nproperty int x\n",
       "mesh:3: expected element, property, comment, obj_info or end_header, got \"property\""},
      {TextPly("element vertex 1\nproperty list float int x\n", ""),
       "mesh:4: expected a type of integers, got \"float\""},
      {TextPly("element vertex 1\nproperty int x\n", "1"), "mesh: expected the properties x, y and z of vertices"},
      {TextPly("element vertex 3\n" + Xyz, "1 2 3 4"), "mesh: expected 3 elements \"vertex\", got 7 bytes"},
      {TextPly("element vertex 18446744073709551615\n" + Xyz, "1 2 3 4"),
       "mesh: expected at most 2^32 - 1 vertices, got 18446744073709551615"},
      {Replaced(SquareText, "2 1 0", "2 x 0"), "mesh:16: expected a number, got \"x\""},
      {Replaced(SquareText, "4 0 1 2 3", "4 0 1 2 4"), "mesh:18: expected a vertex from 0 to 3, got \"4\""},
      {Replaced(SquareText, "4 0 1 2 3", "-4 0 1 2 3"),
       "mesh:18: expected a number of list entries from 0 to 10, got \"-4\""},
      {SquareText.substr(0, SquareText.size() - 3), "mesh:19: expected a number, got \"the end of the file\""},
      {square.substr(0, square.size() - 1),
       "mesh: byte " + std::to_string(square.size() - 4) + ": expected a number, got the end of the file"},
      {BinaryStl("").substr(0, 100), "mesh.stl: byte 80: expected triangles in 184 bytes, got a file of 100 bytes"},
      {BinaryStl("").substr(0, 50), "mesh.stl: expected a header of 84 bytes, got 50 bytes"},
      {Replaced(TextStl, "vertex 0 1 0", "vertex 0 1"), "mesh:7: expected a number, got \"endloop\""},
      {Replaced(TextStl, "   vertex 0 1 0\n", ""), "mesh:6: expected three corners or more, got \"endloop\""},
      {"solid\nendsolid\n", "mesh: expected triangles, got none"},
  };
  for (const auto& [bytes, message] : rows) {
    const std::string name = message.substr(0, message.find(':'));
    EXPECT_EQ(ErrorOf<FileError>([&, part = bytes] { Read(part, name); }), message);
  }
  EXPECT_EQ(ErrorOf<FileError>([] { ReadMesh("/none.obj"); }),
            "/none.obj: cannot be opened: No such file or directory");
  EXPECT_EQ(ErrorOf<FileError>([] { ReadMesh("/"); }), "/: expected a file, got a folder");
  EXPECT_EQ(ErrorOf<FileError>([] { ReadMesh("/dev/zero"); }), "/dev/zero: expected a file, got a device");
  std::istringstream stream(square);
  EXPECT_EQ(ErrorOf<FileError>([&] { ReadMesh(stream, "a.ply", [](double) { return false; }); }), "a.ply: cancelled");
}

TEST(ReadMesh, SurvivesDamage) {
  const auto read = [](const std::string& p_bytes) {
    const Mesh mesh = Read(p_bytes);
    const std::size_t vertices = mesh.positions.size() / 3;
    EXPECT_TRUE(
        std::all_of(mesh.indices.begin(), mesh.indices.end(), [&](std::uint32_t p_i) { return p_i < vertices; }));
    EXPECT_TRUE(mesh.normals.empty() || mesh.normals.size() == 3 * vertices);
    EXPECT_TRUE(mesh.colors.empty() || mesh.colors.size() == 4 * vertices);
  };
  for (const std::string& file : {SquareText, BinarySquare(false), BinarySquare(true), TextStl, BinaryStl("solid")})
    CheckDamage<FileError>(file, read);
  if (!Reads("glTF"))
    GTEST_SKIP() << "without Assimp";
  for (const std::string& json : {GltfJson, Replaced(GltfJson, "\"byteLength\":224}]",
                                                     R"("byteLength":224,"uri":)"
                                                     R"("data:application/octet-stream;base64,)" +
                                                         std::string(299, 'A') + "=\"}]")})
    CheckDamage<FileError>(json == GltfJson ? Glb(json, GltfData()) : json, read);
}
