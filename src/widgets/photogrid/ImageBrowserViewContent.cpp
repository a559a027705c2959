// What the view shows: the photos of the data source, in groups where it has them.

#include <QScrollBar>
#include <algorithm>
#include <numeric>

#include "widgets/desktop/PlainText.h"
#include "widgets/photogrid/ImageBrowserAccessible.h"
#include "widgets/photogrid/ImageBrowserView.h"
#include "widgets/photogrid/PhotoPreview.h"
#include "widgets/thumbnails/ThumbnailProvider.h"

namespace snaplift {

void ImageBrowserView::setDataSource(const ImageBrowserViewDataSource* dataSource) {
  m_dataSource = dataSource;
  reloadData();
}

void ImageBrowserView::askForContent() {
  endBand();
  m_pressedIndex = -1;
  m_onRelease = OnRelease::Nothing;
  const int count = m_dataSource ? m_dataSource->numberOfItemsInImageBrowser(*this) : 0;
  m_groups = m_dataSource ? m_dataSource->groupsOfItemsInImageBrowser(*this)
                          : std::vector<ImageBrowserGroup>();
  std::erase_if(m_groups, [](const ImageBrowserGroup& group) { return group.count <= 0; });
  std::vector<int> counts(m_groups.size());
  std::ranges::transform(m_groups, counts.begin(), &ImageBrowserGroup::count);
  if (std::accumulate(counts.begin(), counts.end(), std::int64_t{0}) != count) {
    m_groups.clear();
    counts.clear();
  }
  m_layout = counts.empty() ? GridLayout(count, measures()) : GridLayout(counts, measures());
}

void ImageBrowserView::reloadData() {
  const bool hadSelection = !selectionIndexes().empty();
  askForContent();
  m_selection = GridSelection(itemCount());
  if (m_dataSource) {
    m_thumbnails->setItems([this](int index) { return itemAtIndex(index); }, itemCount());
  } else {
    m_thumbnails->setItems({}, 0);
  }
  setPreviewOpen(false);  // only now: the grid behind it goes on with the items that there are
  m_scrollsBackwards = false;
  verticalScrollBar()->setValue(0);
  m_anchor.reset();
  relayout();
  if (hadSelection) {
    emit selectionIndexesChanged();
  }
}

void ImageBrowserView::rearrangeData(const std::function<int(int oldIndex)>& newIndexOf) {
  Anchor anchor = m_anchor.value_or(anchorOfFirstVisible());
  anchor.at.ry() -= m_layout.headerHeight();
  const int oldCount = itemCount();
  const IndexSet before = selectionIndexes();
  askForContent();
  const auto indexNow = [&](int oldIndex) {
    const int index = newIndexOf(oldIndex);
    return index < itemCount() ? index : -1;
  };
  m_selection.rearrange(itemCount(), indexNow);
  m_thumbnails->rearrangeItems(itemCount());

  anchor.index = nearestShown(anchor.index, oldCount, indexNow);
  anchor.at.ry() += m_layout.headerHeight();
  m_anchor = anchor;
  relayout();
  if (m_preview != nullptr && m_selection.focus() >= 0) {
    m_preview->showPhoto(m_selection.focus());
  } else {
    setPreviewOpen(false);
  }
  if (!(selectionIndexes() == before)) {
    ImageBrowserAccessible::announceSelection(*this);
    emit selectionIndexesChanged();
  }
}

// Where the photo at `oldIndex` of `oldCount` is now, or else the one that was nearest to it.
int ImageBrowserView::nearestShown(int oldIndex, int oldCount,
                                   const std::function<int(int oldIndex)>& indexNow) {
  for (int away = 0; away < oldCount; ++away) {
    for (const int near : {oldIndex + away, oldIndex - away}) {
      const int index = near >= 0 && near < oldCount ? indexNow(near) : -1;
      if (index >= 0) {
        return index;
      }
    }
  }
  return 0;
}

ImageBrowserItemPointer ImageBrowserView::itemAtIndex(int index) const {
  return m_dataSource->imageBrowserItemAtIndex(*this, index);
}

QString ImageBrowserView::titleAtIndex(int index) const {
  return plainText::shortened(m_dataSource->imageBrowserTitleAtIndex(*this, index));
}

const Thumbnail* ImageBrowserView::thumbnailAtIndex(int index) const {
  return m_thumbnails->find(itemAtIndex(index)->imageUID());
}

void ImageBrowserView::setThumbnailsSuspended(bool suspended) {
  m_thumbnails->setSuspended(suspended);
}

bool ImageBrowserView::isLoadingThumbnails() const {
  return m_lookTimer.isActive() || !m_thumbnails->isIdle();
}

// Groups

QString ImageBrowserView::titleOfGroup(int group) const {
  return plainText::shortened(std::string_view(m_groups[static_cast<std::size_t>(group)].title));
}

// "1" has a word of its own: without a translation there are no forms to choose from.
QString ImageBrowserView::countTextOfGroup(int group) const {
  const int count = itemsOfGroup(group).count();
  return count == 1 ? tr("1 Photo") : tr("%Ln Photos", nullptr, count);
}

QRect ImageBrowserView::headerFrameOfGroup(int group) const {
  return viewportRect(m_layout.headerRect(group, scrolled()));
}

std::optional<int> ImageBrowserView::groupWithHeaderAtPoint(QPoint point) const {
  if (groupCount() == 0) {
    return std::nullopt;
  }
  const int group = m_layout.groupAt(contentPoint(point).y());
  return headerFrameOfGroup(group).contains(point) ? std::optional(group) : std::nullopt;
}

void ImageBrowserView::selectGroup(int group, Qt::KeyboardModifiers modifiers) {
  if (group < 0 || group >= groupCount()) {
    return;
  }
  const IndexRange items = itemsOfGroup(group);
  const bool control = modifiers.testFlag(Qt::ControlModifier);
  if (modifiers.testFlag(Qt::ShiftModifier)) {
    changeSelection([&] { m_selection.extendThrough(items, control); });
  } else {
    changeSelection([&] { control ? m_selection.toggle(items) : m_selection.selectOnly(items); });
  }
}

}  // namespace snaplift
