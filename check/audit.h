// The consistency audit of a drawing: every link between records, the
// counts and the derived objects (crossings, low and high points) checked
// against what the records and the plan say, and with `design` the things a
// reviewing engineer marks in red. Reading only; repairs are in fix.h.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "check/design_settings.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::check {

enum class Severity { kError, kWarning };

// One object a finding is about. Any part may be empty: a project field has
// no handle, a record that names no network has no network.
struct ObjectRef {
  std::string network;
  std::string label;
  std::string handle;
  friend bool operator==(const ObjectRef&, const ObjectRef&) = default;
};

struct Finding {
  std::string code;  // "dangling-reference", "crossing-missing", ...
  Severity severity = Severity::kError;
  std::vector<ObjectRef> objects;
  std::string sentence;  // for a CAD technician
  // Named values behind the sentence ("expected", "found", "field"...), as
  // texts so that they print the same in tables and JSON.
  std::vector<std::pair<std::string, std::string>> values;
};

struct AuditOptions {
  bool design = false;  // also the design warnings
  DesignSettings settings = DesignSettings::Defaults();
};

// Every finding, errors in drawing order of the objects concerned, then the
// design warnings. Never throws for a damaged drawing: what cannot be read
// is itself a finding.
std::vector<Finding> Audit(host::Document& document,
                           const AuditOptions& options = {});

// How many findings are errors (warnings never make a drawing unclean).
int CountErrors(const std::vector<Finding>& findings);

}  // namespace kestrana::check
