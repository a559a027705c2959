#pragma once

#include <QAccessibleWidget>
#include <map>

namespace snaplift {

class ImageBrowserView;

// An image browser as screen readers see it: a list of named photos with their places and whether
// they are selected; each tells its group, which is what one hears while the keys go through the
// photos. Child i is photo i; behind the photos come the headers of the groups, which can be
// pressed, and then the open preview. An object for a photo is made when it is asked for, so that
// 100,000 photos cost nothing; a reader that wants the focused one gets it without walking the
// others.
class ImageBrowserAccessible : public QAccessibleWidget {
public:
  // Makes Qt use this for every ImageBrowserView. Repeated calls do nothing.
  static void install();
  // Tell the readers that are there, if any, of the photo that has the keyboard and of what is
  // selected.
  static void announceFocus(ImageBrowserView& view);
  static void announceSelection(ImageBrowserView& view);

  explicit ImageBrowserAccessible(ImageBrowserView* view);
  ~ImageBrowserAccessible() override;

  int childCount() const override;
  QAccessibleInterface* child(int index) const override;
  int indexOfChild(const QAccessibleInterface* child) const override;
  QAccessibleInterface* childAt(int x, int y) const override;
  QAccessibleInterface* focusChild() const override;

private:
  ImageBrowserView* view() const;
  QAccessibleInterface* preview() const;

  int indexOfPreview() const;

  mutable std::map<int, QAccessible::Id> m_photos, m_headers;
};

}  // namespace snaplift
