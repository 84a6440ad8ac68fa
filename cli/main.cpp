#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "cli/command.h"

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  kestrana::cli::Io io{std::cout, std::cerr};
  const int code = kestrana::cli::Main(args, io);
  // The drawing the command kept is left for the operating system to free
  // (cli/session.h); nothing else waits for destructors.
  std::cout.flush();
  std::cerr.flush();
  std::fflush(nullptr);
  std::_Exit(code);
}
