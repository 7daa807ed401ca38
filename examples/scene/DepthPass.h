#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/ogl/ShaderProgram.h"
#include "platform/utility/Scope.h"

#include <boost/function.hpp>

#include <string>

namespace Vek::Chart::Gallery {

/// A fragment shader that gives each pixel its depth, packed by DepthCodec.
std::string PackedDepthText();

/// Draws a scene so that every pixel holds its depth, packed as DepthCodec does: what a TopMostFragmentDepthBuffer
/// wants of its render callback.
///
///     const DepthPass pass(gl);
///     picker.GetDepthAt(gl, viewport, pixel, stamp,
///                       [&](DepthCodec::Encoding) { pass.Draw(gl, [&] { DrawMyMeshes(gl); }); }, result);
///
/// For meshes that fixed-function matrices place; those with a vertex shader of their own link it with PackedDepthText.
class DepthPass {
public:
  explicit DepthPass(Utility::Scoped<Rgl>& p_gl);

  /// Clears the current frame buffer to "nothing here" and calls `p_draw` with the packing shader in use. All host
  /// state that would change a packed colour on its way is off meanwhile, and restored afterwards.
  void Draw(Utility::Scoped<Rgl>& p_gl, const boost::function<void()>& p_draw) const;

private:
  Ogl::ShaderProgram _program;
};

} // namespace Vek::Chart::Gallery
