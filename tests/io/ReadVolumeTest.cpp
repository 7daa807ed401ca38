#include "io/ReadVolume.h"
#include "io/FileError.h"
#include "tests/support/Damage.h"
#include "tests/support/ErrorOf.h"
#include "tests/support/FileCases.h"
#include "tests/support/FileText.h"
#include "tests/support/Output.h"
#include "tests/support/Test.h"
#include "tests/support/VolumeFiles.h"

using Io::FileError;

namespace {

std::string Nrrd(const std::string& p_fields, const std::string& p_values) {
  return "NRRD0004\n" + p_fields + "\n" + p_values;
}

} // namespace

TEST(ReadVolume, NrrdValuesPlaceAndErrors) {
  const std::string four = "dimension: 3\nsizes: 2 2 1\n";
  const std::string little = "endian: little\nencoding: raw\n";
  const std::string bytes = "type: uchar\nencoding: raw\n";
  const std::string lps = "space: left-posterior-superior\nspace directions: (0,2,0) (0.5,0,0) (0,0,3)\n";
  const std::vector<FileCase> cases = {
      {Nrrd("type: short\n" + four + little, BytesOf<std::int16_t>({-1, 2, 3, 400})),
       "i16 2 2 1: -1 2 3 400 / 1 1 1 / 0 0 0"},
      {Nrrd("type: unsigned int\n" + four + "endian: big\nencoding: raw\n",
            BytesOf<std::uint32_t>({1, 2, 3, 4e9}, true)),
       "u32 2 2 1: 1 2 3 4e+09 / 1 1 1 / 0 0 0"},
      {Nrrd("type: int64\n" + four + little, BytesOf<std::int64_t>({-1, 2, 3, 5e9})),
       "d 2 2 1: -1 2 3 5e+09 / 1 1 1 / 0 0 0"},
      {Nrrd("type: float\r\n# x\r\nkey:=value\r\n" + four + "encoding: ascii\r\n", "1.5 nan\n1e-60, -inf"),
       "f 2 2 1: 1.5 nan 0 -inf / 1 1 1 / 0 0 0"},
      {Nrrd("type: int8\nencoding: ascii\n" + four, "1 +2\n-3 +-4"),
       "v:8: expected an integer of the file's type, got \"+-4\""},
      {Nrrd("type: double\nencoding: ascii\n" + four, "+1 1e-400 -1 1e400"), "v:7: expected a number, got \"1e400\""},
      {Nrrd("type: float\nencoding: ascii\n" + four, "1e-46 -1e-400 ++.5 1"), "v:7: expected a number, got \"++.5\""},
      {Nrrd("type: int8\n" + four + "encoding: hex\n", "ff 01 7F\n80"), "i8 2 2 1: -1 1 127 -128 / 1 1 1 / 0 0 0"},
      {Nrrd(bytes + four + "line skip: 1\nbyteskip: 2\n", "skipped\n..abcd"), "u8 2 2 1: 97 98 99 100 / 1 1 1 / 0 0 0"},
      {Nrrd(bytes + four + "byte skip: -1\n", "any length abcd"), "u8 2 2 1: 97 98 99 100 / 1 1 1 / 0 0 0"},
      {Nrrd(bytes + four +
                "spacings: 2 -3 nan\naxis mins: 0 10 nan\ncenters: node cell ???\nunits: \"mm\" \"mm\" \"\"\n" +
                "content: a b\nsample units: \"H U\"\n",
            "abcd"),
       "u8 2 2 1: 97 98 99 100 / 2 3 1 / 0 8.5 0 | 1 0 0 | 0 -1 0 | 0 0 1 mm H U a b"},
      {Nrrd(bytes + four + "axis mins: 0 0 0\naxis maxs: 4 4 1\ncenters: node cell cell\n", "abcd"),
       "u8 2 2 1: 97 98 99 100 / 4 2 1 / 0 1 0.5"},
      {Nrrd(bytes + four + lps + "space origin: (1,2,3)\nspace units: \"mm\" \"mm\" \"mm\"\n", "abcd"),
       "u8 2 2 1: 97 98 99 100 / 2 0.5 3 / -1 -2 3 | 0 -1 0 | -1 0 0 | 0 0 1 mm right-anterior-superior"},
      // Channels: in front, behind, by space; steps.
      {Nrrd(bytes + "dimension: 4\nsizes: 2 2 1 1\n", "abcd"), "u8 2 1 1 x2: 97 98 99 100 / 1 1 1 / 0 0 0"},
      {Nrrd(bytes + "dimension: 3\nsizes: 2 1 2\nkinds: domain domain vector\n", "abcd"),
       "u8 2 1 1 x2: 97 99 98 100 / 1 1 1 / 0 0 0"},
      {Nrrd(bytes +
                "dimension: 4\nsizes: 2 2 1 1\nspace dimension: 3\nspace directions: none (1,0,0) (0,1,0) (0,0,1)\n",
            "abcd"),
       "u8 2 1 1 x2: 97 98 99 100 / 1 1 1 / 0 0 0"},
      {Nrrd(bytes + "dimension: 4\nsizes: 2 1 1 2\nkinds: space space space time\n", "abcd"),
       "u8 2 1 1: 97 98 / 1 1 1 / 0 0 0"},
      {Nrrd(bytes + "dimension: 3\nsizes: 2 2 1\nkinds: domain list domain\n", "abcd"),
       "v: expected channels, up to three axes of a grid, and steps, got 3 axes in another order"},
      // Errors.
      {"NRRD0009\n", "v:1: expected NRRD0001 to NRRD0005, got \"NRRD0009\""},
      {Nrrd("type: block\n", ""), "v:2: expected a type of integers or floats, got \"block\""},
      {Nrrd("encoding: bzip2\n", ""), "v:2: expected the encoding raw, ascii, hex or gzip, got \"bzip2\""},
      {Nrrd("sizes: 1 2\n", ""), "v:2: expected the field \"dimension\" before this one, got \"sizes: 1 2\""},
      {Nrrd("dimension: 2\nsizes: 1 x\n", ""), "v:3: expected an integer, got \"x\""},
      {Nrrd("dimension: 2\nsizes: 1\n", ""), "v:3: expected values for 2 axes, got \"sizes: 1\""},
      {Nrrd("nothing\n", ""), "v:2: expected a field and a colon, got \"nothing\""},
      {Nrrd("type: short\n" + four + "encoding: raw\n", "12345678"),
       "v: expected the field \"endian\" in the header of 6 lines, got none"},
      {Nrrd(bytes + "dimension: 3\nsizes: 90000 90000 90000\n", "abcd"),
       "v: expected 1 × 729000000000000 values, got a file that holds at most 4"},
      {Nrrd(bytes + "dimension: 3\nsizes: 4294967296 4294967296 4294967296\n", ""), "v: the sizes exceed any memory"},
      {Nrrd("type: uchar\nencoding: ascii\n" + four, "1 2\n300 4"),
       "v:8: expected an integer of the file's type, got \"300\""},
      {Nrrd("type: int8\n" + four + "encoding: hex\n", "ff 01 7F\n8x"), "v: expected hexadecimal digits, got 'x'"},
      {Nrrd(bytes + four + "data file: nowhere.raw\n", ""),
       "nowhere.raw: expected a file with the values of v, got none"},
  };
  CheckFiles(cases, "v", [](const auto& p_file, const auto& p_name) { return SummaryOrError(p_file, p_name); });
}

