#include "platform/file/FilePath.h"
#include "tests/support/Test.h"

using vekfile::fileexists;
using vekfile::filepath;

TEST(FilePath, JoinsWithExactlyOneSeparator) {
  const std::array<const char*, 3> rows[] = {
      {"a", "b", "a/b"},       {"a//", "//b", "a/b"}, {"/", "b", "/b"},
      {"", "b", "b"},          {"a", "", "a"},        {"", "", ""},
      {"a/b", "c/", "a/b/c/"}, {"a", "/", "a"},       {"\xc3\xa4", "\xc3\xb6", "\xc3\xa4/\xc3\xb6"},
  };
  for (const auto& [directory, name, expected] : rows)
    EXPECT_EQ((filepath(directory) + name).str(), expected) << directory << " + " << name;
}

TEST(FilePath, IsInvalidWhenEmptyOrCutByAZeroByte) {
  EXPECT_FALSE(filepath().valid());
  EXPECT_FALSE(filepath(static_cast<const char*>(nullptr)).valid());
  EXPECT_FALSE(filepath(std::string("a\0b", 3)).valid());
  EXPECT_TRUE(filepath("a b").valid());
  EXPECT_EQ(filepath("a"), filepath(std::string("a")));
  EXPECT_NE(filepath("a"), filepath("A"));
}

TEST(FilePath, ExistsForFilesAndFolders) {
  const filepath root(VEK_SOURCE_DIR);
  EXPECT_TRUE(fileexists(root));
  EXPECT_TRUE(fileexists(root + "CMakeLists.txt"));
  EXPECT_FALSE(fileexists(root + "CMakeLists.txt/x"));
  EXPECT_FALSE(fileexists(root + "no such file"));
  EXPECT_FALSE(fileexists(filepath()));
  EXPECT_FALSE(fileexists(filepath((root + "CMakeLists.txt").str() + std::string("\0x", 2))));
}
