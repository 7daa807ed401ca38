#include "apps/viewer/ModelPicture.h"
#include "apps/gallery/GalleryBars.h"
#include "apps/gallery/GalleryTheme.h"

#include "apps/gallery/Files.h"
#include "apps/gallery/TextTable.h"
#include "scene/Canvas.h"
#include "scene/DirectionalLight.h"
#include "scene/GpuMesh.h"
#include "scene/TextRenderer.h"

#include "library/ColorMap.h"
#include "library/NamedColors.h"
#include "library/ObjModel.h"

#include "platform/ogl/VertexData.h"

#include <boost/lexical_cast.hpp>

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Viewer {

using namespace Scene;

namespace {

using Library::ColorMap;
using Library::NamedColors;
using Library::ObjModel;
using Point = Types::Vector3_Base<double>;
using Record = Ogl::Vec3<float>;

/// Models have y up and look towards +z; in a picture, z is up and its viewer looks towards +y.
Record Upright(const Record& p_record) {
  return {p_record.x, -p_record.z, p_record.y};
}

Point ToPoint(const Record& p_record) {
  return {static_cast<double>(p_record.x), static_cast<double>(p_record.y), static_cast<double>(p_record.z)};
}

/// The indices of all groups, without those primitives that are cut off or name a vertex that is not there.
std::vector<unsigned int> SoundIndices(const ObjModel& p_model, std::size_t p_corners) {
  const std::size_t vertices = p_model.Vertices()->size();
  std::vector<unsigned int> indices;
  for (const auto& group : *p_model.Groups())
    for (auto first = group->indices.begin(); group->indices.end() - first >= static_cast<std::ptrdiff_t>(p_corners);
         first += static_cast<std::ptrdiff_t>(p_corners)) {
      const auto last = first + static_cast<std::ptrdiff_t>(p_corners);
      if (std::all_of(first, last, [vertices](std::uint32_t p_index) { return p_index < vertices; }))
        indices.insert(indices.end(), first, last);
    }
  return indices;
}

/// The model's normals; (0, 0, 0), to be computed, for a vertex without one.
std::vector<Record> Normals(const ObjModel& p_model) {
  std::vector<Record> normals(p_model.Vertices()->size());
  for (std::size_t i = 0; i < std::min(normals.size(), p_model.Normals()->size()); ++i)
    normals[i] = Upright((*p_model.Normals())[i]);
  return normals;
}

class ModelPicture : public Gallery::Picture {
public:
  ModelPicture(const std::string& p_path, Gallery::Loading& p_loading)
      : _file(QString::fromStdString(Gallery::FileName(p_path))) {
    const auto stream = p_loading.Stage(0.8).Open(p_path);
    const boost::shared_ptr<const ObjModel> model = Read(*stream, p_path);
    p_loading.CheckCancelled(); // which the reader may take for the end of the file
    _lines = model->PrimitiveType() == Ogl::VertexBuffer::LineSegments;
    const std::vector<unsigned int> indices = SoundIndices(*model, _lines ? 2 : 3);
    for (const unsigned int index : indices)
      _box += ToPoint(Upright((*model->Vertices())[index]));
    if (indices.empty() || !std::isfinite(Length(_box.Extent())))
      throw Gallery::InputError(p_path + ": expected an OBJ model of triangles or lines, got nothing to draw");
    _primitives = indices.size() / (_lines ? 2 : 3);
    p_loading.Stage(1);
    Build(*model, indices);
  }

  Scene::Camera StartCamera() const override {
    const double size = std::max(Length(_box.Extent()), 1e-6);
    Scene::Camera camera;
    camera.target = _box.Center();
    camera.azimuth = 30;
    camera.elevation = 20;
    camera.fieldOfView = 24;
    camera.distance = 2.6 * size;
    camera.radius = 0.6 * size;
    return camera;
  }

  void Draw(Utility::Scoped<Rgl>& p_gl, const Scene::View& p_view) override {
    Gallery::DrawBackground(p_gl, p_view);
    {
      const auto camera = p_view.camera.Apply(p_gl, p_view.viewport);
      const auto light = Scene::DirectionalLight().Apply(p_gl);
      const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT | RGL_LINE_BIT);
      _colors(p_gl, RGL_TEXTURE0);
      p_gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, RGL_MODULATE);
      p_gl->LineWidth(static_cast<float>(std::max(1.0, 2 * Gallery::PointSize(p_view))));
      if (_lines)
        p_gl->Disable(RGL_LIGHTING);
      _mesh.Draw(p_gl);
    }
    Scene::Canvas canvas(p_gl, p_view.viewport, _text, Gallery::PointSize(p_view));
    Gallery::DrawTitle(
        canvas, _file,
        QString("%1 vertices, %2 %3").arg(_mesh.VertexCount()).arg(_primitives).arg(_lines ? "lines" : "triangles"));
    const auto number = [](double p_value) { return QString::number(p_value, 'g', 4); };
    Gallery::DrawBar(canvas, {60, 62, 520, 78}, {_colors, {0, 1}}, "Height",
                     {{0, 1}, {number(_box.Min().z), number(_box.Max().z)}});
  }

  bool HasSurfaces() const override { return true; }
  void DrawSurfaces(Utility::Scoped<Rgl>& p_gl, const Scene::View& p_view) override {
    const auto camera = p_view.camera.Apply(p_gl, p_view.viewport);
    _mesh.Draw(p_gl);
  }

  bool TakesColors() const override { return true; }
  void SetColors(const std::vector<QColor>& p_colors) override {
    _colors = p_colors.empty() ? OwnColors() : ColorMap(p_colors, ColorMap::Interpolated);
  }

private:
  static boost::shared_ptr<const ObjModel> Read(std::istream& p_stream, const std::string& p_path) {
    try {
      return Library::LoadPolygonObj(p_stream);
    } catch (const boost::bad_lexical_cast&) {
      throw Gallery::InputError(p_path + ": expected an OBJ model, got words where its numbers should be");
    }
  }

  static ColorMap OwnColors() { return {NamedColors::Colors("viridis", 256, 0.2, 1), ColorMap::Interpolated}; }

  void Build(const ObjModel& p_model, std::vector<unsigned int> p_indices) {
    std::vector<Record> positions;
    std::vector<float> heights;
    for (const Record& vertex : *p_model.Vertices()) {
      positions.push_back(Upright(vertex));
      const double height = (ToPoint(positions.back()).z - _box.Min().z) / std::max(_box.Extent().z, 1e-12);
      heights.push_back(static_cast<float>(std::clamp(height, 0.0, 1.0)));
    }
    Ogl::VertexData data;
    if (!_lines)
      data.SetNormals(Normals(p_model));
    data.SetVertices(std::move(positions));
    data.SetTexCoords(std::move(heights));
    data.SetIndices(std::move(p_indices));
    data.PrimitiveType() = _lines ? Ogl::VertexBuffer::LineSegments : Ogl::VertexBuffer::Triangles;
    _mesh = Scene::GpuMesh(data);
  }

  QString _file;
  bool _lines = false;
  std::size_t _primitives = 0;
  Types::BoundingBox_Base<double> _box;
  Scene::GpuMesh _mesh;
  ColorMap _colors = OwnColors();
  Scene::TextRenderer _text;
};

} // namespace

std::unique_ptr<Gallery::Picture> LoadModelPicture(const std::string& p_path, Gallery::Loading& p_loading) {
  return std::make_unique<ModelPicture>(p_path, p_loading);
}

} // namespace Vek::Chart::Viewer
