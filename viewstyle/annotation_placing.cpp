// Placing annotations and arrows, linking them to their elements, keeping
// them current and switching whole networks on and off.
#include <cmath>
#include <optional>
#include <stdexcept>
#include <string>

#include "core/general.h"
#include "core/guards.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/text.h"
#include "core/values.h"
#include "host/host.h"
#include "viewstyle/annotation_layout.h"
#include "viewstyle/annotation_record.h"
#include "viewstyle/view_style.h"

namespace kestrana::viewstyle {

namespace {

namespace col = format_column;
using core::General;
using core::NodeField;
using core::PipeField;

// The link fields an element keeps for its annotation and arrow.
struct LinkFields {
  core::Field annotation_label;
  core::Field annotation_id;
  std::optional<core::Field> arrow_label;
  std::optional<core::Field> arrow_id;
};

LinkFields LinksOf(ElementKind kind) {
  if (IsPipe(kind))
    return {PipeField::kAnnotationLabelRef, PipeField::kAnnotationOIDRef,
            core::Field(PipeField::kArrowLabelRef),
            core::Field(PipeField::kArrowOIDRef)};
  return {NodeField::kAnnotationLabelRef, NodeField::kAnnotationOIDRef,
          std::nullopt, std::nullopt};
}

// An element's record with what annotating it needs.
struct Element {
  core::Record record;
  ElementKind kind;
  std::string label;
};

// Fields 1 and 2 are the combined label and the type in pipe and node
// records alike.
Element ReadElement(const host::Entity& entity) {
  core::Record record = core::Record::ReadRequired(entity);
  std::string type = record.Has(PipeField::kElementType)
                         ? record.Text(PipeField::kElementType)
                         : "";
  std::optional<ElementKind> kind = KindOfElementType(type);
  if (!kind)
    throw std::invalid_argument("object " + std::to_string(entity.ObjectID()) +
                                " is not a network element (type \"" + type +
                                "\")");
  std::string label =
      General::EntityLabelFromCombined(record.Text(PipeField::kCombinedLabel));
  return {std::move(record), *kind, std::move(label)};
}

const char* AnchorKind(ElementKind kind) {
  return IsPipe(kind) ? core::kPipeKind : core::kNodeKind;
}

bool ShowsArrow(ElementKind kind, const core::TextTable& format) {
  return IsPipe(kind) &&
         core::NumericValue(format(ArrowField(kind), col::kShow)) == 1;
}

// Writes the record of an annotation or arrow of an element.
void WriteOwnRecord(host::Entity& reference, const char* type,
                    std::string_view network, const std::string& label,
                    host::ObjectId element_id) {
  core::Record record = core::Record::WithCodes(kAnnotationRecordCodes);
  // Annotations carry no kind; the type follows the element's label.
  record.SetText(
      AnnotationField::kCombinedLabel,
      core::CombinedLabel{"", std::string(network), label + type}.Format());
  record.SetText(AnnotationField::kElementType, type);
  record.SetText(AnnotationField::kElementLabelRef,
                 core::ReferenceEntry(label));
  record.SetText(AnnotationField::kElementOIDRef,
                 core::ReferenceEntry(core::IdText(element_id)));
  record.Write(reference);
}

// Texts on the attributes, one line each, stacked across the text
// direction around the anchor.
void PlaceAttributes(host::BlockReference& reference,
                     const std::vector<std::string>& texts,
                     const AnnoAnchor& anchor, ElementKind kind,
                     double text_height) {
  std::vector<host::AttributeReference*> attributes = reference.GetAttributes();
  const int count = static_cast<int>(texts.size());
  if (attributes.size() < texts.size())
    throw std::out_of_range(
        "the block \"" + reference.Name() + "\" has " +
        std::to_string(attributes.size()) + " attributes for " +
        std::to_string(count) +
        " annotation texts; its definition does not match the view style");
  std::vector<double> offsets = LineOffsets(
      count, PlacementMiddleIndex(kind, count), LinePitch(text_height));
  const double theta = anchor.text_rotation;
  for (int i = 0; i < count; ++i) {
    host::AttributeReference& attribute = *attributes[i];
    attribute.SetTextString(texts[i]);
    attribute.SetAlignment(host::TextAlignment::kMiddleCenter);
    const double y = offsets[i];
    const double z = attribute.TextAlignmentPoint().z;
    attribute.SetTextAlignmentPoint(
        {anchor.x - std::sin(theta) * y, anchor.y + std::cos(theta) * y, z});
    attribute.SetRotation(theta);
    attribute.Update();
  }
}

host::BlockReference& LinkedReference(host::Document& document,
                                      const std::string& link) {
  return host::As<host::BlockReference>(
      document.ObjectIdToObject(LinkedObjectId(link)));
}

// InsertAnnotations with the layer of the annotation reference: the
// current one, or `annotation_layer` when given.
void Insert(host::Document& document, host::Entity& entity,
            const std::vector<std::string>& texts, std::string_view net_name,
            double correction, const core::TextTable& format,
            const std::optional<std::string>& annotation_layer) {
  Element element = ReadElement(entity);
  const LinkFields links = LinksOf(element.kind);
  element.record.SetText(links.annotation_label, "");
  element.record.SetText(links.annotation_id, "");
  if (links.arrow_label) {
    element.record.SetText(*links.arrow_label, "");
    element.record.SetText(*links.arrow_id, "");
  }
  const AnnoAnchor anchor =
      ViewStyle::GetAnnoXYTheta(entity, AnchorKind(element.kind), correction);
  host::Block& model = document.ModelSpace();
  host::BlockReference& annotation = model.InsertBlock(
      {anchor.x, anchor.y, 0}, AttributeBlockName(element.kind), 1, 1, 1, 0);
  if (annotation_layer) annotation.SetLayer(*annotation_layer);

  // An element that shows nothing gets a bare reference, unlinked.
  if (!texts.empty()) {
    element.record.SetText(links.annotation_label,
                           core::ReferenceEntry(element.label + kAnnotation));
    element.record.SetText(
        links.annotation_id,
        core::ReferenceEntry(core::IdText(annotation.ObjectID())));
    WriteOwnRecord(annotation, kAnnotation, net_name, element.label,
                   entity.ObjectID());
    PlaceAttributes(annotation, texts, anchor, element.kind,
                    StyleTextHeight(format));
  }

  if (ShowsArrow(element.kind, format)) {
    host::BlockReference& arrow =
        model.InsertBlock({anchor.x, anchor.y, 0}, kDirectionArrowBlock, 1, 1,
                          1, anchor.arrow_rotation);
    arrow.SetLayer(std::string(net_name) + core::kArrowLayerSuffix);
    WriteOwnRecord(arrow, kArrow, net_name, element.label, entity.ObjectID());
    element.record.SetText(*links.arrow_label,
                           core::ReferenceEntry(element.label + kArrow));
    element.record.SetText(
        *links.arrow_id, core::ReferenceEntry(core::IdText(arrow.ObjectID())));
  }
  element.record.Write(entity);
}

}  // namespace

void ViewStyle::InsertAnnotations(
    host::Document& document, host::Entity& entity,
    const std::vector<std::string>& ar_anno_strings, std::string_view net_name,
    double correction_angle_for_cs, const core::TextTable& ar_anno_format) {
  Insert(document, entity, ar_anno_strings, net_name, correction_angle_for_cs,
         ar_anno_format, std::nullopt);
}

void ViewStyle::InsertAnnotationsForNewEntity(host::Document& document,
                                              host::Entity& entity,
                                              double correction_angle_for_cs) {
  InsertAnnotationsForNewEntity(
      document, entity, correction_angle_for_cs,
      GetAnnotationFormatArray(GetActiveViewStyleSettingsArray(document)));
}

void ViewStyle::InsertAnnotationsForNewEntity(host::Document& document,
                                              host::Entity& entity,
                                              double correction_angle_for_cs,
                                              const core::TextTable& format) {
  std::vector<std::string> texts =
      GetAnnotationStrings(document, entity, format);
  std::string network = General::EntityNetworkFromCombined(
      core::Record::ReadRequired(entity).Text(PipeField::kCombinedLabel));
  Insert(document, entity, texts, network, correction_angle_for_cs, format,
         network + core::kAnnotationLayerSuffix);
}

void ViewStyle::ApplyAnnotationsToNetwork(host::Document& document,
                                          std::string_view net_name,
                                          const core::TextTable& ar_anno_format,
                                          double correction_angle_for_cs) {
  // Taken before drawing, so the new references are not visited.
  std::vector<host::Entity*> objects =
      General::GetNetworkSet(document, net_name,
                             core::network_set::kElementsAndBlocks)
          .Entities();
  core::SavedActiveLayer previous(document);
  General::CreateStandardLayer(document, net_name, "Annotation");
  General::CreateStandardLayer(document, net_name, "Arrow");
  const std::string annotation_layer =
      std::string(net_name) + core::kAnnotationLayerSuffix;
  std::vector<core::LayerStatus> status =
      General::OpenLayerForWrite(document, annotation_layer);
  document.SetActiveLayer(document.GetLayers().Item(annotation_layer));

  for (host::Entity* object : objects) {
    std::optional<core::Record> record = core::Record::Read(*object);
    if (!record || !record->Has(PipeField::kElementType)) continue;
    std::string type = record->Text(PipeField::kElementType);
    if (KindOfElementType(type)) {
      InsertAnnotations(document, *object,
                        GetAnnotationStrings(document, *object, ar_anno_format),
                        net_name, correction_angle_for_cs, ar_anno_format);
    } else if (type == kAnnotation || type == kArrow) {
      object->Delete();
    }
  }

  // Back to the user's layer first: the active layer keeps its freeze.
  previous.Restore();
  General::RestoreLayerStatus(document, status);
}

void ViewStyle::UpdateAnnotationsAfterEditing(
    host::Document& document, std::string_view changed_oids_string,
    bool update_location) {
  core::TextTable format =
      GetAnnotationFormatArray(GetActiveViewStyleSettingsArray(document));
  const double correction = General::GetCorrectionAngleForCS(document);
  for (const std::string& id : core::ListEntries(changed_oids_string)) {
    auto& entity = host::As<host::Entity>(
        document.ObjectIdToObject(core::ToInt32(core::NumericValue(id))));
    UpdateAnnotationsAttributeBlock(
        document, entity, GetAnnotationStrings(document, entity, format),
        format, update_location, correction);
  }
}

void ViewStyle::UpdateAnnotationsAttributeBlock(
    host::Document& document, host::Entity& entity,
    const std::vector<std::string>& ar_anno_strings,
    const core::TextTable& ar_anno_format, bool update_block_location,
    double correction_angle_for_cs) {
  Element element = ReadElement(entity);
  const LinkFields links = LinksOf(element.kind);
  const std::string annotation_link = element.record.Text(links.annotation_id);
  host::BlockReference* annotation =
      annotation_link.empty() ? nullptr
                              : &LinkedReference(document, annotation_link);
  std::optional<AnnoAnchor> anchor;
  if (update_block_location) {
    anchor = GetAnnoXYTheta(entity, AnchorKind(element.kind),
                            correction_angle_for_cs);
    if (annotation) {
      host::Point3 at = annotation->InsertionPoint();
      annotation->SetInsertionPoint({anchor->x, anchor->y, at.z});
    }
  }
  if (annotation && !ar_anno_strings.empty()) {
    if (anchor) {
      PlaceAttributes(*annotation, ar_anno_strings, *anchor, element.kind,
                      StyleTextHeight(ar_anno_format));
    } else {
      std::vector<host::AttributeReference*> attributes =
          annotation->GetAttributes();
      if (attributes.size() < ar_anno_strings.size())
        throw std::out_of_range("the annotation of " + element.label +
                                " has fewer attributes than texts");
      for (size_t i = 0; i < ar_anno_strings.size(); ++i)
        attributes[i]->SetTextString(ar_anno_strings[i]);
    }
  }
  if (anchor && ShowsArrow(element.kind, ar_anno_format)) {
    const std::string arrow_link = element.record.Text(*links.arrow_id);
    if (!arrow_link.empty()) {
      host::BlockReference& arrow = LinkedReference(document, arrow_link);
      host::Point3 at = arrow.InsertionPoint();
      arrow.SetInsertionPoint({anchor->x, anchor->y, at.z});
      arrow.SetRotation(anchor->arrow_rotation);
    }
  }
}

void ViewStyle::ChangeNetworkVisibility(host::Document& document,
                                        std::string_view net_name, int action) {
  if (action != kHide && action != kShow) return;
  for (host::Entity* entity :
       General::GetNetworkSet(document, net_name,
                              core::network_set::kElementsAndBlocks)
           .Entities())
    entity->SetVisible(action == kShow);
}

}  // namespace kestrana::viewstyle
