#include "platform/ogl/Rgl.h"

#include "platform/debug/Check.h"
#include "platform/ogl/BufferPool.h"
#include "platform/ogl/GlDefaults.h"
#include "platform/ogl/Guard.h"
#include "platform/ogl/private/ContextStore.h"
#include "platform/ogl/private/QuietReport.h"
#include "platform/types/ColorChannels.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <charconv>
#include <limits>
#include <set>
#include <string_view>
#include <utility>

namespace Vek::Chart::Ogl {
namespace {

#define VEK_GUARD "class boost::shared_ptr<void> __cdecl Vek::Chart::Ogl::Rgl::"
#define VEK_HANDLE(p_class) "class boost::shared_ptr<class Vek::Chart::Ogl::" p_class "> __cdecl Vek::Chart::Ogl::Rgl::"
namespace Signature {
constexpr const char* ScopeEnd = "void __cdecl Vek::Chart::Ogl::Rgl::ScopeEnd(void)";
constexpr const char* PixelProjection = VEK_GUARD "PixelProjection(const class Vek::Chart::Types::Viewport<0> &) const";
constexpr const char* GenTexture = VEK_HANDLE("Texture") "GenTexture(void) const";
constexpr const char* Bind = "void __cdecl Vek::Chart::Ogl::Rgl::Bind(const class boost::shared_ptr<class "
                             "Vek::Chart::Ogl::Texture> &,enum Vek::Chart::Ogl::Rgl::TexSamplerType) const";
constexpr const char* GenDisplayList = VEK_HANDLE("DisplayList") "GenDisplayList(void) const";
constexpr const char* GenFrameBufferObject = VEK_HANDLE("FrameBufferObject") "GenFrameBufferObject(void) const";
constexpr const char* GenRenderBuffer = VEK_HANDLE("RenderBuffer") "GenRenderBuffer(void) const";
constexpr const char* BindScope =
    VEK_GUARD "BindScope(const class boost::shared_ptr<class Vek::Chart::Ogl::FrameBufferObject> &) const";
} // namespace Signature
#undef VEK_GUARD
#undef VEK_HANDLE

/// Functions that do nothing and return 0.
GlFunctions MakeInertGl() {
  GlFunctions table;
#define VEK_GL(p_result, p_name, p_parameters, p_arguments)                                                            \
  table.p_name = [] p_parameters -> p_result { return GlDefaults().p_name p_arguments; };
#include "platform/ogl/GlFunctionList.h"
  return table;
}

/// A copy of a table with the owner of its functions.
struct Table {
  GlFunctions functions;
  boost::shared_ptr<const GlFunctions> source;
};

/// A copy in which missing functions, whose names are reported, do nothing.
boost::shared_ptr<GlFunctions> CompleteCopy(const boost::shared_ptr<const GlFunctions>& p_gl) {
  const auto table = boost::make_shared<Table>();
  if (p_gl)
    *table = {*p_gl, p_gl};
  const GlFunctions inert = MakeInertGl();
  std::string missing;
#define VEK_FUNCTION(p_prefix, p_name)                                                                                 \
  if (table->functions.p_name == nullptr) {                                                                            \
    missing += " " p_prefix #p_name;                                                                                   \
    table->functions.p_name = inert.p_name;                                                                            \
  }
#define VEK_GL(p_result, p_name, p_parameters, p_arguments) VEK_FUNCTION("gl", p_name)
#define VEK_GLU(p_result, p_name, p_parameters, p_arguments) VEK_FUNCTION("glu", p_name)
#include "platform/ogl/GlFunctionList.h"
#undef VEK_FUNCTION
  if (!missing.empty())
    vekdebug::warn("Rgl: the function table lacks" + missing);
  return {table, &table->functions};
}

} // namespace

Rgl::Rgl(boost::shared_ptr<const GlFunctions> p_gl, boost::function<void()> p_makeCurrent,
         boost::function<void()> p_release)
    : _table(CompleteCopy(p_gl))
    , _gl(_table)
    , _makeCurrent(std::move(p_makeCurrent))
    , _release(std::move(p_release))
    , _bufferPool(std::make_unique<BufferPool>(_gl))
    , _store(boost::make_shared<ContextStore>()) {}

Rgl::~Rgl() {
  const std::size_t count = _store->Size();
  if (count == 0)
    return;
  ForgetValues();
  ReportQuietly([count] {
    vekdebug::warn("Rgl: " + std::to_string(count) +
                   " values of PerContext were not released before the last handle of their context ended; their GL "
                   "names are forgotten");
  });
}

void Rgl::FreeValues() {
  _store->FreeAll();
}

void Rgl::ForgetValues() {
  const GlFunctions functions = *_table;
  *_table = MakeInertGl();
  _table->DeleteQuadric = functions.DeleteQuadric; // quadrics are memory, which no context owns
  _store->FreeAll();
  *_table = functions; // for other objects, which their holders delete
}

void Rgl::EndContext(const GlFunctions& p_functions) {
  ForgetValues();
  *_table = p_functions;
}

Utility::Unscoped<Rgl> Rgl::OnCurrentContext() {
  const boost::shared_ptr<const GlFunctions> native(&NativeGl(), [](const GlFunctions*) {});
  return Utility::Unscoped<Rgl>(boost::make_shared<Rgl>(native));
}

void Rgl::ScopeBegin() {
  if (_scopeDepth == 0 && _makeCurrent)
    _makeCurrent(); // when it throws, no scope was opened
  if (++_scopeDepth == 1)
    _store->EnterScope();
}

void Rgl::ScopeEnd() {
  if (!VEK_ENSURE(_scopeDepth > 0, Signature::ScopeEnd))
    return;
  if (_scopeDepth == 1)
    _store->LeaveScope();
  if (--_scopeDepth == 0 && _release)
    _release();
}

void Rgl::Color(const QColor& p_color) const {
  const auto [red, green, blue, alpha] = Types::ColorChannels(p_color);
  Color4d(red, green, blue, alpha);
}

void Rgl::MultMatrix(const Types::Transformation& p_transformation) const {
  MultMatrixd(p_transformation.ColumnMajor().data());
}

boost::shared_ptr<void> Rgl::PixelProjection(const Types::Viewport<0>& p_viewport) const {
  // Reported first: the sink may throw, and nothing is pushed yet.
  const bool valid = VEK_ENSURE(p_viewport.width > 0 && p_viewport.height > 0, Signature::PixelProjection);
  int mode = 0;
  GetIntegerv(RGL_MATRIX_MODE, &mode);
  MatrixMode(RGL_PROJECTION);
  PushMatrix();
  LoadIdentity();
  if (valid)
    Ortho(0, p_viewport.width, 0, p_viewport.height, -1, 1);
  MatrixMode(RGL_MODELVIEW);
  PushMatrix();
  LoadIdentity();
  return MakeGuard([gl = _gl, mode] {
    gl->MatrixMode(RGL_PROJECTION);
    gl->PopMatrix();
    gl->MatrixMode(RGL_MODELVIEW);
    gl->PopMatrix();
    gl->MatrixMode(static_cast<GlEnum>(mode));
  });
}

namespace {

/// Truncates toward zero, limited to the range of int. NaN becomes 0.
int ToInt(float p_value) {
  constexpr float Limit = 2147483648.0F; // 2^31, one above the largest int
  if (p_value >= Limit)
    return std::numeric_limits<int>::max();
  if (p_value < -Limit)
    return std::numeric_limits<int>::min();
  return p_value != p_value ? 0 : static_cast<int>(p_value);
}

} // namespace

void Rgl::Viewport(const Types::Viewport<0>& p_viewport) const {
  Viewport(ToInt(p_viewport.x), ToInt(p_viewport.y), ToInt(p_viewport.width), ToInt(p_viewport.height));
}

void Rgl::ClearColor(const QColor& p_color) const {
  ClearColor(static_cast<float>(p_color.redF()), static_cast<float>(p_color.greenF()),
             static_cast<float>(p_color.blueF()), static_cast<float>(p_color.alphaF()));
}

boost::shared_ptr<void> Rgl::PushAttribScope(GlBitfield p_mask) const {
  PushAttrib(p_mask);
  return MakeGuard([gl = _gl] { gl->PopAttrib(); });
}

namespace {

/// A new object; none, which is reported, when GL has no name for it.
template <class Object>
boost::shared_ptr<Object> Generate(const boost::shared_ptr<const GlFunctions>& p_gl, const char* p_signature) {
  boost::shared_ptr<Object> object = boost::make_shared<Object>(p_gl);
  if (!VEK_ENSURE(object->Name() != 0, p_signature))
    return {};
  return object;
}

} // namespace

boost::shared_ptr<Texture> Rgl::GenTexture() const {
  return Generate<Texture>(_gl, Signature::GenTexture);
}

void Rgl::Bind(const boost::shared_ptr<Texture>& p_texture, TexSamplerType p_sampler) const {
  VEK_CHECK_POINTER(p_texture, Signature::Bind);
  BindTexture(p_sampler, p_texture ? p_texture->Name() : 0);
}

boost::shared_ptr<DisplayList> Rgl::GenDisplayList() const {
  return Generate<DisplayList>(_gl, Signature::GenDisplayList);
}

boost::shared_ptr<FrameBufferObject> Rgl::GenFrameBufferObject() const {
  return Generate<FrameBufferObject>(_gl, Signature::GenFrameBufferObject);
}

boost::shared_ptr<RenderBuffer> Rgl::GenRenderBuffer() const {
  return Generate<RenderBuffer>(_gl, Signature::GenRenderBuffer);
}

boost::shared_ptr<void> Rgl::BindScope(const boost::shared_ptr<FrameBufferObject>& p_target) const {
  // Name 0 is the frame buffer of the host's window.
  if (!VEK_CHECK_POINTER(p_target, Signature::BindScope) || !VEK_ENSURE(p_target->Name() != 0, Signature::BindScope))
    return MakeGuard([] {});
  int draw = 0;
  int read = 0;
  GetIntegerv(RGL_DRAW_FRAMEBUFFER_BINDING, &draw);
  GetIntegerv(RGL_READ_FRAMEBUFFER_BINDING, &read);
  BindFramebuffer(RGL_FRAMEBUFFER, p_target->Name());
  // The guard holds the target: a frame buffer that is deleted while bound would leave the default one bound.
  return MakeGuard([gl = _gl, target = p_target, draw, read] {
    gl->BindFramebuffer(draw == read ? RGL_FRAMEBUFFER : RGL_DRAW_FRAMEBUFFER, static_cast<unsigned int>(draw));
    if (draw != read)
      gl->BindFramebuffer(RGL_READ_FRAMEBUFFER, static_cast<unsigned int>(read));
  });
}

BufferPool& Rgl::GetBufferPool() const {
  return *_bufferPool;
}

namespace {

std::string_view TextOf(const unsigned char* p_text) {
  return p_text == nullptr ? std::string_view() : reinterpret_cast<const char*>(p_text);
}

/// Reads "major.minor[.patch]" at the start of the string; 0.0.0 if there is none.
Utility::VersionNo ParseVersion(std::string_view p_text) {
  int parts[3] = {0, 0, 0};
  const char* position = p_text.data();
  const char* const end = position + p_text.size();
  for (int& part : parts) {
    const std::from_chars_result result = std::from_chars(position, end, part);
    if (result.ec != std::errc() || result.ptr == end || *result.ptr != '.')
      break;
    position = result.ptr + 1;
  }
  return {parts[0], parts[1], parts[2]};
}

/// A feature needs a GL version, or all extensions of one of the two blank-separated lists.
struct FeatureRule {
  DeviceFeatures::Feature feature;
  Utility::VersionNo version;
  std::string_view extensions;
  std::string_view otherExtensions;
};

constexpr FeatureRule FeatureRules[] = {
    {DeviceFeatures::FeatureFrameBufferObject, {3, 0, 0}, "GL_ARB_framebuffer_object", ""},
    {DeviceFeatures::FeatureFloatTextures, {3, 0, 0}, "GL_ARB_texture_float", ""},
    {DeviceFeatures::FeatureInstancing, {3, 3, 0}, "GL_ARB_draw_instanced GL_ARB_instanced_arrays", ""},
    {DeviceFeatures::FeatureSrgbFrameBuffer, {3, 0, 0}, "GL_ARB_framebuffer_sRGB", "GL_EXT_framebuffer_sRGB"},
    {DeviceFeatures::FeatureMultisampleFrameBuffer, {3, 0, 0}, "GL_ARB_framebuffer_object", ""},
    {DeviceFeatures::FeatureVolumeTextures, {1, 2, 0}, "GL_EXT_texture3D", ""},
};

std::set<std::string_view> Words(std::string_view p_text) {
  std::set<std::string_view> words;
  while (!p_text.empty()) {
    const std::size_t length = std::min(p_text.find(' '), p_text.size());
    if (length != 0)
      words.insert(p_text.substr(0, length));
    p_text.remove_prefix(std::min(length + 1, p_text.size()));
  }
  return words;
}

bool ContainsAll(const std::set<std::string_view>& p_words, std::string_view p_wanted) {
  for (const std::string_view word : Words(p_wanted))
    if (p_words.count(word) == 0)
      return false;
  return !p_wanted.empty();
}

} // namespace

Utility::VersionNo Rgl::GlVersion() const {
  return ParseVersion(TextOf(GetString(RGL_VERSION)));
}

const DeviceFeatures& Rgl::Features() const {
  if (_features)
    return *_features;
  const unsigned char* const versionText = GetString(RGL_VERSION);
  if (versionText == nullptr) { // perhaps no context is current: not kept, so that the next call asks again
    static const DeviceFeatures None;
    return None;
  }
  const Utility::VersionNo version = ParseVersion(TextOf(versionText));
  // Newer contexts have all features in their core, and core profiles do not list their extensions.
  const std::set<std::string_view> extensions =
      version < Utility::VersionNo(3, 3, 0) ? Words(TextOf(GetString(RGL_EXTENSIONS))) : std::set<std::string_view>();
  std::set<DeviceFeatures::Feature> supported;
  for (const FeatureRule& rule : FeatureRules)
    if (version >= rule.version || ContainsAll(extensions, rule.extensions) ||
        ContainsAll(extensions, rule.otherExtensions))
      supported.insert(rule.feature);
  _features = std::make_unique<const DeviceFeatures>(std::move(supported));
  return *_features;
}

int Rgl::GetMaxTextureSize() const {
  int size = 0;
  GetIntegerv(RGL_MAX_TEXTURE_SIZE, &size);
  return size;
}

namespace {

std::string ErrorName(GlEnum p_error) {
  switch (p_error) {
  case RGL_INVALID_ENUM:
    return "GL_INVALID_ENUM";
  case RGL_INVALID_VALUE:
    return "GL_INVALID_VALUE";
  case RGL_INVALID_OPERATION:
    return "GL_INVALID_OPERATION";
  case RGL_STACK_OVERFLOW:
    return "GL_STACK_OVERFLOW";
  case RGL_STACK_UNDERFLOW:
    return "GL_STACK_UNDERFLOW";
  case RGL_OUT_OF_MEMORY:
    return "GL_OUT_OF_MEMORY";
  case RGL_INVALID_FRAMEBUFFER_OPERATION:
    return "GL_INVALID_FRAMEBUFFER_OPERATION";
  default:
    return "GL error " + std::to_string(p_error);
  }
}

} // namespace

bool Rgl::CheckError(const std::string& p_location) const {
  // A context has few error flags, but a lost context returns errors without end.
  constexpr int MostErrors = 32;
  for (int count = 0; count < MostErrors; ++count) {
    const GlEnum error = GetError();
    if (error == RGL_NO_ERROR)
      return count == 0;
    vekdebug::warn(ErrorName(error) + " - " + p_location);
  }
  return false;
}

} // namespace Vek::Chart::Ogl
