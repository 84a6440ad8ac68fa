#include "core/filters.h"

#include "core/names.h"
#include "core/record.h"
#include "core/values.h"

namespace kestrana::core {

namespace {

host::XItem Item(int16_t code, std::string text) {
  return {code, host::XValue(std::move(text))};
}
}  // namespace

std::string EscapeWildcards(std::string_view text) {
  std::string out;
  for (char c : text) {
    if (std::string_view("#@.*?~[],`").find(c) != std::string_view::npos)
      out += '`';
    out += c;
  }
  return out;
}

host::Filter PipesOfNetworkFilter(std::string_view network) {
  return {
      Item(code::kAppName, kAppName),
      Item(code::kText,
           CombinedLabel{kPipeKind, EscapeWildcards(network), "*"}.Format())};
}

host::Filter PipeByLabelFilter(std::string_view network,
                               std::string_view label) {
  return {Item(code::kAppName, kAppName),
          Item(code::kText, CombinedLabel{kPipeKind, EscapeWildcards(network),
                                          EscapeWildcards(label)}
                                .Format())};
}

host::Filter ProjectObjectsFilter() { return {Item(code::kAppName, kAppName)}; }

host::Filter NodeBlocksFilter() {
  return {Item(code::kAppName, kAppName), Item(code::kEntityType, "INSERT"),
          Item(code::kBlockName, kNodeBlock)};
}

host::Filter AllPipesFilter() {
  return {
      Item(code::kAppName, kAppName),   Item(code::kEntityType, "LWPOLYLINE"),
      Item(code::kGrouping, "<OR"),     Item(code::kText, kGravityPipe),
      Item(code::kText, kPressurePipe), Item(code::kGrouping, "OR>")};
}

host::Filter ElementsOfKindFilter(bool pipes) {
  return {Item(code::kAppName, kAppName),
          Item(code::kEntityType, pipes ? "LWPOLYLINE" : "INSERT")};
}

host::Filter ElementsFilter() {
  return {Item(code::kAppName, kAppName), Item(code::kGrouping, "<OR"),
          Item(code::kEntityType, "LWPOLYLINE"),
          Item(code::kEntityType, "INSERT"), Item(code::kGrouping, "OR>")};
}

host::Filter EntitiesToConvertFilter() {
  return {Item(code::kGrouping, "<or"), Item(code::kEntityType, "LWPOLYLINE"),
          Item(code::kEntityType, "LINE"), Item(code::kGrouping, "or>")};
}

host::Filter BlockInsertsFilter(const std::vector<std::string>& block_names) {
  host::Filter filter{Item(code::kAppName, kAppName),
                      Item(code::kEntityType, "INSERT"),
                      Item(code::kGrouping, "<OR")};
  for (const std::string& name : block_names)
    filter.push_back(Item(code::kBlockName, name));
  filter.push_back(Item(code::kGrouping, "OR>"));
  return filter;
}

}  // namespace kestrana::core
