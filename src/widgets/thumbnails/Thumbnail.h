#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

#include "picturedecoder/protocol/PictureFacts.h"

namespace snaplift {

// A small picture of a photo, or what is known instead of it.
struct Thumbnail {
  enum class State {
    Unknown,     // nothing can be said yet: no embedded preview that would do
    Preview,     // `picture` is the preview that the photo brings along; first paint only
    Ready,       // `picture` is decoded from the photo itself
    Missing,     // the photo has no bytes
    Unreadable,  // they are there and cannot be read
    Undecodable  // its bytes are no picture, or one that its decoder could not bear
  };

  State state = State::Unknown;
  QImage picture;              // upright
  int pixels = 0;              // the step that `picture` was made for (see thumbnailStep)
  QSize photoSize;             // of the whole photo, upright, in pixels; invalid if not known
  std::int64_t byteCount = 0;  // of the whole photo
  bool isDamaged = false;      // `picture` shows what is left of the photo
  bool isFilm = false;         // `picture`, if there is one, is a still of it
  std::optional<std::chrono::milliseconds> filmLength = {};
  std::shared_ptr<const PictureFacts> facts = {};  // only where they were asked for

  // The size of the whole photo; where that is not known, one of the picture's shape that is larger
  // than any place for it.
  QSize wholeSize() const { return photoSize.isValid() ? photoSize : picture.size() * 64; }

  bool isBroken() const {
    return state == State::Missing || state == State::Unreadable || state == State::Undecodable;
  }
};

// What is wrong with a photo, for people: a word, and a sentence that says more. Both are empty
// where nothing is.
struct ThumbnailTrouble {
  QString word;
  QString sentence;
};
ThumbnailTrouble troubleOf(const Thumbnail& thumbnail);

// "0:12", "1:02:03": to the next second.
QString filmLengthText(std::chrono::milliseconds length);

// The length in pixels of the longer side that a thumbnail is decoded with, for a cell of `pixels`:
// the next of a few fixed steps, each at most one and a half times the one before. So zooming
// scales what is there, and decodes anew only now and then.
int thumbnailStep(int pixels);

}  // namespace snaplift
