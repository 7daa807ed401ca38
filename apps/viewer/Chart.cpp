#include "apps/viewer/Chart.h"

#include "library/NamedColors.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Viewer {

Chart::Chart(const QString& p_title)
    : figure(std::make_shared<Scene::Figure>(p_title)) {
  figure->theme = Scene::Theme::Dark();
}

Chart::Chart(Scene::Figure p_figure)
    : figure(std::make_shared<Scene::Figure>(std::move(p_figure)))
    , _hasOwnTheme(true) {}

Setting* Chart::FindOwn(const QString& p_group, const QString& p_name) {
  const auto found = std::find_if(_settings.begin(), _settings.end(), [&](const Setting& p_setting) {
    return p_setting.group == p_group && p_setting.name == p_name;
  });
  return found == _settings.end() ? nullptr : &*found;
}

const Setting* Chart::Find(const QString& p_group, const QString& p_name) const {
  return const_cast<Chart*>(this)->FindOwn(p_group, p_name);
}

void Chart::Set(const QString& p_group, const QString& p_name, const Setting::Value& p_value) {
  Setting* const setting = FindOwn(p_group, p_name);
  if (setting == nullptr || setting->value.index() != p_value.index())
    throw std::invalid_argument("No setting of that type: " + (p_group + " " + p_name).toStdString());
  if (setting->apply)
    setting->apply(p_value);
  setting->value = p_value;
  if (!setting->rebuilds)
    return;
  for (const Setting& other : _settings)
    if (!other.rebuilds && other.apply)
      other.apply(other.value);
}

namespace {

/// A value as numbers, to be compared.
struct Numbers {
  using Three = std::array<double, 3>;
  Three operator()(double p_number) const { return {p_number, 0, 0}; }
  Three operator()(const std::optional<Setting::Range>& p_range) const {
    return p_range ? Three{1, p_range->min, p_range->max} : Three{};
  }
};

bool AreEqual(const Setting::Value& p_a, const Setting::Value& p_b) {
  return p_a.index() == p_b.index() && std::visit(Numbers(), p_a) == std::visit(Numbers(), p_b);
}

} // namespace

void Chart::ShowPart(const Part& p_part) {
  for (Setting& setting : _settings)
    if (setting.reading == Setting::Reading::Time)
      setting.value = static_cast<int>(p_part.time);
    else if (setting.reading == Setting::Reading::Level)
      setting.value = static_cast<int>(p_part.level);
    else if (setting.reading == Setting::Reading::Variable)
      setting.value = p_part.variable.empty()
                          ? 0
                          : static_cast<int>(setting.choices.indexOf(QString::fromStdString(p_part.variable)));
}

void Chart::AddParts(const QString& p_group, const Part& p_part, const std::vector<std::string>& p_times,
                     const std::vector<std::string>& p_variables, const std::vector<double>& p_levels) {
  const auto add = [&](const char* p_name, const QStringList& p_choices, Setting::Reading p_reading) {
    if (p_choices.size() > 1)
      AddChoice(p_group, p_name, p_choices, 0, [](int) {}).reading = p_reading;
  };
  const auto strings = [](const std::vector<std::string>& p_strings) {
    QStringList list;
    for (const std::string& string : p_strings)
      list << QString::fromStdString(string);
    return list;
  };
  if (p_variables.size() > 1)
    add("Variable", QStringList("first of the file") + strings(p_variables), Setting::Reading::Variable);
  add("Time", strings(p_times), Setting::Reading::Time);
  QStringList levels;
  for (const double level : p_levels)
    levels << QString::number(level);
  add("Level", levels, Setting::Reading::Level);
  ShowPart(p_part);
}

void Chart::Adopt(const Chart& p_other) {
  for (const Setting& other : p_other._settings) {
    const Setting* const own = Find(other.group, other.name);
    if (own == nullptr || own->reading != Setting::Reading::None || own->value.index() != other.value.index() ||
        own->choices != other.choices || AreEqual(own->value, other.value))
      continue;
    try {
      Set(other.group, other.name, other.value);
    } catch (const std::invalid_argument&) { // a range that other data do not have
    }
  }
}

Setting& Chart::Add(Setting p_setting) {
  if (p_setting.apply)
    p_setting.apply(p_setting.value);
  _settings.push_back(std::move(p_setting));
  return _settings.back();
}

Setting& Chart::AddSwitch(const QString& p_group, const QString& p_name, bool p_isOn,
                          std::function<void(bool)> p_apply) {
  return Add({p_group, p_name, p_isOn,
              [apply = std::move(p_apply)](const Setting::Value& p_value) { apply(std::get<bool>(p_value)); }});
}

