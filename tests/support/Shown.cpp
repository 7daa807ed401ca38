#include "tests/support/Shown.h"

#include <QColor>
#include <QGuiApplication>
#include <QString>

#include <algorithm>
#include <filesystem>
#include <map>
#include <utility>

namespace Vek::Test {

using namespace Chart;

void MakeApplication() {
  if (QCoreApplication::instance() != nullptr)
    return;
  static int count = 3;
  static char name[] = "test", option[] = "-platform", platform[] = "offscreen";
  static char* arguments[] = {name, option, platform, nullptr};
  new QGuiApplication(count, arguments);
}

void Shown(const QImage& p_image, const std::string& p_name) {
  const QImage image = p_image.convertToFormat(QImage::Format_RGB32);
  bool seen = false;
  for (int y = 0; y < image.height() && !seen; ++y) {
    const QRgb* const row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    seen = std::any_of(row, row + image.width(), [row](QRgb p_pixel) { return p_pixel != *row; });
  }
  EXPECT_TRUE(seen) << p_name << " shows nothing";
  const std::filesystem::path folder(VEK_SHOWN_FOLDER);
  std::filesystem::create_directories(folder);
  EXPECT_TRUE(image.save(QString::fromStdString((folder / (p_name + ".png")).string()))) << folder;
}

namespace {

Ogl::OffscreenContext& ContextOf(Types::Size p_size) {
  constexpr int Samples = 4;
  // Never destroyed: drivers end themselves before static objects do.
  static auto& contexts = *new std::map<std::pair<int, int>, Ogl::OffscreenContext*>;
  Ogl::OffscreenContext*& context = contexts[{p_size.width, p_size.height}];
  if (context == nullptr)
    context = new Ogl::OffscreenContext(p_size, Samples);
  return *context;
}

} // namespace

ShownFixture::ShownFixture(Types::Size p_size)
    : context(ContextOf(p_size))
    , handle(context.Handle())
    , gl(handle)
    , viewport(0, 0, static_cast<float>(p_size.width), static_cast<float>(p_size.height)) {}

void ShownFixture::SetUp() {
  MakeApplication();
  context.BindFrameBuffer();
  gl->PushAttrib(RGL_ALL_ATTRIB_BITS);
  gl->ClearColor(Qt::white);
  gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT | RGL_STENCIL_BUFFER_BIT);
}

void ShownFixture::TearDown() {
  int depth = 0;
  gl->GetIntegerv(RGL_ATTRIB_STACK_DEPTH, &depth);
  EXPECT_EQ(depth, 1) << "attributes are pushed and not popped";
  for (; depth > 0; --depth)
    gl->PopAttrib();
  EXPECT_TRUE(gl->CheckError("end of the snippet"));
}

} // namespace Vek::Test
