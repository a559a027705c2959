#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "formats/MBDBXRow.h"
#include "formats/iOS5MBDBReader.h"
#include "foundation/Log.h"
#include "samples/ManifestWriter.h"

namespace snaplift {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(MBDBXRow, readsAnEntryOfTheIndexFile) {
  const std::string entry =
      std::string("\0abcdefghijklmnopqr\xFF", 20) + std::string("\0\0\1\0\x81\xA4", 6);
  const MBDBXRow row = MBDBXRow::initWithRow(bytesOf(entry));
  EXPECT_EQ(row.hash(), "006162636465666768696a6b6c6d6e6f707172ff");
  EXPECT_EQ(row.index(), 256u);
  EXPECT_EQ(row.typeHex(), "81a4");
  EXPECT_EQ(row.type(), MBDBXRow::RegularFile);

  for (const auto& [mode, type] : {std::pair("\xA1\xED", 2), std::pair("\x41\xED", 0),
                                   std::pair("\x81\x80", 1), std::pair("\x81\xFF", 3)}) {
    const std::string other = entry.substr(0, 24) + mode;
    EXPECT_EQ(MBDBXRow::initWithRow(bytesOf(other)).type(), type);
  }
  for (std::size_t length = 0; length < entry.size(); ++length) {
    const MBDBXRow cut = MBDBXRow::initWithRow(bytesOf(entry).first(length));
    EXPECT_EQ(cut.hash().has_value(), length >= 20) << length;
    EXPECT_EQ(cut.index(), length >= 24 ? 256u : 0u) << length;
    EXPECT_EQ(cut.type(), MBDBXRow::Other) << length;
  }
}

TEST(MBDBXRow, describesAnEntryOfEitherFile) {
  const std::string folder = "/root/backup";
  iOS5MBDBReader reader(
      Bytes::copyOf(bytesOf(samples::manifestDatabase({{.domain = "MediaDomain",
                                                        .path = "Media/DCIM/100APPLE/IMG_0001.JPG",
                                                        .modificationDate = 1318408200,
                                                        .filelength = 1}}))));
  std::optional<ManifestRecord> record = reader.nextEntry();
  record->setBackupFolder(&folder);
  EXPECT_EQ(MBDBXRow::initWithRecord(*record).description(),
            "MBDBXRow: {hash: 2a041bfd473c7a136dff7b42e616c84344d7f27a, date: 2011-10-12 08:30:00 "
            "+0000, type (null), type: 1, domain: MediaDomain, path: "
            "Media/DCIM/100APPLE/IMG_0001.JPG, uniquePath: "
            "/root/backup/Media/DCIM/100APPLE/IMG_0001.JPG}");

  // What the manifest leaves empty is not unknown.
  iOS5MBDBReader nameless(Bytes::copyOf(bytesOf(samples::manifestDatabase({{.filelength = 1}}))));
  record = nameless.nextEntry();
  record->setBackupFolder(&folder);
  EXPECT_THAT(MBDBXRow::initWithRecord(*record).description(),
              testing::HasSubstr("domain: , path: , uniquePath: /root/backup}"));

  const std::string entry = std::string(20, '\x0F') + std::string("\0\0\0\7\xA1\xED", 6);
  EXPECT_EQ(MBDBXRow::initWithRow(bytesOf(entry)).description(),
            "MBDBXRow: {hash: 0f0f0f0f0f0f0f0f0f0f0f0f0f0f0f0f0f0f0f0f, date: (null), type a1ed, "
            "type: 2, domain: (null), path: (null), uniquePath: (null)}");
}

TEST(MBDBXRow, takesItsTypeFromModeAndLength) {
  std::vector<std::string> lines;
  const LogCapture capture([&](std::string line) { lines.push_back(std::move(line)); });
  const auto typeOf = [](std::uint16_t mode, std::uint64_t length) {
    iOS5MBDBReader reader(Bytes::copyOf(bytesOf(samples::manifestDatabase(
        {{.domain = "D", .path = "odd\npath", .mode = mode, .filelength = length}}))));
    return MBDBXRow::initWithRecord(*reader.nextEntry()).type();
  };
  EXPECT_EQ(typeOf(0x41ED, 0), MBDBXRow::Folder);
  EXPECT_EQ(typeOf(0x81A4, 0), MBDBXRow::RegularFile);
  EXPECT_EQ(typeOf(0xA1FF, 0), MBDBXRow::RegularFile);  // a link, told by its high byte alone
  EXPECT_EQ(typeOf(0x41ED, 7), MBDBXRow::RegularFile);
  EXPECT_THAT(lines, IsEmpty());
  EXPECT_EQ(typeOf(0x1000, 0), MBDBXRow::Other);
  EXPECT_EQ(typeOf(0x1000, 5), MBDBXRow::RegularFile);
  EXPECT_THAT(lines,
              ElementsAre("OTHER! 16 for path: odd\\npath", "OTHER! 16 for path: odd\\npath"));

  MBDBXRow row;
  row.setTypeFromMode(0x81A4);
  EXPECT_EQ(row.type(), MBDBXRow::RegularFile);
  row.setTypeFromMode(0xA1ED);
  EXPECT_EQ(row.type(), MBDBXRow::SymbolicLink);
}

}  // namespace
}  // namespace snaplift
