// A project with a gravity network "Sewer" and a pressure network "Water",
// the Standard view style active, and helpers to change the style and find
// what annotations were drawn.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "core/general.h"
#include "core/lists.h"
#include "core/node_record.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/text.h"
#include "host/host.h"
#include "support/network_elements.h"
#include "viewstyle/project_styles.h"
#include "viewstyle/view_style.h"

namespace kestrana::viewstyle::test {

class StyledProject : public ::testing::Test {
 protected:
  void SetUp() override { MakeProject("Metric"); }

  void MakeProject(const std::string& units) {
    doc_ = kestrana::test::NewFullProjectDocument(units);
    core::General::CreateNetworkDefintion(*doc_, "Sewer", "Gravity");
    core::General::CreateNetworkDefintion(*doc_, "Water", "Pressure");
    sewer_ = std::make_unique<kestrana::test::NetworkElements>(*doc_, "Sewer");
    water_ = std::make_unique<kestrana::test::NetworkElements>(*doc_, "Water");
    style_ = ViewStyle::GetActiveViewStyleSettingsArray(*doc_);
  }

  // Shows only the given items of the style being built (every other item
  // of fields 5 to 42 hidden, the arrows off).
  void ShowOnly(const std::vector<int>& fields) {
    for (const ItemInfo& item : Items()) {
      std::vector<std::string> pieces = core::Split(style_[item.field]);
      pieces[0] = kHidden;
      for (int field : fields)
        if (field == item.field) pieces[0] = kShown;
      std::string text = pieces[0];
      for (size_t i = 1; i < pieces.size(); ++i) text += ";" + pieces[i];
      style_[item.field] = text;
    }
  }
  void SetItem(int field, const std::string& text) { style_[field] = text; }
  core::TextTable Format() const {
    return ViewStyle::GetAnnotationFormatArray(style_);
  }
  // Stores the style being built as the only, active style and defines its
  // blocks.
  void StoreStyle() {
    ViewStyle::UpdateViewStylePoints(*doc_, {style_}, 1);
    ViewStyle::UpdateMoSpaceXdataForViewStyle(*doc_, StyleNameOf(style_),
                                              ReadStyleField(*doc_).visibility);
    ViewStyle::DefineAttributeBlocks(*doc_, Format());
  }
  void Apply(const std::string& network, double correction = 0) {
    ViewStyle::DefineAttributeBlocks(*doc_, Format());
    ViewStyle::ApplyAnnotationsToNetwork(*doc_, network, Format(), correction);
  }

  core::Record RecordOf(const host::Object& object) {
    return core::Record::ReadRequired(object);
  }
  // The block reference a link field names, or nullptr when it is empty.
  host::BlockReference* Linked(const host::Object& element, core::Field field) {
    std::vector<std::string> ids =
        core::ReferenceValues(RecordOf(element).Text(field));
    if (ids.empty()) return nullptr;
    return &host::As<host::BlockReference>(
        doc_->ObjectIdToObject(*core::ParseObjectId(ids[0])));
  }
  host::BlockReference* PipeAnnotation(const host::Object& pipe) {
    return Linked(pipe, core::PipeField::kAnnotationOIDRef);
  }
  host::BlockReference* PipeArrow(const host::Object& pipe) {
    return Linked(pipe, core::PipeField::kArrowOIDRef);
  }
  host::BlockReference* NodeAnnotation(const host::Object& node) {
    return Linked(node, core::NodeField::kAnnotationOIDRef);
  }
  // Live inserts of a block in model space.
  int CountInserts(const std::string& block) {
    int count = 0;
    for (host::Entity* e : doc_->ModelSpace().Entities())
      if (e->Kind() == host::EntityKind::kBlockReference &&
          host::As<host::BlockReference>(*e).Name() == block)
        ++count;
    return count;
  }
  static std::vector<std::string> Texts(const host::BlockReference& ref) {
    std::vector<std::string> texts;
    for (host::AttributeReference* a : ref.GetAttributes())
      texts.push_back(a->TextString());
    return texts;
  }

  std::unique_ptr<memhost::MemDocument> doc_;
  std::unique_ptr<kestrana::test::NetworkElements> sewer_, water_;
  ViewStyleSettings style_;
};

// Angles compared on the circle.
inline double AngleGap(double a, double b) {
  double d = std::fmod(std::abs(a - b), 2 * M_PI);
  return std::min(d, 2 * M_PI - d);
}

}  // namespace kestrana::viewstyle::test