Setting& Chart::AddChoice(const QString& p_group, const QString& p_name, const QStringList& p_choices, int p_chosen,
                          std::function<void(int)> p_apply) {
  return Add({p_group, p_name, p_chosen,
              [apply = std::move(p_apply)](const Setting::Value& p_value) { apply(std::get<int>(p_value)); },
              p_choices});
}

Setting& Chart::AddNumber(const QString& p_group, const QString& p_name, double p_number,
                          const Setting::Range& p_limits, std::function<void(double)> p_apply) {
  return Add({p_group,
              p_name,
              p_number,
              [apply = std::move(p_apply)](const Setting::Value& p_value) { apply(std::get<double>(p_value)); },
              {},
              p_limits.min,
              p_limits.max});
}

namespace {

double Along(const Types::Vector3_Base<double>& p_point, int p_axis) {
  return p_axis == 0 ? p_point.x : p_axis == 1 ? p_point.y : p_point.z;
}

} // namespace

void Chart::AddCommon() {
  figure->Layout({0, 0, 800, 600}); // which finds the limits
  AddCut();
  QStringList themes{"dark", "light", "print"};
  if (_hasOwnTheme)
    themes.push_front("its own");
  AddChoice("Figure", "Theme", themes, 0, [this, themes, own = figure->theme](int p_index) {
    const QString name = themes.value(p_index);
    figure->theme = name == "light"   ? Scene::Theme::Light()
                    : name == "print" ? Scene::Theme::Print()
                    : name == "dark"  ? Scene::Theme::Dark()
                                      : own;
  });
  AddSwitch("Figure", "Triad", _hasTriad && !_hasOwnTheme, [this](bool p_isOn) { figure->SetTriad(p_isOn); });
}

void Chart::AddCut() {
  AddChoice("Cut", "Across", {"–", figure->AxisTitle(0), figure->AxisTitle(1), figure->AxisTitle(2)}, 0,
            [this](int p_axis) {
              _cutAxis = p_axis - 1;
              const Setting::Range limits = CutLimits();
              _cutAt = (limits.min + limits.max) / 2;
              if (Setting* const position = FindOwn("Cut", "At"))
                position->value = _cutAt;
              Cut();
            });
  const auto isCut = [this] { return _cutAxis >= 0; };
  Setting& at = AddNumber("Cut", "At", 0, {}, [this](double p_position) {
    _cutAt = p_position;
    Cut();
  });
  at.limits = [this] { return CutLimits(); };
  at.isOffered = isCut;
  AddChoice("Cut", "Keep", {"below", "above"}, 0, [this](int p_side) {
    _keepsAbove = p_side == 1;
    Cut();
  }).isOffered = isCut;
}

Setting::Range Chart::CutLimits() const {
  const auto limits = figure->Limits();
  return limits.Empty() || _cutAxis < 0 ? Setting::Range(0, 1)
                                        : Setting::Range(Along(limits.Min(), _cutAxis), Along(limits.Max(), _cutAxis));
}

void Chart::Cut() {
  if (std::exchange(_isCut, false))
    figure->RemoveClip(figure->Clips().size() - 1);
  if (_cutAxis < 0)
    return;
  figure->Clip(_cutAxis, _cutAt, _keepsAbove ? Scene::Figure::Side::Above : Scene::Figure::Side::Below);
  _isCut = true;
}

void Chart::AddColors(const std::vector<Colored>& p_plots, const Offered& p_isOffered, const std::string& p_map) {
  const auto forAll = [p_plots](const auto& p_function) {
    for (const Colored& plot : p_plots)
      p_function(plot);
  };
  QStringList names;
  for (const std::string& name : Library::NamedColors::Names())
    names << QString::fromStdString(name);
  AddChoice("Colours", "Map", names, names.indexOf(QString::fromStdString(p_map)), [=](int p_index) {
    forAll([&](const Colored& p_plot) { p_plot.map(names.value(p_index).toStdString()); });
  }).isOffered = p_isOffered;
  Setting& range =
      Add({"Colours", "Range", std::optional<Setting::Range>(), [=](const Setting::Value& p_value) {
             forAll([&](const Colored& p_plot) { p_plot.range(std::get<std::optional<Setting::Range>>(p_value)); });
           }});
  range.isOffered = p_isOffered;
  range.current = [=] {
    Setting::Range shown;
    forAll([&](const Colored& p_plot) { shown = shown.Empty() ? p_plot.current() : shown; });
    return shown;
  };
  AddSwitch("Colours", "Logarithmic", false, [=](bool p_isOn) {
    forAll([&](const Colored& p_plot) { p_plot.logarithmic(p_isOn); });
  }).isOffered = p_isOffered;
}

} // namespace Vek::Chart::Viewer