TEST(ReadVolume, LongTextsOnThreads) {
  // Of two steps, of which the second one is read: words of all lengths at the borders of blocks.
  constexpr std::size_t Count = 150000;
  const std::string header =
      Nrrd("type: float\nencoding: ascii\ndimension: 2\nsizes: 150000 2\nkinds: domain time\n", "");
  std::vector<std::string> words;
  std::uint32_t random = 1;
  for (std::size_t i = 0; i < 2 * Count; ++i) {
    random = random * 1664525U + 1013904223U;
    char word[40];
    std::snprintf(word, sizeof word, "%.*g", static_cast<int>(1 + (random >> 24) % 14), double(random) / 3e5 - 7e3);
    words.emplace_back(word);
  }
  const auto text = [&] {
    std::string joined = header;
    for (std::size_t i = 0; i < words.size(); ++i)
      joined += words[i] + (i % 100 == 99 ? "\r\n" : i % 7 == 0 ? " , " : " ");
    return joined;
  };
  const auto read = [](const std::string& p_bytes, Utility::Threads p_threads, std::size_t p_step) {
    std::istringstream stream(p_bytes);
    Io::VolumeOptions options;
    options.step = p_step;
    return Io::ReadVolume(stream, "v", options, p_threads);
  };
  const std::string whole = text();
  ASSERT_GT(whole.size(), std::size_t{5} << 19); // some threads' blocks
  for (const std::size_t step : {std::size_t{0}, std::size_t{1}}) {
    std::vector<float> expected;
    for (std::size_t i = 0; i < Count; ++i)
      expected.push_back(std::strtof(words[step * Count + i].c_str(), nullptr));
    for (const Utility::Threads threads : {Utility::Threads(), Utility::Threads(3)})
      EXPECT_EQ(std::get<std::vector<float>>(read(whole, threads, step).values), expected) << step;
  }

  // The first fault counts, also one of the step that is left out, but none behind the values.
  const auto errorOf = [&](const std::string& p_bytes, std::size_t p_step) {
    return ErrorOf<FileError>([&] { read(p_bytes, Utility::Threads(3), p_step); });
  };
  words[2 * Count - 1] = "last";
  EXPECT_EQ(errorOf(text(), 1), "v:3007: expected a number, got \"last\"");
  EXPECT_EQ(errorOf(text(), 0), "");
  words[Count - 1] = "first";
  EXPECT_EQ(errorOf(text(), 1), "v:1507: expected a number, got \"first\"");
  words[100] = std::string(200000, '1');
  EXPECT_EQ(errorOf(text(), 1), "v:9: expected a number, got \"" + std::string(40, '1') + "...\"");
  words[100] = "1";
  EXPECT_EQ(errorOf(whole.substr(0, 1 << 20), 0), "v:1011: expected a number, got \"the end of the file\"");
}

