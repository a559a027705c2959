#include "app/export/WindowExports.h"

#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <utility>

#include "backups/ImageItem.h"

namespace snaplift {
namespace {

constexpr auto tellInterval = std::chrono::milliseconds(50);

WindowExports* exportsOfProcess = nullptr;

void stopAtExit() {
  if (exportsOfProcess != nullptr) {
    exportsOfProcess->stopAndWait();
  }
}

}  // namespace

class WindowExports::Export : public ExportObserver {
public:
  Export(WindowExports& owner, ExportReport report, std::size_t photos)
      : m_owner(owner),
        m_report(std::move(report)),
        m_photos(takeMissing(photos)),
        m_job(m_photos, m_report.destination, m_report.options, *this) {
    m_report.failures.clear();
  }

  // Asks the backup for the photos' sizes on a thread that calls `done` at its end, unless the
  // export goes before that.
  void measure(std::function<void()> done) {
    m_measuring = std::jthread([this, done = std::move(done)](const std::stop_token& stop) {
      measureAll(stop);
      if (!stop.stop_requested()) {
        done();
      }
    });
  }

  void photoDidEnd(const ExportedPhoto& photo) override {
    if (photo.error) {
      m_report.failures.push_back(photo);
      m_failed.push_back(m_photos[m_ended]);
      // The disk may have heard of a name, and not have lived to say so.
      m_failed.back().mayBeThere = photo.error->domain == posixErrorDomain;
    } else {
      m_report.arrived.push_back(photo);
    }
    ++m_ended;
    m_owner.tellProgress();
  }

  void exportDidEnd(const ExportSummary& summary) override {
    m_failed.insert(m_failed.end(), m_photos.begin() + static_cast<std::ptrdiff_t>(m_ended.load()),
                    m_photos.end());
    m_report.missing.insert(m_report.missing.begin(), m_failed.begin(), m_failed.end());
    addToReport(summary);
    QMetaObject::invokeMethod(
        &m_owner, [this, owner = &m_owner] { owner->exportHasEnded(this); }, Qt::QueuedConnection);
  }

  // 0: not known, or not yet.
  std::uint64_t bytes() const { return m_isMeasured ? m_bytesBefore.back() : 0; }

  ExportJob& job() { return m_job; }
  void stop() {
    m_isStopped = true;
    m_job.stop();
  }
  bool isStopped() const { return m_isStopped; }
  const ExportReport& report() const { return m_report; }

  ExportProgress progress() const {
    const std::size_t ended = m_ended;
    return {.photos = m_photos.size(),
            .photosEnded = ended,
            .bytes = bytes(),
            .bytesEnded = m_isMeasured ? m_bytesBefore[ended] : 0};
  }

private:
  std::vector<PhotoToExport> takeMissing(std::size_t photos) {
    auto& missing = m_report.missing;
    const auto end =
        missing.begin() + static_cast<std::ptrdiff_t>(std::min(photos, missing.size()));
    std::vector<PhotoToExport> taken(missing.begin(), end);
    missing.erase(missing.begin(), end);
    return taken;
  }

  void addToReport(const ExportSummary& summary) {
    ExportSummary sum = summary;
    sum.exported += m_report.summary.exported;
    sum.films += m_report.summary.films;
    sum.renamed += m_report.summary.renamed;
    sum.shortened += m_report.summary.shortened;
    sum.skipped += m_report.summary.skipped;
    sum.bytes += m_report.summary.bytes;
    sum.photos = m_report.arrived.size() + m_report.missing.size();
    sum.notBegun = m_report.missing.size() - summary.failed;
    m_report.summary = sum;
  }

  // The size of one that is not known makes the sum worthless.
  void measureAll(const std::stop_token& stop) {
    std::uint64_t bytes = 0;
    m_bytesBefore.reserve(m_photos.size() + 1);
    m_bytesBefore.push_back(bytes);
    for (const PhotoToExport& photo : m_photos) {
      const auto size = stop.stop_requested() ? std::nullopt : photo.photo->info().size;
      if (!size) {
        return;
      }
      bytes += *size;
      m_bytesBefore.push_back(bytes);
    }
    m_isMeasured = true;
  }

