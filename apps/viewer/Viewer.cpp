// vek-viewer: shows the pictures of the gallery, and files of the user's, in a window.

#include "apps/gallery/DataFolder.h"
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
    "Usage: vek-viewer [--scene NAME] [--data FOLDER] [file]\n"
    "Shows the scenes of the gallery in a window, or a file of your own: an OBJ model, a Radiance picture, a volume,\n"
    "a table of winds or earthquakes, or a flow on a grid.\n\n"
    "  --scene NAME    the scene to begin with\n"
    "  --data FOLDER   the folder with data/, symbols/ and sprites/ (found from the program's own place)\n"
    "  --help          this text\n\n"
    "Left button: turn. Middle button, or shift and left: move. Right button or wheel: come nearer. R or Home: "
    "reset.\n";

struct Arguments {
  bool help = false;
  std::string picture;
  std::string data;
  std::string file;
};

class UsageError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

Arguments Parse(const std::vector<std::string>& p_arguments) {
  Arguments result;
  for (auto argument = p_arguments.begin(); argument != p_arguments.end(); ++argument) {
    if (*argument == "--help" || *argument == "-h") {
      result.help = true;
    } else if (*argument == "--scene" || *argument == "--data") {
      std::string& value = *argument == "--scene" ? result.picture : result.data;
      if (++argument == p_arguments.end())
        throw UsageError(*std::prev(argument) + " needs a value");
      value = *argument;
    } else if (argument->compare(0, 1, "-") == 0 || !result.file.empty()) {
      throw UsageError("unknown argument '" + *argument + "'; --help lists what there is");
    } else {
      result.file = *argument;
    }
  }
  return result;
}

/// The number of a picture in the gallery.
int RowOf(const std::string& p_picture) {
  int row = 0;
  std::string names;
  for (const Gallery::PictureEntry& entry : Gallery::Pictures()) {
    if (p_picture.empty() || entry.name == p_picture)
      return row;
    names += (row++ == 0 ? "" : ", ") + entry.name;
  }
  throw UsageError("there is no scene '" + p_picture + "'; there are: " + names);
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
    std::fputs(Help, stdout);
    return 0;
  }
  const int row = RowOf(arguments.picture);
  Gallery::Inputs inputs;
  Gallery::FillFromFolder(inputs, Gallery::DataFolder(arguments.data, Gallery::ThisProgram()));

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
  } catch (const UsageError& error) {
    std::fprintf(stderr, "vek-viewer: %s\n", error.what());
    return ExitUsage;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vek-viewer: %s\n", error.what());
    return ExitInput;
  }
}
