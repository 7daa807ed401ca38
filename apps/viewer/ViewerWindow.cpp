#include "apps/viewer/ViewerWindow.h"

#include "apps/viewer/FileKind.h"
#include "apps/viewer/LoadBar.h"

#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QMimeData>
#include <QStatusBar>
#include <QToolButton>

#include <utility>

namespace Vek::Chart::Viewer {

ViewerWindow::ViewerWindow(const Gallery::Inputs& p_inputs, const Utility::Unscoped<Rgl>& p_gl)
    : _inputs(p_inputs)
    , _loader(new PictureLoader(this))
    , _view(new PictureView(p_gl, this))
    , _list(new PictureList(this))
    , _reports(new ReportPanel(this))
    , _choosers(new Choosers(this))
    , _point(new QLabel(this)) {
  for (const Gallery::PictureEntry& entry : Gallery::Pictures())
    if (entry.load)
      _list->Add(GalleryPicture(entry, _inputs));

  setCentralWidget(_view);
  auto* const pictures = new QDockWidget("Scenes", this);
  pictures->setObjectName("scenes");
  pictures->setWidget(_list);
  pictures->setFeatures(QDockWidget::NoDockWidgetFeatures);
  addDockWidget(Qt::LeftDockWidgetArea, pictures);
  addDockWidget(Qt::BottomDockWidgetArea, _reports);
  setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
  resizeDocks({pictures}, {300}, Qt::Horizontal);
  resizeDocks({_reports}, {100}, Qt::Vertical);
  setAcceptDrops(true);
  resize(1400, 900);

  AddActions();
  AddStatusBar();
  Connect();
  setWindowTitle("Vek viewer");
}

ViewerWindow::~ViewerWindow() = default;

void ViewerWindow::Connect() {
  connect(_list, &PictureList::Chosen, this, &ViewerWindow::ShowRow);
  connect(_loader, &PictureLoader::Loaded, this,
          [this] { _view->Show(std::move(_arrival->picture), _arrival->shown); });
  connect(_loader, &PictureLoader::Failed, this, [this](const QString& p_reason) {
    Fail(p_reason.contains(_loading) ? p_reason : _loading + ": " + p_reason);
  });
  connect(_loader, &PictureLoader::Dropped, this, [this] { _list->Mark(_shownRow); });
  connect(_view, &PictureView::Shown, this, &ViewerWindow::TellShown);
  connect(_view, &PictureView::Rejected, this, &ViewerWindow::Fail);
  connect(_view, &PictureView::Pointed, this, &ViewerWindow::TellPoint);
  connect(_choosers, &Choosers::ColorsChosen, _view, &PictureView::SetColors);
  connect(_choosers, &Choosers::ShapeChosen, _view, &PictureView::SetShape);
}

void ViewerWindow::AddActions() {
  const auto add = [this](QMenu* p_menu, const QString& p_text, const QList<QKeySequence>& p_keys,
                          const std::function<void()>& p_do) {
    QAction* const action = p_menu->addAction(p_text);
    action->setShortcuts(p_keys);
    connect(action, &QAction::triggered, this, p_do);
    return action;
  };
  QMenu* const file = menuBar()->addMenu("&File");
  QAction* const open = add(file, "&Open…", {QKeySequence::Open}, [this] { AskForFile(); });
  QAction* const save = add(file, "&Save picture…", {QKeySequence::Save}, [this] { AskWhereToSave(); });
  file->addSeparator();
  add(file, "&Quit", {QKeySequence("Ctrl+Q")}, [this] { close(); });
  QMenu* const show = menuBar()->addMenu("&View");
  QAction* const reset =
      add(show, "&Reset view", {QKeySequence("R"), QKeySequence("Home")}, [this] { _view->ResetCamera(); });
  add(show, "&Cancel loading", {QKeySequence("Esc")}, [this] { _loader->Cancel(); });
  show->addSeparator();
  QAction* const reports = _reports->toggleViewAction();
  reports->setText("R&eports");
  show->addAction(reports);

  _choosers->setMovable(false);
  _choosers->setContextMenuPolicy(Qt::PreventContextMenu);
  auto* const spacer = new QWidget(_choosers);
  spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  _choosers->addWidget(spacer);
  _choosers->addActions({open, save, reset});
  addToolBar(_choosers);
}

void ViewerWindow::AddStatusBar() {
  _point->setObjectName("point");
  statusBar()->addWidget(_point, 1);
  statusBar()->addPermanentWidget(new LoadBar(*_loader, this));
  auto* const count = new QToolButton(this);
  count->setAutoRaise(true);
  count->setDefaultAction(_reports->toggleViewAction());
  const auto tell = [this](std::size_t p_count) {
    _reports->toggleViewAction()->setText(QString("Reports: %1").arg(p_count));
    if (p_count > 0)
      _reports->show();
  };
  connect(_reports, &ReportPanel::CountChanged, this, tell);
  tell(_reports->Count());
  _reports->hide(); // until there is something to read
  statusBar()->addPermanentWidget(count);
}

void ViewerWindow::ShowRow(int p_row) {
  const ShownPicture shown = _list->At(p_row);
  Load(QString::fromStdString(shown.name), [shown](Gallery::Loading&) { return shown; });
  _list->Mark(p_row);
}

void ViewerWindow::OpenFile(const QString& p_path) {
  Load(p_path, [path = p_path.toStdString(), inputs = _inputs](Gallery::Loading& p_loading) {
    return FilePicture(path, inputs, p_loading);
  });
}

void ViewerWindow::Load(const QString& p_name, std::function<ShownPicture(Gallery::Loading&)> p_describe) {
  const auto arrival = std::make_shared<Arrival>();
  _loader->Start([arrival, describe = std::move(p_describe)](Gallery::Loading& p_loading) {
    arrival->shown = describe(p_loading);
    arrival->picture = arrival->shown.load(p_loading);
  });
  _arrival = arrival;
  _loading = p_name;
}

void ViewerWindow::TellShown() {
  const ShownPicture& shown = _view->About();
  const int row = _list->Find(shown.caption);
  _shownRow = row >= 0 ? row : _list->Add(shown);
  if (!_loader->IsLoading())
    _list->Mark(_shownRow);
  _choosers->Offer(_view->Picture());
  setWindowTitle(QString::fromStdString(shown.name) + " – Vek viewer");
}

void ViewerWindow::Fail(const QString& p_reason) {
  _reports->AddFailure(p_reason);
  _list->Mark(_shownRow);
  if (_view->Picture() == nullptr)
    _choosers->Offer(nullptr);
}

void ViewerWindow::AskForFile() {
  auto* const dialog = new QFileDialog(this, "Open", QString(), FileFilters().join(";;"));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(QFileDialog::ExistingFile);
  connect(dialog, &QFileDialog::fileSelected, this, &ViewerWindow::OpenFile);
  dialog->open();
}

void ViewerWindow::AskWhereToSave() {
  auto* const dialog = new QFileDialog(this, "Save picture", "picture.png", "Pictures (*.png)");
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setDefaultSuffix("png");
  if (_shownRow >= 0)
    dialog->selectFile(QFileInfo(QString::fromStdString(_list->At(_shownRow).name)).completeBaseName() + ".png");
  connect(dialog, &QFileDialog::fileSelected, this, &ViewerWindow::SavePicture);
  dialog->open();
}

void ViewerWindow::SavePicture(const QString& p_path) {
  if (!_view->Image().save(p_path, "PNG"))
    _reports->AddFailure(p_path + ": cannot be written");
}

void ViewerWindow::TellPoint(const std::optional<SurfacePoint>& p_point) {
  const auto number = [](double p_value) { return QString::number(p_value, 'f', 3); };
  _point->setText(p_point ? QString("  Depth %1    x %2   y %3   z %4")
                                .arg(number(p_point->depth), number(p_point->position.x), number(p_point->position.y),
                                     number(p_point->position.z))
                          : QString());
}

void ViewerWindow::dragEnterEvent(QDragEnterEvent* p_event) {
  for (const QUrl& url : p_event->mimeData()->urls())
    if (url.isLocalFile())
      p_event->acceptProposedAction();
}

void ViewerWindow::dropEvent(QDropEvent* p_event) {
  for (const QUrl& url : p_event->mimeData()->urls())
    if (url.isLocalFile()) {
      p_event->acceptProposedAction();
      OpenFile(url.toLocalFile());
      return; // one picture at a time
    }
}

} // namespace Vek::Chart::Viewer
