#include "profile/profile_style_file.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>

#include "core/names.h"
#include "core/text.h"

namespace kestrana::profile {

namespace {

using I = ProfileStyleItem;

constexpr char kQuote = '"';
constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";

int Index(ProfileStyleItem item) { return static_cast<int>(item); }

// "item 11 (slope band)".
std::string ItemName(const ProfileStyleItemInfo& info) {
  return "item " + std::to_string(Index(info.item)) + " (" + info.name + ")";
}

std::string Plural(size_t n, const char* word) {
  return std::to_string(n) + " " + word + (n == 1 ? "" : "s");
}

// The lines the reader looks at: at most 21, ending before the first empty
// one; a CR before the line feed is part of the line break.
std::vector<std::string_view> ItemLines(std::string_view text) {
  if (text.substr(0, kUtf8Bom.size()) == kUtf8Bom)
    text.remove_prefix(kUtf8Bom.size());
  std::vector<std::string_view> lines;
  while (!text.empty() &&
         lines.size() < static_cast<size_t>(kProfileStyleRecordLength)) {
    const size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.empty()) break;
    lines.push_back(line);
  }
  return lines;
}

std::string Unquoted(std::string_view line, int line_number) {
  if (line.size() < 2 || line.front() != kQuote || line.back() != kQuote)
    throw ProfileStyleFileError(
        line_number, "line " + std::to_string(line_number) +
                         ": an item stands between double quotes, as in "
                         "\"Standard;2;2.5;5\"");
  return std::string(line.substr(1, line.size() - 2));
}

// The value of a field that must be a number, or an error naming it.
double Number(const std::vector<std::string>& fields,
              const ProfileStyleItemInfo& info, int field) {
  const std::optional<double> value = core::ParseNumberInRange(fields[field]);
  if (!value)
    throw InvalidInputError(ItemName(info) + ", field " +
                            std::to_string(field) + " (" + info.fields[field] +
                            "): \"" + fields[field] + "\" is not a number " +
                            core::NumberRangeText());
  return *value;
}

void Positive(const std::vector<std::string>& fields,
              const ProfileStyleItemInfo& info, int field) {
  if (!(Number(fields, info, field) > 0))
    throw InvalidInputError(ItemName(info) + ", field " +
                            std::to_string(field) + " (" + info.fields[field] +
                            "): " + fields[field] + " must be greater than 0");
}

}  // namespace

ProfileStyleFileError::ProfileStyleFileError(int line,
                                             const std::string& message)
    : InvalidInputError(message), line_(line) {}

const std::vector<ProfileStyleItemInfo>& CheckedProfileStyleItems() {
  // Every band starts with its place in the table ("999": not drawn), its
  // label and a drawing switch.
  static const std::vector<ProfileStyleItemInfo> items = {
      {I::kCombinedLabel, "style name", {"kind", "network", "style name"}},
      {I::kText,
       "text",
       {"text style", "data text height", "label text height",
        "title text height"}},
      {I::kPartSplitting,
       "part splitting",
       {"split into parts", "maximum part length"}},
      {I::kDrawing,
       "drawing",
       {"horizontal scale", "vertical scale", "node labels",
        "vertical exaggeration"}},
      {I::kHorizontalGrid,
       "elevation grid",
       {"draw lines", "labels on the left", "labels on the right",
        "elevation interval"}},
      {I::kVerticalGrid,
       "station grid",
       {"draw lines", "station labels", "station interval"}},
      {I::kSectionBand,
       "section band",
       {"position", "label", "dimension arrows", "format"}},
      {I::kSlopeBand,
       "slope band",
       {"position", "label", "dimension arrows", "precision", "decimals",
        "notation", "format"}},
      {I::kLengthBand,
       "length band",
       {"position", "label", "dimension arrows", "precision", "decimals"}},
      {I::kMaterialBand,
       "material band",
       {"position", "label", "dimension arrows", "format"}},
      {I::kGroundLevelBand,
       "ground level band",
       {"position", "label", "switch", "decimals"}},
      {I::kInvertLevelBand,
       "invert level band",
       {"position", "label", "switch", "decimals"}},
      {I::kCoverDepthBand,
       "cover depth band",
       {"position", "label", "switch", "decimals"}},
      {I::kInvertDepthBand,
       "invert depth band",
       {"position", "label", "switch", "decimals"}},
      {I::kStationBand,
       "station band",
       {"position", "label", "precision", "decimals", "station format",
        "station interval", "values at stations"}},
      {I::kCoordinateBand,
       "coordinate band",
       {"position", "label", "switch", "at stations", "at nodes",
        "at vertices"}},
  };
  return items;
}

