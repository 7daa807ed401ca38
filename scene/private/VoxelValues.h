#pragma once

#include "scene/VoxelGrid.h"

#include "platform/ogl/PerContext.h"

#include <boost/shared_ptr.hpp>

#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// The values of a grid, which all copies share, and their texture.
class VoxelValues {
public:
  using Sizes = VoxelGrid::Sizes;
  using Filter = VoxelGrid::Filter;

  /// Throws std::invalid_argument for another number of values. Infinities become missing.
  VoxelValues(std::vector<float> p_values, const Sizes& p_sizes);
  /// Throws std::invalid_argument for an image that is none (see VoxelGrid).
  VoxelValues(boost::shared_ptr<const Library::VolumeImage> p_image, VoxelGrid::ZeroVoxels p_zeros);

  std::size_t Count() const;
  double Value(std::size_t p_index) const;
  double Value(int p_i, int p_j, int p_k) const { return Value(Index(p_i, p_j, p_k)); }

  bool Bind(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit, Filter p_filter) const;
  void Release(const Utility::Scoped<Rgl>& p_gl) const { _textures.Release(p_gl); }

  const Sizes sizes;
  Types::MinMax_Base<double> range;
  std::size_t missing = 0;

private:
  struct Texture {
    boost::shared_ptr<Ogl::Texture> name; ///< empty where the upload failed
    bool tried = false;
  };

  std::size_t Index(int p_i, int p_j, int p_k) const {
    const auto i = static_cast<std::size_t>(p_i), j = static_cast<std::size_t>(p_j), k = static_cast<std::size_t>(p_k);
    return i + static_cast<std::size_t>(sizes[0]) * (j + static_cast<std::size_t>(sizes[1]) * k);
  }
  float FloatAt(std::size_t p_index) const;
  void FindRange();
  template <class T>
  std::vector<T> Weighted(T p_one) const;
  bool Fits(Utility::Scoped<Rgl>& p_gl) const;
  boost::shared_ptr<Ogl::Texture> Upload(Utility::Scoped<Rgl>& p_gl) const;
  void Store(Utility::Scoped<Rgl>& p_gl, Ogl::GlEnum p_internal, Ogl::GlEnum p_format, Ogl::GlEnum p_type,
             const void* p_texels) const;

  std::vector<float> _floats; // without an image
  boost::shared_ptr<const Library::VolumeImage> _image;
  bool _bytes = false; // whether the image has bytes
  bool _zerosAreMissing = false;
  Ogl::PerContext<Texture> _textures;
};

/// The number of voxels. Throws std::invalid_argument for sizes that have none, or more than can be addressed.
std::size_t VoxelCount(const VoxelGrid::Sizes& p_sizes);

} // namespace Vek::Chart::Scene::Private
