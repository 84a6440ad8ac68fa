#include "support/elements.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <stdexcept>

#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "core/text.h"
#include "host/host.h"
#include "library/library.h"

namespace kestrana::test {

host::Entity& ElementLabelled(host::Document& document,
                              const std::string& network,
                              const std::string& kind,
                              const std::string& label) {
  const int option = kind == core::kPipeKind ? 1 : 2;
  for (host::Entity* element :
       core::General::GetNetworkSet(document, network, option).Entities())
    if (core::General::EntityLabelFromCombined(
            core::Record::ReadRequired(*element).Text(
                core::PipeField::kCombinedLabel)) == label)
      return *element;
  throw std::runtime_error("no " + kind + " " + label + " in " + network);
}

std::vector<std::string> AnnotationTexts(host::Document& document,
                                         const host::Entity& element) {
  core::Record record = core::Record::ReadRequired(element);
  const bool pipe =
      record.Text(core::PipeField::kElementType).find(core::kPipeKind) !=
      std::string::npos;
  std::vector<std::string> ids = core::ReferenceValues(
      record.Text(pipe ? core::Field(core::PipeField::kAnnotationOIDRef)
                       : core::Field(core::NodeField::kAnnotationOIDRef)));
  std::vector<std::string> texts;
  if (ids.empty()) return texts;
  auto& annotation = host::As<host::BlockReference>(
      document.ObjectIdToObject(std::stoi(ids.front())));
  for (host::AttributeReference* a : annotation.GetAttributes())
    texts.push_back(a->TextString());
  return texts;
}

std::string MaterialUses(host::Document& document,
                         const std::string& material) {
  const core::TextTable table = library::Library::GetMaterialsArray(document);
  for (int row = 0; row < table.Rows(); ++row)
    if (table(row, library::materials_column::kName) == material)
      return table(row, library::materials_column::kCount);
  return "";
}

std::vector<std::string> DanglingLinks(host::Document& doc) {
  std::vector<std::string> found;
  for (host::Entity* e : doc.ModelSpace().Entities()) {
    std::optional<core::Record> record = core::Record::Read(*e);
    if (!record) continue;
    for (int f = 1; f < record->Size(); ++f) {
      if (!record->Value(f).IsText()) continue;
      for (const std::string& piece : core::Split(record->Text(f))) {
        if (piece.rfind("RelatedTo", 0) != 0) continue;
        const std::string id = piece.substr(9);
        uint64_t value = 0;
        auto [end, ec] =
            std::from_chars(id.data(), id.data() + id.size(), value);
        if (ec != std::errc() || end != id.data() + id.size() || id.size() < 9)
          continue;  // a label, not an ID
        try {
          core::EntityFromIdText(doc, id);
        } catch (const host::HostError&) {
          found.push_back(record->Text(1) + " field " + std::to_string(f) +
                          " names " + id + ", which is gone");
        }
      }
    }
  }
  return found;
}

std::vector<std::string> PipeEndsOffNodes(host::Document& document) {
  using core::PipeField;
  std::vector<std::string> found;
  for (host::Entity* e : document.ModelSpace().Entities()) {
    std::optional<core::Record> record = core::Record::Read(*e);
    if (!record || !record->Has(PipeField::kElementType) ||
        !record->Value(PipeField::kElementType).IsText() ||
        record->Text(PipeField::kElementType).find(core::kPipeKind) ==
            std::string::npos)
      continue;
    const std::vector<double> xy = host::As<host::LwPolyline>(*e).Coordinates();
    auto check = [&](const char* end, size_t at, PipeField node_field) {
      const host::Point3 p =
          host::As<host::BlockReference>(
              core::EntityFromReference(document, record->Text(node_field)))
              .InsertionPoint();
      const double off = std::hypot(xy[at] - p.x, xy[at + 1] - p.y);
      if (off > 0.00001)
        found.push_back(record->Text(PipeField::kCombinedLabel) + " " + end +
                        " off its node by " + std::to_string(off));
    };
    check("starts", 0, PipeField::kStartNodeOID);
    check("ends", xy.size() - 2, PipeField::kEndNodeOID);
  }
  return found;
}

}  // namespace kestrana::test