TEST(ReadVolume, OthersAndUnknown) {
  const std::vector<FileCase> cases = {
      {"TextArray 2 2 1 1\n1.25 2\nnan 4", "f 2 1 1 x2: 1.25 2 nan 4 / 1 1 1 / 0 0 0"},
      {"TextArray 2 1 1 1\n1 x", "v:2: expected number 2 of 2, got \"x\""},
      {"", "v: expected TextArray, NRRD, NIfTI or NetCDF, got an empty file"},
      {"hello\nx", "v: expected TextArray, NRRD, NIfTI or NetCDF, got \"hello\""},
      {std::string(128, '\0') + "DICM 12345",
       "v: expected TextArray, NRRD, NIfTI or NetCDF, got a DICOM file; convert it to NIfTI"},
      {BytesOf<std::int32_t>({348}) + std::string(344, '\0'),
       "v: expected TextArray, NRRD, NIfTI or NetCDF, got the header of an Analyze file; convert it to NIfTI"},
      {"\x01\x02",
       "v: expected TextArray, NRRD, NIfTI or NetCDF, got binary data; raw values need their size and type"},
      {"hello", "a.nrrd:1: expected NRRD0001 to NRRD0005, got \"hello\"", "a.nrrd"},
      {"hello", "a.nii: expected the header of a NIfTI file, got 5 bytes of something else", "a.nii"},
  };
  CheckFiles(cases, "v", [](const auto& p_file, const auto& p_name) { return SummaryOrError(p_file, p_name); });
}

TEST(ReadVolume, NrrdAsItsOwnProgramWritesIt) {
  const TempFolder folder;
  std::string values;
  for (int i = 0; i < 24; ++i)
    values += BytesOf<std::int16_t>({1000.0 * i - 12000});
  folder.Write("v.raw", values);
  const std::string in = "cd " + folder.Path().string() + " && teem-unu ";
  Output(in + "make -t short -s 4 3 2 -i v.raw -en little -spc LPS -orig '(1,2,3)' -dirs '(0,2,0) (0.5,0,0) (0,0,3)' "
              "-o raw.nrrd");
  const std::string expected = Summary(Io::ReadVolume(folder.File("raw.nrrd")));
  EXPECT_EQ(expected.substr(0, 30), "i16 4 3 2: -12000 -11000 -1000");
  EXPECT_NE(expected.find("/ 2 0.5 3 / -1 -2 3 | 0 -1 0 | -1 0 0 | 0 0 1 right-anterior-superior"), std::string::npos)
      << expected;
  struct Case {
    const char* arguments;
    const char* file;
  };
  for (const auto& [arguments, file] : {Case{"save -f nrrd -e gzip", "a.nrrd"},
                                        {"save -f nrrd -e gzip -en big", "b.nrrd"},
                                        {"save -f nrrd -e raw -en big", "c.nrrd"},
                                        {"save -f nrrd -e hex", "d.nrrd"},
                                        {"save -f nrrd -e ascii", "e.nrrd"},
                                        {"save -f nrrd -e raw", "f.nhdr"},
                                        {"save -f nrrd -e gzip", "g.nhdr"}}) {
    if (!ReadsGzip() && std::string(arguments).find("gzip") != std::string::npos)
      continue;
    Output(in + arguments + " -i raw.nrrd -o " + file);
    EXPECT_EQ(Summary(Io::ReadVolume(folder.File(file))), expected) << arguments;
  }
  folder.Write("s1.raw", values.substr(0, 24));
  folder.Write("s2.raw", values.substr(24));
  const std::string plain = expected.substr(0, expected.find('/'));
  for (const char* const files : {"s%d.raw 1 2 1", "LIST\ns1.raw\ns2.raw"}) {
    folder.Write("s.nhdr", std::string("NRRD0004\ntype: short\ndimension: 3\nsizes: 4 3 2\nendian: little\nencoding: "
                                       "raw\ndata file: ") +
                               files);
    EXPECT_EQ(Summary(Io::ReadVolume(folder.File("s.nhdr"))), plain + "/ 1 1 1 / 0 0 0") << files;
  }
  if (!ReadsGzip())
    GTEST_SKIP() << WithoutGzip;
  std::string gzip = BytesOfFile(folder.File("a.nrrd"));
  gzip[gzip.size() - 8] ^= 1; // of the check sum
  EXPECT_EQ(SummaryOrError(gzip), "v: the compressed data are damaged: incorrect data check");
  EXPECT_EQ(SummaryOrError(gzip.substr(0, gzip.size() - 8)), "v: the compressed data end early");
}

