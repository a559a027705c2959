#include "widgets/thumbnails/PictureDecoder.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include "foundation/Log.h"
#include "picturedecoder/protocol/MemoryFile.h"

namespace snaplift {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr int maxDeathsAtStart = 5;
// How long a decode may go on that nobody waits for: most end sooner than another decoder starts.
constexpr std::chrono::milliseconds grace = 150ms;
constexpr std::chrono::milliseconds startTime = 10s;
constexpr std::size_t bytesPerPixel = 4;
// A full picture of 40 million pixels; a larger one is scaled down to it.
constexpr std::size_t maxSpace = 160'000'000;
constexpr std::size_t previewSpace = bytesPerPixel * 1'024 * 1'024;
constexpr std::uint32_t maxWholeSide = 1 << 24;
constexpr int decoderSocket = 3;  // what a decoder expects

// Decoders lie in one folder beside a folder that this program runs in, near the root of a build as
// of an installation. Empty where there is none of that name.
std::string ownDecoder(std::string_view name) {
  constexpr int levels = 4;
  std::error_code error;
  fs::path folder = fs::read_symlink("/proc/self/exe", error);
  for (int level = 0; level < levels && !error && folder.has_relative_path(); ++level) {
    folder = folder.parent_path();
    const fs::path program = folder / SNAPLIFT_DECODER_FOLDER / name;
    std::error_code absent;
    if (fs::is_regular_file(program, absent)) {
      return program;
    }
  }
  return {};
}

std::size_t spaceFor(const PictureRequest& request) {
  switch (request.kind) {
    case PictureRequest::Kind::EmbeddedPreview:
      return previewSpace;
    case PictureRequest::Kind::Facts:
      return sizeof(PictureFacts);
    case PictureRequest::Kind::Picture:
      break;
  }
  return std::min(std::size_t{request.pixels} * request.pixels * bytesPerPixel, maxSpace);
}

void logMissingFilterOnce() {
  static std::once_flag once;
  std::call_once(once, [] {
    systemLog("Pictures are decoded without a filter of system calls: this kernel has none");
  });
}

struct SpawnActions {
  posix_spawn_file_actions_t actions{};
  SpawnActions() { posix_spawn_file_actions_init(&actions); }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;
  ~SpawnActions() { posix_spawn_file_actions_destroy(&actions); }
};

// Copies the pixels out, so that the decoder can change nothing later. No image where what the
// answer says cannot be.
QImage imageOf(const PictureAnswer& answer, std::size_t space, const FileDescriptor& pixels) {
  const std::size_t count = std::size_t{answer.width} * answer.height;
  if (count == 0 || count > space / bytesPerPixel) {
    return {};
  }
  QImage image(static_cast<int>(answer.width), static_cast<int>(answer.height),
               answer.isOpaque ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied);
  const bool isRead =
      !image.isNull() && readFromStart(pixels, {image.bits(), bytesPerPixel * count});
  return isRead ? image : QImage();
}

// What is left of them when they have been looked at; any bytes are facts.
std::optional<PictureFacts> factsIn(const FileDescriptor& space) {
  std::array<std::uint8_t, sizeof(PictureFacts)> bytes{};
  if (!readFromStart(space, bytes)) {
    return std::nullopt;
  }
  PictureFacts facts;
  std::memcpy(&facts, bytes.data(), sizeof facts);
  return plausible(facts);
}

DecodedPicture pictureOf(const PictureRequest& request, const PictureAnswer& answer,
                         std::size_t space, const FileDescriptor& pixels) {
  using Outcome = DecodedPicture::Outcome;
  switch (answer.outcome) {
    case PictureAnswer::Outcome::NoPreview:
      return {.outcome = Outcome::NoPreview};
    case PictureAnswer::Outcome::NoPicture:
    case PictureAnswer::Outcome::OtherDecoder:
      return {.outcome = Outcome::NoPicture};
    case PictureAnswer::Outcome::TooLarge:
      return {.outcome = Outcome::TooLarge};
    default:
      break;
  }
  const auto isPossible = [](std::uint32_t side) { return side >= 1 && side <= maxWholeSide; };
  if (answer.outcome != PictureAnswer::Outcome::Decoded || !isPossible(answer.wholeWidth) ||
      !isPossible(answer.wholeHeight)) {
    return {};
  }
  DecodedPicture picture{
      .wholeSize = QSize(static_cast<int>(answer.wholeWidth), static_cast<int>(answer.wholeHeight)),
      .isDamaged = answer.isDamaged};
  if (request.kind == PictureRequest::Kind::Facts) {
    const auto facts = factsIn(pixels);
    picture.facts = facts.value_or(PictureFacts());
    picture.outcome = facts ? Outcome::Decoded : Outcome::Failed;
  } else {
    picture.image = imageOf(answer, space, pixels);
    picture.outcome = picture.image.isNull() ? Outcome::Failed : Outcome::Decoded;
  }
  return picture;
}

}  // namespace

PictureDecoder::PictureDecoder(DecoderLimits limits) : m_limits(std::move(limits)) {
  if (m_limits.program.empty()) {
    m_limits.program = ownDecoder("snaplift-picture-decoder");
    m_heifProgram = ownDecoder("snaplift-heif-decoder");
  }
}

