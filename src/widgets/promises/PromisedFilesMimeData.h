#pragma once

#include <QMimeData>
#include <QPointer>
#include <memory>

#include "widgets/promises/DirectSaveChannel.h"
#include "widgets/promises/PromisedFiles.h"

namespace snaplift {

// What a drag of promised files offers. With a direct-save channel, to targets that know it: that
// protocol, which names the destination folder, and beside it the list format that Dolphin asks
// for after the drop. To all others text/uri-list: they may ask for it while the pointer hovers and
// are told the paths; the files are written when the button is released over them.
//
// Qt keeps the object after the drag for as long as a target may ask, so nothing hangs on its
// destruction, and the view that promised the files may be gone by then.
class PromisedFilesMimeData : public QMimeData {
  Q_OBJECT

public:
  // `source` is valid as long as `owner` exists. `channel` may be null.
  PromisedFilesMimeData(PromisedFilesSource& source, QObject& owner,
                        std::unique_ptr<DirectSaveChannel> channel);

  // The drag runs: targets may look.
  void dragDidBegin();
  // The pointer has moved, and the drag does not know yet.
  void pointerDidMove();
  // The button is released over a target that is willing: what has to exist is made now.
  void willDrop();

  QStringList formats() const override;
  bool hasFormat(const QString& format) const override;

protected:
  QVariant retrieveData(const QString& format, QMetaType type) const override;

private:
  // "S" for success, "E" for a failure that the target reports.
  QByteArray saveDirectly() const;

  PromisedFilesSource& m_source;
  QPointer<QObject> m_owner;
  std::unique_ptr<DirectSaveChannel> m_channel;
  std::shared_ptr<PromisedFileList> m_list;  // may be null
  std::string m_firstName;
  bool m_targetSavesDirectly = false;
  bool m_isReleased = false;
  mutable QByteArray m_directSaveAnswer;  // a target that asks again is told the same
};

}  // namespace snaplift
