#include "pictures/FilmFile.h"

#include <numeric>
#include <string_view>

#include "pictures/BigEndian.h"

namespace snaplift::samples {
namespace {

std::string number(std::size_t value) {
  return bigEndian(value, 4);
}

std::string box(std::string_view name, const std::string& content) {
  return number(8 + content.size()) + std::string(name) + content;
}

// A box that begins with a version and flags.
std::string fullBox(std::string_view name, const std::string& content, std::size_t flags = 0) {
  return box(name, number(flags) + content);
}

// Pictures stand as they are: the unit matrix, in fixed point.
std::string unitMatrix() {
  constexpr std::size_t one = 0x10000, oneBelow = 0x40000000;
  return number(one) + number(0) + number(0) + number(0) + number(one) + number(0) + number(0) +
         number(0) + number(oneBelow);
}

std::string movieHeader(std::size_t frames, int framesOfSecond) {
  constexpr std::size_t normalRate = 0x10000, fullVolume = 0x0100, nextTrack = 2;
  return fullBox("mvhd", number(0) + number(0) + number(static_cast<std::size_t>(framesOfSecond)) +
                             number(frames) + number(normalRate) + bigEndian(fullVolume, 2) +
                             std::string(10, '\0') + unitMatrix() + std::string(24, '\0') +
                             number(nextTrack));
}

std::string trackHeader(std::size_t frames, std::size_t width, std::size_t height) {
  constexpr std::size_t isEnabledAndShown = 3, track = 1;
  return fullBox("tkhd",
                 number(0) + number(0) + number(track) + number(0) + number(frames) +
                     std::string(16, '\0') + unitMatrix() + number(width << 16) +
                     number(height << 16),
                 isEnabledAndShown);
}

// What a frame is encoded with.
std::string jpegDescription(std::size_t width, std::size_t height) {
  constexpr std::size_t dotsPerInch = 72 << 16;
  const std::string entry = std::string(6, '\0') + bigEndian(1, 2) + std::string(16, '\0') +
                            bigEndian(width, 2) + bigEndian(height, 2) + number(dotsPerInch) +
                            number(dotsPerInch) + number(0) + bigEndian(1, 2) +
                            std::string(32, '\0') + bigEndian(24, 2) + bigEndian(0xFFFF, 2);
  return fullBox("stsd", number(1) + box("jpeg", entry));
}

// All frames stand in one piece that begins at `offset` of the file, each for one unit of time.
std::string sampleTable(const std::vector<std::string>& frames, std::size_t width,
                        std::size_t height, std::size_t offset) {
  std::string sizes;
  for (const std::string& frame : frames) {
    sizes += number(frame.size());
  }
  const std::string count = number(frames.size());
  return box("stbl", jpegDescription(width, height) +
                         fullBox("stts", number(1) + count + number(1)) +
                         fullBox("stsc", number(1) + number(1) + count + number(1)) +
                         fullBox("stsz", number(0) + count + sizes) +
                         fullBox("stco", number(1) + number(offset)));
}

}  // namespace

std::string jpegFilm(const std::vector<std::string>& frames, int width, int height,
                     int framesOfSecond) {
  const auto w = static_cast<std::size_t>(width), h = static_cast<std::size_t>(height);
  const std::string type = box("ftyp", "qt  " + number(0) + "qt  ");
  const std::string data =
      box("mdat", std::accumulate(frames.begin(), frames.end(), std::string()));
  const std::string media =
      fullBox("mdhd", number(0) + number(0) + number(static_cast<std::size_t>(framesOfSecond)) +
                          number(frames.size()) + number(0)) +
      fullBox("hdlr", "mhlrvide" + std::string(12, '\0') + '\0') +
      box("minf", fullBox("vmhd", std::string(8, '\0'), 1) +
                      box("dinf", fullBox("dref", number(1) + fullBox("alis", "", 1))) +
                      sampleTable(frames, w, h, type.size() + 8));
  return type + data +
         box("moov", movieHeader(frames.size(), framesOfSecond) +
                         box("trak", trackHeader(frames.size(), w, h) + box("mdia", media)));
}

}  // namespace snaplift::samples
