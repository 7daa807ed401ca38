#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Vek::Chart::Io::Private {

/// A type of numbers in a PLY file.
struct PlyType {
  enum Kind { Signed, Unsigned, Float };
  Kind kind;
  std::size_t size; ///< in bytes
};

struct PlyProperty {
  std::string name;
  PlyType type;
  bool isList = false;
  PlyType countType{}; ///< of a list
};

struct PlyElement {
  std::string name;
  std::uint64_t count;
  std::vector<PlyProperty> properties;
};

/// The front of a PLY file: its encoding, and what follows.
struct PlyHeader {
  enum Encoding { Text, LittleEndian, BigEndian };
  Encoding encoding = Text;
  std::vector<PlyElement> elements;
  std::string textureFile;      ///< of a comment "TextureFile NAME"
  std::size_t skippedLines = 0; ///< in front of all elements, of unknown keywords
  std::size_t size = 0;         ///< in bytes, up to the data
};

/// Whether a file starts as PLY files do.
bool IsPly(std::string_view p_file);
/// Reads the header of a file of that kind. Throws FileError.
PlyHeader ReadPlyHeader(std::string_view p_file, const std::string& p_name);

} // namespace Vek::Chart::Io::Private
