// Value types shared by every host object: points, object IDs, XData items,
// selection filters and the host's error.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "host/errors.h"

namespace kestrana::host {

using ObjectId = int32_t;

struct Point3 {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  friend bool operator==(const Point3&, const Point3&) = default;
};

// Axis-aligned plan box; empty until the first point is added.
struct Box2 {
  double min_x = 0.0, min_y = 0.0, max_x = 0.0, max_y = 0.0;
  bool empty = true;
  void Add(double x, double y);
  void Add(const Box2& other);
  bool Contains(const Box2& inner) const;
  bool Overlaps(const Box2& other) const;
};

// One XData value: text (1000, 1001, 1002, 1003, 1005), real (1010-1042) or
// 16-bit integer (1070). 1071 long integers are kept as reals.
class XValue {
 public:
  XValue() : v_(std::string()) {}
  XValue(std::string text) : v_(std::move(text)) {}    // NOLINT
  XValue(const char* text) : v_(std::string(text)) {}  // NOLINT
  XValue(double real) : v_(real) {}                    // NOLINT
  XValue(int16_t integer) : v_(integer) {}             // NOLINT

  bool IsText() const { return std::holds_alternative<std::string>(v_); }
  bool IsReal() const { return std::holds_alternative<double>(v_); }
  bool IsInt() const { return std::holds_alternative<int16_t>(v_); }

  // Raw access; throw HostError when the value holds another kind.
  const std::string& Text() const;
  double Real() const;
  int16_t Int() const;

  friend bool operator==(const XValue&, const XValue&) = default;

 private:
  std::variant<std::string, double, int16_t> v_;
};

// The host's group codes, of XData items and of selection filters.
namespace code {
inline constexpr int16_t kAppName = 1001;
inline constexpr int16_t kText = 1000;
inline constexpr int16_t kReal = 1040;
inline constexpr int16_t kInt16 = 1070;
inline constexpr int16_t kEntityType = 0;
inline constexpr int16_t kBlockName = 2;
inline constexpr int16_t kLayer = 8;
inline constexpr int16_t kGrouping = -4;  // "<AND", "OR>", ...
}  // namespace code

struct XItem {
  int16_t code = 0;
  XValue value;
  friend bool operator==(const XItem&, const XItem&) = default;
};

// A record as read by GetXData: item 0 is {1001, application name}.
using XRecord = std::vector<XItem>;

// A selection filter: group codes 0, 2, 8, -4, 1000, 1001, 1040, 1070 with
// their values, in order (the host's filter arrays zipped into pairs).
using Filter = std::vector<XItem>;

enum class ErrorCode {
  kNoSuchObject,
  kErased,
  kLockedLayer,
  kNoSuchKey,
  kDuplicateKey,
  kBadArgument,
  kWrongKind,
  kUserCancelled,
  kNoInput,
  kNotSupported,
  kOutsideSurface,
  kInUse,
};

// Every failure of a host call. The message is meant for a user.
class HostError : public Error {
 public:
  HostError(ErrorCode code, const std::string& message)
      : Error(message), code_(code) {}
  ErrorCode code() const { return code_; }

 private:
  ErrorCode code_;
};

// Index colours used by the system.
namespace color {
inline constexpr int kByBlock = 0;
inline constexpr int kRed = 1;
inline constexpr int kYellow = 2;
inline constexpr int kGreen = 3;
inline constexpr int kCyan = 4;
inline constexpr int kBlue = 5;
inline constexpr int kMagenta = 6;
inline constexpr int kWhite = 7;
inline constexpr int kByLayer = 256;
}  // namespace color

// Message box icons, buttons and answers (the host's codes).
namespace msgbox {
inline constexpr int kCritical = 16;
inline constexpr int kExclamation = 48;
inline constexpr int kInformation = 64;
inline constexpr int kOk = 0;
inline constexpr int kOkCancel = 1;
inline constexpr int kYesNo = 4;
inline constexpr int kAnswerOk = 1;
inline constexpr int kAnswerCancel = 2;
inline constexpr int kAnswerYes = 6;
inline constexpr int kAnswerNo = 7;
}  // namespace msgbox

// Text alignments (the host's acAlignment codes).
enum class TextAlignment : int {
  kLeft = 0,
  kCenter = 1,
  kRight = 2,
  kAligned = 3,
  kMiddle = 4,
  kFit = 5,
  kTopLeft = 6,
  kTopCenter = 7,
  kTopRight = 8,
  kMiddleLeft = 9,
  kMiddleCenter = 10,
  kMiddleRight = 11,
  kBottomLeft = 12,
  kBottomCenter = 13,
  kBottomRight = 14,
};

}  // namespace kestrana::host
