#include "library/private/io/ObjSceneReader.h"

#include "library/private/io/ObjLine.h"
#include "library/private/io/ObjMaterials.h"

#include <algorithm>
#include <cctype>

namespace Vek::Chart::Library::Private {

using namespace ObjLine;

namespace {

constexpr const char* Number = "a number";
constexpr const char* AnyCorner = "a corner such as 1, 1/2, 1//3 or 1/2/3";

void AppendFloats(ChunkedArray<float>& p_array, const double* p_first, const double* p_last) {
  for (; p_first != p_last; ++p_first)
    p_array.Append(static_cast<float>(*p_first));
}

} // namespace

void ObjWarnings::Add(const std::string& p_path, std::uint64_t p_line, const std::string& p_text) {
  constexpr std::size_t Most = 100;
  if (_texts.size() < Most)
    _texts.push_back(p_path + ':' + std::to_string(p_line) + ": " + p_text);
  else
    ++_more;
}

void ObjWarnings::Finish() {
  if (_more != 0)
    _texts.push_back("and " + std::to_string(_more) + " more");
}

struct ObjSceneReader::Keyword {
  std::string_view name;
  void (ObjSceneReader::*read)(std::string_view p_rest);
};

const ObjSceneReader::Keyword ObjSceneReader::Keywords[] = {
    {"g", &ObjSceneReader::SetGroup},
    {"o", &ObjSceneReader::SetObject},
    {"s", &ObjSceneReader::SetSmoothing},
    {"usemtl", &ObjSceneReader::SetMaterial},
    {"mtllib", &ObjSceneReader::ReadMaterials},
    // How something is shown that is there without them.
    {"mg", &ObjSceneReader::Ignore},
    {"bevel", &ObjSceneReader::Ignore},
    {"c_interp", &ObjSceneReader::Ignore},
    {"d_interp", &ObjSceneReader::Ignore},
    {"lod", &ObjSceneReader::Ignore},
    {"maplib", &ObjSceneReader::Ignore},
    {"usemap", &ObjSceneReader::Ignore},
    {"shadow_obj", &ObjSceneReader::Ignore},
    {"trace_obj", &ObjSceneReader::Ignore},
};

void ObjSceneReader::ReadLines(const char* p_first, const char* p_last) {
  for (const char* line = p_first; line < p_last;) {
    ++_line;
    const char* next = ReadStatement(line, p_last);
    if (next == nullptr)
      next = ReadOtherLine(line, p_last);
    _bytes += std::uint64_t(next - line);
    line = next;
  }
}

const char* ObjSceneReader::ReadStatement(const char* p_line, const char* p_last) {
  p_line = SkipBlanks(p_line);
  const char second = IsLineEnd(*p_line) ? '\n' : p_line[1];
  const bool alone = Scan::IsBlank(second); // a keyword of one character
  _foundAt = nullptr;
  switch (*p_line) {
  case 'v':
    return alone ? ReadPosition(p_line + 1, p_last) : ReadVector(p_line + 1, p_last);
  case 'f':
    if (second == 'o' && Scan::IsBlank(p_line[2])) // a face in the first version of the format
      return ReadFace(p_line + 2, p_last);
    return alone ? ReadFace(p_line + 1, p_last) : nullptr;
  case 'l':
    return alone ? ReadPolyline(p_line + 1, p_last) : nullptr;
  case 'p':
    return alone ? ReadPoints(p_line + 1, p_last) : nullptr;
  default:
    return SkipRest(p_line, p_last);
  }
}

const char* ObjSceneReader::Fault(const char* p_expected, const char* p_at) {
  _expected = p_expected;
  _foundAt = p_at;
  return nullptr;
}

const char* ObjSceneReader::ReadVector(const char* p_at, const char* p_last) {
  if ((*p_at != 'n' && *p_at != 't') || !Scan::IsBlank(p_at[1]))
    return nullptr;
  return *p_at == 'n' ? ReadNormal(p_at + 1, p_last) : ReadTexCoord(p_at + 1, p_last);
}

const char* ObjSceneReader::ReadPosition(const char* p_at, const char* p_last) {
  const char* const end = ScanNumbers(p_at, p_last, _numbers, _numberCount);
  const char* const next = SkipRest(end, p_last);
  if (_numberCount < 3 || next == nullptr)
    return Fault(_numberCount < 3 ? "three coordinates" : Number, end);
  AppendFloats(_positions, _numbers, _numbers + 3);
  _vertices.AddPositions(1);
  if (_numberCount >= 6)
    AddColor();
  return next;
}

const char* ObjSceneReader::ReadNormal(const char* p_at, const char* p_last) {
  const char* const end = ScanNumbers(p_at, p_last, _numbers, _numberCount);
  const char* const next = SkipRest(end, p_last);
  if (_numberCount < 3 || next == nullptr)
    return Fault(_numberCount < 3 ? "three components of a normal" : Number, end);
  AppendFloats(_normals, _numbers, _numbers + 3);
  return next;
}

const char* ObjSceneReader::ReadTexCoord(const char* p_at, const char* p_last) {
  const char* const end = ScanNumbers(p_at, p_last, _numbers, _numberCount);
  const char* const next = SkipRest(end, p_last);
  if (_numberCount < 1 || next == nullptr)
    return Fault(_numberCount < 1 ? "texture coordinates" : Number, end);
  if (_numberCount == 1)
    _numbers[1] = 0;
  AppendFloats(_texCoords, _numbers, _numbers + 2);
  return next;
}

const char* ObjSceneReader::ReadCorners(const char* p_at, const char* p_last) {
  _corners.clear();
  for (;;) {
    if (*p_at != ' ' || p_at[1] < '0' || p_at[1] > '9') { // not one blank and a number, which are most common
      p_at = SkipBlanks(p_at);
      if (IsLineEnd(*p_at) || *p_at == '#')
        return SkipRest(p_at, p_last);
    } else {
      ++p_at;
    }
    const char* const end = ScanCorner(p_at, p_last, _corners.emplace_back());
    if (end == nullptr || !Scan::IsBlank(*end))
      return Fault(AnyCorner, p_at);
    p_at = end;
  }
}

const char* ObjSceneReader::ReadFace(const char* p_at, const char* p_last) {
  const char* const next = ReadCorners(p_at, p_last);
  if (next != nullptr && _corners.size() >= 3)
    AddFace();
  else if (next != nullptr)
    _warnings.Add(_path, _line, "a face of less than three corners is left out");
  return next;
}

const char* ObjSceneReader::ReadPolyline(const char* p_at, const char* p_last) {
  const char* const next = ReadCorners(p_at, p_last);
  if (next == nullptr)
    return next;
  if (_corners.size() < 2)
    _warnings.Add(_path, _line, "a line of less than two points is left out");
  else
    BeginGroup(ObjScene::Lines);
  for (std::size_t i = 0; i + 1 < _corners.size(); ++i)
    for (const ObjCorner& corner : {_corners[i], _corners[i + 1]})
      _indices.Append(Resolved(corner.position, _vertices.Positions(), "position"));
  return next;
}

const char* ObjSceneReader::ReadPoints(const char* p_at, const char* p_last) {
  const char* const next = ReadCorners(p_at, p_last);
  if (next == nullptr || _corners.empty())
    return next;
  BeginGroup(ObjScene::Points);
  for (const ObjCorner& corner : _corners)
    _indices.Append(Resolved(corner.position, _vertices.Positions(), "position"));
  return next;
}

/// A line that goes on behind a backslash, has another keyword or is wrong.
const char* ObjSceneReader::ReadOtherLine(const char* p_line, const char* p_last) {
  const char* end = FindLineEnd(p_line, p_last);
  std::string line(p_line, end);
  const bool isComment = *SkipBlanks(p_line) == '#';
  std::uint64_t continued = 0;
  for (; !isComment && !line.empty() && line.back() == '\\'; ++continued) {
    line.back() = ' ';
    const char* const next = BehindLineEnd(end);
    if (next >= p_last)
      break;
    end = FindLineEnd(next, p_last);
    line.append(next, end);
  }
  const char* const next = BehindLineEnd(end);
  line += '\n';
  if (ReadStatement(line.data(), line.data() + line.size()) == nullptr) {
    if (_foundAt != nullptr)
      throw ObjError(_path, _line, _expected, Word(_foundAt, line.data() + line.size()));
    ReadOther(Trimmed(line));
  }
  _line += continued;
  return std::min(next, p_last);
}

void ObjSceneReader::ReadOther(std::string_view p_line) {
  const std::string_view name = Word(p_line.data(), p_line.data() + p_line.size());
  const std::string_view rest = Trimmed(p_line.substr(name.size()));
  for (const Keyword& keyword : Keywords)
    if (keyword.name == name)
      return (this->*keyword.read)(rest);
  Refuse(name);
}

/// Warns once of each kind of statement that is not read.
void ObjSceneReader::Refuse(std::string_view p_name) {
  constexpr std::size_t MostNames = 100;
  constexpr std::size_t LongestName = 40;
  if (p_name.find('\0') != std::string_view::npos)
    throw ObjError(_path, "expected a text file, got binary data");
  std::string name(p_name.substr(0, LongestName));
  std::replace_if(
      name.begin(), name.end(), [](unsigned char p_c) { return p_c < ' '; }, ' ');
  if (_read.size() < MostNames && _read.insert("statement " + name).second)
    _warnings.Add(_path, _line, "statements \"" + name + "\" are not read");
}

std::string ObjSceneReader::GroupName(std::string_view p_name) {
  constexpr std::size_t LongestName = 255; // a file of many groups would take memory without bounds
  if (p_name.size() > LongestName)
    _warnings.Add(_path, _line, "a name is longer than 255 bytes; its end is left out");
  return std::string(p_name.substr(0, LongestName));
}

void ObjSceneReader::SetObject(std::string_view p_name) {
  _group.object = GroupName(p_name);
  _groupChanged = true;
}

void ObjSceneReader::SetGroup(std::string_view p_name) {
  _group.name = GroupName(p_name);
  _groupChanged = true;
}

void ObjSceneReader::SetMaterial(std::string_view p_name) {
  _groupChanged = true;
  _group.material = -1;
  if (p_name.empty() || p_name == "(null)")
    return;
  const auto [at, isNew] = _materialNumbers.try_emplace(GroupName(p_name), int(_scene.materials.size()));
  if (isNew) {
    _scene.materials.emplace_back().name = at->first;
    _undefined.emplace(at->second, _line);
  }
  _group.material = at->second;
}

void ObjSceneReader::ReadMaterials(std::string_view p_names) {
  const auto read = [&](const std::string& p_file) {
    if (!_read.insert("materials " + p_file).second)
      return;
    for (ObjScene::Material& material : ReadObjMaterials(p_file, _warnings)) {
      const auto [at, isNew] = _materialNumbers.try_emplace(GroupName(material.name), int(_scene.materials.size()));
      if (isNew)
        _scene.materials.push_back(std::move(material));
      else if (_undefined.erase(at->second) != 0)
        _scene.materials[std::size_t(at->second)] = std::move(material);
    }
  };
  // One name with blanks, or several names.
  std::string file = FindBeside(_path, p_names);
  if (!file.empty())
    return read(file);
  for (std::string_view rest = p_names; !rest.empty();) {
    const std::string_view name = Word(rest.data(), rest.data() + rest.size());
    file = FindBeside(_path, name);
    if (file.empty())
      _warnings.Add(_path, _line, "there is no material file \"" + GroupName(name) + "\"");
    else
      read(file);
    rest = Trimmed(rest.substr(name.size()));
  }
}

} // namespace Vek::Chart::Library::Private
