#pragma once

#include "platform/ogl/Objects.h"
#include "platform/ogl/Rgl.h"

#include <boost/shared_ptr.hpp>

#include <array>
#include <cstddef>

namespace Vek::Chart::Scene::Private {

/// Buffers that shaders fetch from as textures, on units behind those of colour maps and layers.
template <std::size_t Count>
class BufferTextures {
public:
  static constexpr int FirstUnit = 4;

  /// A buffer by its name, and the format of its texels; 0 for none.
  struct Source {
    Ogl::GlEnum format;
    unsigned int buffer;
  };

  /// Binds each buffer, the first one on the first unit; unit 0 is active then. False, after a report, if GL makes no
  /// texture.
  bool Bind(const Ogl::Rgl& p_gl, const std::array<Source, Count>& p_sources) {
    for (std::size_t i = 0; i < Count; ++i) {
      boost::shared_ptr<Ogl::Texture>& texture = _textures[i];
      if (!texture)
        texture = p_gl.GenTexture();
      if (!texture)
        return false; // reported
      p_gl.ActiveTexture(RGL_TEXTURE0 + static_cast<unsigned int>(FirstUnit) + static_cast<unsigned int>(i));
      p_gl.BindTexture(RGL_TEXTURE_BUFFER, texture->Name());
      p_gl.TexBuffer(RGL_TEXTURE_BUFFER, p_sources[i].format, p_sources[i].buffer);
    }
    p_gl.ActiveTexture(RGL_TEXTURE0);
    return true;
  }

private:
  std::array<boost::shared_ptr<Ogl::Texture>, Count> _textures;
};

} // namespace Vek::Chart::Scene::Private
