// Numbers of TextArray files on several threads, and on one, compared with a stream of the standard library. Runs with
// blocks of the usual size, and as TextThreadsTinyTest and TextThreadsPlainTest with blocks of a few words.

#include "library/ReadTextArray.h"
#include "library/VolumeImage.h"
#include "tests/support/Test.h"

namespace {

using Vek::Chart::Utility::Threads;

constexpr std::array<int, 4> Counts{1, 2, 3, 7};
#ifdef VEK_TINY_BLOCKS
constexpr std::size_t MostNumbers = 8000;
#else
constexpr std::size_t MostNumbers = 120000; // in more than 1 MiB
#endif

/// A number in one of many forms.
std::string NumberText(std::mt19937& p_random, const std::string& p_format) {
  char text[400];
  double value = std::ldexp(double(p_random()) - 2e9, int(p_random() % 60) - 60);
  if (p_format == "halfway") { // between two floats, and next to that
    const float near = static_cast<float>(value);
    value = (double(near) + double(std::nextafterf(near, 0.0f))) / 2;
    value = p_random() % 2 == 0 ? value : std::nextafter(value, p_random() % 2 == 0 ? 1e30 : -1e30);
    std::snprintf(text, sizeof text, "%.*g", int(15 + p_random() % 12), value);
  } else if (p_format == "short") { // mostly of at most eight characters
    std::string digits = std::to_string(p_random() % (p_random() % 4 == 0 ? 10000000 : 10000));
    digits.insert(p_random() % (digits.size() + 1), p_random() % 2 == 0 ? "" : ".");
    return (p_random() % 3 == 0 ? "-" : "") + digits;
  } else if (p_format == "digits") { // of any length, with a point anywhere
    std::string digits(1 + p_random() % 36, '0');
    for (char& digit : digits)
      digit = static_cast<char>('0' + (p_random() % 3 == 0 ? p_random() % 10 : 0));
    digits.insert(p_random() % (digits.size() + 1), p_random() % 2 == 0 ? "." : "");
    const std::string exponent = p_random() % 3 == 0 ? "e" + std::to_string(int(p_random() % 53) - 50) : "";
    return (p_random() % 2 == 0 ? "-" : "") + digits + exponent;
  } else {
    if (p_format == "%.7e") // up to the smallest and the largest floats
      value = std::ldexp(value, int(p_random() % 215) - 120);
    std::snprintf(text, sizeof text, p_format.c_str(), p_format == "%.0f" ? std::fmod(value, 4096.0) : value);
  }
  return text;
}

/// A file of `p_count` numbers of all forms, or of one.
std::string File(const std::string& p_format, std::size_t p_count, const std::string& p_at = {},
                 std::size_t p_index = 0) {
  constexpr std::array<const char*, 9> Formats{"%.0f",  "%.3f", "%.6g",    "%.6f",  "%.7e",
                                               "%.17g", "%.9E", "halfway", "digits"};
  constexpr std::array<const char*, 6> Blanks{" ", "\n", "\r\n", "\t ", " \n\n ", " "};
  std::mt19937 random(static_cast<unsigned int>(p_count));
  std::string text = "TextArray " + std::to_string(p_count) + " 1 1 1\n";
  for (std::size_t i = 0; i < p_count; ++i) {
    text +=
        i == p_index && !p_at.empty() ? p_at : NumberText(random, p_format.empty() ? Formats[random() % 9] : p_format);
    text += i + 1 == p_count ? "" : Blanks[random() % 6];
  }
  return text;
}

std::vector<float> ByStream(const std::string& p_file) {
  std::istringstream stream(p_file);
  stream.ignore(100, '\n');
  std::vector<float> numbers;
  for (float number = 0; stream >> number;)
    numbers.push_back(number);
  return numbers;
}

bool BitsEqual(const std::vector<float>& p_a, const std::vector<float>& p_b) {
  return p_a.size() == p_b.size() &&
         (p_a.empty() || std::memcmp(p_a.data(), p_b.data(), sizeof(float) * p_a.size()) == 0);
}

/// A file in the folder for temporary files.
struct FileOnDisk {
  const std::string path = (std::filesystem::temp_directory_path() / ("vek-text-" + std::to_string(getpid()))).string();
  explicit FileOnDisk(const std::string& p_text) { std::ofstream(path, std::ios::binary) << p_text; }
  ~FileOnDisk() { std::remove(path.c_str()); }
};

/// The floats of a stream or of a file, or the error.
std::pair<std::vector<float>, std::string> Floats(const std::string& p_file, int p_threads,
                                                  const char* p_path = nullptr) {
  try {
    std::istringstream stream(p_file);
    const TextArray array = p_path != nullptr ? ReadTextArray(p_path, {}, Threads(p_threads))
                                              : ReadTextArray(stream, "x", {}, Threads(p_threads));
    return {std::get<std::vector<float>>(array.values), ""};
  } catch (const TextArrayError& error) {
    const std::string text = error.what();
    return {{}, text.substr(text.find(':'))};
  }
}

/// The voxels of a stream or of a file, and the reports with their details.
std::pair<std::vector<unsigned char>, Texts> Voxels(const std::string& p_file, int p_threads,
                                                    const char* p_path = nullptr) {
  const ReportCapture reports;
  std::istringstream stream(p_file);
  const auto volume =
      p_path != nullptr
          ? VolumeImage::LoadFromFile(vekfile::filepath(p_path), VolumeImage::TextArray, Threads(p_threads))
          : VolumeImage::LoadFromStream(stream, VolumeImage::TextArray, Threads(p_threads));
  Texts all = reports.Texts(), details = reports.Details();
  all.insert(all.end(), details.begin(), details.end());
  return {volume->Bytes(), all};
}

} // namespace

