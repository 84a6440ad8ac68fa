// The records of a drawn profile: XData of the profile block reference and
// of its plan annotation block reference.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/record.h"

namespace kestrana::profile {

enum class ProfileField : int {
  kApplicationName = 0,
  kCombinedLabel = 1,     // "Profile;<network>;<profile name>"
  kElementType = 2,       // "Profile"
  kNetworkType = 3,       // "Gravity" or "Pressure"
  kPipeLabels = 4,        // ";RelatedTo<label>..." in chain order
  kPipeOIDs = 5,          // ";RelatedTo<ID>..." in step with the labels
  kDirections = 6,        // ";0" (own orientation) or ";1" per pipe
  kStyleNameRef = 7,      // ";RelatedTo<style name>"
  kStyleOIDRef = 8,       // ";RelatedTo<style marker ID>"
  kPlanAnnoLabelRef = 9,  // ";RelatedTo<profile name>PlanAnno" or ""
  kPlanAnnoOIDRef = 10,   // ";RelatedTo<plan annotation ID>" or ""
  kDatum = 11,            // "<auto 1|0>;<custom datum>"
  kGround = 12,           // "<from surface 1|0>;<surface name>"
  kInsertionPoint = 13,   // "x;y;z"
  kPlanSwitches = 14,     // "<name on plan 1|0>;<stations on plan 1|0>"
  kUpdateFlag = 15,       // 16-bit: 0 current, 1 needs update
};

inline constexpr int kProfileRecordLength = 16;

inline constexpr std::array<int16_t, kProfileRecordLength - 1>
    kProfileRecordCodes = {
        core::code::kText, core::code::kText, core::code::kText,
        core::code::kText, core::code::kText, core::code::kText,
        core::code::kText, core::code::kText, core::code::kText,
        core::code::kText, core::code::kText, core::code::kText,
        core::code::kText, core::code::kText, core::code::kInt16};

enum class PlanAnnoField : int {
  kApplicationName = 0,
  kCombinedLabel = 1,   // "ProfilePlanAnno;<network>;<profile name>PlanAnno"
  kElementType = 2,     // "ProfilePlanAnno"
  kProfileNameRef = 3,  // ";RelatedTo<profile name>"
  kProfileOIDRef = 4,   // ";RelatedTo<profile block ID>"
};

inline constexpr int kPlanAnnoRecordLength = 5;

inline constexpr std::array<int16_t, kPlanAnnoRecordLength - 1>
    kPlanAnnoRecordCodes = {core::code::kText, core::code::kText,
                            core::code::kText, core::code::kText};

inline constexpr char kProfileKind[] = "Profile";
inline constexpr char kPlanAnnoKind[] = "ProfilePlanAnno";
inline constexpr char kPlanAnnoSuffix[] = "PlanAnno";

inline constexpr int16_t kCurrent = 0;
inline constexpr int16_t kNeedsUpdate = 1;

// Block definition names: prefix & network & "_" & profile name.
inline constexpr char kProfileBlockPrefix[] = "Kestrana_Profile_";
inline constexpr char kPlanAnnoBlockPrefix[] = "Kestrana_PlanAnno_";

inline constexpr char kStampLayer[] = "Profile - Stamp";

// The record of a "NeedsUpdate" stamp: the profile it stands over.
enum class StampField : int {
  kApplicationName = 0,
  kCombinedLabel = 1,  // "ProfileStamp;<network>;<profile name>"
  kElementType = 2,    // "ProfileStamp"
  kProfileOIDRef = 3,  // ";RelatedTo<profile block ID>"
};
inline constexpr std::array<int16_t, 3> kStampRecordCodes = {
    core::code::kText, core::code::kText, core::code::kText};
inline constexpr char kStampKind[] = "ProfileStamp";
inline constexpr char kStampText[] = "NeedsUpdate";

// Directions in a chain: a pipe walked along its own orientation, or
// against it.
inline constexpr char kAlong[] = "0";
inline constexpr char kAgainst[] = "1";

// A profile's chain of pipes, fields 4 to 6 taken apart: entry i of each
// list is the same pipe (a missing label reads as "", a missing direction
// as along).
struct PipeChain {
  std::vector<std::string> labels, ids, directions;
};
PipeChain ReadPipeChain(const core::Record& profile);
void WritePipeChain(core::Record& profile, const PipeChain& chain);

}  // namespace kestrana::profile
