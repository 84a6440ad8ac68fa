// `kestrana profile draw|list|update|delete`: drawn longitudinal profiles.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/profile_data.h"
#include "host/types.h"

namespace kestrana::host {
class Document;
}
namespace kestrana::memhost {
class MemDocument;
class MemSurface;
}

namespace kestrana::commands {

struct ProfileDrawOptions {
  std::string name = {};
  // The network, the run (pipes or line), the start point, the style and
  // the surface, as `profile data` takes them.
  ProfileDataOptions run = {};
  host::Point3 at = {};  // where the profile block is inserted
  std::optional<double> datum = {};  // unset: from the lowest sump
  bool name_on_plan = false;
  bool stations_on_plan = false;
};

// A drawn profile as its record keeps it.
struct ProfileSummary {
  std::string name;
  std::string network;
  std::string style;
  std::string block;     // the block definition's name
  std::string block_id;  // the block reference's ID
  std::vector<std::string> pipes;  // labels in profile order
  host::Point3 at;
  bool needs_update = false;
  bool plan_annotation = false;
  friend bool operator==(const ProfileSummary&, const ProfileSummary&) = default;
};

struct ProfileDrawResult {
  ProfileSummary profile;
  int parts = 0;
};

// NotFoundError for an unknown network, style, pipe, line or surface;
// RefusedError for a name the network's profiles already use (letter case
// ignored) and for pipes that are not one unbranched run;
// InvalidInputError for a bad name, a start point far from both free ends
// of the run (naming them), a datum above the run's lowest level and a
// surface that does not cover the run.
ProfileDrawResult ProfileDraw(memhost::MemDocument& document,
                              const ProfileDrawOptions& options);

struct ProfileListOptions {};
struct ProfileListResult {
  std::vector<ProfileSummary> profiles;
};
ProfileListResult ProfileList(host::Document& document,
                              const ProfileListOptions& options);

struct ProfileUpdateOptions {
  // One profile by network and name, or every profile that needs an update.
  std::optional<std::string> network = {};
  std::optional<std::string> name = {};
  bool all_flagged = false;
  // The surfaces that profiles with their ground from a surface take it
  // from again, as one source (a LandXML file, named in messages as
  // `surface_source`) gives them; the civil document holds these, no
  // others.
  std::vector<std::unique_ptr<memhost::MemSurface>> surfaces{};
  std::string surface_source = {};
};
struct ProfileUpdateResult {
  std::vector<ProfileSummary> updated;  // as drawn anew
};
// NotFoundError for a profile the network lacks; RefusedError for a
// profile whose pipes are gone or no longer one run; InvalidInputError for
// a profile whose ground surface was not given. Nothing is redrawn then.
ProfileUpdateResult ProfileUpdate(memhost::MemDocument& document,
                                  ProfileUpdateOptions options);

struct ProfileDeleteOptions {
  std::string network = {};
  std::string name = {};
};
struct ProfileDeleteResult {
  ProfileSummary deleted;
};
ProfileDeleteResult ProfileDelete(host::Document& document,
                                  const ProfileDeleteOptions& options);

}  // namespace kestrana::commands
