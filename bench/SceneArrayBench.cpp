// Arrays of callers read into vectors, each beside a memcpy into a new vector that moves the same bytes: as many as are
// read and written together.

#include "bench/SideBySide.h"
#include "scene/Array.h"

#include <cstring>

using namespace Vek::Chart;

namespace {

using Vector = Types::Vector3_Base<double>;
constexpr std::size_t Count = 1 << 20;

template <class Subject>
void BesideCopy(benchmark::State& p_state, std::size_t p_bytes, const Subject& p_subject) {
  const std::vector<char> source(p_bytes / 2, 3);
  const auto copy = [&] {
    const std::vector<char> copied(source.data(), source.data() + source.size());
    benchmark::DoNotOptimize(copied.data());
  };
  const auto subject = [&] {
    const auto result = p_subject();
    benchmark::DoNotOptimize(&result);
  };
  Vek::Bench::SideBySide(p_state, "of_memcpy", subject, copy);
  p_state.SetBytesProcessed(p_state.iterations() * static_cast<std::int64_t>(p_bytes));
}

template <class T>
void FloatValues(benchmark::State& p_state) {
  const std::vector<T> numbers(Count, T(3));
  BesideCopy(p_state, Count * (sizeof(T) + 4), [&] { return Scene::FloatValues(numbers); });
}

template <class T>
void FloatPoints(benchmark::State& p_state) {
  const std::vector<Types::Vector3_Base<T>> points(Count, {1, 2, 3});
  BesideCopy(p_state, Count * (3 * sizeof(T) + 12), [&] { return Scene::FloatPoints(points, {1, 1, 1}); });
}

struct Record {
  double values[5];
  float x, y, z;
};

void FloatPointsOfMembers(benchmark::State& p_state) {
  const std::vector<Record> records(Count, Record{{}, 1, 2, 3});
  BesideCopy(p_state, Count * (sizeof(Record) + 12), [&] {
    return Scene::FloatPoints({records, &Record::x, &Record::y, &Record::z}, {1, 1, 1});
  });
}

void FloatPointsOfThreeArrays(benchmark::State& p_state) {
  const std::vector<double> x(Count, 1), y(Count, 2), z(Count, 3);
  BesideCopy(p_state, Count * 36, [&] { return Scene::FloatPoints({x, y, z}, {1, 1, 1}); });
}

void FloatPointsOfMixedArrays(benchmark::State& p_state) {
  const std::vector<double> x(Count, 1), y(Count, 2);
  const std::vector<float> z(Count, 3);
  BesideCopy(p_state, Count * 32, [&] { return Scene::FloatPoints({x, y, z}, {1, 1, 1}); });
}

// The next ones read only.

void FiniteBounds(benchmark::State& p_state) {
  const std::vector<Vector> points(Count, {1, 2, 3});
  BesideCopy(p_state, Count * 24, [&] { return Scene::FiniteBounds(points); });
}

void FiniteRange(benchmark::State& p_state) {
  const std::vector<double> numbers(Count, 3);
  BesideCopy(p_state, Count * 8, [&] { return Scene::FiniteRange(numbers); });
}

void CountMissing(benchmark::State& p_state) {
  const std::vector<double> numbers(Count, 3);
  BesideCopy(p_state, Count * 8, [&] { return Scene::CountMissing(numbers); });
}

BENCHMARK(FloatValues<float>)->UseManualTime();
BENCHMARK(FloatValues<double>)->UseManualTime();
BENCHMARK(FloatValues<std::uint16_t>)->UseManualTime();
BENCHMARK(FloatPoints<float>)->UseManualTime();
BENCHMARK(FloatPoints<double>)->UseManualTime();
BENCHMARK(FloatPointsOfMembers)->UseManualTime();
BENCHMARK(FloatPointsOfThreeArrays)->UseManualTime();
BENCHMARK(FloatPointsOfMixedArrays)->UseManualTime();
BENCHMARK(FiniteBounds)->UseManualTime();
BENCHMARK(FiniteRange)->UseManualTime();
BENCHMARK(CountMissing)->UseManualTime();

} // namespace
