#include "support/elements.h"

#include <stdexcept>

#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "host/host.h"

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

}  // namespace kestrana::test
