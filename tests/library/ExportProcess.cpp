#include "ExportProcess.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace snaplift {

ExportProcess::ExportProcess(const ExportJob& job) : m_reports(nullptr, std::fclose) {
  std::array<int, 2> pipe;
  if (::pipe2(pipe.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("cannot make a pipe");
  }
  m_process = ::fork();
  if (m_process == 0) {
    ::dup2(pipe[1], STDOUT_FILENO);
    ::dup2(::open(job.log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666), STDERR_FILENO);
    ::setenv("TMPDIR", job.temporaryParent.c_str(), 1);
    ::execl(EXPORT_PROBE, EXPORT_PROBE, job.source.c_str(), job.destination.c_str(), "2",
            job.withoutLinks ? "without-links" : nullptr, nullptr);
    ::_exit(127);
  }
  ::close(pipe[1]);
  m_reports.reset(::fdopen(pipe[0], "r"));
}

ExportProcess::~ExportProcess() {
  if (m_process > 0) {
    kill();
    wait();
  }
}

std::optional<ExportProcess::Report> ExportProcess::next() {
  char* line = nullptr;
  std::size_t capacity = 0;
  const ssize_t length = ::getline(&line, &capacity, m_reports.get());
  const std::string text(line == nullptr ? "" : line,
                         length > 0 ? static_cast<std::size_t>(length) : 0);
  std::free(line);
  const std::size_t tab = text.find('\t');
  if (tab == std::string::npos || text.back() != '\n') {
    return std::nullopt;
  }
  return Report{text.substr(0, tab), text.substr(tab + 1, text.size() - tab - 2)};
}

void ExportProcess::kill() {
  ::kill(m_process, SIGKILL);
}

int ExportProcess::wait() {
  int status = 0;
  ::waitpid(m_process, &status, 0);
  m_process = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace snaplift
