#pragma once

#include "library/Texture.h"
#include "platform/ogl/PerContext.h"
#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QImage>

#include <optional>

namespace Vek::Chart::Scene::Private {

/// The texture of a model: it is repeated, and has mip levels where GL makes them.
class ModelTexture {
public:
  explicit ModelTexture(const QImage& p_image)
      : _image(p_image) {}

  /// Binds it to unit 0. Releasing the guard restores what was there.
  boost::shared_ptr<void> Bind(Utility::Scoped<Rgl>& p_gl) const;
  void Release(const Utility::Scoped<Rgl>& p_gl) const { _texture.Release(p_gl); }

private:
  struct Mipped {
    std::optional<Library::Texture> texture;
    boost::shared_ptr<Ogl::Texture> levels; ///< the texture that has its levels
  };
  QImage _image;
  Ogl::PerContext<Mipped> _texture;
};

} // namespace Vek::Chart::Scene::Private
