#include "io/FileError.h"
#include "io/private/Bytes.h"
#include "io/private/Input.h"
#include "io/private/MeshFormats.h"
#include "io/private/PlyHeader.h"
#include "io/private/Words.h"
#include "library/TriangulatePolygon.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <limits>
#include <type_traits>

namespace Vek::Chart::Io::Private {

namespace {

/// The numbers behind the header, one by one.
class PlyValues {
public:
  PlyValues(std::string_view p_file, const std::string& p_name, const PlyHeader& p_header)
      : _file(p_file)
      , _name(p_name)
      , _encoding(p_header.encoding)
      , _words(p_file, p_name, p_header.size)
      , _at(p_header.size) {}

  double Next(const PlyType& p_type) {
    if (_encoding == PlyHeader::Text)
      return _words.Number();
    if (p_type.size > _file.size() - _at)
      Fail("a number", "the end of the file");
    const char* const bytes = _file.data() + _at;
    _at += p_type.size;
    switch (p_type.size) {
    case 1:
      return Value<std::int8_t>(p_type, bytes);
    case 2:
      return Value<std::int16_t>(p_type, bytes);
    case 4:
      return p_type.kind == PlyType::Float ? double(Load<float>(bytes, IsBigEndian()))
                                           : Value<std::int32_t>(p_type, bytes);
    default:
      return p_type.kind == PlyType::Float ? Load<double>(bytes, IsBigEndian()) : Value<std::int64_t>(p_type, bytes);
    }
  }

  /// An integer from 0 to below a limit.
  std::uint64_t Index(const PlyType& p_type, std::uint64_t p_limit, const char* p_what) {
    const double value = Next(p_type);
    if (value >= 0 && value < double(p_limit) && value == std::floor(value))
      return static_cast<std::uint64_t>(value);
    const std::string expected = std::string(p_what) + (p_limit == 0 ? ", of which there are none"
                                                                     : " from 0 to " + std::to_string(p_limit - 1));
    if (_encoding == PlyHeader::Text)
      _words.Fail(expected);
    std::string found = std::to_string(value);
    found.erase(std::min(found.find(".000000"), found.size()));
    Fail(expected, found);
  }

  /// The bytes left. A number has at least one byte, in text with the one that separates it.
  std::size_t Left() const { return _file.size() - Position(); }
  std::size_t Position() const { return _encoding == PlyHeader::Text ? _words.Position() : _at; }
  bool IsText() const { return _encoding == PlyHeader::Text; }

private:
  bool IsBigEndian() const { return _encoding == PlyHeader::BigEndian; }
  template <class T>
  double Value(const PlyType& p_type, const char* p_bytes) const {
    const T value = Load<T>(p_bytes, IsBigEndian());
    return p_type.kind == PlyType::Signed ? double(value) : double(static_cast<std::make_unsigned_t<T>>(value));
  }
  [[noreturn]] void Fail(const std::string& p_expected, const std::string& p_found) const {
    throw FileError(_name, "byte " + std::to_string(_at) + ": expected " + p_expected + ", got " + p_found);
  }

  std::string_view _file;
  const std::string& _name;
  PlyHeader::Encoding _encoding;
  Words _words;
  std::size_t _at;
};

/// What a vertex may have. The colours come last but two.
enum Role { X, Y, Z, NormalX, NormalY, NormalZ, Red, Green, Blue, Alpha, U, V, RoleCount, NoRole = RoleCount };

struct NamedRole {
  std::string_view name;
  Role role;
};
constexpr NamedRole Roles[] = {
    {"x", X},
    {"y", Y},
    {"z", Z},
    {"nx", NormalX},
    {"ny", NormalY},
    {"nz", NormalZ},
    {"red", Red},
    {"green", Green},
    {"blue", Blue},
    {"alpha", Alpha},
    {"r", Red},
    {"g", Green},
    {"b", Blue},
    {"a", Alpha},
    {"u", U},
    {"v", V},
    {"s", U},
    {"t", V},
    {"texture_u", U},
    {"texture_v", V},
    {"diffuse_red", Red},
    {"diffuse_green", Green},
    {"diffuse_blue", Blue},
    {"diffuse_alpha", Alpha},
};

Role RoleOf(const PlyProperty& p_property) {
  const auto named = std::find_if(std::begin(Roles), std::end(Roles),
                                  [&](const NamedRole& p_role) { return p_role.name == p_property.name; });
  return named == std::end(Roles) || p_property.isList ? NoRole : named->role;
}

/// The factor that takes a colour of a type to [0, 1].
double ColorScale(const PlyType& p_type) {
  if (p_type.kind == PlyType::Float)
    return 1;
  const double bits = 8 * double(p_type.size) - (p_type.kind == PlyType::Signed ? 1 : 0);
  return 1 / (std::exp2(bits) - 1);
}

class PlyReader {
public:
  PlyReader(std::string_view p_file, const std::string& p_name, const Progress& p_progress)
      : _name(p_name)
      , _progress(p_progress)
      , _header(ReadPlyHeader(p_file, p_name))
      , _values(p_file, p_name, _header) {}

