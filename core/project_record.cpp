#include "core/project_record.h"

#include "host/host.h"

namespace kestrana::core {

std::optional<Record> FindProjectRecord(host::Document& document) {
  return Record::Read(document.ModelSpace());
}

Record ReadProjectRecord(host::Document& document) {
  std::optional<Record> record = FindProjectRecord(document);
  if (!record) throw MissingRecordError(kNoProjectMessage);
  return std::move(*record);
}

void WriteProjectRecord(host::Document& document, const Record& record) {
  record.Write(document.ModelSpace());
}

}  // namespace kestrana::core
