#include "apps/gallery/Loading.h"

#include "apps/gallery/TextTable.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>

namespace Vek::Chart::Gallery {

namespace {

/// A file that tells a Loading how much of it was read, a window at a time, whatever the reader asks for at once.
class WatchedFile : public std::filebuf {
public:
  WatchedFile(const std::string& p_path, std::size_t p_size, Loading& p_loading)
      : _size(static_cast<double>(std::max<std::size_t>(p_size, 1)))
      , _loading(p_loading) {
    pubsetbuf(_window.data(), Window);
    open(p_path, std::ios::in | std::ios::binary);
  }

protected:
  int_type underflow() override {
    _loading.CheckCancelled();
    const int_type next = std::filebuf::underflow();
    Count(egptr() - gptr());
    return next;
  }

  std::streamsize xsgetn(char* p_to, std::streamsize p_count) override {
    std::streamsize done = 0;
    while (done < p_count) {
      _loading.CheckCancelled();
      const std::streamsize buffered = egptr() - gptr(); // counted already
      const std::streamsize got = std::filebuf::xsgetn(p_to + done, std::min(p_count - done, Window));
      if (got <= 0)
        break;
      done += got;
      Count(std::max<std::streamsize>(got - buffered, 0));
    }
    return done;
  }

private:
  static constexpr std::streamsize Window = 1 << 16;

  void Count(std::streamsize p_bytes) {
    _read += static_cast<double>(p_bytes);
    _loading.Advance(_read / _size);
  }

  std::array<char, Window> _window;
  double _size;
  double _read = 0; ///< bytes; what is read twice counts twice
  Loading& _loading;
};

class WatchedStream : public std::istream {
public:
  WatchedStream(const std::string& p_path, std::size_t p_size, Loading& p_loading)
      : std::istream(nullptr)
      , _file(p_path, p_size, p_loading) {
    rdbuf(&_file);
    if (!_file.is_open())
      setstate(failbit);
    else
      exceptions(badbit); // lets through what the file throws
  }

private:
  WatchedFile _file;
};

} // namespace

Loading& Loading::Stage(double p_end) {
  _from = _hasStages ? _to : 0;
  _to = p_end;
  _hasStages = true;
  Advance(0);
  return *this;
}

void Loading::Advance(double p_part) {
  CheckCancelled();
  const double progress = _from + (_to - _from) * std::clamp(p_part, 0.0, 1.0);
  _progress.store(std::max(progress, Progress()), std::memory_order_relaxed);
}

std::unique_ptr<std::istream> Loading::Open(const std::string& p_path) {
  CheckCancelled();
  std::error_code error;
  if (!std::filesystem::exists(p_path, error))
    throw InputError(p_path + ": no such file");
  // A folder opens as a stream and fails only when it is read.
  if (std::filesystem::is_directory(p_path, error))
    throw InputError(p_path + ": expected a file, got a folder");
  const std::uintmax_t size = std::filesystem::file_size(p_path, error); // not known for a pipe
  auto stream = std::make_unique<WatchedStream>(p_path, error ? 0 : static_cast<std::size_t>(size), *this);
  if (!*stream)
    throw InputError(p_path + ": cannot be opened for reading");
  return stream;
}

} // namespace Vek::Chart::Gallery
