#include "parallel/Compositor.h"

#include "library/SampledTarget.h"
#include "platform/ogl/OffscreenContext.h"
#include "scene/VisibilityOrder.h"

#include <IceT.h>
#include <IceTMPI.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Vek::Chart::Parallel {

namespace {

using Library::SampledTarget;
using Samples = SampledTarget::Samples;
using Written = SampledTarget::Written;
using Scene::Figure;
using Scene::FigureLayout;

/// The mean of each four pixels.
QImage Halved(const QImage& p_image) {
  QImage half(p_image.width() / 2, p_image.height() / 2, QImage::Format_RGB32);
  for (int y = 0; y < half.height(); ++y)
    for (int x = 0; x < half.width(); ++x) {
      const auto mean = [&](int (*p_channel)(QRgb)) {
        int sum = 2;
        for (const auto& [dx, dy] : {std::pair(0, 0), std::pair(1, 0), std::pair(0, 1), std::pair(1, 1)})
          sum += p_channel(p_image.pixel(2 * x + dx, 2 * y + dy));
        return sum / 4;
      };
      half.setPixel(x, y, qRgb(mean(qRed), mean(qGreen), mean(qBlue)));
    }
  return half;
}

/// The GL of a process. Ends with its context.
struct Canvas {
  Canvas(Types::Size p_size, int p_samples)
      : context({1, 1})
      , gl(context.Handle())
      , target(gl, p_size, p_samples) {}

  std::size_t Count() const { return static_cast<std::size_t>(target.Count()); }
  void Clear(Ogl::GlBitfield p_buffers) {
    const auto bound = target.BindForDraw(gl);
    gl->ClearColor(0, 0, 0, 0);
    gl->ClearDepth(1);
    gl->Clear(p_buffers);
  }

  Ogl::OffscreenContext context;
  Utility::Scoped<Rgl> gl;
  SampledTarget target;
};

} // namespace

/// IceT's context. Its functions work on the context that was set last.
struct VEK_HIDDEN Compositor::Engine {
  explicit Engine(const Processes& p_all)
      : all(p_all) {
    const IceTCommunicator communicator = icetCreateMPICommunicator(all.Communicator());
    context = icetCreateContext(communicator);
    icetDestroyMPICommunicator(communicator); // the context has a copy
    icetDiagnostics(ICET_DIAG_OFF);
    icetStrategy(ICET_STRATEGY_SEQUENTIAL);
    icetDisable(ICET_COMPOSITE_ONE_BUFFER); // depths as well
  }
  ~Engine() { icetDestroyContext(context); }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  void SetSize(Types::Size p_size) const {
    icetSetContext(context);
    icetResetTiles();
    icetAddTile(0, 0, p_size.width, p_size.height, 0);
  }
  /// Nearer samples hide farther ones.
  void ByDepth() const {
    icetSetColorFormat(ICET_IMAGE_COLOR_RGBA_UBYTE);
    icetCompositeMode(ICET_COMPOSITE_MODE_Z_BUFFER);
    icetSetDepthFormat(ICET_IMAGE_DEPTH_FLOAT);
    icetDisable(ICET_ORDERED_COMPOSITE);
  }
  /// Premultiplied colours are blended, those of the first process before the others.
  void InOrder(const std::vector<std::size_t>& p_processes) const {
    const std::vector<IceTInt> order(p_processes.begin(), p_processes.end());
    icetSetColorFormat(ICET_IMAGE_COLOR_RGBA_FLOAT); // IceT rounds bytes down, once a process
    icetCompositeMode(ICET_COMPOSITE_MODE_BLEND);
    icetSetDepthFormat(ICET_IMAGE_DEPTH_NONE);
    icetEnable(ICET_ORDERED_COMPOSITE);
    icetCompositeOrder(order.data());
  }
  /// Collective. Replaces the image in process 0 by the composited one, by depth or blended in order.
  void Composite(Samples& p_image) const {
    const IceTImage whole = Whole(p_image.colors.data(), p_image.depths.data());
    if (all.Rank() != 0)
      return;
    std::memcpy(p_image.colors.data(), icetImageGetColorcub(whole), p_image.colors.size());
    std::memcpy(p_image.depths.data(), icetImageGetDepthcf(whole), p_image.depths.size() * sizeof(float));
  }
  void Blend(Samples& p_image, std::vector<float>& p_colors) const {
    const IceTImage whole = Whole(p_colors.data(), nullptr);
    if (all.Rank() != 0)
      return;
    const IceTFloat* const colors = icetImageGetColorcf(whole);
    std::transform(colors, colors + p_image.colors.size(), p_image.colors.begin(), [](float p_share) {
      return static_cast<unsigned char>(std::clamp(255 * p_share + 0.5F, 0.0F, 255.0F));
    });
  }
  /// Collective. What the canvases show by depth, kept in process 0. The canvases get the common depths if asked for.
  std::vector<Samples> Opaque(Canvas& p_canvas, bool p_givesDepths) const {
    ByDepth();
    std::vector<Samples> samples(p_canvas.Count());
    for (std::size_t i = 0; i < samples.size(); ++i) {
      Samples& image = samples[i];
      all.Together([&] { image = p_canvas.target.Read(p_canvas.gl, static_cast<int>(i)); });
      Composite(image);
      if (p_givesDepths) {
        MPI_Bcast(image.depths.data(), static_cast<int>(image.depths.size()), MPI_FLOAT, 0, all.Communicator());
        all.Together([&] { p_canvas.target.Write(p_canvas.gl, static_cast<int>(i), image, Written::Depths); });
      }
      if (all.Rank() != 0)
        image = {};
    }
    return samples;
  }
  /// Collective. What the canvases show, blended in the order of the processes, kept in process 0.
  std::vector<Samples> Transparent(Canvas& p_canvas, const std::vector<std::size_t>& p_processes) const {
    InOrder(p_processes);
    std::vector<Samples> samples(p_canvas.Count());
    for (std::size_t i = 0; i < samples.size(); ++i) {
      Samples& image = samples[i];
      std::vector<float> colors;
      all.Together([&] {
        image = p_canvas.target.Read(p_canvas.gl, static_cast<int>(i));
        colors.resize(image.colors.size());
        std::transform(image.colors.begin(), image.colors.end(), colors.begin(),
                       [](unsigned char p_color) { return static_cast<float>(p_color) / 255; });
      });
      Blend(image, colors);
      if (all.Rank() != 0)
        image = {};
    }
    return samples;
  }
  IceTImage Whole(const void* p_colors, const float* p_depths) const {
    constexpr IceTFloat Nothing[4] = {0, 0, 0, 0};
    const IceTImage whole = icetCompositeImage(p_colors, p_depths, nullptr, nullptr, nullptr, Nothing);
    all.Together([error = icetGetError()] {
      if (error != ICET_NO_ERROR)
        throw std::runtime_error("IceT reports error " + std::to_string(error));
    });
    return whole;
  }

