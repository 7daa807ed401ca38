// vek-viewer: shows files of the user's, and figures of the gallery, in a window.

#include "apps/gallery/CommandLine.h"
#include "apps/gallery/DataFolder.h"
#include "apps/gallery/FormatHelp.h"
#include "apps/gallery/Options.h"
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
    "Usage: vek-viewer [--scene NAME] [--data FOLDER] [--time STEP] [--variable NAME] [file...]\n"
    "Shows files in a window: meshes, volumes, winds and flows, heights, tables, images with a high dynamic range; or "
    "an\n"
    "example.\n\n"
    "  --scene NAME    an example: a figure of the gallery\n"
    "  --data FOLDER   the folder with data/, symbols/ and sprites/ (found from the program's own place)\n"
    "  --time STEP     the step of time in a NetCDF file, from 0\n"
    "  --variable NAME the variable of a NetCDF file, or the column of heights of a table\n"
    "  --help          this text\n\n"
    "Drag to rotate. Middle-drag, right-drag or Shift+drag to pan. Scroll to zoom. R or Home fits the view. F1 lists "
    "all\n"
    "keys.\n";

struct Arguments {
  bool help = false;
  std::string scene;
  std::string data;
  std::string time;
  std::string variable;
  std::vector<std::string> files;
};

Arguments Parse(const std::vector<std::string>& p_arguments) {
  const Gallery::CommandLine line(p_arguments, {{"scene", ""}, {"data", ""}, {"time", ""}, {"variable", ""}},
                                  "argument");
  return {line.Help(),        line.Value("scene"),    line.Value("data"),
          line.Value("time"), line.Value("variable"), line.Files()};
}

/// Throws UsageError for an example that does not exist or is no figure.
void RequireScene(const std::string& p_name) {
  std::string names;
  for (const Gallery::PictureEntry& entry : Gallery::Pictures()) {
    if (entry.name == p_name && entry.figure != nullptr)
      return;
    if (entry.name == p_name)
      throw Gallery::UsageError("the scene '" + p_name + "' is an image, not a figure; vek-gallery --only " + p_name +
                                " draws it");
    if (entry.figure != nullptr)
      names += (names.empty() ? "" : ", ") + entry.name;
  }
  throw Gallery::UsageError("there is no scene '" + p_name + "'; there are: " + names);
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
  if (!arguments.scene.empty())
    RequireScene(arguments.scene);
  Gallery::Inputs inputs;
  Gallery::FillFromFolder(inputs, Gallery::DataFolder(arguments.data, Gallery::ThisProgram()));

  if (!arguments.time.empty())
    inputs.time = Gallery::ParseTime(arguments.time);

  const QtMessageHandler usual = qInstallMessageHandler(TellNoDisplay);
  int argc = 1; // the rest is not Qt's
  QApplication application(argc, p_argv);
  qInstallMessageHandler(usual);
  QApplication::setApplicationName("vek-viewer");
  QApplication::setDesktopFileName("vek-viewer");
  Viewer::ApplyDarkTheme(application);
  Viewer::ViewerWindow window(inputs);
  window.show();
  if (!arguments.scene.empty())
    window.OpenExample(QString::fromStdString(arguments.scene));
  for (const std::string& file : arguments.files)
    window.OpenFile(QString::fromStdString(file), inputs.time, QString::fromStdString(arguments.variable));
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
