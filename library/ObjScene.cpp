#include "library/ObjScene.h"

#include "library/private/io/ByteSource.h"
#include "library/private/io/LineBlocks.h"
#include "library/private/io/NumberText.h"
#include "library/private/io/ObjSceneReader.h"
#include "library/private/io/Printable.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace Vek::Chart::Library {

namespace {

using Private::ByteSource;

bool IsLineEnd(char p_character) {
  return p_character == '\n' || p_character == '\r';
}

/// The size of the front of a text that ends with a line whose statement does not go on behind it; 0 for none. A CR at
/// the very end may belong to a CR LF.
std::size_t WholeStatements(std::string_view p_text) {
  const auto isContinued = [&](std::size_t p_end) {
    const bool twoBytes = p_end >= 2 && p_text[p_end - 1] == '\n' && p_text[p_end - 2] == '\r';
    const std::size_t line = p_end - (twoBytes ? 2 : 1);
    return line != 0 && p_text[line - 1] == '\\';
  };
  for (const char lineEnd : {'\n', '\r'}) {
    const std::string_view text = lineEnd == '\r' && !p_text.empty() ? p_text.substr(0, p_text.size() - 1) : p_text;
    for (std::size_t end = text.rfind(lineEnd) + 1; end != 0; end = text.rfind(lineEnd, end - 2) + 1) {
      if (!isContinued(end))
        return end;
      if (end < 2)
        break;
    }
  }
  return 0;
}

void RefuseOtherEncodings(std::string_view p_start, const std::string& p_name) {
  const std::string_view mark = p_start.substr(0, 2);
  const bool zeros = p_start.size() >= 2 && (p_start[0] == '\0') != (p_start[1] == '\0'); // without byte order mark
  if (mark == "\xFF\xFE" || mark == "\xFE\xFF" || zeros)
    throw ObjError(p_name, "expected UTF-8, got UTF-16; save the file as UTF-8");
}

std::string_view Available(const ByteSource& p_source, std::size_t p_size) {
  return {reinterpret_cast<const char*>(p_source.Data()), p_size};
}

/// Makes lines available, at the end of the stream up to its last byte, and returns their size; 0 at its end.
std::size_t PrepareStatements(ByteSource& p_source, const Private::ObjSceneReader& p_reader,
                              const std::string& p_name) {
  for (std::size_t wanted = ByteSource::WindowSize;;) {
    const std::size_t available = p_source.Prepare(wanted);
    if (p_source.Failed())
      throw ObjError(p_name, "reading failed");
    if (available < wanted)
      return available;
    const std::size_t size = WholeStatements(Available(p_source, available));
    if (size != 0)
      return size;
    if (available > ByteSource::LongestLine)
      throw ObjError(p_name, p_reader.Line() + 1, "a line of at most 64 MiB", Available(p_source, 40));
    wanted = std::min(2 * available, ByteSource::LongestLine + 1);
  }
}

} // namespace

ObjError::ObjError(const std::string& p_path, const std::string& p_reason)
    : std::runtime_error(p_path + ": " + p_reason)
    , _reason(p_reason) {}

ObjError::ObjError(const std::string& p_path, std::uint64_t p_line, const std::string& p_expected,
                   std::string_view p_found)
    : std::runtime_error(p_path + ':' + std::to_string(p_line) + ": expected " + p_expected + ", got \"" +
                         Private::Printable(p_found) + '"')
    , _line(p_line)
    , _reason("expected " + p_expected + ", got \"" + Private::Printable(p_found) + '"')
    , _expected(p_expected)
    , _found(Private::Printable(p_found)) {}

ObjScene ReadObjScene(std::istream& p_stream, const std::string& p_name, const ObjProgress& p_progress,
                      Utility::Threads p_threads) {
  ByteSource source(p_stream, p_name);
  const std::uint64_t bytes = source.RemainingByClaim();
  Private::ObjSceneReader reader(p_name, bytes);
  const auto progress = [&](double p_share) {
    if (p_progress && !p_progress(p_share))
      throw ObjError(p_name, "cancelled");
  };
  const std::string_view start = Available(source, source.Prepare(3));
  RefuseOtherEncodings(start, p_name);
  if (start == "\xEF\xBB\xBF" || start.substr(0, 3) == "\xEF\xBB\xBF")
    source.Take(3);
  progress(0);
  struct Block {
    Private::LineBlock lines;
    Private::ObjSceneBlock scanned;
  };
  std::uint64_t bytesRead = 0;
  Private::RunLineBlocks<Block>(
      source, p_threads, [](Block& p_block) { p_block.scanned.Scan(p_block.lines.First(), p_block.lines.Last()); },
      [&](const Block& p_block) {
        bytesRead += p_block.lines.size;
        reader.AddBlock(p_block.scanned);
        progress(bytes == 0 ? 1 : std::min(1.0, double(bytesRead) / double(bytes)));
      },
      &WholeStatements);
  while (const std::size_t size = PrepareStatements(source, reader, p_name)) {
    const std::string_view text = Available(source, size);
    if (IsLineEnd(text.back())) {
      reader.ReadBlock(text.data(), text.data() + size);
    } else {
      std::string last = std::string(text) + '\n'; // the last line has no end
      last.append(Private::Scan::DigitsSlack, '\0');
      reader.ReadBlock(last.data(), last.data() + text.size() + 1);
    }
    source.Take(size);
    progress(bytes == 0 ? 1 : std::min(1.0, double(source.Position()) / double(bytes)));
  }
  return reader.Finish(p_threads);
}

ObjScene ReadObjScene(const std::string& p_path, const ObjProgress& p_progress, Utility::Threads p_threads) {
  std::error_code ignored;
  if (std::filesystem::is_directory(p_path, ignored))
    throw ObjError(p_path, "expected a file, got a folder");
  errno = 0;
  std::ifstream file(p_path, std::ios::binary);
  if (!file)
    throw ObjError(p_path, std::string("cannot be opened: ") + std::strerror(errno));
  return ReadObjScene(file, p_path, p_progress, p_threads);
}

} // namespace Vek::Chart::Library
