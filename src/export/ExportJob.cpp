#include "export/ExportJob.h"

#include <algorithm>
#include <optional>
#include <system_error>
#include <utility>

#include "backups/ImageItem.h"

namespace snaplift {
namespace {

// How many photos may be written and wait for their names while one before them is still at work: a
// film, say. Where files have no name until then, nobody sees them; else they are hidden parts.
constexpr std::size_t mostPhotosAhead = 32;

bool isFilm(const ImageItem& photo) {
  return mediaOfPath(photo.path()) == PhotoMedia::Film;
}

}  // namespace

ExportJob::ExportJob(std::vector<PhotoToExport> photos, std::string destination,
                     ExportOptions options, ExportObserver& observer)
    : m_photos(std::move(photos)),
      m_options(options),
      m_observer(observer),
      m_folders(std::move(destination), options.skipsExisting || options.isDryRun,
                !options.isDryRun),
      m_writer(m_folders, m_options),
      m_order(m_photos.size(), mostPhotosAhead) {
  m_summary.photos = m_photos.size();
}

ExportJob::~ExportJob() {
  stop();
  wait();
}

void ExportJob::start() {
  m_thread = std::thread([this] { run(); });
}

void ExportJob::wait() {
  if (m_thread.joinable()) {
    m_thread.join();
  }
}

void ExportJob::run() {
  const unsigned cores = std::max(1U, std::thread::hardware_concurrency());
  const std::size_t workers =
      std::min<std::size_t>(m_options.workers ? m_options.workers : cores, m_photos.size());
  {
    std::vector<std::jthread> helpers;
    try {
      while (helpers.size() + 1 < workers) {
        helpers.emplace_back([this] { work(); });
      }
    } catch (const std::system_error&) {
      // The system gives no more threads: those that there are do the work.
    }
    work();
  }
  m_summary.notBegun = m_photos.size() - m_order.begun();
  if (m_summary.exported > 0 && m_options.flushes && !m_options.isDryRun) {
    m_summary.onFlush = m_folders.flush();
  }
  m_observer.exportDidEnd(m_summary);
}

std::vector<std::string> ExportJob::expectedPaths() const {
  ExportFolders folders(m_folders.destination().path(), false, false);
  const PhotoWriter writer(folders, {.isDryRun = true});
  std::vector<std::string> paths;
  paths.reserve(m_photos.size());
  for (const PhotoToExport& photo : m_photos) {
    WrittenPhoto expected;
    expected.outcome.photo = photo.photo;
    expected.folder = &folders.folderAt(photo.folder);
    writer.giveName(expected);
    paths.push_back(std::move(expected.outcome.written));
  }
  std::erase(paths, std::string());
  return paths;
}

void ExportJob::work() {
  while (const std::optional<std::size_t> index = m_order.begin()) {
    WrittenPhoto written = m_writer.write(m_photos[*index]);
    // At once, before the others begin with photos that would fail as well.
    if (m_writer.isDestinationLost(written)) {
      stop();
    }
    m_order.end(*index, std::move(written), [this](std::size_t, WrittenPhoto due) {
      m_writer.giveName(due);
      end(due);
    });
  }
}

void ExportJob::end(const WrittenPhoto& photo) {
  const ExportedPhoto& outcome = photo.outcome;
  m_summary.failed += outcome.error ? 1 : 0;
  m_summary.skipped += outcome.isSkipped ? 1 : 0;
  const bool isExported = !outcome.error && !outcome.isSkipped;
  m_summary.exported += isExported ? 1 : 0;
  m_summary.films += isExported && isFilm(*outcome.photo) ? 1 : 0;
  m_summary.renamed += outcome.isRenamed ? 1 : 0;
  m_summary.shortened += outcome.isShort && !outcome.error ? 1 : 0;
  m_summary.bytes += outcome.bytes;
  if (!m_summary.lost && m_writer.isDestinationLost(photo)) {
    m_summary.lost = outcome.error;
    stop();
  }
  m_observer.photoDidEnd(outcome);
}

}  // namespace snaplift
