#include "apps/viewer/Charts.h"

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <numeric>

namespace Vek::Chart::Viewer {

namespace {

using Group = Io::Mesh::Group;
using Points = std::vector<std::array<double, 3>>;

/// Axes in another order, which is a rotation: y, the up of most modelling programs, points upwards.
Io::Mesh WithYUp(Io::Mesh p_mesh) {
  for (std::vector<float>* const vectors : {&p_mesh.positions, &p_mesh.normals})
    for (std::size_t i = 0; i + 2 < vectors->size(); i += 3)
      std::rotate(vectors->begin() + static_cast<std::ptrdiff_t>(i),
                  vectors->begin() + static_cast<std::ptrdiff_t>(i + 2),
                  vectors->begin() + static_cast<std::ptrdiff_t>(i + 3));
  return p_mesh;
}

std::size_t CountOf(const Io::Mesh& p_mesh, Io::Mesh::Primitive p_primitive) {
  std::size_t count = 0;
  for (const Group& group : p_mesh.groups)
    count += group.primitive == p_primitive ? group.count : 0;
  return count;
}

/// The vertices of all groups of a kind, in their order.
std::vector<std::size_t> VerticesOf(const Io::Mesh& p_mesh, Io::Mesh::Primitive p_primitive) {
  std::vector<std::size_t> vertices;
  for (const Group& group : p_mesh.groups)
    for (std::size_t i = 0; group.primitive == p_primitive && i < group.count; ++i)
      vertices.push_back(p_mesh.indices[group.first + i]);
  return vertices;
}

Points PointsOf(const Io::Mesh& p_mesh, Io::Mesh::Primitive p_primitive) {
  Points points;
  for (const std::size_t vertex : VerticesOf(p_mesh, p_primitive)) {
    const float* const at = &p_mesh.positions[3 * vertex];
    points.push_back({double(at[0]), double(at[1]), double(at[2])});
  }
  return points;
}

/// The colours of the points of a file.
std::vector<QColor> PointColors(const Io::Mesh& p_mesh) {
  std::vector<QColor> colors;
  for (const std::size_t vertex : VerticesOf(p_mesh, Io::Mesh::Points)) {
    const auto part = [&](std::size_t p_i) { return std::min(std::max(p_mesh.colors[4 * vertex + p_i], 0.0f), 1.0f); };
    colors.push_back(QColor::fromRgbF(part(0), part(1), part(2), part(3)));
  }
  return colors;
}

bool HasColors(const Io::Mesh& p_mesh) {
  const Io::Mesh::Material plain;
  return !p_mesh.colors.empty() ||
         std::any_of(p_mesh.materials.begin(), p_mesh.materials.end(), [&](const auto& p_material) {
           return p_material.diffuse != plain.diffuse || !p_material.diffuseTexture.empty() ||
                  !p_material.diffuseImage.empty();
         });
}

/// Modelling programs write OBJ and glTF with y up; scanners and machine parts have z up.
bool IsYUp(const std::string& p_path) {
  const QString suffix = QFileInfo(QString::fromStdString(p_path)).suffix().toLower();
  return suffix != "ply" && suffix != "stl";
}

class MeshChart : public Chart {
public:
  MeshChart(const std::shared_ptr<const Document>& p_document, const Io::Mesh& p_mesh)
      : Chart(QString::fromStdString(p_document->Name()))
      , _document(p_document)
      , _file(p_mesh) {
    AddChoice("Mesh", "Up", {"z", "y"}, IsYUp(p_document->path) ? 1 : 0, [this](int p_up) {
      Build(p_up == 1);
    }).rebuilds = true;
    QStringList colors{"one", "by x", "by y", "by z"};
    if (HasColors(p_mesh))
      colors.push_front("of the file");
    const auto hasColors = [this] { return _mesh != nullptr || _points != nullptr; };
    AddChoice("Colours", "Colour", colors, 0, [this, colors](int p_index) {
      ColorBy(colors.value(p_index));
    }).isOffered = hasColors;
    AddColors({ColoredOf(_mesh), ColoredOf(_points)}, [this, colors, hasColors] {
      return hasColors() && colors.value(Get<int>("Colours", "Colour")).startsWith("by");
    });
    AddNumber("Colours", "Opacity", 1, {0, 1}, [this](double p_opacity) {
      if (_mesh != nullptr)
        _mesh->SetOpacity(p_opacity);
      if (_points != nullptr)
        _points->SetOpacity(p_opacity);
    }).isOffered = hasColors;
  }

private:
  void Build(bool p_isYUp) {
    for (Scene::Plot* plot : std::initializer_list<Scene::Plot*>{_mesh, _lines, _points})
      if (plot != nullptr)
        figure->Remove(*plot);
    _mesh = nullptr, _lines = nullptr, _points = nullptr;
    const Io::Mesh turned = p_isYUp ? WithYUp(_file) : Io::Mesh();
    const Io::Mesh& mesh = p_isYUp ? turned : _file;
    const std::size_t triangles = CountOf(mesh, Io::Mesh::Triangles) / 3;
    QStringList counts{QString("%L1 vertices").arg(mesh.positions.size() / 3)};
    if (triangles > 0) {
      _mesh = &figure->Mesh(mesh);
      counts << QString("%L1 triangles").arg(triangles);
    }
    if (const Points lines = PointsOf(mesh, Io::Mesh::Lines); !lines.empty()) {
      _lines = &figure->Lines(lines, std::vector<std::size_t>(lines.size() / 2, 2));
      counts << QString("%L1 lines").arg(lines.size() / 2);
    }
    if (const Points points = PointsOf(mesh, Io::Mesh::Points); !points.empty()) {
      _points = &figure->Scatter(points);
      counts << QString("%L1 points").arg(points.size());
    }
    figure->SetTitle(QString::fromStdString(_document->Name()), counts.join(", "));
    p_isYUp ? figure->SetAxisTitles("z", "x", "y") : figure->SetAxisTitles("x", "y", "z");
    figure->SetAspect(1, 1, 1);
    constexpr double Azimuth = 60, Elevation = 25; // the front of a model with y up looks along z
    figure->Look(p_isYUp ? -Azimuth : -Azimuth / 2, Elevation);
    figure->camera.reset();
  }

