#include "testing/private/RecordingState.h"

#include "platform/ogl/GlTokens.h"

#include <algorithm>
#include <iterator>

namespace Vek::Chart::Testing::Recording {
namespace {

constexpr StateVariable Flag(GlEnum p_name, GlBitfield p_groups, bool p_on = false) {
  return {p_name, p_groups | RGL_ENABLE_BIT, false, false, 1, {p_on ? 1.0 : 0.0}};
}
constexpr StateVariable UnitFlag(GlEnum p_name) {
  return {p_name, RGL_TEXTURE_BIT | RGL_ENABLE_BIT, false, true, 1, {}};
}
constexpr StateVariable One(GlEnum p_name, GlBitfield p_groups, double p_initial) {
  return {p_name, p_groups, false, false, 1, {p_initial}};
}
constexpr StateVariable Unit(GlEnum p_name) {
  return {p_name, RGL_TEXTURE_BIT, false, true, 1, {}};
}
constexpr StateVariable Client(GlEnum p_name, GlBitfield p_groups, double p_initial = 0) {
  return {p_name, p_groups, true, false, 1, {p_initial}};
}

constexpr GlBitfield Pixels = RGL_CLIENT_PIXEL_STORE_BIT;
constexpr GlBitfield Arrays = RGL_CLIENT_VERTEX_ARRAY_BIT;

constexpr StateVariable Variables[] = {
    // Capabilities
    Flag(RGL_ALPHA_TEST, RGL_COLOR_BUFFER_BIT),
    Flag(RGL_BLEND, RGL_COLOR_BUFFER_BIT),
    Flag(RGL_DITHER, RGL_COLOR_BUFFER_BIT, true),
    Flag(RGL_FRAMEBUFFER_SRGB, RGL_COLOR_BUFFER_BIT),
    Flag(RGL_COLOR_MATERIAL, RGL_LIGHTING_BIT),
    Flag(RGL_LIGHTING, RGL_LIGHTING_BIT),
    Flag(RGL_LIGHT0, RGL_LIGHTING_BIT),
    Flag(RGL_LIGHT1, RGL_LIGHTING_BIT),
    Flag(RGL_LIGHT2, RGL_LIGHTING_BIT),
    Flag(RGL_LIGHT3, RGL_LIGHTING_BIT),
    Flag(RGL_CULL_FACE, RGL_POLYGON_BIT),
    Flag(RGL_POLYGON_OFFSET_FILL, RGL_POLYGON_BIT),
    Flag(RGL_POLYGON_OFFSET_LINE, RGL_POLYGON_BIT),
    Flag(RGL_POLYGON_SMOOTH, RGL_POLYGON_BIT),
    Flag(RGL_POLYGON_STIPPLE, RGL_POLYGON_BIT),
    Flag(RGL_DEPTH_TEST, RGL_DEPTH_BUFFER_BIT),
    Flag(RGL_STENCIL_TEST, RGL_STENCIL_BUFFER_BIT),
    Flag(RGL_SCISSOR_TEST, RGL_SCISSOR_BIT),
    Flag(RGL_FOG, RGL_FOG_BIT),
    Flag(RGL_LINE_SMOOTH, RGL_LINE_BIT),
    Flag(RGL_LINE_STIPPLE, RGL_LINE_BIT),
    Flag(RGL_POINT_SMOOTH, RGL_POINT_BIT),
    Flag(RGL_POINT_SPRITE, RGL_POINT_BIT),
    Flag(RGL_MULTISAMPLE, RGL_MULTISAMPLE_BIT, true),
    Flag(RGL_NORMALIZE, RGL_TRANSFORM_BIT),
    Flag(RGL_RESCALE_NORMAL, RGL_TRANSFORM_BIT),
    Flag(RGL_CLIP_PLANE0, RGL_TRANSFORM_BIT),
    Flag(RGL_PROGRAM_POINT_SIZE, 0),
    UnitFlag(RGL_TEXTURE_1D),
    UnitFlag(RGL_TEXTURE_2D),
    UnitFlag(RGL_TEXTURE_3D),
    UnitFlag(RGL_TEXTURE_GEN_S),
    UnitFlag(RGL_TEXTURE_GEN_T),
    UnitFlag(RGL_TEXTURE_GEN_R),
    // Other state that attribute groups save
    {RGL_CURRENT_COLOR, RGL_CURRENT_BIT, false, false, 4, {1, 1, 1, 1}},
    {RGL_CURRENT_NORMAL, RGL_CURRENT_BIT, false, false, 3, {0, 0, 1}},
    {RGL_VIEWPORT, RGL_VIEWPORT_BIT, false, false, 4, {}},
    {RGL_SCISSOR_BOX, RGL_SCISSOR_BIT, false, false, 4, {}},
    {RGL_COLOR_CLEAR_VALUE, RGL_COLOR_BUFFER_BIT, false, false, 4, {}},
    {RGL_COLOR_WRITEMASK, RGL_COLOR_BUFFER_BIT, false, false, 4, {1, 1, 1, 1}},
    {RGL_POLYGON_MODE, RGL_POLYGON_BIT, false, false, 2, {RGL_FILL, RGL_FILL}},
    One(RGL_MATRIX_MODE, RGL_TRANSFORM_BIT, RGL_MODELVIEW),
    One(RGL_DEPTH_FUNC, RGL_DEPTH_BUFFER_BIT, RGL_LESS),
    One(RGL_DEPTH_WRITEMASK, RGL_DEPTH_BUFFER_BIT, 1),
    One(RGL_BLEND_SRC, RGL_COLOR_BUFFER_BIT, 1),
    One(RGL_BLEND_DST, RGL_COLOR_BUFFER_BIT, 0),
    One(RGL_BLEND_SRC_RGB, RGL_COLOR_BUFFER_BIT, 1),
    One(RGL_BLEND_DST_RGB, RGL_COLOR_BUFFER_BIT, 0),
    One(RGL_BLEND_SRC_ALPHA, RGL_COLOR_BUFFER_BIT, 1),
    One(RGL_BLEND_DST_ALPHA, RGL_COLOR_BUFFER_BIT, 0),
    One(RGL_CULL_FACE_MODE, RGL_POLYGON_BIT, RGL_BACK),
    One(RGL_FRONT_FACE, RGL_POLYGON_BIT, RGL_CCW),
    One(RGL_SHADE_MODEL, RGL_LIGHTING_BIT, RGL_SMOOTH),
    One(RGL_LINE_WIDTH, RGL_LINE_BIT, 1),
    One(RGL_LINE_STIPPLE_PATTERN, RGL_LINE_BIT, 0xFFFF),
    One(RGL_LINE_STIPPLE_REPEAT, RGL_LINE_BIT, 1),
    One(RGL_POINT_SIZE, RGL_POINT_BIT, 1),
    One(RGL_ACTIVE_TEXTURE, RGL_TEXTURE_BIT, RGL_TEXTURE0),
    Unit(RGL_TEXTURE_BINDING_1D),
    Unit(RGL_TEXTURE_BINDING_2D),
    Unit(RGL_TEXTURE_BINDING_3D),
    Unit(RGL_TEXTURE_BINDING_BUFFER),
    One(RGL_MAP_COLOR, RGL_PIXEL_MODE_BIT, 0),
    One(RGL_RED_SCALE, RGL_PIXEL_MODE_BIT, 1),
    One(RGL_RED_BIAS, RGL_PIXEL_MODE_BIT, 0),
    One(RGL_GREEN_SCALE, RGL_PIXEL_MODE_BIT, 1),
    One(RGL_GREEN_BIAS, RGL_PIXEL_MODE_BIT, 0),
    One(RGL_BLUE_SCALE, RGL_PIXEL_MODE_BIT, 1),
    One(RGL_BLUE_BIAS, RGL_PIXEL_MODE_BIT, 0),
    One(RGL_ALPHA_SCALE, RGL_PIXEL_MODE_BIT, 1),
    One(RGL_ALPHA_BIAS, RGL_PIXEL_MODE_BIT, 0),
    One(RGL_DEPTH_SCALE, RGL_PIXEL_MODE_BIT, 1),
    One(RGL_DEPTH_BIAS, RGL_PIXEL_MODE_BIT, 0),
    // Client state, which is not part of display lists
    Client(RGL_UNPACK_ALIGNMENT, Pixels, 4),
    Client(RGL_UNPACK_ROW_LENGTH, Pixels),
    Client(RGL_UNPACK_SKIP_ROWS, Pixels),
    Client(RGL_UNPACK_SKIP_PIXELS, Pixels),
    Client(RGL_UNPACK_SWAP_BYTES, Pixels),
    Client(RGL_UNPACK_LSB_FIRST, Pixels),
    Client(RGL_UNPACK_IMAGE_HEIGHT, Pixels),
    Client(RGL_UNPACK_SKIP_IMAGES, Pixels),
    Client(RGL_PACK_ALIGNMENT, Pixels, 4),
    Client(RGL_PACK_ROW_LENGTH, Pixels),
    Client(RGL_PACK_SKIP_ROWS, Pixels),
    Client(RGL_PACK_SKIP_PIXELS, Pixels),
    Client(RGL_PACK_SWAP_BYTES, Pixels),
    Client(RGL_PIXEL_PACK_BUFFER_BINDING, Pixels),
    Client(RGL_PIXEL_UNPACK_BUFFER_BINDING, Pixels),
    Client(RGL_ARRAY_BUFFER_BINDING, Arrays),
    Client(RGL_ELEMENT_ARRAY_BUFFER_BINDING, Arrays),
    Client(RGL_CLIENT_ACTIVE_TEXTURE, Arrays, RGL_TEXTURE0),
    // Bindings that no group saves
    Client(RGL_DRAW_FRAMEBUFFER_BINDING, 0),
    Client(RGL_READ_FRAMEBUFFER_BINDING, 0),
    Client(RGL_RENDERBUFFER_BINDING, 0),
    One(RGL_CURRENT_PROGRAM, 0, 0),
    // Limits
    One(RGL_MAX_TEXTURE_SIZE, 0, 4096),
    One(RGL_MAX_TEXTURE_BUFFER_SIZE, 0, 1 << 27),
    One(RGL_MAX_3D_TEXTURE_SIZE, 0, 512),
    One(RGL_MAX_TEXTURE_UNITS, 0, 8),
    One(RGL_MAX_SAMPLES, 0, 8),
    One(RGL_MAX_RENDERBUFFER_SIZE, 0, 4096),
    {RGL_MAX_VIEWPORT_DIMS, 0, false, false, 2, {4096, 4096}},
};

} // namespace

const StateVariable* FindStateVariable(GlEnum p_name) {
  const auto found = std::find_if(std::begin(Variables), std::end(Variables),
                                  [p_name](const StateVariable& p_variable) { return p_variable.name == p_name; });
  return found == std::end(Variables) ? nullptr : found;
}

} // namespace Vek::Chart::Testing::Recording
