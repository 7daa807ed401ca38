#include "apps/viewer/ViewerWindow.h"

#include "apps/viewer/LoadBar.h"
#include "apps/viewer/RawDialog.h"
#include "apps/viewer/Welcome.h"
#include "apps/viewer/WindowIcon.h"

#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Viewer {

ViewerWindow::ViewerWindow(const Gallery::Inputs& p_inputs)
    : _inputs(p_inputs)
    , _loader(new Viewer::Loader(this))
    , _stack(new QStackedWidget(this))
    , _view(new Widgets::FigureView({}, _stack))
    , _list(new QListWidget(this))
    , _reports(new ReportPanel(this))
    , _settings(new SettingsPanel(this))
    , _point(new QLabel(this)) {
  _stack->addWidget(new Welcome(_stack));
  _stack->addWidget(_view);
  setCentralWidget(_stack);
  _view->setMouseTracking(true);

  auto* const files = new QDockWidget("Files", this);
  files->setObjectName("files");
  files->setWidget(_list);
  _list->setTextElideMode(Qt::ElideMiddle);
  _list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  files->setFeatures(QDockWidget::NoDockWidgetFeatures);
  addDockWidget(Qt::LeftDockWidgetArea, files);
  addDockWidget(Qt::RightDockWidgetArea, _settings);
  addDockWidget(Qt::BottomDockWidgetArea, _reports);
  setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
  setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
  resizeDocks({files, _settings}, {190, 290}, Qt::Horizontal);
  resizeDocks({_reports}, {120}, Qt::Vertical);
  setAcceptDrops(true);
  resize(1400, 900);

  AddMenus();
  AddStatusBar();
  Connect();
  setWindowTitle("Vek viewer");
  setWindowIcon(WindowIcon());
}

ViewerWindow::~ViewerWindow() {
  _view->SetFigure({});
}

void ViewerWindow::Connect() {
  connect(_list, &QListWidget::currentRowChanged, this, &ViewerWindow::ShowRow);
  connect(_loader, &Loader::Loaded, this, [this] {
    Take(std::exchange(_loading, {}));
    StartNext();
  });
  connect(_loader, &Loader::Failed, this, [this](const QString& p_reason) {
    const QString path = std::exchange(_loading, {})->entry.path;
    _reports->AddFailure(p_reason.contains(path) ? p_reason : path + ": " + p_reason);
    ShowPart();
    StartNext();
  });
  connect(_loader, &Loader::Dropped, this, [this] {
    _loading.reset();
    _waiting.clear();
    ShowPart();
  });
  connect(_view, &Widgets::FigureView::Pointed, this, &ViewerWindow::ShowPoint);
  connect(_view, &Widgets::FigureView::SliceMoved, this,
          [this](const Scene::SlicesPlot* p_plot, std::size_t p_slice, double p_position) {
            Chart()->SliceMoved(p_plot, p_slice, p_position);
            _settings->Refresh();
          });
  connect(_settings, &SettingsPanel::Changed, this, [this](const QString& p_group, const QString& p_name) {
    const Setting* const setting = Chart()->Find(p_group, p_name);
    if (setting->reading != Setting::Reading::None)
      Reread(*setting);
    else
      _view->update();
  });
  connect(_settings, &SettingsPanel::Refused, this, [this](const QString& p_reason) {
    _reports->SetFile(_shown >= 0 ? _entries[static_cast<std::size_t>(_shown)].path : QString());
    _reports->AddFailure(p_reason);
  });
}

Chart* ViewerWindow::Chart() {
  return _shown < 0 ? nullptr : _entries[static_cast<std::size_t>(_shown)].chart.get();
}

// Loading

void ViewerWindow::OpenFile(const QString& p_path, std::size_t p_time, const QString& p_variable) {
  const QString path = QFileInfo(p_path).absoluteFilePath();
  Part part;
  part.time = p_time;
  part.variable = p_variable.toStdString();
  if (!IsRaw(path.toStdString()) || !QFileInfo(path).isFile())
    return OpenPart(path, part);
  auto* const dialog = new RawDialog(path, this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog, &QDialog::accepted, this, [=]() mutable {
    part.raw = dialog->Layout();
    OpenPart(path, part);
  });
  dialog->open();
}

void ViewerWindow::OpenPart(const QString& p_path, const Part& p_part) {
  Load(p_path, p_part, [](Arrival& p_arrival, const Io::Progress& p_progress) {
    const auto document =
        std::make_shared<Document>(ReadDocument(p_arrival.entry.path.toStdString(), p_arrival.entry.part, p_progress));
    if (const auto* const mesh = std::get_if<Io::Mesh>(&document->data))
      p_arrival.warnings = mesh->warnings;
    p_arrival.entry.chart = MakeChart(document);
  });
}

void ViewerWindow::OpenExample(const QString& p_name) {
  for (const Gallery::PictureEntry& entry : Gallery::Pictures())
    if (entry.figure != nullptr && entry.name == p_name.toStdString())
      Load(':' + p_name, {}, [make = entry.figure, inputs = _inputs](Arrival& p_arrival, const Io::Progress&) {
        p_arrival.entry.chart = std::make_shared<Viewer::Chart>(make(inputs));
      });
}

