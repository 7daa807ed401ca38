#include "apps/viewer/ReportPanel.h"

#include "apps/gallery/GalleryTheme.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>

namespace Vek::Chart::Viewer {

using namespace Scene;

namespace {

const QColor FailureColor(0xF0907A);

} // namespace

ReportPanel::ReportPanel(QWidget* p_parent)
    : QDockWidget(p_parent)
    , _lines(new QListWidget(this))
    , _queue(std::make_shared<ReportQueue>([this] {
      QMetaObject::invokeMethod(
          this, [this] { _soon.start(); }, Qt::QueuedConnection);
    })) {
  setObjectName("reports");
  _soon.setSingleShot(true);
  _soon.setInterval(50);
  connect(&_soon, &QTimer::timeout, this, &ReportPanel::TakeReports);
  _lines->setWordWrap(true);
  _lines->setSelectionMode(QAbstractItemView::ExtendedSelection);
  _lines->setContextMenuPolicy(Qt::ActionsContextMenu);
  setWidget(_lines);

  auto* const copy = new QAction("&Copy", _lines);
  copy->setShortcut(QKeySequence::Copy);
  copy->setShortcutContext(Qt::WidgetShortcut);
  connect(copy, &QAction::triggered, this, [this] {
    QStringList texts;
    for (const QListWidgetItem* item : _lines->selectedItems())
      texts << item->text();
    QGuiApplication::clipboard()->setText(texts.join('\n'));
  });
  auto* const clear = new QAction("C&lear", _lines);
  connect(clear, &QAction::triggered, this, &ReportPanel::Clear);
  _lines->addActions({copy, clear});

  _previous = vekdebug::logger::instance().set_sink(_queue);
  ShowCount();
}

ReportPanel::~ReportPanel() {
  vekdebug::logger::instance().set_sink(_previous);
  _queue->Detach();
}

void ReportPanel::AddFailure(const QString& p_text) {
  TakeReports(); // which led to it
  ++_count;
  AddLine(p_text, FailureColor);
  ShowCount();
}

void ReportPanel::Clear() {
  _lines->clear();
  _count = 0;
  ShowCount();
}

QStringList ReportPanel::Lines() const {
  QStringList lines;
  for (int i = 0; i < _lines->count(); ++i)
    lines << _lines->item(i)->text();
  return lines;
}

void ReportPanel::TakeReports() {
  const ReportQueue::Waiting waiting = _queue->Take();
  for (const std::string& text : waiting.texts)
    AddLine(QString::fromStdString(text), Gallery::GalleryTheme::Text);
  _count += waiting.count;
  if (waiting.count > 0)
    ShowCount();
}

void ReportPanel::AddLine(const QString& p_text, const QColor& p_color) {
  if (_lines->count() >= MostLines)
    delete _lines->takeItem(0);
  auto* const item = new QListWidgetItem(p_text, _lines);
  item->setForeground(p_color);
  _lines->scrollToBottom();
}

void ReportPanel::ShowCount() {
  const QString shown =
      _count > static_cast<std::size_t>(_lines->count()) ? QString(", %1 are shown").arg(_lines->count()) : QString();
  setWindowTitle(QString("Reports (%1%2)").arg(_count).arg(shown));
  emit CountChanged(_count);
}

} // namespace Vek::Chart::Viewer
