#pragma once

#include "io/Formats.h"
#include "io/HeightGrid.h"
#include "io/Image.h"
#include "io/Progress.h"
#include "io/ReadMesh.h"
#include "io/ReadVolume.h"
#include "io/Table.h"
#include "io/VectorField.h"
#include "io/Volume.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Vek::Chart::Viewer {

/// Which part of a file is read.
struct Part {
  std::size_t time = 0;  ///< the step of time
  std::size_t level = 0; ///< of heights
  std::string variable;  ///< of a NetCDF file; empty for the first ones
  /// What a file of raw values holds; such a file has no header, whatever it looks like.
  std::optional<Io::RawLayout> raw;
};

/// What a file holds.
struct Document {
  std::string path;
  Part part;
  std::variant<Io::Mesh, Io::Volume, Io::VectorField, Io::HeightGrid, Io::Table, Io::Image> data;

  /// The last part of the path.
  std::string Name() const;
};

/// What a file may hold, the likeliest first, by its content, otherwise by its name. `p_begin` are its first 4096 bytes
/// or all, `p_size` is its length. Empty where it may hold nothing that is read.
std::vector<Io::Format::Kind> KindsOf(const std::string& p_path, const std::string& p_begin, std::uintmax_t p_size);

/// Whether a file has raw values, by its name.
bool IsRaw(const std::string& p_path);

/// Reads a file as the first of those kinds that it is. Throws Io::FileError with the reason of the likeliest kind.
Document ReadDocument(const std::string& p_path, const Part& p_part, const Io::Progress& p_progress);

} // namespace Vek::Chart::Viewer
