// The kinds of failure the system reports, under one base. Each carries the
// message a user reads; the command line maps the kind to an exit code once.
#pragma once

#include <stdexcept>
#include <string>

namespace kestrana {

class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Something named by the caller is not there: a network, a label, a style,
// a handle, a file.
class NotFoundError : public Error {
 public:
  using Error::Error;
};

// The input itself is wrong: a value out of range, a malformed file, a name
// with characters names cannot hold.
class InvalidInputError : public Error {
 public:
  using Error::Error;
};

// The input is well formed but a rule of the system refuses the operation
// (pipes that are not one run, a name already in use, a style in use).
class RefusedError : public Error {
 public:
  using Error::Error;
};

}  // namespace kestrana