DecodedPicture PictureDecoder::decode(const PictureRequest& request, ByteView bytes,
                                      const StopSignal& stop) {
  const std::size_t space = spaceFor(request);
  const FileDescriptor picture = sealedFileOf(bytes);
  const FileDescriptor pixels = sealedSpace(space);
  if (!picture || !pixels) {
    return {.outcome = Outcome::TooLarge};
  }
  auto answer = ask(request, picture, pixels, stop);
  if (answer && answer->outcome == PictureAnswer::Outcome::OtherDecoder && !m_heifProgram.empty()) {
    end();
    m_limits.program = std::exchange(m_heifProgram, {});
    answer = ask(request, picture, pixels, stop);
  }
  if (answer) {
    return pictureOf(request, *answer, space, pixels);
  }
  return {.outcome = stop.level() == StopSignal::Level::None ? Outcome::Failed : Outcome::Stopped};
}

// Nothing where the decoder did not answer; then it is gone.
std::optional<PictureAnswer> PictureDecoder::ask(const PictureRequest& request,
                                                 const FileDescriptor& picture,
                                                 const FileDescriptor& pixels,
                                                 const StopSignal& stop) {
  if (!isReady(stop)) {
    return std::nullopt;
  }
  limitProcessorTime();
  const bool isAsked = sendRequest(m_socket.get(), request, picture.get(), pixels.get());
  const auto answer = isAsked ? message(stop, m_limits.time) : std::nullopt;
  if (!answer) {
    end();
  }
  return answer;
}

bool PictureDecoder::isReady(const StopSignal& stop) {
  while (m_process == 0 && m_deathsAtStart < maxDeathsAtStart) {
    const bool isCaged = start() && awaitCage(stop);
    if (!isCaged) {
      end();
    }
    if (stop.level() != StopSignal::Level::None) {
      return isCaged;
    }
    m_deathsAtStart = isCaged ? 0 : m_deathsAtStart + 1;
    if (m_deathsAtStart == maxDeathsAtStart) {
      systemLog("Photos cannot be shown: the picture decoder does not start");
    }
  }
  return m_process != 0;
}

bool PictureDecoder::awaitCage(const StopSignal& stop) {
  const auto started = message(stop, startTime);
  if (!started || started->outcome != PictureAnswer::Outcome::Started) {
    return false;
  }
  if (!started->hasCallFilter) {
    logMissingFilterOnce();
  }
  return true;
}

bool PictureDecoder::start() {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    return false;
  }
  m_socket = FileDescriptor(ends[0]);
  FileDescriptor theirs(ends[1]);
  if (theirs.get() == decoderSocket) {  // which would stay closed on exec
    theirs = FileDescriptor(::fcntl(theirs.get(), F_DUPFD_CLOEXEC, decoderSocket + 1));
  }
  SpawnActions spawn;
  posix_spawn_file_actions_adddup2(&spawn.actions, theirs.get(), decoderSocket);
  const std::string starter = std::to_string(::getpid());
  const std::string memory = std::to_string(m_limits.memory);
  std::array<char*, 4> arguments{m_limits.program.data(), const_cast<char*>(starter.c_str()),
                                 const_cast<char*>(memory.c_str()), nullptr};
  std::array<char*, 1> environment{nullptr};
  return ::posix_spawn(&m_process, m_limits.program.c_str(), &spawn.actions, nullptr,
                       arguments.data(), environment.data()) == 0;
}

void PictureDecoder::end() {
  m_socket.close();
  if (const int process = std::exchange(m_process, 0)) {
    ::kill(process, SIGKILL);
    while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
}

// The wall clock is watched here; this ends a decoder that is busy while this process is stopped.
void PictureDecoder::limitProcessorTime() const {
  clockid_t clock{};
  timespec used{};
  if (::clock_getcpuclockid(m_process, &clock) == 0 && ::clock_gettime(clock, &used) == 0) {
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(2 * m_limits.time).count() + 1;
    const rlimit limit{static_cast<rlim_t>(used.tv_sec + seconds), RLIM_INFINITY};
    ::prlimit(m_process, RLIMIT_CPU, &limit, nullptr);
  }
}

std::optional<PictureAnswer> PictureDecoder::message(const StopSignal& stop,
                                                     std::chrono::milliseconds time) const {
  const auto begin = std::chrono::steady_clock::now();
  while (true) {
    const StopSignal::Level level = stop.level();
    const auto allowed = level == StopSignal::Level::None   ? time
                         : level == StopSignal::Level::Soon ? std::min(time, grace)
                                                            : 0ms;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(
        begin + allowed - std::chrono::steady_clock::now());
    if (left <= 0ms) {
      return std::nullopt;
    }
    std::array<pollfd, 2> events{{{m_socket.get(), POLLIN, 0}, {stop.descriptor(), POLLIN, 0}}};
    ::poll(events.data(), events.size(), static_cast<int>(left.count()));
    if (events[1].revents != 0) {
      stop.takeWakeUps();
    }
    if (events[0].revents != 0) {
      return receiveAnswer(m_socket.get());
    }
  }
}

}  // namespace snaplift
