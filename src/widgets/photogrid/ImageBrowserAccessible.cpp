#include "widgets/photogrid/ImageBrowserAccessible.h"

#include <QPointer>

#include "widgets/photogrid/ImageBrowserView.h"
#include "widgets/photogrid/PhotoPreview.h"

namespace snaplift {
namespace {

// A part of the view that is no widget: one of several of its kind.
class AccessiblePart : public QAccessibleInterface {
public:
  AccessiblePart(ImageBrowserView* view, int number) : m_view(view), m_number(number) {}

  // Among the view's children.
  virtual int index() const = 0;
  QObject* object() const override { return nullptr; }
  QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(m_view);
  }
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  void setText(QAccessible::Text, const QString&) override {}
  QRect rect() const override {
    const QRect frame = isValid() ? this->frame() : QRect();
    return {m_view ? m_view->viewport()->mapToGlobal(frame.topLeft()) : QPoint(), frame.size()};
  }

protected:
  // In coordinates of the viewport, of a valid part.
  virtual QRect frame() const = 0;
  ImageBrowserView* view() const { return m_view; }
  int number() const { return m_number; }
  bool isInSight() const { return m_view->viewport()->rect().intersects(frame()); }

private:
  QPointer<ImageBrowserView> m_view;
  int m_number;
};

class AccessiblePhoto final : public AccessiblePart {
public:
  using AccessiblePart::AccessiblePart;

  int index() const override { return number(); }
  bool isValid() const override { return view() != nullptr && index() < view()->itemCount(); }
  QAccessible::Role role() const override { return QAccessible::ListItem; }

  QString text(QAccessible::Text kind) const override {
    if (!isValid()) {
      return {};
    }
    return kind == QAccessible::Name          ? view()->titleAtIndex(index())
           : kind == QAccessible::Description ? description()
                                              : QString();
  }
  QAccessible::State state() const override {
    QAccessible::State state;
    if (!isValid()) {
      state.invalid = true;
      return state;
    }
    state.selectable = state.multiSelectable = state.extSelectable = state.focusable = true;
    state.selected = view()->selectionIndexes().contains(index());
    state.focused = view()->hasFocus() && view()->focusedIndex() == index();
    state.offscreen = !isInSight();
    return state;
  }

private:
  QRect frame() const override { return view()->itemFrameAtIndex(index()); }
  QString description() const {
    QStringList parts = view()->descriptionAtIndex(index());
    if (view()->groupCount() > 0) {
      parts << view()->titleOfGroup(view()->groupOfItemAtIndex(index()));
    }
    parts.removeAll(QString());
    return parts.join(", ");
  }
};

class AccessibleHeader final : public AccessiblePart, public QAccessibleActionInterface {
public:
  using AccessiblePart::AccessiblePart;

  int index() const override { return view()->itemCount() + number(); }
  bool isValid() const override { return view() != nullptr && number() < view()->groupCount(); }
  QAccessible::Role role() const override { return QAccessible::Heading; }
  QString text(QAccessible::Text kind) const override {
    return isValid() && kind == QAccessible::Name
               ? view()->titleOfGroup(number()) + ", " + view()->countTextOfGroup(number())
               : QString();
  }
  QAccessible::State state() const override {
    QAccessible::State state;
    state.invalid = !isValid();
    state.offscreen = isValid() && !isInSight();
    return state;
  }
  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                : nullptr;
  }

  QStringList actionNames() const override { return {pressAction()}; }
  void doAction(const QString& action) override {
    if (isValid() && action == pressAction()) {
      view()->selectGroup(number());
      view()->scrollToIndex(view()->focusedIndex());
    }
  }
  QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
  QRect frame() const override { return view()->headerFrameOfGroup(number()); }
};

QAccessibleInterface* makeAccessible(const QString& className, QObject* object) {
  auto* preview = qobject_cast<PhotoPreview*>(object);
  if (preview != nullptr && className == "snaplift::PhotoPreview") {
    return new QAccessibleWidget(preview, QAccessible::Graphic);
  }
  auto* view = qobject_cast<ImageBrowserView*>(object);
  return view != nullptr && className == "snaplift::ImageBrowserView"
             ? new ImageBrowserAccessible(view)
             : nullptr;
}

}  // namespace

void ImageBrowserAccessible::install() {
  QAccessible::installFactory(makeAccessible);
}

void ImageBrowserAccessible::announceFocus(ImageBrowserView& view) {
  QAccessibleInterface* list =
      QAccessible::isActive() ? QAccessible::queryAccessibleInterface(&view) : nullptr;
  QAccessibleInterface* photo = list != nullptr ? list->focusChild() : nullptr;
  if (photo != nullptr) {
    QAccessibleEvent event(photo, QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
  }
}

void ImageBrowserAccessible::announceSelection(ImageBrowserView& view) {
  if (QAccessible::isActive()) {
    QAccessibleEvent event(&view, QAccessible::SelectionWithin);
    QAccessible::updateAccessibility(&event);
  }
}

ImageBrowserAccessible::ImageBrowserAccessible(ImageBrowserView* view)
    : QAccessibleWidget(view, QAccessible::List) {}

ImageBrowserAccessible::~ImageBrowserAccessible() {
  for (const auto& parts : {m_photos, m_headers}) {
    for (const auto& [number, id] : parts) {
      QAccessible::deleteAccessibleInterface(id);
    }
  }
}

ImageBrowserView* ImageBrowserAccessible::view() const {
  return static_cast<ImageBrowserView*>(widget());
}

// The open preview, which lies over the photos, comes behind them.
QAccessibleInterface* ImageBrowserAccessible::preview() const {
  PhotoPreview* preview = view()->preview();
  return preview != nullptr && !preview->isWindow() ? QAccessible::queryAccessibleInterface(preview)
                                                    : nullptr;
}

int ImageBrowserAccessible::indexOfPreview() const {
  return view()->itemCount() + view()->groupCount();
}

int ImageBrowserAccessible::childCount() const {
  return indexOfPreview() + (preview() != nullptr ? 1 : 0);
}

QAccessibleInterface* ImageBrowserAccessible::child(int index) const {
  if (index < 0 || index >= indexOfPreview()) {
    return index == indexOfPreview() ? preview() : nullptr;
  }
  const int group = index - view()->itemCount();
  auto [place, isNew] =
      group < 0 ? m_photos.try_emplace(index, 0) : m_headers.try_emplace(group, 0);
  if (isNew) {
    place->second = QAccessible::registerAccessibleInterface(
        group < 0 ? static_cast<AccessiblePart*>(new AccessiblePhoto(view(), index))
                  : new AccessibleHeader(view(), group));
  }
  return QAccessible::accessibleInterface(place->second);
}

int ImageBrowserAccessible::indexOfChild(const QAccessibleInterface* child) const {
  const auto* part = dynamic_cast<const AccessiblePart*>(child);
  if (part != nullptr) {
    return part->index();
  }
  return child != nullptr && child == preview() ? indexOfPreview() : -1;
}

QAccessibleInterface* ImageBrowserAccessible::childAt(int x, int y) const {
  const QPoint point = view()->viewport()->mapFromGlobal(QPoint(x, y));
  if (const std::optional<int> group = view()->groupWithHeaderAtPoint(point)) {
    return child(view()->itemCount() + *group);
  }
  const std::optional<int> index = view()->indexOfItemAtPoint(point);
  return index ? child(*index) : nullptr;
}

QAccessibleInterface* ImageBrowserAccessible::focusChild() const {
  return view()->hasFocus() ? child(view()->focusedIndex()) : nullptr;
}

}  // namespace snaplift