void ViewerWindow::Load(const QString& p_path, const Part& p_part, Make p_make) {
  const auto arrival = std::make_shared<Arrival>();
  arrival->entry.path = p_path;
  arrival->entry.part = p_part;
  _waiting.push_back({arrival, std::move(p_make)});
  if (!_loader->IsLoading())
    StartNext();
}

void ViewerWindow::StartNext() {
  if (_waiting.empty())
    return;
  const Request request = std::move(_waiting.front());
  _waiting.pop_front();
  _loading = request.arrival;
  _reports->SetFile(request.arrival->entry.path);
  _loader->Start([request](const Io::Progress& p_progress) { request.make(*request.arrival, p_progress); });
}

void ViewerWindow::Reread(const Setting& p_setting) {
  Entry& entry = _entries[static_cast<std::size_t>(_shown)];
  Part part = entry.part;
  const int chosen = std::get<int>(p_setting.value);
  if (p_setting.reading == Setting::Reading::Variable) {
    part.variable = chosen == 0 ? std::string() : p_setting.choices.value(chosen).toStdString();
    part.level = 0;
  } else {
    (p_setting.reading == Setting::Reading::Time ? part.time : part.level) = static_cast<std::size_t>(chosen);
  }
  if (_loader->IsLoading())
    _loader->Cancel(); // of a slider, the last position counts
  Chart()->ShowPart(part);
  _settings->Refresh();
  OpenPart(entry.path, part);
}

void ViewerWindow::ShowPart() {
  if (Chart() == nullptr)
    return;
  Chart()->ShowPart(_entries[static_cast<std::size_t>(_shown)].part);
  _settings->Refresh();
}

void ViewerWindow::Take(const std::shared_ptr<Arrival>& p_arrival) {
  Entry& arrived = p_arrival->entry;
  for (const std::string& warning : p_arrival->warnings)
    _reports->Add(QString::fromStdString(warning));
  arrived.chart->AddCommon();
  if (!arrived.path.startsWith(':'))
    _recent.Add(arrived.path);
  const auto same = std::find_if(_entries.begin(), _entries.end(),
                                 [&](const Entry& p_entry) { return p_entry.path == arrived.path; });
  int row = static_cast<int>(same - _entries.begin());
  if (same == _entries.end()) {
    _entries.push_back(arrived);
    const bool isExample = arrived.path.startsWith(':');
    auto* const item = new QListWidgetItem(isExample ? arrived.path.mid(1) : QFileInfo(arrived.path).fileName());
    item->setToolTip(isExample ? "Example" : arrived.path);
    _list->addItem(item);
  } else {
    if (arrived.part.variable == same->part.variable) {
      arrived.chart->Adopt(*same->chart);
      if (row == _shown) { // seen from where it was
        const Scene::Camera camera = _view->Camera();
        arrived.chart->figure->Look(camera.azimuth, camera.elevation, camera.projection);
      }
      arrived.chart->figure->camera = same->chart->figure->camera;
    }
    *same = arrived;
  }
  _shown = -1; // its chart may have been replaced
  if (_list->currentRow() == row)
    ShowRow(row);
  else
    _list->setCurrentRow(row);
}

// What is shown

void ViewerWindow::ShowRow(int p_row) {
  if (p_row == _shown)
    return;
  _shown = p_row >= 0 && p_row < static_cast<int>(_entries.size()) ? p_row : -1;
  _settings->Show(Chart());
  _view->SetFigure(Chart() != nullptr ? Chart()->figure : nullptr);
  _stack->setCurrentIndex(Chart() != nullptr ? 1 : 0);
  _point->clear();
  if (Chart() != nullptr) {
    setWindowTitle(_list->item(_shown)->text() + " – Vek viewer");
    _view->setFocus();
    emit Shown();
  } else {
    setWindowTitle("Vek viewer");
  }
}

void ViewerWindow::CloseRow(int p_row) {
  if (p_row < 0 || p_row >= static_cast<int>(_entries.size()))
    return;
  ShowRow(-1);
  _entries.erase(_entries.begin() + p_row);
  {
    const QSignalBlocker silent(_list);
    delete _list->takeItem(p_row);
  }
  ShowRow(_list->currentRow());
}

void ViewerWindow::ShowPoint(const std::optional<Scene::Figure::Hit>& p_hit) {
  if (!p_hit || Chart() == nullptr) {
    _point->clear();
    return;
  }
  QStringList lines = _view->Describe(*p_hit).split('\n') + Chart()->Details(*p_hit);
  _point->setText("  " + lines.join("    "));
}

// Drag and drop

void ViewerWindow::dragEnterEvent(QDragEnterEvent* p_event) {
  for (const QUrl& url : p_event->mimeData()->urls())
    if (url.isLocalFile())
      p_event->acceptProposedAction();
}

void ViewerWindow::dropEvent(QDropEvent* p_event) {
  p_event->acceptProposedAction();
  for (const QUrl& url : p_event->mimeData()->urls())
    if (url.isLocalFile())
      OpenFile(url.toLocalFile());
}

} // namespace Vek::Chart::Viewer
