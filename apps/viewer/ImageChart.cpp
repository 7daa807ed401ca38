#include "apps/viewer/Charts.h"

#include <QBuffer>
#include <QImage>

#include <algorithm>
#include <array>
#include <cmath>

namespace Vek::Chart::Viewer {

namespace {

/// The luminance of linear red, green and blue by Rec. 709.
double Luminance(const float* p_pixel) {
  return 0.2126 * double(p_pixel[0]) + 0.7152 * double(p_pixel[1]) + 0.0722 * double(p_pixel[2]);
}

/// The transfer function of sRGB (IEC 61966-2-1), as a byte.
int Encoded(double p_linear) {
  constexpr double Linear = 0.0031308;
  const double value = !(p_linear > 0)      ? 0
                       : p_linear <= Linear ? 12.92 * p_linear
                                            : 1.055 * std::pow(std::fmin(p_linear, 1), 1 / 2.4) - 0.055;
  return static_cast<int>(std::lround(255 * value));
}

class ImageChart : public Chart {
public:
  ImageChart(const std::shared_ptr<const Document>& p_document, const Io::Image& p_image)
      : Chart(QString::fromStdString(p_document->Name()))
      , _document(p_document)
      , _image(p_image)
      , _hasColors(p_image.channels >= 3) {
    _hasTriad = false;
    figure->SetAspect(1, 1, 1).SetAxisTitles("column", "row from below");
    figure->SetLimits(0, 0, static_cast<double>(p_image.width)).SetLimits(1, 0, static_cast<double>(p_image.height));
    figure->Look(0, 90, Scene::Camera::Projection::Parallel);
    QStringList choices;
    if (_hasColors)
      choices << "colours"
              << "luminance";
    for (std::size_t i = 0; i < p_image.channels; ++i)
      choices << "channel " + (i < p_image.channelNames.size() ? QString::fromStdString(p_image.channelNames[i])
                                                               : QString::number(i + 1));
    AddChoice("Image", "Show", choices, 0, [this](int p_shown) { Build(p_shown); }).rebuilds = true;
    Setting& exposure = AddNumber("Image", "Exposure", std::round(AutoExposure()), {-16, 16}, [this](double p_stops) {
      _stops = p_stops;
      if (_hasColors && Get<int>("Image", "Show") == 0)
        Build(0);
    });
    exposure.isOffered = [this] { return _hasColors && Get<int>("Image", "Show") == 0; };
    exposure.unit = "stops";
    AddColors(
        {ColoredOf(_values)}, [this] { return _values != nullptr; }, "grey");
  }

  QStringList Details(const Scene::Figure::Hit& p_hit) const override {
    const auto column = static_cast<std::ptrdiff_t>(std::floor(p_hit.position.x));
    const auto row = static_cast<std::ptrdiff_t>(std::floor(p_hit.position.y));
    QStringList values;
    if (column < 0 || row < 0 || column >= std::ptrdiff_t(_image.width) || row >= std::ptrdiff_t(_image.height))
      return values;
    const float* const pixel = Pixel(std::size_t(column), std::size_t(row));
    for (std::size_t i = 0; i < _image.channels; ++i)
      values << (i < _image.channelNames.size() ? QString::fromStdString(_image.channelNames[i])
                                                : QString::number(i + 1)) +
                    ' ' + QString::number(double(pixel[i]), 'g', 5);
    return values;
  }

private:
  const float* Pixel(std::size_t p_column, std::size_t p_row) const {
    return &_image.pixels[_image.channels * (p_column + _image.width * p_row)];
  }

  /// Brings the geometric mean of the luminance to a middle grey.
  double AutoExposure() const {
    double sum = 0;
    std::size_t count = 0;
    for (std::size_t i = 0; _hasColors && i < _image.width * _image.height; ++i)
      if (const double luminance = Luminance(&_image.pixels[_image.channels * i]);
          luminance > 0 && std::isfinite(luminance))
        sum += std::log2(luminance), ++count;
    constexpr double Grey = 0.18, Most = 16;
    return count == 0 ? 0 : std::clamp(std::log2(Grey) - sum / static_cast<double>(count), -Most, Most);
  }

