// info, dump and save: reading drawings and writing them back.
#include <sstream>

#include "cli/command.h"
#include "cli/session.h"
#include "cli/info.h"
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

std::string ValueJson(const host::XValue& v) {
  if (v.IsText()) return JsonString(v.Text());
  return ValueText(v);
}

}  // namespace

InfoSectionRegistrar::InfoSectionRegistrar(InfoSectionFn fn) {
  Extensions().push_back(std::move(fn));
}

InfoResult Info(const InfoOptions& options) {
  auto doc = dxf::LoadDrawing(options.drawing);
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
    out << "{\"drawing\": " << JsonString(r.drawing)
        << ", \"version\": " << JsonString(s.version)
        << ", \"project\": " << (s.has_project ? "true" : "false")
        << ", \"model_space\": {\"total\": " << s.model_space_total
        << ", \"by_type\": {";
    for (size_t i = 0; i < s.model_space.size(); ++i)
      out << (i ? ", " : "") << JsonString(s.model_space[i].first) << ": "
          << s.model_space[i].second;
    out << "}}, \"paper_space\": {\"total\": " << s.paper_space_total
        << "}, \"block_definitions\": " << s.block_definitions
        << ", \"layers\": [";
    for (size_t i = 0; i < s.layers.size(); ++i) {
      const auto& l = s.layers[i];
      out << (i ? ", " : "") << "{\"name\": " << JsonString(l.name)
          << ", \"color\": " << l.color
          << ", \"on\": " << (l.on ? "true" : "false")
          << ", \"frozen\": " << (l.frozen ? "true" : "false")
          << ", \"locked\": " << (l.locked ? "true" : "false")
          << ", \"entities\": " << l.entities << "}";
    }
    out << "]";
    for (const auto& section : r.sections) {
      out << ", " << JsonString(section.title) << ": {";
      for (size_t i = 0; i < section.fields.size(); ++i) {
        const auto& f = section.fields[i];
        out << (i ? ", " : "") << JsonString(f.key) << ": "
            << (f.is_number ? f.value : JsonString(f.value));
      }
      out << "}";
    }
    out << "}\n";
    return out.str();
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
  auto doc = dxf::LoadDrawing(options.drawing);
  return dxf::KestranaRecords(*doc);
}

std::string FormatDump(const std::vector<dxf::RecordDump>& records, bool json) {
  std::ostringstream out;
  if (json) {
    out << "[";
    for (size_t i = 0; i < records.size(); ++i) {
      const auto& d = records[i];
      out << (i ? ",\n " : "") << "{\"handle\": " << JsonString(d.handle)
          << ", \"id\": " << d.id << ", \"type\": " << JsonString(d.type)
          << ", \"layer\": " << JsonString(d.layer)
          << ", \"block\": " << JsonString(d.block) << ", \"record\": [";
      for (size_t k = 0; k < d.record.size(); ++k)
        out << (k ? ", " : "") << "[" << d.record[k].code << ", "
            << ValueJson(d.record[k].value) << "]";
      out << "]}";
    }
    out << "]\n";
    return out.str();
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
  std::unique_ptr<memhost::MemDocument> document = dxf::LoadDrawing(input);
  dxf::SaveDrawing(*document, output.value_or(input));
  KeepUntilExit(std::move(document));
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
