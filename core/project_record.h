// The project record: XData of the model-space block under "Kestrana".
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "core/record.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::core {

enum class ProjectField : int {
  kApplicationName = 0,
  // "<active view style>;<visibility>;<marker ID>;...;" (one visibility
  // character per network, in the order of kNetworkNames).
  kViewStyles = 1,
  kEventsFlag = 2,        // 16-bit 1 (on) or 0 (off)
  kNetworkNames = 3,      // "A;B;"
  kNetworkTypes = 4,      // "Gravity;Pressure;", in step with the names
  kMaterialsLibrary = 5,  // marker object ID
  kSizesLibrary = 6,      // marker object ID
  kModelUnits = 7,        // "Metric" or "US"
  kCrossingSettings = 8,  // "<threshold>;<net>;<net>;<net>;<net>..."
  kLowHighNetworks = 9,   // "B;"
  kProfileStyles = 10,    // "<marker ID>;<marker ID>;"
  kProjectVersion = 11,   // "2.00"
};

inline constexpr int kProjectRecordLength = 12;

// Group codes of fields 1 to 11.
inline constexpr std::array<int16_t, kProjectRecordLength - 1>
    kProjectRecordCodes = {code::kText, code::kInt16, code::kText, code::kText,
                           code::kText, code::kText,  code::kText, code::kText,
                           code::kText, code::kText,  code::kText};

// The model-space record, or nullopt when the drawing holds no project.
std::optional<Record> FindProjectRecord(host::Document& document);
// The model-space record; MissingRecordError with the system's "no project"
// message when there is none.
Record ReadProjectRecord(host::Document& document);
void WriteProjectRecord(host::Document& document, const Record& record);

inline constexpr char kNoProjectMessage[] =
    "This drawing does not contain a Kestrana project!";

}  // namespace kestrana::core
