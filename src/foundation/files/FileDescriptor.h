#pragma once

#include <utility>

#include <unistd.h>

namespace snaplift {

// An open file of the operating system, closed when its owner goes. Made straight from the result
// of an open call: a negative one is an absent file.
class FileDescriptor {
public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept
      : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
  }
  ~FileDescriptor() { close(); }

  explicit operator bool() const { return m_descriptor >= 0; }
  int get() const { return m_descriptor; }
  // Gives it to a caller who closes it.
  int release() { return std::exchange(m_descriptor, -1); }

  // Closes now. False where the system reports that what was written may not have arrived; who
  // writes asks, who reads need not.
  bool close() { return m_descriptor < 0 || ::close(std::exchange(m_descriptor, -1)) == 0; }

private:
  int m_descriptor = -1;
};

}  // namespace snaplift
