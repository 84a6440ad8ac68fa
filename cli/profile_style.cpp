// kestrana profile style list|show|import|export|delete: the profile styles
// of a drawing and their style files.
#include "commands/profile_style.h"

#include <algorithm>
#include <sstream>

#include "cli/command.h"
#include "cli/files.h"
#include "cli/json.h"
#include "cli/session.h"
#include "core/text.h"
#include "dxf/io.h"
#include "profile/profile_style_file.h"

namespace kestrana::cli {

namespace {

using commands::ProfileStyleSummary;

const char kDrawing[] = "the drawing (DRAWING.dxf)";
const char kStyleName[] = "the profile style name";

std::string ProfilesText(const ProfileStyleSummary& style) {
  if (style.profiles.empty()) return "none";
  std::string text = std::to_string(style.profiles.size()) + ":";
  for (const profile::StyleProfile& p : style.profiles)
    text += " \"" + p.name + "\"" +
            (p.network.empty() ? "" : " (" + p.network + ")") +
            (&p == &style.profiles.back() ? "" : ",");
  return text;
}

void ProfilesJson(JsonWriter& json, const ProfileStyleSummary& style) {
  json.BeginArray();
  for (const profile::StyleProfile& p : style.profiles) {
    json.BeginObject();
    json.Key("name").String(p.name);
    json.Key("network").String(p.network);
    json.EndObject();
  }
  json.EndArray();
}

int RunList(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"json"}, {});
  a.ExpectPositionals(1);
  const commands::ProfileStyleListResult result = commands::ProfileStyleList(
      *OpenProjectDrawing(a.Positional(0, kDrawing)), {});
  if (a.Flag("json")) {
    JsonWriter json;
    json.BeginArray();
    for (const ProfileStyleSummary& style : result.styles) {
      json.BeginObject().Key("name").String(style.name);
      json.Key("profiles");
      ProfilesJson(json, style);
      json.EndObject();
    }
    json.EndArray();
    io.out << json.Text();
    return 0;
  }
  if (result.styles.empty()) {
    io.out << "The drawing holds no profile styles.\n";
    return 0;
  }
  size_t width = 4;
  for (const ProfileStyleSummary& s : result.styles)
    width = std::max(width, s.name.size());
  io.out << "NAME" << std::string(width - 4 + 2, ' ') << "PROFILES\n";
  for (const ProfileStyleSummary& s : result.styles)
    io.out << s.name << std::string(width - s.name.size() + 2, ' ')
           << ProfilesText(s) << "\n";
  return 0;
}

int RunShow(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"json"}, {});
  a.ExpectPositionals(2);
  const commands::ProfileStyleShowResult result =
      commands::ProfileStyleShow(*OpenProjectDrawing(a.Positional(0, kDrawing)),
                                 {a.Positional(1, kStyleName)});
  if (a.Flag("json")) {
    // The items as the style file writes them.
    JsonWriter json;
    json.BeginObject().Key("name").String(result.style.name);
    json.Key("profiles");
    ProfilesJson(json, result.style);
    json.Key("items").BeginArray();
    for (const std::string& item : result.items) json.String(item);
    json.EndArray().EndObject();
    io.out << json.Text();
    return 0;
  }
  io.out << "profile style \"" << result.style.name
         << "\"; profiles drawn with it: " << ProfilesText(result.style)
         << "\n";
  for (const profile::ProfileStyleItemInfo& info :
       profile::CheckedProfileStyleItems()) {
    if (info.item == profile::ProfileStyleItem::kCombinedLabel) continue;
    const int k = static_cast<int>(info.item);
    io.out << "\nitem " << k << ", " << info.name << ": \"" << result.items[k]
           << "\"\n";
    const std::vector<std::string> values = core::Split(result.items[k]);
    for (size_t f = 0; f < info.fields.size(); ++f)
      io.out << "  " << f << " " << info.fields[f]
             << std::string(22 - std::min<size_t>(
                                     21, std::string(info.fields[f]).size()),
                            ' ')
             << (f < values.size() ? values[f] : "") << "\n";
  }
  return 0;
}

