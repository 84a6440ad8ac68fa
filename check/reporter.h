// What the parts of the audit share: the findings gathered so far and the
// small readings every part makes of references.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "check/audit.h"
#include "check/drawing_index.h"

namespace kestrana::check {

class Reporter {
 public:
  explicit Reporter(std::vector<Finding>& findings) : findings_(&findings) {}
  Finding& Add(std::string code, std::vector<ObjectRef> objects,
               std::string sentence, Severity severity = Severity::kError);

 private:
  std::vector<Finding>* findings_;
};

// The object as a finding names it.
ObjectRef RefOf(const Item& item);
// "pipe P-3 of Sewer", "node N-1 of Water", "crossing annotation ...".
std::string Describe(const Item& item);

// The values of a reference list (";RelatedTo<v>;RelatedTo<w>"), or nullopt
// when the text is not one: a piece before the first ";" or an entry that
// does not start with "RelatedTo".
std::optional<std::vector<std::string>> ReferenceList(std::string_view text);

bool IsPipe(const Item& item);
bool IsNode(const Item& item);

// The parts of the audit, in the order they run.
void CheckProject(const DrawingIndex& index, Reporter& report);
void CheckRecords(const DrawingIndex& index, Reporter& report);
void CheckConnections(const DrawingIndex& index, Reporter& report);
void CheckOwnedObjects(const DrawingIndex& index, Reporter& report);
void CheckLibraryCounts(const DrawingIndex& index, Reporter& report);
void CheckCrossings(const DrawingIndex& index, Reporter& report,
                    bool design);
void CheckLowHigh(const DrawingIndex& index, Reporter& report);
void CheckDesign(const DrawingIndex& index, Reporter& report,
                 const DesignSettings& settings);

}  // namespace kestrana::check