  Mesh Read() {
    for (const PlyElement& element : _header.elements)
      if (element.name == "vertex")
        _vertexCount = element.count;
    if (_vertexCount == 0)
      throw FileError(_name, "expected vertices, got none");
    if (_vertexCount > std::numeric_limits<std::uint32_t>::max())
      throw FileError(_name, "expected at most 2^32 - 1 vertices, got " + std::to_string(_vertexCount));
    if (_header.skippedLines != 0)
      Warn(std::to_string(_header.skippedLines) + " lines of the header are left out");
    for (const PlyElement& element : _header.elements)
      ReadElement(element);
    if (!_values.IsText() && _values.Left() != 0)
      Warn(std::to_string(_values.Left()) + " bytes behind the last element are left out");
    if (_smallFaces != 0)
      Warn(std::to_string(_smallFaces) + " faces of less than three corners are left out");
    Finish();
    return std::move(_mesh);
  }

private:
  void Warn(const std::string& p_text) { _mesh.warnings.push_back(_name + ": " + p_text); }

  void ReadElement(const PlyElement& p_element) {
    CheckSize(p_element);
    if (p_element.name == "vertex" && _mesh.positions.empty())
      return ReadVertices(p_element);
    const bool faces = p_element.name == "face", strips = p_element.name == "tristrips",
               edges = p_element.name == "edge";
    if (!faces && !strips && !edges)
      Warn("elements \"" + p_element.name.substr(0, 40) + "\" are not read");
    if (p_element.properties.empty())
      return;
    for (const PlyProperty& property : p_element.properties)
      if (faces && (RoleOf(property) == Red || property.name == "texcoord"))
        Warn((property.isList ? "texture coordinates" : "colours") + std::string(" of faces are not read"));
    for (std::uint64_t row = 0; row < p_element.count; ++row) {
      ReportRow(row);
      std::array<std::uint32_t, 2> edge{};
      for (const PlyProperty& property : p_element.properties) {
        if (faces && property.isList && (property.name == "vertex_indices" || property.name == "vertex_index"))
          ReadFace(property);
        else if (strips && property.isList && property.name == "vertex_indices")
          ReadStrips(property);
        else if (edges && !property.isList && (property.name == "vertex1" || property.name == "vertex2"))
          edge[property.name == "vertex1" ? 0 : 1] = Vertex(property.type);
        else
          Skip(property);
      }
      if (edges)
        _edges.insert(_edges.end(), edge.begin(), edge.end());
    }
  }

  void ReportRow(std::uint64_t p_row) {
    if (p_row % 65536 == 0)
      Report(_progress, _name, double(_values.Position()) / double(_values.Position() + _values.Left()));
  }

  /// A count is only a claim: it is compared with the bytes that its rows take at least.
  void CheckSize(const PlyElement& p_element) const {
    std::size_t least = 0;
    for (const PlyProperty& property : p_element.properties)
      least += _values.IsText() ? 2 : property.isList ? property.countType.size : property.type.size;
    const std::size_t left = _values.Left() + (_values.IsText() ? 1 : 0); // nothing separates the last number
    if (least != 0 && p_element.count > left / least)
      throw FileError(_name, "expected " + std::to_string(p_element.count) + " elements \"" +
                                 p_element.name.substr(0, 40) + "\", got " + std::to_string(_values.Left()) + " bytes");
  }

  void ReadVertices(const PlyElement& p_element) {
    std::array<bool, RoleCount + 1> has{};
    std::vector<Role> roles;
    for (const PlyProperty& property : p_element.properties) {
      roles.push_back(RoleOf(property));
      has[roles.back()] = true;
    }
    if (!has[X] || !has[Y] || !has[Z])
      throw FileError(_name, "expected the properties x, y and z of vertices");
    const bool normals = has[NormalX] && has[NormalY] && has[NormalZ];
    const bool colors = has[Red] && has[Green] && has[Blue];
    const bool texCoords = has[U] && has[V];
    std::array<float, RoleCount + 1> values{};
    values[Alpha] = 1;
    const auto append = [&](std::vector<float>& p_array, Role p_first, Role p_last) {
      p_array.insert(p_array.end(), values.begin() + p_first, values.begin() + p_last);
    };
    for (std::uint64_t row = 0; row < p_element.count; ++row) {
      ReportRow(row);
      for (std::size_t i = 0; i < roles.size(); ++i) {
        const PlyProperty& property = p_element.properties[i];
        const bool color = roles[i] >= Red && roles[i] <= Alpha;
        if (property.isList)
          Skip(property);
        else
          values[roles[i]] = static_cast<float>(_values.Next(property.type) * (color ? ColorScale(property.type) : 1));
      }
      append(_mesh.positions, X, NormalX);
      if (normals)
        append(_mesh.normals, NormalX, Red);
      if (colors)
        append(_mesh.colors, Red, U);
      if (texCoords)
        append(_mesh.texCoords, U, RoleCount);
    }
  }