TEST(TextThreads, NumbersEqualThoseOfAStream) {
  for (const std::string format :
       {"%.0f", "short", "%.3f", "%.6g", "%.6f", "%.7e", "%.17g", "%.9E", "halfway", "digits"}) {
    const std::string file = File(format, 20000);
    const std::vector<float> expected = ByStream(file);
    ASSERT_EQ(expected.size(), 20000u) << format;
    const std::vector<float> numbers = Floats(file, 1).first;
    ASSERT_EQ(numbers.size(), expected.size());
    for (std::size_t i = 0; i < numbers.size(); ++i)
      ASSERT_TRUE(BitsEqual({numbers[i]}, {expected[i]})) << format << ' ' << i << ' ' << numbers[i];
  }
}

TEST(TextThreads, ResultsDoNotDependOnTheirNumber) {
  for (const std::size_t count : {1, 2, 100, 1000, int(MostNumbers)}) {
    const std::string file = File("", count);
    const std::vector<float> expected = ByStream(file);
    ASSERT_EQ(expected.size(), count);
    const auto voxels = Voxels(file, 1);
    for (const std::string end : {"", "\n", "\r\n \n"}) {
      const FileOnDisk disk(file + end);
      for (const int threads : Counts)
        for (const char* const path : {static_cast<const char*>(nullptr), disk.path.c_str()}) {
          EXPECT_TRUE(BitsEqual(Floats(file + end, threads, path).first, expected)) << threads << ' ' << count;
          EXPECT_TRUE(Voxels(file + end, threads, path) == voxels) << threads << ' ' << count;
        }
    }
  }
}

TEST(TextThreads, RangesAreOfFiniteNumbersInTheirOrder) {
  const std::array<std::string, 7> words{"nan", "0", "-0", "inf", "-Infinity", "-0", "2"};
  for (std::size_t first = 0; first < words.size(); ++first)
    for (const std::string sign : {"", "-"}) {
      std::string file = "TextArray 350000 1 1 1\n"; // in more than 1 MiB
      std::array<float, 2> expected{INFINITY, -INFINITY};
      for (std::size_t i = first; i < first + 350000; ++i) {
        const std::string& word = words[i % words.size()];
        file += (word == "2" ? sign : "") + word + '\n';
        const float number = word == "2" ? std::stof(sign + word) : std::stof(word);
        if (std::isfinite(number))
          expected = {std::min(expected[0], number), std::max(expected[1], number)};
      }
      for (const int threads : Counts) {
        std::istringstream stream(file);
        const std::array<float, 2> range = ReadTextArray(stream, "x", {}, Threads(threads)).range;
        EXPECT_EQ(std::memcmp(range.data(), expected.data(), sizeof range), 0) << first << sign << threads;
      }
    }
}

TEST(TextThreads, ErrorsAndReportsDoNotDependOnTheirNumber) {
  // What is in the place of a number, and whether a stream reads it as one.
  const std::pair<std::string, bool> cases[] = {{"x", false},
                                                {"1x2", false},
                                                {"nan", false},
                                                {"-Infinity", false},
                                                {"1.5-2", true},
                                                {"+5", true},
                                                {"1e50", false},
                                                {"1e-60", true},
                                                {"-", false},
                                                {"1.2.3", true},
                                                {"1/2", false},
                                                {"-.5", true},
                                                {"1234567.", true},
                                                {"16777217", true},
                                                {"1e", false},
                                                {"0x10", false},
                                                {".", false},
                                                {"-.", false},
                                                {"-.e+05", false},
                                                {"-e+05", false},
                                                {"1e+0:", false},
                                                {"1e,05", false},
                                                {"-0e+00", true},
                                                {"1.E-05", true},
                                                {".5e+38", true},
                                                {"3.4028236e+38", false},
                                                {std::string(300, '1'), false},
                                                {std::string(300, '0') + "7", true}};
  for (const auto& [word, isNumber] : cases)
    for (const std::size_t index : {std::size_t{1}, MostNumbers / 2}) {
      const std::string file = File(index == 1 ? "short" : "%.6g", MostNumbers, word, index);
      const FileOnDisk disk(file);
      const auto floats = Floats(file, 1);
      const auto voxels = Voxels(file, 1);
      EXPECT_TRUE(voxels.second.empty() == isNumber || index != 1) << word;
      for (const char* const path : {static_cast<const char*>(nullptr), disk.path.c_str()}) {
        const auto [numbers, error] = Floats(file, 3, path);
        EXPECT_TRUE(BitsEqual(numbers, floats.first)) << word << ' ' << index;
        EXPECT_EQ(error, floats.second) << word;
        EXPECT_TRUE(Voxels(file, 3, path) == (path == nullptr ? voxels : Voxels(file, 1, path)))
            << word << ' ' << index;
      }
    }
  const std::string more = File("%.6g", MostNumbers) + " 1";
  EXPECT_NE(Floats(more, 1).second, "");
  EXPECT_EQ(Floats(more, 3).second, Floats(more, 1).second);
}
