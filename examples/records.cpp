// Data of your own, as they lie in memory: members of structures, and strided numbers. Nothing is copied beforehand.
#include <scene/Figure.h>

#include <cmath>

using namespace Vek::Chart::Scene;

struct Particle {
  int id;
  float position[3]; // in mm
  float velocity[3]; // in mm/s
  double temperature;
};

int main() {
  std::vector<Particle> particles;
  for (int i = 0; i < 240; ++i) {
    const float angle = 0.25F * i, x = std::cos(angle), y = std::sin(angle), radius = 2 + std::sin(0.1F * i);
    particles.push_back({i, {radius * x, radius * y, 0.025F * i}, {-y, x, 0.1F}, 20 + 10 * std::sin(0.1 * i)});
  }
  const std::size_t count = particles.size(), stride = sizeof(Particle);
  const Array3 positions(particles[0].position, count, stride), velocities(particles[0].velocity, count, stride);

  Figure figure("Particles in a vortex");
  auto& quiver = figure.Quiver(positions, velocities).LengthTitle("Velocity in mm/s");
  quiver.ColorBy({particles, &Particle::temperature}, "Temperature in °C");
  figure.SetAxisTitles("x in mm", "y in mm", "z in mm").Save("records.png");
}
