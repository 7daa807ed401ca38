#include "tests/support/ObjReference.h"

#include "library/ObjModel.h"
#include "tests/support/ReportCapture.h"

#include <boost/algorithm/string.hpp>
#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>

#include <cstdio>
#include <functional>
#include <random>
#include <set>
#include <sstream>

namespace Vek::Test {

namespace {

using namespace Vek::Chart;
using Library::ObjModel;
using Strings = std::vector<std::string>;

std::string Text(double p_value) {
  char text[64];
  std::snprintf(text, sizeof text, "%a ", p_value);
  return text;
}

std::string Describe(const ObjModel& p_model) {
  std::string text = "type " + std::to_string(p_model.PrimitiveType()) + "\n";
  for (const auto& array : {p_model.Vertices(), p_model.Normals()}) {
    for (const auto& element : *array)
      text += Text(element.x) + Text(element.y) + Text(element.z) + "\n";
    text += "--\n";
  }
  for (const auto& group : *p_model.Groups()) {
    text += "\ngroup '" + group->name + "': ";
    for (const std::uint32_t index : group->indices)
      text += std::to_string(index) + " ";
  }
  const auto& bounds = p_model.Bounds();
  for (const auto& corner : {bounds.Min(), bounds.Max()})
    text += Text(corner.x) + Text(corner.y) + Text(corner.z);
  return text + "\n";
}

std::string Join(const Strings& p_reports, const std::string& p_rest) {
  return boost::join(p_reports, "\n") + "\n" + p_rest;
}

std::string DescribeResult(const std::function<boost::shared_ptr<ObjModel>()>& p_read) {
  try {
    return Describe(*p_read());
  } catch (const boost::bad_lexical_cast& error) {
    return std::string("bad_lexical_cast to ") + error.target_type().name();
  } catch (const std::out_of_range&) {
    return "out_of_range";
  }
}

class Reader {
public:
  explicit Reader(Strings& p_reports)
      : _reports(p_reports) {}

  boost::shared_ptr<ObjModel> Read(const std::string& p_text) {
    std::istringstream stream(p_text);
    std::string line;
    while (std::getline(stream, line)) {
      boost::trim(line);
      ReadLine(line);
    }
    FinishGroup();
    _model->SetPrimitiveType(_type);
    _model->SetBoundingBox(_bounds);
    return _model;
  }

private:
  void ReadLine(const std::string& p_line) {
    Strings parts;
    boost::split(parts, p_line, boost::is_any_of(" "));
    const std::string& keyword = parts[0];
    if (keyword.empty() || keyword[0] == '#')
      return;
    if (keyword == "v" || keyword == "vn") {
      Expect(parts.size() == 4, "parts.size() == 4");
      double numbers[3] = {};
      for (std::size_t i = 1; i < 4 && i < parts.size(); ++i)
        numbers[i - 1] = boost::lexical_cast<double>(parts[i]);
      (keyword == "v" ? *_model->Vertices() : _sourceNormals)
          .push_back(Ogl::Vec3<float>{float(numbers[0]), float(numbers[1]), float(numbers[2])});
      if (keyword == "v")
        _bounds += Types::Vector3_Base<double>(numbers[0], numbers[1], numbers[2]);
    } else if (keyword == "g") {
      FinishGroup();
      _group = _model->AddGroup();
      _group->name = p_line.substr(2);
    } else if (keyword == "l") {
      ReadCorners(parts, 3, Ogl::VertexBuffer::LineSegments, "parts.size() == 3");
    } else if (keyword == "f") {
      ReadCorners(parts, 4, Ogl::VertexBuffer::Triangles, "parts.size() == 4");
    }
  }

  void ReadCorners(const Strings& p_parts, std::size_t p_count, Ogl::VertexBuffer::PrimitiveType p_type,
                   const char* p_expression) {
    if (_type == Ogl::VertexBuffer::Undecided)
      _type = p_type;
    Expect(p_parts.size() == p_count, p_expression);
    for (std::size_t i = 1; i < p_count && i < p_parts.size(); ++i) {
      Strings indexParts;
      boost::split(indexParts, p_parts[i], boost::is_any_of("/"));
      const std::uint32_t vertexIndex = std::uint32_t(boost::lexical_cast<int>(indexParts.front())) - 1u;
      Expect(vertexIndex < _model->Vertices()->size(), "0 <= vertexIndex < vertices->size()");
      _vertexIndices.push_back(vertexIndex);
      if (p_count == 3 || indexParts.size() < 3)
        continue;
      const std::uint32_t normalIndex = std::uint32_t(boost::lexical_cast<int>(indexParts.back())) - 1u;
      Expect(normalIndex < _sourceNormals.size(), "0 <= normalIndex < sourceNormals->size()");
      _normalIndices.push_back(normalIndex);
    }
  }

  void FinishGroup() {
    ObjModel::VertexArray& normals = *_model->Normals();
    if (!_sourceNormals.empty())
      normals.resize(_model->Vertices()->size());
    for (std::size_t k = 0; k < _normalIndices.size(); ++k) {
      const std::uint32_t vertex = _vertexIndices[k];
      if (vertex < normals.size() && _normalIndices[k] < _sourceNormals.size() && _haveNormal.insert(vertex).second)
        normals[vertex] = _sourceNormals[_normalIndices[k]];
    }
    _group->indices = _vertexIndices;
    _vertexIndices.clear();
    _normalIndices.clear();
  }

