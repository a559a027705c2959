#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <sys/types.h>

#include "foundation/files/FileDescriptor.h"

namespace snaplift {

// Where an output stream of a program goes. A terminal is a new one, which both streams may share.
// A pipe has room for one page and is not emptied before finish(), so that a program with much to
// say is held there.
enum class Stream { File, Pipe, Terminal, Closed, FullDevice };

struct ProgramCall {
  std::vector<std::string> arguments;  // the program's own path first
  // Added to the test's own environment; an absent value takes a variable away.
  std::vector<std::pair<std::string, std::optional<std::string>>> environment = {};
  Stream output = Stream::File, errors = Stream::File;
  std::vector<int> ignoredSignals = {};
};

struct ProgramResult {
  int status = -1;             // the exit status, or minus the signal that ended the program
  std::string output, errors;  // what went into a file or a pipe
  std::string terminal;        // what went to the terminal, whose line ends are "\r\n"
};

// Whether `condition` came true within a minute.
template <class Condition>
bool waitFor(const Condition& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  bool isMet = false;
  while (!(isMet = condition()) && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(std::chrono::microseconds(100));  // between two looks
  }
  return isMet;
}

// A program in a process of its own, as a shell would start it. Throws std::runtime_error where
// that is impossible. A program that is not awaited is killed.
class Program {
public:
  explicit Program(const ProgramCall& call);
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program();

  void signal(int number) const;

  // Nobody reads the pipe of the output any more.
  void closeOutput() { m_output.test = {}; }

  // Lets the program say the rest, and waits for its end.
  ProgramResult finish();

  static ProgramResult run(const ProgramCall& call) { return Program(call).finish(); }

private:
  // The test reads one end of a stream and the program writes the other.
  struct Ends {
    Stream stream;
    FileDescriptor test, program;
  };

  Ends makeEnds(Stream stream);
  void readWhileItRuns(ProgramResult& result);

  FileDescriptor m_terminal;
  Ends m_output, m_errors;
  pid_t m_process = -1;
};

}  // namespace snaplift
