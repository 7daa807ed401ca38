#include "library/ComputeNormals.h"
#include "library/ObjScene.h"
#include "tests/support/Test.h"

// Files whose indices are estimated before their end: rightly, too many, too few, and with positions behind the
// estimate.
TEST(ObjSceneMemory, EstimatesChangeNothing) {
  constexpr std::size_t Faces = 250000;
  struct Row {
    const char* name;
    std::size_t before, triangles, after; // positions, faces, positions
    std::size_t comment, faces;           // bytes, faces of six corners behind it
    bool isSmooth;
  };
  const Row rows[] = {{"right", 150000, Faces, 0, 0, 0, false},
                      {"right, without normals", 150000, Faces, 0, 0, 0, true},
                      {"too many", 150000, Faces / 4, 0, 3000000, 0, false},
                      {"too few", 150000, Faces, 0, 0, Faces / 2, false},
                      {"positions behind", 150000, Faces, 350000, 0, 1000, false},
                      {"few positions", 9, Faces, 0, 0, 0, true}};
  for (const Row& row : rows) {
    std::string text;
    std::vector<float> positions;
    std::vector<std::uint32_t> indices;
    std::uint32_t random = 1;
    const auto add = [&](std::size_t p_count) {
      for (; p_count != 0; --p_count) {
        const auto x = float(positions.size() % 1001), y = float(positions.size() % 997);
        positions.insert(positions.end(), {x, y, 0});
        text += "v " + std::to_string(int(x)) + ' ' + std::to_string(int(y)) + " 0\n";
        text += row.isSmooth ? "" : "vn 0 1 0\n";
      }
    };
    const auto corner = [&] {
      random = random * 1664525u + 1013904223u;
      indices.push_back((random >> 8) % std::uint32_t(positions.size() / 3));
      const std::string number = std::to_string(indices.back() + 1);
      text += ' ' + number + (row.isSmooth ? "" : "//" + number);
    };
    add(row.before);
    for (std::size_t i = 0; i < row.triangles; ++i) {
      text += 'f';
      for (int j = 0; j < 3; ++j)
        corner();
      text += '\n';
    }
    add(row.after);
    for (std::size_t i = 0; i < row.comment / 60; ++i)
      text += '#' + std::string(58, ' ') + '\n';
    for (std::size_t i = 0; i < row.faces; ++i) {
      text += "f 1//1 2//2 3//3\nf 3//3 2//2 1//1\n";
      indices.insert(indices.end(), {0, 1, 2, 2, 1, 0});
    }
    for (const int threads : {1, 3}) {
      std::istringstream stream(text);
      const ObjScene scene = ReadObjScene(stream, "t.obj", {}, Vek::Chart::Utility::Threads(threads));
      EXPECT_TRUE(scene.positions == positions) << row.name;
      EXPECT_TRUE(scene.indices == indices) << row.name;
      EXPECT_LE(scene.indices.capacity(), indices.size() + indices.size() / 8) << row.name;
      ASSERT_EQ(scene.normals.size(), positions.size()) << row.name;
      if (row.isSmooth) {
        std::vector<Vek::Chart::Ogl::Vec3<float>> points;
        for (std::size_t i = 0; i < positions.size(); i += 3)
          points.push_back({positions[i], positions[i + 1], positions[i + 2]});
        const auto normals = ComputeNormals(points.data(), points.size(), indices.data(), indices.size());
        EXPECT_EQ(std::memcmp(scene.normals.data(), normals.data(), 4 * positions.size()), 0) << row.name;
      } else {
        std::vector<float> normals;
        for (std::size_t i = 0; i < positions.size(); i += 3)
          normals.insert(normals.end(), {0, 0, 1});
        for (const std::uint32_t index : indices)
          normals[3 * index + 1] = 1, normals[3 * index + 2] = 0;
        EXPECT_TRUE(scene.normals == normals) << row.name;
      }
    }
  }
}