TEST(ReadVolume, RealFilesHoldTheValuesOfTheirSource) {
  if (!ReadsGzip())
    GTEST_SKIP() << WithoutGzip;
  const std::string data = VEK_SOURCE_DIR "/data/";
  const Volume source = Io::ReadVolume(data + "ocean_salinity.txt");
  EXPECT_EQ(source.size, (std::array<std::size_t, 3>{180, 90, 20}));
  for (const char* const name : {"pacific_salinity.nrrd", "pacific_salinity.nii.gz"}) {
    const Volume part = Io::ReadVolume(data + name);
    ASSERT_EQ(part.size, (std::array<std::size_t, 3>{24, 12, 4})) << name;
    EXPECT_EQ(part.spacing, (Volume::Vector{2, 2, 1}));
    EXPECT_EQ(part.Position(0, 0, 0), (Volume::Vector{160.5, -9.5, 0}));
    EXPECT_NEAR(part.range[0], 34.212, 1e-5);
    EXPECT_NEAR(part.range[1], 35.832, 1e-5);
    for (std::size_t i = 0; i < part.Count(); ++i) {
      const std::size_t x = i % 24, y = i / 24 % 12, z = i / 288;
      ASSERT_EQ(part.Value(x, y, z), source.Value(70 + x, 40 + y, z)) << name;
    }
  }
}

TEST(ReadVolume, RawSizesTypesAndNoData) {
  Io::VolumeOptions options;
  options.raw = Io::RawLayout{{2, 1, 1}, Volume::Float32, 2, true, 3, {1, 1, 2}};
  options.noData = 1e20;
  const std::string file = "..." + BytesOf<float>({-3, 1e20, 2, 0}, true);
  const Volume volume = Read(file, "v", options);
  EXPECT_EQ(Summary(volume), "f 2 1 1 x2: -3 1e+20 2 0 / 1 1 2 / 0 0 0");
  EXPECT_EQ(volume.range, (std::array<double, 2>{-3, 2}));
  EXPECT_TRUE(std::isnan(volume.Value(0, 0, 0, 1)) && std::isnan(volume.Floats(1)[0]) && volume.Floats(1)[1] == 0);
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { volume.Value(0, 0, 1); }), "Volume: no voxel (0, 0, 1)");
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { volume.Floats(2); }), "Volume: expected a channel below 2, got 2");
  EXPECT_EQ(SummaryOrError(file + "x", "v", options), "v: expected 4 values, got more");
  EXPECT_EQ(SummaryOrError(file.substr(1), "v", options), "v: expected 1 × 4 values, got a file that holds at most 3");
}

