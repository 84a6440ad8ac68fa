// View style records: the active style, validation, the annotation format
// array, number patterns, the settings dialog and the stored styles.
#include <stdexcept>
#include <string>

#include "core/lists.h"
#include "core/names.h"
#include "core/project_record.h"
#include "core/project_setup.h"
#include "core/record.h"
#include "core/text.h"
#include "core/values.h"
#include "host/host.h"
#include "viewstyle/project_styles.h"
#include "viewstyle/view_style.h"

namespace kestrana::viewstyle {

namespace {

using F = ViewStyleField;
constexpr int Index(F field) { return static_cast<int>(field); }

// A piece of an item text; "" when the text has fewer pieces.
std::string Piece(const std::vector<std::string>& pieces, int index) {
  return index < static_cast<int>(pieces.size()) ? pieces[index] : "";
}

host::XRecord XRecordOf(const ViewStyleSettings& settings) {
  if (settings.size() < static_cast<size_t>(kViewStyleRecordLength))
    throw std::out_of_range("a view style has 43 settings, not " +
                            std::to_string(settings.size()));
  const std::string& app = settings[Index(F::kApplicationName)];
  if (app != core::kAppName)
    throw std::invalid_argument("a view style record starts with \"" +
                                std::string(core::kAppName) + "\", not \"" +
                                app + "\"");
  // Every field after the application name is a text.
  host::XRecord record{{core::code::kAppName, host::XValue(app)}};
  for (int i = Index(F::kStyleName); i < kViewStyleRecordLength; ++i)
    record.push_back({core::code::kText, host::XValue(settings[i])});
  return record;
}

// Pieces 0 and 1 of the project record's field 1 and the marker IDs.
void WriteStyleField(host::Document& document,
                     const core::ViewStylesField& field) {
  core::Record project = core::ReadProjectRecord(document);
  project.SetText(core::ProjectField::kViewStyles, field.Format());
  core::WriteProjectRecord(document, project);
}

}  // namespace

ViewStyleSettings ViewStyle::GetActiveViewStyleSettingsArray(
    host::Document& document) {
  core::ViewStylesField field = ReadStyleField(document);
  // Stops at the first match: later markers are not read.
  for (const std::string& marker : field.markers) {
    ViewStyleSettings settings = ReadMarkerSettings(document, marker);
    if (StyleNameOf(settings) == field.active) return settings;
  }
  return ViewStyleSettings(kViewStyleRecordLength);
}

ViewStyleSettings ViewStyle::ValidateViewStyleSettings(
    ViewStyleSettings settings_array) {
  const int size = static_cast<int>(settings_array.size());
  if (size == kViewStyleRecordLength) return settings_array;
  if (size > kViewStyleRecordLength)
    throw std::out_of_range("a view style record has at most 43 fields, not " +
                            std::to_string(size));
  settings_array.resize(kViewStyleRecordLength);
  settings_array[Index(F::kGravityNodeCoordinates)] = kCoordinatesDefault;
  settings_array[Index(F::kPressureNodeCoordinates)] = kCoordinatesDefault;
  return settings_array;
}

core::TextTable ViewStyle::GetAnnotationFormatArray(
    const ViewStyleSettings& ar_view_style_settings) {
  namespace col = format_column;
  const ViewStyleSettings& s = ar_view_style_settings;
  core::TextTable format(kFormatRows, col::kColumns);
  format(Index(F::kTextStyle), col::kShow) = s.at(Index(F::kTextStyle));
  format(Index(F::kTextHeight), col::kShow) = s.at(Index(F::kTextHeight));
  for (const ItemInfo& item : Items()) {
    const std::string& text = s.at(item.field);
    std::vector<std::string> p = core::Split(text);
    auto set = [&](int column, std::string value) {
      format(item.field, column) = std::move(value);
    };
    switch (item.form) {
      case ItemForm::kFlag:
        set(col::kShow, text);
        break;
      case ItemForm::kCoordinates: {
        std::string precision = Piece(p, coordinates_piece::kPrecision);
        set(col::kShow, Piece(p, coordinates_piece::kShow));
        set(col::kCoordinatesPrecision, precision);
        set(col::kCoordinatesPattern,
            GetDecimalsString(precision,
                              Piece(p, coordinates_piece::kDecimals)));
        break;
      }
      case ItemForm::kText:
      case ItemForm::kNumber:
      case ItemForm::kSlope:
        set(col::kShow, Piece(p, item_piece::kShow));
        set(col::kPrefix, Piece(p, item_piece::kPrefix));
        set(col::kSuffix, Piece(p, item_piece::kSuffix));
        if (item.form == ItemForm::kNumber) {
          set(col::kPrecision, Piece(p, item_piece::kPrecision));
          set(col::kPattern,
              GetDecimalsString(Piece(p, item_piece::kPrecision),
                                Piece(p, item_piece::kDecimals)));
        } else if (item.form == ItemForm::kSlope) {
          set(col::kPrecision, Piece(p, item_piece::kPrecision));
          set(col::kDecimals, Piece(p, item_piece::kDecimals));
          set(col::kNotation, Piece(p, item_piece::kNotation));
        }
        break;
    }
  }
  return format;
}

std::string ViewStyle::GetDecimalsString(std::string_view precision_index,
                                         std::string_view decimals_index) {
  return core::DecimalsPattern(precision_index, decimals_index);
}

std::string ViewStyle::GetPercentString(std::string_view precision_index,
                                        std::string_view decimals_index) {
  return core::PercentPattern(precision_index, decimals_index);
}

void ViewStyle::ActivateViewStyle(
    std::string_view style_name,
    const std::vector<ViewStyleSettings>& ar_view_styles,
    host::Form& frm_view_style_settings, int count_view_styles,
    ViewStyleSettings& active_view_style_settings) {
  for (int i = 0; i < count_view_styles; ++i) {
    if (StyleNameOf(ar_view_styles.at(i)) != style_name) continue;
    active_view_style_settings = ar_view_styles[i];
    break;
  }
  const ViewStyleSettings& s = active_view_style_settings;
  host::Form& form = frm_view_style_settings;

  host::ComboBox& text_styles = form.GetComboBox("cmb_TextStyle");
  const std::string& text_style = s.at(Index(F::kTextStyle));
  bool listed = false;
  for (int i = 0; i < text_styles.ListCount() && !listed; ++i) {
    if (text_styles.List(i) != text_style) continue;
    text_styles.SetListIndex(i);
    listed = true;
  }
  // A style whose text style the drawing lacks shows the host's default.
  if (!listed) text_styles.SetText("Standard");

  form.GetTextBox("txt_TextHeight")
      .SetText(core::FormatNumber(
          core::NumericValue(s.at(Index(F::kTextHeight))), "0.0##"));

  for (const ItemInfo& item : Items()) {
    std::string show = core::Split(s.at(item.field))[item_piece::kShow];
    form.GetCheckBox(item.check_box)
        .SetValue(core::ToInt16(core::NumericValue(show)));
  }

  // "Standard" can be neither deleted nor renamed.
  const bool standard =
      form.GetComboBox("cmb_StyleName").Text() == kStandardViewStyleName;
  form.GetCommandButton("cmd_DeleteStyle").SetEnabled(!standard);
  form.GetCommandButton("cmd_RenameStyle").SetEnabled(!standard);
}

host::ObjectId ViewStyle::CreateViewStyle(
    host::Document& document, const ViewStyleSettings& ar_parameters) {
  host::XRecord record = XRecordOf(ar_parameters);
  host::ObjectId id = core::AddMarkerPoint(document, record).ObjectID();
  core::ViewStylesField field = ReadStyleField(document);
  field.markers.push_back(core::IdText(id));
  WriteStyleField(document, field);
  return id;
}

void ViewStyle::UpdateViewStylePoints(
    host::Document& document,
    const std::vector<ViewStyleSettings>& ar_view_styles,
    int count_view_styles) {
  core::ViewStylesField field = ReadStyleField(document);
  for (const std::string& marker : field.markers)
    host::As<host::Entity>(
        document.ObjectIdToObject(core::ToInt32(core::NumericValue(marker))))
        .Delete();
  field.markers.clear();
  WriteStyleField(document, field);
  for (int i = 0; i < count_view_styles; ++i)
    CreateViewStyle(document, ar_view_styles.at(i));
}

void ViewStyle::UpdateMoSpaceXdataForViewStyle(
    host::Document& document, std::string_view active_view_style_name,
    std::string_view final_networks_visibility) {
  core::ViewStylesField field = ReadStyleField(document);
  field.active = active_view_style_name;
  field.visibility = final_networks_visibility;
  WriteStyleField(document, field);
}

}  // namespace kestrana::viewstyle
