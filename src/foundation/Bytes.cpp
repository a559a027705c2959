#include "foundation/Bytes.h"

#include <algorithm>
#include <utility>

namespace snaplift {

Bytes Bytes::copyOf(ByteView view) {
  Bytes bytes(view.size());
  std::copy(view.begin(), view.end(), bytes.data());
  return bytes;
}

void Bytes::resize(std::size_t size) {
  if (size > m_capacity) {
    m_storage.reset();  // freed first: the old bytes are not kept, and both need not fit at once
    m_size = m_capacity = 0;
    m_storage = std::make_unique_for_overwrite<std::uint8_t[]>(size);
    m_capacity = size;
  }
  m_size = size;
}

void Bytes::swap(Bytes& other) noexcept {
  std::swap(m_storage, other.m_storage);
  std::swap(m_size, other.m_size);
  std::swap(m_capacity, other.m_capacity);
}

}  // namespace snaplift
