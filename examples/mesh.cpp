// A mesh of triangles with a value at each vertex, and what lies under a pixel of its image.
#include <library/Icosphere.h>
#include <scene/Figure.h>

#include <cmath>
#include <iostream>

int main() {
  Vek::Chart::Library::Icosphere sphere(6); // positions of vertices, and three indices for each triangle
  std::vector<double> heights;
  for (auto& p : sphere.positions) {
    heights.push_back(100 * p.x * p.y * p.z * (p.x * p.x - p.y * p.y));
    p = p * (1 + 0.02 * heights.back());
  }
  Vek::Chart::Scene::Figure figure("Vibration of a sphere");
  figure.Mesh(sphere.positions, sphere.indices).ColorBy(heights, "Displacement in mm").ColorMap("coolwarm");
  figure.Save("mesh.png");
  if (const auto hit = figure.Pick({600, 400}); hit && hit->value)
    std::cout << hit->position.x << ", " << hit->position.y << ", " << hit->position.z << ": " << *hit->value << '\n';
}
