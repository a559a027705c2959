#include "widgets/photogrid/ImageBrowserAccessible.h"

#include <QPointer>

#include "widgets/photogrid/ImageBrowserView.h"
#include "widgets/photogrid/PhotoPreview.h"

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
    if (!isValid()) {
      return {};
    }
    const Thumbnail* known =
        kind == QAccessible::Description ? m_view->thumbnailAtIndex(m_index) : nullptr;
    return kind == QAccessible::Name ? m_view->titleAtIndex(m_index)
           : known == nullptr        ? QString()
           : known->isFilm           ? ImageBrowserView::tr("Film")
                                     : troubleOf(*known).sentence;
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
  for (const auto& [index, id] : m_children) {
    QAccessible::deleteAccessibleInterface(id);
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

int ImageBrowserAccessible::childCount() const {
  return view()->itemCount() + (preview() != nullptr ? 1 : 0);
}

QAccessibleInterface* ImageBrowserAccessible::child(int index) const {
  if (index < 0 || index >= view()->itemCount()) {
    return index == view()->itemCount() ? preview() : nullptr;
  }
  auto [place, isNew] = m_children.try_emplace(index, 0);
  if (isNew) {
    place->second = QAccessible::registerAccessibleInterface(new AccessiblePhoto(view(), index));
  }
  return QAccessible::accessibleInterface(place->second);
}

int ImageBrowserAccessible::indexOfChild(const QAccessibleInterface* child) const {
  const auto* photo = dynamic_cast<const AccessiblePhoto*>(child);
  if (photo != nullptr) {
    return photo->index();
  }
  return child != nullptr && child == preview() ? view()->itemCount() : -1;
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
