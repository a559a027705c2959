#pragma once

#include <optional>
#include <stop_token>
#include <string>

#include "formats/MBDBXRow.h"
#include "formats/ManifestDomains.h"
#include "formats/iOS5MBDBReader.h"

namespace snaplift {

// The index of one generation-4 backup: a row for every entry of "Manifest.mbdb", folders, links
// and empty files included, by domain, each domain's rows by modification date, earliest first.
// Rows of equal dates keep the manifest's order; real manifests have many of them.
//
// The index file "Manifest.mbdx" beside the manifest is loaded and kept, and not consulted: the
// manifest says everything that is needed. Complete when it is made; only read afterwards, from any
// thread.
class MBDBXReader {
public:
  using Records = ManifestDomains<MBDBXRow>;

  // Reads the whole backup's manifest. A missing or unreadable manifest gives no rows; so does a
  // request of `stop` while it is read.
  explicit MBDBXReader(std::string path, std::stop_token stop = {});
  MBDBXReader(const MBDBXReader&) = delete;
  MBDBXReader& operator=(const MBDBXReader&) = delete;

  const std::optional<Bytes>& mbdx() const { return m_mbdx; }
  const iOS5MBDBReader& mbdb() const { return m_mbdb; }
  const Records& records() const { return m_records; }

private:
  const std::string m_path;
  std::optional<Bytes> m_mbdx;
  iOS5MBDBReader m_mbdb;
  Records m_records;
};

}  // namespace snaplift
