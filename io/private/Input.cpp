#include "io/private/Input.h"

#include "io/FileError.h"
#include "io/Formats.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <vector>

namespace Vek::Chart::Io::Private {

FileStream OpenFile(const std::string& p_path) {
  std::error_code ignored;
  if (std::filesystem::is_directory(p_path, ignored))
    throw FileError(p_path, "expected a file, got a folder");
  if (std::filesystem::is_character_file(p_path, ignored)) // may never end
    throw FileError(p_path, "expected a file, got a device");
  errno = 0;
  FileStream file(p_path);
  if (!file)
    throw FileError(p_path, std::string("cannot be opened: ") + std::strerror(errno));
  return file;
}

std::string ReadAll(std::istream& p_stream, const std::string& p_name) {
  std::string text;
  std::vector<char> block(std::size_t(1) << 20);
  while (p_stream.read(block.data(), std::streamsize(block.size())) || p_stream.gcount() > 0)
    text.append(block.data(), std::size_t(p_stream.gcount()));
  if (p_stream.bad())
    throw FileError(p_name, "reading failed");
  return text;
}

Restarted::Restarted(std::istream& p_stream, const std::string& p_name, std::size_t p_startSize)
    : _stream(p_stream)
    , _start(p_startSize, '\0') {
  const std::istream::pos_type at = p_stream.tellg();
  p_stream.clear();
  p_stream.read(_start.data(), std::streamsize(p_startSize));
  _start.resize(std::size_t(p_stream.gcount()));
  if (p_stream.bad())
    throw FileError(p_name, "reading failed");
  p_stream.clear();
  _seeks = at != std::istream::pos_type(-1) && p_stream.seekg(at);
  if (_seeks)
    return;
  p_stream.clear();
  _copy.str(_start + ReadAll(p_stream, p_name));
}

std::string Suffix(const std::string& p_name) {
  std::string suffix = std::filesystem::path(p_name).extension().string();
  std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                 [](unsigned char p_c) { return static_cast<char>(p_c >= 'A' && p_c <= 'Z' ? p_c + 32 : p_c); });
  return suffix;
}

bool IsUtf16(std::string_view p_start) {
  return p_start.substr(0, 2) == "\xFF\xFE" || p_start.substr(0, 2) == "\xFE\xFF";
}

void Report(const Progress& p_progress, const std::string& p_name, double p_share) {
  if (p_progress && !p_progress(p_share))
    throw FileError(p_name, "cancelled");
}

bool EndsWith(std::string_view p_name, std::string_view p_ending) {
  const auto same = [](char p_a, char p_b) { return (p_a >= 'A' && p_a <= 'Z' ? p_a + 32 : p_a) == p_b; };
  return p_name.size() >= p_ending.size() &&
         std::equal(p_ending.begin(), p_ending.end(), p_name.end() - std::ptrdiff_t(p_ending.size()), same);
}

std::string Description(std::string_view p_start) {
  if (p_start.empty())
    return "an empty file";
  const std::string_view line = p_start.substr(0, std::min(p_start.find_first_of("\r\n"), std::size_t{40}));
  const bool text = std::all_of(line.begin(), line.end(), [](char p_c) { return p_c >= ' ' && p_c <= '~'; });
  return text ? "\"" + std::string(line) + "\"" : "binary data";
}

void FailWithout(std::string_view p_format, const std::string& p_name) {
  const auto format =
      std::find_if(Formats().begin(), Formats().end(), [&](const Format& p_row) { return p_row.name == p_format; });
  throw FileError(p_name, "this build does not read " + std::string(p_format) + " files; build it with the package " +
                              std::string(format == Formats().end() ? "" : format->package));
}

} // namespace Vek::Chart::Io::Private
