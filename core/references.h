// Following the links that records store: object IDs written as text, and
// the records found at their ends. A link that names nothing is the host's
// error, as when the host is asked for an object that is gone.
#pragma once

#include <string>
#include <string_view>

#include "core/record.h"

namespace kestrana::host {
class Document;
class Entity;
class Object;
}  // namespace kestrana::host

namespace kestrana::core {

// The object whose ID an ID text holds. HostError(kNoSuchObject) when the
// text is not a 32-bit whole number; the host's error when no live object
// has the ID.
host::Object& ObjectFromIdText(host::Document& document,
                               std::string_view id_text);
// The same, for a drawing entity (HostError(kWrongKind) for another object).
host::Entity& EntityFromIdText(host::Document& document,
                               std::string_view id_text);
// The entity named by the first entry of a reference list
// (";RelatedTo<ID>..."); HostError(kNoSuchObject) for an empty list.
host::Entity& EntityFromReference(host::Document& document,
                                  std::string_view reference_list);

// The value a single-entry reference field names (";RelatedTo<value>"), or
// "" for an empty field.
std::string SingleReference(const Record& record, Field field);
// Appends ";RelatedTo<label>" and ";RelatedTo<id>" to the two fields.
void AddLink(Record& record, LinkFields fields, std::string_view label,
             std::string_view id);
// Drops the entries that end with "RelatedTo<label>" and "RelatedTo<id>".
void DeleteLink(Record& record, LinkFields fields, std::string_view label,
                std::string_view id);

// Erases the entity an ID text names; nothing when it is gone already.
void EraseIfPresent(host::Document& document, std::string_view id_text);

// The object's record, which must hold at least `fields` fields (the
// application name counted). MissingRecordError naming the object and
// `kind` ("pipe", "crossing annotation") when it has no record or a shorter
// one, so that a damaged drawing is reported by what is damaged.
Record ReadRecordWithFields(const host::Object& object, int fields,
                            std::string_view kind);

}  // namespace kestrana::core