TEST(ReadVolume, NeitherValuesNorErrorsDependOnThreads) {
  std::mt19937 random(1);
  std::string bytes(1600000, ' '); // with NaN and infinities among the floats
  for (char& byte : bytes)
    byte = static_cast<char>(random() % 4 == 0 ? 0xFF : random());
  std::vector<std::string> files;
  std::vector<Io::VolumeOptions> options;
  for (const bool big : {false, true})
    for (const Volume::Type type : {Volume::UInt8, Volume::Int16, Volume::Float32, Volume::Float64}) {
      const std::size_t size = std::array<std::size_t, 8>{1, 1, 2, 2, 4, 4, 4, 8}[std::size_t(type)];
      files.push_back(bytes);
      options.emplace_back();
      options.back().raw = Io::RawLayout{{bytes.size() / size, 1, 1}, type, 1, big, 0, {1, 1, 1}};
      options.back().noData = -1;
    }
  for (const int type : {4, 512, 1024, 64}) { // 16 bits, signed or not, 64 bits, double
    const int size = type == 4 || type == 512 ? 2 : 8;
    Nifti file(true, true, {double(bytes.size()) / size / 10, 10}, type, 8 * size);
    files.push_back(file.Reals(112, 176, {0.5, -1}).bytes + bytes);
    options.emplace_back();
  }
  for (std::size_t i = 0; i < 12; ++i) {
    files.push_back(files[i].substr(0, files[i].size() - 300001));
    options.push_back(options[i]);
  }
  for (std::size_t i = 0; i < files.size(); ++i) {
    const auto read = [&](int p_threads) {
      std::vector<double> shares;
      options[i].progress = [&](double p_share) { return shares.push_back(p_share), true; };
      std::istringstream stream(files[i]);
      try {
        const Volume volume = Io::ReadVolume(stream, "v", options[i], Vek::Chart::Utility::Threads(p_threads));
        const std::string values = std::visit(
            [](const auto& p_values) {
              return std::string(reinterpret_cast<const char*>(p_values.data()), sizeof p_values[0] * p_values.size());
            },
            volume.values);
        return std::tuple(values, volume.range, shares, std::string());
      } catch (const FileError& error) {
        return std::tuple(std::string(), std::array<double, 2>{}, shares, std::string(error.what()));
      }
    };
    const auto expected = read(1);
    EXPECT_EQ(std::get<3>(expected).empty(), i < 12) << i << std::get<3>(expected);
    for (const int threads : {2, 3, 7})
      EXPECT_TRUE(read(threads) == expected) << i << ' ' << threads;
  }
}

TEST(ReadVolume, CancelledAndReported) {
  std::vector<double> shares;
  Io::VolumeOptions options;
  options.raw = Io::RawLayout{{1 << 22, 1, 1}};
  options.progress = [&](double p_share) {
    shares.push_back(p_share);
    return p_share < 0.5;
  };
  EXPECT_EQ(SummaryOrError(std::string(1 << 22, 'x'), "v", options), "v: cancelled");
  EXPECT_TRUE(shares.size() >= 2 && std::is_sorted(shares.begin(), shares.end()) && shares.back() < 0.8);
}

TEST(ReadVolume, SurvivesDamage) {
  const TempFolder folder;
  folder.Write("v.raw", BytesOf<std::int16_t>({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
  const std::string in = "cd " + folder.Path().string() + " && teem-unu ";
  Output(
      in +
      "make -t short -s 4 3 1 -i v.raw -en little -spc LPS -orig '(1,2,3)' -dirs '(0,2,0) (1,0,0) (0,0,3)' -o a.nrrd");
  for (const char* const encoding : {"gzip", "hex", "ascii"})
    Output(in + "save -f nrrd -i a.nrrd -e " + encoding + " -o " + encoding + ".nrrd");
  folder.Write("a.nii", Oblique(false, false, 1, 1).bytes);
  folder.Write("b.nii", Oblique(true, true, 1, 0).bytes);
  folder.Write("v.txt", "TextArray 3 1 2 2\n1 2.5 -3 4e1 5 nan 7 8 9 10 11 12\n");
  Output("cd " + folder.Path().string() + " && gzip -k a.nii");
  for (const std::string name : {"pacific_salinity.nrrd", "pacific_salinity.nii.gz"})
    folder.Write(name, BytesOfFile(VEK_SOURCE_DIR "/data/" + name));
  for (const std::string name : {"a.nrrd", "gzip.nrrd", "hex.nrrd", "ascii.nrrd", "a.nii", "b.nii", "a.nii.gz", "v.txt",
                                 "pacific_salinity.nrrd", "pacific_salinity.nii.gz"}) {
    const std::string bytes = BytesOfFile(folder.File(name));
    const bool isCompressed = !ReadsGzip() && (name.find('z') != std::string::npos || name.find("pacific") == 0);
    ASSERT_EQ(SummaryOrError(bytes, name).find(name + ":") == std::string::npos, !isCompressed) << name;
    CheckDamage<FileError>(bytes, [&](const std::string& p_bytes) { Read(p_bytes, name); });
  }
}
