#pragma once

#include <string>

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

/// A vertex shader that places instances and writes what LitColorText reads.
std::string InstanceVertexText(Fetch p_fetch, Fragments p_fragments);
/// The body of a fragment shader, which starts behind the version and may use MeshVaryings, as the shader of instances.
std::string InstanceFragmentText(const std::string& p_body, Fetch p_fetch, Fragments p_fragments);

/// The body of a fragment shader that writes the id of an instance and `plot`, (number + 1) / 255.
extern const char* const InstanceIdBody;

} // namespace Vek::Chart::Scene::Private
