// A picture with a high dynamic range at five exposures. Shows how HdrImage reads a file, what its pixels are, and how
// they become textures that a screen can show.

#include "apps/gallery/PictureLoaders.h"

#include "apps/gallery/Files.h"
#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/ReportCounter.h"
#include "apps/gallery/TextTable.h"
#include "scene/Canvas.h"
#include "scene/TextRenderer.h"

#include "library/HdrImage.h"
#include "library/Texture.h"
#include "library/TexturedQuad.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

namespace Vek::Chart::Gallery {

using namespace Scene;

namespace {

using Library::HdrImage;
using Rgb = HdrImage::Rgb32F;

HdrImage ReadPanorama(const std::string& p_path, Loading& p_loading) {
  const std::unique_ptr<std::istream> stream = p_loading.Open(p_path);
  const ReportCounter reports;
  try {
    HdrImage image(*stream);
    p_loading.CheckCancelled(); // which the reader takes for the end of the file
    if (image.Pixels().empty())
      throw InputError(p_path + ": expected a Radiance picture (#?RADIANCE), got something else");
    if (reports.Others() != 0)
      throw InputError(p_path + ": expected a whole Radiance picture (-Y … +X …), got one that is cut or turned");
    return image;
  } catch (const std::logic_error& error) { // runs over the end of a scanline, sizes that cannot be
    throw InputError(p_path + ": cannot be read as a Radiance picture: " + error.what());
  }
}

/// A picture of at most that width, each pixel the mean of a square block.
struct Reduced {
  Reduced(const HdrImage& p_image, int p_most)
      : step((p_image.Width() + p_most - 1) / p_most)
      , width(std::max(p_image.Width() / step, 1))
      , height(std::max(p_image.Height() / step, 1))
      , pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {
    const int columns = std::min(step, p_image.Width());
    const int rows = std::min(step, p_image.Height());
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x) {
        Rgb& mean = pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
        for (int i = 0; i < rows * columns; ++i) {
          const Rgb& pixel = p_image.Pixel(x * step + i % columns, y * step + i / columns);
          mean.red += pixel.red / static_cast<float>(rows * columns);
          mean.green += pixel.green / static_cast<float>(rows * columns);
          mean.blue += pixel.blue / static_cast<float>(rows * columns);
        }
      }
  }
  int step;
  int width;
  int height;
  std::vector<Rgb> pixels; ///< the bottom row first
};

/// A linear value as sRGB, 0 to 255.
int Developed(float p_value) {
  const double v = std::clamp(static_cast<double>(p_value), 0.0, 1.0);
  return static_cast<int>(std::lround(255 * (v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1 / 2.4) - 0.055)));
}

QImage Exposed(const Reduced& p_picture, double p_gain) {
  QImage image(p_picture.width, p_picture.height, QImage::Format_RGB32);
  const float gain = static_cast<float>(p_gain);
  for (int y = 0; y < p_picture.height; ++y) {
    QRgb* const line = reinterpret_cast<QRgb*>(image.scanLine(p_picture.height - 1 - y));
    const Rgb* const row = p_picture.pixels.data() + static_cast<std::ptrdiff_t>(y) * p_picture.width;
    for (int x = 0; x < p_picture.width; ++x)
      line[x] = qRgb(Developed(row[x].red * gain), Developed(row[x].green * gain), Developed(row[x].blue * gain));
  }
  return image;
}

class HdrPicture : public Picture {
public:
  HdrPicture(const Inputs& p_inputs, Loading& p_loading)
      : _file(FileName(p_inputs.hdr))
      , _image(ReadPanorama(p_inputs.hdr, p_loading.Stage(0.7))) {
    FindRow();
    const double gain = MiddleGain();
    ChooseStops(gain);
    const Reduced picture(_image, 1024);
    for (std::size_t i = 0; i < _stops.size(); ++i)
      _exposed[i] = Exposed(picture, gain * std::exp2(_stops[i]));
  }

  Camera StartCamera() const override { return {}; }

  void Draw(Utility::Scoped<Rgl>& p_gl, const View& p_view) override {
    DrawBackground(p_gl, p_view);
    for (std::size_t i = 0; i < _stops.size(); ++i)
      if (!_exposures[i])
        _exposures[i] = std::make_unique<Library::Texture>(_exposed[i], p_gl);
    Canvas canvas(p_gl, p_view.viewport, _text, PointSize(p_view));
    DrawTitle(canvas, "High dynamic range",
              QString("%1, %2 × %3 pixels, at five exposures")
                  .arg(QString::fromStdString(_file))
                  .arg(_image.Width())
                  .arg(_image.Height()));
    for (std::size_t i = 0; i < _stops.size(); ++i)
      DrawExposure(p_gl, canvas, i);
    DrawPlot(canvas, Cell(canvas, _stops.size()));
  }

private:
  static constexpr std::size_t Middle = 1;
  static constexpr double Gap = 32;

  /// What maps the geometric mean of all pixels that are not black to a middle grey.
  double MiddleGain() const {
    double sum = 0;
    double count = 0;
    for (const Rgb& pixel : _image.Pixels()) {
      const double value = static_cast<double>(_image.Luminance(pixel)) / 179.0;
      if (!(value > 0) || std::isinf(value))
        continue;
      sum += std::log(value);
      ++count;
    }
    return count > 0 ? 0.18 / std::exp(sum / count) : 1.0;
  }

  /// From the one that burns out what is bright to one that shows nothing but the brightest pixel.
  void ChooseStops(double p_gain) {
    const double brightest = static_cast<double>(_brightest) / 179.0 * p_gain;
    const double most = std::clamp(std::isfinite(brightest) ? std::log2(brightest) : 0.0, 4.0, 40.0);
    for (std::size_t i = 2; i < _stops.size(); ++i)
      _stops[i] = -static_cast<int>(std::lround(most * std::array{0.2, 0.4, 0.8}[i - 2]));
  }

