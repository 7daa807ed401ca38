// Comparison of images and meshes: what the tests of others rely on must find each fault.

#include "testing/Surface.h"
#include "tests/support/Test.h"

namespace {

QImage Filled(int p_width, int p_height, const QColor& p_color) {
  QImage image(p_width, p_height, QImage::Format_ARGB32);
  image.fill(p_color);
  return image;
}

/// A tetrahedron whose triangles face outward: a sixth of the unit cube.
Surface Tetrahedron() {
  return {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {}, {0, 2, 1, 0, 1, 3, 0, 3, 2, 1, 2, 3}};
}

} // namespace

TEST(Images, ShowTheFirstDifference) {
  QImage image = Filled(3, 2, QColor(10, 20, 30, 40));
  const QImage clean = image;
  image.setPixelColor(1, 0, QColor(10, 20, 33, 40));
  image.setPixelColor(2, 1, QColor(10, 20, 30, 36));
  EXPECT_EQ(ImageDifference(image, clean, 4), "");
  EXPECT_EQ(ImageDifference(image, clean, 3),
            "pixel (2, 1): #240a141e is not #280a141e (alpha, red, green, blue; tolerance 3)");
  EXPECT_EQ(ImageDifference(image, clean),
            "pixel (1, 0): #280a1421 is not #280a141e (alpha, red, green, blue; tolerance 0); 2 pixels differ");
  EXPECT_EQ(ImageDifference(image, Filled(2, 3, Qt::red)), "3 x 2 is not 2 x 3");
  EXPECT_FALSE(SameImage(image, clean, 2));
  EXPECT_EQ(PixelAt(image, 2, 0), qRgba(10, 20, 30, 36)) << "the lower row";
  EXPECT_EQ(ErrorOf<std::out_of_range>([&] { PixelAt(image, 3, 0); }), "pixel (3, 0) of an image of 3 x 2");
}

TEST(Surfaces, AreJudgedByEdgesAndVolume) {
  Surface surface = Tetrahedron();
  EXPECT_TRUE(IsClosed(surface));
  EXPECT_NEAR(EnclosedVolume(surface), 1 / 6.0, 1e-15);
  std::swap(surface.indices[0], surface.indices[1]);
  EXPECT_FALSE(IsClosed(surface)) << "one triangle is wound the other way";
  surface.indices.resize(9);
  EXPECT_FALSE(IsClosed(surface)) << "three triangles have a border";
  surface.indices.push_back(0);
  EXPECT_THROW(IsClosed(surface), std::out_of_range) << "a triangle of one corner";
  EXPECT_FALSE(IsClosed({})) << "nothing";

  Ogl::VertexData flat;
  flat.SetVertices(std::vector<Surface::Vector>(1));
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { SurfaceOf(flat); }),
            "the vertex data are not an array of three floats");
}
