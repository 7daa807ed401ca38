#include "io/ReadVolume.h"
#include "tests/support/Output.h"
#include "tests/support/Test.h"
#include "tests/support/VolumeFiles.h"

TEST(Nifti, ValuesAndErrors) {
  struct Case {
    Nifti file;
    std::string values;
    std::string expected;
  };
  const auto four = [](int p_type, int p_bits) { return Nifti(false, false, {2, 2}, p_type, p_bits); };
  const Case cases[] = {
      {four(2, 8).Units(1), "abcd", "u8 2 2 1: 97 98 99 100 / 0.5 2 3 / 0 0 0 m"},
      {four(512, 16).Reals(112, 0, {0.5, -1}), BytesOf<std::uint16_t>({0, 1, 2, 60001}),
       "f 2 2 1: -1 -0.5 0 29999.5 / 0.5 2 3 / 0 0 0"},
      {Nifti(true, true, {2, 1, 1}, 64, 64), BytesOf<double>({1.5, -1e10}, true),
       "d 2 1 1: 1.5 -1e+10 / 0.5 2 3 / 0 0 0"},
      {Nifti(true, false, {2, 1, 1}, 8, 32).Reals(112, 176, {2, 1}), BytesOf<std::int32_t>({2147483647, -1}),
       "d 2 1 1: 4.29497e+09 -1 / 0.5 2 3 / 0 0 0"},
      {Nifti(false, false, {1, 2, 1}, 128, 24), "abcdef", "u8 1 2 1 x3: 97 98 99 100 101 102 / 0.5 2 3 / 0 0 0"},
      {Nifti(false, false, {2, 1, 1, 1, 2}, 2, 8), "abcd", "u8 2 1 1 x2: 97 99 98 100 / 0.5 2 3 / 0 0 0"},
      {Nifti(false, false, {2, 1, 1, 2}, 2, 8), "abcd", "u8 2 1 1: 97 98 / 0.5 2 3 / 0 0 0"},
      {Nifti(false, false, {1, 2, 1, 3, 2}, 2, 8), "abcdefABCDEF", "u8 1 2 1 x2: 97 65 98 66 / 0.5 2 3 / 0 0 0"},
      {Nifti(false, false, {1, 1, 1, 1, 1, 2}, 2, 8), "ab",
       "v: byte 40: expected three dimensions, steps and channels, got sizes of 1 x 1 x 2 x 1 behind them"},
      {four(32, 64), "", "v: byte 70: expected values that are integers, floats or colours, got type 32"},
      {four(2, 8), "abc", "v: expected 1 × 4 values, got a file that holds at most 3"},
      {Nifti(false, false, {2, -1}, 2, 8), "", "v: byte 44: expected a size of 1 or more, got -1"},
      {Nifti(false, false, {30000, 30000, 30000, 30000}, 2, 8), "",
       "v: expected 30000 × 27000000000000 values, got a file that holds at most 0"},
      {four(2, 8).Reals(108, 0, {1e9}), "abcd", "v: expected values from byte 1000000000, got the end of the file"},
  };
  for (const auto& [file, values, expected] : cases)
    EXPECT_EQ(SummaryOrError(file.bytes + values), expected);
  Io::VolumeOptions second;
  second.step = 1;
  EXPECT_EQ(SummaryOrError(Nifti(false, false, {2, 1, 1, 2}, 2, 8).bytes + "abcd", "v", second),
            "u8 2 1 1: 99 100 / 0.5 2 3 / 0 0 0");
  for (const bool isSecond : {false, true})
    for (const auto& [least, most] : {std::pair(-3.0, 7.0), std::pair(0.0, 0.0), std::pair(7.0, -3.0)}) {
      std::istringstream stream(Nifti(isSecond, true, {2, 1}, 2, 8).Reals(124, 192, {most, least}).bytes + "ab");
      const auto range = Io::ReadVolume(stream, "v").displayRange;
      EXPECT_EQ(range.value_or(std::array<double, 2>{}), (least < 0 ? std::array{least, most} : std::array{0., 0.}));
    }
  EXPECT_EQ(SummaryOrError(Nifti(false, false, {1, 2, 1, 3, 2}, 2, 8).bytes + "abcdefABCDEF", "v", second),
            "u8 1 2 1 x2: 99 67 100 68 / 0.5 2 3 / 0 0 0");
  second.step = 2;
  EXPECT_EQ(SummaryOrError(Nifti(false, false, {2, 1, 1, 2}, 2, 8).bytes + "abcd", "v", second),
            "v: expected a step below 2, got 2");
}

TEST(Nifti, AsItsOwnToolReadsIt) {
  for (const bool second : {false, true})
    for (const bool bigEndian : {false, true})
      for (const bool matrix : {false, true}) {
        const TempFolder folder;
        const std::string path = folder.Write("a.nii", Oblique(second, bigEndian, 1, matrix).bytes);
        const Volume volume = Io::ReadVolume(path);
        // The tool prints three lines, and one with 16 numbers, row by row.
        const char* const field = matrix ? "sto_xyz" : "qto_xyz";
        std::istringstream output(
            Output(std::string("nifti_tool -disp_nim -quiet -field ") + field + " -infiles " + path));
        std::array<double, 12> transform{};
        for (double& number : transform)
          output >> number;
        for (int row = 0; row < 3; ++row) {
          const double* const m = &transform[4 * row];
          EXPECT_NEAR(volume.Position(2, 1, 1)[row], 2 * m[0] + m[1] + m[2] + m[3], 2e-5) << field << row;
        }
        EXPECT_EQ(Output("nifti_tool -disp_ci 2 1 1 0 0 0 0 -quiet -infiles " + path),
                  std::to_string(int(volume.Value(2, 1, 1))) + "\n");
        Output("cd " + folder.Path().string() +
               " && nifti_tool -copy_im -prefix b.nii.gz -infiles a.nii && "
               "nifti_tool -copy_im -prefix c.hdr -infiles a.nii && cp c.hdr d.hdr && gzip -c c.img > d.img.gz");
        for (const std::string copy : {"c.hdr", "c.img", "b.nii.gz", "d.hdr", "d.img.gz"}) {
          if (copy[0] != 'c' && !ReadsGzip())
            break;
          EXPECT_EQ(Summary(Io::ReadVolume(folder.File(copy))), Summary(volume)) << copy;
        }
      }
  if (!ReadsGzip())
    GTEST_SKIP() << WithoutGzip;
}
