#include "apps/viewer/PictureList.h"

#include "apps/gallery/GalleryTheme.h"

#include <QPainter>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QTextLayout>

#include <algorithm>

namespace Vek::Chart::Viewer {

using namespace Scene;

namespace {

constexpr int CaptionRole = Qt::UserRole;
constexpr int CaptionLines = 2;
constexpr int Margin = 8;

QFont NameFont(QFont p_font) {
  p_font.setBold(true);
  return p_font;
}

QFont CaptionFont(QFont p_font) {
  p_font.setPointSizeF(p_font.pointSizeF() * 0.86);
  return p_font;
}

/// Draws a text in at most so many lines; the last one ends in an ellipsis when there is more.
void DrawLines(QPainter& p_painter, const QRect& p_rect, const QString& p_text, int p_most) {
  const QFontMetrics metrics(p_painter.font());
  QTextLayout layout(p_text, p_painter.font());
  layout.beginLayout();
  for (int i = 0; i < p_most; ++i) {
    QTextLine line = layout.createLine();
    if (!line.isValid())
      break;
    line.setLineWidth(p_rect.width());
    const QString rest = p_text.mid(line.textStart());
    const QString text = i + 1 == p_most ? metrics.elidedText(rest, Qt::ElideRight, p_rect.width())
                                         : p_text.mid(line.textStart(), line.textLength());
    p_painter.drawText(QPoint(p_rect.left(), p_rect.top() + i * metrics.height() + metrics.ascent()), text);
  }
  layout.endLayout();
}

class RowDelegate : public QStyledItemDelegate {
public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QSize sizeHint(const QStyleOptionViewItem& p_option, const QModelIndex&) const override {
    const int name = QFontMetrics(NameFont(p_option.font)).height();
    const int line = QFontMetrics(CaptionFont(p_option.font)).height();
    return {100, 2 * Margin + name + 2 + CaptionLines * line};
  }

  void paint(QPainter* p_painter, const QStyleOptionViewItem& p_option, const QModelIndex& p_index) const override {
    QPainter& painter = *p_painter;
    painter.save();
    const bool selected = p_option.state.testFlag(QStyle::State_Selected);
    if (selected || p_option.state.testFlag(QStyle::State_MouseOver)) {
      painter.fillRect(p_option.rect, p_option.palette.color(selected ? QPalette::Highlight : QPalette::AlternateBase));
      painter.fillRect(QRect(p_option.rect.topLeft(), QSize(3, p_option.rect.height())),
                       selected ? p_option.palette.color(QPalette::Link) : Qt::transparent);
    }
    const QRect inside = p_option.rect.adjusted(Margin + 4, Margin, -Margin, -Margin);
    painter.setFont(NameFont(p_option.font));
    const QFontMetrics name(painter.font());
    painter.setPen(Gallery::GalleryTheme::Title);
    painter.drawText(QPoint(inside.left(), inside.top() + name.ascent()),
                     name.elidedText(p_index.data().toString(), Qt::ElideMiddle, inside.width()));
    painter.setFont(CaptionFont(p_option.font));
    painter.setPen(selected ? Gallery::GalleryTheme::Text : Gallery::GalleryTheme::Faint);
    DrawLines(painter, inside.adjusted(0, name.height() + 2, 0, 0), p_index.data(CaptionRole).toString(), CaptionLines);
    painter.restore();
  }
};

} // namespace

PictureList::PictureList(QWidget* p_parent)
    : QListWidget(p_parent) {
  setItemDelegate(new RowDelegate(this));
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setResizeMode(QListView::Adjust);
  setUniformItemSizes(true);
  setMouseTracking(true);
  connect(this, &QListWidget::currentRowChanged, this, [this](int p_row) {
    if (p_row >= 0)
      emit Chosen(p_row);
  });
}

int PictureList::Add(const ShownPicture& p_picture) {
  _pictures.push_back(p_picture);
  const QSignalBlocker silent(this);
  auto* const item = new QListWidgetItem(QString::fromStdString(p_picture.name), this);
  const QString caption = QString::fromStdString(p_picture.caption);
  item->setData(CaptionRole, caption);
  item->setToolTip("<p>" + caption.toHtmlEscaped() + "</p>"); // rich text wraps its lines
  return count() - 1;
}

int PictureList::Find(const std::string& p_caption) const {
  const auto picture = std::find_if(_pictures.begin(), _pictures.end(),
                                    [&](const ShownPicture& p_picture) { return p_picture.caption == p_caption; });
  return picture == _pictures.end() ? -1 : static_cast<int>(picture - _pictures.begin());
}

void PictureList::Mark(int p_row) {
  const QSignalBlocker silent(this);
  setCurrentRow(p_row);
  viewport()->update();
}

} // namespace Vek::Chart::Viewer
