// Writes the models of the built-in symbols as OBJ files into a folder:
//
//     vek-make-symbols symbols
//
// The glyphs are those of VectorSymbol. The sphere is an Icosphere; the torus is built here. Numbers are written
// as the shortest strings that read back as the same floats; the output is reproducible.

#include "library/Icosphere.h"
#include "library/VectorSymbol.h"
#include "platform/model/Symbol.h"
#include "platform/ogl/VertexData.h"
#include "platform/types/Vector.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

using namespace Vek::Chart;
using Vector = Types::Vector3_Base<double>;

namespace {

constexpr unsigned int Segments = 24;       // around the round glyphs
constexpr unsigned int SphereDivisions = 3; // 642 vertices
constexpr double TorusRadius = 0.35;        // of the circle through the middle of the tube
constexpr double TubeRadius = 0.15;         // both radii add up to half a unit
constexpr unsigned int TorusSegments = 32;
constexpr unsigned int TubeSegments = 16;

using Float3 = std::array<float, 3>;

struct Mesh {
  std::vector<Float3> positions;
  std::vector<Float3> normals; // one per position, or none
  std::vector<unsigned int> indices;
  unsigned int corners = 3; // per face; 2 for line segments

  void AddVertex(const Vector& p_position, const Vector& p_normal) {
    positions.push_back(Narrowed(p_position));
    normals.push_back(Narrowed(p_normal));
  }
  static Float3 Narrowed(const Vector& p_vector) {
    return {static_cast<float>(p_vector.x), static_cast<float>(p_vector.y), static_cast<float>(p_vector.z)};
  }
};

std::vector<Float3> Triples(const Ogl::VertexData::Array& p_array) {
  std::vector<Float3> triples(p_array.count);
  for (std::size_t i = 0; i < triples.size(); ++i)
    triples[i] = {p_array.As<float>()[3 * i], p_array.As<float>()[3 * i + 1], p_array.As<float>()[3 * i + 2]};
  return triples;
}

Mesh Glyph(Model::Symbol::Shape p_shape) {
  Library::VectorSymbol glyph(p_shape, Segments);
  Ogl::VertexData data;
  if (!glyph.BuildShape(data))
    throw std::runtime_error("There is no glyph for shape " + std::to_string(p_shape) + ".");
  Mesh mesh;
  mesh.positions = Triples(data.Vertices());
  const unsigned int* const indices = data.Indices().As<unsigned int>();
  mesh.indices.assign(indices, indices + data.Indices().count);
  if (glyph.GeometryDefinedAs() == Library::VectorSymbol::TopologyTriangles)
    mesh.normals = Triples(data.Normals());
  else
    mesh.corners = 2;
  return mesh;
}

// A sphere of triangles.
Mesh Sphere(double p_radius) {
  const Library::Icosphere sphere(SphereDivisions);
  Mesh mesh;
  for (const Vector& point : sphere.positions)
    mesh.AddVertex(point * p_radius, point);
  mesh.indices = sphere.indices;
  return mesh;
}

// A torus around the z axis.
Mesh Torus() {
  Mesh mesh;
  const double fullAngle = 2 * std::acos(-1.0);
  for (unsigned int i = 0; i < TorusSegments; ++i) {
    const double u = fullAngle * i / TorusSegments;
    const Vector outward(std::cos(u), std::sin(u), 0);
    for (unsigned int j = 0; j < TubeSegments; ++j) {
      const double v = fullAngle * j / TubeSegments;
      const Vector normal = outward * std::cos(v) + Vector(0, 0, std::sin(v));
      mesh.AddVertex(outward * TorusRadius + normal * TubeRadius, normal);

      // The quad between this vertex, the next one and the next ring.
      const unsigned int ring = i * TubeSegments, nextRing = (i + 1) % TorusSegments * TubeSegments;
      const unsigned int next = (j + 1) % TubeSegments;
      mesh.indices.insert(mesh.indices.end(), {ring + j, nextRing + j, nextRing + next});
      mesh.indices.insert(mesh.indices.end(), {ring + j, nextRing + next, ring + next});
    }
  }
  return mesh;
}

void AppendLine(std::string& p_text, const char* p_keyword, const Float3& p_numbers) {
  p_text += p_keyword;
  for (const float number : p_numbers) {
    char digits[32];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, number);
    p_text.append(" ").append(digits, end.ptr);
  }
  p_text += '\n';
}

std::string ObjText(const std::string& p_name, const Mesh& p_mesh) {
  std::string text = "# Symbol of Vek.Chart.Library, written by vek-make-symbols\no " + p_name + "\n";
  for (const Float3& position : p_mesh.positions)
    AppendLine(text, "v", position);
  for (const Float3& normal : p_mesh.normals)
    AppendLine(text, "vn", normal);
  for (std::size_t i = 0; i < p_mesh.indices.size(); ++i) {
    if (i % p_mesh.corners == 0)
      text += p_mesh.corners == 3 ? "f" : "l";
    const std::string number = std::to_string(p_mesh.indices[i] + 1);
    text += " " + number + (p_mesh.normals.empty() ? "" : "//" + number);
    if ((i + 1) % p_mesh.corners == 0)
      text += '\n';
  }
  return text;
}

void WriteModel(const std::string& p_folder, const std::string& p_name, const Mesh& p_mesh) {
  const std::string path = p_folder + "/" + p_name + ".obj";
  std::ofstream file(path, std::ios::binary);
  file << ObjText(p_name, p_mesh);
  file.close();
  if (!file)
    throw std::runtime_error("Cannot write " + path + ".");
}

constexpr std::pair<Model::Symbol::Shape, const char*> Glyphs[] = {
    {Model::Symbol::ShapeArrowHead1D, "ArrowHead1D"},
    {Model::Symbol::ShapeArrow1D, "Arrow1D"},
    {Model::Symbol::ShapeArrowHead2D, "ArrowHead2D"},
    {Model::Symbol::ShapeArrow2D, "Arrow2D"},
    {Model::Symbol::ShapePlane, "Plane"},
    {Model::Symbol::ShapeArrowHead3D, "ArrowHead3D"},
    {Model::Symbol::ShapeArrow3D, "Arrow3D"},
    {Model::Symbol::ShapeCylinder, "Cylinder"},
    {Model::Symbol::ShapeCone, "Cone"},
    {Model::Symbol::ShapeCircularArrow3D, "CircularArrow3D"},
    {Model::Symbol::ShapeCrosshair, "Crosshair"},
    {Model::Symbol::ShapeCube, "Cube"},
};

} // namespace

int main(int p_count, char** p_arguments) {
  if (p_count != 2) {
    std::fprintf(stderr, "usage: vek-make-symbols FOLDER\n");
    return 2;
  }
  try {
    const std::string folder = p_arguments[1];
    for (const auto& [shape, name] : Glyphs)
      WriteModel(folder, name, Glyph(shape));
    WriteModel(folder, "IcoSphere", Sphere(0.5));
    WriteModel(folder, "Torus", Torus());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vek-make-symbols: %s\n", error.what());
    return 1;
  }
  return 0;
}
