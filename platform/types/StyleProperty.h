#pragma once

#include <optional>
#include <type_traits>
#include <utility>

namespace Vek::Chart::Types {

/// A property of a style record: a value of its own, or else an inherited default.
template <class T>
class StyleProperty {
public:
  StyleProperty() = default; ///< not set, with a value-initialised default
  /// Not set, with that default.
  explicit StyleProperty(T p_default)
      : _default(std::move(p_default)) {}

  /// Gives the property a value of its own.
  void Set(T p_value) { _value = std::move(p_value); }
  /// As `Set`: `style.color = Qt::red`. `= {}` assigns a new property, which is not set.
  template <class U, class = std::enable_if_t<std::is_convertible_v<U&&, T>>>
  StyleProperty& operator=(U&& p_value) {
    Set(static_cast<T>(std::forward<U>(p_value)));
    return *this;
  }
  /// Removes the own value: the default applies again.
  void Reset() { _value.reset(); }
  /// Changes the default, not the own value.
  void SetDefault(T p_default) { _default = std::move(p_default); }

  /// Whether it has a value of its own.
  bool IsSet() const { return _value.has_value(); }
  /// The own value if it is set, else the default.
  const T& Effective() const { return _value ? *_value : _default; }

private:
  std::optional<T> _value;
  T _default{};
};

} // namespace Vek::Chart::Types