std::vector<std::string> ReadProfileStyleText(std::string_view text) {
  const std::vector<std::string_view> lines = ItemLines(text);
  std::vector<std::string> items(kProfileStyleRecordLength);
  for (size_t k = 0; k < lines.size(); ++k)
    items[k] = Unquoted(lines[k], static_cast<int>(k) + 1);

  items[Index(I::kApplicationName)] = core::kAppName;
  for (const ProfileStyleItemInfo& info : CheckedProfileStyleItems()) {
    const int k = Index(info.item);
    const int line = k + 1;
    if (static_cast<size_t>(k) >= lines.size())
      throw ProfileStyleFileError(
          line, ItemName(info) + " is missing: it belongs on line " +
                    std::to_string(line) + ", but the items stop after " +
                    Plural(lines.size(), "line") +
                    " (the end of the file or an empty line ends them)");
    const size_t fields = core::Split(items[k]).size();
    if (fields != info.fields.size())
      throw ProfileStyleFileError(
          line, "line " + std::to_string(line) + ", " + ItemName(info) + ": " +
                    Plural(fields, "field") + " where " +
                    std::to_string(info.fields.size()) +
                    " are needed, separated by \";\"");
    if (info.item == I::kCombinedLabel) {
      // What the drawing keeps about its own profiles never comes from a
      // file.
      items[Index(I::kMarkerType)] = kProfileStylePoint;
      items[Index(I::kProfileNames)] = "";
      items[Index(I::kProfileOIDs)] = "";
    }
  }
  items[Index(I::kProfileNetworks)] = "";
  return items;
}

std::vector<std::string> ReadProfileStyleFile(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error))
    throw NotFoundError("there is no style file " + path);
  const auto size = std::filesystem::file_size(path, error);
  if (error) throw NotFoundError("cannot read the style file " + path);
  if (size > kMaxProfileStyleFileBytes)
    throw ProfileStyleFileError(0, path + " is too large (" +
                                       std::to_string(size) +
                                       " bytes) to be a profile style file");
  std::ifstream file(path, std::ios::binary);
  if (!file) throw NotFoundError("cannot read the style file " + path);
  const std::string text(std::istreambuf_iterator<char>(file), {});
  try {
    return ReadProfileStyleText(text);
  } catch (const ProfileStyleFileError& e) {
    throw ProfileStyleFileError(e.line(), path + ": " + e.what());
  }
}

std::string WriteProfileStyleText(const std::vector<std::string>& items) {
  if (items.size() != static_cast<size_t>(kProfileStyleRecordLength))
    throw InvalidInputError("a profile style has " +
                            std::to_string(kProfileStyleRecordLength) +
                            " items, not " + std::to_string(items.size()));
  std::string text;
  for (size_t k = 0; k < items.size(); ++k) {
    if (items[k].find('\n') != std::string::npos)
      throw InvalidInputError("item " + std::to_string(k) +
                              " of the profile style holds a line break, "
                              "which a style file cannot");
    text += kQuote + items[k] + kQuote + "\n";
  }
  return text;
}

std::string ProfileStyleNameOf(const std::vector<std::string>& items) {
  const std::vector<std::string> fields =
      core::Split(items.at(Index(I::kCombinedLabel)));
  return fields.size() > 2 ? fields[2] : "";
}

void CheckProfileStyleValues(const std::vector<std::string>& items) {
  for (const ProfileStyleItemInfo& info : CheckedProfileStyleItems()) {
    const std::vector<std::string> f = core::Split(items.at(Index(info.item)));
    if (f.size() != info.fields.size())
      throw InvalidInputError(ItemName(info) + " holds " +
                              Plural(f.size(), "field") + " instead of " +
                              std::to_string(info.fields.size()));
    switch (info.item) {
      case I::kCombinedLabel:
        break;
      case I::kText:
        for (int field : {1, 2, 3}) Positive(f, info, field);
        break;
      case I::kPartSplitting:
        if (Number(f, info, 0) != 0) Positive(f, info, 1);
        break;
      case I::kDrawing:
        Number(f, info, 2);
        Positive(f, info, 3);
        break;
      case I::kHorizontalGrid:
        for (int field : {0, 1, 2}) Number(f, info, field);
        Positive(f, info, 3);
        break;
      case I::kVerticalGrid:
        for (int field : {0, 1}) Number(f, info, field);
        Positive(f, info, 2);
        break;
      case I::kSlopeBand:
        for (int field : {0, 2, 3, 4, 5}) Number(f, info, field);
        break;
      case I::kLengthBand:
        for (int field : {0, 2, 3, 4}) Number(f, info, field);
        break;
      case I::kStationBand:
        for (int field : {0, 2, 3, 4, 6}) Number(f, info, field);
        Positive(f, info, 5);
        break;
      case I::kCoordinateBand:
        for (int field : {0, 3, 4, 5}) Number(f, info, field);
        break;
      default:  // the other bands: only their place is read as a number
        Number(f, info, 0);
        break;
    }
  }
}

}  // namespace kestrana::profile
