// Class ViewStyle: view styles and the plan annotations they govern. A style
// is a record on a hidden marker point (view_style_record.h); the project
// record's field 1 names the active style, the network visibility and the
// markers. From the active style come the annotation format array, the five
// block definitions, the annotation texts of every element and their
// placement. Nothing is kept between calls.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/text_table.h"
#include "host/types.h"
#include "viewstyle/view_style_record.h"

namespace kestrana::host {
class Document;
class Entity;
class Form;
}  // namespace kestrana::host

namespace kestrana::viewstyle {

// Columns of the annotation format array (rows are the record's fields).
namespace format_column {
inline constexpr int kShow = 0;  // also the text style (row 3), height (4)
inline constexpr int kPrefix = 1;
inline constexpr int kSuffix = 2;
inline constexpr int kPrecision = 3;
inline constexpr int kPattern = 4;   // number items
inline constexpr int kDecimals = 4;  // slope items, as stored
inline constexpr int kNotation = 5;  // slope items
inline constexpr int kCoordinatesPrecision = 1;
inline constexpr int kCoordinatesPattern = 2;
inline constexpr int kColumns = 6;
}  // namespace format_column
inline constexpr int kFormatRows = kViewStyleRecordLength;

// Where an annotation goes: the insertion point, the text rotation and the
// direction of the pipe's arrow (0 for nodes), radians.
struct AnnoAnchor {
  double x = 0;
  double y = 0;
  double text_rotation = 0;
  double arrow_rotation = 0;
  friend bool operator==(const AnnoAnchor&, const AnnoAnchor&) = default;
};

// Annotation lines of gravity pipes, pressure pipes, gravity nodes and
// pressure nodes.
using AnnotationCounts = std::array<int16_t, 4>;

// Actions of ChangeNetworkVisibility.
inline constexpr int kHide = 0;
inline constexpr int kShow = 1;

class ViewStyle {
 public:
  // --- Settings and formats ----------------------------------------------

  // The record of the active style; 43 empty texts when no marker carries
  // the active name.
  static ViewStyleSettings GetActiveViewStyleSettingsArray(
      host::Document& document);
  // The record brought to 43 fields (a 41-field record gets the coordinate
  // items "0;2;0"); std::out_of_range for more than 43.
  static ViewStyleSettings ValidateViewStyleSettings(
      ViewStyleSettings settings_array);
  // The 43 x 6 annotation format array of a record.
  static core::TextTable GetAnnotationFormatArray(
      const ViewStyleSettings& ar_view_style_settings);
  static std::string GetDecimalsString(std::string_view precision_index,
                                       std::string_view decimals_index);
  static std::string GetPercentString(std::string_view precision_index,
                                      std::string_view decimals_index);
  // Picks the style named `style_name` among the first `count_view_styles`
  // into `active_view_style_settings` and fills the settings dialog from
  // it. Controls are reached by name; a missing one is the host's error.
  static void ActivateViewStyle(
      std::string_view style_name,
      const std::vector<ViewStyleSettings>& ar_view_styles,
      host::Form& frm_view_style_settings, int count_view_styles,
      ViewStyleSettings& active_view_style_settings);
  // Stores a style on a new marker and lists it in the project record;
  // answers the marker's ID.
  static host::ObjectId CreateViewStyle(host::Document& document,
                                        const ViewStyleSettings& ar_parameters);
  // Replaces every stored style by the first `count_view_styles` given.
  static void UpdateViewStylePoints(
      host::Document& document,
      const std::vector<ViewStyleSettings>& ar_view_styles,
      int count_view_styles);
  static void UpdateMoSpaceXdataForViewStyle(
      host::Document& document, std::string_view active_view_style_name,
      std::string_view final_networks_visibility);

  // --- Annotation blocks and strings -------------------------------------

  static AnnotationCounts GetNumberOfAnnotationStrings(
      const core::TextTable& ar_annotation_format);
  // Rebuilds the five block definitions with the style's text style, which
  // must exist (the host's error before any block is touched).
  static void DefineAttributeBlocks(host::Document& document,
                                    const core::TextTable& ar_anno_format);
  static void InitializeAttributeBlocks(
      host::Document& document,
      const AnnotationCounts& ar_count_attribute_strings,
      const core::TextTable& ar_anno_format);
  // The annotation texts of one element, one per shown item; empty when
  // nothing is shown or the entity is not an element.
  static std::vector<std::string> GetAnnotationStrings(
      host::Document& document, host::Entity& entity,
      const core::TextTable& ar_anno_format);
  // `element_type` "Pipe" for a pipe polyline; anything else is a node.
  static AnnoAnchor GetAnnoXYTheta(host::Entity& element_entity,
                                   std::string_view element_type,
                                   double correction_angle_for_cs);
  static double GetTextRotation(double x1, double y1, double x2, double y2,
                                double correction_angle_for_cs);
  static double GetArrowRotation(double x1, double y1, double x2, double y2);

  // --- Placing and updating annotations ----------------------------------

  // Deletes the network's annotations and arrows and draws them anew.
  static void ApplyAnnotationsToNetwork(host::Document& document,
                                        std::string_view net_name,
                                        const core::TextTable& ar_anno_format,
                                        double correction_angle_for_cs);
  // Inserts one element's annotation (on the current layer) and arrow from
  // texts already made, and links them both ways.
  static void InsertAnnotations(host::Document& document, host::Entity& entity,
                                const std::vector<std::string>& ar_anno_strings,
                                std::string_view net_name,
                                double correction_angle_for_cs,
                                const core::TextTable& ar_anno_format);
  // The same for a new element, with the active style, on the network's
  // annotation layer.
  static void InsertAnnotationsForNewEntity(host::Document& document,
                                            host::Entity& entity,
                                            double correction_angle_for_cs);
  // The same with the active style's format array already read, for a
  // batch of new elements.
  static void InsertAnnotationsForNewEntity(
      host::Document& document, host::Entity& entity,
      double correction_angle_for_cs, const core::TextTable& ar_anno_format);
  // Refreshes the annotations of the elements of an object-ID list; with
  // `update_location` they are placed anew as well.
  static void UpdateAnnotationsAfterEditing(
      host::Document& document, std::string_view changed_oids_string,
      bool update_location);
  static void UpdateAnnotationsAttributeBlock(
      host::Document& document, host::Entity& entity,
      const std::vector<std::string>& ar_anno_strings,
      const core::TextTable& ar_anno_format, bool update_block_location,
      double correction_angle_for_cs);
  // kHide or kShow every element, annotation and arrow of the network;
  // other actions change nothing.
  static void ChangeNetworkVisibility(host::Document& document,
                                      std::string_view net_name, int action);
};

}  // namespace kestrana::viewstyle
