#pragma once

#include "algorithms/Export.h"
#include "platform/debug/Check.h"
#include "platform/debug/TypeName.h"
#include "platform/ogl/Vec.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>
#include <string>
#include <utility>

namespace Vek::Chart::DataInterface {

/// Views of typed data, with checked access: 0 for reading, 2 for writing.
template <class T, int Access>
class Array;

/// A read-only view of `size()` scalars, which shares ownership of their storage.
///
/// Copies of the view share the owner. A view without an owner must not outlive the data. A view of a null pointer is
/// empty, whatever its count.
template <class T>
class VEK_ALGORITHMS_API Array<T, 0> {
public:
  Array() = default; ///< Empty.
  /// A view of `p_count` scalars from `p_data` on, with the owner of their storage.
  Array(const T* p_data, const std::uint64_t p_count, boost::shared_ptr<const void> p_owner = {})
      : _data(p_data)
      , _end(p_data == nullptr ? nullptr : p_data + p_count)
      , _count(p_data == nullptr ? 0 : p_count)
      , _owner(std::move(p_owner)) {}

  /// Scalar `p_index`. An index past the end reports "p_index < _count" and returns a reference to a static zero.
  const T& operator[](const std::uint64_t p_index) const {
    static constexpr T Nothing{};
    return VEK_ENSURE(p_index < _count, AccessSignature()) ? _data[p_index] : Nothing;
  }

  /// The number of scalars.
  std::uint64_t size() const { return _count; }
  ///@{
  /// The scalars as a range; null pointers when empty.
  const T* begin() const { return _data; }
  const T* end() const { return _end; }
  ///@}

private:
  static std::string AccessSignature() {
    const std::string type = vekdebug::TypeName<T>::Text();
    return "const " + type + " &__cdecl Vek::Chart::DataInterface::Array<" + type +
           ",0>::operator [](const unsigned __int64) const";
  }

  const T* _data = nullptr;
  const T* _end = nullptr;
  std::uint64_t _count = 0;
  boost::shared_ptr<const void> _owner;
};

/// A write-only view of `size()` elements, such as those of a mapped GPU buffer, whose memory must not be read. It owns
/// nothing. A view of a null pointer is empty.
template <class T>
class VEK_ALGORITHMS_API Array<T, 2> {
public:
  /// Access to one element by assignment only.
  class WriteOnlyAccess {
  public:
    /// Stores the value; drops it if the index lies outside of the view.
    void operator=(const T& p_value) const { // NOLINT: nothing can be read back, so there is no reference to return
      if (_element != nullptr)
        *_element = p_value;
    }

  private:
    friend class Array;
    explicit WriteOnlyAccess(T* p_element)
        : _element(p_element) {}
    T* _element;
  };

  Array() = default; ///< Empty.
  /// A view of `p_count` elements from `p_data` on.
  Array(T* p_data, const std::uint64_t p_count)
      : _data(p_data)
      , _end(p_data == nullptr ? nullptr : p_data + p_count)
      , _count(p_data == nullptr ? 0 : p_count) {}

  /// Access to element `p_index`. An index past the end reports "p_index < _count"; values assigned to it are dropped.
  WriteOnlyAccess operator[](const std::uint64_t p_index) {
    return WriteOnlyAccess(VEK_ENSURE(p_index < _count, AccessSignature()) ? _data + p_index : nullptr);
  }

  /// The number of elements.
  std::uint64_t size() const { return _count; }

private:
  static std::string AccessSignature() {
    const std::string view = "class " + ViewName();
    return view + "::WriteOnlyAccess __cdecl " + ViewName() + "::operator [](const unsigned __int64)";
  }
  static std::string ViewName() { return "Vek::Chart::DataInterface::Array<" + vekdebug::TypeName<T>::Text() + ",2>"; }

  T* _data = nullptr;
  T* _end = nullptr;
  std::uint64_t _count = 0;
};

extern template class VEK_ALGORITHMS_API Array<bool, 0>;
extern template class VEK_ALGORITHMS_API Array<unsigned char, 0>;
extern template class VEK_ALGORITHMS_API Array<unsigned short, 0>;
extern template class VEK_ALGORITHMS_API Array<unsigned int, 0>;
extern template class VEK_ALGORITHMS_API Array<float, 0>;
extern template class VEK_ALGORITHMS_API Array<double, 0>;
extern template class VEK_ALGORITHMS_API Array<Ogl::Attribute<Ogl::Vec3<float>>, 2>;
extern template class VEK_ALGORITHMS_API Array<Ogl::Attribute<Ogl::Vec1<unsigned int>>, 2>;

} // namespace Vek::Chart::DataInterface

/// Type name used in report signatures.
template <class T, int Access>
struct vekdebug::TypeName<Vek::Chart::DataInterface::Array<T, Access>> {
  /// The name.
  static std::string Text() {
    return "class Vek::Chart::DataInterface::Array<" + TypeName<T>::Text() + "," + std::to_string(Access) + ">";
  }
};
