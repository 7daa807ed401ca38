#include "apps/gallery/DataFolder.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Gallery;

namespace {

struct Prefix {
  /// Makes a data folder at a path below the prefix, without the named part.
  void Fill(const std::string& p_place, const std::string& p_without = "") const {
    for (const std::string part : {"data", "symbols", "sprites"})
      if (part != p_without)
        fs::create_directories(path / p_place / part);
  }
  TempFolder folder;
  fs::path path = fs::canonical(folder.Path());
};

} // namespace

TEST(DataFolder, IsTheNearestAboveTheProgram) {
  const std::string share = "share/vek-chart-library";
  // The folders with data, the program, and the folder that is found; empty for an error.
  const std::tuple<std::vector<std::string>, const char*, std::string> cases[] = {
      {{share}, "bin/vek-gallery", share},
      {{share}, "lib/games/bin/vek-gallery", share},
      {{share}, "away/vek-gallery", share},
      {{share, "opt/" + share}, "opt/bin/vek-gallery", "opt/" + share},
      {{"share/other", "data"}, "bin/vek-gallery", ""},
  };
  for (const auto& [filled, program, expected] : cases) {
    const Prefix prefix;
    for (const std::string& place : filled)
      prefix.Fill(place);
    fs::path found;
    ErrorOf<std::runtime_error>([&, &program = program] { found = DataFolder("", prefix.path / program); });
    EXPECT_EQ(found, expected.empty() ? fs::path() : prefix.path / expected) << program;
  }
}

TEST(DataFolder, FollowsALinkToTheProgram) {
  const Prefix prefix, elsewhere;
  prefix.Fill("share/vek-chart-library");
  fs::create_directories(prefix.path / "bin");
  std::ofstream(prefix.path / "bin/vek-gallery");
  fs::create_symlink(prefix.path / "bin/vek-gallery", elsewhere.path / "gallery");
  EXPECT_EQ(DataFolder("", elsewhere.path / "gallery"), prefix.path / "share/vek-chart-library");
}

TEST(DataFolder, ErrorsSayWhereItLooked) {
  const Prefix prefix;
  prefix.Fill("mine");
  prefix.Fill("partial", "sprites");
  EXPECT_EQ(DataFolder(prefix.path / "mine", "/nowhere/vek-gallery"), prefix.path / "mine");
  const auto errorOf = [](const fs::path& p_chosen, const fs::path& p_program) {
    return ErrorOf<std::runtime_error>([&] { DataFolder(p_chosen, p_program); });
  };
  EXPECT_EQ(errorOf(prefix.path / "partial", "/nowhere/vek-gallery"),
            (prefix.path / "partial").string() + ": no folder with data/, symbols/ and sprites/");
  EXPECT_EQ(errorOf("", "/nowhere/bin/vek-gallery"),
            "no folder with data/, symbols/ and sprites/ was found; looked at /nowhere/bin/share/vek-chart-library, "
            "/nowhere/share/vek-chart-library, /share/vek-chart-library; --data FOLDER names one elsewhere");
}

TEST(DataFolder, FillsWhatIsNotNamed) {
  Inputs inputs;
  inputs.winds = "mine.csv";
  FillFromFolder(inputs, DataFolder("", ThisProgram()));
  EXPECT_EQ(inputs.winds, "mine.csv");
  EXPECT_TRUE(fs::equivalent(inputs.symbols, VEK_SOURCE_DIR "/symbols"));
  EXPECT_TRUE(fs::equivalent(inputs.sprites, VEK_SOURCE_DIR "/sprites"));
  for (const std::string& file : {inputs.relief, inputs.quakes, inputs.salinity, inputs.hdr})
    EXPECT_TRUE(fs::is_regular_file(file)) << file;
  EXPECT_EQ(inputs.model, "") << "there is none but the user's";
}
