#pragma once

#include "library/Export.h"
#include "platform/debug/Check.h"
#include "platform/debug/TypeName.h"
#include "platform/file/FilePath.h"
#include "platform/types/Property.h"

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
  std::uint64_t _voxelSizeBytes = 0;    ///< bytes a voxel: 1, 4 or 16
  std::uint64_t _size0 = 0;             ///< voxels along the axis that varies fastest
  std::uint64_t _size1 = 0;             ///< voxels along the second axis
  std::uint64_t _size2 = 0;             ///< voxels along the slowest axis
  std::uint64_t _slice = 0;             ///< size 0 × size 1
  std::uint64_t _count = 0;             ///< size 0 × size 1 × size 2

  /// The first byte of a voxel. A voxel that is not there is reported ("p_index*_voxelSizeBytes < _rawBytes.size()");
  /// 16 bytes of 0 stand for it, and what is written there is lost.
  unsigned char* At(std::uint64_t p_index);
  /// As above, for reading.
  const unsigned char* At(std::uint64_t p_index) const;
};

/// A grid of voxels in memory, ready to become a 3-D texture: raw bytes in one of four formats.
///
/// A value class: a copy has voxels of its own. No GPU state.
///
/// Errors are reported through the logger, and what was asked for goes on as far as it can. Extents whose product is
/// more than memory can hold throw std::length_error and change nothing.
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
    NoFormat = 2, ///< no voxels; reported when it is used
    Float4 = 3,   ///< 16 bytes
    Byte4 = 4,    ///< 4 bytes
  };
  /// The type of a component.
  enum DataPrecision : std::int32_t {
    Precision8 = 0,   ///< 8 bits
    Precision32F = 4, ///< 32-bit float
  };
  /// What a file is written in.
  enum FileType : std::int32_t {
    TextArray = 0, ///< text; see LoadFromFile
  };

  /// A view of the components of one voxel. T is the type that the volume's precision names: char or float.
  template <class T>
  class TypeArray {
    static_assert(std::is_same_v<T, char> || std::is_same_v<T, float>);

  public:
    /// The `p_channels` components from `p_voxel` on, which must outlive the view.
    TypeArray(unsigned char* p_voxel, std::size_t p_channels)
        : _voxel(p_voxel)
        , _channels(p_channels) {}

    /// Component p_channel. One that is not there is reported ("p_channel < _channels"); it reads as 0, and what is
    /// written there is lost.
    T& operator[](std::size_t p_channel) const {
      if (p_channel < _channels)
        return reinterpret_cast<T*>(_voxel)[p_channel];
      const std::string type = vekdebug::TypeName<T>::text();
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

  /// Sets channels and precision by the format, and the extents. Bytes that were there before stay where they are, new
  /// ones are 0. NoFormat, and a number that is no format, are reported as code that must not be reached; there are no
  /// bytes then, and channels and precision stay as they were, which is reported as well if they were never defined.
  void Initialize(VoxelFormat p_format, std::uint64_t p_size0, std::uint64_t p_size1, std::uint64_t p_size2);
  /// Drops the voxels; the extents become 0. Channels and precision stay.
  void Clear();
  /// Whether there are any bytes.
  bool Valid() const { return !_data._rawBytes.empty(); }

  ///@{
  /// All bytes, in the order of the voxels. Resizing them by hand leaves the extents as they are.
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
  /// Always 0, whatever the voxels are: the layout is in Channels and Precision.
  const Types::Property<VoxelFormat>& Format() const { return _format; }

  /// Size 0, which varies fastest.
  int Height() const { return static_cast<int>(_data._size0); }
  /// Size 1.
  int Width() const { return static_cast<int>(_data._size1); }
  /// Size 2.
  int Depth() const { return static_cast<int>(_data._size2); }

  /// Reads a volume from a file.
  ///
  /// A TextArray file is text, numbers and words apart by white space: the word "TextArray", four integers s0, ch, s1,
  /// s2, and ch × s0 × s1 × s2 numbers, as `std::istream >> float` reads them under the classic locale. The components
  /// of a voxel stand together, s0 varies fastest, s2 slowest. The result has one channel of 8 bits: value / largest ×
  /// 255, truncated, with what is negative as 0. The largest is that of all channels; only the first is kept.
  ///
  /// Reported are a path that is not valid or does not exist, another first word ("header == \"TextArray\""), a number
  /// that cannot be read or is missing ("file"; it counts as 0, but as the largest float where it is too large, and no
  /// number is read after it; such reports end after the first thousand), and "channels == 1". The result is empty,
  /// after a report of the place, where a size is missing or below 1 ("@line161"), where the sizes multiply to more
  /// than 64 bits hold ("@line217"), and where they claim more than 2^26 numbers which the file is too short for
  /// ("@line221"). It is empty for any other file type, too, which is reported.
  static boost::shared_ptr<VolumeImage> LoadFromFile(const vekfile::filepath& p_path, FileType p_type);
  /// As LoadFromFile, from a stream.
  static boost::shared_ptr<VolumeImage> LoadFromStream(std::istream& p_stream, FileType p_type);

private:
  Types::Property<VoxelFormat> _format;
  Types::Property<DataPrecision> _precision;
  Types::Property<std::int32_t> _channels;
  VolumeImageData _data;
};

} // namespace Vek::Chart::Library
