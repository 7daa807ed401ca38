#include "library/private/io/PositionedFile.h"

#include <filesystem>
#include <system_error>

#if defined(__unix__) || defined(__APPLE__)
#define VEK_HAS_PREAD
#include <fcntl.h>
#include <unistd.h>
#endif

namespace Vek::Chart::Library::Private {

PositionedFile::PositionedFile([[maybe_unused]] const std::string& p_path) {
#ifdef VEK_HAS_PREAD
  std::error_code error;
  if (std::filesystem::is_regular_file(p_path, error)) // opening a pipe would take its bytes from others
    _descriptor = open(p_path.c_str(), O_RDONLY | O_CLOEXEC);
#endif
}

PositionedFile::~PositionedFile() {
#ifdef VEK_HAS_PREAD
  if (IsOpen())
    close(_descriptor);
#endif
}

std::size_t PositionedFile::Read([[maybe_unused]] std::uint64_t p_offset, [[maybe_unused]] unsigned char* p_target,
                                 [[maybe_unused]] std::size_t p_count) const {
  std::size_t count = 0;
#ifdef VEK_HAS_PREAD
  while (count < p_count) {
    const ssize_t got = pread(_descriptor, p_target + count, p_count - count, static_cast<off_t>(p_offset + count));
    if (got <= 0)
      break;
    count += static_cast<std::size_t>(got);
  }
#endif
  return count;
}

} // namespace Vek::Chart::Library::Private
