#pragma once

namespace snaplift::bench {

// What a benchmark of views defines: its groups, run inside an application object. The exit status.
int runViewBench(int argc, char** argv);

}  // namespace snaplift::bench
