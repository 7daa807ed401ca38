// Registering the fourteen built-in models, beside what cannot be left out: reading the bytes of the files, and
// uploading arrays of the same sizes.

#include "library/ModelCache.h"
#include "library/SymbolRegistry.h"
#include "platform/ogl/OffscreenContext.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

using namespace Vek::Chart;
using Library::ModelCache;
using Library::SymbolRegistry;

namespace {

const std::string Folder = std::string(VEK_SOURCE_DIR) + "/symbols";

Ogl::OffscreenContext& Context() {
  static auto* const Context = new Ogl::OffscreenContext({64, 64});
  return *Context;
}

void Registration(benchmark::State& p_state) {
  const Utility::Scoped<Rgl> gl(Context().Handle());
  for (auto _ : p_state) {
    const Core::Ptr<ModelCache> cache(new ModelCache(Context().Handle()));
    const SymbolRegistry symbols(cache, Folder);
    benchmark::DoNotOptimize(&symbols);
  }
}
BENCHMARK(Registration)->Unit(benchmark::kMicrosecond);

void ReadingTheBytes(benchmark::State& p_state) {
  const char* const names[] = {"ArrowHead1D", "Arrow1D", "ArrowHead2D", "Arrow2D", "Plane",
                               "ArrowHead3D", "Arrow3D", "Cylinder",    "Cone",    "CircularArrow3D",
                               "Crosshair",   "Cube",    "IcoSphere",   "Torus"};
  std::vector<char> bytes(1 << 20);
  for (auto _ : p_state)
    for (const char* const name : names) {
      std::ifstream file(Folder + "/" + name + ".obj", std::ios::binary);
      file.read(bytes.data(), std::streamsize(bytes.size()));
      benchmark::DoNotOptimize(bytes.data());
    }
}
BENCHMARK(ReadingTheBytes)->Unit(benchmark::kMicrosecond);

// As many records as the buffer has.
template <class T>
std::vector<T> RecordsLike(const Ogl::Buffer<T>& p_buffer) {
  return std::vector<T>(p_buffer.Count());
}

template <class T>
Ogl::Buffer<T> Upload(Ogl::BufferPool& p_pool, const std::vector<T>& p_records) {
  const Ogl::Buffer<T> buffer = p_pool.CreateBuffer<T>(p_records.size(), Ogl::BufferUsage::Default);
  const Ogl::BufferPool::WriteArray<T> memory(buffer, 0, buffer.Count(), RGL_ARRAY_BUFFER);
  std::memcpy(static_cast<void*>(memory.Data()), p_records.data(), p_records.size() * sizeof(T));
  return buffer;
}

void UploadingTheArrays(benchmark::State& p_state) {
  const Utility::Scoped<Rgl> gl(Context().Handle());
  std::vector<std::vector<ModelCache::VertexRecord>> vertices;
  std::vector<std::vector<ModelCache::IndexRecord>> indices;
  {
    const Core::Ptr<ModelCache> cache(new ModelCache(Context().Handle()));
    const SymbolRegistry symbols(cache, Folder);
    for (std::size_t id = 0; id < 14; ++id) {
      vertices.push_back(RecordsLike(cache->GetVertexBuffer(id).buffer));
      indices.push_back(RecordsLike(cache->GetIndexBuffer(id).buffer));
    }
  }
  for (auto _ : p_state) {
    std::vector<Ogl::Buffer<ModelCache::VertexRecord>> vertexBuffers;
    std::vector<Ogl::Buffer<ModelCache::IndexRecord>> indexBuffers;
    for (std::size_t id = 0; id < vertices.size(); ++id) {
      vertexBuffers.push_back(Upload(gl->GetBufferPool(), vertices[id]));
      indexBuffers.push_back(Upload(gl->GetBufferPool(), indices[id]));
    }
    benchmark::DoNotOptimize(vertexBuffers.data());
  }
}
BENCHMARK(UploadingTheArrays)->Unit(benchmark::kMicrosecond);

} // namespace
