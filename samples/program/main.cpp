#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "program/SampleRoot.h"

namespace {

constexpr const char* usage =
    "usage: snaplift-samples ROOT [--small]\n"
    "Writes sample backups into the folder ROOT, with --small in small pictures.\n";

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  if (std::ranges::find(arguments, "--help") != arguments.end()) {
    return std::fputs(usage, stdout) >= 0 && std::fflush(stdout) == 0 ? 0 : 1;
  }
  const bool small = std::erase(arguments, "--small") > 0;
  if (arguments.size() != 1 || arguments[0].starts_with('-')) {
    std::fputs(usage, stderr);
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
