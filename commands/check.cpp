#include "commands/check.h"

#include "check/fix.h"
#include "commands/project.h"
#include "core/project_record.h"
#include "host/errors.h"

namespace kestrana::commands {

CheckResult Check(host::Document& document, const CheckOptions& options) {
  CheckResult result;
  check::AuditOptions audit;
  audit.design = options.design;
  if (options.settings) audit.settings = *options.settings;
  result.project = core::FindProjectRecord(document).has_value();
  std::vector<check::Finding> renewal;
  if (result.project) {
    try {
      OpenProject(document);
    } catch (const std::exception& e) {
      // A project too damaged to renew (short records, IDs that are not
      // numbers) is audited as it stands; the audit says what is damaged.
      // Repairs would start from a half-renewed drawing: refused.
      if (options.fix)
        throw RefusedError(
            std::string("the object IDs of this drawing cannot be renewed (") +
            e.what() + "), so it is not repaired; run check without --fix "
            "to see what is damaged");
      renewal.push_back({"ids-not-renewed", check::Severity::kError, {},
                         std::string("The stored object IDs could not be "
                                     "renewed from their labels: ") + e.what(),
                         {}});
    }
  }
  result.findings = check::Audit(document, audit);
  if (options.fix && check::CountErrors(result.findings) > 0) {
    result.changes = check::Repair(document, result.findings);
    if (!result.changes.empty()) result.findings = check::Audit(document, audit);
  }
  result.findings.insert(result.findings.begin(), renewal.begin(),
                         renewal.end());
  result.errors = check::CountErrors(result.findings);
  return result;
}

}  // namespace kestrana::commands
