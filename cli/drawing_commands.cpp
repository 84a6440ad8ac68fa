// info, dump and save: reading drawings and writing them back.
#include <sstream>

#include "cli/command.h"
#include "cli/info.h"
#include "cli/json.h"
#include "cli/session.h"
#include "core/text.h"
#include "dxf/io.h"
#include "dxf/tags.h"

namespace kestrana::cli {

namespace {

std::vector<InfoSectionFn>& Extensions() {
  static std::vector<InfoSectionFn> extensions;
  return extensions;
}

std::string Pad(const std::string& s, size_t width) {
  return s.size() >= width ? s + " " : s + std::string(width - s.size(), ' ');
}

std::string ValueText(const host::XValue& v) {
  if (v.IsText()) return v.Text();
  if (v.IsReal()) return dxf::FormatReal(v.Real());
  return std::to_string(v.Int());
}

}  // namespace

InfoSectionRegistrar::InfoSectionRegistrar(InfoSectionFn fn) {
  Extensions().push_back(std::move(fn));
}

InfoResult Info(const InfoOptions& options) {
  auto doc = LoadDrawingFile(options.drawing);
  InfoResult result;
  result.drawing = options.drawing;
  result.summary = dxf::Summarize(*doc);
  for (const auto& fn : Extensions())
    if (auto section = fn(*doc)) result.sections.push_back(std::move(*section));
  return result;
}

std::string FormatInfo(const InfoResult& r, bool json) {
  const dxf::DrawingSummary& s = r.summary;
  std::ostringstream out;
  if (json) {
    JsonWriter j;
    j.BeginObject();
    j.Key("drawing").String(r.drawing);
    j.Key("version").String(s.version);
    j.Key("project").Bool(s.has_project);
    j.Key("model_space").BeginObject();
    j.Key("total").Int(s.model_space_total);
    // Entity types as they stand in the file.
    j.Key("by_type").BeginObject();
    for (const auto& [type, count] : s.model_space) j.Key(type).Int(count);
    j.EndObject().EndObject();
    j.Key("paper_space").BeginObject().Key("total").Int(s.paper_space_total);
    j.EndObject();
    j.Key("block_definitions").Int(s.block_definitions);
    j.Key("layers").BeginArray();
    for (const auto& l : s.layers) {
      j.BeginObject();
      j.Key("name").String(l.name);
      j.Key("color").Int(l.color);
      j.Key("on").Bool(l.on);
      j.Key("frozen").Bool(l.frozen);
      j.Key("locked").Bool(l.locked);
      j.Key("entities").Int(l.entities);
      j.EndObject();
    }
    j.EndArray();
    for (const auto& section : r.sections) {
      j.Key(SnakeCase(section.title)).BeginObject();
      for (const auto& f : section.fields) {
        j.Key(SnakeCase(f.key));
        if (f.is_number)
          j.Real(core::NumericValue(f.value));
        else
          j.String(f.value);
      }
      j.EndObject();
    }
    j.EndObject();
    return j.Text();
  }
  out << "drawing: " << r.drawing << "\n"
      << "version: " << s.version << "\n"
      << "project: " << (s.has_project ? "yes" : "no") << "\n"
      << "model space: " << s.model_space_total << " entities\n";
  for (const auto& [type, count] : s.model_space)
    out << "  " << Pad(type, 16) << count << "\n";
  out << "paper space: " << s.paper_space_total << " entities\n"
      << "block definitions: " << s.block_definitions << "\n"
      << "layers: " << s.layers.size() << "\n";
  for (const auto& l : s.layers) {
    out << "  " << Pad(l.name, 24) << "colour "
        << Pad(std::to_string(l.color), 4) << (l.on ? "on " : "off")
        << (l.frozen ? " frozen" : "") << (l.locked ? " locked" : "") << "  "
        << l.entities << " entities\n";
  }
  for (const auto& section : r.sections) {
    out << section.title << ":\n";
    for (const auto& f : section.fields)
      out << "  " << f.key << ": " << f.value << "\n";
  }
  return out.str();
}

std::vector<dxf::RecordDump> Dump(const DumpOptions& options) {
  auto doc = LoadDrawingFile(options.drawing);
  return dxf::KestranaRecords(*doc);
}

std::string FormatDump(const std::vector<dxf::RecordDump>& records, bool json) {
  std::ostringstream out;
  if (json) {
    JsonWriter j;
    j.BeginArray();
    for (const auto& d : records) {
      j.BeginObject();
      j.Key("handle").String(d.handle);
      j.Key("id").Int(d.id);
      j.Key("type").String(d.type);
      j.Key("layer").String(d.layer);
      j.Key("block").String(d.block);
      // Group code and value pairs, each value as the record types it.
      j.Key("record").BeginArray();
      for (const auto& item : d.record) {
        j.BeginArray().Int(item.code);
        if (item.value.IsText())
          j.String(item.value.Text());
        else if (item.value.IsReal())
          j.Real(item.value.Real());
        else
          j.Int(item.value.Int());
        j.EndArray();
      }
      j.EndArray().EndObject();
    }
    j.EndArray();
    return j.Text();
  }
  for (const auto& d : records) {
    out << d.type << " " << d.handle << " (ID " << d.id << ")";
    if (!d.layer.empty()) out << " on layer \"" << d.layer << "\"";
    out << " in \"" << d.block << "\"\n";
    for (const auto& item : d.record)
      out << "  " << item.code << " " << ValueText(item.value) << "\n";
  }
  if (records.empty()) out << "no object carries a Kestrana record\n";
  return out.str();
}

namespace {

int RunInfo(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"json"}, {});
  a.ExpectPositionals(1);
  InfoOptions options{a.Positional(0, "the drawing (DRAWING.dxf)")};
  io.out << FormatInfo(Info(options), a.Flag("json"));
  return 0;
}

