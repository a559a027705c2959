#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "picturedecoder/ColorConverter.h"
#include "picturedecoder/protocol/PictureProtocol.h"

namespace snaplift {

struct PictureSize {
  std::uint32_t width = 0;
  std::uint32_t height = 0;

  std::uint32_t longerSide() const { return width > height ? width : height; }
  std::uint64_t pixelCount() const { return std::uint64_t{width} * height; }
};

// The size as it is to be seen; `orientation` is Exif's, 1 to 8.
PictureSize uprightSize(PictureSize stored, int orientation);

// The place for the pixels, and how long the longer side of a picture may be in it.
struct PictureTarget {
  std::uint32_t pixels = 0;
  std::span<std::uint8_t> space;

  // What a picture of `size` becomes here: smaller in proportion, never larger. The pixels fit into
  // the space.
  PictureSize fitted(PictureSize size) const;
};

// Takes the rows of a picture as a decoder has them, from the top as they are stored, and leaves
// them in the target: in sRGB, scaled by averaging, upright. No more than two rows are held.
class PictureWriter {
public:
  // `stored` is the size of the rows to come; `whole` that of the whole picture, stored, which is
  // larger where the decoder itself scales; `orientation` is Exif's, 1 to 8.
  PictureWriter(const PictureTarget& target, PictureSize stored, PictureSize whole, int orientation,
                ColorConverter colors);

  void addRow(const std::uint8_t* row);
  std::uint32_t rowsAdded() const { return m_rows; }
  // Paints the rows that never came grey. A picture without any row is none.
  PictureAnswer finish(bool isDamaged);

private:
  void averageLine(const std::uint8_t* row);
  void addLine(float weight);
  void writeAveragedLine();
  void writeLine(const std::uint8_t* line);

  std::uint8_t* m_pixels;
  PictureSize m_stored;
  PictureSize m_whole;
  PictureSize m_target;  // scaled, not yet turned
  int m_orientation;
  ColorConverter m_colors;
  std::uint32_t m_rows = 0;
  std::uint32_t m_lines = 0;           // written to the target
  std::vector<std::uint8_t> m_row;     // in the target's colours
  std::vector<std::uint8_t> m_result;  // a line of the target
  std::vector<float> m_line;           // one row, averaged to the target's width
  std::vector<float> m_sum;            // of the lines that make the next line of the target
};

}  // namespace snaplift
