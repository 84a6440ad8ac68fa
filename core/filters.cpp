#include "core/filters.h"

#include "core/names.h"
#include "core/record.h"
#include "core/values.h"

namespace kestrana::core {

namespace {
constexpr int16_t kEntityType = 0;
constexpr int16_t kBlockName = 2;
constexpr int16_t kGrouping = -4;

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
          Item(code::kText, std::string(kPipeKind) + ";" +
                                EscapeWildcards(network) + ";" +
                                EscapeWildcards(label))};
}

host::Filter ProjectObjectsFilter() { return {Item(code::kAppName, kAppName)}; }

host::Filter NodeBlocksFilter() {
  return {Item(code::kAppName, kAppName), Item(kEntityType, "INSERT"),
          Item(kBlockName, kNodeBlock)};
}

host::Filter AllPipesFilter() {
  return {Item(code::kAppName, kAppName),   Item(kEntityType, "LWPOLYLINE"),
          Item(kGrouping, "<OR"),           Item(code::kText, kGravityPipe),
          Item(code::kText, kPressurePipe), Item(kGrouping, "OR>")};
}

host::Filter ElementsOfKindFilter(bool pipes) {
  return {Item(code::kAppName, kAppName),
          Item(kEntityType, pipes ? "LWPOLYLINE" : "INSERT")};
}

host::Filter ElementsFilter() {
  return {Item(code::kAppName, kAppName), Item(kGrouping, "<OR"),
          Item(kEntityType, "LWPOLYLINE"), Item(kEntityType, "INSERT"),
          Item(kGrouping, "OR>")};
}

host::Filter EntitiesToConvertFilter() {
  return {Item(kGrouping, "<or"), Item(kEntityType, "LWPOLYLINE"),
          Item(kEntityType, "LINE"), Item(kGrouping, "or>")};
}

host::Filter BlockInsertsFilter(const std::vector<std::string>& block_names) {
  host::Filter filter{Item(code::kAppName, kAppName),
                      Item(kEntityType, "INSERT"), Item(kGrouping, "<OR")};
  for (const std::string& name : block_names)
    filter.push_back(Item(kBlockName, name));
  filter.push_back(Item(kGrouping, "OR>"));
  return filter;
}

}  // namespace kestrana::core
