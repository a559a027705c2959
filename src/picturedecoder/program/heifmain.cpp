#include "picturedecoder/PictureServer.h"
#include "picturedecoder/heif/HeifPicture.h"

int main(int argc, char** argv) {
  return snaplift::runPictureDecoder(argc, argv, &snaplift::decodePictureOrHeif);
}
