// A hash map from integer keys to pointers held in one array (open
// addressing, linear probing): the document's maps from handles and IDs to
// objects, which a drawing fills with tens of thousands of entries, without
// an allocation per entry.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestrana::memhost {

template <class Key, class Value>
class FlatMap {
 public:
  size_t size() const { return size_; }
  bool contains(Key key) const { return Locate(key) != kNone; }
  // The value of `key`, or nullptr when the key is absent. A present key
  // may hold a null value.
  Value* find(Key key) {
    size_t at = Locate(key);
    return at == kNone ? nullptr : &slots_[at].value;
  }
  const Value* find(Key key) const {
    size_t at = Locate(key);
    return at == kNone ? nullptr : &slots_[at].value;
  }
  // Inserts or replaces.
  void set(Key key, Value value) {
    if ((used_ + 1) * 4 > slots_.size() * 3) Grow();
    size_t mask = slots_.size() - 1;
    size_t reuse = kNone;
    for (size_t at = Hash(key) & mask;; at = (at + 1) & mask) {
      Slot& s = slots_[at];
      if (s.state == State::kFull && s.key == key) {
        s.value = value;
        return;
      }
      if (s.state == State::kErased && reuse == kNone) reuse = at;
      if (s.state == State::kEmpty) {
        if (reuse == kNone) {
          reuse = at;
          ++used_;
        }
        slots_[reuse] = Slot{key, value, State::kFull};
        ++size_;
        return;
      }
    }
  }
  bool erase(Key key) {
    size_t at = Locate(key);
    if (at == kNone) return false;
    slots_[at].state = State::kErased;
    --size_;
    return true;
  }

 private:
  enum class State : uint8_t { kEmpty, kFull, kErased };
  struct Slot {
    Key key{};
    Value value{};
    State state = State::kEmpty;
  };
  static constexpr size_t kNone = ~size_t{0};

  static size_t Hash(Key key) {
    // Handles and IDs are often consecutive: mix them before masking.
    uint64_t x = static_cast<uint64_t>(key) + 0x9E3779B97F4A7C15ull;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ull;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBull;
    return static_cast<size_t>(x ^ (x >> 31));
  }

  size_t Locate(Key key) const {
    if (slots_.empty()) return kNone;
    size_t mask = slots_.size() - 1;
    for (size_t at = Hash(key) & mask;; at = (at + 1) & mask) {
      const Slot& s = slots_[at];
      if (s.state == State::kEmpty) return kNone;
      if (s.state == State::kFull && s.key == key) return at;
    }
  }

  // Doubles when live entries fill half the table; otherwise rebuilds at
  // the same size to clear erased slots.
  void Grow() {
    size_t capacity = slots_.empty() ? 64 : slots_.size();
    if (size_ * 2 >= capacity) capacity *= 2;
    std::vector<Slot> old(capacity);
    old.swap(slots_);
    size_ = used_ = 0;
    for (const Slot& s : old)
      if (s.state == State::kFull) set(s.key, s.value);
  }

  std::vector<Slot> slots_;
  size_t size_ = 0;  // live entries
  size_t used_ = 0;  // live and erased slots
};

}  // namespace kestrana::memhost
