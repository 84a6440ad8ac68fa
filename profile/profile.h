// Class Profile: longitudinal profiles. This part keeps their records: the
// profile block and plan annotation records, the back-references on styles
// and pipes, the "NeedsUpdate" flag, and a pipe's place in a stored chain
// when the pipe is reversed, merged or erased. Operations keep nothing
// between calls.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/types.h"
#include "types/cross_point.h"

namespace kestrana::host {
class BlockReference;
class Document;
class Entity;
class LwPolyline;
class SelectionSet;
}  // namespace kestrana::host

namespace kestrana::core {
class Record;
}

namespace kestrana::profile {

// A run of pipes in profile order, as GetSortedPipesArray answers it.
struct SortedPipes {
  std::string labels;      // ";RelatedTo<label>" per pipe
  std::string oids;        // ";RelatedTo<ID>" per pipe
  std::string directions;  // ";0" or ";1" per pipe
  friend bool operator==(const SortedPipes&, const SortedPipes&) = default;
};

// What DrawProfile is given; the profile block record keeps it so that the
// profile can be drawn again.
struct ProfileInputs {
  std::string profile_name;
  std::string network_name;
  std::string network_type;  // "Gravity" or "Pressure"
  std::string style_name;
  SortedPipes pipes;
  host::Point3 insertion_point;
  bool ground_from_surface = false;
  std::string ground_surface_name;
  bool datum_auto = true;
  double custom_datum_value = 0.0;
  bool name_on_plan = false;
  bool stations_on_plan = false;
};

class Profile {
 public:
  // --- Profile styles ------------------------------------------------------

  // The first of ".", "-", "/", "_" that a manhole label holds, or "".
  static std::string GetManholeLabelDelimiter(std::string_view manhole_label);

  // 1001, then twenty 1000.
  static std::vector<int16_t> GetProfileStyleXdataTypeArray();
  // The style record, or nullopt when no style has the name (exact).
  static std::optional<core::Record> GetProfileStyleSettings(
      host::Document& document, std::string_view profile_style);
  // The style marker's ID as text; "" when no style has the name.
  static std::string GetProfileStyleOID(host::Document& document,
                                        std::string_view profile_style_name);

  // --- Profile records and update flags ----------------------------------

  // The profile block's record, and the back-references on the style
  // marker and on every pipe of the chain. std::invalid_argument when no
  // style has the name.
  static void BuildProfileBlockXData(host::Document& document,
                                     const ProfileInputs& inputs,
                                     host::BlockReference& profile_block,
                                     host::BlockReference* plan_block);
  static void BuildProfilePlanAnnoBlockXData(
      std::string_view profile_name, std::string_view profile_network_name,
      host::BlockReference& profile_block, host::BlockReference& plan_block);
  // Sets the update flag and stamps "NeedsUpdate" over the profile, once.
  static void FlagProfileForUpdate(host::Document& document,
                                   std::string_view profile_oid);
  // Flags every profile along the pipes of the crossings.
  static void FlagProfilesRelatedToCrossingPoints(
      host::Document& document,
      const std::vector<types::CrossPoint>& ar_cross_points);
  // The set "SetProfiles" of the profile block references, of one network
  // when `net_name` is not empty.
  static host::SelectionSet& GetExistingProfileSet(host::Document& document,
                                                   std::string_view net_name);
  // The direction in a chain of the pipe that replaces an old pipe by
  // merging: the old direction when the new pipe runs the old pipe's way,
  // the other one when it runs against it.
  static std::string GetMergedPipeDirectionInProfile(
      host::Document& document, const host::LwPolyline& new_pipe,
      std::string_view old_pipe_oid, std::string_view old_pipe_direction);
  // Flips the pipe's direction in the profile's chain.
  static void ReversePipeDirectionInProfile(host::Document& document,
                                            std::string_view pipe_oid,
                                            std::string_view profile_oid);
  // Erases the network's profiles, each through the profile erase reaction
  // (its style and pipes forget it, its plan annotation goes too).
  static void DeleteNetworkProfiles(host::Document& document,
                                    std::string_view net_name);
  // Drops the profile from the pipe's profile lists, unless the pipe is in
  // one of the two object-ID lists (erased, or about to be).
  static void DeleteProfileReferenceFromPipe(
      host::Document& document, std::string_view profile_name,
      std::string_view profile_oid, std::string_view pipe_oid,
      std::string_view erased_entites_object_id,
      std::string_view entities_to_be_erased_object_id);
};

}  // namespace kestrana::profile
