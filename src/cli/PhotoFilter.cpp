#include "cli/PhotoFilter.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <utility>

#include <fnmatch.h>

#include "cli/Output.h"
#include "foundation/DateWords.h"

namespace snaplift::cli {
namespace {

bool matches(const std::string& pattern, std::string_view text) {
  return ::fnmatch(pattern.c_str(), std::string(text).c_str(), FNM_CASEFOLD) == 0;
}

}  // namespace

std::optional<PhotoFilter> PhotoFilter::ofChoice(const PhotoChoice& choice) {
  PhotoFilter filter(choice);
  if (choice.since) {
    filter.m_span.begin = timeSpanOfWords(*choice.since).value().begin;
  }
  if (choice.until) {
    filter.m_span.end = timeSpanOfWords(*choice.until).value().end;
  }
  return !choice.list || filter.readList(*choice.list) ? std::optional(std::move(filter))
                                                       : std::nullopt;
}

bool PhotoFilter::readList(const std::string& name) {
  std::ifstream file;
  if (name != "-") {
    file.open(name);
  }
  std::istream& input = name == "-" ? std::cin : file;
  for (std::string line; std::getline(input, line);) {
    if (line.ends_with('\r')) {
      line.pop_back();
    }
    if (!line.empty()) {
      m_list.emplace(std::move(line), false);
    }
  }
  if (!input.eof()) {
    printMessage("cannot read the list of photos: " + name);
  }
  return input.eof();
}

bool PhotoFilter::takes(const ImageItem& photo) {
  if (m_choice.list) {
    const auto listed = m_list.find(photo.path());
    if (listed == m_list.end()) {
      return false;
    }
    listed->second = true;
  }
  const PhotoInfo info = photo.info();
  return (!m_choice.originals || info.kind == PhotoKind::Original) && isInTime(info) &&
         hasPattern(info);
}

std::vector<std::string> PhotoFilter::unknownPaths() const {
  std::vector<std::string> paths;
  for (const auto& [path, isKnown] : m_list) {
    if (!isKnown) {
      paths.push_back(path);
    }
  }
  std::ranges::sort(paths);
  return paths;
}

bool PhotoFilter::isInTime(const PhotoInfo& info) const {
  const std::optional<Instant> date = info.date();
  return (!m_choice.since && !m_choice.until) || (date && m_span.contains(*date));
}

bool PhotoFilter::hasPattern(const PhotoInfo& info) const {
  return m_choice.patterns.empty() ||
         std::ranges::any_of(m_choice.patterns, [&](const std::string& pattern) {
           return matches(pattern, info.name()) || matches(pattern, info.devicePath);
         });
}

}  // namespace snaplift::cli
