// The loader against a plain reader of the same rules.

#include "tests/support/ObjReference.h"
#include "tests/support/Test.h"

TEST(ObjAgreement, OnBrokenFiles) {
  for (unsigned int seed = 0; seed < 4000; ++seed) {
    const std::string text = RandomObjText(seed);
    ASSERT_EQ(DescribeLoaded(text), DescribeReference(text)) << "seed " << seed << "\n" << text;
  }
}

TEST(ObjAgreement, OnLinesCutByTheReadersWindows) {
  // Shifted by single characters, every kind of line is cut by the end of the first window at each of its characters.
  const std::string lines = "vn -0.25 1.5 0\nf 1//1 22/1/1 -3//1\r\ng a b\nv 12.5 1e1 -7\n";
  const std::string head = "v 1 2 3\n#";
  const std::string tail = "\n" + lines + lines + lines;
  const std::string expected = DescribeReference(head + tail);
  for (std::size_t shift = 0; shift <= 2 * lines.size(); ++shift) {
    const std::string comment((std::size_t(1) << 20) - 2 * lines.size() - head.size() + shift, '-');
    ASSERT_EQ(DescribeLoaded(head + comment + tail), expected) << shift;
  }
}

TEST(ObjAgreement, OnLinesLongerThanTheReadersWindow) {
  const std::string blanks(std::size_t(2) << 20, ' ');
  const std::string text = blanks + "v 1 2 3" + blanks + "\ng " + blanks + "x\nv 4 5 6" + blanks;
  EXPECT_EQ(DescribeLoaded(text), DescribeReference(text));
}

TEST(ObjAgreement, OnLargeFiles) {
  constexpr int Vertices = 70000;
  for (const int step : {7, 1000000}) { // lines from one group line to the next
    std::string text;
    for (int i = 1; i <= Vertices; ++i) {
      const std::string number = std::to_string(i);
      text += "v " + number + ".5 0." + number + " -" + number + "\nvn 0 0 " + number + "\n";
      if (i % 1000 == 0)
        text += "l 1 " + number + "\n";
    }
    for (int i = 0; i < 100000; ++i) {
      const auto corner = [&](int p_vertex, int p_normal) {
        return std::to_string(1 + p_vertex % Vertices) + "//" + std::to_string(1 + p_normal % Vertices);
      };
      if (i % step == step - 1)
        text += i < 20000 ? "g small\n" : i % 10000 < 7 ? "g large\n" : "";
      text += "f " + corner(i, i + 2) + " " + corner(i + 1, i + 1) + " " + corner(i + 2, i) + "\n";
    }
    ASSERT_TRUE(DescribeLoaded(text) == DescribeReference(text)) << step;
  }
}
