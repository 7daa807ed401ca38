#include "library/VectorSymbol.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Glyphs into vertex arrays: 200,000 arrows, one by one and as a layer, beside a hand-written loop and the rate at
// which this machine can write the same bytes. `bytes_per_second` counts what is written, in all of them.

using namespace Vek::Chart;
using Library::VectorSymbol;
using Ogl::VertexData;
using Types::Matrix3;
using Types::Vector3_Base;

namespace {

constexpr std::size_t Count = 200000;
constexpr double Anchor = 0.5;
constexpr double Scale = 0.25;

struct Layer {
  std::vector<Vector3_Base<double>> positions;
  std::vector<Matrix3> rotations;
  std::vector<double> sizes;
  std::vector<double> values;

  Layer() {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> any(0.1, 1.0);
    for (std::size_t i = 0; i < Count; ++i) {
      positions.emplace_back(any(random), any(random), any(random));
      rotations.push_back(
          Matrix3::Rotation(Types::Angle::FromDegrees(360 * any(random)), {any(random), any(random), 1}));
      sizes.push_back(any(random));
      values.push_back(any(random));
    }
  }
  VectorSymbol::Instances View() const {
    VectorSymbol::Instances view;
    view.count = Count;
    view.positions = positions.data();
    view.rotations = rotations.data();
    view.sizes = sizes.data();
    view.texCoords = values.data();
    return view;
  }
};

const Layer& Arrows() {
  static const Layer Filled;
  return Filled;
}

VectorSymbol::Instances FirstArrows(std::size_t p_count) {
  VectorSymbol::Instances view = Arrows().View();
  view.count = p_count;
  return view;
}

const VectorSymbol& Arrow() {
  static const VectorSymbol Symbol(Model::Symbol::ShapeArrow3D, 8);
  return Symbol;
}

std::size_t BytesPerGlyph(const VectorSymbol& p_symbol) {
  return p_symbol.VertexCount() * 7 * sizeof(float) + p_symbol.IndexCount() * sizeof(unsigned int);
}

void CountBytes(benchmark::State& p_state, std::size_t p_glyphs, const VectorSymbol& p_symbol = Arrow()) {
  p_state.SetItemsProcessed(p_state.iterations() * static_cast<std::int64_t>(p_glyphs));
  p_state.SetBytesProcessed(p_state.iterations() * static_cast<std::int64_t>(p_glyphs * BytesPerGlyph(p_symbol)));
}

/// The arrow's arrays as doubles, for the hand-written loop.
struct PlainGlyph {
  std::vector<Vector3_Base<double>> vertices;
  std::vector<Vector3_Base<double>> normals;
  std::vector<unsigned int> indices;