  Processes all;
  IceTContext context;
};

Compositor::Compositor(const Processes& p_processes)
    : _processes(p_processes)
    , _engine(std::make_unique<Engine>(p_processes)) {}

Compositor::~Compositor() = default;

QImage Compositor::Image(Figure& p_figure, const Types::BoundingBox_Base<double>& p_block, Types::Size p_size,
                         int p_samples) const {
  const Processes& all = _processes;
  const bool isFirst = all.Rank() == 0;
  constexpr int LargestTwice = 4096;
  const bool isTransparent = all.Any(p_figure.HasTransparent()), hasVolume = all.Any(p_figure.HasVolume());
  const bool isDoubled = isTransparent && std::max(p_size.width, p_size.height) <= LargestTwice;
  const int factor = isDoubled ? 2 : 1;
  const Types::Size size(factor * p_size.width, factor * p_size.height);
  const int samples = isDoubled ? p_samples / 8 * 2 : p_samples;

  std::optional<Canvas> canvas;
  FigureLayout layout;
  QImage page;
  const bool isBlended = isTransparent || hasVolume;
  const Types::Viewport<0> viewport(0, 0, static_cast<float>(size.width), static_cast<float>(size.height));
  all.Together([&] {
    layout = p_figure.Layout(viewport, factor); // before GL takes memory
    canvas.emplace(size, samples);
  });
  static_assert(std::is_trivially_copyable_v<Scene::Camera>);
  QByteArray camera(reinterpret_cast<const char*>(&layout.camera), sizeof(layout.camera)); // NOLINT: its bytes
  camera = all.Broadcast(camera);
  std::memcpy(&layout.camera, camera.constData(), sizeof(layout.camera));

  const auto draw = [&](Figure::Layer p_layer) {
    const auto bound = canvas->target.BindForDraw(canvas->gl);
    p_figure.Draw(canvas->gl, viewport, layout, p_layer, factor);
  };
  all.Together([&] {
    canvas->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT | RGL_STENCIL_BUFFER_BIT);
    draw(Figure::Layer::Opaque);
    if (!isBlended) // memory for the images of the others
      p_figure.Release(canvas->gl);
  });
  _engine->SetSize(size);
  std::vector<Samples> opaque = _engine->Opaque(*canvas, isBlended), blended;
  if (isBlended) {
    Processes::Box box;
    if (!p_block.Empty())
      box = {p_figure.ToScene(p_block.Min()), p_figure.ToScene(p_block.Max())};
    const std::vector<std::size_t> order = Scene::VisibilityOrder(all.Gather(box), layout.camera);
    all.Together([&] {
      canvas->Clear(RGL_COLOR_BUFFER_BIT);
      draw(Figure::Layer::Transparent);
      p_figure.Release(canvas->gl);
    });
    blended = _engine->Transparent(*canvas, order);
  }

  all.Together([&] {
    if (!isFirst)
      return;
    canvas->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT | RGL_STENCIL_BUFFER_BIT);
    draw(Figure::Layer::Background);
    for (std::size_t sample = 0; sample < opaque.size(); ++sample) {
      canvas->target.Write(canvas->gl, static_cast<int>(sample), opaque[sample], Written::Colors);
      if (isBlended)
        canvas->target.Write(canvas->gl, static_cast<int>(sample), blended[sample], Written::Blended);
      opaque[sample] = {};
    }
    draw(Figure::Layer::Legends);
    page = canvas->target.Image(canvas->gl).convertToFormat(QImage::Format_RGB32); // blending has changed alpha
    p_figure.Release(canvas->gl);
  });
  return isDoubled && isFirst ? Halved(page) : page;
}

} // namespace Vek::Chart::Parallel
