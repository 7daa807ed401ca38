#include "apps/viewer/SettingsPanel.h"

#include "library/NamedColors.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QScrollArea>
#include <QSlider>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Viewer {

namespace {

constexpr int Fineness = 1000; ///< steps of a slider

/// Six digits; 0 for what is nothing beside a span.
QString Shown(double p_number, double p_span = 0) {
  constexpr double Nothing = 1e-9;
  return QString::number(std::abs(p_number) < Nothing * p_span ? 0 : p_number, 'g', 6);
}

/// The colours of a map from left to right.
QIcon Swatch(const QString& p_name) {
  constexpr QSize Size(64, 12);
  const std::vector<QColor> colors = Library::NamedColors::Colors(p_name.toStdString(), Size.width());
  QPixmap swatch(Size);
  QPainter painter(&swatch);
  for (int x = 0; x < Size.width(); ++x)
    painter.fillRect(x, 0, 1, Size.height(), colors[static_cast<std::size_t>(x)]);
  return QIcon(swatch);
}

QWidget* Together(const std::vector<QWidget*>& p_widgets) {
  auto* const widget = new QWidget;
  auto* const row = new QHBoxLayout(widget);
  row->setContentsMargins(0, 0, 0, 0);
  for (QWidget* field : p_widgets)
    row->addWidget(field, qobject_cast<QLabel*>(field) != nullptr ? 0 : 1);
  return widget;
}

} // namespace

SettingsPanel::SettingsPanel(QWidget* p_parent)
    : QDockWidget("Settings", p_parent) {
  setObjectName("settings");
  auto* const area = new QScrollArea(this);
  area->setWidgetResizable(true);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setFrameShape(QFrame::NoFrame);
  setWidget(area);
  setMinimumWidth(270);
  Show(nullptr);
}

void SettingsPanel::Show(Chart* p_chart) {
  _chart = p_chart;
  _rows.clear();
  _content = new QWidget;
  auto* const column = new QVBoxLayout(_content);
  QStringList groups;
  for (const Setting& setting : p_chart != nullptr ? p_chart->Settings() : std::vector<Setting>())
    if (!groups.contains(setting.group))
      groups << setting.group;
  for (const QString& group : std::as_const(groups)) {
    auto* const box = new QGroupBox(group, _content);
    auto* const rows = new QVBoxLayout(box);
    rows->setSpacing(3);
    for (const Setting& setting : p_chart->Settings())
      if (setting.group == group) {
        _rows.push_back(MakeRow(setting));
        for (QWidget* widget : _rows.back().widgets)
          rows->addWidget(widget);
      }
    column->addWidget(box);
  }
  column->addStretch();
  static_cast<QScrollArea*>(widget())->setWidget(_content); // which deletes the one before
  Refresh();
}

void SettingsPanel::Refresh() {
  if (_chart == nullptr)
    return;
  _isShowing = true;
  for (const Row& row : _rows) {
    const Setting* const setting = _chart->Find(row.group, row.name);
    const bool isOffered = setting != nullptr && (!setting->isOffered || setting->isOffered());
    for (QWidget* widget : row.widgets)
      widget->setVisible(isOffered);
    if (isOffered)
      row.show(*setting);
  }
  for (QGroupBox* box : _content->findChildren<QGroupBox*>()) {
    const auto fields = box->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    box->setVisible(
        std::any_of(fields.begin(), fields.end(), [](const QWidget* p_field) { return !p_field->isHidden(); }));
  }
  _isShowing = false;
}

void SettingsPanel::Change(const QString& p_group, const QString& p_name, const Setting::Value& p_value) {
  if (_isShowing || _chart == nullptr)
    return;
  try {
    _chart->Set(p_group, p_name, p_value);
    emit Changed(p_group, p_name);
  } catch (const std::exception& error) {
    emit Refused(QString::fromUtf8(error.what()));
  }
  Refresh();
}

SettingsPanel::Row SettingsPanel::MakeRow(const Setting& p_setting) {
  Row row = std::holds_alternative<bool>(p_setting.value)     ? MakeSwitch(p_setting)
            : std::holds_alternative<int>(p_setting.value)    ? MakeChoice(p_setting)
            : std::holds_alternative<double>(p_setting.value) ? MakeNumber(p_setting)
                                                              : MakeRange(p_setting);
  row.group = p_setting.group;
  row.name = p_setting.name;
  return row;
}

SettingsPanel::Row SettingsPanel::MakeSwitch(const Setting& p_setting) {
  auto* const box = new QCheckBox(p_setting.name);
  box->setObjectName(p_setting.group + '/' + p_setting.name);
  connect(box, &QCheckBox::toggled, this,
          [this, group = p_setting.group, name = p_setting.name](bool p_isOn) { Change(group, name, p_isOn); });
  return {{}, {}, [box](const Setting& p_now) { box->setChecked(std::get<bool>(p_now.value)); }, {box}};
}

