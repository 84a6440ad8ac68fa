// The application every command's drawings share, so that the message boxes
// the logic shows reach the user: the command line prints them on stderr
// once the command has run.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>

#include "dxf/io.h"
#include "memhost/session.h"

namespace kestrana::cli {

std::shared_ptr<memhost::MemApplication> CommandApplication();

// Load options that attach a drawing to the command's application.
dxf::LoadOptions CommandLoadOptions();

// Prints the message boxes shown since the last call ("kestrana: warning:
// ..."), leaving out one whose text is `except` (the error about to be
// printed anyway), and forgets them.
void PrintShownMessages(std::ostream& err, const std::string& except = "");

}  // namespace kestrana::cli
