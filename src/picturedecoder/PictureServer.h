#pragma once

#include <cstdint>
#include <span>

#include "foundation/Bytes.h"
#include "picturedecoder/protocol/PictureProtocol.h"

namespace snaplift {

// Decodes `picture` into `pixels`. What it throws counts as an answer: std::bad_alloc as TooLarge,
// anything else as NoPicture.
using DecodeFunction = PictureAnswer (*)(const PictureRequest& request, ByteView picture,
                                         std::span<std::uint8_t> pixels);

// The socket to the client, in a decoder that was just started.
constexpr int pictureSocket = 3;

// The life of a picture decoder, for its main(): goes into the cage, then decodes what its client
// asks for, one picture after another, until the client is gone. The arguments are the process that
// started it and the bytes of memory that a picture may take. The result is the exit status.
int runPictureDecoder(int argc, char** argv, DecodeFunction decode);

}  // namespace snaplift
