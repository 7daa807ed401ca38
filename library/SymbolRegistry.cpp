#include "library/SymbolRegistry.h"

#include "library/private/io/PathHash.h"
#include "platform/debug/Check.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

namespace Vek::Chart::Library {
namespace {

namespace Signature {
#define VEK_CLASS "Vek::Chart::Library::SymbolRegistry::"
#define VEK_LIST(p_element)                                                                                            \
  "const class std::vector<struct " VEK_CLASS p_element ",class std::allocator<struct " VEK_CLASS p_element "> > &"
constexpr const char* FindSymbol = "unsigned __int64 __cdecl " VEK_CLASS
                                   "FindSymbol(" VEK_LIST("SymbolID") ",const enum Vek::Chart::Model::Symbol::Shape)";
constexpr const char* FindHashedSymbol =
    "unsigned __int64 __cdecl " VEK_CLASS "FindHashedSymbol(" VEK_LIST("HashID") ",const class vekfile::filepath &)";
#undef VEK_LIST
#undef VEK_CLASS
} // namespace Signature

// By shape; shapes 0 and 1 have no model.
constexpr const char* ModelFiles[] = {
    nullptr,         nullptr,           "ArrowHead1D.obj", "Arrow1D.obj",  "ArrowHead2D.obj", "Arrow2D.obj",
    "Plane.obj",     "ArrowHead3D.obj", "Arrow3D.obj",     "Cylinder.obj", "Cone.obj",        "CircularArrow3D.obj",
    "Crosshair.obj", "Cube.obj",        "IcoSphere.obj",   "Torus.obj",
};
static_assert(std::size(ModelFiles) == Model::Symbol::ShapeCustom + 1);

/// The entry of a path, or the end.
std::vector<SymbolRegistry::HashID>::const_iterator FindPath(const std::vector<SymbolRegistry::HashID>& p_hashes,
                                                             const std::string& p_path) {
  const std::int32_t hash = Private::PathHash(p_path);
  return std::find_if(p_hashes.begin(), p_hashes.end(), [&](const SymbolRegistry::HashID& p_entry) {
    return p_entry.hash == hash && *p_entry.path == p_path;
  });
}

} // namespace

struct SymbolRegistry::State {
  std::vector<HashID> hashes;
  std::vector<SymbolID> symbols;
  Core::Ptr<ModelCache> cache;
};

SymbolRegistry::HashID::HashID(const vekfile::filepath& p_path, std::size_t p_id)
    : hash(Private::PathHash(p_path.str()))
    , path(boost::make_shared<const std::string>(p_path.str()))
    , id(p_id) {}

SymbolRegistry::SymbolRegistry(const Core::Ptr<ModelCache>& p_cache, const vekfile::filepath& p_directory)
    : _state(new State{{}, {}, p_cache}) {
  InitializeCache(p_directory);
}

SymbolRegistry::~SymbolRegistry() = default;

void SymbolRegistry::InitializeCache(const vekfile::filepath& p_directory) {
  for (int shape = Model::Symbol::ShapeArrowHead1D; shape <= Model::Symbol::ShapeCustom; ++shape) {
    const std::size_t id = _state->cache->Register(p_directory + ModelFiles[shape]);
    _state->symbols.push_back({static_cast<Model::Symbol::Shape>(shape), id});
  }
}

void SymbolRegistry::LoadModel(const vekfile::filepath& p_path) {
  if (FindPath(_state->hashes, p_path.str()) != _state->hashes.end())
    return;
  HashID entry(p_path, 0);
  entry.id = _state->cache->Register(p_path); // a sink of its reports may change the list
  _state->hashes.push_back(std::move(entry));
}

bool SymbolRegistry::ReleaseModel(const vekfile::filepath& p_path) {
  const auto found = FindPath(_state->hashes, p_path.str());
  if (found == _state->hashes.end())
    return false;
  _state->cache->Release(found->id);
  _state->hashes.erase(found);
  return true;
}

std::size_t SymbolRegistry::FindSymbol(const std::vector<SymbolID>& p_symbols, Model::Symbol::Shape p_shape) {
  const auto found = std::find_if(p_symbols.begin(), p_symbols.end(),
                                  [&](const SymbolID& p_entry) { return p_entry.shape == p_shape; });
  const bool loaded =
      VEK_ENSURE_TEXT(found != p_symbols.end(), "result != p_symbols.size() && \"No model loaded for this shape!\"",
                      Signature::FindSymbol);
  return loaded ? found->id : p_symbols.size();
}

std::size_t SymbolRegistry::FindHashedSymbol(const std::vector<HashID>& p_hashes, const vekfile::filepath& p_path) {
  const auto found = FindPath(p_hashes, p_path.str());
  const bool loaded =
      VEK_ENSURE_AT(found != p_hashes.end(),
                    "hashIndex < p_hashes.size() && \"No model loaded with this path, call LoadModel first.\"",
                    Signature::FindHashedSymbol, {p_path.str()});
  return loaded ? found->id : 0;
}

Types::BoundingBox_Base<double> SymbolRegistry::GetBoundingBox(Model::Symbol::Shape p_shape) const {
  return _state->cache->GetBoundingBox(FindSymbol(_state->symbols, p_shape));
}

ModelCache::IndexBuffer SymbolRegistry::GetIndexBuffer(Model::Symbol::Shape p_shape) const {
  return _state->cache->GetIndexBuffer(FindSymbol(_state->symbols, p_shape));
}

ModelCache::VertexBuffer SymbolRegistry::GetVertexBuffer(Model::Symbol::Shape p_shape) const {
  return _state->cache->GetVertexBuffer(FindSymbol(_state->symbols, p_shape));
}

ModelCache::Model SymbolRegistry::GetModel(Model::Symbol::Shape p_shape) const {
  return _state->cache->GetModel(FindSymbol(_state->symbols, p_shape));
}

Types::BoundingBox_Base<double> SymbolRegistry::GetBoundingBox(const vekfile::filepath& p_path) const {
  return _state->cache->GetBoundingBox(FindHashedSymbol(_state->hashes, p_path));
}

ModelCache::IndexBuffer SymbolRegistry::GetIndexBuffer(const vekfile::filepath& p_path) const {
  return _state->cache->GetIndexBuffer(FindHashedSymbol(_state->hashes, p_path));
}

ModelCache::VertexBuffer SymbolRegistry::GetVertexBuffer(const vekfile::filepath& p_path) const {
  return _state->cache->GetVertexBuffer(FindHashedSymbol(_state->hashes, p_path));
}

ModelCache::Model SymbolRegistry::GetModel(const vekfile::filepath& p_path) const {
  return _state->cache->GetModel(FindHashedSymbol(_state->hashes, p_path));
}

} // namespace Vek::Chart::Library