  void Expect(bool p_condition, const std::string& p_expression) {
    if (!p_condition)
      _reports.push_back(ObjReport(p_expression));
  }

  Strings& _reports;
  boost::shared_ptr<ObjModel> _model = boost::make_shared<ObjModel>();
  ObjModel::VertexArray _sourceNormals;
  boost::shared_ptr<ObjModel::ObjGroup> _group = _model->DefaultGroup();
  std::vector<std::uint32_t> _vertexIndices;
  std::vector<std::uint32_t> _normalIndices;
  std::set<std::uint32_t> _haveNormal;
  Ogl::VertexBuffer::PrimitiveType _type = Ogl::VertexBuffer::Undecided;
  Types::BoundingBox_Base<double> _bounds;
};

/// Makes one file, from patterns with N for a number, I for an index and C for a corner.
class Generator {
public:
  explicit Generator(unsigned int p_seed)
      : _random(p_seed)
      , _oddity(p_seed % 4) {}

  std::string File() {
    std::string text;
    for (std::size_t count = Below(60); count != 0; --count)
      text += Line() + (Rarely(20) ? OneOf({"\r\n", " \n", "\t\n", "\r\r\n", "\n\n", " \v\f\n"}) : "\n");
    for (std::size_t count = _oddity == 3 ? Below(6) : 0; count != 0 && !text.empty(); --count)
      Damage(text);
    return text;
  }

private:
  std::size_t Below(std::size_t p_end) { return _random() % p_end; }
  /// True once in that many times, more often in files that are made odder, never in those that are not.
  bool Rarely(std::size_t p_times) { return _oddity != 0 && Below(p_times) < _oddity; }
  std::string OneOf(const Strings& p_texts) { return p_texts[Below(p_texts.size())]; }

  std::string Line() {
    if (Below(10) == 0)
      _cornerForm = Below(5);
    std::string pattern = OneOf({"v N N N", "v N N N", "v N N N", "vn N N N", "vn N N N", "f C C C", "f C C C",
                                 "f C C C", OneOf({"l C C", "# v 1 2 3", "vt 0 1", "s 1", "usemtl x", ""}),
                                 OneOf({"g a", "g  b", "g c d", "o x", Rarely(20) ? "g" : "g e"})});
    if (Rarely(40))
      pattern = Below(2) == 0 ? pattern + OneOf({" N", " C C"}) : pattern.substr(0, Below(pattern.size() + 1));
    return (Rarely(40) ? OneOf({" ", "\t", "\r"}) : "") + Filled(pattern);
  }

  std::string Filled(const std::string& p_pattern) {
    const Strings corners = {"I", "I/I", "I/I/I", "I//I/I", "I//I"};
    std::string text;
    for (const char c : p_pattern)
      text += c == 'N'   ? Number()
              : c == 'I' ? Index()
              : c == 'C' ? Filled(Rarely(12) ? OneOf(corners) : corners[_cornerForm])
              : c == ' ' ? Blank()
                         : std::string(1, c);
    return text;
  }

  std::string Blank() { return Rarely(60) ? OneOf({"  ", "\t", ""}) : " "; }

  std::string Number() {
    if (Rarely(100))
      return OneOf({"nan", "-inf", "1e39", "1e400", "1e-400", "+1", ".5", "1.", "1e", "x", "", "0x1", "-", "1e5",
                    "123456789012345678901234567890", "0.1000000000000000055511151231257827", "1,5"});
    return (Below(2) == 0 ? "-" : "") + std::to_string(Below(20)) +
           (Below(3) == 0 ? "" : "." + std::to_string(Below(1000000)));
  }

  std::string Index() {
    if (Rarely(60))
      return OneOf({"0", "-1", "+3", "-2147483648", "2147483647", "2147483648", "007", "1.0", "", "x", "4294967297",
                    "1000000000", "999999999"});
    return std::to_string(1 + Below(_oddity == 0 ? 9 : 14));
  }

  /// A changed, a new or a missing byte, or the end cut off.
  void Damage(std::string& p_text) {
    const std::size_t at = Below(p_text.size());
    const char byte = Below(2) == 0 ? " /-.\n0#\0"[Below(8)] : char(Below(256));
    if (Below(8) == 0)
      p_text.resize(at);
    else
      p_text.replace(at, Below(2), Below(3), byte);
  }

  std::mt19937 _random;
  std::size_t _oddity;
  std::size_t _cornerForm = 4;
};

} // namespace

std::string ObjReport(const std::string& p_expression) {
  return "\"" + p_expression +
         "\" - class boost::shared_ptr<class Vek::Chart::Library::ObjModel> __cdecl "
         "Vek::Chart::Library::LoadPolygonObjFile(const class vekfile::filepath &)";
}

std::string DescribeLoaded(const std::string& p_text) {
  const ReportCapture reports;
  const std::string result = DescribeResult([&] {
    std::istringstream stream(p_text);
    return Library::LoadPolygonObj(stream);
  });
  return Join(reports.Texts(), result);
}

std::string DescribeReference(const std::string& p_text) {
  Strings reports;
  const std::string result = DescribeResult([&] { return Reader(reports).Read(p_text); });
  return Join(reports, result);
}

std::string RandomObjText(unsigned int p_seed) {
  return Generator(p_seed).File();
}

} // namespace Vek::Test
