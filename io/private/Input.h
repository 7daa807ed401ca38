#pragma once

#include "io/Progress.h"

#include <fstream>
#include <istream>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

namespace Vek::Chart::Io::Private {

/// A stream of a file, with its path for libraries that open it themselves.
struct FileStream : std::ifstream {
  explicit FileStream(const std::string& p_path)
      : std::ifstream(p_path, std::ios::binary)
      , path(p_path) {}
  FileStream(FileStream&& p_other)
      : std::ifstream(std::move(p_other))
      , path(std::move(p_other.path)) {}

  std::string path;
};

/// Opens a file as binary. Throws FileError for a folder, a device and a file that cannot be opened.
FileStream OpenFile(const std::string& p_path);
/// All that is left of a stream. Throws FileError where reading fails.
std::string ReadAll(std::istream& p_stream, const std::string& p_name);
/// Goes back to the start of a stream of which the first bytes are read; a stream that cannot seek is read to the end.
class Restarted {
public:
  /// Reads up to that many bytes of the start.
  Restarted(std::istream& p_stream, const std::string& p_name, std::size_t p_startSize);
  const std::string& Start() const { return _start; }
  /// The whole stream, from where it was.
  std::istream& Stream() { return _seeks ? _stream : _copy; }

private:
  std::istream& _stream;
  std::istringstream _copy;
  std::string _start;
  bool _seeks;
};

/// The suffix of a name in lower case, with its dot; empty without one.
std::string Suffix(const std::string& p_name);
/// Whether a name ends so, in any case; the ending has small letters.
bool EndsWith(std::string_view p_name, std::string_view p_ending);
/// The first line of a file in quotes, if it is text, or what it is instead.
std::string Description(std::string_view p_start);
/// Whether a file starts with a byte order mark of UTF-16.
bool IsUtf16(std::string_view p_start);
/// Calls the progress, if there is one. Throws FileError ("name: cancelled") if it returns false.
void Report(const Progress& p_progress, const std::string& p_name, double p_share);
/// Throws FileError for a file of a format that needs a library which this build lacks, and names the package.
[[noreturn]] void FailWithout(std::string_view p_format, const std::string& p_name);

} // namespace Vek::Chart::Io::Private
