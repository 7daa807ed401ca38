#include "apps/viewer/LoadBar.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace Vek::Chart::Viewer {

LoadBar::LoadBar(Loader& p_loader, QWidget* p_parent)
    : QWidget(p_parent)
    , _bar(new QProgressBar(this)) {
  constexpr int Moment = 150; // ms
  constexpr int Fineness = 1000;
  auto* const cancel = new QPushButton("Cancel", this);
  cancel->setObjectName("cancel");
  _bar->setRange(0, Fineness);
  _bar->setFixedWidth(220);
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(_bar);
  row->addWidget(cancel);
  hide();

  _appear.setSingleShot(true);
  _appear.setInterval(Moment);
  connect(&_appear, &QTimer::timeout, this, &QWidget::show);
  connect(cancel, &QPushButton::clicked, &p_loader, &Loader::Cancel);
  connect(&p_loader, &Loader::Started, this, [this] {
    _bar->setValue(0);
    _appear.start();
  });
  connect(&p_loader, &Loader::Progressed, _bar, [this](double p_part) { _bar->setValue(qRound(p_part * Fineness)); });
  const auto end = [this] {
    _appear.stop();
    hide();
  };
  connect(&p_loader, &Loader::Loaded, this, end);
  connect(&p_loader, &Loader::Failed, this, end);
  connect(&p_loader, &Loader::Dropped, this, end);
}

} // namespace Vek::Chart::Viewer
