// Reactions to objects the user erases in the editor, for the objects that
// other operations erase in the same way.
#pragma once

#include <string_view>

namespace kestrana::host {
class BlockReference;
class Document;
}  // namespace kestrana::host

namespace kestrana::events {

class Events {
 public:
  // A profile block about to go: its entry leaves the style's profile lists
  // and the profile lists of its pipes (those not erased or about to be,
  // by the two object-ID lists), and its plan annotation is erased.
  static void ProfileWillBeErased(
      host::Document& document, host::BlockReference& profile_block,
      std::string_view erased_entites_object_id,
      std::string_view entities_to_be_erased_object_id);
};

}  // namespace kestrana::events
