#include "apps/viewer/Choosers.h"

#include "library/NamedColors.h"

#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QSignalBlocker>

namespace Vek::Chart::Viewer {

namespace {

constexpr QSize SwatchSize(64, 12);

QIcon Swatch(const std::vector<QColor>& p_colors) {
  QPixmap swatch(SwatchSize);
  QPainter painter(&swatch);
  for (int x = 0; x < SwatchSize.width(); ++x) {
    const std::size_t index =
        p_colors.size() * static_cast<std::size_t>(x) / static_cast<std::size_t>(SwatchSize.width());
    painter.fillRect(x, 0, 1, SwatchSize.height(), p_colors[index]);
  }
  return QIcon(swatch);
}

} // namespace

Choosers::Choosers(QWidget* p_parent)
    : QToolBar("Choosers", p_parent)
    , _colors(AddChooser("Colours", "colors", _colorActions))
    , _shapes(AddChooser("Shape", "shapes", _shapeActions)) {
  _colors->setIconSize(SwatchSize);
  _colors->addItem("as the scene has them");
  for (const std::string& name : Library::NamedColors::Names())
    _colors->addItem(Swatch(Library::NamedColors::Colors(name)), QString::fromStdString(name));
  const auto activated = QOverload<int>::of(&QComboBox::currentIndexChanged);
  connect(_colors, activated, this, [this](int p_index) {
    const std::string name = _colors->itemText(p_index).toStdString();
    emit ColorsChosen(p_index == 0 ? std::vector<QColor>() : Library::NamedColors::Colors(name));
  });
  connect(_shapes, activated, this, [this](int p_index) {
    if (p_index >= 0)
      emit ShapeChosen(static_cast<std::size_t>(p_index));
  });
  setMinimumHeight(sizeHint().height()); // the picture keeps its place when they go
  Offer(nullptr);
}

QComboBox* Choosers::AddChooser(const QString& p_label, const QString& p_name, QList<QAction*>& p_actions) {
  auto* const label = new QLabel(p_label, this);
  auto* const box = new QComboBox(this);
  box->setObjectName(p_name);
  box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  label->setBuddy(box);
  p_actions = {addWidget(label), addWidget(box)};
  return box;
}

void Choosers::Offer(const Gallery::Picture* p_picture) {
  const QSignalBlocker silentColors(_colors);
  const QSignalBlocker silentShapes(_shapes);
  _colors->setCurrentIndex(0);
  _shapes->clear();
  if (p_picture != nullptr)
    for (const std::string& shape : p_picture->Shapes())
      _shapes->addItem(QString::fromStdString(shape));
  for (QAction* action : _colorActions)
    action->setVisible(p_picture != nullptr && p_picture->TakesColors());
  for (QAction* action : _shapeActions)
    action->setVisible(_shapes->count() > 0);
}

} // namespace Vek::Chart::Viewer
