// `kestrana check`: the consistency audit of a drawing, with the design
// review and the repairs. The shape of a command: command.h.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "check/audit.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

struct CheckOptions {
  bool design = false;
  bool fix = false;
  // The design limits; the defaults when not given.
  std::optional<check::DesignSettings> settings{};
};

struct CheckResult {
  bool project = false;              // the drawing holds a project
  std::vector<std::string> changes;  // made by the repairs
  std::vector<check::Finding> findings;  // what remains
  int errors = 0;                    // findings that are not warnings
  bool Clean() const { return errors == 0; }
};

// Audits the drawing as it is; with `fix` repairs it and audits again.
// Object IDs another session stored are renewed first, as every command
// does. Without `fix` never throws for a damaged drawing; with it,
// RefusedError when the IDs cannot be renewed.
CheckResult Check(host::Document& document, const CheckOptions& options);

}  // namespace kestrana::commands
