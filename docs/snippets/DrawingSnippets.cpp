// The examples of the reference for what draws itself: what stands between two marks is shown there.

#include "library/Arrow3D.h"
#include "library/Box.h"
#include "library/Cuboid.h"
#include "library/Cylinder.h"
#include "library/Disk.h"
#include "library/FilledBox.h"
#include "library/Geometry.h"
#include "library/Ring.h"
#include "library/Sphere.h"
#include "library/TexturedCube.h"
#include "library/TexturedQuad.h"
#include "library/VolumeTexture.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Library;

namespace {

constexpr Types::Viewport<0> Window(0, 0, 61, 37);

using DrawingSnippetPixels = Testing::PixelScopeFixture;

TEST_F(DrawingSnippetPixels, Geometry) {
  //! [Geometry]
  const Geometry shapes(handle); // records the display lists, once
  gl->Color(Qt::red);
  gl->PushMatrix();
  gl->Scale({1.5, 1.5, 0.1}); // the unit sphere as a flat ellipsoid
  shapes.Sphere(gl);
  gl->PopMatrix();
  //! [Geometry]
  EXPECT_EQ(At(30, 18), QColor(Qt::red));
}

TEST_F(DrawingSnippetPixels, Box) {
  //! [Box]
  const auto pixels = gl->PixelProjection(Window); // from here on, one unit is one pixel
  Box legend;
  legend.rect = {5, 5, 20, 12};
  legend.fillColor = Qt::white;
  legend.lineColor = Qt::blue;
  legend(handle);
  //! [Box]
  EXPECT_EQ(At(10, 10), QColor(Qt::white));
}

TEST_F(DrawingSnippetPixels, FilledBox) {
  //! [FilledBox]
  const auto pixels = gl->PixelProjection(Window);
  FilledBox frame;
  frame.mode = FilledBox::FillFrame;
  frame.outer = {2, 2, 40, 30};
  frame.inner = {10, 10, 24, 14}; // stays open
  frame.fillColor = Qt::green;
  frame(handle);
  //! [FilledBox]
  EXPECT_EQ(At(6, 6), QColor(Qt::green));
}

TEST_F(DrawingSnippetPixels, Cuboid) {
  //! [Cuboid]
  const Geometry shapes(handle);
  Cuboid bar;
  bar.position = Types::Vector3_Base<double>(0.5, 0, 0); // its centre
  bar.size = Types::Vector3_Base<double>(0.5, 1, 0.5);
  gl->Color(Qt::cyan);
  bar(handle, shapes);
  //! [Cuboid]
  EXPECT_EQ(At(45, 18), QColor(Qt::cyan));
}

TEST_F(DrawingSnippetPixels, Arrow3D) {
  //! [Arrow3D]
  Arrow3D arrow; // along +z
  arrow.shaftRadius = 0.2;
  arrow.headRadius = 0.4;
  gl->PushMatrix();
  gl->Rotate(Types::Angle::FromDegrees(90), {0, 1, 0}); // z becomes x
  gl->Color(Qt::red);
  arrow(handle);
  gl->PopMatrix();
  //! [Arrow3D]
  EXPECT_EQ(At(40, 18), QColor(Qt::red));
}

TEST_F(DrawingSnippetPixels, Cylinder) {
  //! [Cylinder]
  Cylinder column;
  column.baseRadius = 0.5;
  column.topRadius = 0.25; // a truncated cone
  column.height = 0.75;
  gl->PushMatrix();
  gl->Rotate(Types::Angle::FromDegrees(-90), {1, 0, 0}); // z becomes y
  gl->Color(Qt::yellow);
  column(handle);
  gl->PopMatrix();
  //! [Cylinder]
  EXPECT_EQ(At(30, 25), QColor(Qt::yellow));
}

TEST_F(DrawingSnippetPixels, Disk) {
  //! [Disk]
  Disk wedge;
  wedge.outerRadius = 0.8;
  wedge.sweepAngle = 90; // clockwise from +y: the upper right quarter
  gl->Color(Qt::magenta);
  wedge(handle);
  //! [Disk]
  EXPECT_EQ(At(38, 24), QColor(Qt::magenta));
}

TEST_F(DrawingSnippetPixels, Sphere) {
  //! [Sphere]
  Sphere marker;
  marker.position = Types::Vector3_Base<double>(-0.5, 0, 0);
  marker.radius = 0.3;
  gl->Color(Qt::blue);
  marker(handle);
  //! [Sphere]
  EXPECT_EQ(At(15, 18), QColor(Qt::blue));
}

TEST_F(DrawingSnippetPixels, Ring) {
  //! [Ring]
  const Ogl::Library::Ring ring; // from radius 0.45 to 0.5
  gl->PushMatrix();
  gl->Scale({2, 2, 2});
  gl->Color(Qt::green);
  ring(handle);
  gl->PopMatrix();
  //! [Ring]
  EXPECT_EQ(At(59, 18), QColor(Qt::green));
}

TEST_F(DrawingSnippetPixels, TexturedCube) {
  const auto image = boost::make_shared<VolumeImage>(VolumeImage::Byte1, 2, 3, 5);
  image->Bytes().assign(image->Bytes().size(), 255);
  //! [TexturedCube]
  const VolumeTexture volume(image, gl);
  volume(gl, RGL_TEXTURE0); // the cube's coordinates go to the same unit
  TexturedCube cube(0);
  cube(gl); // from 0 to 1 along each axis
  //! [TexturedCube]
  EXPECT_EQ(At(45, 27), QColor(Qt::white));
}

TEST_F(DrawingSnippetPixels, TexturedQuad) {
  QImage image(9, 9, QImage::Format_ARGB32);
  image.fill(Qt::red);
  //! [TexturedQuad]
  const Texture panel(image, gl);
  const auto pixels = gl->PixelProjection(Window);
  TexturedQuad quad;
  quad.rect = {4, 4, 50, 20};
  quad.border = 3; // a nine-patch: the corners keep their three texels
  quad(handle, panel);
  //! [TexturedQuad]
  EXPECT_EQ(At(30, 12), QColor(Qt::red));
}

} // namespace
