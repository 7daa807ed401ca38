// Parts that read a grid, each beside a simple limit: a copy or a sum of the same numbers, or the same samples by eight
// plain reads. Streamlines also beside VTK's, where it is installed.

#include "bench/SideBySide.h"
#include "scene/Isolines.h"
#include "scene/Isosurface.h"
#include "scene/StreamlineTracer.h"
#include "scene/SurfaceMesh.h"
#include "scene/VectorField.h"

#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#if defined(VEK_BENCH_VTK)
#include <vtkDoubleArray.h>
#include <vtkImageData.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkPolyData.h>
#include <vtkStreamTracer.h>
#endif

using namespace Vek::Chart;

namespace {

using Vector = Types::Vector3_Base<double>;

std::vector<double> Axis(std::size_t p_count) {
  std::vector<double> axis(p_count);
  std::iota(axis.begin(), axis.end(), 0.0);
  return axis;
}

/// Waves of about 60 cells.
std::vector<double> Heights(std::size_t p_side) {
  std::vector<double> heights;
  for (std::size_t j = 0; j < p_side; ++j)
    for (std::size_t i = 0; i < p_side; ++i)
      heights.push_back(std::sin(0.1 * static_cast<double>(i)) * std::cos(0.08 * static_cast<double>(j)));
  return heights;
}

Scene::VectorField Field(std::size_t p_side, bool p_even) {
  std::vector<Vector> vectors;
  std::vector<double> axis = Axis(p_side);
  for (std::size_t i = 0; !p_even && i < p_side; ++i)
    axis[i] += 0.4 * std::sin(static_cast<double>(i));
  for (std::size_t i = 0; i < p_side * p_side * p_side; ++i)
    vectors.emplace_back(std::sin(0.001 * static_cast<double>(i)), 1, 0.5);
  return Scene::VectorField::Rectilinear(axis, axis, axis, vectors);
}

/// Samples at random positions, beside the same number of reads of eight neighbours and their mean.
void Sample(benchmark::State& p_state, bool p_even) {
  constexpr std::size_t Side = 64, Count = 100000;
  const Scene::VectorField field = Field(Side, p_even);
  std::mt19937 random(1);
  std::uniform_real_distribution<double> number(1, Side - 2);
  std::vector<Vector> positions;
  for (std::size_t i = 0; i < Count; ++i)
    positions.emplace_back(number(random), number(random), number(random));
  const auto sample = [&] {
    Vector sum, vector;
    for (const Vector& position : positions)
      if (field.Sample(position, vector))
        sum += vector;
    benchmark::DoNotOptimize(sum);
  };
  const auto read = [&] {
    Vector sum;
    for (const Vector& position : positions) {
      const auto x = static_cast<std::size_t>(position.x), y = static_cast<std::size_t>(position.y),
                 z = static_cast<std::size_t>(position.z);
      for (std::size_t k = z; k < z + 2; ++k)
        for (std::size_t j = y; j < y + 2; ++j)
          sum += field.Node(x, j, k) + field.Node(x + 1, j, k);
    }
    benchmark::DoNotOptimize(sum);
  };
  Vek::Bench::SideBySide(p_state, "of_reads", sample, read);
  p_state.SetItemsProcessed(p_state.iterations() * static_cast<std::int64_t>(Count));
}

void SampleEven(benchmark::State& p_state) {
  Sample(p_state, true);
}

void SampleUneven(benchmark::State& p_state) {
  Sample(p_state, false);
}

/// A flow in waves, on a layer.
constexpr std::size_t FlowSide = 400;

std::vector<Vector> FlowVectors() {
  std::vector<Vector> vectors;
  for (std::size_t j = 0; j < FlowSide; ++j)
    for (std::size_t i = 0; i < FlowSide; ++i)
      vectors.emplace_back(1 + std::cos(0.032 * static_cast<double>(j)), std::sin(0.035 * static_cast<double>(i)), 0);
  return vectors;
}

Scene::VectorField Flow() {
  return Scene::VectorField::Layer(Axis(FlowSide), Axis(FlowSide), FlowVectors());
}

const Scene::StreamlineTracer::Spacing FlowSpacing(4, 2, 8); // in cells, as the steps of half a cell

std::vector<Vector> FlowSeeds() {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> number(0, FlowSide - 1);
  std::vector<Vector> seeds(200);
  for (Vector& seed : seeds)
    seed = {number(random), number(random), 0};
  return seeds;
}

std::size_t PointCount(const std::vector<Scene::Streamline>& p_lines) {
  std::size_t count = 0;
  for (const Scene::Streamline& line : p_lines)
    count += line.size();
  return count;
}

/// Lines that fill a layer, beside samples of the field at their points.
void Streamlines(benchmark::State& p_state) {
  const Scene::VectorField field = Flow();
  const Scene::StreamlineTracer tracer(field);
  const std::vector<Scene::Streamline> lines = tracer.Filled(field.Bounds(), FlowSpacing);
  const auto fill = [&] { benchmark::DoNotOptimize(tracer.Filled(field.Bounds(), FlowSpacing).size()); };
  const auto sample = [&] {
    Vector sum, vector;
    for (const Scene::Streamline& line : lines)
      for (const Vector& position : line)
        if (field.Sample(position, vector))
          sum += vector;
    benchmark::DoNotOptimize(sum);
  };
  Vek::Bench::SideBySide(p_state, "of_samples", fill, sample);
  p_state.counters["points"] = static_cast<double>(PointCount(lines));
  p_state.SetItemsProcessed(p_state.iterations() * static_cast<std::int64_t>(PointCount(lines)));
}

/// Lines through given seeds.
void StreamlinesOnThreads(benchmark::State& p_state) {
  const Utility::Threads threads(static_cast<int>(p_state.range(0)));
  const Scene::VectorField field = Flow();
  const Scene::StreamlineTracer tracer(field);
  const std::vector<Vector> seeds = FlowSeeds();
  const auto trace = [&](Utility::Threads p_threads) {
    benchmark::DoNotOptimize(tracer.Through(seeds, {}, p_threads).size());
  };
  Vek::Bench::SideBySide(
      p_state, "of_one_thread", [&] { trace(threads); }, [&] { trace(Utility::Threads()); });
}

#if defined(VEK_BENCH_VTK)

vtkNew<vtkImageData> FlowOfVtk() {
  vtkNew<vtkImageData> image;
  image->SetDimensions(static_cast<int>(FlowSide), static_cast<int>(FlowSide), 1);
  vtkNew<vtkDoubleArray> array;
  array->SetName("flow");
  array->SetNumberOfComponents(3);
  for (const Vector& vector : FlowVectors())
    array->InsertNextTuple3(vector.x, vector.y, vector.z);
  image->GetPointData()->SetVectors(array);
  return image;
}

/// Through given seeds, on one thread. VTK follows them by Runge-Kutta of order 4 with the step that ours rarely are
/// below, so that its points differ: `a_point` compares the time for one.
void StreamlinesBesideVtk(benchmark::State& p_state) {
  const Scene::VectorField field = Flow();
  const Scene::StreamlineTracer tracer(field);
  const Scene::StreamlineTracer::Options options(field);
  const std::vector<Vector> seeds = FlowSeeds();
  vtkNew<vtkPoints> points;
  for (const Vector& seed : seeds)
    points->InsertNextPoint(seed.x, seed.y, seed.z);
  vtkNew<vtkPolyData> source;
  source->SetPoints(points);
  const auto image = FlowOfVtk();
  vtkNew<vtkStreamTracer> vtk;
  vtk->SetInputData(image);
  vtk->SetSourceData(source);
  vtk->SetIntegratorTypeToRungeKutta4();
  vtk->SetIntegrationDirectionToBoth();
  vtk->SetIntegrationStepUnit(vtkStreamTracer::LENGTH_UNIT);
  vtk->SetInitialIntegrationStep(options.largestStep);
  vtk->SetMaximumPropagation(options.length);
  vtk->SetMaximumNumberOfSteps(1 << 20);
  vtk->SetComputeVorticity(false);
  double ours = 0, theirs = 0;
  const auto trace = [&] { ours = static_cast<double>(PointCount(tracer.Through(seeds))); };
  const auto traceByVtk = [&] {
    vtk->Modified();
    vtk->Update();
    theirs = static_cast<double>(vtk->GetOutput()->GetNumberOfPoints());
  };
  Vek::Bench::SideBySide(p_state, "times_vtk", trace, traceByVtk);
  p_state.counters["points"] = ours;
  p_state.counters["points_vtk"] = theirs;
  p_state.counters["a_point"] = p_state.counters["times_vtk"] * ours / theirs;
}

#endif

/// A mesh with normals, beside a copy of as many bytes as are read and written.
void Surface(benchmark::State& p_state) {
  constexpr std::size_t Side = 1024;
  const std::vector<double> axis = Axis(Side), heights = Heights(Side);
  const std::vector<char> source(Side * Side * (8 + 12 + 12 + 4 + 24) / 2);
  const auto make = [&] { benchmark::DoNotOptimize(Scene::SurfaceMesh(axis, axis, heights).positions.data()); };
  const auto copy = [&] {
    const std::vector<char> copied(source.data(), source.data() + source.size());
    benchmark::DoNotOptimize(copied.data());
  };
  Vek::Bench::SideBySide(p_state, "of_memcpy", make, copy);
  p_state.SetItemsProcessed(p_state.iterations() * static_cast<std::int64_t>(Side * Side));
}

/// One level of a grid, beside the sum of its values.
void ContourLines(benchmark::State& p_state) {
  constexpr std::size_t Side = 2048;
  const std::vector<double> axis = Axis(Side), heights = Heights(Side);
  const Scene::Isolines contours(axis, axis, heights);
  const auto trace = [&] { benchmark::DoNotOptimize(contours.At(0.3).size()); };
  const auto sum = [&] { benchmark::DoNotOptimize(std::accumulate(heights.begin(), heights.end(), 0.0)); };
  Vek::Bench::SideBySide(p_state, "of_sum", trace, sum);
  p_state.SetItemsProcessed(p_state.iterations() * static_cast<std::int64_t>(Side * Side));
}

/// A sphere in a volume, beside a copy of the volume as floats.
void SphereSurface(benchmark::State& p_state) {
  constexpr std::size_t Side = 160;
  const std::vector<double> axis = Axis(Side);
  std::vector<float> values;
  for (const double z : axis)
    for (const double y : axis)
      for (const double x : axis)
        values.push_back(static_cast<float>(Length(Vector(x - 79.5, y - 79.5, z - 79.5))));
  const auto extract = [&] {
    benchmark::DoNotOptimize(Scene::Isosurface(axis, axis, axis, values, 60).indices.data());
  };
  const auto copy = [&] {
    const std::vector<float> copied(values.data(), values.data() + values.size());
    benchmark::DoNotOptimize(copied.data());
  };
  Vek::Bench::SideBySide(p_state, "of_memcpy", extract, copy);
  p_state.SetItemsProcessed(p_state.iterations() * static_cast<std::int64_t>(values.size()));
}

void SurfaceOnThreads(benchmark::State& p_state) {
  const Utility::Threads threads(static_cast<int>(p_state.range(0)));
  const std::vector<double> axis = Axis(160);
  std::vector<float> values;
  for (const double z : axis)
    for (const double y : axis)
      for (const double x : axis)
        values.push_back(static_cast<float>(std::sin(0.2 * x) + std::sin(0.21 * y) + std::sin(0.19 * z)));
  const auto extract = [&](Utility::Threads p_threads) {
    const Scene::Isosurface surface(axis, axis, axis, values, std::vector<double>{0.3}, {}, p_threads);
    benchmark::DoNotOptimize(surface.indices.data());
  };
  Vek::Bench::SideBySide(
      p_state, "of_one_thread", [&] { extract(threads); }, [&] { extract(Utility::Threads()); });
}

BENCHMARK(SampleEven)->UseManualTime();
BENCHMARK(SampleUneven)->UseManualTime();
BENCHMARK(Streamlines)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(StreamlinesOnThreads)->Apply(Vek::Bench::OnThreads);
#if defined(VEK_BENCH_VTK)
BENCHMARK(StreamlinesBesideVtk)->UseManualTime()->Unit(benchmark::kMillisecond);
#endif
BENCHMARK(Surface)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ContourLines)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(SphereSurface)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(SurfaceOnThreads)->Apply(Vek::Bench::OnThreads);

} // namespace
