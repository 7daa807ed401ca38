#include "library/TexturedQuad.h"

#include "library/private/gl/Truncate.h"
#include "platform/debug/Check.h"

#include <algorithm>

namespace Vek::Chart::Library {

namespace {

using Private::Truncate;

namespace Signature {
constexpr const char* DrawLayers =
    "void __cdecl Vek::Chart::Library::TexturedQuad::operator ()(const class "
    "Vek::Chart::Utility::Unscoped<class Vek::Chart::Ogl::Rgl> &,class std::vector<class "
    "boost::shared_ptr<class Vek::Chart::Library::Texture>,class std::allocator<class "
    "boost::shared_ptr<class Vek::Chart::Library::Texture> > >) const";
} // namespace Signature

/// A position of the quad along one axis: the pixel and its texture coordinate.
struct Stop {
  int pixel;
  float texture;
};

void SendQuad(Utility::Scoped<Rgl>& p_gl, const Stop& p_left, const Stop& p_right, const Stop& p_bottom,
              const Stop& p_top) {
  const auto corner = [&](const Stop& p_x, const Stop& p_y) {
    p_gl->TexCoord(p_x.texture, p_y.texture);
    p_gl->Pixel(p_x.pixel, p_y.pixel);
  };
  corner(p_left, p_bottom);
  corner(p_right, p_bottom);
  corner(p_right, p_top);
  corner(p_left, p_top);
}

/// The four stops of a nine-patch along one axis. When the borders do not fit, the middle has no size.
struct Stops {
  Stops(float p_start, float p_size, std::uint32_t p_border, int p_texels) {
    const int first = Truncate(p_start);
    const int end = Truncate(static_cast<float>(first) + p_size);
    const std::int64_t second = std::int64_t{first} + p_border;
    const std::int64_t third = std::max(std::int64_t{end} - p_border, second);
    const float share = static_cast<float>(p_border) / static_cast<float>(p_texels);
    stops[0] = {first, 0.0f};
    stops[1] = {Truncate(static_cast<double>(second)), share};
    stops[2] = {Truncate(static_cast<double>(third)), 1.0f - share};
    stops[3] = {end, 1.0f};
  }
  bool HasMiddle() const { return stops[1].pixel != stops[2].pixel; }
  const Stop& operator[](std::size_t p_index) const { return stops[p_index]; }
  Stop stops[4];
};

void SendNinePatch(Utility::Scoped<Rgl>& p_gl, const Stops& p_x, const Stops& p_y) {
  for (std::size_t row = 0; row < 3; ++row) {
    if (row == 1 && !p_y.HasMiddle())
      continue;
    for (std::size_t column = 0; column < 3; ++column) {
      // The centre is sent even without a width.
      if (column == 1 && row != 1 && !p_x.HasMiddle())
        continue;
      SendQuad(p_gl, p_x[column], p_x[column + 1], p_y[row], p_y[row + 1]);
    }
  }
}

bool HasArea(const Types::Viewport<0>& p_rect) {
  return p_rect.width > 0 && p_rect.height > 0;
}

void SetLayerBlending(Utility::Scoped<Rgl>& p_gl, const Texture& p_texture) {
  p_gl->DepthFunc(RGL_ALWAYS);
  switch (p_texture.environment) {
  case Texture::Replace:
    p_gl->Disable(RGL_BLEND);
    break;
  case Texture::Decal:
    p_gl->Enable(RGL_BLEND);
    p_gl->BlendFuncSeparate(RGL_SRC_ALPHA, RGL_ONE_MINUS_SRC_ALPHA, RGL_ZERO, RGL_ONE);
    break;
  case Texture::Modulate:
    p_gl->Enable(RGL_BLEND);
    p_gl->BlendFuncSeparate(RGL_DST_COLOR, RGL_ZERO, RGL_DST_ALPHA, RGL_ZERO);
    break;
  default:
    break;
  }
}

} // namespace

void TexturedQuad::DrawLayer(Utility::Scoped<Rgl>& p_gl, const Texture& p_texture, bool p_first) const {
  p_texture(p_gl, RGL_TEXTURE0);
  if (!p_first)
    p_gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, RGL_REPLACE);
  p_gl->Begin(RGL_QUADS);
  if (border == 0)
    SendQuad(p_gl, {Truncate(rect.x), 0.0f}, {Truncate(rect.x + rect.width), 1.0f}, {Truncate(rect.y), 0.0f},
             {Truncate(rect.y + rect.height), 1.0f});
  else
    SendNinePatch(p_gl, Stops(rect.x, rect.width, border, p_texture.Width()),
                  Stops(rect.y, rect.height, border, p_texture.Height()));
  p_gl->End();
}

void TexturedQuad::operator()(const Utility::Unscoped<Rgl>& p_gl, const Texture& p_texture) const {
  if (!HasArea(rect))
    return;
  Utility::Scoped<Rgl> gl(p_gl);
  gl->Color(color);
  const auto state = gl->PushAttribScope(RGL_TEXTURE_BIT | RGL_ENABLE_BIT);
  DrawLayer(gl, p_texture, true);
}

void TexturedQuad::operator()(const Utility::Unscoped<Rgl>& p_gl,
                              std::vector<boost::shared_ptr<Texture>> p_textures) const {
  if (!HasArea(rect))
    return;
  Utility::Scoped<Rgl> gl(p_gl);
  gl->Color(color);
  const auto state = gl->PushAttribScope(RGL_TEXTURE_BIT | RGL_DEPTH_BUFFER_BIT | RGL_ENABLE_BIT);
  for (std::size_t i = 0; i < p_textures.size(); ++i) {
    if (!VEK_CHECK_POINTER(p_textures[i].get(), Signature::DrawLayers))
      continue;
    if (i > 0)
      SetLayerBlending(gl, *p_textures[i]);
    DrawLayer(gl, *p_textures[i], i == 0);
  }
}

} // namespace Vek::Chart::Library
