// A view style as readable text, for writing styles by hand and moving
// them between drawings (docs/view-style-file.md):
//
//   text style = "Standard"
//   text height = 2
//   [gravity pipe]
//   label = show
//   length = hide prefix "L=" suffix " m" precision 2 decimals 0
//   slope = show prefix "S=" precision 2 decimals 0 notation percent
//   ...
//
// Every item of the record is written, and reading what was written gives
// the same record.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "host/errors.h"
#include "viewstyle/view_style_record.h"

namespace kestrana::viewstyle {

// A style text that does not describe a style, or a record that cannot be
// written as one. `line` is the line of the text (from 1), 0 for records.
class StyleTextError : public InvalidInputError {
 public:
  StyleTextError(int line, const std::string& message);
  int line() const { return line_; }

 private:
  int line_;
};

// One annotation item taken apart; texts as stored.
struct ItemSettings {
  bool show = false;
  std::string prefix;
  std::string suffix;
  std::string precision;  // digit texts
  std::string decimals;
  std::string notation;  // "0" decimal, "1" percent, "2" ratio
};

// The item's text in the record, read in its form; StyleTextError (line 0)
// naming the item when the text does not have that form.
ItemSettings ReadItem(const ItemInfo& item, std::string_view text);
// The record text of an item.
std::string ItemText(const ItemInfo& item, const ItemSettings& settings);
// "decimal", "percent" or "ratio".
std::string NotationName(std::string_view notation);

// The text form of a style (without its name).
std::string WriteStyleText(const ViewStyleSettings& style);
// The record described by `text`, named `name`.
ViewStyleSettings ReadStyleText(std::string_view text, std::string_view name);

}  // namespace kestrana::viewstyle
