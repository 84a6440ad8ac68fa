// The two list forms inside record texts.
//   Reference list: entries ";RelatedTo<value>", each with a leading ";"
//     (";RelatedToN-3;RelatedToN-4"); the empty text is the empty list.
//   Object-ID list: IDs in decimal text, each followed by ";"
//     ("2130567256;2130567312;"); the empty text is the empty list.
// The forms are never mixed.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/types.h"

namespace kestrana::core {

// ";RelatedTo" followed by the value: one entry, ready to append.
std::string ReferenceEntry(std::string_view value);
// The value of every entry, in order (what follows "RelatedTo").
std::vector<std::string> ReferenceValues(std::string_view list);

// The items of an object-ID list (the empty piece after the final ";" is
// not an item).
std::vector<std::string> IdListItems(std::string_view list);
// "<id>;": one entry, ready to append.
std::string IdListEntry(host::ObjectId id);

// The decimal text of an object ID, as records store it.
std::string IdText(host::ObjectId id);
// The object ID written in a text: a whole number within 32 bits, blanks
// around it allowed; nullopt for anything else ("", "abc", "12.5").
std::optional<host::ObjectId> ParseObjectId(std::string_view text);

}  // namespace kestrana::core
