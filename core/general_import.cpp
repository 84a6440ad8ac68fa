// Text import, string rules and small utilities.
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "core/general.h"
#include "core/messages.h"
#include "core/node_record.h"
#include "core/record.h"
#include "core/text.h"
#include "host/host.h"
#include "types/shp_pipe.h"

namespace kestrana::core {

namespace {
// Positions in a pipe array, each followed by ";"; empty pieces name none.
std::vector<size_t> Positions(std::string_view list) {
  std::vector<size_t> positions;
  for (const std::string& piece : Split(list)) {
    if (piece.empty()) continue;
    positions.push_back(static_cast<size_t>(ToInt32(NumericValue(piece))));
  }
  return positions;
}

const types::ShpPipe& PipeAt(const std::vector<types::ShpPipe>& pipes,
                             size_t index) {
  if (index >= pipes.size())
    throw std::out_of_range("pipe position " + std::to_string(index) +
                            " is outside the " + std::to_string(pipes.size()) +
                            " pipes");
  return pipes[index];
}
}  // namespace

std::vector<std::string> General::ReadTextDataFromString(
    const std::string& file_name, std::string_view start_string) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file_name, error)) return {};
  std::ifstream file(file_name, std::ios::binary);
  if (!file) return {};
  std::vector<std::string> lines{""};
  bool started = false;
  std::string line;
  while (std::getline(file, line)) {
    // Files written on Windows end their lines with CR LF.
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (started) {
      if (line.empty()) break;
      if (line[0] != ';') {
        lines.back() = CleanExtraSpaces(line);
        lines.emplace_back();
      }
    }
    if (line.compare(0, start_string.size(), start_string) == 0) started = true;
  }
  return lines;
}

std::string General::GetDelimiter(std::string_view text_string) {
  if (text_string.find('\t') != std::string_view::npos) return "tab";
  if (text_string.find(',') != std::string_view::npos) return "comma";
  if (text_string.find(';') != std::string_view::npos) return "semicolon";
  return "space";
}

std::vector<std::string> General::SplitTextByDelimiterName(
    std::string_view text, std::string_view delimiter) {
  char separator;
  if (delimiter == "tab")
    separator = '\t';
  else if (delimiter == "comma")
    separator = ',';
  else if (delimiter == "semicolon")
    separator = ';';
  else if (delimiter == "space")
    separator = ' ';
  else
    return {std::string(text)};
  std::vector<std::string> fields = Split(text, separator);
  if (fields.size() > 1)
    for (std::string& field : fields) field = CleanCote(field);
  return fields;
}

std::string General::CleanExtraSpaces(std::string_view my_string) {
  std::string text(my_string);
  std::vector<std::string> pieces = Split(my_string, ' ');
  if (pieces.size() > 1) {
    text.clear();
    for (const std::string& piece : pieces)
      if (!piece.empty()) text += piece + " ";
  }
  size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string General::CleanCote(std::string_view my_string) {
  if (!my_string.empty() && my_string.front() == '"')
    my_string.remove_prefix(1);
  if (!my_string.empty() && my_string.back() == '"') my_string.remove_suffix(1);
  return std::string(my_string);
}

double General::CleanNumericString(std::string_view my_string) {
  // Walks the original positions over the shrinking text, so of two
  // adjacent separators the second one stays: "1,,2" reads as 1.
  std::string text(my_string);
  for (size_t position = 0; position < my_string.size(); ++position) {
    if (position < text.size() &&
        (text[position] == ',' || text[position] == '"'))
      text.erase(position, 1);
  }
  return NumericValue(text);
}

bool General::CheckTextForBannedCharacters(std::string_view my_string,
                                           int char_index) {
  std::string_view banned =
      char_index == banned_characters::kSeparatorOnly ? ";" : ":;\"/\\><*|?,=";
  return my_string.find_first_of(banned) != std::string_view::npos;
}

std::vector<std::string> General::BubbleSort(std::vector<std::string> strings) {
  // Exchanging only out-of-order neighbours keeps equal texts in place, which
  // a stable sort does the same way, in fewer steps.
  std::stable_sort(strings.begin(), strings.end());
  return strings;
}

TextTable General::GetDataFromGrid(const host::DataGrid& my_grid) {
  TextTable table(my_grid.RowCount(), my_grid.ColumnCount());
  for (int row = 0; row < table.Rows(); ++row)
    for (int column = 0; column < table.Columns(); ++column)
      table(row, column) = my_grid.Value(row, column);
  return table;
}

double General::GetLeastInvert(std::string_view pipes_at_start_indeces,
                               std::string_view pipes_at_end_indeces,
                               const std::vector<types::ShpPipe>& ar_pipes) {
  if (pipes_at_start_indeces.empty() && pipes_at_end_indeces.empty()) return 0;
  double least = 1000000;  // answered when the lists name no pipe
  for (size_t i : Positions(pipes_at_start_indeces))
    least = std::min(least, PipeAt(ar_pipes, i).StartInvert);
  for (size_t i : Positions(pipes_at_end_indeces))
    least = std::min(least, PipeAt(ar_pipes, i).EndInvert);
  return least;
}

double General::GetMaxRise(std::string_view pipes_indeces,
                           const std::vector<types::ShpPipe>& ar_pipes) {
  double most = 0;
  for (size_t i : Positions(pipes_indeces))
    most = std::max(most, PipeAt(ar_pipes, i).Rise);
  return most;
}

std::vector<std::string> General::GetSurfaceNames(host::Document& document,
                                                  int err_msg_index) {
  std::vector<std::string> names;
  try {
    host::Application& application = document.GetApplication();
    host::Surfaces& surfaces =
        application.GetInterfaceObject(GetAeccAppString(application))
            .ActiveDocument()
            .GetSurfaces();
    for (int i = 0; i < surfaces.Count(); ++i)
      names.push_back(surfaces.Item(i).Name());
  } catch (const host::HostError&) {
    // No civil extension for this release, or none installed.
    if (err_msg_index == 1)
      ShowMessage(document, "Error loading AutoCAD Civil 3D application!",
                  host::msgbox::kCritical);
    return {};
  }
  if (names.empty() && err_msg_index == 1)
    ShowMessage(document, "No surfaces are defined!", host::msgbox::kCritical);
  return names;
}

double General::GetGroundLevelAtNode(host::Document& document,
                                     host::ObjectId node_oid) {
  return Record::ReadRequired(document.ObjectIdToObject(node_oid))
      .Number(NodeField::kGroundLevel);
}

}  // namespace kestrana::core
