// Every record of a drawing gathered once, by object ID, for the audit and
// the repairs: reading a reference is then a lookup, not a host call that
// may fail on a damaged drawing.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/record.h"
#include "host/types.h"

namespace kestrana::host {
class Document;
class Entity;
}  // namespace kestrana::host

namespace kestrana::check {

struct Item {
  host::Entity* entity = nullptr;
  core::Record record;
  std::string type;     // field 2, "" when missing
  std::string network;  // piece 1 of field 1
  std::string label;    // piece 2 of field 1
  // The record has every field of its kind, and each numeric field reads as
  // a number; the checks of links and levels take only whole records.
  bool whole = false;
  std::string not_a_number;  // the first numeric field that is not: "9"
};

struct Network {
  std::string name;
  std::string type;  // "Gravity" or "Pressure", or what the list holds
};

class DrawingIndex {
 public:
  explicit DrawingIndex(host::Document& document);

  host::Document& document() const { return *document_; }
  const std::optional<core::Record>& project() const { return project_; }
  bool HasProject() const { return project_.has_value(); }
  const std::string& units() const { return units_; }
  // The networks of the project record, when its lists can be read.
  const std::vector<Network>& networks() const { return networks_; }
  const Network* FindNetwork(std::string_view name) const;

  // The record of the object an ID text names, or null.
  const Item* Find(std::string_view id_text) const;
  const Item* Find(host::ObjectId id) const;
  const std::map<host::ObjectId, Item>& items() const { return items_; }
  // Object IDs by element type, in drawing order.
  const std::vector<host::ObjectId>& OfType(std::string_view type) const;

  // The record of a kind has at least this many fields (application name
  // counted); 0 for types the audit does not know.
  static int RecordLength(std::string_view type);

 private:
  host::Document* document_;
  std::optional<core::Record> project_;
  std::string units_;
  std::vector<Network> networks_;
  std::map<host::ObjectId, Item> items_;
  std::map<std::string, std::vector<host::ObjectId>, std::less<>> by_type_;
};

// The number a text holds wholly, or nullopt (also for one beyond the range
// of a real, which the system's reading would refuse).
std::optional<double> SafeNumber(std::string_view text);

// A field's text, or "" when the record lacks it.
std::string FieldText(const core::Record& record, int field);

}  // namespace kestrana::check
