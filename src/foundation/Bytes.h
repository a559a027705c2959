#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace snaplift {

// A run of bytes that somebody else owns. Valid as long as its owner is.
using ByteView = std::span<const std::uint8_t>;

// The same bytes as text, letter for letter: nothing is decoded and NUL is a byte like any other.
inline std::string_view textOf(ByteView bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// The bytes of a text, without a terminator.
inline ByteView bytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// An owned buffer. It exists beside std::vector because a manifest or a photo is read right over
// fresh memory: resize() leaves the new bytes uninitialised, where a vector would fill tens of
// megabytes with zeros first. The storage stays when the buffer shrinks, so that one buffer can be
// handed from file to file without a new allocation for each. Moves, never copies.
class Bytes {
public:
  Bytes() = default;
  explicit Bytes(std::size_t size) { resize(size); }
  Bytes(Bytes&& other) noexcept { swap(other); }
  Bytes& operator=(Bytes&& other) noexcept {
    Bytes(std::move(other)).swap(*this);
    return *this;
  }

  // A buffer with the same bytes as `view`.
  static Bytes copyOf(ByteView view);

  std::uint8_t* data() { return m_storage.get(); }
  const std::uint8_t* data() const { return m_storage.get(); }
  std::size_t size() const { return m_size; }
  std::size_t capacity() const { return m_capacity; }
  bool empty() const { return m_size == 0; }

  ByteView view() const { return {m_storage.get(), m_size}; }
  operator ByteView() const { return view(); }

  // Makes the buffer `size` bytes long. The bytes are uninitialised where the size exceeds the
  // capacity; otherwise what stood in the storage stays. Throws std::bad_alloc.
  void resize(std::size_t size);

private:
  void swap(Bytes& other) noexcept;

  std::unique_ptr<std::uint8_t[]> m_storage;
  std::size_t m_size = 0;
  std::size_t m_capacity = 0;
};

}  // namespace snaplift
