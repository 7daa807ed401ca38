#pragma once

#include "library/Export.h"
#include "platform/debug/Check.h"
#include "platform/debug/TypeName.h"
#include "platform/file/FilePath.h"
#include "platform/types/Property.h"
#include "platform/utility/Threads.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <type_traits>
#include <vector>

namespace Vek::Chart::Library {

/// The voxels of a volume: voxel (x, y, z) has the index x + size0 × y + slice × z, so size 0 varies fastest.
///
/// \ingroup images
struct VEK_LIBRARY_API VolumeImageData {
  std::vector<unsigned char> _rawBytes; ///< the voxels, one after the other
  std::uint64_t _voxelSizeBytes = 0;    ///< bytes per voxel: 1, 4 or 16
  std::uint64_t _size0 = 0;             ///< voxels along the axis that varies fastest
  std::uint64_t _size1 = 0;             ///< voxels along the second axis
  std::uint64_t _size2 = 0;             ///< voxels along the slowest axis
  std::uint64_t _slice = 0;             ///< size 0 × size 1
  std::uint64_t _count = 0;             ///< size 0 × size 1 × size 2

  /// The first byte of a voxel. A missing voxel is reported ("p_index*_voxelSizeBytes < _rawBytes.size()"); the result
  /// then points to 16 scratch bytes of 0.
  unsigned char* At(std::uint64_t p_index);
  /// As above, for reading.
  const unsigned char* At(std::uint64_t p_index) const;
};

/// A grid of voxels in memory, the source of a 3-D texture: raw bytes in one of four formats.
///
/// A value class: a copy has its own voxels. No GPU state.
///
/// Errors are reported through the logger, and the operation continues as far as possible. Extents whose product
/// exceeds any memory throw std::length_error; memory that is not available throws std::bad_alloc. Both change nothing.
///
/// \snippet ImageSnippets.cpp VolumeImage
/// \image html volume.jpg
/// \ingroup images
class VEK_LIBRARY_API VolumeImage {
public:
  /// Channels × component type of a voxel.
  enum VoxelFormat : std::int32_t {
    Float1 = 0,   ///< 4 bytes
    Byte1 = 1,    ///< 1 byte
    NoFormat = 2, ///< no voxels; reported when used
    Float4 = 3,   ///< 16 bytes
    Byte4 = 4,    ///< 4 bytes
  };
  /// The type of a component.
  enum DataPrecision : std::int32_t {
    Precision8 = 0,   ///< 8 bits
    Precision32F = 4, ///< 32-bit float
  };
  /// File formats.
  enum FileType : std::int32_t {
    TextArray = 0, ///< text; see LoadFromFile
  };

  /// A view of the components of one voxel. T matches the precision of the volume: char or float.
  template <class T>
  class TypeArray {
    static_assert(std::is_same_v<T, char> || std::is_same_v<T, float>);

  public:
    /// The `p_channels` components from `p_voxel` on, which must outlive the view.
    TypeArray(unsigned char* p_voxel, std::size_t p_channels)
        : _voxel(p_voxel)
        , _channels(p_channels) {}

    /// Component p_channel. A missing one is reported ("p_channel < _channels") and refers to a scratch value of 0.
    T& operator[](std::size_t p_channel) const {
      if (p_channel < _channels)
        return reinterpret_cast<T*>(_voxel)[p_channel];
      const std::string type = vekdebug::TypeName<T>::Text();
      vekdebug::fail_ensure("p_channel < _channels", type + " &__cdecl Vek::Chart::Library::VolumeImage::TypeArray<" +
                                                         type + ">::operator [](const unsigned __int64)");
      thread_local T nowhere;
      return nowhere = T();
    }

  private:
    unsigned char* _voxel;
    std::size_t _channels;
  };

  /// No voxels; channels and precision are not defined.
  VolumeImage();
  /// As the default constructor, followed by Initialize.
  VolumeImage(VoxelFormat p_format, std::uint64_t p_size0, std::uint64_t p_size1, std::uint64_t p_size2);

