#include "faults/FaultyFileSystem.h"

#include <csignal>

#include <unistd.h>

namespace snaplift {
namespace {

thread_local FaultyFileSystem* activeFaults = nullptr;

}  // namespace

FaultyFileSystem::FaultyFileSystem(Faults faults) : m_faults(faults) {
  activeFaults = this;
  setFaultPolicy(faultOf);
}

FaultyFileSystem::~FaultyFileSystem() {
  activeFaults = nullptr;
}

CallFault FaultyFileSystem::faultOf(SystemCall call) {
  if (activeFaults == nullptr || call == SystemCall::Read || call == SystemCall::List ||
      call == SystemCall::Status) {
    return {};
  }
  const Faults& faults = activeFaults->m_faults;
  activeFaults->m_flushes += call == SystemCall::Flush ? 1 : 0;
  const bool isDue = ++activeFaults->m_calls == faults.faultyCall;
  if (isDue && faults.errorNumber == 0) {
    ::kill(::getpid(), SIGKILL);
  }
  return {isDue ? faults.errorNumber : 0, faults.kind, faults.maximumWrite};
}

}  // namespace snaplift
