#include "library/VolumeImage.h"

#include "library/private/io/TextArrayLoader.h"
#include "library/private/memory/HugePages.h"

#include <boost/make_shared.hpp>

#include <array>
#include <optional>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Library {

namespace {

#define VEK_CLASS "Vek::Chart::Library::VolumeImage"

namespace Signature {
constexpr const char* Initialize = "void __cdecl " VEK_CLASS "::Initialize(enum " VEK_CLASS
                                   "::VoxelFormat,unsigned __int64,unsigned __int64,unsigned __int64)";
constexpr const char* LoadFromFile = "class boost::shared_ptr<class " VEK_CLASS "> __cdecl " VEK_CLASS
                                     "::LoadFromFile(const class vekfile::filepath &,enum " VEK_CLASS "::FileType)";
constexpr const char* At = "unsigned char *__cdecl " VEK_CLASS "Data::At(unsigned __int64)";
constexpr const char* AtConst = "const unsigned char *__cdecl " VEK_CLASS "Data::At(unsigned __int64) const";
} // namespace Signature

#undef VEK_CLASS

constexpr std::size_t LargestVoxel = 16;

/// Zeros in place of a missing voxel; what callers wrote before is gone.
unsigned char* Nowhere() {
  alignas(float) thread_local std::array<unsigned char, LargestVoxel> nowhere;
  nowhere.fill(0);
  return nowhere.data();
}

/// p_a × p_b; throws when that is more than a vector of bytes holds.
std::uint64_t Product(std::uint64_t p_a, std::uint64_t p_b) {
  const std::uint64_t most = std::vector<unsigned char>().max_size();
  if (p_a != 0 && p_b > most / p_a)
    throw std::length_error("VolumeImage: a size of " + std::to_string(p_a) + " x " + std::to_string(p_b));
  return p_a * p_b;
}

bool HasVoxel(const VolumeImageData& p_data, std::uint64_t p_index, const char* p_signature) {
  const std::uint64_t voxels = p_data._voxelSizeBytes == 0 ? 0 : p_data._rawBytes.size() / p_data._voxelSizeBytes;
  return VEK_ENSURE_AT(p_index < voxels, "p_index*_voxelSizeBytes < _rawBytes.size()", p_signature,
                       {{}, 0, {}, p_index, voxels});
}

/// Calls the loader of the file type, which takes the source and a function that makes the volume.
template <class Source>
boost::shared_ptr<VolumeImage> Load(Source& p_source, VolumeImage::FileType p_type, Utility::Threads p_threads) {
  if (p_type != VolumeImage::TextArray) {
    vekdebug::detail where;
    where.value = p_type;
    VEK_SENTRY_AT(Signature::LoadFromFile, 302, where);
    VEK_ENSURE_AT(false, "loader", Signature::LoadFromFile, where);
    return {};
  }
  std::optional<Private::TextVolume> file = Private::LoadTextArray(p_source, p_threads);
  if (!file)
    return {};
  const auto volume = boost::make_shared<VolumeImage>();
  volume->Bytes() = std::move(file->voxels);
  volume->Initialize(VolumeImage::Byte1, file->sizes[0], file->sizes[1], file->sizes[2]);
  return volume;
}

} // namespace

unsigned char* VolumeImageData::At(std::uint64_t p_index) {
  return HasVoxel(*this, p_index, Signature::At) ? _rawBytes.data() + p_index * _voxelSizeBytes : Nowhere();
}

const unsigned char* VolumeImageData::At(std::uint64_t p_index) const {
  return HasVoxel(*this, p_index, Signature::AtConst) ? _rawBytes.data() + p_index * _voxelSizeBytes : Nowhere();
}

VolumeImage::VolumeImage() = default;

VolumeImage::VolumeImage(VoxelFormat p_format, std::uint64_t p_size0, std::uint64_t p_size1, std::uint64_t p_size2) {
  Initialize(p_format, p_size0, p_size1, p_size2);
}

void VolumeImage::Initialize(VoxelFormat p_format, std::uint64_t p_size0, std::uint64_t p_size1,
                             std::uint64_t p_size2) {
  struct Layout {
    std::int32_t channels;
    DataPrecision precision;
  };
  static constexpr Layout Layouts[] = {
      {1, Precision32F}, // Float1
      {1, Precision8},   // Byte1
      {0, Precision8},   // NoFormat
      {4, Precision32F}, // Float4
      {4, Precision8},   // Byte4
  };
  const bool known = p_format >= Float1 && p_format <= Byte4 && p_format != NoFormat;
  const Layout layout = Layouts[known ? p_format : NoFormat];
  const std::uint64_t componentBytes = layout.precision == Precision32F ? sizeof(float) : 1;
  const std::uint64_t voxelSizeBytes = static_cast<std::uint64_t>(layout.channels) * componentBytes;
  const std::uint64_t slice = Product(p_size0, p_size1);
  const std::uint64_t count = Product(slice, p_size2);
  const std::size_t bytes = static_cast<std::size_t>(Product(count, voxelSizeBytes));
  Private::ReserveLarge(_data._rawBytes, bytes); // may throw; nothing after it does, but a sink

  if (known) {
    _channels = layout.channels;
    _precision = layout.precision;
  } else {
    vekdebug::detail where;
    where.value = p_format;
    VEK_SENTRY_AT(Signature::Initialize, 280, where);
  }
  VEK_ENSURE(_channels.Defined(), Signature::Initialize);
  VEK_ENSURE(_precision.Defined(), Signature::Initialize);

  _data._rawBytes.resize(bytes);
  _data._voxelSizeBytes = voxelSizeBytes;
  _data._size0 = p_size0;
  _data._size1 = p_size1;
  _data._size2 = p_size2;
  _data._slice = slice;
  _data._count = count;
}

void VolumeImage::Clear() {
  _data = VolumeImageData();
}

boost::shared_ptr<VolumeImage> VolumeImage::LoadFromFile(const vekfile::filepath& p_path, FileType p_type) {
  return Load(p_path, p_type, Utility::Threads());
}

boost::shared_ptr<VolumeImage> VolumeImage::LoadFromStream(std::istream& p_stream, FileType p_type) {
  return Load(p_stream, p_type, Utility::Threads());
}

boost::shared_ptr<VolumeImage> VolumeImage::LoadFromFile(const vekfile::filepath& p_path, FileType p_type,
                                                         Utility::Threads p_threads) {
  return Load(p_path, p_type, p_threads);
}

boost::shared_ptr<VolumeImage> VolumeImage::LoadFromStream(std::istream& p_stream, FileType p_type,
                                                           Utility::Threads p_threads) {
  return Load(p_stream, p_type, p_threads);
}

} // namespace Vek::Chart::Library