  WindowExports& m_owner;
  ExportReport m_report;  // touched by the job's calls only, until the end
  const std::vector<PhotoToExport> m_photos;
  std::vector<PhotoToExport> m_failed;
  std::atomic<std::size_t> m_ended = 0;
  std::vector<std::uint64_t> m_bytesBefore;  // each photo, and all; read when it is measured
  std::atomic<bool> m_isMeasured = false;
  ExportJob m_job;
  bool m_isStopped = false;
  std::jthread m_measuring;
};

WindowExports::WindowExports(QObject* parent) : QObject(parent) {
  exportsOfProcess = this;
}

WindowExports::~WindowExports() {
  exportsOfProcess = nullptr;
  stopAndWait();
}

void WindowExports::begin(ExportReport report, std::size_t photos, Decide decide) {
  // As late as this: what the toolkit has made before then is still there when the exports stop.
  [[maybe_unused]] static const int isRegistered = std::atexit(stopAtExit);
  const auto next = std::make_shared<Export>(*this, std::move(report), photos);
  m_measured.push_back(next);
  next->measure([this, measured = next.get(), decide = std::move(decide)] {
    QMetaObject::invokeMethod(
        this, [this, measured, decide] { exportIsMeasured(measured, decide); },
        Qt::QueuedConnection);
  });
  emit progressed();
}

void WindowExports::exportIsMeasured(const Export* measured, const Decide& decide) {
  const auto place = std::ranges::find(m_measured, measured, &ExportPointer::get);
  if (place == m_measured.end()) {
    return;  // stopped
  }
  const ExportPointer next = std::move(*place);
  m_measured.erase(place);
  if (decide && !next->isStopped()) {
    decide(next->report(), next->bytes(), [this, next] { start(next); });
  } else {
    start(next);
  }
  emit progressed();
}

void WindowExports::start(const ExportPointer& next) {
  m_exports.push_back(next);
  next->job().start();
  emit progressed();
}

std::size_t WindowExports::remaining() const {
  std::size_t count = 0;
  for (const auto& measured : m_measured) {
    count += measured->job().remaining();
  }
  for (const auto& running : m_exports) {
    count += std::max<std::size_t>(1, running->job().remaining());
  }
  return count;
}

ExportProgress WindowExports::progress() const {
  std::vector<ExportProgress> all = m_over;
  for (const auto* exports : {&m_measured, &m_exports}) {
    for (const auto& one : *exports) {
      all.push_back(one->progress());
    }
  }
  const bool areMeasured =
      std::ranges::none_of(all, [](const auto& one) { return one.bytes == 0; });
  ExportProgress sum;
  for (const ExportProgress& one : all) {
    sum.photos += one.photos;
    sum.photosEnded += one.photosEnded;
    sum.bytes += areMeasured ? one.bytes : 0;
    sum.bytesEnded += areMeasured ? one.bytesEnded : 0;
  }
  return sum;
}

void WindowExports::stop() {
  for (const auto* exports : {&m_measured, &m_exports}) {
    for (const auto& one : *exports) {
      one->stop();
    }
  }
}

void WindowExports::stopAndWait() {
  stop();
  m_measured.clear();
  m_exports.clear();
  m_over.clear();
}

// One told progress at a time, and some in a second: however many photos end meanwhile, the last
// state is shown, and telling takes no time from the export.
void WindowExports::tellProgress() {
  if (!m_isProgressTold.exchange(true)) {
    QMetaObject::invokeMethod(
        this,
        [this] {
          QTimer::singleShot(tellInterval, this, [this] {
            m_isProgressTold = false;
            emit progressed();
          });
        },
        Qt::QueuedConnection);
  }
}

void WindowExports::exportHasEnded(const Export* over) {
  const auto place = std::ranges::find(m_exports, over, &ExportPointer::get);
  if (place == m_exports.end()) {
    return;  // stopped, and forgotten
  }
  const ExportPointer last = std::move(*place);
  m_exports.erase(place);
  m_over.push_back(last->progress());
  if (m_exports.empty()) {
    m_over.clear();
  }
  emit progressed();
  emit ended(last->report());
}

}  // namespace snaplift
