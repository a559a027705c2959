#pragma once

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "samples/BackupWriter.h"
#include "support/Program.h"
#include "support/TemporaryTree.h"

namespace snaplift {

using Json = nlohmann::ordered_json;  // compared in the order of the keys, too

struct Layout {
  samples::Generation generation;
  const char* version;
  const char* decoder;
};

inline void PrintTo(const Layout& layout, std::ostream* out) {
  *out << layout.version;
}

inline constexpr Layout layouts[] = {
    {samples::Generation::TwoSingleForm, "1.1.4", "iOS2Decoder"},
    {samples::Generation::TwoPairForm, "2.2.1", "iOS2Decoder"},
    {samples::Generation::Three, "3.1.3", "iOS3Decoder"},
    {samples::Generation::Four, "4.2.1", "iOS4Decoder"},
    {samples::Generation::Five, "5.0.1", "iOS5Decoder"},
};

// Backups in a folder of the test's own, and snaplift-cli run over them with that folder's "home"
// as the home folder. Dates are worded in English.
class CommandLineTest : public testing::Test {
protected:
  // October 12, 2011, noon, and so many days later.
  static Instant date(int days) { return instantFromUnixTime(1318420800 + days * 86400); }

  static samples::SampleFile photo(const Layout& layout, std::string path, std::string content,
                                   std::uint32_t modificationDate = 1318420800) {
    return {.domain = std::string(samples::photoDomain(layout.generation)),
            .path = std::move(path),
            .content = std::move(content),
            .modificationDate = modificationDate};
  }

  // A backup of the layout with two photos, whose contents begin with `device`. Returns its path.
  std::string writeBackup(const std::string& name, const Layout& layout, const std::string& device,
                          int days = 0) const {
    return write(name,
                 {.generation = layout.generation,
                  .deviceName = device,
                  .productVersion = layout.version,
                  .date = date(days),
                  .files = {photo(layout, "Media/DCIM/100APPLE/IMG_0001.JPG", device + " one"),
                            photo(layout, "Media/DCIM/100APPLE/IMG_0002.PNG", device + " two",
                                  1318420801)}});
  }

  std::string write(const std::string& name, const samples::SampleBackup& backup) const {
    samples::writeBackup(m_tree.path(name), backup);
    return m_tree.path(name);
  }

  // The call of snaplift-cli with these arguments.
  ProgramCall call(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), SNAPLIFT_CLI);
    return {.arguments = std::move(arguments),
            .environment = {{"HOME", m_tree.path("home")},
                            {"TMPDIR", m_tree.makeFolder("tmp")},
                            {"LC_ALL", "en_US.UTF-8"},
                            {"NO_COLOR", std::nullopt}}};
  }

  ProgramResult run(std::vector<std::string> arguments) const {
    return Program::run(call(std::move(arguments)));
  }

  // The JSON values of the output, one a line.
  static std::vector<Json> jsonLines(const ProgramResult& result) {
    std::vector<Json> values;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
      values.push_back(Json::parse(line, nullptr, false));
    }
    return values;
  }

  std::string rootInHome() const {
    return m_tree.path("home/Library/Application Support/MobileSync/Backup");
  }

  TemporaryTree m_tree;
};

}  // namespace snaplift