  PlainGlyph() {
    VertexData data;
    Arrow().BuildShape(data);
    const auto vectors = [](const VertexData::Array& p_array) {
      std::vector<Vector3_Base<double>> result;
      for (const float* p = p_array.As<float>(); result.size() < p_array.count; p += 3)
        result.emplace_back(p[0], p[1], p[2]);
      return result;
    };
    vertices = vectors(data.Vertices());
    normals = vectors(data.Normals());
    indices.assign(data.Indices().As<unsigned int>(), data.Indices().As<unsigned int>() + data.Indices().count);
  }
};

struct PlainArrays {
  std::unique_ptr<float[]> vertices;
  std::unique_ptr<float[]> normals;
  std::unique_ptr<float[]> texCoords;
  std::unique_ptr<unsigned int[]> indices;
};

void StorePlain(const Vector3_Base<double>& p_vector, float* p_out) {
  p_out[0] = static_cast<float>(p_vector.x);
  p_out[1] = static_cast<float>(p_vector.y);
  p_out[2] = static_cast<float>(p_vector.z);
}

PlainArrays OrientPlain(const PlainGlyph& p_glyph, std::size_t p_instance) {
  const Layer& layer = Arrows();
  const std::size_t n = p_glyph.vertices.size();
  PlainArrays arrays{std::unique_ptr<float[]>(new float[3 * n]), std::unique_ptr<float[]>(new float[3 * n]),
                     std::unique_ptr<float[]>(new float[n]),
                     std::unique_ptr<unsigned int[]>(new unsigned int[p_glyph.indices.size()])};
  const double factor = layer.sizes[p_instance] * Scale;
  const Vector3_Base<double> shift(0, 0, Anchor * 3.0);
  const Matrix3& rotation = layer.rotations[p_instance];
  const Vector3_Base<double>& position = layer.positions[p_instance];
  const auto value = static_cast<float>(layer.values[p_instance]);
  for (std::size_t i = 0; i < n; ++i) {
    StorePlain(rotation * ((p_glyph.vertices[i] - shift) * factor) + position, arrays.vertices.get() + 3 * i);
    StorePlain(rotation * p_glyph.normals[i], arrays.normals.get() + 3 * i);
    arrays.texCoords[i] = value;
  }
  std::copy(p_glyph.indices.begin(), p_glyph.indices.end(), arrays.indices.get());
  return arrays;
}

void OrientOne(std::size_t p_instance, VertexData& p_data) {
  const Layer& layer = Arrows();
  Arrow().OrientShape(layer.sizes[p_instance], Anchor, layer.positions[p_instance], true, layer.values[p_instance],
                      Scale, layer.rotations[p_instance], p_data);
}

// One by one, each result dropped when the next is there.

void OrientShape(benchmark::State& p_state) {
  VertexData data;
  for (auto _ : p_state)
    for (std::size_t i = 0; i < Count; ++i) {
      OrientOne(i, data);
      benchmark::DoNotOptimize(data.Vertices().data.get());
    }
  CountBytes(p_state, Count);
}
void OrientHandWritten(benchmark::State& p_state) {
  const PlainGlyph glyph;
  PlainArrays arrays;
  for (auto _ : p_state)
    for (std::size_t i = 0; i < Count; ++i) {
      arrays = OrientPlain(glyph, i);
      benchmark::DoNotOptimize(arrays.vertices.get());
    }
  CountBytes(p_state, Count);
}

// One by one, all results kept.

void OrientShapeKept(benchmark::State& p_state) {
  std::vector<VertexData> all(Count);
  for (auto _ : p_state)
    for (std::size_t i = 0; i < Count; ++i)
      OrientOne(i, all[i]);
  CountBytes(p_state, Count);
}
void OrientHandWrittenKept(benchmark::State& p_state) {
  const PlainGlyph glyph;
  std::vector<PlainArrays> all(Count);
  for (auto _ : p_state)
    for (std::size_t i = 0; i < Count; ++i)
      all[i] = OrientPlain(glyph, i);
  CountBytes(p_state, Count);
}

// Whole layers: into the arrays of the time before, into new ones, and a few shapes and sizes more.

void OrientShapes(benchmark::State& p_state) {
  const VectorSymbol symbol(static_cast<Model::Symbol::Shape>(p_state.range(0)), 8);
  const auto count = static_cast<std::size_t>(p_state.range(1));
  const VectorSymbol::Instances view = FirstArrows(count);
  VertexData data;
  symbol.OrientShapes(view, Anchor, Scale, data);
  for (auto _ : p_state)
    benchmark::DoNotOptimize(symbol.OrientShapes(view, Anchor, Scale, data));
  CountBytes(p_state, count, symbol);
}
void OrientShapesNew(benchmark::State& p_state) {
  for (auto _ : p_state) {
    VertexData data;
    benchmark::DoNotOptimize(Arrow().OrientShapes(Arrows().View(), Anchor, Scale, data));
  }
  CountBytes(p_state, Count);
}

// What the machine can do: the same bytes from a constant into memory that was written before, or into new memory.

void StreamFill(benchmark::State& p_state) {
  const std::size_t bytes = static_cast<std::size_t>(p_state.range(0)) * BytesPerGlyph(Arrow());
  std::vector<char> warm(bytes, 1);
  int value = 0;
  for (auto _ : p_state) {
    std::memset(warm.data(), ++value, bytes);
    benchmark::ClobberMemory();
  }
  CountBytes(p_state, static_cast<std::size_t>(p_state.range(0)));
}
#if defined(__SSE2__)
void StreamPastCaches(benchmark::State& p_state) {
  const std::size_t bytes = Count * BytesPerGlyph(Arrow());
  const std::unique_ptr<char[]> warm(new char[bytes]()); // new aligns it to 16
  int value = 0;
  for (auto _ : p_state) {
    const __m128i filling = _mm_set1_epi32(++value);
    for (std::size_t i = 0; i + sizeof filling <= bytes; i += sizeof filling)
      _mm_stream_si128(reinterpret_cast<__m128i*>(warm.get() + i), filling);
    _mm_sfence();
    benchmark::ClobberMemory();
  }
  CountBytes(p_state, Count);
}
BENCHMARK(StreamPastCaches)->Unit(benchmark::kMillisecond);
#endif
void StreamNew(benchmark::State& p_state) {
  const std::size_t bytes = Count * BytesPerGlyph(Arrow());
  for (auto _ : p_state) {
    const std::unique_ptr<char[]> fresh(new char[bytes]);
    std::memset(fresh.get(), 1, bytes);
    benchmark::DoNotOptimize(fresh.get());
    benchmark::ClobberMemory();
  }
  CountBytes(p_state, Count);
}

BENCHMARK(StreamFill)->Arg(Count)->Arg(200)->Unit(benchmark::kMillisecond);
BENCHMARK(StreamNew)->Unit(benchmark::kMillisecond);
BENCHMARK(OrientHandWritten)->Unit(benchmark::kMillisecond);
BENCHMARK(OrientShape)->Unit(benchmark::kMillisecond);
BENCHMARK(OrientHandWrittenKept)->Unit(benchmark::kMillisecond);
BENCHMARK(OrientShapeKept)->Unit(benchmark::kMillisecond);
BENCHMARK(OrientShapes)
    ->ArgNames({"shape", "count"})
    ->Args({Model::Symbol::ShapeArrow3D, Count})
    ->Args({Model::Symbol::ShapeArrow3D, 200})
    ->Args({Model::Symbol::ShapePoint, Count})
    ->Args({Model::Symbol::ShapeArrow2D, Count})
    ->Args({Model::Symbol::ShapeSphere, Count})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(OrientShapesNew)->Unit(benchmark::kMillisecond);

} // namespace
