#include "support/Program.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace snaplift {
namespace {

constexpr int smallestPipeInBytes = 4096;

FileDescriptor checked(int descriptor) {
  if (descriptor < 0) {
    throw std::runtime_error("no stream: " + std::generic_category().message(errno));
  }
  return FileDescriptor(descriptor);
}

FileDescriptor unnamedFile() {
  const char* folder = std::getenv("TMPDIR");
  std::string name = std::string(folder ? folder : "/tmp") + "/snaplift-test-XXXXXX";
  FileDescriptor file = checked(::mkostemp(name.data(), O_CLOEXEC));
  ::unlink(name.c_str());
  return file;
}

// Adds what can be read at once; false when there will be no more. The end of a terminal is an
// error.
bool readSome(const FileDescriptor& descriptor, std::string& text) {
  std::array<char, 4096> buffer;
  const ssize_t count = ::read(descriptor.get(), buffer.data(), buffer.size());
  text.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  return count > 0 || (count < 0 && errno == EINTR);
}

void install(const FileDescriptor& end, int number) {
  if (end) {
    ::dup2(end.get(), number);
  } else {
    ::close(number);
  }
}

// The environment and the signals, then the program: in the child process.
[[noreturn]] void become(const ProgramCall& call) {
  for (const auto& [name, value] : call.environment) {
    value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
  }
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
    std::signal(number, SIG_DFL);  // a test in the background is started to ignore some of them
  }
  for (const int number : call.ignoredSignals) {
    std::signal(number, SIG_IGN);
  }
  std::vector<char*> arguments;
  for (const std::string& argument : call.arguments) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  ::execvp(arguments[0], arguments.data());
  ::_exit(127);
}

}  // namespace

Program::Program(const ProgramCall& call)
    : m_output(makeEnds(call.output)), m_errors(makeEnds(call.errors)) {
  m_process = ::fork();
  if (m_process == 0) {
    install(m_output.program, STDOUT_FILENO);
    install(m_errors.program, STDERR_FILENO);
    become(call);
  }
  m_output.program = {};
  m_errors.program = {};
}

Program::~Program() {
  if (m_process > 0) {
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
  }
}

Program::Ends Program::makeEnds(Stream stream) {
  Ends ends{stream, {}, {}};
  switch (stream) {
    case Stream::File:
      ends.test = unnamedFile();
      ends.program = checked(::fcntl(ends.test.get(), F_DUPFD_CLOEXEC, 3));
      break;
    case Stream::Pipe: {
      std::array<int, 2> pipe{-1, -1};
      static_cast<void>(::pipe2(pipe.data(), O_CLOEXEC));
      ends.test = checked(pipe[0]);
      ends.program = checked(pipe[1]);
      ::fcntl(pipe[1], F_SETPIPE_SZ, smallestPipeInBytes);
      break;
    }
    case Stream::Terminal:
      if (!m_terminal) {
        m_terminal = checked(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
        ::grantpt(m_terminal.get());
        ::unlockpt(m_terminal.get());
      }
      ends.program = checked(::open(::ptsname(m_terminal.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
      break;
    case Stream::FullDevice:
      ends.program = checked(::open("/dev/full", O_WRONLY | O_CLOEXEC));
      break;
    case Stream::Closed:
      break;
  }
  return ends;
}

void Program::signal(int number) const {
  ::kill(m_process, number);
}

void Program::readWhileItRuns(ProgramResult& result) {
  struct Source {
    FileDescriptor* descriptor;
    std::string* text;
  };
  std::vector<Source> sources{{&m_terminal, &result.terminal}};
  for (const auto& [ends, text] :
       {std::pair(&m_output, &result.output), std::pair(&m_errors, &result.errors)}) {
    if (ends->stream == Stream::Pipe) {
      sources.push_back({&ends->test, text});
    }
  }
  const auto isClosed = [](const Source& source) { return !*source.descriptor; };
  while (std::erase_if(sources, isClosed), !sources.empty()) {
    std::vector<pollfd> waiting;
    waiting.reserve(sources.size());
    for (const Source& source : sources) {
      waiting.push_back({source.descriptor->get(), POLLIN, 0});
    }
    ::poll(waiting.data(), waiting.size(), -1);
    for (std::size_t i = 0; i < sources.size(); ++i) {
      if (waiting[i].revents != 0 && !readSome(*sources[i].descriptor, *sources[i].text)) {
        *sources[i].descriptor = {};
      }
    }
  }
}

ProgramResult Program::finish() {
  ProgramResult result;
  readWhileItRuns(result);
  int status = 0;
  ::waitpid(std::exchange(m_process, -1), &status, 0);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  for (const auto& [ends, text] :
       {std::pair(&m_output, &result.output), std::pair(&m_errors, &result.errors)}) {
    if (ends->stream == Stream::File) {
      ::lseek(ends->test.get(), 0, SEEK_SET);
      while (readSome(ends->test, *text)) {
      }
    }
  }
  return result;
}

}  // namespace snaplift
