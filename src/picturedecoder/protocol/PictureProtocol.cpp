#include "picturedecoder/protocol/PictureProtocol.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>

#include <sys/socket.h>

namespace snaplift {
namespace {

constexpr std::size_t fileCount = 2;
constexpr std::size_t filesSize = fileCount * sizeof(int);
using ControlSpace = std::array<char, CMSG_SPACE(filesSize)>;

template <typename Call>
ssize_t untilNotInterrupted(Call call) {
  ssize_t result = 0;
  do {
    result = call();
  } while (result < 0 && errno == EINTR);
  return result;
}

bool send(int socket, const msghdr& message, std::size_t size) {
  return untilNotInterrupted([&] { return ::sendmsg(socket, &message, MSG_NOSIGNAL); }) ==
         static_cast<ssize_t>(size);
}

// Whether a message of exactly this size came, with all files that came along in their place.
bool receive(int socket, msghdr& message, std::size_t size) {
  return untilNotInterrupted([&] { return ::recvmsg(socket, &message, MSG_CMSG_CLOEXEC); }) ==
             static_cast<ssize_t>(size) &&
         (message.msg_flags & MSG_TRUNC) == 0;
}

}  // namespace

bool sendRequest(int socket, const PictureRequest& request, int picture, int pixels) {
  PictureRequest copy = request;
  iovec part{&copy, sizeof copy};
  alignas(cmsghdr) ControlSpace control{};
  msghdr message{};
  message.msg_iov = &part;
  message.msg_iovlen = 1;
  message.msg_control = control.data();
  message.msg_controllen = control.size();
  cmsghdr* header = CMSG_FIRSTHDR(&message);
  header->cmsg_level = SOL_SOCKET;
  header->cmsg_type = SCM_RIGHTS;
  header->cmsg_len = CMSG_LEN(filesSize);
  const std::array<int, fileCount> files{picture, pixels};
  std::memcpy(CMSG_DATA(header), files.data(), filesSize);
  return send(socket, message, sizeof copy);
}

std::optional<ReceivedPicture> receiveRequest(int socket) {
  ReceivedPicture received;
  iovec part{&received.request, sizeof received.request};
  alignas(cmsghdr) ControlSpace control{};
  msghdr message{};
  message.msg_iov = &part;
  message.msg_iovlen = 1;
  message.msg_control = control.data();
  message.msg_controllen = control.size();
  if (!receive(socket, message, sizeof received.request)) {
    return std::nullopt;
  }
  const cmsghdr* header = CMSG_FIRSTHDR(&message);
  if (header == nullptr || header->cmsg_level != SOL_SOCKET || header->cmsg_type != SCM_RIGHTS ||
      header->cmsg_len != CMSG_LEN(filesSize)) {
    return std::nullopt;
  }
  std::array<int, fileCount> files{};
  std::memcpy(files.data(), CMSG_DATA(header), filesSize);
  received.picture = FileDescriptor(files[0]);
  received.pixels = FileDescriptor(files[1]);
  return received;
}

bool sendAnswer(int socket, const PictureAnswer& answer) {
  PictureAnswer copy = answer;
  iovec part{&copy, sizeof copy};
  msghdr message{};
  message.msg_iov = &part;
  message.msg_iovlen = 1;
  return send(socket, message, sizeof copy);
}

std::optional<PictureAnswer> receiveAnswer(int socket) {
  // A bool that is neither true nor false would be undefined, so the bytes are looked at first.
  std::array<unsigned char, sizeof(PictureAnswer)> bytes{};
  iovec part{bytes.data(), bytes.size()};
  msghdr message{};
  message.msg_iov = &part;
  message.msg_iovlen = 1;
  if (!receive(socket, message, bytes.size())) {
    return std::nullopt;
  }
  for (const std::size_t flag :
       {offsetof(PictureAnswer, isOpaque), offsetof(PictureAnswer, isDamaged),
        offsetof(PictureAnswer, hasCallFilter), offsetof(PictureAnswer, hasFileSandbox)}) {
    if (bytes[flag] > 1) {
      return std::nullopt;
    }
  }
  PictureAnswer answer;
  std::memcpy(&answer, bytes.data(), sizeof answer);
  return answer;
}

}  // namespace snaplift
