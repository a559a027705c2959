#include <array>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstring>
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
#include "pictures/PhotoFile.h"
#include "support/photos/HeicPicture.h"
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

// Both programs, of which the second stays: the third picture is one that the first could read.
TEST(PictureDecoder, isInItsCage) {
  PictureDecoder decoder({{}, memory});
  const QImage picture = test::quadrants({64, 48});
  std::vector<QByteArray> files{test::encoded(picture)};
  if (const QByteArray heic = test::heicOf(picture, 1, 8, 16); !heic.isEmpty()) {
    files.insert(files.end(), {heic, files.front()});
  }
  std::vector<int> processes;
  for (const QByteArray& file : files) {
    const PictureRequest request{PictureRequest::Kind::Picture, 96};
    ASSERT_EQ(decoder.decode(request, test::viewOf(file), goOn).outcome, Outcome::Decoded);
    processes.push_back(decoder.processId());
    EXPECT_EQ(statusOf(decoder.processId(), "Seccomp"), "2");
    EXPECT_EQ(statusOf(decoder.processId(), "NoNewPrivs"), "1");
    if (processes.size() == 1) {  // beside libheif a sanitizer's runtime starts one of its own
      EXPECT_EQ(statusOf(decoder.processId(), "Threads"), "1");
    }
  }
  if (processes.size() > 1) {
    EXPECT_NE(processes[1], processes[0]);
    EXPECT_EQ(processes[2], processes[1]);
    EXPECT_TRUE(isGone(processes[0]));
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

const samples::CameraData camera{
    .orientation = 6,
    .taken = instantFromUnixTime(1'318'408'200),  // 2011-10-12 08:30:00
    .maker = "Maker",
    .model = "Handset 4" + std::string(200, '!'),
    .exposure = {{.perSecond = 125, .apertureTenths = 28, .iso = 100}},
    .position = {{.latitude = -33.8568, .longitude = 151.2153}}};

TEST(PictureDecoder, readsWhatACameraWrote) {
  PictureDecoder decoder({{}, memory});
  const std::string jpeg = test::encoded(test::quadrants({64, 48})).toStdString();
  const DecodedPicture read = decoder.decode({PictureRequest::Kind::Facts, 0},
                                             bytesOf(samples::withExif(jpeg, camera, {})), goOn);
  ASSERT_EQ(read.outcome, Outcome::Decoded);
  EXPECT_EQ(read.wholeSize, QSize(48, 64)) << "upright";
  EXPECT_STREQ(read.facts.maker.data(), "Maker");
  EXPECT_EQ(std::string(read.facts.model.data()), camera.model.substr(0, 63));
  EXPECT_EQ(std::tie(read.facts.taken.year, read.facts.taken.day, read.facts.taken.second),
            std::tuple(2011, 12, 0));
  EXPECT_DOUBLE_EQ(read.facts.exposure, 1.0 / 125);
  EXPECT_DOUBLE_EQ(read.facts.aperture, 2.8);
  EXPECT_EQ(read.facts.iso, 100U);
  EXPECT_NEAR(read.facts.latitude, -33.8568, 1e-5);
  EXPECT_NEAR(read.facts.longitude, 151.2153, 1e-5);
}

TEST(PictureDecoder, knowsTheSizeOfEveryFormatAndInventsNothing) {
  PictureDecoder decoder({{}, memory});
  const QImage picture = test::quadrants({64, 48});
  std::vector<QByteArray> files{test::encoded(picture), test::encoded(picture, "png"),
                                test::withExif(test::encoded(picture), 1)};
  if (const QByteArray heic = test::heicOf(picture, 1, 8, 16); !heic.isEmpty()) {
    files.push_back(heic);
  }
  for (const QByteArray& file : files) {
    const DecodedPicture read =
        decoder.decode({PictureRequest::Kind::Facts, 0}, test::viewOf(file), goOn);
    EXPECT_EQ(read.wholeSize, QSize(64, 48));
    EXPECT_EQ(read.facts.taken.year, &file == &files[2] ? 1970 : 0);
    EXPECT_EQ(read.facts.exposure + read.facts.aperture + read.facts.iso, 0);
    EXPECT_EQ(read.facts.maker[0], '\0');
  }
}

TEST(PictureDecoder, isNotBelievedAboutAPhoto) {
  PictureDecoder decoder(unruly());
  const DecodedPicture read =
      decoder.decode({PictureRequest::Kind::Facts, 0}, bytesOf("good"), goOn);
  ASSERT_EQ(read.outcome, Outcome::Decoded);
  EXPECT_EQ(std::string(read.facts.maker.data()), std::string(63, '\xFF'));
  EXPECT_EQ(read.facts.taken.year, 0);
  EXPECT_EQ(read.facts.exposure, 0);
  EXPECT_EQ(read.facts.iso, 0U);
  EXPECT_EQ(read.facts.hasPosition, 0U);
}

TEST(PictureFacts, keepWhatCanBe) {
  PictureFacts good;
  good.taken = {2012, 2, 29, 23, 59, 59};
  good.exposure = 30;
  good.hasPosition = 1;
  good.latitude = 90;
  good.longitude = -180;
  const auto isKept = [](const PictureFacts& facts) {
    const PictureFacts kept = plausible(facts);
    return std::memcmp(&kept, &facts, sizeof kept) == 0;
  };
  EXPECT_TRUE(isKept(good));
  for (const auto& spoil : std::initializer_list<void (*)(PictureFacts&)>{
           [](PictureFacts& facts) { facts.taken.year = 2011; },
           [](PictureFacts& facts) { facts.taken.month = 0; },
           [](PictureFacts& facts) { facts.taken.hour = 24; },
           [](PictureFacts& facts) { facts.taken.second = -1; },
           [](PictureFacts& facts) { facts.exposure = -1; },
           [](PictureFacts& facts) { facts.exposure = INFINITY; },
           [](PictureFacts& facts) { facts.aperture = NAN; },
           [](PictureFacts& facts) { facts.latitude = 90.1; },
           [](PictureFacts& facts) { facts.longitude = NAN; },
           [](PictureFacts& facts) { facts.hasPosition = 2; },
           [](PictureFacts& facts) { facts.model[3] = 'x'; }}) {
    PictureFacts spoilt = good;
    spoil(spoilt);
    EXPECT_FALSE(isKept(spoilt));
  }
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
