// The two list forms inside record texts.
//   Reference list: entries ";RelatedTo<value>", each with a leading ";"
//     (";RelatedToN-3;RelatedToN-4"); the empty text is the empty list.
//   Trailing list: entries each followed by ";", such as object-ID lists
//     ("2130567256;2130567312;") and the network names of the project
//     record ("Sewer A;Water 1;"); the empty text is the empty list.
// The forms are never mixed.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/types.h"

namespace kestrana::core {

// "RelatedTo" followed by the value: an entry as the pieces of a list hold
// it, for finding or deleting one.
std::string RelatedTo(std::string_view value);
// ";RelatedTo" followed by the value: one entry, ready to append.
std::string ReferenceEntry(std::string_view value);
// The value of every entry, in order (what follows "RelatedTo").
std::vector<std::string> ReferenceValues(std::string_view list);

// The entries of a trailing list (the empty piece after the final ";" is
// not an entry).
std::vector<std::string> ListEntries(std::string_view list);
// Each entry followed by ";".
std::string JoinEntries(const std::vector<std::string>& entries);
// "<id>;": one entry, ready to append.
std::string IdListEntry(host::ObjectId id);

// The decimal text of an object ID, as records store it.
std::string IdText(host::ObjectId id);
// The object ID written in a text: a whole number within 32 bits, blanks
// around it allowed; nullopt for anything else ("", "abc", "12.5").
std::optional<host::ObjectId> ParseObjectId(std::string_view text);

}  // namespace kestrana::core