  /// The row of the brightest pixel is the one that the plot shows.
  void FindRow() {
    for (std::size_t i = 0; i < _image.Pixels().size(); ++i) {
      const float luminance = _image.Luminance(_image.Pixels()[i]);
      if (!(luminance > _brightest))
        continue;
      _brightest = luminance;
      _row = static_cast<int>(i / static_cast<std::size_t>(_image.Width()));
    }
  }

  /// Six places of equal size, row by row from the upper left.
  static Canvas::Rect Cell(const Canvas& p_canvas, std::size_t p_index) {
    const double width = (p_canvas.Width() - 2 * 48 - 2 * Gap) / 3;
    const double height = std::min(width / 2, 330.0);
    const double left = 48 + static_cast<double>(p_index % 3) * (width + Gap);
    const double top = p_index < 3 ? 800 : 800 - height - 140;
    return {left, top - height, left + width, top};
  }

  /// The largest part of a cell that has the picture's form, in its upper left.
  Canvas::Rect PictureIn(const Canvas::Rect& p_cell) const {
    const double aspect = static_cast<double>(_image.Width()) / _image.Height();
    const double width = std::min(p_cell.right - p_cell.left, (p_cell.top - p_cell.bottom) * aspect);
    return {p_cell.left, p_cell.top - width / aspect, p_cell.left + width, p_cell.top};
  }

  void DrawExposure(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas, std::size_t p_index) const {
    const Canvas::Rect place = PictureIn(Cell(p_canvas, p_index));
    const double point = p_canvas.PointSize();
    Library::TexturedQuad quad;
    quad.rect = {static_cast<float>(place.left * point), static_cast<float>(place.bottom * point),
                 static_cast<float>((place.right - place.left) * point),
                 static_cast<float>((place.top - place.bottom) * point)};
    quad(p_gl.Handle(), *_exposures[p_index]);
    const int stops = _stops[p_index];
    const QString name = stops == 0  ? QString("mean as middle grey")
                         : stops > 0 ? QString("%1 stops more: × %2").arg(stops).arg(1 << stops)
                                     : QString("%1 stops less: ÷ %2").arg(-stops).arg(1 << -stops);
    p_canvas.Text(name, {place.left, place.bottom - 8}, {0, 1}, {GalleryTheme::SmallSize, GalleryTheme::Text, false});
    if (p_index == Middle) {
      const double y = place.bottom + (place.top - place.bottom) * (_row + 0.5) / _image.Height();
      p_canvas.Line({place.left, y}, {place.right, y}, 1.5, QColor(255, 255, 255, 150));
    }
  }

  /// Luminance along the row on a logarithmic scale.
  void DrawPlot(Canvas& p_canvas, const Canvas::Rect& p_cell) const {
    const Canvas::Rect frame{p_cell.left + 74, p_cell.bottom, p_cell.right, p_cell.top};
    std::vector<double> logs;
    for (int x = 0; x < _image.Width(); ++x)
      logs.push_back(std::log10(std::max(static_cast<double>(_image.Luminance(_image.Pixel(x, _row))), 1e-6)));
    const auto [least, most] = std::minmax_element(logs.begin(), logs.end());
    const int first = static_cast<int>(std::floor(*least));
    const int last = std::max(static_cast<int>(std::ceil(std::min(*most, 12.0))), first + 1);

    const TextRenderer::Style text{GalleryTheme::SmallSize, GalleryTheme::Text, false};
    const auto yOf = [&](double p_log) {
      return frame.bottom +
             (frame.top - frame.bottom) * (std::clamp(p_log, double(first), double(last)) - first) / (last - first);
    };
    const int every = (last - first) / 7 + 1; // so that the labels have room
    for (int decade = first; decade <= last; decade += every) {
      p_canvas.Line({frame.left, yOf(decade)}, {frame.right, yOf(decade)}, 1, GalleryTheme::Line);
      p_canvas.Text(PowerOfTen(decade), {frame.left - 10, yOf(decade)}, {1, 0.5}, text);
    }
    const double columns = static_cast<double>(std::max<std::size_t>(logs.size() - 1, 1));
    const auto xOf = [&](std::size_t p_column) {
      return frame.left + (frame.right - frame.left) * static_cast<double>(p_column) / columns;
    };
    for (std::size_t x = 0; x + 1 < logs.size(); ++x)
      p_canvas.Line({xOf(x), yOf(logs[x])}, {xOf(x + 1), yOf(logs[x + 1])}, 2, QColor(0xF6B44B));
    p_canvas.Text("Luminance along the marked row in cd/m²", {frame.left, frame.bottom - 8}, {0, 1}, text);
  }

  static QString PowerOfTen(int p_exponent) {
    constexpr const char* Digits[] = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
    QString text = QString::fromUtf8(p_exponent < 0 ? "10⁻" : "10");
    for (const QChar digit : QString::number(std::abs(p_exponent)))
      text += QString::fromUtf8(Digits[digit.digitValue()]);
    return text;
  }

  std::string _file;
  HdrImage _image;
  float _brightest = 0;
  int _row = 0; ///< of the brightest pixel
  /// Exposures relative to the one that makes the picture's mean a middle grey, in powers of two.
  std::array<int, 5> _stops = {2, 0, 0, 0, 0};
  std::array<QImage, 5> _exposed;
  std::array<std::unique_ptr<Library::Texture>, 5> _exposures;
  TextRenderer _text;
};

} // namespace

std::unique_ptr<Picture> LoadHdr(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<HdrPicture>(p_inputs, p_loading);
}

} // namespace Vek::Chart::Gallery
