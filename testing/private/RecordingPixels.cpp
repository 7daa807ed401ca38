// The recorder's textures and pixel transfers.

#include "testing/private/RecordingModel.h"
#include "testing/private/RecordingText.h"

#include <algorithm>
#include <cstring>

namespace Vek::Chart::Testing::Recording {
namespace {

std::size_t Components(GlEnum p_format) {
  switch (p_format) {
  case RGL_RED:
  case RGL_ALPHA:
  case RGL_LUMINANCE:
  case RGL_DEPTH_COMPONENT:
    return 1;
  case RGL_RG:
  case RGL_LUMINANCE_ALPHA:
    return 2;
  case RGL_RGB:
    return 3;
  case RGL_RGBA:
  case RGL_BGRA:
    return 4;
  default:
    return 0;
  }
}

/// The state variable that holds what is bound to a texture target.
GlEnum BindingOf(GlEnum p_target) {
  switch (p_target) {
  case RGL_TEXTURE_1D:
    return RGL_TEXTURE_BINDING_1D;
  case RGL_TEXTURE_2D:
    return RGL_TEXTURE_BINDING_2D;
  case RGL_TEXTURE_3D:
    return RGL_TEXTURE_BINDING_3D;
  case RGL_TEXTURE_BUFFER:
    return RGL_TEXTURE_BINDING_BUFFER;
  default:
    return 0;
  }
}

} // namespace

std::size_t ScalarBytes(GlEnum p_type) {
  switch (p_type) {
  case RGL_BYTE:
  case RGL_UNSIGNED_BYTE:
    return 1;
  case RGL_SHORT:
  case RGL_UNSIGNED_SHORT:
  case RGL_HALF_FLOAT:
    return 2;
  case RGL_INT:
  case RGL_UNSIGNED_INT:
  case RGL_FLOAT:
  case RGL_UNSIGNED_INT_8_8_8_8_REV:
  case RGL_UNSIGNED_INT_24_8:
    return 4;
  case RGL_DOUBLE:
    return 8;
  default:
    return 0;
  }
}

std::size_t PixelBytes(GlEnum p_format, GlEnum p_type) {
  if (p_type == RGL_UNSIGNED_INT_24_8 || p_format == RGL_DEPTH_STENCIL)
    return p_type == RGL_UNSIGNED_INT_24_8 && p_format == RGL_DEPTH_STENCIL ? 4 : 0;
  if (p_type == RGL_UNSIGNED_INT_8_8_8_8_REV)
    return Components(p_format) == 4 ? 4 : 0;
  return p_type == RGL_DOUBLE ? 0 : Components(p_format) * ScalarBytes(p_type);
}

// Names

void Model::DeleteTextures(int p_count, const unsigned int* p_names) {
  for (int i = 0; i < p_count; ++i) {
    if (!Remove("DeleteTextures", "texture", p_names[i]))
      continue;
    textures.erase(p_names[i]);
    for (const GlEnum binding :
         {RGL_TEXTURE_BINDING_1D, RGL_TEXTURE_BINDING_2D, RGL_TEXTURE_BINDING_3D, RGL_TEXTURE_BINDING_BUFFER})
      Unbind(binding, p_names[i]);
  }
}

void Model::BindTexture(GlEnum p_target, unsigned int p_name) {
  const GlEnum binding = BindingOf(p_target);
  if (binding == 0)
    return Complain("BindTexture: " + Name(p_target) + " is no target");
  if (p_name != 0) {
    if (!Need("BindTexture", "texture", p_name))
      return;
    RecordingGl::TextureObject& texture = textures[p_name];
    if (texture.target != 0 && texture.target != p_target)
      return Complain("BindTexture: texture " + std::to_string(p_name) + " was bound to " + Name(texture.target) +
                      " before");
    texture.target = p_target;
  }
  Set(binding, {double(p_name)});
}

RecordingGl::TextureObject* Model::BoundTexture(const std::string& p_call, GlEnum p_target) {
  const auto found = textures.find(static_cast<unsigned int>(One(BindingOf(p_target))));
  if (found != textures.end())
    return &found->second;
  Complain(p_call + ": no texture is bound to " + Name(p_target));
  return nullptr;
}

void Model::TexParameteri(GlEnum p_target, GlEnum p_name, int p_value) {
  if (RecordingGl::TextureObject* const texture = BoundTexture("TexParameteri", p_target))
    texture->parameters[p_name] = p_value;
}

// Pixels in memory

std::optional<Model::PixelLayout> Model::Layout(const std::string& p_call, bool p_unpack, int p_width, int p_height,
                                                int p_depth, GlEnum p_format, GlEnum p_type) {
  const std::size_t pixel = PixelBytes(p_format, p_type);
  if (pixel == 0) {
    Complain(p_call + ": no pixels of " + Name(p_format) + " and " + Name(p_type));
    return std::nullopt;
  }
  if (p_width < 0 || p_height < 0 || p_depth < 0) {
    Complain(p_call + ": a negative size");
    return std::nullopt;
  }
  const auto stored = [this](GlEnum p_name) { return static_cast<std::size_t>(One(p_name)); };
  const std::size_t rowLength = stored(p_unpack ? RGL_UNPACK_ROW_LENGTH : RGL_PACK_ROW_LENGTH);
  const std::size_t imageHeight = p_unpack ? stored(RGL_UNPACK_IMAGE_HEIGHT) : 0;
  const std::size_t alignment = stored(p_unpack ? RGL_UNPACK_ALIGNMENT : RGL_PACK_ALIGNMENT);
  const std::size_t skipRows = stored(p_unpack ? RGL_UNPACK_SKIP_ROWS : RGL_PACK_SKIP_ROWS);
  const std::size_t skipPixels = stored(p_unpack ? RGL_UNPACK_SKIP_PIXELS : RGL_PACK_SKIP_PIXELS);
  const std::size_t skipImages = p_call == "TexImage3D" ? stored(RGL_UNPACK_SKIP_IMAGES) : 0;
  const auto width = static_cast<std::size_t>(p_width);
  const auto height = static_cast<std::size_t>(p_height);
  const auto depth = static_cast<std::size_t>(p_depth);
  PixelLayout layout;
  layout.rowBytes = width * pixel;
  layout.rowStride = ((rowLength == 0 ? width : rowLength) * pixel + alignment - 1) / alignment * alignment;
  layout.imageStride = (imageHeight == 0 ? height : imageHeight) * layout.rowStride;
  layout.first = skipImages * layout.imageStride + skipRows * layout.rowStride + skipPixels * pixel;
  const bool empty = width == 0 || height == 0 || depth == 0;
  layout.end =
      empty ? 0 : layout.first + (depth - 1) * layout.imageStride + (height - 1) * layout.rowStride + layout.rowBytes;
  return layout;
}

unsigned char* Model::PixelMemory(const std::string& p_call, GlEnum p_binding, const void* p_pointer,
                                  std::size_t p_end) {
  const auto name = static_cast<unsigned int>(One(p_binding));
  if (name == 0)
    return static_cast<unsigned char*>(const_cast<void*>(p_pointer));
  // With a pixel buffer bound, the pointer is an offset into it.
  std::vector<unsigned char>& bytes = buffers[name].bytes;
  const auto offset = reinterpret_cast<std::uintptr_t>(p_pointer);
  if (offset <= bytes.size() && p_end <= bytes.size() - offset)
    return bytes.data() + offset;
  Complain(p_call + ": " + std::to_string(p_end) + " bytes at " + std::to_string(offset) + " in a pixel buffer of " +
           std::to_string(bytes.size()));
  return nullptr;
}

// Texture images

void Model::TexImage2D(GlEnum p_target, int p_level, int p_internalFormat, int p_width, int p_height, int p_border,
                       GlEnum p_format, GlEnum p_type, const void* p_pixels) {
  TexImage("TexImage2D", p_target, p_level,
           {static_cast<GlEnum>(p_internalFormat), p_width, p_height, 1, p_format, p_type, {}}, p_border, p_pixels);
}

void Model::TexImage3D(GlEnum p_target, int p_level, int p_internalFormat, int p_width, int p_height, int p_depth,
                       int p_border, GlEnum p_format, GlEnum p_type, const void* p_pixels) {
  TexImage("TexImage3D", p_target, p_level,
           {static_cast<GlEnum>(p_internalFormat), p_width, p_height, p_depth, p_format, p_type, {}}, p_border,
           p_pixels);
}

void Model::TexBuffer(GlEnum p_target, GlEnum /*p_internalFormat*/, unsigned int p_buffer) {
  if (p_target != RGL_TEXTURE_BUFFER)
    return Complain("TexBuffer: " + Name(p_target) + " is no target");
  if (p_buffer == 0 || Need("TexBuffer", "buffer", p_buffer))
    BoundTexture("TexBuffer", p_target);
}

void Model::TexImage(const std::string& p_call, GlEnum p_target, int p_level, RecordingGl::TextureLevel p_image,
                     int p_border, const void* p_pixels) {
  const bool volume = p_call == "TexImage3D";
  const int limit =
      static_cast<int>(Query(volume ? RGL_MAX_3D_TEXTURE_SIZE : RGL_MAX_TEXTURE_SIZE).value_or(Values{0}).front());
  const bool fits = p_image.width <= limit && p_image.height <= limit && p_image.depth <= limit;
  RecordingGl::TextureObject* const texture = BoundTexture(p_call, p_target);
  const std::optional<PixelLayout> layout =
      Layout(p_call, true, p_image.width, p_image.height, p_image.depth, p_image.format, p_image.type);
  if (p_border != 0 || p_level < 0)
    Complain(p_call + ": a border or a negative level");
  if (!fits)
    Complain(p_call + ": larger than " + std::to_string(limit));
  if (texture == nullptr || !layout || !fits)
    return;
  const bool isDepth = p_image.format == RGL_DEPTH_COMPONENT || p_image.format == RGL_DEPTH_STENCIL;
  const std::set<GlEnum> depthFormats = {RGL_DEPTH_COMPONENT,    RGL_DEPTH_COMPONENT16, RGL_DEPTH_COMPONENT24,
                                         RGL_DEPTH_COMPONENT32F, RGL_DEPTH24_STENCIL8,  RGL_DEPTH_STENCIL};
  if (isDepth != (depthFormats.count(p_image.internalFormat) != 0))
    Complain(p_call + ": " + Name(p_image.format) + " does not go with " + Name(p_image.internalFormat));
  const unsigned char* source = PixelMemory(p_call, RGL_PIXEL_UNPACK_BUFFER_BINDING, p_pixels, layout->end);
  if (source != nullptr && layout->end != 0) {
    source += layout->first;
    for (int z = 0; z < p_image.depth; ++z)
      for (int y = 0; y < p_image.height; ++y) {
        const unsigned char* const row = source + static_cast<std::size_t>(z) * layout->imageStride +
                                         static_cast<std::size_t>(y) * layout->rowStride;
        p_image.pixels.insert(p_image.pixels.end(), row, row + layout->rowBytes);
      }
  }
  texture->levels[p_level] = std::move(p_image);
}

void Model::GetTexLevelParameteriv(GlEnum p_target, int p_level, GlEnum p_name, int* p_values) {
  const RecordingGl::TextureObject* const texture = BoundTexture("GetTexLevelParameteriv", p_target);
  if (p_name != RGL_TEXTURE_WIDTH)
    return Complain("GetTexLevelParameteriv: the recorder has no value for " + Name(p_name));
  const bool exists = texture != nullptr && texture->levels.count(p_level) != 0;
  *p_values = exists ? texture->levels.at(p_level).width : 0;
}

void Model::GenerateMipmap(GlEnum p_target) {
  const RecordingGl::TextureObject* const texture = BoundTexture("GenerateMipmap", p_target);
  if (texture != nullptr && texture->levels.count(0) == 0)
    Complain("GenerateMipmap: the texture has no level 0");
}

void Model::ReadPixels(int p_x, int p_y, int p_width, int p_height, GlEnum p_format, GlEnum p_type, void* p_pixels) {
  const std::optional<PixelLayout> layout = Layout("ReadPixels", false, p_width, p_height, 1, p_format, p_type);
  if (!layout)
    return;
  unsigned char* const to = PixelMemory("ReadPixels", RGL_PIXEL_PACK_BUFFER_BINDING, p_pixels, layout->end);
  if (to == nullptr)
    return Complain("ReadPixels: nowhere to write to");
  const bool bytes = p_type == RGL_UNSIGNED_BYTE || p_type == RGL_UNSIGNED_INT_8_8_8_8_REV; // little-endian machines
  const bool swapped = p_format == RGL_BGRA;
  for (int y = 0; y < p_height; ++y) {
    unsigned char* const row = to + layout->first + static_cast<std::size_t>(y) * layout->rowStride;
    std::memset(row, 0, layout->rowBytes);
    for (int x = 0; bytes && (swapped || p_format == RGL_RGBA) && x < p_width; ++x)
      if (const auto found = pixels.find({p_x + x, p_y + y}); found != pixels.end())
        for (std::size_t i = 0; i < 4; ++i)
          row[static_cast<std::size_t>(x) * 4 + i] = found->second[swapped && i < 3 ? 2 - i : i];
  }
}

} // namespace Vek::Chart::Testing::Recording
