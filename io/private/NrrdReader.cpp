#include "io/private/NrrdHeader.h"
#include "io/private/VolumeFormats.h"

#include "io/FileError.h"
#include "io/private/Grid.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace Vek::Chart::Io::Private {

namespace {

using Role = NrrdHeader::Role;

/// Pairs of hexadecimal digits as bytes.
class HexSource : public ByteSource {
public:
  HexSource(ByteSource& p_source, const std::string& p_name)
      : _source(p_source)
      , _name(p_name) {}

  std::size_t Read(char* p_to, std::size_t p_count) override {
    for (std::size_t read = 0; read < p_count; ++read) {
      const int high = Digit();
      const int low = high < 0 ? high : Digit();
      if (low < 0)
        return read;
      p_to[read] = static_cast<char>(16 * high + low);
    }
    return p_count;
  }
  std::uint64_t MostLeft() const override {
    const std::uint64_t left = _source.MostLeft();
    return left == Unknown ? Unknown : left / 2;
  }

private:
  /// The next digit; -1 at the end.
  int Digit() {
    for (;;) {
      const std::string_view text = _source.Peek(1);
      if (text.empty())
        return -1;
      const char c = text.front();
      _source.Skip(1);
      if (c >= '0' && c <= '9')
        return c - '0';
      if ((c | 32) >= 'a' && (c | 32) <= 'f')
        return (c | 32) - 'a' + 10;
      if (c != ' ' && (c < '\t' || c > '\r'))
        throw FileError(_name, "expected hexadecimal digits, got '" + std::string(1, c) + "'");
    }
  }

