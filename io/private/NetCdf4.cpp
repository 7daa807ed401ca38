// NetCDF-4, by libnetcdf. Only the variables of the root group are read.

#include "io/private/NetCdf.h"

#include "io/FileError.h"
#include "io/private/ByteSource.h"
#include "io/private/Bytes.h"

#if VEK_WITH_NETCDF

#include <netcdf.h>
#include <netcdf_mem.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>

namespace Vek::Chart::Io::Private {

namespace {

/// libnetcdf and libhdf5 are not thread-safe.
std::mutex& Mutex() {
  static std::mutex mutex;
  return mutex;
}

/// The bytes of a file from a position on: as many as asked for or more, fewer only at its end.
using Bytes = std::function<std::string_view(std::uint64_t p_at, std::size_t p_count)>;

/// Those of a stream, of which a window is kept.
Bytes BytesOf(std::istream& p_stream, const std::string& p_name) {
  return [&p_stream, &p_name, window = std::string(), first = std::uint64_t(0)](std::uint64_t p_at,
                                                                                std::size_t p_count) mutable {
    constexpr std::size_t Size = std::size_t(1) << 20;
    if (p_at < first || p_at - first > window.size() || window.size() - (p_at - first) < p_count) {
      first = p_at;
      window.resize(std::max(Size, p_count));
      p_stream.clear();
      p_stream.seekg(std::streamoff(p_at));
      p_stream.read(window.data(), std::streamsize(window.size()));
      if (p_stream.bad())
        throw FileError(p_name, "reading failed");
      window.resize(std::size_t(p_stream.gcount()));
    }
    return std::string_view(window).substr(std::size_t(p_at - first));
  };
}

/// Whether the objects of a global heap fill it. Other metadata have checksums, which HDF5 compares; heaps have none,
/// and libhdf5 1.10.8 reads out of bounds and loops for ever where one is damaged. The layout is that of the "HDF5 File
/// Format Specification", III.E. Bytes that look like a heap of another version, which compressed values may contain,
/// are sound: libhdf5 refuses them as a heap.
bool IsSoundHeap(const Bytes& p_bytes, std::uint64_t p_at, std::uint64_t p_fileSize) {
  constexpr std::size_t HeaderSize = 16, VersionAt = 4, SizeAt = 8;
  std::string_view header = p_bytes(p_at, HeaderSize);
  if (header.size() < HeaderSize)
    return false;
  if (header[VersionAt] != 1)
    return true;
  const auto size = LoadLittle<std::uint64_t>(header.substr(SizeAt));
  if (size < HeaderSize || size > p_fileSize - p_at)
    return false;
  const std::uint64_t end = p_at + size;
  for (std::uint64_t at = p_at + HeaderSize; end - at >= HeaderSize;) {
    header = p_bytes(at, HeaderSize);
    if (header.size() < HeaderSize)
      return false;
    const bool isFree = LoadLittle<std::uint16_t>(header) == 0; // with a size that includes its header
    auto object = LoadLittle<std::uint64_t>(header.substr(SizeAt));
    if (object > end - at || (isFree && object < HeaderSize))
      return false;
    if (!isFree)
      object = HeaderSize + (object + 7) / 8 * 8;
    if (object > end - at)
      return false;
    at += object;
  }
  return true;
}

void CheckHeaps(const Bytes& p_bytes, std::uint64_t p_fileSize, const std::string& p_name) {
  constexpr std::string_view Mark = "GCOL";
  for (std::uint64_t at = 0; at < p_fileSize;) {
    const std::string_view bytes = p_bytes(at, Mark.size());
    const std::size_t found = bytes.find(Mark);
    if (bytes.size() < Mark.size())
      return;
    if (found == std::string_view::npos) {
      at += bytes.size() - (Mark.size() - 1);
      continue;
    }
    if (!IsSoundHeap(p_bytes, at + found, p_fileSize))
      throw FileError(p_name, "byte " + std::to_string(at + found) + ": expected a heap of HDF5, got a damaged one");
    at += found + Mark.size();
  }
}

NetCdfType TypeOf(nc_type p_type) {
  return p_type >= NC_BYTE && p_type <= NC_UINT64 ? static_cast<NetCdfType>(p_type) : NetCdfType::Unknown;
}

class NetCdf4File : public NetCdfFile {
public:
  /// With a path, values are read from the file of that path when they are asked for; otherwise all bytes at once.
  NetCdf4File(std::istream& p_stream, const std::string& p_name, const std::string& p_path)
      : NetCdfFile(p_name)
      , _bytes(p_path.empty() ? ReadAll(p_stream, p_name) : std::string())
      , _size(p_path.empty() ? _bytes.size() : SizeOf(p_stream)) {
    const auto inMemory = [this](std::uint64_t p_at, std::size_t) {
      return std::string_view(_bytes).substr(std::size_t(p_at));
    };
    CheckHeaps(p_path.empty() ? Bytes(inMemory) : BytesOf(p_stream, p_name), _size, p_name);
    const std::lock_guard<std::mutex> lock(Mutex());
    if (p_path.empty())
      Check(nc_open_mem(p_name.c_str(), NC_NOWRITE, _bytes.size(), _bytes.data(), &_file));
    else // absolute, so that it is no address of a server
      Check(nc_open(std::filesystem::absolute(p_path).string().c_str(), NC_NOWRITE, &_file));
    try {
      ReadMetadata();
    } catch (...) { // the destructor does not run
      nc_close(_file);
      throw;
    }
  }
  ~NetCdf4File() override {
    const std::lock_guard<std::mutex> lock(Mutex());
    nc_close(_file);
  }
  NetCdf4File(const NetCdf4File&) = delete;
  NetCdf4File& operator=(const NetCdf4File&) = delete;

private:
  void Check(int p_status) const {
    if (p_status != NC_NOERR)
      throw FileError(_name, std::string("not a sound NetCDF-4 file: ") + nc_strerror(p_status));
  }

