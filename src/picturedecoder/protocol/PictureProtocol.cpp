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

template <typename Call>
ssize_t untilNotInterrupted(Call call) {
  ssize_t result = 0;
  do {
    result = call();
  } while (result < 0 && errno == EINTR);
  return result;
}

// A message of so many bytes, and the place of the files that go with it: none where there are no
// files to come along.
class Message {
public:
  Message(void* bytes, std::size_t size, bool hasFiles) : m_part{bytes, size} {
    m_header.msg_iov = &m_part;
    m_header.msg_iovlen = 1;
    if (hasFiles) {
      m_header.msg_control = m_control.data();
      m_header.msg_controllen = m_control.size();
    }
  }
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  cmsghdr* files() { return CMSG_FIRSTHDR(&m_header); }

  bool send(int socket) const {
    return untilNotInterrupted([&] { return ::sendmsg(socket, &m_header, MSG_NOSIGNAL); }) ==
           static_cast<ssize_t>(m_part.iov_len);
  }

  // Whether a message of exactly this size came, with all files that came along in their place.
  bool receive(int socket) {
    return untilNotInterrupted([&] { return ::recvmsg(socket, &m_header, MSG_CMSG_CLOEXEC); }) ==
               static_cast<ssize_t>(m_part.iov_len) &&
           (m_header.msg_flags & MSG_TRUNC) == 0;
  }

private:
  iovec m_part;
  alignas(cmsghdr) std::array<char, CMSG_SPACE(filesSize)> m_control{};
  msghdr m_header{};
};

}  // namespace

bool sendRequest(int socket, const PictureRequest& request, int picture, int pixels) {
  PictureRequest copy = request;
  Message message(&copy, sizeof copy, true);
  cmsghdr* header = message.files();
  header->cmsg_level = SOL_SOCKET;
  header->cmsg_type = SCM_RIGHTS;
  header->cmsg_len = CMSG_LEN(filesSize);
  const std::array<int, fileCount> files{picture, pixels};
  std::memcpy(CMSG_DATA(header), files.data(), filesSize);
  return message.send(socket);
}

std::optional<ReceivedPicture> receiveRequest(int socket) {
  ReceivedPicture received;
  Message message(&received.request, sizeof received.request, true);
  if (!message.receive(socket)) {
    return std::nullopt;
  }
  const cmsghdr* header = message.files();
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
  return Message(&copy, sizeof copy, false).send(socket);
}

std::optional<PictureAnswer> receiveAnswer(int socket) {
  // A bool that is neither true nor false would be undefined, so the bytes are looked at first.
  std::array<unsigned char, sizeof(PictureAnswer)> bytes{};
  if (!Message(bytes.data(), bytes.size(), false).receive(socket)) {
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
