#pragma once

#include <QObject>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <thread>
#include <vector>

#include "backups/ImageItem.h"

namespace snaplift {

// What many photos come to.
struct PhotoSums {
  std::size_t photos = 0, films = 0;
  std::uint64_t bytes = 0;     // of those whose size the backup states
  std::size_t unmeasured = 0;  // the others
  std::optional<Instant> first, last;
  std::array<std::size_t, 4> kinds{};  // by PhotoKind

  void add(const PhotoInfo& info);
};

// Asks backups for the records of photos on a thread of its own, which a hundred thousand of them
// keep busy for a moment. The photos outlive the object; its end stops the work. User interface's
// thread.
class PhotoSummer : public QObject {
  Q_OBJECT

public:
  // Sums these and forgets what it was at: no summed() comes of that any more.
  void sum(std::vector<const ImageItem*> photos);
  void stop();

signals:
  void summed(const PhotoSums& sums);

private:
  std::uint64_t m_asked = 0;
  std::jthread m_thread;
};

}  // namespace snaplift
