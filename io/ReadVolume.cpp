#include "io/ReadVolume.h"

#include "io/FileError.h"
#include "io/private/Bytes.h"
#include "io/private/Input.h"
#include "io/private/NetCdf.h"
#include "io/private/VolumeFormats.h"
#include "io/private/VolumeValues.h"
#include "library/ReadTextArray.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <utility>

namespace Vek::Chart::Io {

namespace {

constexpr std::size_t StartSize = 600; // more than any header's mark needs

Volume ReadRaw(Private::PeekSource& p_source, const std::string& p_name, const VolumeOptions& p_options,
               Utility::Threads p_threads) {
  const RawLayout& raw = *p_options.raw;
  Private::ValueFormat format;
  format.type = static_cast<Private::Stored>(raw.type);
  format.bigEndian = raw.bigEndian;
  Private::ValueLayout layout;
  layout.size = {raw.size[0], raw.size[1], raw.size[2]};
  layout.channels = raw.channels;
  Volume volume;
  volume.noData = p_options.noData;
  volume.spacing = raw.spacing;
  const std::unique_ptr<Private::ByteSource> unpacked =
      Private::EndsWith(p_name, ".gz") ? Private::OpenGzip(p_source, p_name) : nullptr;
  Private::ByteSource& source = unpacked ? *unpacked : p_source;
  if (!source.Skip(raw.headerBytes))
    throw FileError(p_name,
                    "expected values from byte " + std::to_string(raw.headerBytes) + ", got the end of the file");
  Private::ReadValues(source, format, layout, 0, p_name, p_threads, volume);
  if (char further = 0; source.Read(&further, 1) != 0)
    throw FileError(p_name, "expected " + std::to_string(volume.Count()) + " values, got more");
  return volume;
}

Volume ReadTextArray(std::istream& p_stream, const std::string& p_name, const VolumeOptions& p_options,
                     Utility::Threads p_threads) {
  Library::TextArrayOptions options;
  options.progress = p_options.progress;
  Library::TextArray array;
  try {
    array = Library::ReadTextArray(p_stream, p_name, options, p_threads);
  } catch (const Library::TextArrayError& error) {
    throw FileError(error);
  }
  Volume volume;
  volume.size = array.size;
  volume.channels = array.channels;
  volume.noData = p_options.noData;
  volume.values = std::get<std::vector<float>>(std::move(array.values));
  volume.range = p_options.noData ? volume.FindRange() : std::array<double, 2>{array.range[0], array.range[1]};
  return volume;
}

/// What a file is instead of a volume.
std::string Found(std::string_view p_start) {
  if (p_start.size() > 132 && p_start.substr(128, 4) == "DICM")
    return "a DICOM file; convert it to NIfTI";
  constexpr std::size_t AnalyzeSize = 348;
  if (p_start.size() >= AnalyzeSize && (Private::Load<std::int32_t>(p_start.data(), false) == AnalyzeSize ||
                                        Private::Load<std::int32_t>(p_start.data(), true) == AnalyzeSize))
    return "the header of an Analyze file; convert it to NIfTI";
  const std::string found = Private::Description(p_start);
  return found + (found == "binary data" ? "; raw values need their size and type" : "");
}

/// Whether a reader of a header's format takes the file; it throws for one that has only the name.
bool ReadWithHeader(Private::PeekSource& p_source, const std::string& p_name, const VolumeOptions& p_options,
                    Utility::Threads p_threads, Volume& p_volume) {
  const std::string_view start = p_source.Peek(StartSize);
  if (Private::IsNifti(start))
    p_volume = Private::ReadNifti(p_source, p_name, p_options, p_threads);
  else if (Private::IsNrrd(start) || Private::EndsWith(p_name, ".nrrd") || Private::EndsWith(p_name, ".nhdr"))
    p_volume = Private::ReadNrrd(p_source, p_name, p_options, p_threads);
  else if (Private::EndsWith(p_name, ".nii") || Private::EndsWith(p_name, ".nii.gz"))
    p_volume = Private::ReadNifti(p_source, p_name, p_options, p_threads);
  else
    return false;
  return true;
}

Volume Read(std::istream& p_stream, const std::string& p_name, const VolumeOptions& p_options,
            Utility::Threads p_threads) {
  const std::istream::pos_type begin = p_stream.tellg();
  p_stream.clear(p_stream.rdstate() & ~std::ios::failbit); // where it has no position
  Private::StreamSource file(p_stream, p_name, p_options.progress);
  Private::PeekSource source(file);
  if (p_options.raw)
    return ReadRaw(source, p_name, p_options, p_threads);
  const std::string start(source.Peek(StartSize));
  Volume volume;
  if (Private::IsGzip(start)) {
    const std::unique_ptr<Private::ByteSource> unpacked = Private::OpenGzip(source, p_name);
    Private::PeekSource contents(*unpacked);
    if (ReadWithHeader(contents, p_name, p_options, p_threads, volume))
      return volume;
    throw FileError(p_name, "expected a compressed NIfTI or NRRD file, got " + Found(contents.Peek(StartSize)));
  }
  if (ReadWithHeader(source, p_name, p_options, p_threads, volume))
    return volume;
  if (!Library::IsTextArray(start))
    throw FileError(p_name, "expected TextArray, NRRD, NIfTI or NetCDF, got " + Found(start));
  p_stream.clear();
  if (begin != std::istream::pos_type(-1) && p_stream.seekg(begin))
    return ReadTextArray(p_stream, p_name, p_options, p_threads);
  p_stream.clear();
  std::istringstream whole(source.ReadAll());
  return ReadTextArray(whole, p_name, p_options, p_threads);
}

} // namespace

namespace Private {

bool ExistsBeside(const std::string& p_name, const std::string& p_other) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(std::filesystem::path(p_name).parent_path() / p_other, ignored);
}

void WithFileBeside(const std::string& p_name, const std::string& p_other, const Progress& p_progress,
                    const std::function<void(ByteSource&, const std::string& p_path)>& p_read) {
  const std::string path = (std::filesystem::path(p_name).parent_path() / p_other).string();
  if (!ExistsBeside(p_name, p_other)) // a pipe or device never ends
    throw FileError(path, "expected a file with the values of " + p_name + ", got none");
  std::ifstream file = OpenFile(path);
  StreamSource source(file, path, p_progress);
  p_read(source, path);
}

} // namespace Private

