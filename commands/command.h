// The shape every user command takes below the command line.
//
// A command is one function in `commands/`, in the file of its family:
//
//   SplitResult SplitPipe(memhost::MemDocument& document,
//                         const SplitOptions& options);
//
// It takes the open document first (`memhost::MemDocument&` when it answers
// the system's prompts from the input script, else `host::Document&`) and
// a typed options struct, and returns a result struct holding everything a
// front end prints or shows as JSON. It opens no files and prints nothing:
// the caller loads, saves and formats. It answers the prompts from its
// options, as the add-on answers them from the user, and fails with the
// kinds of host/errors.h, whose messages are the ones a user reads.
#pragma once

#include "host/errors.h"

namespace kestrana::commands {

// A value given to a command that it does not take: a size no pipe has, a
// rule or a network type that does not exist. A front end shows the
// command's usage with it.
class OptionError : public InvalidInputError {
 public:
  using InvalidInputError::InvalidInputError;
};

}  // namespace kestrana::commands
