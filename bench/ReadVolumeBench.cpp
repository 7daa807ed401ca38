// Reads volumes of 256 MiB: NRRD and NIfTI with raw values in the machine's byte order, beside the bound: read() into
// fresh memory. Bytes per second, to be compared as a share of the bound. NRRD as text is read beside a plain loop of
// std::from_chars over the text in memory.

#include "bench/SideBySide.h"
#include "io/ReadVolume.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Vek::Chart;

constexpr std::size_t ValueBytes = std::size_t{1} << 28;

/// Files that are removed at the end.
class Files {
public:
  Files() {
    std::string name = (std::filesystem::temp_directory_path() / "vek-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr)
      std::exit(1);
    _folder = name;
    for (const bool floats : {false, true}) {
      Write(Path(true, floats), NrrdHeader(floats), floats);
      Write(Path(false, floats), NiftiHeader(floats), floats);
    }
  }
  ~Files() { std::filesystem::remove_all(_folder); }
  std::string Path(bool p_nrrd, bool p_floats) const {
    return (_folder / (p_floats ? "floats" : "shorts")).string() + (p_nrrd ? ".nrrd" : ".nii");
  }

private:
  static std::string NrrdHeader(bool p_floats) {
    return std::string("NRRD0004\ntype: ") + (p_floats ? "float" : "short") + "\ndimension: 3\nsizes: 512 512 " +
           (p_floats ? "256" : "512") + "\nendian: little\nencoding: raw\n\n";
  }
  static std::string NiftiHeader(bool p_floats) {
    std::string header(352, '\0');
    const auto put = [&](std::size_t p_at, auto p_value) { std::memcpy(&header[p_at], &p_value, sizeof p_value); };
    put(0, std::int32_t{348});
    for (std::size_t i = 0; i < 8; ++i)
      put(40 + 2 * i, std::int16_t{1});
    put(40, std::int16_t{3});
    put(42, std::int16_t{512});
    put(44, std::int16_t{512});
    put(46, static_cast<std::int16_t>(p_floats ? 256 : 512));
    put(70, static_cast<std::int16_t>(p_floats ? 16 : 4));
    put(108, 352.0f);
    std::memcpy(&header[344], "n+1", 4);
    return header;
  }
  static void Write(const std::string& p_path, const std::string& p_header, bool p_floats) {
    std::ofstream file(p_path, std::ios::binary);
    file << p_header;
    std::vector<char> block(std::size_t{1} << 20);
    for (std::size_t i = 0; i < block.size() / 4; ++i) {
      const float number = static_cast<float>(i % 4096) - 1000.0f;
      const std::int16_t pair[2] = {static_cast<std::int16_t>(number), static_cast<std::int16_t>(-number)};
      std::memcpy(&block[4 * i], p_floats ? static_cast<const void*>(&number) : pair, 4);
    }
    for (std::size_t written = 0; written < ValueBytes; written += block.size())
      file.write(block.data(), std::streamsize(block.size()));
    if (!file.flush())
      std::exit(1);
  }

  std::filesystem::path _folder;
};

const Files& AllFiles() {
  static const Files Made;
  return Made;
}

/// The bound: read() of the whole file into memory that no page backs yet.
void Read(benchmark::State& p_state) {
  const std::string path = AllFiles().Path(true, false);
  const std::size_t size = std::filesystem::file_size(path);
  for (auto _ : p_state) {
    const int file = ::open(path.c_str(), O_RDONLY);
    const std::unique_ptr<char[]> memory(new char[size]);
    std::size_t at = 0;
    for (ssize_t count = 1; count > 0; at += std::size_t(count))
      count = ::read(file, memory.get() + at, size - at);
    ::close(file);
    benchmark::DoNotOptimize(memory.get());
  }
  p_state.SetBytesProcessed(std::int64_t(p_state.iterations() * size));
}
BENCHMARK(Read)->UseRealTime()->Unit(benchmark::kMillisecond);

void ReadVolume(benchmark::State& p_state, bool p_nrrd, bool p_floats) {
  const std::string path = AllFiles().Path(p_nrrd, p_floats);
  for (auto _ : p_state) {
    const Io::Volume volume = Io::ReadVolume(path);
    if (volume.Count() * volume.ValueBytes() != ValueBytes)
      std::abort();
  }
  p_state.SetBytesProcessed(std::int64_t(p_state.iterations() * ValueBytes));
}
BENCHMARK_CAPTURE(ReadVolume, NrrdShorts, true, false)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadVolume, NrrdFloats, true, true)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadVolume, NiftiShorts, false, false)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadVolume, NiftiFloats, false, true)->UseRealTime()->Unit(benchmark::kMillisecond);

constexpr std::size_t TextCount = 128 * 128 * 256;

/// A file of text, written once and removed at the end.
class TextFile {
public:
  TextFile() {
    std::ofstream file(_path, std::ios::binary);
    file << "NRRD0004\ntype: float\ndimension: 3\nsizes: 128 128 256\nencoding: ascii\n\n";
    std::uint64_t random = 1;
    char text[32];
    for (std::size_t i = 0; i < TextCount; ++i) {
      random = random * 6364136223846793005u + 1442695040888963407u;
      const double share = double(random >> 11) / double(std::uint64_t(1) << 53);
      std::snprintf(text, sizeof text, "%.6g%c", 1000 * share * share * share, i % 128 == 127 ? '\n' : ' ');
      file << text;
    }
    if (!file.flush())
      std::exit(1);
  }
  ~TextFile() { std::filesystem::remove(_path); }
  const std::string& Path() const { return _path; }

private:
  const std::string _path = (std::filesystem::temp_directory_path() / "vek-bench-text.nrrd").string();
};

const std::string& TextPath() {
  static const TextFile Made;
  return Made.Path();
}

void FromChars() {
  std::ifstream file(TextPath(), std::ios::binary);
  std::string text(std::filesystem::file_size(TextPath()), '\0');
  file.read(text.data(), std::streamsize(text.size()));
  std::vector<float> values;
  values.reserve(TextCount);
  const char* at = text.data() + text.find("\n\n") + 1;
  for (const char* const end = text.data() + text.size(); ++at < end;) { // one separator between two numbers
    float value = 0;
    at = std::from_chars(at, end, value).ptr;
    values.push_back(value);
  }
  benchmark::DoNotOptimize(values.data());
}

void ReadText(Utility::Threads p_threads) {
  if (Io::ReadVolume(TextPath(), {}, p_threads).Count() != TextCount)
    std::abort();
}

void NrrdText(benchmark::State& p_state) {
  TextPath();
  Vek::Bench::SideBySide(
      p_state, "of_from_chars", [] { ReadText({}); }, FromChars);
}
BENCHMARK(NrrdText)->UseManualTime()->Unit(benchmark::kMillisecond);

void NrrdTextOnThreads(benchmark::State& p_state) {
  const Utility::Threads threads(static_cast<int>(p_state.range(0)));
  Vek::Bench::SideBySide(
      p_state, "of_one_thread", [&] { ReadText(threads); }, [] { ReadText({}); });
}
BENCHMARK(NrrdTextOnThreads)->Apply(Vek::Bench::OnThreads);

} // namespace