  void ColorBy(const QString& p_what) {
    if (p_what == "of the file") {
      if (_mesh != nullptr)
        _mesh->ColorByFile();
      if (_points != nullptr && !_file.colors.empty())
        _points->ColorEach(PointColors(_file));
      return;
    }
    const QColor one(0x9F, 0xB4, 0xC8);
    const auto axis = static_cast<std::size_t>(p_what.back().unicode() - u'x');
    const auto color = [&](auto* p_plot, const std::vector<std::size_t>& p_vertices) {
      if (p_plot == nullptr)
        return;
      if (p_what == "one") {
        p_plot->Color(one);
        return;
      }
      std::vector<float> values;
      for (const std::size_t vertex : p_vertices)
        values.push_back(_file.positions[3 * vertex + axis]);
      p_plot->ColorBy(values, QString(p_what.back()));
    };
    std::vector<std::size_t> all(_file.positions.size() / 3);
    std::iota(all.begin(), all.end(), std::size_t{0});
    color(_mesh, all);
    color(_points, VerticesOf(_file, Io::Mesh::Points));
  }

  std::shared_ptr<const Document> _document;
  const Io::Mesh& _file; ///< of the document
  Scene::MeshPlot* _mesh = nullptr;
  Scene::LinesPlot* _lines = nullptr;
  Scene::ScatterPlot* _points = nullptr;
};

} // namespace

std::unique_ptr<Chart> MakeMeshChart(const std::shared_ptr<const Document>& p_document, const Io::Mesh& p_mesh) {
  return std::make_unique<MeshChart>(p_document, p_mesh);
}

} // namespace Vek::Chart::Viewer
