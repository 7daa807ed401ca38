#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Vek::Chart::Library::Private {

/// A regular file that several threads read, each at its own offset. Systems without positioned reads open none.
class PositionedFile {
public:
  /// Stays closed where the path is no regular file that can be opened.
  explicit PositionedFile(const std::string& p_path);
  ~PositionedFile();
  PositionedFile(const PositionedFile&) = delete;
  PositionedFile& operator=(const PositionedFile&) = delete;

  bool IsOpen() const { return _descriptor >= 0; }
  /// Reads up to p_count bytes and returns their number, which is smaller at the end of the file and after errors.
  std::size_t Read(std::uint64_t p_offset, unsigned char* p_target, std::size_t p_count) const;

private:
  int _descriptor = -1;
};

} // namespace Vek::Chart::Library::Private