SettingsPanel::Row SettingsPanel::MakeChoice(const Setting& p_setting) {
  auto* const box = new QComboBox;
  box->setObjectName(p_setting.group + '/' + p_setting.name);
  const auto& maps = Library::NamedColors::Names();
  for (const QString& choice : p_setting.choices)
    if (std::find(maps.begin(), maps.end(), choice.toStdString()) != maps.end())
      box->addItem(Swatch(choice), choice);
    else
      box->addItem(choice);
  box->setIconSize({64, 12});
  box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  connect(box, QOverload<int>::of(&QComboBox::activated), this,
          [this, group = p_setting.group, name = p_setting.name](int p_index) { Change(group, name, p_index); });
  auto* const label = new QLabel(p_setting.name);
  constexpr int LabelWidth = 70;
  label->setMinimumWidth(LabelWidth);
  Row row{{}, {}, {}, {Together({label, box})}};
  QSlider* slider = nullptr;
  if (p_setting.reading == Setting::Reading::Time || p_setting.reading == Setting::Reading::Level) {
    slider = new QSlider(Qt::Horizontal);
    slider->setObjectName(p_setting.group + '/' + p_setting.name + "/slider");
    slider->setRange(0, static_cast<int>(p_setting.choices.size()) - 1);
    slider->setPageStep(1);
    connect(slider, &QSlider::valueChanged, this,
            [this, group = p_setting.group, name = p_setting.name](int p_index) { Change(group, name, p_index); });
    row.widgets.push_back(slider);
  }
  row.show = [box, slider](const Setting& p_now) {
    box->setCurrentIndex(std::get<int>(p_now.value));
    if (slider != nullptr)
      slider->setValue(std::get<int>(p_now.value));
  };
  return row;
}

SettingsPanel::Row SettingsPanel::MakeNumber(const Setting& p_setting) {
  auto* const field = new QLineEdit;
  auto* const slider = new QSlider(Qt::Horizontal);
  field->setObjectName(p_setting.group + '/' + p_setting.name);
  slider->setObjectName(field->objectName() + "/slider");
  field->setMaximumWidth(90);
  slider->setRange(0, Fineness);
  connect(field, &QLineEdit::editingFinished, this, [this, field, group = p_setting.group, name = p_setting.name] {
    const Setting* const setting = _chart == nullptr ? nullptr : _chart->Find(group, name);
    bool isNumber = false;
    const double number = field->text().toDouble(&isNumber);
    if (setting == nullptr || !field->isModified())
      return;
    field->setModified(false);
    const Setting::Range limits = setting->Limits();
    if (isNumber && number >= limits.min && number <= limits.max) {
      Change(group, name, setting->isWhole ? std::round(number) : number);
    } else {
      emit Refused(QString("%1 %2: expected a number from %3 to %4, got \"%5\"")
                       .arg(group, name, Shown(limits.min), Shown(limits.max), field->text()));
      Refresh();
    }
  });
  connect(slider, &QSlider::valueChanged, this, [this, group = p_setting.group, name = p_setting.name](int p_step) {
    const Setting* const setting = _chart == nullptr ? nullptr : _chart->Find(group, name);
    if (setting == nullptr || _isShowing)
      return;
    const Setting::Range limits = setting->Limits();
    const double number = limits.min + (limits.max - limits.min) * p_step / Fineness;
    Change(group, name, setting->isWhole ? std::round(number) : number);
  });
  auto* const label = new QLabel(p_setting.name);
  auto* const unit = new QLabel(p_setting.unit);
  const auto show = [field, slider](const Setting& p_now) {
    const double number = std::get<double>(p_now.value);
    const Setting::Range limits = p_now.Limits();
    if (!field->isModified())
      field->setText(Shown(number, limits.max - limits.min));
    if (!slider->isSliderDown() && limits.max > limits.min)
      slider->setValue(qRound((number - limits.min) / (limits.max - limits.min) * Fineness));
  };
  return {{}, {}, show, {Together({label, field, unit}), slider}};
}

SettingsPanel::Row SettingsPanel::MakeRange(const Setting& p_setting) {
  auto* const automatic = new QCheckBox("automatic");
  auto* const low = new QLineEdit;
  auto* const high = new QLineEdit;
  const QString name = p_setting.group + '/' + p_setting.name;
  automatic->setObjectName(name + "/automatic");
  low->setObjectName(name + "/low");
  high->setObjectName(name + "/high");
  const auto change = [=, group = p_setting.group, setting = p_setting.name] {
    bool areNumbers[2];
    const Setting::Range range(low->text().toDouble(&areNumbers[0]), high->text().toDouble(&areNumbers[1]));
    if (areNumbers[0] && areNumbers[1]) {
      Change(group, setting, std::optional<Setting::Range>(range));
    } else {
      emit Refused(QString("%1: expected two numbers, got \"%2\" and \"%3\"").arg(name, low->text(), high->text()));
      Refresh();
    }
  };
  for (QLineEdit* const field : {low, high})
    connect(field, &QLineEdit::editingFinished, this, [field, change] {
      if (!field->isModified())
        return;
      field->setModified(false);
      change();
    });
  connect(automatic, &QCheckBox::toggled, this,
          [=, group = p_setting.group, setting = p_setting.name](bool p_isAutomatic) {
            if (_isShowing)
              return;
            if (p_isAutomatic)
              Change(group, setting, std::optional<Setting::Range>());
            else
              change();
          });
  const auto show = [=](const Setting& p_now) {
    const auto& chosen = std::get<std::optional<Setting::Range>>(p_now.value);
    const Setting::Range range = chosen ? *chosen : p_now.current();
    automatic->setChecked(!chosen);
    if (!low->isModified())
      low->setText(Shown(range.min));
    if (!high->isModified())
      high->setText(Shown(range.max));
  };
  return {{}, {}, show, {Together({new QLabel(p_setting.name), automatic}), Together({low, high})}};
}

} // namespace Vek::Chart::Viewer
