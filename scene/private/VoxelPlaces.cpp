#include "scene/private/VoxelPlaces.h"

#include "platform/ogl/PixelStore.h"

#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene::Private {

namespace {

constexpr const char* Signature = "bool Vek::Chart::Scene::Private::VoxelPlaces::BindTable(class "
                                  "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &,unsigned int) const";

} // namespace

static_assert(PlacesWidth == 4096, "the width that the shader has");
const char* const PlacesText = R"(
uniform sampler2D places;
vec3 TexelAt(vec3 share) {
  vec3 x = (share * 4095.0 + 0.5) / 4096.0;
  return vec3(texture2D(places, vec2(x.x, 0.5 / 3.0)).r, texture2D(places, vec2(x.y, 1.5 / 3.0)).r,
              texture2D(places, vec2(x.z, 2.5 / 3.0)).r);
}
)";

VoxelPlaces::VoxelPlaces(std::array<VoxelAxis, 3> p_axes)
    : _axes(std::move(p_axes))
    , _box({_axes[0].Low(), _axes[1].Low(), _axes[2].Low()}, {_axes[0].High(), _axes[1].High(), _axes[2].High()}) {
  for (const VoxelAxis& axis : _axes) {
    const double extent = axis.High() - axis.Low();
    if (!(extent > 0 && std::isfinite(extent)))
      throw std::invalid_argument("VoxelGrid: expected a finite box with an extent along x, y and z");
  }
}

bool VoxelPlaces::BindTable(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const {
  Table& table = _tables.Get(p_gl);
  p_gl->ActiveTexture(p_unit);
  if (!table.tried) {
    table.tried = true;
    table.name = Upload(p_gl);
  }
  if (table.name)
    p_gl->Bind(table.name, Rgl::Sampler2D);
  return table.name != nullptr;
}

boost::shared_ptr<Ogl::Texture> VoxelPlaces::Upload(Utility::Scoped<Rgl>& p_gl) const {
  std::vector<float> texels;
  texels.reserve(3 * static_cast<std::size_t>(PlacesWidth));
  for (const VoxelAxis& axis : _axes)
    for (int i = 0; i < PlacesWidth; ++i) {
      const double share = static_cast<double>(i) / (PlacesWidth - 1);
      texels.push_back(static_cast<float>(axis.Coordinate(axis.Low() * (1 - share) + axis.High() * share)));
    }
  p_gl->CheckError(std::string("before ") + Signature);
  boost::shared_ptr<Ogl::Texture> texture = p_gl->GenTexture();
  if (!texture)
    return {};
  p_gl->Bind(texture, Rgl::Sampler2D);
  for (const Ogl::GlEnum filter : {RGL_TEXTURE_MIN_FILTER, RGL_TEXTURE_MAG_FILTER})
    p_gl->TexParameteri(RGL_TEXTURE_2D, filter, static_cast<int>(RGL_LINEAR));
  for (const Ogl::GlEnum wrap : {RGL_TEXTURE_WRAP_S, RGL_TEXTURE_WRAP_T})
    p_gl->TexParameteri(RGL_TEXTURE_2D, wrap, static_cast<int>(RGL_CLAMP_TO_EDGE));
  const boost::shared_ptr<void> unpacking = Ogl::UnpackScope(*p_gl);
  p_gl->TexImage2D(RGL_TEXTURE_2D, 0, static_cast<int>(RGL_LUMINANCE32F_ARB), PlacesWidth, 3, 0, RGL_LUMINANCE,
                   RGL_FLOAT, texels.data());
  if (!p_gl->CheckError(Signature))
    return {};
  return texture;
}

} // namespace Vek::Chart::Scene::Private
