#pragma once

#include "apps/viewer/Charts.h"
#include "apps/viewer/Loader.h"
#include "apps/viewer/RecentFiles.h"
#include "apps/viewer/ReportPanel.h"
#include "apps/viewer/SettingsPanel.h"

#include "apps/gallery/Picture.h"
#include "widgets/FigureView.h"

#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QStackedWidget>

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace Vek::Chart::Viewer {

/// The window of the viewer: a list of open files, the chart of one of them, its settings, and a panel with reports.
/// Files are read on a thread, one after the other; until one is there, and when it fails, the chart before stays.
class ViewerWindow : public QMainWindow {
  Q_OBJECT
public:
  /// `p_inputs`: the files that the examples read.
  explicit ViewerWindow(const Gallery::Inputs& p_inputs);
  ~ViewerWindow() override;

  /// Reads a file of any kind that can be shown; it gets a row of the list when it is there, or takes that of the same
  /// path. With a step of time, if it has several. Asks for the layout of raw values.
  void OpenFile(const QString& p_path, std::size_t p_time = 0, const QString& p_variable = {});
  /// Makes a figure of the gallery, by its name.
  void OpenExample(const QString& p_name);

  /// Shows a row of the list, −1 for none.
  void ShowRow(int p_row);
  /// Removes a row of the list.
  void CloseRow(int p_row);
  /// Draws the chart with a size of its own and writes it. A failure is listed in the panel of reports.
  void SaveImage(const QString& p_path, Types::Size p_size, bool p_isTransparent = false);

  /// All keys and what the mouse does, as rich text.
  QString HelpText() const;

  /// The chart that is shown; null without one.
  Viewer::Chart* Chart();
  QListWidget& List() { return *_list; }
  Widgets::FigureView& View() { return *_view; }
  ReportPanel& Reports() { return *_reports; }
  SettingsPanel& Settings() { return *_settings; }
  Viewer::Loader& Loader() { return *_loader; }

signals:
  /// A chart has come to be shown.
  void Shown();

protected:
  void dragEnterEvent(QDragEnterEvent* p_event) override;
  void dropEvent(QDropEvent* p_event) override;

private:
  /// A row of the list.
  struct Entry {
    QString path; ///< of a file, or ":name" of an example
    Part part;
    std::shared_ptr<Viewer::Chart> chart;
  };
  /// What a load brings: filled on its thread, taken when it has ended.
  struct Arrival {
    Entry entry;
    std::vector<std::string> warnings;
  };
  using Make = std::function<void(Arrival&, const Io::Progress&)>;
  struct Request {
    std::shared_ptr<Arrival> arrival;
    Make make;
  };

  void Connect();
  void AddMenus();
  void AddViews();
  void AddStatusBar();
  void OpenPart(const QString& p_path, const Part& p_part);
  void Load(const QString& p_path, const Part& p_part, Make p_make);
  void StartNext();
  void Take(const std::shared_ptr<Arrival>& p_arrival);
  void ShowPart();
  void Reread(const Setting& p_setting);
  void ShowPoint(const std::optional<Scene::Figure::Hit>& p_hit);
  void AskForFiles();
  void AskWhereToSave();
  void AskForImage(Types::Size p_size, bool p_isTransparent);
  void ShowHelp();
  void ShowAbout();

  Gallery::Inputs _inputs;
  // Ends from top to bottom: no load is under way when the view goes, and the panel takes the last reports.
  Viewer::Loader* _loader;
  QStackedWidget* _stack;
  Widgets::FigureView* _view;
  QListWidget* _list;
  ReportPanel* _reports;
  SettingsPanel* _settings;
  QLabel* _point;
  RecentFiles _recent;
  QMenu* _recentMenu = nullptr;
  std::vector<Entry> _entries;
  std::deque<Request> _waiting;
  std::shared_ptr<Arrival> _loading; ///< that is under way
  int _shown = -1;
};

} // namespace Vek::Chart::Viewer
