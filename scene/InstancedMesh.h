#pragma once

#include "scene/Export.h"

#include "library/ColorMap.h"
#include "library/ModelCache.h"
#include "library/SymbolRegistry.h"

#include "platform/ogl/BufferDraw.h"
#include "platform/ogl/Rgl.h"
#include "platform/ogl/ShaderProgram.h"
#include "platform/types/Geometry.h"
#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"

#include <optional>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene {

/// One copy of a model: where its middle is, how large it is (the diagonal of its box), how it is
/// turned, and its place on the colour map, 0 to 1.
struct VEK_SCENE_API Instance {
  Types::Vector3_Base<double> place;
  double size = 1;
  double value = 0;
  Types::Matrix3 turn;
};

/// Instances that go to GPU buffers when they are drawn first.
class VEK_SCENE_API InstanceBuffers {
public:
  explicit InstanceBuffers(std::vector<Instance> p_instances)
      : _instances(std::move(p_instances)) {}

  unsigned int Count() const { return static_cast<unsigned int>(_instances.size()); }
  const std::vector<Ogl::BufferDraw::InstanceAttribute>& Attributes(Utility::Scoped<Rgl>& p_gl);

private:
  std::vector<Instance> _instances;
  std::vector<Ogl::BufferDraw::InstanceAttribute> _attributes;
};

/// A model as the cache and the registry hand it out.
struct VEK_SCENE_API Mesh {
  Library::ModelCache::VertexBuffer vertices;
  Library::ModelCache::IndexBuffer indices;
  Types::BoundingBox_Base<double> box;
};

/// A built-in model, and a model of a cache.
VEK_SCENE_API Mesh MeshOf(const Library::SymbolRegistry& p_registry, Model::Symbol::Shape p_shape);
VEK_SCENE_API Mesh MeshOf(const Library::ModelCache& p_cache, std::size_t p_id);

/// The shaders that draw all instances of a model in one call. The model is moved to the middle of its box and scaled
/// to a diagonal of 1 before the instances place it. A shader is made when it is used first.
class VEK_SCENE_API InstancePainter {
public:
  /// Each pixel is lit by GL's light 0 (see DirectionalLight). Surfaces are lit on both sides; lines, which have no
  /// normals, shine by themselves.
  void Draw(Utility::Scoped<Rgl>& p_gl, const Mesh& p_model, InstanceBuffers& p_instances,
            const Library::ColorMap& p_colors);
  /// Each pixel gets its depth, packed by DepthCodec (see DepthShader).
  void DrawDepths(Utility::Scoped<Rgl>& p_gl, const Mesh& p_model, InstanceBuffers& p_instances);

private:
  std::optional<Ogl::ShaderProgram> _colored;
  std::optional<Ogl::ShaderProgram> _packed;
};

} // namespace Vek::Chart::Scene