  PeekSource _source;
  const std::string& _name;
};

/// What the axes of a file are, where directions and kinds leave it open.
void SettleRoles(std::vector<NrrdHeader::Axis>& p_axes) {
  using Axis = NrrdHeader::Axis;
  const bool inSpace =
      std::any_of(p_axes.begin(), p_axes.end(), [](const Axis& p_axis) { return p_axis.direction.has_value(); });
  const bool allUnknown =
      std::all_of(p_axes.begin(), p_axes.end(), [](const Axis& p_axis) { return p_axis.role == Role::Unknown; });
  std::size_t grid = 0;
  for (Axis& axis : p_axes) {
    const bool first = &axis == &p_axes.front();
    const bool inTime = axis.direction == NrrdHeader::Vector{0, 0, 0}; // the fourth component has it
    if (inSpace && axis.direction && !inTime)
      axis.role = Role::Grid;
    else if (inSpace && axis.role != Role::Components)
      axis.role = first && !axis.direction ? Role::Components : Role::Steps;
    else if (!inSpace && allUnknown && first && p_axes.size() >= 4 && axis.size <= 4)
      axis.role = Role::Components;
    else if (axis.role == Role::Steps && first && p_axes.size() > 1)
      axis.role = Role::Components; // step by step within a voxel
    else if (axis.role == Role::Unknown || axis.role == Role::Grid)
      axis.role = grid < 3 ? Role::Grid : Role::Steps;
    grid += axis.role == Role::Grid ? 1 : 0;
  }
}

/// The extents of the grid, the channels and the steps. Sets `p_grid` to the axes of the grid.
ValueLayout LayoutOf(const NrrdHeader& p_header, const std::string& p_name, std::vector<NrrdHeader::Axis>& p_grid) {
  ValueLayout layout;
  Role last = Role::Components;
  bool fits = true;
  for (const NrrdHeader::Axis& axis : p_header.axes) {
    if (axis.role == Role::Grid) {
      fits = fits && p_grid.size() < 3 && (last == Role::Components || last == Role::Grid) && !layout.planar;
      if (fits)
        layout.size[p_grid.size()] = axis.size;
      p_grid.push_back(axis);
    } else if (axis.role == Role::Components) {
      fits = fits && last != Role::Steps && (p_grid.empty() || layout.channels == 1) && axis.size <= 65536;
      layout.planar = layout.planar || !p_grid.empty();
      layout.channels *= fits ? axis.size : 1;
    } else {
      fits = fits && layout.steps <= ByteSource::Unknown / axis.size;
      layout.steps *= fits ? axis.size : 1;
    }
    last = axis.role;
  }
  if (!fits || p_grid.empty())
    throw FileError(p_name, "expected channels, up to three axes of a grid, and steps, got " +
                                std::to_string(p_header.axes.size()) + " axes in another order");
  return layout;
}

/// Where the grid lies.
void Place(const NrrdHeader& p_header, const std::vector<NrrdHeader::Axis>& p_grid, Volume& p_volume) {
  const bool inSpace = p_grid.front().direction.has_value();
  p_volume.origin = p_header.origin;
  p_volume.lengthUnit = inSpace ? p_header.spaceUnit : p_grid.front().unit;
  p_volume.space = p_header.space;
  std::array<Volume::Vector, 3> steps{};
  for (std::size_t i = 0; i < p_grid.size(); ++i) {
    const NrrdHeader::Axis& axis = p_grid[i];
    if (axis.direction) {
      steps[i] = *axis.direction;
      continue;
    }
    const double intervals = double(axis.size) - (axis.nodes ? 1 : 0);
    double spacing = axis.spacing.value_or(1);
    if (!axis.spacing && axis.least && axis.most && intervals > 0 && *axis.least != *axis.most)
      spacing = (*axis.most - *axis.least) / intervals;
    steps[i][i] = spacing;
    if (axis.least && !inSpace)
      p_volume.origin[i] = *axis.least + (axis.nodes ? 0 : spacing / 2);
  }
  SetSteps(steps, p_volume);
  // Anatomical spaces differ in the signs of x and y.
  const bool left = p_volume.space.rfind("left-", 0) == 0;
  const bool posterior = p_volume.space.rfind("left-posterior", 0) == 0;
  for (std::size_t i = 0; i < 2; ++i)
    if (i == 0 ? left : posterior) {
      p_volume.origin[i] = 0 - p_volume.origin[i];
      for (Volume::Vector& direction : p_volume.orientation)
        direction[i] = 0 - direction[i];
    }
  if (left || p_volume.space.rfind("right-", 0) == 0)
    p_volume.space = "right-anterior-superior";
}

/// One file's part of the values.
struct Part {
  const NrrdHeader& header;
  const std::string& name;
  std::uint64_t bytes; ///< of the values, if they are binary

  /// Calls p_read with the values' source, decoded and behind what is skipped.
  template <class ReadSource>
  void Read(PeekSource& p_source, const ReadSource& p_read) const {
    using Encoding = NrrdHeader::Encoding;
    std::string line;
    for (std::uint64_t i = 0; i < header.lineSkip; ++i)
      if (!p_source.GetLine(line, std::size_t{1} << 24))
        throw FileError(name, "the file ends within the lines to skip");
    std::unique_ptr<ByteSource> decoded;
    if (header.encoding == Encoding::Gzip)
      decoded = OpenGzip(p_source, name);
    ByteSource& source = decoded ? *decoded : p_source;
    std::uint64_t skip = std::uint64_t(std::max<std::int64_t>(0, header.byteSkip));
    if (header.byteSkip < 0) {
      skip = source.MostLeft();
      if (header.encoding != Encoding::Raw || skip == ByteSource::Unknown || skip < bytes)
        throw FileError(name, "expected " + std::to_string(bytes) + " bytes of raw values at the end of the file");
      skip -= bytes;
    }
    if (!source.Skip(skip))
      throw FileError(name, "the file ends within the bytes to skip");
    if (header.encoding != Encoding::Hex)
      return p_read(source);
    HexSource hex(source, name);
    p_read(hex);
  }
};

/// The values of several files, one after the other. Each file has as many.
class FilesSource : public ByteSource {
public:
  FilesSource(const NrrdHeader& p_header, const std::string& p_name, const Progress& p_progress,
              std::uint64_t p_bytesPerFile)
      : _header(p_header)
      , _name(p_name)
      , _progress(p_progress)
      , _bytes(p_bytesPerFile) {}

