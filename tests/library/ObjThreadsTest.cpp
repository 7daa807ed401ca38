// OBJ files on several threads. Runs with blocks of the usual size, and as ObjThreadsTinyTest with blocks of a few
// lines.

#include "library/ObjModel.h"
#include "library/ObjScene.h"
#include "tests/support/Test.h"

namespace {

using Vek::Chart::Utility::Threads;

/// Lines of all kinds, at random, enough for threads; `p_fault` in the middle, with `p_lineEnd`.
std::string File(unsigned int p_seed, const std::string& p_fault = {}, const std::string& p_lineEnd = "\n") {
  std::mt19937 random(p_seed);
  std::string text;
  const auto number = [&] {
    char digits[40];
    std::snprintf(digits, sizeof digits, random() % 5 == 0 ? "%.9e" : "%.6f", (double(random()) - 2e9) / 1e9);
    return " " + std::string(random() % 40 == 0 ? random() % 2 == 0 ? "-0.0" : "0" : digits);
  };
  int positions = 0, normals = 0;       // at least: a scene begins with some
  const auto index = [&](int p_count) { // sometimes one that a model reports
    const bool isWrong = p_seed < 20 && random() % 100 == 0;
    return std::to_string(isWrong ? p_count + 1 : 1 + int(random() % unsigned(std::max(p_count, 1))));
  };
  const auto corner = [&] {
    const std::string position = " " + index(positions);
    return p_seed % 2 == 0 || random() % 50 == 0 ? position : position + "//" + index(normals);
  };
#ifdef VEK_TINY_BLOCKS // then files of any size are read on threads
  const std::size_t size = 300000;
#else
  const std::size_t size = 1300000;
#endif
  for (bool isFaulty = p_fault.empty(); text.size() < size || !isFaulty;) {
    if (!isFaulty && text.size() > size / 2) {
      text += p_fault + p_lineEnd;
      isFaulty = true;
    }
    const unsigned int kind = random() % 100;
    if (kind < 2)
      text += kind == 0 ? "# a comment" : "";
    else if (kind == 2 && random() % 20 == 0)
      text += "g part" + std::to_string(random() % 7);
    else if (kind < 40) // runs of a kind, and single lines
      for (unsigned int i = random() % 4 == 0 ? random() % 40 : 0; i != ~0u; --i, ++positions)
        text += "v" + number() + number() + number() + (random() % 300 == 0 ? " 1" : "") + (i == 0 ? "" : p_lineEnd);
    else if (kind < 60)
      for (unsigned int i = random() % 20; i != ~0u; --i, ++normals)
        text += "vn" + number() + number() + number() + (i == 0 ? "" : p_lineEnd);
    else
      for (unsigned int i = random() % 50; i != ~0u; --i)
        text +=
            "f" + corner() + corner() + corner() + (random() % 300 == 0 ? corner() : "") + (i == 0 ? "" : p_lineEnd);
    text += p_lineEnd;
  }
  return text;
}

template <class T>
void AddBytes(std::string& p_bytes, const std::vector<T>& p_list) {
  p_bytes.append(reinterpret_cast<const char*>(p_list.data()), sizeof(T) * p_list.size());
  p_bytes += ';';
}

/// All bytes of the model, the exception and the reports, with their details.
std::string Model(const std::string& p_file, int p_threads) {
  const ReportCapture reports;
  std::string all;
  try {
    std::istringstream stream(p_file);
    const auto model = LoadPolygonObj(stream, Threads(p_threads));
    AddBytes(all, *model->Vertices());
    AddBytes(all, *model->Normals());
    AddBytes(all, std::vector<Vek::Chart::Types::BoundingBox_Base<double>>{model->Bounds()});
    for (const auto& group : *model->Groups()) {
      all += group->name + ':';
      AddBytes(all, group->indices);
    }
    all += std::to_string(int(model->PrimitiveType()));
  } catch (const std::exception& error) {
    all = error.what();
  }
  for (const Texts& texts : {reports.Texts(), reports.Details()})
    for (const std::string& text : texts)
      all += '\n' + text;
  return all;
}

/// All bytes of the scene, or the error.
std::string SceneBytes(const std::string& p_file, int p_threads) {
  std::string all;
  try {
    std::istringstream stream(p_file);
    const ObjScene scene = ReadObjScene(stream, "x.obj", {}, Threads(p_threads));
    for (const auto* array : {&scene.positions, &scene.normals, &scene.texCoords, &scene.colors})
      AddBytes(all, *array);
    AddBytes(all, scene.indices);
    for (const ObjScene::Group& group : scene.groups)
      all += group.name + '/' + group.object + ' ' + std::to_string(group.material) + ' ' +
             std::to_string(group.first) + ' ' + std::to_string(group.count) + '\n';
    for (const std::string& warning : scene.warnings)
      all += warning + '\n';
  } catch (const ObjError& error) {
    all = error.what();
  }
  return all;
}

} // namespace

TEST(ObjThreads, ModelsDoNotDependOnTheirNumber) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "\n"},  {"", "\r\n"},      {"f 1 2", "\n"},          {"v 1 x 2", "\r\n"},
      {"g", "\n"}, {"l 1 2 3", "\n"}, {"v nan nan -inf", "\n"}, {"# " + std::string(100000, '-'), "\n"}};
  unsigned int seed = 0;
  for (const auto& [fault, lineEnd] : cases) {
    const std::string file = File(++seed, fault, lineEnd);
    const std::string end = std::array<const char*, 4>{"", "v 1 2 3\n", "v 1 2 3", "f 1"}[seed % 4];
    const std::string expected = Model(file + end, 1);
    const bool throws = expected.compare(0, 8, "bad lexi") == 0 || expected.compare(0, 8, "LoadPoly") == 0;
    EXPECT_EQ(throws, fault == "g" || fault == "v 1 x 2") << fault;
    for (const int threads : {2, 3, 7})
      EXPECT_TRUE(Model(file + end, threads) == expected) << fault << ' ' << threads;
  }
}

TEST(ObjThreads, ScenesDoNotDependOnTheirNumber) {
  // What is in the middle of the file, and whether it is refused.
  const std::tuple<std::string, std::string, bool> cases[] = {
      {"", "\n", false},
      {"", "\r\n", false},
      {"", "\r", false},
      {"f 1 2 99999999", "\n", true},
      {"v 1 x 2", "\r\n", true},
      {"v 1 2 3 0.5 0.25 1", "\n", false},
      {"vt 0.5\nvt 0.25 0.75\nvt 1 2 3\nf 1/1/1 2/2/2 -1/-1/-1\nf 1/2 2/3 3/1 4/1 5/1", "\n", false},
      {"f 1 \\\n 2 \\\n\\\n 3\nunknown\\\nv 1 2 3\n# no more \\\n", "\n", false},
      {"s off\nusemtl red\n" + std::string(70, ' ') + "f 1 2 3 # here\nl 1 2 3\np 1\nf 1 2\ng", "\n", false},
      {"# " + std::string(100000, '-'), "\r", false}};
  unsigned int seed = 20;
  for (const auto& [fault, lineEnd, isRefused] : cases) {
    const std::string file =
        "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 0\nv 1 2 0\nvn 0 0 1\nvn 1 0 0\n" + File(++seed, fault, lineEnd);
    const std::string expected = SceneBytes(file, 1);
    EXPECT_EQ(expected.size() < 1000, isRefused) << fault << expected.substr(0, 200);
    for (const int threads : {2, 3, 7})
      EXPECT_TRUE(SceneBytes(file, threads) == expected) << fault << ' ' << threads;
  }
}
