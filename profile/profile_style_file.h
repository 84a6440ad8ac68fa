// The profile style file (docs/profile-style-file.md): the 21 items of a
// style record, one per line, each enclosed in double quotes:
//
//   "Kestrana"
//   ";;Standard"
//   "ProfileStylePoint"
//   ""
//   ""
//   "Standard;2;2.5;5"
//   ...
//
// Reading stops at the end of the file, at the first empty line or after
// 21 lines. Items 0, 2, 3, 4 and 20 never come from the file; the others
// must have their fixed numbers of ";"-separated fields.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/errors.h"
#include "profile/profile_style_record.h"

namespace kestrana::profile {

// A text that is not a style file. `line` is the line of the text (from 1)
// the error is about, 0 when it is about the file as a whole.
class ProfileStyleFileError : public InvalidInputError {
 public:
  ProfileStyleFileError(int line, const std::string& message);
  int line() const { return line_; }

 private:
  int line_;
};

// What one item of the record holds: a short name for messages and its
// fields, by name (the number of names is the item's field count).
struct ProfileStyleItemInfo {
  ProfileStyleItem item;
  const char* name;
  std::vector<const char*> fields;
};

// The items whose field counts a style file must keep: 1 and 5 to 19.
const std::vector<ProfileStyleItemInfo>& CheckedProfileStyleItems();

// Style files are small; anything bigger is not one.
inline constexpr size_t kMaxProfileStyleFileBytes = 1 << 20;

// The 21 record values of a style text; ProfileStyleFileError naming the
// line and item at the first thing wrong.
std::vector<std::string> ReadProfileStyleText(std::string_view text);
// The same for a file: NotFoundError when it cannot be read,
// ProfileStyleFileError (message starting with the path) otherwise.
std::vector<std::string> ReadProfileStyleFile(const std::string& path);

// The style file form of 21 record values. InvalidInputError for another
// count or a value holding a line break.
std::string WriteProfileStyleText(const std::vector<std::string>& items);

// The style name of record values (field 2 of item 1).
std::string ProfileStyleNameOf(const std::vector<std::string>& items);

// The settings a profile is drawn and gathered with must be numbers where
// numbers are read: positive text heights, part length, exaggeration and
// intervals, numeric switches and band positions. InvalidInputError naming
// the item and field.
void CheckProfileStyleValues(const std::vector<std::string>& items);

}  // namespace kestrana::profile
