#pragma once

#include <cstddef>
#include <functional>
#include <type_traits>
#include <typeinfo>

namespace snaplift {

// A reference to one of the objects that an outline shows. The outline keeps it, compares it and
// hands it back; only its data source knows what stands behind it, and may ask with as(). The
// object is not owned and must live as long as the outline shows it. The absent item stands for the
// invisible root, or for no item at all.
class OutlineItem {
public:
  OutlineItem() = default;
  OutlineItem(std::nullptr_t) {}
  // `object` keeps its static type: as<T>() knows it again, as a base or derived class does not.
  template <typename T>
  requires(std::is_object_v<T> && !std::is_const_v<T>) OutlineItem(T* object)
      : m_object(object), m_type(object ? &typeid(T) : nullptr) {}

  // The object if it was given as a T, otherwise nullptr.
  template <typename T>
  T* as() const {
    return m_type && *m_type == typeid(T) ? static_cast<T*>(m_object) : nullptr;
  }

  explicit operator bool() const { return m_object != nullptr; }
  // Identity of the objects, not equality of their contents.
  friend bool operator==(OutlineItem a, OutlineItem b) { return a.m_object == b.m_object; }

private:
  friend struct std::hash<OutlineItem>;
  void* m_object = nullptr;
  const std::type_info* m_type = nullptr;
};

}  // namespace snaplift

template <>
struct std::hash<snaplift::OutlineItem> {
  std::size_t operator()(snaplift::OutlineItem item) const noexcept {
    return std::hash<void*>()(item.m_object);
  }
};
