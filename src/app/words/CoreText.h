#pragma once

#include <QString>

#include "backups/DeviceModel.h"
#include "foundation/Sentence.h"
#include "foundation/files/FileError.h"

namespace snaplift {

// What the core says in English, in the language of the window. The words of strangers in it are
// escaped, and never translated. From any thread.

QString coreText(const Sentence& sentence);

// Why a file was not read or written: our own reasons; the system's are in its own language.
QString coreText(const FileError& error);

// What a device is called. Only a device that has no name of its own is called in our words.
QString deviceTitle(DeviceModel& device);

}  // namespace snaplift
