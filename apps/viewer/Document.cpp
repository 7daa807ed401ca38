#include "apps/viewer/Document.h"

#include "io/FileError.h"
#include "io/ReadHeights.h"
#include "io/ReadImage.h"
#include "io/ReadTable.h"
#include "io/ReadVectorField.h"
#include "io/ReadVolume.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>

namespace Vek::Chart::Viewer {

namespace {

using Kind = Io::Format::Kind;

std::string BeginOf(const std::string& p_path) {
  if (std::filesystem::is_directory(p_path))
    throw Io::FileError(p_path, "expected a file, got a folder");
  std::ifstream file(p_path, std::ios::binary);
  if (!file)
    throw Io::FileError(p_path, std::string("cannot be opened: ") + std::strerror(errno));
  constexpr std::size_t Most = 4096;
  std::string begin(Most, '\0');
  file.read(begin.data(), static_cast<std::streamsize>(begin.size()));
  begin.resize(static_cast<std::size_t>(file.gcount()));
  return begin;
}

Io::Image ReadPicture(const std::string& p_path, const Io::Progress& p_progress) {
  Io::ImageOptions options;
  options.applyExposure = options.convertXyz = options.applyOrientation = true;
  options.progress = p_progress;
  return Io::ReadImage(p_path, options);
}

decltype(Document::data) Read(Kind p_kind, const std::string& p_path, const Part& p_part,
                              const Io::Progress& p_progress) {
  Io::FieldSelection selection;
  selection.time = p_part.time;
  selection.level = p_part.level;
  if (!p_part.variable.empty())
    selection.variables = {p_part.variable};
  switch (p_kind) {
  case Kind::Meshes:
    return Io::ReadMesh(p_path, p_progress);
  case Kind::Volumes: {
    Io::VolumeOptions options;
    options.step = p_part.time;
    options.variable = p_part.variable;
    options.raw = p_part.raw;
    options.progress = p_progress;
    return Io::ReadVolume(p_path, options);
  }
  case Kind::Vectors:
    return Io::ReadVectorField(p_path, selection, p_progress);
  case Kind::Heights:
    return Io::ReadHeights(p_path, selection, p_progress);
  case Kind::Tables:
    return Io::ReadTable(p_path, p_progress);
  case Kind::Images:
    break;
  }
  return ReadPicture(p_path, p_progress);
}

/// The names of all formats, each once.
std::string KnownFormats() {
  std::vector<std::string_view> names;
  for (const Io::Format& format : Io::Formats())
    if (format.name.find(',') == std::string_view::npos &&
        std::find(names.begin(), names.end(), format.name) == names.end())
      names.push_back(format.name);
  std::string list;
  for (std::size_t i = 0; i < names.size(); ++i)
    list += (i == 0 ? "" : i + 1 == names.size() ? " or " : ", ") + std::string(names[i]);
  return list;
}

/// Variables of one level are heights, drawn as a surface, not as a volume of a single layer.
bool IsLayer(const decltype(Document::data)& p_data, const std::vector<Kind>& p_kinds) {
  const auto* const volume = std::get_if<Io::Volume>(&p_data);
  return volume != nullptr && p_kinds.size() > 1 && volume->size[2] == 1;
}

} // namespace

std::string Document::Name() const {
  return std::filesystem::path(path).filename().string();
}

Document ReadDocument(const std::string& p_path, const Part& p_part, const Io::Progress& p_progress) {
  const std::string begin = BeginOf(p_path);
  std::error_code error;
  const std::vector<Kind> kinds =
      p_part.raw ? std::vector<Kind>{Kind::Volumes} : KindsOf(p_path, begin, std::filesystem::file_size(p_path, error));
  bool isCancelled = false;
  const Io::Progress progress = [&](double p_share) {
    isCancelled = isCancelled || (p_progress && !p_progress(p_share));
    return !isCancelled;
  };
  std::exception_ptr first;
  for (const Kind kind : kinds) {
    if (kind == Kind::Vectors && kinds.size() > 1 && !p_part.variable.empty()) // which is no component
      continue;
    try {
      Document document{p_path, p_part, Read(kind, p_path, p_part, progress)};
      if (!IsLayer(document.data, kinds))
        return document;
    } catch (const Io::FileError&) {
      if (isCancelled)
        throw;
      first = first ? first : std::current_exception();
    }
  }
  if (first)
    std::rethrow_exception(first);
  throw Io::FileError(p_path, begin.empty() ? "expected data, got an empty file"
                                            : "expected " + KnownFormats() + ", got something else");
}

} // namespace Vek::Chart::Viewer
