#pragma once

#include "scene/InstancedMesh.h"
#include "scene/private/BufferTextures.h"
#include "scene/private/GpuArray.h"
#include "scene/private/InstanceSelection.h"
#include "scene/private/InstanceShaders.h"
#include "scene/private/Programs.h"

#include "platform/ogl/BufferPool.h"
#include "platform/ogl/Objects.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene {

/// The buffers and shaders of one context.
struct InstancedMesh::Buffers {
  Private::GpuArray positions;
  Private::GpuArray sizes;
  Private::GpuArray axes;
  Private::GpuArray paint;
  Private::GpuArray ids;
  Shared<Rgba> numbers; ///< ids for devices without levels, if the caller gave none
  Private::InstanceSelection selection;
  Ogl::Buffer<std::uint32_t> order;
  Private::BufferTextures<5> textures;
  Private::Programs<Private::InstanceShaders> programs;
};

} // namespace Vek::Chart::Scene
