#include "toolkit/PictureHeader.h"

#include <algorithm>
#include <string_view>

namespace snaplift {
namespace {

int bigEndian16(ByteView bytes, std::size_t at) {
  return bytes[at] << 8 | bytes[at + 1];
}

std::int64_t bigEndian32(ByteView bytes, std::size_t at) {
  return std::int64_t{bigEndian16(bytes, at)} << 16 | bigEndian16(bytes, at + 2);
}

// ITU T.81, table B.1: the markers of frame headers are C0 to CF without DHT, JPG and DAC.
bool isFrameHeader(int marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

constexpr int startOfScan = 0xDA;

// Of the processes, C0, C1 and C9 are sequential.
bool isSequential(int marker) {
  return marker == 0xC0 || marker == 0xC1 || marker == 0xC9;
}

// What a frame header says.
struct JpegFrame {
  QSize size;
  bool isSequential;
  int components;
  std::int64_t coefficientBytes;  // two for each coefficient of the whole picture
};

std::optional<JpegFrame> jpegFrame(ByteView frame, int marker) {
  constexpr std::size_t fixedPart = 6;  // precision, height, width, number of components
  if (frame.size() < fixedPart) {
    return std::nullopt;
  }
  const QSize size(bigEndian16(frame, 3), bigEndian16(frame, 1));
  const std::size_t components = frame[5];
  if (size.isEmpty() || components == 0 || frame.size() < fixedPart + 3 * components) {
    return std::nullopt;
  }
  int largest = 1;
  int samples = 0;
  for (std::size_t i = 0; i < components; ++i) {
    const int factors = frame[fixedPart + 3 * i + 1];
    const int area = (factors >> 4) * (factors & 0xF);
    largest = std::max(largest, area);
    samples += area;
  }
  const std::int64_t pixels = std::int64_t{size.width()} * size.height();
  return JpegFrame{size, isSequential(marker), static_cast<int>(components),
                   2 * pixels * samples / largest};
}

// A sequential picture whose first scan holds every component is decoded row by row; of any other,
// all coefficients are kept until the last scan.
PictureHeader headerOf(const JpegFrame& frame, int componentsOfFirstScan) {
  const std::int64_t rows = std::int64_t{64} * frame.size.width() * 4;
  const bool isOneScan = frame.isSequential && componentsOfFirstScan == frame.components;
  return {"jpeg", frame.size, isOneScan ? rows : frame.coefficientBytes, isOneScan};
}

std::optional<PictureHeader> jpegHeader(ByteView bytes) {
  std::optional<JpegFrame> frame;
  std::size_t at = 2;  // behind the start-of-image marker
  while (at + 4 <= bytes.size() && bytes[at] == 0xFF) {
    const int marker = bytes[at + 1];
    if (marker == 0xFF) {  // fill bytes may stand before any marker
      ++at;
      continue;
    }
    const auto length = static_cast<std::size_t>(bigEndian16(bytes, at + 2));
    if (length < 2 || length > bytes.size() - at - 2) {
      break;
    }
    const ByteView content = bytes.subspan(at + 4, length - 2);
    if (marker == startOfScan) {
      return frame && !content.empty() ? std::optional(headerOf(*frame, content[0])) : std::nullopt;
    }
    if (isFrameHeader(marker) && !frame) {
      frame = jpegFrame(content, marker);
    }
    at += 2 + length;
  }
  return frame ? std::optional(headerOf(*frame, 0)) : std::nullopt;
}

std::optional<PictureHeader> pngHeader(ByteView bytes) {
  constexpr std::size_t headerEnd = 29;  // signature, then the header chunk without its checksum
  constexpr std::int64_t maxSide = 0x7FFFFFFF;
  if (bytes.size() < headerEnd || textOf(bytes.subspan(12, 4)) != "IHDR") {
    return std::nullopt;
  }
  const std::int64_t width = bigEndian32(bytes, 16);
  const std::int64_t height = bigEndian32(bytes, 20);
  if (width < 1 || height < 1 || width > maxSide || height > maxSide) {
    return std::nullopt;
  }
  const std::int64_t pixelBytes = bytes[24] > 8 ? 8 : 4;
  return PictureHeader{"png", QSize(static_cast<int>(width), static_cast<int>(height)),
                       width > maxSide / height ? INT64_MAX : width * height * pixelBytes};
}

}  // namespace

std::optional<PictureHeader> pictureHeader(ByteView bytes) {
  using namespace std::string_view_literals;
  if (textOf(bytes).starts_with("\xFF\xD8\xFF"sv)) {
    return jpegHeader(bytes);
  }
  if (textOf(bytes).starts_with("\x89PNG\r\n\x1A\n"sv)) {
    return pngHeader(bytes);
  }
  return std::nullopt;
}

}  // namespace snaplift