  /// Sets the extents, and channels and precision from the format. Old bytes keep their offsets, new bytes are 0.
  /// NoFormat and unknown numbers are reported as a sentry ("@line280") and give no bytes; channels and precision then
  /// stay as they are, which is reported too if they are not defined.
  void Initialize(VoxelFormat p_format, std::uint64_t p_size0, std::uint64_t p_size1, std::uint64_t p_size2);
  /// Removes the voxels and sets the extents to 0. Channels and precision stay.
  void Clear();
  /// Whether there are any bytes.
  bool Valid() const { return !_data._rawBytes.empty(); }

  ///@{
  /// All bytes, in voxel order. Resizing the vector does not change the extents.
  std::vector<unsigned char>& Bytes() { return _data._rawBytes; }
  const std::vector<unsigned char>& Bytes() const { return _data._rawBytes; }
  ///@}
  ///@{
  /// The voxels and their extents.
  VolumeImageData& Data() { return _data; }
  const VolumeImageData& Data() const { return _data; }
  ///@}

  /// The number of components of a voxel.
  const Types::Property<std::int32_t>& Channels() const { return _channels; }
  /// The type of a component.
  const Types::Property<DataPrecision>& Precision() const { return _precision; }
  /// Always 0; Channels and Precision describe the layout.
  const Types::Property<VoxelFormat>& Format() const { return _format; }

  /// Size 0, which varies fastest.
  int Height() const { return static_cast<int>(_data._size0); }
  /// Size 1.
  int Width() const { return static_cast<int>(_data._size1); }
  /// Size 2.
  int Depth() const { return static_cast<int>(_data._size2); }

  /// Reads a volume from a file.
  ///
  /// A TextArray file is text separated by white space: the word "TextArray", four integers s0, ch, s1, s2, and ch × s0
  /// × s1 × s2 numbers, as `std::istream >> float` reads them under the classic locale. The components of a voxel are
  /// adjacent; s0 varies fastest, s2 slowest. The result has one channel of 8 bits: value / maximum × 255, truncated;
  /// negative values give 0. The maximum is taken over all channels; only the first channel is kept.
  ///
  /// Errors. These are reported with the file, line and number, and loading continues:
  /// - an invalid path: "p_filename.valid()"; a missing file: "vekfile::fileexists(p_filename)"
  /// - another first word: "header == "TextArray""
  /// - a number that is unreadable, missing or longer than 4 MiB: "file", up to a thousand times. It counts as 0, or as
  ///   the largest float where it is too large; all numbers after it are 0.
  /// - more than one channel: "channels == 1"
  ///
  /// The result is empty after these reports:
  /// - "@line161": a size is missing, below 1, or not within the first 64 KiB
  /// - "@line217": the product of the sizes exceeds any memory
  /// - "@line221": more than 2^26 numbers are claimed, and the file is too short for them
  /// - "@line302" and "loader": another file type
  static boost::shared_ptr<VolumeImage> LoadFromFile(const vekfile::filepath& p_path, FileType p_type);
  /// LoadFromFile for a stream.
  static boost::shared_ptr<VolumeImage> LoadFromStream(std::istream& p_stream, FileType p_type);
  ///@{
  /// As above, on several threads, with the same voxels and reports. Files below 1 MiB start none.
  static boost::shared_ptr<VolumeImage> LoadFromFile(const vekfile::filepath& p_path, FileType p_type,
                                                     Utility::Threads p_threads);
  static boost::shared_ptr<VolumeImage> LoadFromStream(std::istream& p_stream, FileType p_type,
                                                       Utility::Threads p_threads);
  ///@}

private:
  Types::Property<VoxelFormat> _format;
  Types::Property<DataPrecision> _precision;
  Types::Property<std::int32_t> _channels;
  VolumeImageData _data;
};

} // namespace Vek::Chart::Library
