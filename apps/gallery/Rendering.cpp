#include "apps/gallery/Rendering.h"

#include "platform/ogl/OffscreenContext.h"

#include <QString>

namespace Vek::Chart::Gallery {

namespace {

/// How many times a side of the picture is drawn larger.
int Oversampling(const PictureEntry& p_entry) {
  return p_entry.truePixels ? 1 : 2;
}

/// Samples a pixel of the large picture; a poster's would take gigabytes.
int Samples(const PictureEntry& p_entry, Types::Size p_size) {
  if (p_entry.truePixels)
    return 0;
  return static_cast<long>(p_size.width) * p_size.height <= 4'000'000 ? 4 : 0;
}

std::string Escaped(const std::string& p_text) {
  return QString::fromStdString(p_text).toHtmlEscaped().toStdString();
}

} // namespace

QImage RenderPicture(const PictureEntry& p_entry, const Inputs& p_inputs, Types::Size p_size) {
  const int scale = Oversampling(p_entry);
  const Types::Size large(p_size.width * scale, p_size.height * scale);
  Ogl::OffscreenContext context(large, Samples(p_entry, p_size));
  QImage image;
  {
    Utility::Scoped<Rgl> gl(context.Handle());
    context.BindFrameBuffer();
    Loading loading;
    const std::unique_ptr<Picture> picture = p_entry.load(p_inputs, loading);
    const Types::Viewport<0> viewport(0, 0, static_cast<float>(large.width), static_cast<float>(large.height));
    picture->Draw(gl, {picture->StartCamera(), viewport});
    gl->CheckError(p_entry.name);
    image = context.Image();
  }
  return image.convertToFormat(QImage::Format_RGB32)
      .scaled(p_size.width, p_size.height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

std::string IndexPage(const std::vector<PictureEntry>& p_entries) {
  std::string page = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Gallery of Vek.Chart.Library</title>
<style>
body { margin: 0 auto; max-width: 1600px; padding: 2rem 1rem; background: #0b1017; color: #b9c2cc;
       font: 1.05rem/1.5 "DejaVu Sans", system-ui, sans-serif; }
h1 { color: #f2f0ea; font-weight: 600; }
figure { margin: 0 0 3rem; }
img { display: block; width: 100%; height: auto; border-radius: 6px; }
figcaption { padding: .7rem .2rem 0; }
code { color: #74808d; }
</style>
</head>
<body>
<h1>Gallery of Vek.Chart.Library</h1>
)";
  for (const PictureEntry& entry : p_entries) {
    const std::string name = Escaped(entry.name);
    page += "<figure id=\"" + name + "\">\n<a href=\"" + name + ".png\"><img src=\"" + name + ".png\" alt=\"" + name +
            "\"></a>\n<figcaption>" + Escaped(entry.caption) + " <code>" + Escaped(entry.source) +
            "</code></figcaption>\n</figure>\n";
  }
  return page + "</body>\n</html>\n";
}

} // namespace Vek::Chart::Gallery
