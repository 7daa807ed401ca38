#include "apps/viewer/ModelPicture.h"
#include "apps/gallery/GalleryBars.h"
#include "apps/gallery/GalleryTheme.h"

#include "apps/gallery/Files.h"
#include "apps/gallery/TextTable.h"
#include "io/ReadMesh.h"
#include "scene/Canvas.h"
#include "scene/DirectionalLight.h"
#include "scene/GpuMesh.h"
#include "scene/TextRenderer.h"

#include "library/ColorMap.h"
#include "library/NamedColors.h"
#include "library/ObjModel.h"

#include "platform/ogl/VertexData.h"
#include "platform/utility/GetLogger.h"

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

/// What is drawn of a file, with z up.
struct Shape {
  bool lines = false;
  std::vector<Record> positions;
  std::vector<Record> normals; ///< (0, 0, 0) for one to be computed
  std::vector<unsigned int> indices;
};

boost::shared_ptr<const ObjModel> ReadObj(std::istream& p_stream, const std::string& p_path) {
  try {
    return Library::LoadPolygonObj(p_stream);
  } catch (const boost::bad_lexical_cast&) {
    throw Gallery::InputError(p_path + ": expected an OBJ model, got words where its numbers should be");
  }
}

Shape ReadModel(std::istream& p_stream, const std::string& p_path) {
  const boost::shared_ptr<const ObjModel> model = ReadObj(p_stream, p_path);
  Shape shape;
  shape.lines = model->PrimitiveType() == Ogl::VertexBuffer::LineSegments;
  shape.indices = SoundIndices(*model, shape.lines ? 2 : 3);
  for (const Record& vertex : *model->Vertices())
    shape.positions.push_back(Upright(vertex));
  shape.normals = Normals(*model);
  return shape;
}

std::vector<Record> Records(const std::vector<float>& p_numbers, bool p_upright) {
  std::vector<Record> records;
  for (std::size_t i = 0; i + 3 <= p_numbers.size(); i += 3) {
    const Record record{p_numbers[i], p_numbers[i + 1], p_numbers[i + 2]};
    records.push_back(p_upright ? Upright(record) : record);
  }
  return records;
}

Shape ReadMesh(std::istream& p_stream, const std::string& p_path) {
  const Io::Mesh mesh = Io::ReadMesh(p_stream, p_path);
  for (const std::string& warning : mesh.warnings)
    Utility::GetLogger().error("WARNING: " + warning);
  const std::string name = Gallery::FileName(p_path);
  const bool isGltf = name.find(".gl") != std::string::npos;
  Shape shape;
  shape.positions = Records(mesh.positions, isGltf);
  shape.normals = Records(mesh.normals, isGltf);
  const auto has = [&](Io::Mesh::Primitive p_kind) {
    return std::any_of(mesh.groups.begin(), mesh.groups.end(),
                       [&](const Io::Mesh::Group& p_group) { return p_group.primitive == p_kind; });
  };
  shape.lines = !has(Io::Mesh::Triangles);
  for (const Io::Mesh::Group& group : mesh.groups)
    if (group.primitive == (shape.lines ? Io::Mesh::Lines : Io::Mesh::Triangles))
      shape.indices.insert(shape.indices.end(), mesh.indices.begin() + static_cast<std::ptrdiff_t>(group.first),
                           mesh.indices.begin() + static_cast<std::ptrdiff_t>(group.first + group.count));
  return shape;
}

class ModelPicture : public Gallery::Picture {
public:
  ModelPicture(const std::string& p_path, Gallery::Loading& p_loading,
               Shape (*p_read)(std::istream&, const std::string&))
      : _file(QString::fromStdString(Gallery::FileName(p_path))) {
    const auto stream = p_loading.Stage(0.8).Open(p_path);
    Shape shape = p_read(*stream, p_path);
    p_loading.CheckCancelled(); // which the reader may take for the end of the file
    _lines = shape.lines;
    for (const unsigned int index : shape.indices)
      _box += ToPoint(shape.positions[index]);
    if (shape.indices.empty() || !std::isfinite(Length(_box.Extent())))
      throw Gallery::InputError(p_path + ": expected an OBJ model of triangles or lines, got nothing to draw");
    _primitives = shape.indices.size() / (_lines ? 2 : 3);
    p_loading.Stage(1);
    Build(std::move(shape));
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
  static ColorMap OwnColors() { return {NamedColors::Colors("viridis", 256, 0.2, 1), ColorMap::Interpolated}; }

  void Build(Shape p_shape) {
    std::vector<float> heights;
    for (const Record& position : p_shape.positions) {
      const double height = (ToPoint(position).z - _box.Min().z) / std::max(_box.Extent().z, 1e-12);
      heights.push_back(static_cast<float>(std::clamp(height, 0.0, 1.0)));
    }
    Ogl::VertexData data;
    if (!_lines)
      data.SetNormals(std::move(p_shape.normals));
    data.SetVertices(std::move(p_shape.positions));
    data.SetTexCoords(std::move(heights));
    data.SetIndices(std::move(p_shape.indices));
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
  return std::make_unique<ModelPicture>(p_path, p_loading, ReadModel);
}

std::unique_ptr<Gallery::Picture> LoadMeshPicture(const std::string& p_path, Gallery::Loading& p_loading) {
  return std::make_unique<ModelPicture>(p_path, p_loading, ReadMesh);
}

} // namespace Vek::Chart::Viewer
