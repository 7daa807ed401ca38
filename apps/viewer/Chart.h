#pragma once

#include "apps/viewer/Document.h"
#include "apps/viewer/Setting.h"

#include "scene/Figure.h"

#include <QString>

#include <functional>
#include <memory>
#include <vector>

namespace Vek::Chart::Viewer {

/// A figure with what can be changed about it. May be made on any thread; from then on it belongs to one.
class Chart {
public:
  explicit Chart(const QString& p_title);
  /// Of a figure of one's own, without settings.
  explicit Chart(Scene::Figure p_figure);
  Chart(const Chart&) = delete; // settings refer to the plots
  Chart& operator=(const Chart&) = delete;
  virtual ~Chart() = default;

  const std::shared_ptr<Scene::Figure> figure;

  const std::vector<Setting>& Settings() const { return _settings; }
  /// Null where there is no such setting.
  const Setting* Find(const QString& p_group, const QString& p_name) const;
  /// Changes a setting. Throws std::invalid_argument for one that does not exist, for a value of another type, and what
  /// the plots throw; the setting keeps its value then.
  void Set(const QString& p_group, const QString& p_name, const Setting::Value& p_value);
  /// Sets all settings that another chart has as well to its values; those that do not fit stay.
  void Adopt(const Chart& p_other);

  /// Shows which part of the file there is, where another one could not be read.
  void ShowPart(const Part& p_part);
  /// Adds the settings that all figures have: theme, triad, and a cutting plane. On the thread of the windows.
  void AddCommon();
  /// A slice of a plot was dragged.
  virtual void SliceMoved(const Scene::SlicesPlot* /*p_plot*/, std::size_t /*p_slice*/, double /*p_position*/) {}

  /// What the data have at a hit, beside what the figure shows there: a line each.
  virtual QStringList Details(const Scene::Figure::Hit& /*p_hit*/) const { return {}; }

protected:
  bool _hasTriad = true; ///< at first

  using Offered = std::function<bool()>;
  ///@{
  /// Adds a setting and applies its value. Those that make plots anew come first. The result may be completed.
  Setting& Add(Setting p_setting);
  Setting& AddSwitch(const QString& p_group, const QString& p_name, bool p_isOn, std::function<void(bool)> p_apply);
  Setting& AddChoice(const QString& p_group, const QString& p_name, const QStringList& p_choices, int p_chosen,
                     std::function<void(int)> p_apply);
  Setting& AddNumber(const QString& p_group, const QString& p_name, double p_number, const Setting::Range& p_limits,
                     std::function<void(double)> p_apply);
  ///@}
  /// The choices among the steps, levels and variables of a file, where it has several of them.
  void AddParts(const QString& p_group, const Part& p_part, const std::vector<std::string>& p_times,
                const std::vector<std::string>& p_variables, const std::vector<double>& p_levels = {});

  /// What colours need of a plot.
  struct Colored {
    std::function<void(const std::string&)> map;
    std::function<void(const std::optional<Setting::Range>&)> range;
    std::function<void(bool)> logarithmic;
    std::function<Setting::Range()> current;
  };
  /// Of a member that may be null and may become another plot.
  template <class P>
  static Colored ColoredOf(P*& p_plot) {
    const auto with = [&p_plot](const auto& p_function) {
      if (p_plot != nullptr)
        p_function(*p_plot);
    };
    return {[with](const std::string& p_name) { with([&](P& p_p) { p_p.ColorMap(p_name); }); },
            [with](const std::optional<Setting::Range>& p_range) {
              with([&](P& p_p) { p_range ? p_p.ColorRange(p_range->min, p_range->max) : p_p.AutoColorRange(); });
            },
            [with](bool p_isLogarithmic) { with([&](P& p_p) { p_p.LogScale(p_isLogarithmic); }); },
            [&p_plot] { return p_plot != nullptr ? p_plot->ColorRange() : Setting::Range(); }};
  }
  /// Colour map, range and scale of plots that share them.
  void AddColors(const std::vector<Colored>& p_plots, const Offered& p_isOffered = {},
                 const std::string& p_map = "viridis");
  /// The value of a setting.
  template <class T>
  T Get(const QString& p_group, const QString& p_name) const {
    const Setting* const setting = Find(p_group, p_name);
    return setting != nullptr ? std::get<T>(setting->value) : T();
  }

private:
  Setting* FindOwn(const QString& p_group, const QString& p_name);
  void AddCut();
  void Cut();
  Setting::Range CutLimits() const;

  std::vector<Setting> _settings;
  bool _hasOwnTheme = false;
  int _cutAxis = -1; ///< 0 to 2; −1 for none
  double _cutAt = 0;
  bool _keepsAbove = false;
  bool _isCut = false;
};

} // namespace Vek::Chart::Viewer
