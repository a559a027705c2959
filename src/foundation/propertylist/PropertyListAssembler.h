#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "foundation/Bytes.h"

namespace snaplift {

// Writes a binary property list from values that arrive in the order of a document, so that a list
// that was read from XML is kept and read like any other. A container is written when it ends,
// after everything in it. Nothing is looked up and no equal values are joined: each value costs the
// same few stores.
//
// It takes any sequence of calls: a key outside a dictionary and a value there without a key are
// left out, a key without a value gets an absent one, and the first value of all is the root.
class PropertyListAssembler {
public:
  // `expectedSize` saves the buffer from growing; it may be wrong.
  explicit PropertyListAssembler(std::size_t expectedSize);

  void beginDictionary();
  void beginArray();
  void endContainer();

  void addKey(std::string_view utf8);
  void addString(std::string_view utf8);
  void addData(ByteView bytes);
  // A number of 64 bits; it may be above the signed range when it is not negative.
  void addInteger(std::uint64_t bits, bool isNegative);
  void addReal(double value);
  // Seconds since 2001-01-01 00:00 UTC.
  void addDate(double seconds);
  void addBoolean(bool value);
  // The place of a value that could not be read.
  void addAbsent();

  // The list, after the last call; nothing where no value came.
  std::optional<Bytes> finish();

private:
  struct Container {
    std::size_t firstReference;  // in m_references
    bool isDictionary;
    bool expectsValue;
  };

  // Starts the next object; what is written then is the object.
  std::uint32_t startObject();
  // Puts an object into the container that is open.
  void refer(std::uint32_t object);
  void writeHeader(std::uint8_t type, std::size_t count);
  void writeRun(std::uint8_t type, ByteView bytes);
  void write(std::uint64_t value, unsigned width);
  std::uint8_t* room(std::size_t size);

  Bytes m_bytes;
  std::size_t m_used = 0;
  std::vector<std::uint32_t> m_offsets;     // by object
  std::vector<std::uint32_t> m_references;  // of the open containers, keys and values in turn
  std::vector<Container> m_open;
  std::optional<std::uint32_t> m_root;
};

}  // namespace snaplift
