#pragma once

#include <QImage>
#include <QSize>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include "foundation/Bytes.h"
#include "foundation/files/FileDescriptor.h"
#include "picturedecoder/protocol/PictureFacts.h"
#include "picturedecoder/protocol/PictureProtocol.h"
#include "widgets/thumbnails/StopSignal.h"

namespace snaplift {

// What a picture may cost its decoder.
struct DecoderLimits {
  std::string program;  // the decoder; empty for those that belong to this program
  std::size_t memory = 0;
  std::chrono::milliseconds time{10'000};
};

struct DecodedPicture {
  enum class Outcome {
    Decoded,
    NoPreview,
    NoPicture,
    TooLarge,  // for the memory that was given
    Failed,    // it ended the decoder, took too long, or there is no decoder
    Stopped
  };
  Outcome outcome = Outcome::Failed;
  QImage image = {};     // upright, as a raster painter copies it
  QSize wholeSize = {};  // of the whole picture, upright
  bool isDamaged = false;
  PictureFacts facts = {};  // where they were asked for; then there is no image
};

// A picture decoder: a process without files, network and much memory that decodes strangers'
// pictures, so that this process never does (see picturedecoder/). It is started when the first
// picture is asked for, and used again for the next; at the first HEIF file the program that also
// reads those takes its place, for good. Who makes it uses it, on one thread: the process ends with
// that thread, however it ends.
//
// Whatever the picture or the decoder does, decode() comes back in the time that it was given, and
// nothing that the decoder says is believed before it is compared with what it was handed. A
// decoder that crashes or takes too long is replaced for the next picture; one that dies five times
// before it could be asked anything is not started again, and every picture fails.
class PictureDecoder {
public:
  explicit PictureDecoder(DecoderLimits limits);
  PictureDecoder(const PictureDecoder&) = delete;
  PictureDecoder& operator=(const PictureDecoder&) = delete;
  ~PictureDecoder() { end(); }

  // Waits for the answer, or until `stop` is raised.
  DecodedPicture decode(const PictureRequest& request, ByteView bytes, const StopSignal& stop);

  int processId() const { return m_process; }  // 0 while there is none

private:
  using Outcome = DecodedPicture::Outcome;

  std::optional<PictureAnswer> ask(const PictureRequest& request, const FileDescriptor& picture,
                                   const FileDescriptor& pixels, const StopSignal& stop);
  bool isReady(const StopSignal& stop);
  bool start();
  bool awaitCage(const StopSignal& stop);
  void limitProcessorTime() const;
  // The next message; nothing where the decoder is gone or has to be ended.
  std::optional<PictureAnswer> message(const StopSignal& stop,
                                       std::chrono::milliseconds time) const;
  void end();

  DecoderLimits m_limits;
  std::string m_heifProgram;  // empty where there is none, and once it is the one that runs
  FileDescriptor m_socket;
  int m_process = 0;
  int m_deathsAtStart = 0;
};

}  // namespace snaplift
