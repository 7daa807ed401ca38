#include "platform/ogl/PixelStore.h"

#include "platform/ogl/Guard.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace Vek::Chart::Ogl {

namespace {

struct Conversion {
  GlEnum name;
  float neutral;
};
constexpr std::array<Conversion, 11> Conversions = {{
    {RGL_MAP_COLOR, 0},
    {RGL_RED_SCALE, 1},
    {RGL_RED_BIAS, 0},
    {RGL_GREEN_SCALE, 1},
    {RGL_GREEN_BIAS, 0},
    {RGL_BLUE_SCALE, 1},
    {RGL_BLUE_BIAS, 0},
    {RGL_ALPHA_SCALE, 1},
    {RGL_ALPHA_BIAS, 0},
    {RGL_DEPTH_SCALE, 1},
    {RGL_DEPTH_BIAS, 0},
}};

/// The host's pixel transfer. Not kept on the attribute stack, whose group would restore the read buffer as well.
class PixelTransfer {
public:
  explicit PixelTransfer(const Rgl& p_gl) {
    for (std::size_t i = 0; i < Conversions.size(); ++i) {
      _values[i] = Conversions[i].neutral;
      p_gl.GetFloatv(Conversions[i].name, &_values[i]);
    }
  }
  bool Neutral() const {
    return std::equal(Conversions.begin(), Conversions.end(), _values.begin(),
                      [](const Conversion& p_conversion, float p_value) { return p_conversion.neutral == p_value; });
  }
  void Suspend(const GlFunctions& p_gl) const {
    ForEachChanged(
        [&](const Conversion& p_conversion, float) { p_gl.PixelTransferf(p_conversion.name, p_conversion.neutral); });
  }
  void Restore(const GlFunctions& p_gl) const {
    ForEachChanged(
        [&](const Conversion& p_conversion, float p_value) { p_gl.PixelTransferf(p_conversion.name, p_value); });
  }

private:
  template <class Call>
  void ForEachChanged(const Call& p_call) const {
    for (std::size_t i = 0; i < Conversions.size(); ++i)
      if (!(_values[i] == Conversions[i].neutral))
        p_call(Conversions[i], _values[i]);
  }

  std::array<float, Conversions.size()> _values;
};

/// Whether the context has pixel buffers; an older one answers questions about them with an error.
bool HasPixelBuffers(const Rgl& p_gl) {
  return p_gl.GlVersion() >= Utility::VersionNo(2, 1, 0);
}

int Value(const Rgl& p_gl, GlEnum p_name) {
  int value = 0;
  p_gl.GetIntegerv(p_name, &value);
  return value;
}

bool AnySet(const Rgl& p_gl, std::initializer_list<GlEnum> p_names) {
  return std::any_of(p_names.begin(), p_names.end(), [&](GlEnum p_name) { return Value(p_gl, p_name) != 0; });
}

boost::shared_ptr<void> TightScope(const Rgl& p_gl, const PixelTransfer& p_transfer, GlEnum p_buffer,
                                   GlEnum p_alignment, std::initializer_list<GlEnum> p_others) {
  const bool buffers = HasPixelBuffers(p_gl);
  p_gl.PushClientAttrib(RGL_CLIENT_PIXEL_STORE_BIT);
  const boost::shared_ptr<void> scope = MakeGuard([gl = p_gl.Functions(), p_transfer] {
    p_transfer.Restore(*gl);
    gl->PopClientAttrib();
  });
  if (buffers)
    p_gl.BindBuffer(p_buffer, 0);
  p_gl.PixelStorei(p_alignment, 1);
  for (const GlEnum other : p_others)
    p_gl.PixelStorei(other, 0);
  p_transfer.Suspend(*p_gl.Functions());
  return scope;
}

boost::shared_ptr<void> PackScope(const Rgl& p_gl, const PixelTransfer& p_transfer) {
  return TightScope(p_gl, p_transfer, RGL_PIXEL_PACK_BUFFER, RGL_PACK_ALIGNMENT,
                    {RGL_PACK_ROW_LENGTH, RGL_PACK_SKIP_ROWS, RGL_PACK_SKIP_PIXELS, RGL_PACK_SWAP_BYTES});
}

boost::shared_ptr<void> UnpackScope(const Rgl& p_gl, const PixelTransfer& p_transfer) {
  return TightScope(p_gl, p_transfer, RGL_PIXEL_UNPACK_BUFFER, RGL_UNPACK_ALIGNMENT,
                    {RGL_UNPACK_ROW_LENGTH, RGL_UNPACK_SKIP_ROWS, RGL_UNPACK_SKIP_PIXELS, RGL_UNPACK_SWAP_BYTES,
                     RGL_UNPACK_LSB_FIRST, RGL_UNPACK_IMAGE_HEIGHT, RGL_UNPACK_SKIP_IMAGES});
}

} // namespace

boost::shared_ptr<void> PackScope(const Rgl& p_gl) {
  return PackScope(p_gl, PixelTransfer(p_gl));
}

boost::shared_ptr<void> PixelPackScope(const Rgl& p_gl) {
  // Pixels are read from frame buffers, which come with pixel buffers.
  const PixelTransfer transfer(p_gl);
  const bool set =
      !transfer.Neutral() || AnySet(p_gl, {RGL_PIXEL_PACK_BUFFER_BINDING, RGL_PACK_SKIP_ROWS, RGL_PACK_SKIP_PIXELS});
  return set ? PackScope(p_gl, transfer) : nullptr;
}

boost::shared_ptr<void> UnpackScope(const Rgl& p_gl) {
  return UnpackScope(p_gl, PixelTransfer(p_gl));
}

boost::shared_ptr<void> ImageUnpackScope(const Rgl& p_gl) {
  const PixelTransfer transfer(p_gl);
  const bool set = !transfer.Neutral() || Value(p_gl, RGL_UNPACK_ALIGNMENT) > 4 ||
                   AnySet(p_gl, {RGL_UNPACK_ROW_LENGTH, RGL_UNPACK_SKIP_ROWS, RGL_UNPACK_SKIP_PIXELS,
                                 RGL_UNPACK_SWAP_BYTES, RGL_UNPACK_LSB_FIRST}) ||
                   (HasPixelBuffers(p_gl) && AnySet(p_gl, {RGL_PIXEL_UNPACK_BUFFER_BINDING}));
  return set ? UnpackScope(p_gl, transfer) : nullptr;
}

} // namespace Vek::Chart::Ogl
