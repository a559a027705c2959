#pragma once

namespace snaplift::cli {

// From here on Ctrl-C (SIGINT), SIGTERM and SIGHUP no longer end the process but set a flag, which
// long work tests between two photos. A second signal ends it at once.
void catchInterrupts();

// Whether a signal has come since.
bool interrupted();

}  // namespace snaplift::cli
