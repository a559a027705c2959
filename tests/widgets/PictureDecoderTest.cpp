#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <future>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "foundation/Log.h"
#include "picturedecoder/Cage.h"
#include "support/photos/TestPictures.h"
#include "widgets/thumbnails/PictureDecoder.h"

namespace snaplift {
namespace {

using namespace std::chrono_literals;
using Outcome = DecodedPicture::Outcome;
using Clock = std::chrono::steady_clock;

constexpr std::size_t memory = 100'000'000;
const StopSignal goOn;

DecoderLimits unruly(std::chrono::milliseconds time = 10s) {
  return {UNRULY_DECODER, memory, time};
}

DecodedPicture decode(PictureDecoder& decoder, std::string_view order,
                      const StopSignal& stop = goOn) {
  return decoder.decode({PictureRequest::Kind::Picture, 96}, bytesOf(order), stop);
}

// A line of /proc/<process>/status; empty when there is no such process.
std::string statusOf(int process, const std::string& name) {
  std::ifstream file("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(name + ":")) {
      return line.substr(line.find_first_not_of("\t ", name.size() + 1));
    }
  }
  return {};
}

bool isGone(int process) {
  const std::string state = statusOf(process, "State");
  return state.empty() || state.starts_with("Z") || state.starts_with("X");
}

bool endsSoon(int process) {
  const auto deadline = Clock::now() + 10s;
  while (!isGone(process) && Clock::now() < deadline) {
    std::this_thread::sleep_for(5ms);
  }
  return isGone(process);
}

TEST(PictureDecoder, isInItsCage) {
  PictureDecoder decoder({{}, memory});
  const auto picture = test::encoded(test::quadrants({64, 48}));
  ASSERT_EQ(
      decoder.decode({PictureRequest::Kind::Picture, 96}, test::viewOf(picture), goOn).outcome,
      Outcome::Decoded);
  for (const auto& [name, value] :
       {std::pair{"Seccomp", "2"}, {"NoNewPrivs", "1"}, {"Threads", "1"}}) {
    EXPECT_EQ(statusOf(decoder.processId(), name), value) << name;
  }
}

// What the filter of system calls would not let them try: a file that every user can read.
TEST(PictureDecoder, canOpenNoPathWhateverTheCall) {
  if (::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION) < 1) {
    GTEST_SKIP() << "this kernel has no Landlock";
  }
  const auto opens = [] {
    const int file = ::open("/etc/passwd", O_RDONLY | O_CLOEXEC);
    const int error = file < 0 ? errno : 0;
    ::_exit(error);
  };
  EXPECT_EXIT(opens(), testing::ExitedWithCode(0), "");
  EXPECT_EXIT(
      {
        ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
        if (closeAllFiles()) {
          opens();
        }
        ::_exit(0);
      },
      testing::ExitedWithCode(EACCES), "");
}

TEST(PictureDecoder, thatDoesWhatItMayNotIsEndedAndReplacedAndIsNotBelieved) {
  PictureDecoder decoder(unruly());
  decode(decoder, "good");
  const int process = decoder.processId();
  ASSERT_EQ(decode(decoder, "good").outcome, Outcome::Decoded);
  EXPECT_EQ(decoder.processId(), process) << "used again";
  for (const char* order : {"open", "connect", "fork", "exec", "more memory allowed",
                            "code in memory", "kill", "crash", "lie", "lie of the whole"}) {
    EXPECT_EQ(decode(decoder, order).outcome, Outcome::Failed) << order;
    EXPECT_EQ(decode(decoder, "good").outcome, Outcome::Decoded) << order;
  }
}

#ifndef SNAPLIFT_SANITIZED
TEST(PictureDecoder, isRefusedMoreMemoryThanItsOwn) {
  PictureDecoder decoder(unruly());
  EXPECT_EQ(decode(decoder, "hog").outcome, Outcome::TooLarge);
}
#endif

TEST(PictureDecoder, hasSoMuchTimeAndNoMore) {
  PictureDecoder decoder(unruly(300ms));
  const auto begin = Clock::now();
  EXPECT_EQ(decode(decoder, "hang").outcome, Outcome::Failed);
  EXPECT_LT(Clock::now() - begin, 9s);
  EXPECT_EQ(decoder.processId(), 0);
}

TEST(PictureDecoder, isEndedAtOnceWhenNobodyWaitsAnyMore) {
  PictureDecoder decoder(unruly(100s));
  decode(decoder, "good");
  const int process = decoder.processId();
  StopSignal stop;
  auto result = std::async(std::launch::async, [&] { return decode(decoder, "hang", stop); });
  stop.raise(StopSignal::Level::Now);
  EXPECT_EQ(result.wait_for(5s), std::future_status::ready);
  EXPECT_EQ(result.get().outcome, Outcome::Stopped);
  EXPECT_TRUE(isGone(process));
}

TEST(PictureDecoder, thatDiesAtItsStartIsNotStartedForEver) {
  std::vector<std::string> log;
  const LogCapture capture([&](std::string line) { log.push_back(std::move(line)); });
  for (const char* program : {"/bin/false", "/nonexistent"}) {
    log.clear();
    PictureDecoder decoder({program, memory});
    for (int i = 0; i < 20; ++i) {
      EXPECT_EQ(decode(decoder, "good").outcome, Outcome::Failed);
    }
    EXPECT_EQ(log.size(), 1U) << program;
  }
}

// In a process of its own: starts a decoder, says which, has it do what `order` says, and stays.
[[noreturn]] void beClient(int report, std::string_view order) {
  PictureDecoder decoder(unruly(100s));
  decode(decoder, "good");
  const int process = decoder.processId();
  [[maybe_unused]] const ssize_t written = ::write(report, &process, sizeof process);
  decode(decoder, order);
  while (true) {
    ::pause();
  }
}

TEST(PictureDecoder, doesNotOutliveAClientThatIsKilled) {
  for (const char* order : {"good", "hang"}) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const int client = ::fork();
    if (client == 0) {
      beClient(pipe[1], order);
    }
    int decoder = 0;
    ASSERT_EQ(::read(pipe[0], &decoder, sizeof decoder), ssize_t{sizeof decoder});
    EXPECT_FALSE(isGone(decoder));
    ::kill(client, SIGKILL);
    ::waitpid(client, nullptr, 0);
    EXPECT_TRUE(endsSoon(decoder)) << order;
    ::close(pipe[0]);
    ::close(pipe[1]);
  }
}

}  // namespace
}  // namespace snaplift
