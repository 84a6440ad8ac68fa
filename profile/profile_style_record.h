// The profile style record: XData of a style marker point, 21 texts.
#pragma once

#include <array>
#include <cstdint>

#include "core/record.h"

namespace kestrana::profile {

enum class ProfileStyleItem : int {
  kApplicationName = 0,
  kCombinedLabel = 1,  // ";;" & style name
  kMarkerType = 2,     // "ProfileStylePoint"
  kProfileNames = 3,   // ";RelatedTo<profile name>..." of its profiles
  kProfileOIDs = 4,    // ";RelatedTo<block ID>...", in step with the names
  kText = 5,
  kPartSplitting = 6,
  kDrawing = 7,
  kHorizontalGrid = 8,
  kVerticalGrid = 9,
  kSectionBand = 10,
  kSlopeBand = 11,
  kLengthBand = 12,
  kMaterialBand = 13,
  kGroundLevelBand = 14,
  kInvertLevelBand = 15,
  kCoverDepthBand = 16,
  kInvertDepthBand = 17,
  kStationBand = 18,
  kCoordinateBand = 19,
  kProfileNetworks = 20,  // ";<network>..." in step with the names
};

inline constexpr int kProfileStyleRecordLength = 21;

inline constexpr char kProfileStylePoint[] = "ProfileStylePoint";

}  // namespace kestrana::profile
