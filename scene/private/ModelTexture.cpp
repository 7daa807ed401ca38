#include "scene/private/ModelTexture.h"

namespace Vek::Chart::Scene::Private {

boost::shared_ptr<void> ModelTexture::Bind(Utility::Scoped<Rgl>& p_gl) const {
  boost::shared_ptr<void> state = p_gl->PushAttribScope(RGL_TEXTURE_BIT | RGL_ENABLE_BIT);
  Mipped& mipped = _texture.Get(p_gl);
  if (!mipped.texture) {
    Library::Texture texture(_image, p_gl);
    texture.wrapS = texture.wrapT = Library::TextureSettings::Repeat;
    mipped.texture.emplace(texture);
  }
  (*mipped.texture)(p_gl, RGL_TEXTURE0);
  const boost::shared_ptr<Ogl::Texture>& handle = mipped.texture->Handle();
  if (handle != nullptr && p_gl->Features().Supported(Ogl::DeviceFeatures::FeatureFrameBufferObject)) {
    if (mipped.levels != handle)
      p_gl->GenerateMipmap(RGL_TEXTURE_2D); // comes with frame-buffer objects
    mipped.levels = handle;
    p_gl->TexParameteri(RGL_TEXTURE_2D, RGL_TEXTURE_MIN_FILTER, RGL_LINEAR_MIPMAP_LINEAR);
  }
  return state;
}

} // namespace Vek::Chart::Scene::Private
