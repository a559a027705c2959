#include "picturedecoder/Cage.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <memory>

#include <fcntl.h>
#include <linux/landlock.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace snaplift {
namespace {

constexpr bool isSanitized =
#ifdef SNAPLIFT_SANITIZED
    true;
#else
    false;
#endif

// All that decoding takes, threads of a decoder library included.
constexpr std::array allowedCalls{
    // The socket and the memory files.
    SCMP_SYS(recvmsg), SCMP_SYS(sendmsg), SCMP_SYS(close), SCMP_SYS(lseek),
    // Memory; mmap and mprotect stand below.
    SCMP_SYS(brk), SCMP_SYS(munmap), SCMP_SYS(mremap), SCMP_SYS(madvise),
    // Threads of this process; clone stands below.
    SCMP_SYS(futex), SCMP_SYS(set_robust_list), SCMP_SYS(rseq), SCMP_SYS(sched_yield),
    SCMP_SYS(sched_getaffinity), SCMP_SYS(rt_sigprocmask), SCMP_SYS(rt_sigaction),
    SCMP_SYS(rt_sigreturn), SCMP_SYS(gettid), SCMP_SYS(getpid),
    // Time, chance and the end.
    SCMP_SYS(clock_gettime), SCMP_SYS(gettimeofday), SCMP_SYS(getrandom), SCMP_SYS(restart_syscall),
    SCMP_SYS(exit), SCMP_SYS(exit_group)};

// What a sanitizer's runtime does beside: it reports, gives each thread a stack for signals, tries
// out whether memory is there by writing it into a pipe, and sleeps.
constexpr std::array sanitizerCalls{SCMP_SYS(write), SCMP_SYS(sigaltstack), SCMP_SYS(pipe2),
                                    SCMP_SYS(clock_nanosleep), SCMP_SYS(nanosleep)};

void setLimit(int resource, rlim_t value) {
  const rlimit limit{value, value};
  ::setrlimit(static_cast<__rlimit_resource>(resource), &limit);
}

// What of the address space is in use: the program and its libraries, shared among all decoders.
std::size_t addressSpaceInUse() {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen("/proc/self/statm", "re"),
                                                             &std::fclose);
  std::size_t pages = 0;
  if (!file || std::fscanf(file.get(), "%zu", &pages) != 1) {  // NOLINT: the kernel wrote it
    return std::size_t{256} << 20;
  }
  return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

}  // namespace

bool closeAllFiles() {
  landlock_ruleset_attr rules{};
  // The rights that the first version knows; a kernel of any later version takes them.
  rules.handled_access_fs = (LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1;
  const auto ruleset =
      static_cast<int>(::syscall(SYS_landlock_create_ruleset, &rules, sizeof rules, 0));
  if (ruleset < 0) {
    return false;
  }
  const bool done = ::syscall(SYS_landlock_restrict_self, ruleset, 0) == 0;
  ::close(ruleset);
  return done;
}

namespace {

// Rules that look at an argument; libseccomp's own macros leave fields out.
bool allowIf(scmp_filter_ctx filter, int call, unsigned argument, std::uint64_t mask,
             std::uint64_t value) {
  const scmp_arg_cmp condition{argument, SCMP_CMP_MASKED_EQ, mask, value};
  return seccomp_rule_add_array(filter, SCMP_ACT_ALLOW, call, 1, &condition) == 0;
}

bool filterCalls() {
  const std::unique_ptr<void, void (*)(scmp_filter_ctx)> owner(seccomp_init(SCMP_ACT_KILL_PROCESS),
                                                               &seccomp_release);
  scmp_filter_ctx filter = owner.get();
  bool done = filter != nullptr;
  for (const int call : allowedCalls) {
    done = done && seccomp_rule_add_array(filter, SCMP_ACT_ALLOW, call, 0, nullptr) == 0;
  }
  if constexpr (isSanitized) {
    for (const int call : sanitizerCalls) {
      done = done && seccomp_rule_add_array(filter, SCMP_ACT_ALLOW, call, 0, nullptr) == 0;
    }
  }
  constexpr std::uint64_t thread = CLONE_VM | CLONE_THREAD;
  constexpr std::uint64_t sealQuery = F_GET_SEALS;
  // A thread, never a process. clone3's flags lie in memory, where no filter sees them; the C
  // library takes clone instead when it is told that there is no such call.
  done = done && allowIf(filter, SCMP_SYS(clone), 0, thread, thread) &&
         seccomp_rule_add_array(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0, nullptr) == 0;
  // Memory, never code.
  done = done && allowIf(filter, SCMP_SYS(mmap), 2, PROT_EXEC, 0) &&
         allowIf(filter, SCMP_SYS(mprotect), 2, PROT_EXEC, 0) &&
         allowIf(filter, SCMP_SYS(fcntl), 1, ~std::uint64_t{0}, sealQuery);
  // abort() ends the process by a signal to itself.
  done = done && allowIf(filter, SCMP_SYS(tgkill), 0, ~std::uint64_t{0},
                         static_cast<std::uint64_t>(::getpid()));
  return done && seccomp_load(filter) == 0;
}

}  // namespace

bool detachFromEverythingBut(int socket, int starter) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::prctl(PR_SET_DUMPABLE, 0);
  if (::getppid() != starter) {
    return false;
  }
  const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (!isSanitized || stream != STDERR_FILENO) {
      ::dup2(nothing, stream);
    }
  }
  ::close_range(STDERR_FILENO + 1, static_cast<unsigned>(socket) - 1, 0);
  ::close_range(static_cast<unsigned>(socket) + 1, ~0U, 0);
  return true;
}

CageStrength cage(std::size_t memory) {
  setLimit(RLIMIT_CORE, 0);
  setLimit(RLIMIT_FSIZE, 0);
  if (!isSanitized) {
    setLimit(RLIMIT_AS, addressSpaceInUse() + memory);
  }
  ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
  CageStrength strength;
  strength.hasFileSandbox = closeAllFiles();
  strength.hasCallFilter = filterCalls();
  return strength;
}

}  // namespace snaplift
