#include "io/ReadImage.h"

#include "io/FileError.h"
#include "io/private/ImageFormats.h"
#include "io/private/Input.h"

#include <fstream>
#include <new>
#include <utility>

namespace Vek::Chart::Io {

namespace {

enum class Format { Unknown, Radiance, Pfm, OpenExr };

Format FormatOf(std::string_view p_start, const std::string& p_name) {
  if (p_start.substr(0, 2) == "#?")
    return Format::Radiance;
  if (p_start.size() >= 3 && (p_start.substr(0, 2) == "PF" || p_start.substr(0, 2) == "Pf") &&
      (p_start[2] == '\n' || p_start[2] == ' ' || p_start[2] == '\t' || p_start[2] == '\r'))
    return Format::Pfm;
  if (p_start.substr(0, 4) == "\x76\x2F\x31\x01")
    return Format::OpenExr;
  for (const auto& [ending, format] : {std::pair(".hdr", Format::Radiance),
                                       {".pic", Format::Radiance},
                                       {".pfm", Format::Pfm},
                                       {".exr", Format::OpenExr}})
    if (Private::EndsWith(p_name, ending))
      return format;
  return Format::Unknown;
}

Image Read(std::istream& p_stream, const std::string& p_name, const ImageOptions& p_options) {
  Private::StreamSource file(p_stream, p_name, p_options.progress);
  Private::PeekSource source(file);
  const std::string start(source.Peek(40));
  switch (FormatOf(start, p_name)) {
  case Format::Radiance:
    return Private::ReadRadiance(source.ReadAll(), p_name, p_options);
  case Format::Pfm:
    return Private::ReadPfm(source, p_name);
  case Format::OpenExr:
    return Private::ReadOpenExr(source.ReadAll(), p_name, p_options);
  case Format::Unknown:
    break;
  }
  throw FileError(p_name, "expected Radiance, PFM or OpenEXR, got " + Private::Description(start));
}

} // namespace

Image ReadImage(std::istream& p_stream, const std::string& p_name, const ImageOptions& p_options) {
  try {
    return Read(p_stream, p_name, p_options);
  } catch (const std::bad_alloc&) {
    throw FileError(p_name, "its pixels do not fit into memory");
  }
}

Image ReadImage(const std::string& p_path, const ImageOptions& p_options) {
  std::ifstream file = Private::OpenFile(p_path);
  return ReadImage(file, p_path, p_options);
}

} // namespace Vek::Chart::Io