  void ReadMetadata() {
    int dimensions = 0, variables = 0;
    Check(nc_inq(_file, &dimensions, &variables, nullptr, nullptr));
    for (int i = 0; i < dimensions; ++i) {
      char name[NC_MAX_NAME + 1] = "";
      NetCdfDimension& dimension = _dimensions.emplace_back();
      Check(nc_inq_dim(_file, i, name, &dimension.size));
      dimension.name = name;
    }
    for (int i = 0; i < variables; ++i)
      ReadVariable(i);
    int groups = 0;
    Check(nc_inq_grps(_file, &groups, nullptr));
    if (variables == 0 && groups != 0)
      throw FileError(_name, "expected variables, got only groups, which are not read");
  }

  void ReadVariable(int p_variable) {
    char name[NC_MAX_NAME + 1] = "";
    nc_type type = NC_NAT;
    int dimensions = 0, attributes = 0;
    Check(nc_inq_var(_file, p_variable, name, &type, &dimensions, nullptr, &attributes));
    std::vector<int> indices(std::size_t(std::max(dimensions, 0)));
    Check(nc_inq_vardimid(_file, p_variable, indices.data()));
    NetCdfVariable& variable = _variables.emplace_back();
    variable.name = name;
    variable.type = TypeOf(type);
    for (const int index : indices) {
      if (index < 0 || std::size_t(index) >= _dimensions.size())
        throw FileError(_name, "variable \"" + variable.name + "\": a dimension of another group");
      variable.dimensions.push_back(std::size_t(index));
    }
    for (int i = 0; i < attributes; ++i)
      ReadAttribute(p_variable, i, variable.attributes.emplace_back());
  }

  void ReadAttribute(int p_variable, int p_attribute, NetCdfAttribute& p_to) const {
    char name[NC_MAX_NAME + 1] = "";
    nc_type type = NC_NAT;
    std::size_t size = 0;
    Check(nc_inq_attname(_file, p_variable, p_attribute, name));
    Check(nc_inq_att(_file, p_variable, name, &type, &size));
    p_to.name = name;
    p_to.type = TypeOf(type);
    if (size > _size)
      throw FileError(_name, "attribute \"" + p_to.name + "\": larger than the file");
    if (type == NC_CHAR) {
      p_to.text.resize(size);
      Check(nc_get_att_text(_file, p_variable, name, p_to.text.data()));
      p_to.text.resize(p_to.text.find_last_not_of('\0') + 1);
    } else if (type == NC_STRING && size == 1) {
      char* text = nullptr;
      Check(nc_get_att_string(_file, p_variable, name, &text));
      p_to.text = text == nullptr ? "" : text;
      nc_free_string(1, &text);
    } else if (TypeOf(type) != NetCdfType::Unknown) {
      p_to.numbers.resize(size);
      Check(nc_get_att_double(_file, p_variable, name, p_to.numbers.data()));
    }
  }

  /// Deflate compresses bytes at most to a 1032nd, and values that were never written take no space at all: the bound
  /// is only one against sizes beyond reason.
  bool HasRoom(const NetCdfVariable&, std::size_t p_values) const override {
    constexpr std::size_t Free = std::size_t(1) << 17, Compression = 256;
    return p_values <= Free || p_values / Compression <= _size;
  }

  void ReadBlock(std::size_t p_variable, const std::vector<std::size_t>& p_first,
                 const std::vector<std::size_t>& p_count, std::vector<double>& p_values,
                 const Progress& p_progress) const override {
    // In parts along the first dimension that has several indices, for the progress.
    constexpr std::size_t Part = std::size_t(1) << 22;
    std::size_t split = 0;
    while (split + 1 < p_count.size() && p_count[split] == 1)
      ++split;
    std::vector<std::size_t> first = p_first, count = p_count;
    const std::size_t all = p_count.empty() ? 1 : p_count[split];
    const std::size_t row = p_values.size() / all;
    for (std::size_t done = 0; done < all;) {
      const std::size_t rows = std::min(all - done, std::max<std::size_t>(Part / row, 1));
      if (!p_count.empty()) {
        first[split] = p_first[split] + done;
        count[split] = rows;
      }
      {
        const std::lock_guard<std::mutex> lock(Mutex());
        Check(nc_get_vara_double(_file, int(p_variable), first.data(), count.data(), p_values.data() + done * row));
      }
      done += rows;
      Report(p_progress, _name, double(done) / double(all));
    }
  }

  std::string _bytes;  ///< of the file, unless it is read in parts
  std::uint64_t _size; ///< of the file in bytes
  int _file = 0;
};

} // namespace

std::unique_ptr<NetCdfFile> OpenNetCdf4(std::istream& p_stream, const std::string& p_name, const std::string& p_path) {
  return std::make_unique<NetCdf4File>(p_stream, p_name, p_path);
}

} // namespace Vek::Chart::Io::Private

#else

namespace Vek::Chart::Io::Private {

std::unique_ptr<NetCdfFile> OpenNetCdf4(std::istream&, const std::string& p_name, const std::string&) {
  FailWithout("NetCDF-4", p_name);
}

} // namespace Vek::Chart::Io::Private

#endif
