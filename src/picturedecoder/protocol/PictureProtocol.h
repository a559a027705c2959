#pragma once

#include <cstdint>
#include <optional>

#include "foundation/files/FileDescriptor.h"

namespace snaplift {

// How the window's process and a picture decoder talk: over a socket pair that keeps messages apart
// (SOCK_SEQPACKET), one request and then its answer. A request brings two memory files along: the
// picture's bytes, and the space for its pixels. The client makes both and fixes their size, so the
// decoder needs no right to make any, and what its pixels can take is settled before it begins.
//
// Pixels are four bytes each (blue, green, red, alpha; premultiplied, sRGB), rows without a gap,
// upright. Structs travel as they are: both ends are of one build.

struct PictureRequest {
  enum class Kind : std::uint32_t {
    EmbeddedPreview,  // the preview in the file, if it has `pixels` on its longer side at least
    Picture,          // the picture itself, scaled so that its longer side has `pixels` at most
    Facts             // no pixels: PictureFacts in their place, and the size of the whole picture
  };
  Kind kind = Kind::Picture;
  std::uint32_t pixels = 0;
};

struct PictureAnswer {
  enum class Outcome : std::uint32_t {
    Started,      // first of all and unasked: the decoder is in its cage
    Decoded,      // the pixels are there, or the facts
    NoPreview,    // none that would do; the picture itself may be fine
    NoPicture,    // the bytes are no picture, or show nothing
    TooLarge,     // not within the memory that this decoder may have
    OtherDecoder  // the bytes may be an HEIF file, which this program does not read
  };
  Outcome outcome = Outcome::NoPicture;
  std::uint32_t width = 0;  // of the pixels
  std::uint32_t height = 0;
  std::uint32_t wholeWidth = 0;  // of the whole picture, upright; 0 where it is not known
  std::uint32_t wholeHeight = 0;
  bool isOpaque = false;
  bool isDamaged = false;       // a part is missing or wrong
  bool hasCallFilter = false;   // Started: the kernel refuses system calls
  bool hasFileSandbox = false;  // Started: the kernel refuses files by a second way
};

struct ReceivedPicture {
  PictureRequest request;
  FileDescriptor picture;
  FileDescriptor pixels;
};

// All of these wait. Failure: the other end is gone, or what came is no such message.
bool sendRequest(int socket, const PictureRequest& request, int picture, int pixels);
std::optional<ReceivedPicture> receiveRequest(int socket);
bool sendAnswer(int socket, const PictureAnswer& answer);
// Files that a decoder sends along are dropped.
std::optional<PictureAnswer> receiveAnswer(int socket);

}  // namespace snaplift