  std::size_t Read(char* p_to, std::size_t p_count) override {
    std::size_t read = 0;
    while (read < p_count && (_at < _values.size() || NextFile())) {
      const std::size_t count = std::min(p_count - read, _values.size() - _at);
      std::copy_n(_values.data() + _at, count, p_to + read);
      _at += count;
      read += count;
    }
    return read;
  }
  std::uint64_t MostLeft() const override { return Unknown; }

private:
  bool NextFile() {
    if (_file == _header.dataFiles.size())
      return false;
    WithFileBeside(_name, _header.dataFiles[_file++], _progress, [&](ByteSource& p_file, const std::string& p_path) {
      PeekSource file(p_file);
      Part{_header, p_path, _bytes}.Read(file, [&](ByteSource& p_source) {
        const std::uint64_t most = p_source.MostLeft();
        if (most < _bytes)
          throw FileError(p_path, "expected " + std::to_string(_bytes) + " bytes of values, got at most " +
                                      std::to_string(most));
        _values.resize(std::size_t(_bytes));
        if (p_source.Read(_values.data(), _values.size()) < _values.size())
          throw FileError(p_path, "the file ends within its values");
      });
    });
    _at = 0;
    return true;
  }

  const NrrdHeader& _header;
  const std::string& _name;
  const Progress& _progress;
  const std::uint64_t _bytes;
  std::size_t _file = 0;
  std::string _values; ///< of the current file
  std::size_t _at = 0;
};

} // namespace

bool IsNrrd(std::string_view p_start) {
  return p_start.substr(0, 7) == "NRRD000";
}

Volume ReadNrrd(PeekSource& p_source, const std::string& p_name, const VolumeOptions& p_options,
                Utility::Threads p_threads) {
  NrrdHeader header(p_source, p_name);
  SettleRoles(header.axes);
  std::vector<NrrdHeader::Axis> grid;
  const ValueLayout layout = LayoutOf(header, p_name, grid);
  Volume volume;
  volume.noData = p_options.noData;
  volume.name = header.content;
  volume.unit = header.sampleUnit;
  Place(header, grid, volume);

  const std::uint64_t bytes = CountValues(layout, p_name) * layout.steps * header.format.Bytes();
  const bool text = header.encoding == NrrdHeader::Encoding::Text;
  const auto readValues = [&](ByteSource& p_values, const std::string& p_path, std::size_t p_line) {
    if (text)
      ReadTextValues(p_values, header.format, layout, p_options.step, p_path, p_line, p_threads, volume);
    else
      ReadValues(p_values, header.format, layout, p_options.step, p_path, p_threads, volume);
    char last = 0; // behind the values, gzip has a check sum
    if (header.encoding == NrrdHeader::Encoding::Gzip && p_options.step + 1 == layout.steps)
      p_values.Read(&last, 1);
  };
  const auto readFile = [&](PeekSource& p_file, const std::string& p_path, std::size_t p_line) {
    Part{header, p_path, bytes}.Read(p_file, [&](ByteSource& p_values) { readValues(p_values, p_path, p_line); });
  };
  const std::size_t files = header.dataFiles.size();
  if (files == 0) {
    readFile(p_source, p_name, header.lines + 1);
  } else if (files == 1) {
    WithFileBeside(p_name, header.dataFiles.front(), p_options.progress,
                   [&](ByteSource& p_file, const std::string& p_path) {
                     PeekSource file(p_file);
                     readFile(file, p_path, 1);
                   });
  } else {
    if (text || bytes % files != 0)
      throw FileError(p_name, "expected binary values that " + std::to_string(files) + " files have in equal parts");
    FilesSource source(header, p_name, p_options.progress, bytes / files);
    ReadValues(source, header.format, layout, p_options.step, p_name, p_threads, volume);
  }
  return volume;
}

} // namespace Vek::Chart::Io::Private
