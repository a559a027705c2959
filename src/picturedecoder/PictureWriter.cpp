#include "picturedecoder/PictureWriter.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace snaplift {
namespace {

constexpr std::size_t bytesPerPixel = 4;
constexpr std::uint8_t missingLevel = 0x80;

bool swapsSides(int orientation) {
  return orientation >= 5;
}

// Where the pixel (x, y) of a stored picture of `size` is, upright, counted in pixels.
std::size_t uprightIndex(std::size_t x, std::size_t y, PictureSize size, int orientation) {
  const std::size_t right = size.width - 1 - x;
  const std::size_t bottom = size.height - 1 - y;
  const bool isMirrored =
      orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
  const bool isFlipped =
      orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
  const std::size_t column = isMirrored ? right : x;
  const std::size_t line = isFlipped ? bottom : y;
  return swapsSides(orientation) ? column * size.height + line : line * size.width + column;
}

}  // namespace

PictureSize uprightSize(PictureSize stored, int orientation) {
  return swapsSides(orientation) ? PictureSize{stored.height, stored.width} : stored;
}

PictureSize PictureTarget::fitted(PictureSize size) const {
  const auto scaled = [&](double factor) {
    const auto side = [&](std::uint32_t length) {
      return std::max(static_cast<std::uint32_t>(std::lround(length * factor)), 1U);
    };
    return factor < 1 ? PictureSize{side(size.width), side(size.height)} : size;
  };
  double factor = std::min(1.0, double{1} * pixels / size.longerSide());
  PictureSize result = scaled(factor);
  while (result.pixelCount() > space.size() / bytesPerPixel) {
    factor *= 0.99;
    result = scaled(factor);
  }
  return result;
}

PictureWriter::PictureWriter(const PictureTarget& target, PictureSize stored, PictureSize whole,
                             int orientation, ColorConverter colors)
    : m_pixels(target.space.data()),
      m_stored(stored),
      m_whole(whole),
      m_target(target.fitted(whole)),
      m_orientation(orientation),
      m_colors(std::move(colors)),
      m_row(bytesPerPixel * stored.width),
      m_result(bytesPerPixel * m_target.width),
      m_line(bytesPerPixel * m_target.width),
      m_sum(bytesPerPixel * m_target.width) {}

void PictureWriter::addRow(const std::uint8_t* row) {
  if (m_rows >= m_stored.height) {
    return;
  }
  const std::uint64_t top = std::uint64_t{m_rows++} * m_target.height;
  const std::uint8_t* converted = m_colors.convert(row, m_row.data(), m_stored.width);
  if (m_target.width == m_stored.width && m_target.height == m_stored.height) {
    writeLine(converted);
    return;
  }
  // In units of which a stored row has `target height` and a line of the target `stored height`.
  averageLine(converted);
  const std::uint64_t bottom = top + m_target.height;
  const std::uint64_t end = (std::uint64_t{m_lines} + 1) * m_stored.height;
  addLine(static_cast<float>(std::min(bottom, end) - top));
  if (bottom >= end) {
    writeAveragedLine();
    addLine(static_cast<float>(bottom - end));
  }
}

void PictureWriter::averageLine(const std::uint8_t* row) {
  const std::uint64_t from = m_stored.width;
  const std::uint64_t to = m_target.width;
  for (std::uint64_t x = 0; x < to; ++x) {
    // In units of which a stored pixel has `to` and one of the target `from`.
    const std::uint64_t begin = x * from;
    const std::uint64_t end = begin + from;
    const std::uint64_t last = (end - 1) / to;
    float sum[bytesPerPixel] = {};
    for (std::uint64_t i = begin / to; i <= last; ++i) {
      const auto weight = static_cast<float>(std::min((i + 1) * to, end) - std::max(i * to, begin));
      for (std::size_t c = 0; c < bytesPerPixel; ++c) {
        sum[c] += weight * static_cast<float>(row[bytesPerPixel * i + c]);
      }
    }
    for (std::size_t c = 0; c < bytesPerPixel; ++c) {
      m_line[bytesPerPixel * x + c] = sum[c] / static_cast<float>(from);
    }
  }
}

void PictureWriter::addLine(float weight) {
  for (std::size_t i = 0; i < m_line.size(); ++i) {
    m_sum[i] += weight * m_line[i];
  }
}

void PictureWriter::writeAveragedLine() {
  const float scale = 1.0F / static_cast<float>(m_stored.height);
  for (std::size_t i = 0; i < m_sum.size(); ++i) {
    m_result[i] = static_cast<std::uint8_t>(std::min(m_sum[i] * scale + 0.5F, 255.0F));
    m_sum[i] = 0;
  }
  writeLine(m_result.data());
}

void PictureWriter::writeLine(const std::uint8_t* line) {
  const std::size_t y = m_lines++;
  const std::size_t start = uprightIndex(0, y, m_target, m_orientation);
  if (m_orientation == 1 || m_orientation == 4) {
    std::memcpy(m_pixels + bytesPerPixel * start, line, bytesPerPixel * m_target.width);
    return;
  }
  for (std::size_t x = 0; x < m_target.width; ++x) {
    std::memcpy(m_pixels + bytesPerPixel * uprightIndex(x, y, m_target, m_orientation),
                line + bytesPerPixel * x, bytesPerPixel);
  }
}

PictureAnswer PictureWriter::finish(bool isDamaged) {
  if (m_rows == 0) {
    return {};
  }
  const bool isShort = m_rows < m_stored.height;
  std::fill(m_result.begin(), m_result.end(), missingLevel);
  for (std::size_t i = 3; i < m_result.size(); i += bytesPerPixel) {
    m_result[i] = UINT8_MAX;
  }
  while (m_lines < m_target.height) {
    writeLine(m_result.data());
  }
  const PictureSize size = uprightSize(m_target, m_orientation);
  const PictureSize whole = uprightSize(m_whole, m_orientation);
  return {.outcome = PictureAnswer::Outcome::Decoded,
          .width = size.width,
          .height = size.height,
          .wholeWidth = whole.width,
          .wholeHeight = whole.height,
          .isOpaque = m_colors.isOpaque(),
          .isDamaged = isDamaged || isShort};
}

}  // namespace snaplift
