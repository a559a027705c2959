#pragma once

#include <QDateTime>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "decoders/PhotoInfo.h"
#include "foundation/Time.h"
#include "picturedecoder/protocol/PictureFacts.h"

namespace snaplift {

// What is known of photos, in the user's words, numbers and dates. What a photo's file says is a
// stranger's text and is shown short and plain; a text is empty where there is nothing to say.
namespace detailsText {

// "October 12, 2011, 8:30 AM", by the clock that the argument has.
QString date(const QDateTime& date);
QDateTime localDate(Instant instant);
// As the camera's clock showed it; invalid where the file has no date.
QDateTime photoDate(const PictureFacts& facts);
// "October 12, 2011 – March 3, 2012", or the one day.
QString dates(Instant first, Instant last);

QString bytes(std::uint64_t count);                     // "2.3 MB"
QString exactBytes(std::uint64_t count);                // "2.3 MB (2,345,678 bytes)"
QString kind(PhotoKind kind);                           // "Original"
QString pixels(int width, int height);                  // "2592 × 1936"
QString counts(std::size_t photos, std::size_t films);  // "12 photos and 1 film"

QString camera(const PictureFacts& facts);    // "Maker Model", the maker not twice
QString exposure(const PictureFacts& facts);  // "1/125 s, f/2.8, ISO 100"
QString position(const PictureFacts& facts);  // "52.51630° N, 13.37770° E"
// The same as programs that show maps understand it: "52.516300, 13.377700".
QString plainPosition(const PictureFacts& facts);

// The path on the device, as the backup has it.
QString devicePath(const PhotoInfo& info);

}  // namespace detailsText
}  // namespace snaplift
