#include "picturedecoder/PictureServer.h"

#include <cstdlib>
#include <ctime>
#include <exception>
#include <new>

#include <malloc.h>

#include "picturedecoder/Cage.h"
#include "picturedecoder/protocol/MemoryFile.h"

namespace snaplift {
namespace {

PictureAnswer answerTo(const ReceivedPicture& received, DecodeFunction decode) {
  const auto picture = MappedFile::map(received.picture, MappedFile::Access::Read);
  const auto pixels = MappedFile::map(received.pixels, MappedFile::Access::Write);
  if (!picture || !pixels) {
    return {.outcome = PictureAnswer::Outcome::TooLarge};
  }
  try {
    return decode(received.request, picture->bytes(), pixels->bytes());
  } catch (const std::bad_alloc&) {
    return {.outcome = PictureAnswer::Outcome::TooLarge};
  } catch (const std::exception&) {
    return {.outcome = PictureAnswer::Outcome::NoPicture};
  }
}

}  // namespace

int runPictureDecoder(int argc, char** argv, DecodeFunction decode) {
  constexpr int decimal = 10;
  if (argc != 3 || !detachFromEverythingBut(
                       pictureSocket, static_cast<int>(std::strtol(argv[1], nullptr, decimal)))) {
    return EXIT_FAILURE;
  }
  ::tzset();  // opens a file once; the colour library asks for a date
  // An arena for each thread would take 64 MB of address space; large blocks go back when freed, so
  // that one picture's memory is there for the next.
  ::mallopt(M_ARENA_MAX, 1);
  ::mallopt(M_MMAP_THRESHOLD, 1 << 18);
  const CageStrength strength = cage(std::strtoull(argv[2], nullptr, decimal));
  bool goesOn = sendAnswer(pictureSocket, {.outcome = PictureAnswer::Outcome::Started,
                                           .hasCallFilter = strength.hasCallFilter,
                                           .hasFileSandbox = strength.hasFileSandbox});
  while (goesOn) {
    const auto received = receiveRequest(pictureSocket);
    goesOn = received && sendAnswer(pictureSocket, answerTo(*received, decode));
  }
  std::_Exit(EXIT_SUCCESS);  // what libraries would still tidy up is gone with the process
}

}  // namespace snaplift
