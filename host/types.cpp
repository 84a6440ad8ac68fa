#include "host/types.h"

#include <algorithm>

namespace kestrana::host {

void Box2::Add(double x, double y) {
  if (empty) {
    min_x = max_x = x;
    min_y = max_y = y;
    empty = false;
    return;
  }
  min_x = std::min(min_x, x);
  min_y = std::min(min_y, y);
  max_x = std::max(max_x, x);
  max_y = std::max(max_y, y);
}

void Box2::Add(const Box2& other) {
  if (other.empty) return;
  Add(other.min_x, other.min_y);
  Add(other.max_x, other.max_y);
}

bool Box2::Contains(const Box2& inner) const {
  return !empty && !inner.empty && inner.min_x >= min_x &&
         inner.max_x <= max_x && inner.min_y >= min_y && inner.max_y <= max_y;
}

bool Box2::Overlaps(const Box2& other) const {
  return !empty && !other.empty && other.min_x <= max_x &&
         other.max_x >= min_x && other.min_y <= max_y && other.max_y >= min_y;
}

namespace {
[[noreturn]] void WrongValue(const char* wanted) {
  throw HostError(ErrorCode::kWrongKind,
                  std::string("XData value is not ") + wanted);
}
}  // namespace

const std::string& XValue::Text() const {
  if (!IsText()) WrongValue("a text");
  return std::get<std::string>(v_);
}

double XValue::Real() const {
  if (!IsReal()) WrongValue("a real");
  return std::get<double>(v_);
}

int16_t XValue::Int() const {
  if (!IsInt()) WrongValue("a 16-bit integer");
  return std::get<int16_t>(v_);
}

}  // namespace kestrana::host