int RunExport(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"output"});
  a.ExpectPositionals(2);
  const std::optional<std::string> output = a.Option("output");
  const commands::ProfileStyleExportResult result =
      commands::ProfileStyleExport(
          *OpenProjectDrawing(a.Positional(0, kDrawing)),
          {a.Positional(1, kStyleName)});
  if (!output) {
    io.out << result.text;
    return 0;
  }
  WriteOutput(*output, result.text);
  io.out << "wrote profile style \"" << result.name << "\" to " << *output
         << "\n";
  return 0;
}

std::vector<std::string> ReadStyleItems(const std::string& path) {
  const std::string text = ReadInput(path, InputKind::kProfileStyle);
  try {
    return profile::ReadProfileStyleText(text);
  } catch (const profile::ProfileStyleFileError& e) {
    throw profile::ProfileStyleFileError(e.line(), path + ": " + e.what());
  }
}

int RunImport(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"name", "output"});
  a.ExpectPositionals(2);
  const std::string drawing = a.Positional(0, kDrawing);
  const std::optional<std::string> output = a.Option("output");
  commands::ProfileStyleImportOptions options;
  options.items = ReadStyleItems(a.Positional(1, "the style file"));
  options.name = a.Option("name");
  commands::ProfileStyleImportResult result;
  EditProjectDrawing(drawing, output, [&](memhost::MemDocument& document) {
    result = commands::ProfileStyleImport(document, options);
  });
  io.out << "imported profile style \"" << result.name << "\"\nwrote "
         << output.value_or(drawing) << "\n";
  return 0;
}

int RunDelete(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"output"});
  a.ExpectPositionals(2);
  const std::string drawing = a.Positional(0, kDrawing);
  const std::optional<std::string> output = a.Option("output");
  const std::string name = a.Positional(1, kStyleName);
  EditProjectDrawing(drawing, output, [&](memhost::MemDocument& document) {
    commands::ProfileStyleDelete(document, {name});
  });
  io.out << "deleted profile style \"" << name << "\"\nwrote "
         << output.value_or(drawing) << "\n";
  return 0;
}

Registrar list_command(
    {"profile style list",
     "the profile styles and the profiles drawn with them",
     "Usage: kestrana profile style list DRAWING [--json]\n\n"
     "Lists the profile styles of the drawing with the profiles drawn with\n"
     "each (name and network).\n\n"
     "  --json   one object per style: name, profiles\n",
     RunList});

Registrar show_command(
    {"profile style show", "every setting of one profile style",
     "Usage: kestrana profile style show DRAWING NAME [--json]\n\n"
     "Shows each item of the profile style NAME with its fields by name\n"
     "(docs/profile-style-file.md explains them).\n\n"
     "  --json   name, profiles and the 21 items as the drawing stores them\n",
     RunShow});

Registrar export_command(
    {"profile style export", "write a profile style as a style file",
     "Usage: kestrana profile style export DRAWING NAME [-o FILE]\n\n"
     "Writes the profile style NAME in the style file form\n"
     "(docs/profile-style-file.md), to FILE or to standard output. The\n"
     "drawing's own lists of profiles stay out of the file; `kestrana\n"
     "profile style import OTHER.dxf FILE` makes the same style elsewhere.\n\n"
     "  -o, --output FILE   write the style file to FILE\n",
     RunExport});

Registrar import_command(
    {"profile style import", "add a profile style from a style file",
     "Usage: kestrana profile style import DRAWING FILE [--name NAME] [-o "
     "OUT]\n"
     "\n"
     "Adds the profile style that the style file FILE describes\n"
     "(docs/profile-style-file.md). A wrong number of fields is reported\n"
     "with its line and item, a setting that must be a number and is not\n"
     "with its item and field; the drawing is then left as it was.\n\n"
     "  --name NAME         the style's name, instead of the file's\n"
     "  -o, --output OUT    write to OUT instead of DRAWING\n",
     RunImport});

Registrar delete_command(
    {"profile style delete", "delete a profile style no profile uses",
     "Usage: kestrana profile style delete DRAWING NAME [-o OUT]\n\n"
     "Deletes the profile style NAME. A style that profiles are drawn with\n"
     "is kept, and the profiles are named: delete them first.\n\n"
     "  -o, --output OUT    write to OUT instead of DRAWING\n",
     RunDelete});

}  // namespace

}  // namespace kestrana::cli
