#pragma once

#include <optional>

#include "foundation/Bytes.h"

namespace snaplift {

// The XML property list as a binary one. Nothing for XML that is not well formed, that declares
// entities or anything else in its document type, or that holds no value. UTF-8 and UTF-16 of
// either byte order, with or without a byte-order mark, and what else the XML declaration may name
// among Expat's own encodings.
std::optional<Bytes> binaryFromXML(ByteView xml);

}  // namespace snaplift
