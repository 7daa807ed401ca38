#pragma once

#include "library/ColorMap.h"
#include "platform/ogl/OffscreenContext.h"
#include "scene/DirectionalLight.h"

#include <benchmark/benchmark.h>

#include <QImage>

#include <sys/resource.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <vector>

// Frames of 1600 x 1000 pixels, their CPU times, and how much two of them differ.

namespace Vek::Bench {

using namespace Vek::Chart;
using Points = std::vector<std::array<double, 3>>;
constexpr int Width = 1600, Height = 1000;

/// CPU time of the process, of all threads.
inline double CpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& p_time) {
    return static_cast<double>(p_time.tv_sec) + 1e-6 * static_cast<double>(p_time.tv_usec);
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// A context without a window.
class Target {
public:
  explicit Target(int p_samples)
      : context({Width, Height}, p_samples)
      , gl(context.Handle())
      , map(Library::ColorMap::Named("viridis")) {}
  /// The CPU time of a frame.
  template <class Mesh>
  double Draw(const Mesh& p_mesh, double p_shift = 0) {
    gl->Finish();
    const double start = CpuSeconds();
    gl->ClearColor(Qt::white);
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    gl->Enable(RGL_DEPTH_TEST);
    gl->MatrixMode(RGL_PROJECTION);
    gl->LoadIdentity();
    gl->Ortho(0, Width, 0, Height, -Width, Width);
    gl->MatrixMode(RGL_MODELVIEW);
    gl->LoadIdentity();
    gl->Translate({p_shift, 0, 0});
    const auto lit = Scene::DirectionalLight().Apply(gl);
    p_mesh.Draw(gl, map);
    gl->Finish();
    return CpuSeconds() - start;
  }
  Ogl::OffscreenContext context;
  Utility::Scoped<Rgl> gl;
  Library::ColorMap map;
};

/// The share of pixels that differ by more than 32 of 255 in a channel.
inline double ShareOfDifferent(const QImage& p_a, const QImage& p_b) {
  std::size_t count = 0;
  for (int y = 0; y < p_a.height(); ++y)
    for (int x = 0; x < p_a.width(); ++x) {
      const QRgb a = p_a.pixel(x, y), b = p_b.pixel(x, y);
      constexpr int Visible = 32;
      count += std::abs(qRed(a) - qRed(b)) > Visible || std::abs(qGreen(a) - qGreen(b)) > Visible ||
               std::abs(qBlue(a) - qBlue(b)) > Visible;
    }
  return static_cast<double>(count) / (p_a.width() * p_a.height());
}

/// The mean difference of a channel at a quarter of the size.
inline double MeanOfQuarter(const QImage& p_a, const QImage& p_b) {
  const auto small = [](const QImage& p_image) {
    return p_image.scaled(p_image.width() / 4, p_image.height() / 4, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  };
  const QImage a = small(p_a), b = small(p_b);
  double sum = 0;
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x) {
      const QRgb one = a.pixel(x, y), other = b.pixel(x, y);
      sum += std::abs(qRed(one) - qRed(other)) + std::abs(qGreen(one) - qGreen(other)) +
             std::abs(qBlue(one) - qBlue(other));
    }
  return sum / (3.0 * a.width() * a.height());
}

inline void ThreeFrames(benchmark::internal::Benchmark* p_benchmark) {
  p_benchmark->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
}

} // namespace Vek::Bench
