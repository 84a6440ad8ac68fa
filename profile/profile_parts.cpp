// Cutting a profile's chain into parts no longer than the style allows.
#include "core/lists.h"
#include "core/references.h"
#include "core/text.h"
#include "host/errors.h"
#include "host/host.h"
#include "profile/profile.h"
#include "profile/profile_series.h"
#include "profile/style_fields.h"

namespace kestrana::profile {

namespace {

// The values of a ";<value>;<value>" series.
std::vector<std::string> SeriesValues(std::string_view series) {
  std::vector<std::string> values = core::Split(series);
  values.erase(values.begin());
  return values;
}

}  // namespace

std::vector<std::string> Profile::GetSplitPipesOIDArray(
    host::Document& document, std::string_view splitting_criteria,
    std::string_view profile_pipes_oids) {
  const ItemFields fields(splitting_criteria);
  const bool split = fields.On(PartSplittingSetting::kSwitch);
  const double maximum = fields.Number(PartSplittingSetting::kMaximumLength);
  if (split && !(maximum > 0))
    throw InvalidInputError(
        "the profile style splits profiles into parts of at most \"" +
        fields.Text(PartSplittingSetting::kMaximumLength) +
        "\" long; the maximum part length must be greater than 0");

  std::vector<std::string> parts;
  std::string part;
  double running = 0;
  for (const std::string& id : core::ReferenceValues(profile_pipes_oids)) {
    if (split) {
      const double length = ProfilePipeLength(
          host::As<host::LwPolyline>(core::EntityFromIdText(document, id)));
      if (!part.empty() &&
          core::RoundHalfEven(running + length, kDistancePlaces) > maximum) {
        parts.push_back(part);
        part.clear();
        running = 0;
      }
      running += length;
    }
    AppendValue(part, id);
  }
  if (!part.empty()) parts.push_back(part);
  return parts;
}

std::vector<std::string> Profile::GetSplitPipesDirectionArray(
    std::string_view profile_pipes_directions,
    const std::vector<std::string>& ar_split_pipes_oid) {
  const std::vector<std::string> directions =
      SeriesValues(profile_pipes_directions);
  std::vector<std::string> parts;
  size_t next = 0;
  for (const std::string& part : ar_split_pipes_oid) {
    std::string series;
    const size_t pipes = SeriesValues(part).size();
    for (size_t i = 0; i < pipes; ++i, ++next)
      AppendValue(series, next < directions.size() ? directions[next] : "0");
    parts.push_back(series);
  }
  return parts;
}

std::string Profile::GetConnectedOtherPartsPipes(
    int part_index, const std::vector<std::string>& ar_all_parts_pipes_oid) {
  std::string others;
  for (size_t k = 0; k < ar_all_parts_pipes_oid.size(); ++k)
    if (static_cast<int>(k) != part_index) others += ar_all_parts_pipes_oid[k];
  return others;
}

}  // namespace kestrana::profile
