#pragma once

namespace snaplift::cli {

// From here on Ctrl-C (SIGINT), SIGTERM and SIGHUP no longer end the process but set a flag, which
// long work tests between two photos. A second signal ends it at once. Signals that the process was
// started to ignore stay ignored. The end of whoever reads the standard output no longer ends the
// process either: its report is lost, and the photos are not.
void catchInterrupts();

// Whether a signal has come since.
bool interrupted();

}  // namespace snaplift::cli