  std::uint32_t Vertex(const PlyType& p_type) {
    return static_cast<std::uint32_t>(_values.Index(p_type, _vertexCount, "a vertex"));
  }
  std::uint64_t ListCount(const PlyProperty& p_property) {
    const std::uint64_t most = (_values.Left() + 1) / (_values.IsText() ? 2 : p_property.type.size);
    return _values.Index(p_property.countType, most + 1, "a number of list entries");
  }
  void Skip(const PlyProperty& p_property) {
    for (std::uint64_t left = p_property.isList ? ListCount(p_property) : 1; left != 0; --left)
      _values.Next(p_property.type);
  }

  void ReadFace(const PlyProperty& p_property) {
    const std::uint64_t count = ListCount(p_property);
    if (count < 3) {
      ++_smallFaces;
    } else {
      _faceSizes.push_back(static_cast<std::uint32_t>(std::min<std::uint64_t>(count, ~std::uint32_t(0))));
    }
    for (std::uint64_t i = 0; i < count; ++i) {
      const std::uint32_t vertex = Vertex(p_property.type);
      if (count >= 3)
        _faceCorners.push_back(vertex);
    }
  }

  /// Strips of triangles, each with its end marked by a negative number. Every second triangle is wound backwards.
  void ReadStrips(const PlyProperty& p_property) {
    std::array<std::uint32_t, 2> before{};
    std::uint64_t inStrip = 0;
    for (std::uint64_t left = ListCount(p_property); left != 0; --left) {
      const double value = _values.Next(p_property.type);
      if (value < 0) {
        inStrip = 0;
        continue;
      }
      if (!(value < double(_vertexCount)))
        throw FileError(_name,
                        "expected vertices from 0 to " + std::to_string(_vertexCount - 1) + " in triangle strips");
      const auto vertex = static_cast<std::uint32_t>(value);
      if (inStrip >= 2) {
        const bool odd = inStrip % 2 == 1;
        _strips.insert(_strips.end(), {before[odd ? 1 : 0], before[odd ? 0 : 1], vertex});
      }
      before = {before[1], vertex};
      ++inStrip;
    }
  }

  void Triangulate() {
    std::vector<Types::Vector3_Base<double>> outline;
    const std::uint32_t* corner = _faceCorners.data();
    for (const std::uint32_t size : _faceSizes) {
      if (size == 3) {
        _mesh.indices.insert(_mesh.indices.end(), corner, corner + 3);
      } else {
        outline.clear();
        for (std::uint32_t i = 0; i < size; ++i) {
          const float* const at = &_mesh.positions[3 * std::size_t(corner[i])];
          outline.emplace_back(at[0], at[1], at[2]);
        }
        for (const std::uint32_t i : Library::TriangulatePolygon(outline.data(), outline.size()))
          _mesh.indices.push_back(corner[i]);
      }
      corner += size;
    }
  }

  void AddGroup(Mesh::Primitive p_primitive, std::size_t p_first) {
    if (p_first == _mesh.indices.size())
      return;
    Mesh::Group& group = _mesh.groups.emplace_back();
    group.material = _mesh.materials.empty() ? -1 : 0;
    group.primitive = p_primitive;
    group.first = p_first;
    group.count = _mesh.indices.size() - p_first;
  }

  void AddMaterial() {
    if (_header.textureFile.empty())
      return;
    const std::filesystem::path path = std::filesystem::path(_name).parent_path() / _header.textureFile;
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored))
      return Warn("there is no texture \"" + _header.textureFile.substr(0, 255) + '"');
    Mesh::Material& material = _mesh.materials.emplace_back();
    material.diffuse = {1, 1, 1};
    material.diffuseTexture = path.string();
  }

  void Finish() {
    AddMaterial();
    _mesh.indices = std::move(_strips);
    Triangulate();
    AddGroup(Mesh::Triangles, 0);
    std::size_t first = _mesh.indices.size();
    _mesh.indices.insert(_mesh.indices.end(), _edges.begin(), _edges.end());
    AddGroup(Mesh::Lines, first);
    if (_mesh.indices.empty()) {
      for (std::uint32_t i = 0; i < _vertexCount; ++i)
        _mesh.indices.push_back(i);
      AddGroup(Mesh::Points, 0);
    }
    Report(_progress, _name, 1);
  }

  const std::string& _name;
  const Progress& _progress;
  PlyHeader _header;
  PlyValues _values;
  Mesh _mesh;
  std::uint64_t _vertexCount = 0;
  std::uint64_t _smallFaces = 0;
  std::vector<std::uint32_t> _faceSizes;
  std::vector<std::uint32_t> _faceCorners;
  std::vector<std::uint32_t> _strips;
  std::vector<std::uint32_t> _edges;
};

} // namespace

Mesh ReadPly(std::string_view p_file, const std::string& p_name, const Progress& p_progress) {
  return PlyReader(p_file, p_name, p_progress).Read();
}

} // namespace Vek::Chart::Io::Private
