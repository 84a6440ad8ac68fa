#include <iostream>
#include <string>
#include <vector>

#include "cli/command.h"

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  kestrana::cli::Io io{std::cout, std::cerr};
  return kestrana::cli::Main(args, io);
}
