#include "apps/viewer/FileKind.h"

#include "apps/gallery/Files.h"
#include "apps/gallery/TextTable.h"
#include "apps/viewer/ModelPicture.h"
#include "io/Formats.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <sstream>

namespace Vek::Chart::Viewer {

namespace {

struct Kind {
  FileKind kind;
  const char* caption;
  const char* picture;                 ///< the gallery's picture that shows such a file, and
  std::string Gallery::Inputs::*input; ///< takes it as this input
  const char* extensions;
};

constexpr Kind Kinds[] = {
    {FileKind::Model, "An OBJ model", nullptr, nullptr, "*.obj"},
    {FileKind::Mesh, "A mesh", nullptr, nullptr, "*.ply *.stl *.gltf *.glb"},
    {FileKind::Picture, "A panorama with a high dynamic range", "hdr", &Gallery::Inputs::hdr, "*.hdr *.pic *.rgbe"},
    {FileKind::Volume, "A volume, cut by three planes", "volume", &Gallery::Inputs::volume, "*.txt *.vol"},
    {FileKind::Wind, "Wind above the relief", "wind", &Gallery::Inputs::winds, "*.csv *.nc *.nc4 *.cdf"},
    {FileKind::Quakes, "Earthquakes below the surface", "earthquakes", &Gallery::Inputs::quakes, "*.csv"},
    {FileKind::Flow, "A flow in space", "flow", &Gallery::Inputs::flow, "*.csv *.txt"},
};

bool StartsWith(const std::string& p_text, const std::string& p_start) {
  return p_text.compare(0, p_start.size(), p_start) == 0;
}

std::string Lower(std::string p_text) {
  std::transform(p_text.begin(), p_text.end(), p_text.begin(),
                 [](char p_char) { return static_cast<char>(std::tolower(static_cast<unsigned char>(p_char))); });
  return p_text;
}

/// The kind of a table of comma-separated values that has these columns.
FileKind KindOfTable(const std::string& p_header) {
  std::istringstream text(p_header + '\n');
  try {
    const Gallery::TextTable table(text, {});
    const auto has = [&](std::initializer_list<const char*> p_titles) {
      return std::all_of(p_titles.begin(), p_titles.end(),
                         [&](const char* p_title) { return table.HasColumn(p_title); });
    };
    if (has({"depth_km"}) || has({"mag"}))
      return FileKind::Quakes;
    if (has({"u", "v"}) || has({"dir", "speed"}))
      return FileKind::Wind;
  } catch (const Gallery::InputError&) { // no header
  }
  return FileKind::Unknown;
}

/// Whether some line is a statement that every OBJ file has.
bool LooksLikeModel(const std::string& p_begin) {
  std::istringstream text(p_begin);
  for (std::string line; std::getline(text, line);)
    if (StartsWith(line, "v ") || StartsWith(line, "f ") || StartsWith(line, "vn "))
      return true;
  return false;
}

FileKind KindOfName(const std::string& p_name) {
  const std::string extension = Lower(std::filesystem::path(p_name).extension().string());
  for (const Kind& kind : Kinds) {
    std::istringstream patterns(kind.extensions);
    for (std::string pattern; patterns >> pattern;)
      if (!extension.empty() && pattern == "*" + extension && pattern != "*.txt")
        return kind.kind;
  }
  return FileKind::Unknown;
}

} // namespace

FileKind KindOf(const std::string& p_name, const std::string& p_begin) {
  const std::size_t first = p_begin.find_first_not_of(" \t\r\n");
  const std::string begin = first == std::string::npos ? std::string() : p_begin.substr(first);
  if (StartsWith(begin, "#?"))
    return FileKind::Picture;
  if (StartsWith(begin, "TextArray"))
    return FileKind::Volume;
  if (StartsWith(begin, "CDF") || StartsWith(begin, "\x89HDF"))
    return FileKind::Wind;
  if (StartsWith(begin, "ply\n") || StartsWith(begin, "ply\r") || StartsWith(begin, "solid ") ||
      StartsWith(begin, "glTF") || StartsWith(begin, "{"))
    return FileKind::Mesh;
  if (StartsWith(begin, "# dims"))
    return FileKind::Flow;
  const FileKind table = KindOfTable(begin.substr(0, begin.find('\n')));
  if (table != FileKind::Unknown)
    return table;
  return LooksLikeModel(begin) ? FileKind::Model : KindOfName(p_name);
}

ShownPicture FilePicture(const std::string& p_path, const Gallery::Inputs& p_inputs, Gallery::Loading& p_loading) {
  std::string begin(4096, '\0');
  {
    const auto stream = p_loading.Open(p_path);
    stream->read(begin.data(), static_cast<std::streamsize>(begin.size()));
    begin.resize(static_cast<std::size_t>(stream->gcount()));
  }
  const std::string name = Gallery::FileName(p_path);
  const FileKind found = KindOf(name, begin);
  const auto kind =
      std::find_if(std::begin(Kinds), std::end(Kinds), [&](const Kind& p_kind) { return p_kind.kind == found; });
  if (kind == std::end(Kinds))
    throw Gallery::InputError(p_path +
                              ": expected an OBJ model, a Radiance picture, a TextArray volume, a table of winds "
                              "or earthquakes, or a flow on a grid, a mesh (PLY, STL, glTF) or NetCDF, got something "
                              "else");
  const std::string caption = std::string(kind->caption) + ": " + p_path;
  if (kind->kind == FileKind::Mesh)
    return {name, caption, false, [p_path](Gallery::Loading& p_to) { return LoadMeshPicture(p_path, p_to); }};
  if (kind->picture == nullptr)
    return {name, caption, false, [p_path](Gallery::Loading& p_to) { return LoadModelPicture(p_path, p_to); }};
  Gallery::Inputs inputs = p_inputs;
  inputs.*(kind->input) = p_path;
  const auto& pictures = Gallery::Pictures();
  const auto entry = std::find_if(pictures.begin(), pictures.end(),
                                  [&](const Gallery::PictureEntry& p_entry) { return p_entry.name == kind->picture; });
  if (entry == pictures.end())
    throw std::logic_error(std::string("There is no scene ") + kind->picture);
  ShownPicture picture = GalleryPicture(*entry, inputs);
  picture.name = name;
  picture.caption = caption;
  return picture;
}

QStringList FileFilters() {
  QStringList all;
  QStringList filters;
  for (const Kind& kind : Kinds) {
    const QString patterns = kind.kind == FileKind::Mesh
                                 ? QString::fromStdString(Io::FilePatterns(Io::Format::Meshes)).remove("*.obj ")
                                 : QString(kind.extensions); // of meshes, those that this build reads
    all += patterns.split(' ');
    filters << QString("%1 (%2)").arg(kind.caption, patterns);
  }
  all.removeDuplicates();
  filters.push_front(QString("All that can be shown (%1)").arg(all.join(' ')));
  return filters << "All files (*)";
}

} // namespace Vek::Chart::Viewer
