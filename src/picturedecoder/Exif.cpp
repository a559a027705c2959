#include "picturedecoder/Exif.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <limits>
#include <string_view>

#include <libexif/exif-data.h>

namespace snaplift {
namespace {

// An entry of that directory, if it has the format and so many values at least. libexif has fitted
// its bytes into the file; how many of them the values take is looked at here.
const ExifEntry* entryOf(const ExifData* data, ExifIfd directory, int tag, ExifFormat format,
                         unsigned long values = 1) {
  const ExifEntry* entry =
      data == nullptr ? nullptr
                      : exif_content_get_entry(data->ifd[directory], static_cast<ExifTag>(tag));
  const bool isFit = entry != nullptr && entry->data != nullptr && entry->format == format &&
                     entry->components >= values &&
                     entry->size >= values * exif_format_get_size(format);
  return isFit ? entry : nullptr;
}

// Up to its end, without the blanks that some cameras fill it with.
std::string_view wordsOf(const ExifData* data, ExifIfd directory, int tag) {
  const ExifEntry* entry = entryOf(data, directory, tag, EXIF_FORMAT_ASCII);
  if (entry == nullptr) {
    return {};
  }
  std::string_view text = textOf(ByteView(entry->data, entry->size));
  text = text.substr(0, text.find('\0'));
  const std::size_t last = text.find_last_not_of(' ');
  return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

unsigned shortOf(ExifData* data, ExifIfd directory, int tag) {
  const ExifEntry* entry = entryOf(data, directory, tag, EXIF_FORMAT_SHORT);
  return entry == nullptr ? 0 : exif_get_short(entry->data, exif_data_get_byte_order(data));
}

double ratioAt(ExifData* data, const ExifEntry& entry, std::size_t index) {
  constexpr std::size_t ratioSize = 8;
  const ExifRational ratio =
      exif_get_rational(entry.data + index * ratioSize, exif_data_get_byte_order(data));
  return ratio.denominator == 0 ? std::numeric_limits<double>::quiet_NaN()
                                : double{1} * ratio.numerator / ratio.denominator;
}

double ratioOf(ExifData* data, int tag) {
  const ExifEntry* entry = entryOf(data, EXIF_IFD_EXIF, tag, EXIF_FORMAT_RATIONAL);
  return entry == nullptr ? 0 : ratioAt(data, *entry, 0);
}

// "2011:10:12 08:30:00"; all zeros for anything else.
PictureFacts::Clock clockOf(std::string_view text) {
  constexpr std::size_t length = 19;
  PictureFacts::Clock clock;
  if (text.size() != length) {
    return clock;
  }
  const char* next = text.data();
  for (std::int32_t* part :
       {&clock.year, &clock.month, &clock.day, &clock.hour, &clock.minute, &clock.second}) {
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(next, end, *part);
    if (error != std::errc()) {
      return {};
    }
    next = rest == end ? end : rest + 1;
  }
  return clock;
}

// Degrees, minutes and seconds, and to which side. False where the file does not say all of it.
bool readDegrees(ExifData* data, int tag, int sideTag, char negative, double& degrees) {
  constexpr double minutes = 60;
  const ExifEntry* entry = entryOf(data, EXIF_IFD_GPS, tag, EXIF_FORMAT_RATIONAL, 3);
  const std::string_view side = wordsOf(data, EXIF_IFD_GPS, sideTag);
  if (entry == nullptr || side.empty()) {
    return false;
  }
  degrees = ratioAt(data, *entry, 0) + ratioAt(data, *entry, 1) / minutes +
            ratioAt(data, *entry, 2) / (minutes * minutes);
  degrees = side.front() == negative ? -degrees : degrees;
  return true;
}

void copyText(std::string_view text, PictureFacts::Text& target) {
  text = text.substr(0, target.size() - 1);
  std::copy(text.begin(), text.end(), target.begin());
}

}  // namespace

void Exif::End::operator()(_ExifData* data) const {
  exif_data_unref(data);
}

Exif Exif::read(ByteView bytes) {
  Exif exif;
  exif.m_data.reset(exif_data_new_from_data(bytes.data(), static_cast<unsigned>(bytes.size())));
  return exif;
}

int Exif::orientation() const {
  const unsigned orientation = shortOf(m_data.get(), EXIF_IFD_0, EXIF_TAG_ORIENTATION);
  return orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
}

ByteView Exif::preview() const {
  return m_data == nullptr || m_data->data == nullptr ? ByteView()
                                                      : ByteView(m_data->data, m_data->size);
}

PictureFacts Exif::facts() const {
  ExifData* data = m_data.get();
  PictureFacts facts;
  copyText(wordsOf(data, EXIF_IFD_0, EXIF_TAG_MAKE), facts.maker);
  copyText(wordsOf(data, EXIF_IFD_0, EXIF_TAG_MODEL), facts.model);
  const std::string_view taken = wordsOf(data, EXIF_IFD_EXIF, EXIF_TAG_DATE_TIME_ORIGINAL);
  facts.taken = clockOf(taken.empty() ? wordsOf(data, EXIF_IFD_0, EXIF_TAG_DATE_TIME) : taken);
  facts.exposure = ratioOf(data, EXIF_TAG_EXPOSURE_TIME);
  facts.aperture = ratioOf(data, EXIF_TAG_FNUMBER);
  facts.iso = shortOf(data, EXIF_IFD_EXIF, EXIF_TAG_ISO_SPEED_RATINGS);
  const bool hasPosition =
      readDegrees(data, EXIF_TAG_GPS_LATITUDE, EXIF_TAG_GPS_LATITUDE_REF, 'S', facts.latitude) &&
      readDegrees(data, EXIF_TAG_GPS_LONGITUDE, EXIF_TAG_GPS_LONGITUDE_REF, 'W', facts.longitude);
  facts.hasPosition = hasPosition ? 1 : 0;
  return plausible(facts);
}

}  // namespace snaplift
