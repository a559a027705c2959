#include "toolkit/ImageBrowserAccessible.h"

#include <QPointer>

#include "toolkit/ImageBrowserView.h"

namespace snaplift {
namespace {

class AccessiblePhoto final : public QAccessibleInterface {
public:
  AccessiblePhoto(ImageBrowserView* view, int index) : m_view(view), m_index(index) {}

  int index() const { return m_index; }
  bool isValid() const override { return m_view && m_index < m_view->itemCount(); }
  QObject* object() const override { return nullptr; }
  QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(m_view);
  }
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QAccessible::Role role() const override { return QAccessible::ListItem; }
  void setText(QAccessible::Text, const QString&) override {}

  QString text(QAccessible::Text kind) const override {
    return isValid() && kind == QAccessible::Name ? m_view->titleAtIndex(m_index) : QString();
  }
  QRect rect() const override {
    if (!isValid()) {
      return {};
    }
    const QRect frame = m_view->itemFrameAtIndex(m_index);
    return {m_view->viewport()->mapToGlobal(frame.topLeft()), frame.size()};
  }
  QAccessible::State state() const override {
    QAccessible::State state;
    if (!isValid()) {
      state.invalid = true;
      return state;
    }
    state.selectable = state.multiSelectable = state.extSelectable = state.focusable = true;
    state.selected = m_view->selectionIndexes().contains(m_index);
    state.focused = m_view->hasFocus() && m_view->focusedIndex() == m_index;
    state.offscreen = !m_view->viewport()->rect().intersects(m_view->itemFrameAtIndex(m_index));
    return state;
  }

private:
  QPointer<ImageBrowserView> m_view;
  int m_index;
};

QAccessibleInterface* makeAccessible(const QString& className, QObject* object) {
  auto* view = qobject_cast<ImageBrowserView*>(object);
  return view != nullptr && className == "snaplift::ImageBrowserView"
             ? new ImageBrowserAccessible(view)
             : nullptr;
}

}  // namespace

void ImageBrowserAccessible::install() {
  QAccessible::installFactory(makeAccessible);
}

ImageBrowserAccessible::ImageBrowserAccessible(ImageBrowserView* view)
    : QAccessibleWidget(view, QAccessible::List) {}

ImageBrowserAccessible::~ImageBrowserAccessible() {
  for (const auto& [index, id] : m_children) {
    QAccessible::deleteAccessibleInterface(id);
  }
}

ImageBrowserView* ImageBrowserAccessible::view() const {
  return static_cast<ImageBrowserView*>(widget());
}

int ImageBrowserAccessible::childCount() const {
  return view()->itemCount();
}

QAccessibleInterface* ImageBrowserAccessible::child(int index) const {
  if (index < 0 || index >= childCount()) {
    return nullptr;
  }
  auto [place, isNew] = m_children.try_emplace(index, 0);
  if (isNew) {
    place->second = QAccessible::registerAccessibleInterface(new AccessiblePhoto(view(), index));
  }
  return QAccessible::accessibleInterface(place->second);
}

int ImageBrowserAccessible::indexOfChild(const QAccessibleInterface* child) const {
  const auto* photo = dynamic_cast<const AccessiblePhoto*>(child);
  return photo != nullptr ? photo->index() : -1;
}

QAccessibleInterface* ImageBrowserAccessible::childAt(int x, int y) const {
  const std::optional<int> index =
      view()->indexOfItemAtPoint(view()->viewport()->mapFromGlobal(QPoint(x, y)));
  return index ? child(*index) : nullptr;
}

QAccessibleInterface* ImageBrowserAccessible::focusChild() const {
  return view()->hasFocus() ? child(view()->focusedIndex()) : nullptr;
}

}  // namespace snaplift
