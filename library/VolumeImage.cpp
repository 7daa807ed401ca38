#include "library/VolumeImage.h"

#include "library/private/memory/HugePages.h"
#include "library/private/io/TextArrayLoader.h"

#include <array>
#include <stdexcept>

namespace Vek::Chart::Library {

namespace {

const char* const InitializeSignature =
    "void __cdecl Vek::Chart::Library::VolumeImage::Initialize(enum Vek::Chart::Library::VolumeImage::VoxelFormat,"
    "unsigned __int64,unsigned __int64,unsigned __int64)";
const char* const LoadFromFileSignature =
    "class boost::shared_ptr<class Vek::Chart::Library::VolumeImage> __cdecl "
    "Vek::Chart::Library::VolumeImage::LoadFromFile(const class vekfile::filepath &,"
    "enum Vek::Chart::Library::VolumeImage::FileType)";

constexpr std::size_t LargestVoxel = 16;

/// What a voxel that is not there reads as; a new one for each that asks for it.
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

/// The result for a file type without a loader.
boost::shared_ptr<VolumeImage> RefuseFileType() {
  VEK_SENTRY(LoadFromFileSignature, 302);
  VEK_ENSURE_TEXT(false, "loader", LoadFromFileSignature);
  return {};
}

} // namespace

unsigned char* VolumeImageData::At(std::uint64_t p_index) {
  const bool there = _voxelSizeBytes != 0 && p_index < _rawBytes.size() / _voxelSizeBytes;
  if (VEK_ENSURE_TEXT(there, "p_index*_voxelSizeBytes < _rawBytes.size()",
                      "unsigned char *__cdecl Vek::Chart::Library::VolumeImageData::At(unsigned __int64)"))
    return _rawBytes.data() + p_index * _voxelSizeBytes;
  return Nowhere();
}

const unsigned char* VolumeImageData::At(std::uint64_t p_index) const {
  const bool there = _voxelSizeBytes != 0 && p_index < _rawBytes.size() / _voxelSizeBytes;
  if (VEK_ENSURE_TEXT(there, "p_index*_voxelSizeBytes < _rawBytes.size()",
                      "const unsigned char *__cdecl Vek::Chart::Library::VolumeImageData::At(unsigned __int64) const"))
    return _rawBytes.data() + p_index * _voxelSizeBytes;
  return Nowhere();
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

  if (known) {
    _channels = layout.channels;
    _precision = layout.precision;
  } else {
    VEK_SENTRY(InitializeSignature, 280);
  }
  VEK_ENSURE(_channels.Defined(), InitializeSignature);
  VEK_ENSURE(_precision.Defined(), InitializeSignature);

  Private::ReserveLarge(_data._rawBytes, bytes);
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
  return p_type == TextArray ? Private::LoadTextArray(p_path) : RefuseFileType();
}

boost::shared_ptr<VolumeImage> VolumeImage::LoadFromStream(std::istream& p_stream, FileType p_type) {
  return p_type == TextArray ? Private::LoadTextArray(p_stream) : RefuseFileType();
}

} // namespace Vek::Chart::Library
