#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "program/SampleRoot.h"

// snaplift-samples ROOT [--small]: writes sample backups into the folder ROOT.
int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const bool small = arguments.size() == 2 && arguments[1] == "--small";
  if (arguments.empty() || arguments.size() > (small ? 2 : 1)) {
    std::fputs("usage: snaplift-samples ROOT [--small]\n", stderr);
    return 2;
  }
  try {
    snaplift::samples::writeSampleRoot(arguments[0], small);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "snaplift-samples: %s\n", error.what());
    return 1;
  }
  return 0;
}
