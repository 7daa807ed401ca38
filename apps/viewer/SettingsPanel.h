#pragma once

#include "apps/viewer/Chart.h"

#include <QDockWidget>

#include <functional>
#include <vector>

namespace Vek::Chart::Viewer {

/// Shows the settings of a chart, group by group, and changes them. Each field has the object name "group/name".
class SettingsPanel : public QDockWidget {
  Q_OBJECT
public:
  explicit SettingsPanel(QWidget* p_parent = nullptr);

  /// Shows the settings of a chart, which must live until the next call, or of none.
  void Show(Chart* p_chart);
  /// Shows the present values.
  void Refresh();

signals:
  /// A setting was changed.
  void Changed(const QString& p_group, const QString& p_name);
  /// A value was refused.
  void Refused(const QString& p_reason);

private:
  struct Row {
    QString group, name;
    std::function<void(const Setting&)> show; ///< puts the value into the fields
    std::vector<QWidget*> widgets;
  };
  Row MakeRow(const Setting& p_setting);
  Row MakeSwitch(const Setting& p_setting);
  Row MakeChoice(const Setting& p_setting);
  Row MakeNumber(const Setting& p_setting);
  Row MakeRange(const Setting& p_setting);
  void Change(const QString& p_group, const QString& p_name, const Setting::Value& p_value);

  Chart* _chart = nullptr;
  QWidget* _content = nullptr;
  std::vector<Row> _rows;
  bool _isShowing = false; ///< fields change because values did
};

} // namespace Vek::Chart::Viewer