  void Build(int p_shown) {
    for (Scene::Plot* plot : std::initializer_list<Scene::Plot*>{_colors, _values})
      if (plot != nullptr)
        figure->Remove(*plot);
    _colors = nullptr, _values = nullptr;
    const bool showsColors = _hasColors && p_shown == 0;
    showsColors ? ShowColors() : ShowValues(p_shown - (_hasColors ? 2 : 0));
    QString subtitle = QString("%L1 × %L2 pixels").arg(_image.width).arg(_image.height);
    if (showsColors)
      subtitle += QString(", exposure %1 stops").arg(_stops);
    figure->SetTitle(QString::fromStdString(_document->Name()), subtitle);
  }

  /// The values of a channel, or of −1 the luminance, as a volume of one layer.
  void ShowValues(int p_channel) {
    std::vector<float> values(_image.width * _image.height);
    for (std::size_t i = 0; i < values.size(); ++i) {
      const float* const pixel = &_image.pixels[_image.channels * i];
      values[i] = p_channel < 0 ? static_cast<float>(Luminance(pixel)) : pixel[p_channel];
    }
    const Scene::VoxelGrid grid(values, {int(_image.width), int(_image.height), 1},
                                {{0, 0, -0.5}, {double(_image.width), double(_image.height), 0.5}});
    _values = &figure->Slices(grid).Clear().At(2, 0).Filter(Scene::VoxelGrid::Filter::Nearest);
    _values->ColorTitle(Settings().empty() ? QString()
                                           : Settings().front().choices.value(p_channel + (_hasColors ? 2 : 0)));
  }

  /// A textured rectangle.
  void ShowColors() {
    constexpr std::size_t Most = 4096; // texels a side
    const std::size_t step = (std::max(_image.width, _image.height) + Most - 1) / Most;
    QImage picture(int((_image.width + step - 1) / step), int((_image.height + step - 1) / step), QImage::Format_RGB32);
    const double factor = std::exp2(_stops);
    for (int y = 0; y < picture.height(); ++y) {
      auto* const row = reinterpret_cast<QRgb*>(picture.scanLine(picture.height() - 1 - y));
      for (int x = 0; x < picture.width(); ++x) {
        const float* const pixel = Pixel(std::size_t(x) * step, std::size_t(y) * step);
        row[x] = qRgb(Encoded(factor * double(pixel[0])), Encoded(factor * double(pixel[1])),
                      Encoded(factor * double(pixel[2])));
      }
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, "BMP"); // fast
    Io::Mesh mesh;
    const auto width = static_cast<float>(_image.width), height = static_cast<float>(_image.height);
    mesh.positions = {0, 0, 0, width, 0, 0, width, height, 0, 0, height, 0};
    mesh.normals = {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};
    mesh.texCoords = {0, 0, 1, 0, 1, 1, 0, 1};
    mesh.indices = {0, 1, 2, 0, 2, 3};
    Io::Mesh::Material material;
    material.diffuse = {1, 1, 1};
    material.diffuseImage.assign(bytes.begin(), bytes.end());
    mesh.materials = {material};
    Io::Mesh::Group group;
    group.material = 0;
    group.count = mesh.indices.size();
    mesh.groups = {group};
    _colors = &figure->Mesh(mesh);
  }

  std::shared_ptr<const Document> _document;
  const Io::Image& _image; ///< of the document
  const bool _hasColors;
  double _stops = 0;
  Scene::MeshPlot* _colors = nullptr;
  Scene::SlicesPlot* _values = nullptr;
};

} // namespace

std::unique_ptr<Chart> MakeImageChart(const std::shared_ptr<const Document>& p_document, const Io::Image& p_image) {
  return std::make_unique<ImageChart>(p_document, p_image);
}

} // namespace Vek::Chart::Viewer
