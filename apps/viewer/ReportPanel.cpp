#include "apps/viewer/ReportPanel.h"

#include "scene/Theme.h"

#include <QAction>
#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHeaderView>

namespace Vek::Chart::Viewer {

namespace {

const QColor FailureColor(0xF0907A);

} // namespace

ReportPanel::ReportPanel(QWidget* p_parent)
    : QDockWidget(p_parent)
    , _lines(new QTreeWidget(this))
    , _queue(std::make_shared<ReportQueue>([this] {
      QMetaObject::invokeMethod(
          this, [this] { _soon.start(); }, Qt::QueuedConnection);
    })) {
  setObjectName("reports");
  _soon.setSingleShot(true);
  _soon.setInterval(50);
  connect(&_soon, &QTimer::timeout, this, &ReportPanel::TakeReports);
  _lines->setHeaderHidden(true);
  _lines->setTextElideMode(Qt::ElideNone); // long lines are scrolled
  _lines->header()->setStretchLastSection(false);
  _lines->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  _lines->setSelectionMode(QAbstractItemView::ExtendedSelection);
  _lines->setContextMenuPolicy(Qt::ActionsContextMenu);
  setWidget(_lines);

  auto* const copy = new QAction("&Copy", _lines);
  copy->setShortcut(QKeySequence::Copy);
  copy->setShortcutContext(Qt::WidgetShortcut);
  connect(copy, &QAction::triggered, this, &ReportPanel::Copy);
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

void ReportPanel::Copy() const {
  QStringList texts;
  for (const QTreeWidgetItem* item : _lines->selectedItems())
    texts << item->text(0);
  QGuiApplication::clipboard()->setText(texts.join('\n'));
}

void ReportPanel::SetFile(const QString& p_path) {
  TakeReports();
  _file = p_path;
}

void ReportPanel::Add(const QString& p_text) {
  TakeReports();
  ++_count;
  AddLine(p_text, Scene::Theme::Dark().text);
  ShowCount();
}

void ReportPanel::AddFailure(const QString& p_text) {
  TakeReports(); // which led to it
  ++_count;
  QTreeWidgetItem* const line = AddLine(p_text, FailureColor);
  line->parent()->setExpanded(true);
  ShowCount();
  show();
  _lines->scrollToItem(line);
}

void ReportPanel::Clear() {
  _lines->clear();
  _count = 0;
  _lineCount = 0;
  ShowCount();
}

QStringList ReportPanel::Lines() const {
  QStringList lines;
  for (int i = 0; i < _lines->topLevelItemCount(); ++i)
    for (int j = 0; j < _lines->topLevelItem(i)->childCount(); ++j)
      lines << _lines->topLevelItem(i)->child(j)->text(0);
  return lines;
}

void ReportPanel::TakeReports() {
  const ReportQueue::Waiting waiting = _queue->Take();
  for (const std::string& text : waiting.texts)
    AddLine(QString::fromStdString(text), Scene::Theme::Dark().text);
  _count += waiting.count;
  if (waiting.count > 0)
    ShowCount();
}

namespace {

/// "line 12: reason" of "path:12: reason", and "reason" of "path: reason".
QString WithoutPath(QString p_text, const QString& p_path) {
  for (const QString& start : {p_path + ':', QFileInfo(p_path).fileName() + ':'})
    if (start.size() > 1 && p_text.startsWith(start)) {
      const QString rest = p_text.mid(start.size());
      p_text = rest.startsWith(' ') ? rest.mid(1) : "line " + rest;
    }
  return p_text;
}

} // namespace

QTreeWidgetItem* ReportPanel::AddLine(const QString& p_text, const QColor& p_color) {
  if (_lineCount >= MostLines) {
    QTreeWidgetItem* const oldest = _lines->topLevelItem(0);
    delete oldest->takeChild(0);
    --_lineCount;
    if (oldest->childCount() == 0)
      delete oldest;
  }
  QTreeWidgetItem* file = nullptr;
  for (int i = 0; i < _lines->topLevelItemCount() && file == nullptr; ++i)
    if (_lines->topLevelItem(i)->toolTip(0) == _file)
      file = _lines->topLevelItem(i);
  if (file == nullptr) {
    file = new QTreeWidgetItem(_lines);
    file->setToolTip(0, _file);
  }
  auto* const line = new QTreeWidgetItem(file, {WithoutPath(p_text, _file)});
  line->setForeground(0, p_color);
  line->setToolTip(0, p_text);
  const QString name = _file.isEmpty() ? "Drawing" : QFileInfo(_file).fileName();
  file->setText(0, QString("%1 (%2)").arg(name).arg(file->childCount()));
  ++_lineCount;
  return line;
}

void ReportPanel::ShowCount() {
  const QString shown =
      _count > static_cast<std::size_t>(_lineCount) ? QString(", %1 are shown").arg(_lineCount) : QString();
  setWindowTitle(QString("Reports (%1%2)").arg(_count).arg(shown));
  emit CountChanged(_count);
}

} // namespace Vek::Chart::Viewer
