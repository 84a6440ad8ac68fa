#include "core/references.h"

#include <string>

#include "core/general.h"
#include "core/lists.h"
#include "host/host.h"

namespace kestrana::core {

host::Object& ObjectFromIdText(host::Document& document,
                               std::string_view id_text) {
  std::optional<host::ObjectId> id = ParseObjectId(id_text);
  if (!id)
    throw host::HostError(host::ErrorCode::kNoSuchObject,
                          "'" + std::string(id_text) +
                              "' is not an object ID, so it names no object");
  return document.ObjectIdToObject(*id);
}

host::Entity& EntityFromIdText(host::Document& document,
                               std::string_view id_text) {
  return host::As<host::Entity>(ObjectFromIdText(document, id_text));
}

host::Entity& EntityFromReference(host::Document& document,
                                  std::string_view reference_list) {
  std::vector<std::string> values = ReferenceValues(reference_list);
  if (values.empty())
    throw host::HostError(host::ErrorCode::kNoSuchObject,
                          "an empty reference names no object");
  return EntityFromIdText(document, values.front());
}

Record ReadRecordWithFields(const host::Object& object, int fields,
                            std::string_view kind) {
  std::string who = std::string(kind) + " " + std::to_string(object.ObjectID());
  std::optional<Record> record = Record::Read(object);
  if (!record) throw MissingRecordError("the " + who + " carries no record");
  if (record->Size() < fields)
    throw MissingRecordError("the record of " + who + " is damaged: it holds " +
                             std::to_string(record->Size()) + " of its " +
                             std::to_string(fields) + " fields");
  return std::move(*record);
}

std::string SingleReference(const Record& record, Field field) {
  const std::vector<std::string> values = ReferenceValues(record.Text(field));
  return values.empty() ? std::string() : values.front();
}

void AddLink(Record& record, LinkFields fields, std::string_view label,
             std::string_view id) {
  record.SetText(fields.labels,
                 record.Text(fields.labels) + ReferenceEntry(label));
  record.SetText(fields.ids, record.Text(fields.ids) + ReferenceEntry(id));
}

void DeleteLink(Record& record, LinkFields fields, std::string_view label,
                std::string_view id) {
  auto drop = [&](Field field, std::string_view value) {
    record.SetText(field, General::DeleteReferenceInReferenceString(
                              record.Text(field), RelatedTo(value),
                              reference_form::kReferenceList));
  };
  drop(fields.labels, label);
  drop(fields.ids, id);
}

void EraseIfPresent(host::Document& document, std::string_view id_text) {
  if (id_text.empty()) return;
  try {
    EntityFromIdText(document, id_text).Delete();
  } catch (const host::HostError&) {
    // Gone already.
  }
}

}  // namespace kestrana::core
