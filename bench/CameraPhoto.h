#pragma once

#include <QByteArray>

namespace snaplift::bench {

// A JPEG file as a camera of 12 megapixels writes it: 4032 by 3024 pixels of soft shapes and sensor
// noise, about 3 MB, with an embedded preview of 160 by 120. Another `seed`, another photo.
QByteArray cameraPhoto(int seed);

}  // namespace snaplift::bench