namespace {

/// The header beside the values of a NIfTI pair, each compressed or not; otherwise the path itself.
std::string HeaderOf(const std::string& p_path) {
  for (const std::string_view values : {".img", ".img.gz"})
    for (const char* const header : {".hdr", ".hdr.gz"})
      if (Private::EndsWith(p_path, values)) {
        const std::string path = p_path.substr(0, p_path.size() - values.size()) + header;
        if (Private::ExistsBeside(p_path, std::filesystem::path(path).filename().string()))
          return path;
      }
  return p_path;
}

} // namespace

Volume ReadVolume(std::istream& p_stream, const std::string& p_name, const VolumeOptions& p_options,
                  Utility::Threads p_threads) {
  try {
    if (!p_options.raw && p_stream.tellg() != std::istream::pos_type(-1)) {
      Private::Restarted input(p_stream, p_name, 8);
      if (Private::IsClassicNetCdf(input.Start()) || Private::IsHdf5(input.Start()))
        return Private::ReadNetCdfVolume(input.Stream(), p_name, p_options);
    }
    if (p_options.region)
      throw FileError(p_name, "expected a NetCDF file to read a region of, got another format");
    return Read(p_stream, p_name, p_options, p_threads);
  } catch (const std::bad_alloc&) {
    throw FileError(p_name, "its values do not fit into memory");
  }
}

Volume ReadVolume(const std::string& p_path, const VolumeOptions& p_options, Utility::Threads p_threads) {
  const std::string path = p_options.raw ? p_path : HeaderOf(p_path);
  Private::FileStream file = Private::OpenFile(path);
  return ReadVolume(file, path, p_options, p_threads);
}

} // namespace Vek::Chart::Io
