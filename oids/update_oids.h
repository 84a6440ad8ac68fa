// Renewing the object IDs that records store. IDs are handed out afresh
// whenever a drawing is opened in a CAD session, so every list of IDs in a
// record has a partner list of labels; the IDs are rebuilt from those.
#pragma once

namespace kestrana::host {
class Document;
}

namespace kestrana::oids {

class UpdateOIDs {
 public:
  // Rewrites every stored ID of the project from its label partner and the
  // objects' current IDs; references whose labels name nothing are dropped
  // from both lists. Records that come out the same are not written.
  // Answers the number of records written (the project record included).
  static int UpdateObjectIDs(host::Document& document);

  // Whether the stored IDs come from another session: the project record
  // does not name the materials library marker by its current ID. A
  // drawing without that marker counts as current.
  static bool StoredIdsAreStale(host::Document& document);
};

}  // namespace kestrana::oids
