#pragma once

#include <map>
#include <string>
#include <tuple>

namespace Vek::Chart::Scene::Private {

/// How a vertex shader finds an instance.
enum class Fetch {
  Attributes, ///< by vertex attributes that advance once per instance
  Textures,   ///< by a list of instances in buffer textures; instances may be drawn several at a time
};
/// What fragments show.
enum class Fragments {
  Mesh,
  Spheres, ///< seen through polygons, each around the outline of one
};
/// What a drawing writes to each pixel.
enum class Paint {
  Colors,
  Depths, ///< packed
  Ids,    ///< and `plot`, (number + 1) / 255
};

/// A constant of shaders: whether the normals of triangles are those of their last vertices.
constexpr const char* FlatNormals = "flatNormals";

/// The shaders of a drawing of instances.
///
/// What all instances have in common lies in their texts as constants: rasterisers in software work through both sides
/// of each branch on a uniform, which is most of the time of a million small arrows.
struct InstanceShaders {
  Fetch fetch = Fetch::Textures;
  Fragments fragments = Fragments::Mesh;
  Paint paint = Paint::Colors;
  std::map<std::string, int> constants; ///< by the names of the uniforms that they replace

  /// Places instances.
  std::string VertexText() const;
  std::string FragmentText() const;

  friend bool operator<(const InstanceShaders& p_a, const InstanceShaders& p_b) {
    return std::tie(p_a.fetch, p_a.fragments, p_a.paint, p_a.constants) <
           std::tie(p_b.fetch, p_b.fragments, p_b.paint, p_b.constants);
  }
};

} // namespace Vek::Chart::Scene::Private
