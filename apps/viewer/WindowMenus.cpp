#include "apps/viewer/LoadBar.h"
#include "apps/viewer/SaveDialog.h"
#include "apps/viewer/ViewerWindow.h"

#include "io/Formats.h"
#include "scene/SaveImage.h"

#include <QAction>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <QToolButton>

#include <functional>
#include <stdexcept>

namespace Vek::Chart::Viewer {

namespace {

QAction* Add(QMenu* p_menu, const QString& p_text, const QList<QKeySequence>& p_keys,
             const std::function<void()>& p_do) {
  QAction* const action = p_menu->addAction(p_text);
  action->setShortcuts(p_keys);
  QObject::connect(action, &QAction::triggered, p_menu, p_do);
  return action;
}

/// What a dialog that opens files offers: what this build reads.
QStringList FileFilters() {
  using Kind = Io::Format::Kind;
  QStringList all, filters;
  for (const Kind kind : {Kind::Meshes, Kind::Volumes, Kind::Vectors, Kind::Heights, Kind::Tables, Kind::Images}) {
    const QString patterns = QString::fromStdString(Io::FilePatterns(kind));
    const auto name = Io::KindName(kind);
    filters << QString("%1 (%2)").arg(QString::fromUtf8(name.data(), static_cast<int>(name.size())), patterns);
    all += patterns.split(' ');
  }
  all.removeDuplicates();
  filters.push_front(QString("All that can be shown (%1)").arg(all.join(' ')));
  return filters << "All files (*)";
}

} // namespace

void ViewerWindow::AddMenus() {
  QMenu* const file = menuBar()->addMenu("&File");
  Add(file, "&Open…", {QKeySequence::Open}, [this] { AskForFiles(); });
  _recentMenu = file->addMenu("Open &recent");
  connect(_recentMenu, &QMenu::aboutToShow, this, [this] {
    _recentMenu->clear();
    for (const QString& path : _recent.Paths())
      Add(_recentMenu, QString(path).replace('&', "&&"), {}, [this, path] { OpenFile(path); });
    _recentMenu->addSeparator();
    Add(_recentMenu, "&Clear", {}, [this] { _recent.Clear(); })->setEnabled(!_recent.Paths().isEmpty());
  });
  Add(file, "Re&load", {QKeySequence("F5")}, [this] {
    if (Chart() != nullptr && !_entries[static_cast<std::size_t>(_shown)].path.startsWith(':'))
      OpenPart(_entries[static_cast<std::size_t>(_shown)].path, _entries[static_cast<std::size_t>(_shown)].part);
  });
  Add(file, "&Save image…", {QKeySequence::Save}, [this] { AskWhereToSave(); });
  QAction* const copy = Add(file, "&Copy image", {QKeySequence::Copy}, [this] { _view->Copy(); });
  copy->setShortcutContext(Qt::WidgetWithChildrenShortcut); // reports are copied as well
  _stack->addAction(copy);
  Add(file, "C&lose", {QKeySequence("Ctrl+W")}, [this] { CloseRow(_shown); });
  file->addSeparator();
  Add(file, "&Quit", {QKeySequence("Ctrl+Q")}, [this] { close(); });
  AddViews();
  QMenu* const examples = menuBar()->addMenu("&Examples");
  for (const Gallery::PictureEntry& entry : Gallery::Pictures())
    if (entry.figure != nullptr)
      Add(examples, QString::fromStdString(entry.title), {},
          [this, name = QString::fromStdString(entry.name)] { OpenExample(name); });
  examples->menuAction()->setVisible(!examples->isEmpty());
  QMenu* const help = menuBar()->addMenu("&Help");
  Add(help, "&Mouse and keys", {QKeySequence("F1")}, [this] { ShowHelp(); });
  Add(help, "&About", {}, [this] { ShowAbout(); });
}

void ViewerWindow::AddViews() {
  using View = Scene::Camera::StandardView;
  using Projection = Scene::Camera::Projection;
  QMenu* const menu = menuBar()->addMenu("&View");
  Add(menu, "&Fit", {QKeySequence("R"), QKeySequence("Home")}, [this] { _view->Fit(); });
  menu->addSeparator();
  struct Named {
    const char* name;
    const char* key;
    View view;
  };
  for (const auto& [name, key, view] : {Named{"F&ront", "1", View::Front},
                                        {"Bac&k", "Ctrl+1", View::Back},
                                        {"Ri&ght", "3", View::Right},
                                        {"&Left", "Ctrl+3", View::Left},
                                        {"&Top", "7", View::Top},
                                        {"&Bottom", "Ctrl+7", View::Bottom},
                                        {"&Isometric", "9", View::Isometric},
                                        {"&Oblique", "0", View::Chart}})
    Add(menu, name, {QKeySequence(key)}, [this, view = view] { _view->Look(view); });
  menu->addSeparator();
  Add(menu, "Switch &projection", {QKeySequence("5")}, [this] {
    _view->SetProjection(_view->Camera().projection == Projection::Parallel ? Projection::Perspective
                                                                            : Projection::Parallel);
  });
  menu->addSeparator();
  Add(menu, "&Cancel loading", {QKeySequence("Esc")}, [this] { _loader->Cancel(); });
  menu->addSeparator();
  _settings->toggleViewAction()->setText("&Settings");
  _settings->toggleViewAction()->setShortcut(QKeySequence("F9"));
  menu->addAction(_settings->toggleViewAction());
  _reports->toggleViewAction()->setText("R&eports");
  menu->addAction(_reports->toggleViewAction());
}

void ViewerWindow::AddStatusBar() {
  _point->setObjectName("point");
  _point->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // a long string widens no window
  statusBar()->addWidget(_point, 1);
  statusBar()->addPermanentWidget(new LoadBar(*_loader, this));
  auto* const count = new QToolButton(this);
  count->setAutoRaise(true);
  count->setDefaultAction(_reports->toggleViewAction());
  const auto show = [this](std::size_t p_count) {
    _reports->toggleViewAction()->setText(QString("Reports: %1").arg(p_count));
  };
  connect(_reports, &ReportPanel::CountChanged, this, show);
  show(_reports->Count());
  _reports->hide(); // until something fails
  statusBar()->addPermanentWidget(count);
}

void ViewerWindow::AskForFiles() {
  auto* const dialog = new QFileDialog(this, "Open", QString(), FileFilters().join(";;"));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(QFileDialog::ExistingFiles);
  connect(dialog, &QFileDialog::filesSelected, this, [this](const QStringList& p_paths) {
    for (const QString& path : p_paths)
      OpenFile(path);
  });
  dialog->open();
}

void ViewerWindow::AskWhereToSave() {
  if (Chart() == nullptr)
    return;
  auto* const how = new SaveDialog({_view->width(), _view->height()}, this);
  how->setAttribute(Qt::WA_DeleteOnClose);
  connect(how, &QDialog::accepted, this, [this, how] { AskForImage(how->Size(), how->IsTransparent()); });
  how->open();
}

void ViewerWindow::AskForImage(Types::Size p_size, bool p_isTransparent) {
  auto* const dialog = new QFileDialog(this, "Save image", QString(),
                                       p_isTransparent ? "Images (*.png)" : "Images (*.png *.jpg *.bmp);;PDF (*.pdf)");
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setDefaultSuffix("png");
  dialog->selectFile(QFileInfo(_list->item(_shown)->text()).completeBaseName() + ".png");
  connect(dialog, &QFileDialog::fileSelected, this,
          [=](const QString& p_path) { SaveImage(p_path, p_size, p_isTransparent); });
  dialog->open();
}

void ViewerWindow::SaveImage(const QString& p_path, Types::Size p_size, bool p_isTransparent) {
  if (Chart() == nullptr)
    return;
  try {
    if (p_isTransparent)
      Scene::SaveImage(Chart()->figure->ImageWithoutBackground(p_size), p_path);
    else
      Chart()->figure->Save(p_path, p_size);
  } catch (const std::exception& error) {
    _reports->SetFile(p_path);
    _reports->AddFailure(QString::fromUtf8(error.what()));
  }
}

namespace {

/// What the mouse does in the view; keys are those of the menus.
constexpr const char* MouseActions[][2] = {
    {"Drag", "rotates"},
    {"Middle-drag, right-drag, Shift+drag", "pan"},
    {"Scroll", "zooms to the cursor"},
    {"Ctrl+drag on a slice", "moves the slice"},
    {"Double click", "moves what is there into the middle"},
    {"Move", "shows position and value in the status bar"},
};

} // namespace

QString ViewerWindow::HelpText() const {
  QString rows;
  const auto add = [&](const QString& p_input, const QString& p_effect) {
    rows += QString("<tr><td><b>%1</b>&nbsp;&nbsp;</td><td>%2</td></tr>").arg(p_input.toHtmlEscaped(), p_effect);
  };
  for (const auto& [input, effect] : MouseActions)
    add(input, effect);
  for (const QAction* menu : menuBar()->actions())
    for (const QAction* action : menu->menu()->actions()) {
      QStringList keys;
      for (const QKeySequence& key : action->shortcuts())
        keys << key.toString(QKeySequence::NativeText);
      if (!keys.isEmpty())
        add(keys.join(", "), action->text().remove('&').remove(QChar(0x2026)));
    }
  return "<table>" + rows + "</table>";
}

void ViewerWindow::ShowHelp() {
  auto* const box = new QMessageBox(QMessageBox::NoIcon, "Mouse and keys", HelpText(), QMessageBox::Close, this);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

void ViewerWindow::ShowAbout() {
  std::string formats;
  for (const Io::Format& format : Io::Formats())
    if (const std::string name(format.name); formats.find(name) == std::string::npos && format.isAvailable)
      formats += (formats.empty() ? "" : ", ") + name;
  const QString text = QString("<h3>Vek viewer %1</h3><p>Shows files as charts, by the library Vek.Chart.Library.</p>"
                               "<p>Reads %2.</p><p>With Qt %3.</p>")
                           .arg(VEK_VERSION, QString::fromStdString(formats).toHtmlEscaped(), qVersion());
  auto* const box = new QMessageBox(QMessageBox::NoIcon, "About the viewer", text, QMessageBox::Close, this);
  box->setIconPixmap(windowIcon().pixmap(64));
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

} // namespace Vek::Chart::Viewer
