#pragma once

#include "apps/viewer/Choosers.h"
#include "apps/viewer/PictureList.h"
#include "apps/viewer/PictureLoader.h"
#include "apps/viewer/PictureView.h"
#include "apps/viewer/ReportPanel.h"

#include <QLabel>
#include <QMainWindow>

#include <memory>

namespace Vek::Chart::Viewer {

/// The window of the viewer: a list of what can be shown, the picture, choices, and a panel with reports. What is
/// chosen or opened is loaded on a thread; until it is there, and when it fails, the picture before stays.
class ViewerWindow : public QMainWindow {
  Q_OBJECT
public:
  /// `p_inputs`: the files of the gallery's pictures. `p_gl`: see PictureView.
  explicit ViewerWindow(const Gallery::Inputs& p_inputs, const Utility::Unscoped<Rgl>& p_gl = Rgl::OnCurrentContext());
  ~ViewerWindow() override;

  /// Loads a row of the list.
  void ShowRow(int p_row);
  /// Loads a file of the user's, of any kind that can be shown; it gets a row of the list when it is there.
  void OpenFile(const QString& p_path);
  /// Writes the picture as it is shown. The panel tells when that fails.
  void SavePicture(const QString& p_path);

  PictureList& List() { return *_list; }
  PictureView& View() { return *_view; }
  ReportPanel& Reports() { return *_reports; }
  PictureLoader& Loader() { return *_loader; }

protected:
  void dragEnterEvent(QDragEnterEvent* p_event) override;
  void dropEvent(QDropEvent* p_event) override;

private:
  /// What a load brings: filled on its thread, taken when it has ended.
  struct Arrival {
    ShownPicture shown;
    std::unique_ptr<Gallery::Picture> picture;
  };

  void Connect();
  void AddActions();
  void AddStatusBar();
  /// `p_describe` gives what is to be shown; it runs on the thread too.
  void Load(const QString& p_name, std::function<ShownPicture(Gallery::Loading&)> p_describe);
  void TellShown();
  void Fail(const QString& p_reason);
  void AskForFile();
  void AskWhereToSave();
  void TellPoint(const std::optional<SurfacePoint>& p_point);

  Gallery::Inputs _inputs;
  // Ends from top to bottom: no load is under way when the view goes, and the panel takes the last reports.
  PictureLoader* _loader;
  PictureView* _view;
  PictureList* _list;
  ReportPanel* _reports;
  Choosers* _choosers;
  QLabel* _point;
  std::shared_ptr<Arrival> _arrival; ///< of the load that was started last
  QString _loading;                  ///< its name
  int _shownRow = -1;
};

} // namespace Vek::Chart::Viewer
