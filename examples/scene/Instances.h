#pragma once

#include "library/ColorMap.h"
#include "library/ModelCache.h"

#include "platform/ogl/BufferDraw.h"
#include "platform/ogl/Rgl.h"
#include "platform/ogl/ShaderProgram.h"
#include "platform/types/Geometry.h"
#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"

#include <vector>

namespace Vek::Chart::Gallery {

/// One copy of a model: where its middle is, how large it is (the diagonal of its box), how it is
/// turned, and its place on the colour map, 0 to 1.
struct Instance {
  Types::Vector3_Base<double> place;
  double size = 1;
  double value = 0;
  Types::Matrix3 turn;
};

/// Instances in GPU buffers.
class InstanceBuffers {
public:
  InstanceBuffers(Utility::Scoped<Rgl>& p_gl, const std::vector<Instance>& p_instances);

  unsigned int Count() const { return _count; }
  const std::vector<Ogl::BufferDraw::InstanceAttribute>& Attributes() const { return _attributes; }

private:
  unsigned int _count;
  std::vector<Ogl::BufferDraw::InstanceAttribute> _attributes;
};

/// A model as the cache and the registry hand it out.
struct Mesh {
  Library::ModelCache::VertexBuffer vertices;
  Library::ModelCache::IndexBuffer indices;
  Types::BoundingBox_Base<double> box;
};

/// The shader that draws all instances of a model in one call, each pixel lit by GL's light 0 (see Light). Surfaces are
/// lit on both sides; lines, which have no normals, shine by themselves.
class InstancePainter {
public:
  explicit InstancePainter(Utility::Scoped<Rgl>& p_gl);

  /// The model is moved to the middle of its box and scaled to a diagonal of 1 before the instances place it.
  void Draw(Utility::Scoped<Rgl>& p_gl, const Mesh& p_model, const InstanceBuffers& p_instances,
            const Library::ColorMap& p_colors) const;

private:
  Ogl::ShaderProgram _program;
};

} // namespace Vek::Chart::Gallery