int RunDump(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"json"}, {});
  a.ExpectPositionals(1);
  DumpOptions options{a.Positional(0, "the drawing (DRAWING.dxf)")};
  io.out << FormatDump(Dump(options), a.Flag("json"));
  return 0;
}

int RunSave(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"output"});
  a.ExpectPositionals(1);
  const std::string& input = a.Positional(0, "the drawing (DRAWING.dxf)");
  auto output = a.Option("output");
  EditDrawingFile(input, output, [](memhost::MemDocument&) {});
  io.out << "saved " << output.value_or(input) << "\n";
  return 0;
}

Registrar info_command(
    {"info", "what a drawing holds: version, entities, layers, project",
     "Usage: kestrana info DRAWING [--json]\n\n"
     "Shows the DXF version of DRAWING, its model-space entities by\n"
     "type, its paper-space entity count, block definitions and layers\n"
     "(colour, on/off, frozen, locked, entities on each), and whether it\n"
     "holds a Kestrana project (a Kestrana record on model space).\n\n"
     "  --json   print one JSON object instead of text\n",
     RunInfo});

Registrar dump_command(
    {"dump", "every Kestrana record of a drawing",
     "Usage: kestrana dump DRAWING [--json]\n\n"
     "Lists every object of DRAWING that carries a Kestrana record:\n"
     "its handle, object ID, type, layer and block, and the record as\n"
     "group code / value pairs.\n\n"
     "  --json   print a JSON array instead of text\n",
     RunDump});

Registrar save_command(
    {"save", "read a drawing and write it back unchanged",
     "Usage: kestrana save DRAWING [-o OUT]\n\n"
     "Reads DRAWING and writes it to OUT (or back over DRAWING) with\n"
     "nothing changed: every object is written as it was read. Only what\n"
     "a valid file needs is added: APPID entries for applications named\n"
     "in extended data, and tables or block markers the file lacked.\n"
     "The file is replaced atomically; on any error it is left as it was.\n\n"
     "  -o, --output OUT   write to OUT instead of replacing DRAWING\n",
     RunSave});

}  // namespace

}  // namespace kestrana::cli
