#pragma once

#include "library/BackupModel.h"
#include "toolkit/ImageBrowserItem.h"

namespace snaplift {

// The photos of one backup as the photo browser shows them: exactly the backup's `imageItems`, in
// their order. The backup is not owned; it outlives the browser and its workers, which is why the
// items that are handed out need keep nothing alive. The user interface's thread only, the items
// apart.
class BackupPhotos : public ImageBrowserViewDataSource {
public:
  // The backup whose photos are shown; null for none. Whoever sets it reloads the browser.
  BackupModel* content() const { return m_content; }
  void setContent(BackupModel* backup) { m_content = backup; }

  int numberOfItemsInImageBrowser(const ImageBrowserView& browser) const override;
  ImageBrowserItemPointer imageBrowserItemAtIndex(const ImageBrowserView& browser,
                                                  int index) const override;

private:
  BackupModel* m_content = nullptr;
};

}  // namespace snaplift
