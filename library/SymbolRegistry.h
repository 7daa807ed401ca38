#pragma once

#include "library/Export.h"
#include "library/ModelCache.h"
#include "platform/core/Ptr.h"
#include "platform/file/FilePath.h"
#include "platform/model/Symbol.h"
#include "platform/types/Geometry.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Vek::Chart::Library {

/// The models of a chart's symbols in GPU buffers: built-in glyphs by shape, user models by path.
///
/// The models belong to the cache, which may be shared and may hold other models.
///
/// \snippet GlyphSnippets.cpp SymbolRegistry
/// \image html symbols.jpg
/// \ingroup glyphs
class VEK_LIBRARY_API SymbolRegistry {
public:
  /// A model that was registered by path.
  struct VEK_LIBRARY_API HashID {
    /// Hashes and copies the path.
    HashID(const vekfile::filepath& p_path, std::size_t p_id);

    std::int32_t hash; ///< hash of the bytes of the path: 0 to 2147483646, 0 for the empty path; not unique
    boost::shared_ptr<const std::string> path; ///< the path, unchanged
    std::size_t id;                            ///< model id in the cache
  };
  /// A built-in model.
  struct SymbolID {
    Model::Symbol::Shape shape; ///< 2 to 15
    std::size_t id;             ///< model id in the cache
  };

  /// Registers the built-in models with the cache, in the order of their shapes: for ShapeArrowHead1D (2) to
  /// ShapeCustom (15) the files ArrowHead1D.obj, Arrow1D.obj, ArrowHead2D.obj, Arrow2D.obj, Plane.obj, ArrowHead3D.obj,
  /// Arrow3D.obj, Cylinder.obj, Cone.obj, CircularArrow3D.obj, Crosshair.obj, Cube.obj, IcoSphere.obj and Torus.obj of
  /// the directory. A missing file is registered as an empty model, which the cache reports. Exceptions of the reader
  /// pass through. `p_cache` must not be null.
  SymbolRegistry(const Core::Ptr<ModelCache>& p_cache, const vekfile::filepath& p_directory);
  ~SymbolRegistry();
  SymbolRegistry(const SymbolRegistry&) = delete;
  SymbolRegistry& operator=(const SymbolRegistry&) = delete;

  /// Registers a user model with the cache, once per path; paths are compared byte by byte. Exceptions of the reader
  /// pass through and leave the path unregistered.
  void LoadModel(const vekfile::filepath& p_path);
  /// Releases a user model and forgets its path, which counts as not loaded from then on: loading it again reads the
  /// file again and gives it another id. Returns false, and does nothing, for a path that was not loaded. A model that
  /// is released in the cache itself stays loaded, with empty records.
  bool ReleaseModel(const vekfile::filepath& p_path);

  ///@{
  /// The records of a built-in shape. A shape without a model (ShapePoint, unknown ones) reports
  /// "result != p_symbols.size() && "No model loaded for this shape!"" and is looked up with the number of built-in
  /// models as id: the first model registered after them, or an empty record.
  Types::BoundingBox_Base<double> GetBoundingBox(Model::Symbol::Shape p_shape) const;
  ModelCache::IndexBuffer GetIndexBuffer(Model::Symbol::Shape p_shape) const;
  ModelCache::VertexBuffer GetVertexBuffer(Model::Symbol::Shape p_shape) const;
  ModelCache::Model GetModel(Model::Symbol::Shape p_shape) const;
  ///@}

  ///@{
  /// The records of a path. A path that was not loaded reports "hashIndex < p_hashes.size() && "No model loaded with
  /// this path, call LoadModel first."" and gives the records of model 0 of the cache.
  Types::BoundingBox_Base<double> GetBoundingBox(const vekfile::filepath& p_path) const;
  ModelCache::IndexBuffer GetIndexBuffer(const vekfile::filepath& p_path) const;
  ModelCache::VertexBuffer GetVertexBuffer(const vekfile::filepath& p_path) const;
  ModelCache::Model GetModel(const vekfile::filepath& p_path) const;
  ///@}

private:
  struct State;

  void InitializeCache(const vekfile::filepath& p_directory);
  static std::size_t FindSymbol(const std::vector<SymbolID>& p_symbols, Model::Symbol::Shape p_shape);
  static std::size_t FindHashedSymbol(const std::vector<HashID>& p_hashes, const vekfile::filepath& p_path);

  std::unique_ptr<State> _state;
};

} // namespace Vek::Chart::Library
