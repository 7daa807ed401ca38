// vek-viewer: shows the pictures of the gallery, and files of the user's, in a window.

#include "apps/gallery/CommandLine.h"
#include "apps/gallery/DataFolder.h"
#include "apps/gallery/FormatHelp.h"
#include "apps/gallery/Options.h"
#include "apps/gallery/TextTable.h"
#include "apps/viewer/DarkTheme.h"
#include "apps/viewer/ViewerWindow.h"

#include <QApplication>

#include <cstdio>
#include <exception>
#include <unistd.h>

namespace {

using namespace Vek::Chart;

constexpr int ExitInput = 1;
constexpr int ExitUsage = 2;

constexpr const char* Help =
    "Usage: vek-viewer [--scene NAME] [--data FOLDER] [--time STEP] [file]\n"
    "Shows the scenes of the gallery in a window, or a file of your own: a mesh, a Radiance image, a volume, winds in\n"
    "NetCDF or a table, earthquakes, or a flow on a grid.\n\n"
    "  --scene NAME    the first scene\n"
    "  --data FOLDER   the folder with data/, symbols/ and sprites/ (found from the program's own place)\n"
    "  --time STEP     the step of time in a NetCDF file, from 0\n"
    "  --help          this text\n\n"
    "Drag to rotate. Middle-drag or Shift+drag to pan. Right-drag or scroll to zoom. R or Home resets the view.\n";

struct Arguments {
  bool help = false;
  std::string picture;
  std::string data;
  std::string time;
  std::string file;
};

Arguments Parse(const std::vector<std::string>& p_arguments) {
  const Gallery::CommandLine line(p_arguments, {{"scene", ""}, {"data", ""}, {"time", ""}}, "argument");
  const std::vector<std::string> files = line.Files();
  if (files.size() > 1)
    throw Gallery::UsageError("unknown argument '" + files[1] + "'; --help lists what there is");
  return {line.Help(), line.Value("scene"), line.Value("data"), line.Value("time"), files.empty() ? "" : files.front()};
}

/// The number of a picture in the gallery.
int RowOf(const std::string& p_picture) {
  int row = 0;
  std::string names;
  for (const Gallery::PictureEntry& entry : Gallery::Pictures()) {
    if (!entry.load)
      continue;
    if (p_picture.empty() || entry.name == p_picture)
      return row;
    names += (row++ == 0 ? "" : ", ") + entry.name;
  }
  throw Gallery::UsageError("there is no scene '" + p_picture + "'; there are: " + names);
}

/// Instead of the core dump that Qt makes when it finds no display.
void TellNoDisplay(QtMsgType p_type, const QMessageLogContext&, const QString& p_text) {
  if (p_type != QtFatalMsg)
    return;
  std::fprintf(stderr,
               "vek-viewer: no window can be opened. It needs a display (an X server or Wayland; is DISPLAY set?); "
               "vek-gallery draws all pictures without one.\n%s\n",
               qPrintable(p_text));
  _exit(ExitInput);
}

int Run(int p_argc, char** p_argv) {
  const Arguments arguments = Parse({p_argv + 1, p_argv + p_argc});
  if (arguments.help) {
    std::fputs((Help + Gallery::FormatHelp()).c_str(), stdout);
    return 0;
  }
  const int row = RowOf(arguments.picture);
  Gallery::Inputs inputs;
  Gallery::FillFromFolder(inputs, Gallery::DataFolder(arguments.data, Gallery::ThisProgram()));

  if (!arguments.time.empty())
    inputs.time = Gallery::ParseTime(arguments.time);

  QSurfaceFormat::setDefaultFormat(Viewer::PictureView::Format());
  const QtMessageHandler usual = qInstallMessageHandler(TellNoDisplay);
  int argc = 1; // the rest is not Qt's
  QApplication application(argc, p_argv);
  qInstallMessageHandler(usual);
  Viewer::ApplyDarkTheme(application);
  Viewer::ViewerWindow window(inputs);
  window.show();
  if (arguments.file.empty())
    window.ShowRow(row);
  else
    window.OpenFile(QString::fromStdString(arguments.file));
  return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const Gallery::UsageError& error) {
    std::fprintf(stderr, "vek-viewer: %s\n", error.what());
    return ExitUsage;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vek-viewer: %s\n", error.what());
    return ExitInput;
  }
}
