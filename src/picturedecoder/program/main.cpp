#include "picturedecoder/DecodePicture.h"
#include "picturedecoder/PictureServer.h"

int main(int argc, char** argv) {
  return snaplift::runPictureDecoder(argc, argv, &snaplift::decodePicture);
}
