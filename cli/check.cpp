// kestrana check: the consistency audit of a drawing.
#include "commands/check.h"

#include <fstream>
#include <sstream>

#include "check/design_settings.h"
#include "cli/command.h"
#include "cli/session.h"
#include "dxf/io.h"
#include "host/errors.h"
#include "memhost/document.h"

namespace kestrana::cli {

namespace {

using check::Finding;
using check::ObjectRef;
using check::Severity;
using commands::CheckResult;

std::string SettingsText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw NotFoundError("cannot read the settings file '" + path + "'");
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string ObjectText(const ObjectRef& o) {
  std::string text = o.network;
  if (!o.label.empty()) text += (text.empty() ? "" : " ") + o.label;
  if (!o.handle.empty()) text += (text.empty() ? "#" : " #") + o.handle;
  return text;
}

std::string CheckText(const CheckResult& r,
                      const std::optional<std::string>& written) {
  std::ostringstream out;
  if (written) out << "wrote " << *written << "\n";
  for (const std::string& change : r.changes) out << "fixed: " << change << "\n";
  for (const Finding& f : r.findings) {
    out << (f.severity == Severity::kError ? "error  " : "warning  ") << f.code;
    for (const ObjectRef& o : f.objects) out << "  [" << ObjectText(o) << "]";
    out << "\n  " << f.sentence << "\n";
  }
  const int warnings = static_cast<int>(r.findings.size()) - r.errors;
  out << (r.Clean() ? "clean" : "not clean") << ": " << r.errors
      << " errors, " << warnings << " warnings\n";
  return out.str();
}

std::string CheckJson(const CheckResult& r,
                      const std::optional<std::string>& written) {
  std::ostringstream out;
  out << "{\"clean\": " << (r.Clean() ? "true" : "false")
      << ", \"errors\": " << r.errors;
  if (written) out << ", \"written\": " << JsonString(*written);
  out << ", \"changes\": [";
  for (size_t i = 0; i < r.changes.size(); ++i)
    out << (i ? ", " : "") << JsonString(r.changes[i]);
  out << "], \"findings\": [";
  for (size_t i = 0; i < r.findings.size(); ++i) {
    const Finding& f = r.findings[i];
    out << (i ? ",\n  " : "") << "{\"code\": " << JsonString(f.code)
        << ", \"severity\": "
        << (f.severity == Severity::kError ? "\"error\"" : "\"warning\"")
        << ", \"objects\": [";
    for (size_t k = 0; k < f.objects.size(); ++k)
      out << (k ? ", " : "") << "{\"network\": " << JsonString(f.objects[k].network)
          << ", \"label\": " << JsonString(f.objects[k].label)
          << ", \"handle\": " << JsonString(f.objects[k].handle) << "}";
    out << "], \"sentence\": " << JsonString(f.sentence) << ", \"values\": {";
    for (size_t k = 0; k < f.values.size(); ++k)
      out << (k ? ", " : "") << JsonString(f.values[k].first) << ": "
          << JsonString(f.values[k].second);
    out << "}}";
  }
  out << "]}\n";
  return out.str();
}

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"json", "fix", "design"}, {"settings", "output"});
  a.ExpectPositionals(1);
  commands::CheckOptions options;
  options.design = a.Flag("design");
  options.fix = a.Flag("fix");
  if (std::optional<std::string> path = a.Option("settings")) {
    try {
      options.settings = check::ParseDesignSettings(SettingsText(*path));
    } catch (const InvalidInputError& e) {
      throw InvalidInputError(*path + ": " + e.what());
    }
  }
  if (a.Output() && !options.fix)
    throw UsageError("-o is for --fix, which writes the repaired drawing");
  CheckResult result;
  std::optional<std::string> written;
  if (options.fix) {
    dxf::EditDrawing(
        a.Drawing(), a.Output(),
        [&](memhost::MemDocument& document) {
          result = commands::Check(document, options);
        },
        CommandLoadOptions());
    written = a.Written();
  } else {
    auto document = dxf::LoadDrawing(a.Drawing(), CommandLoadOptions());
    result = commands::Check(*document, options);
  }
  PrintShownMessages(io.err);
  io.out << (a.Json() ? CheckJson(result, written) : CheckText(result, written));
  return result.Clean() ? 0 : 1;
}

Registrar check_command(
    {"check", "audit a drawing: every link, count, crossing and low/high point",
     "Usage: kestrana check DRAWING [--json] [--fix] [--design]\n"
     "         [--settings FILE] [-o OUT]\n\n"
     "Audits every record of the drawing: references between pipes and nodes,\n"
     "annotations, arrows, crossings, low and high points and profiles must\n"
     "exist and name each other back; pipe ends lie on their nodes; labels\n"
     "are unique in a network; library usage counts match the pipes; crossing\n"
     "annotations stand exactly where pipes of two networks cross, with the\n"
     "clearance the levels give; low and high points stand where the levels\n"
     "put them; the project's lists are well formed. Each finding is printed\n"
     "with its code, the objects (network, label, #handle) and a sentence.\n"
     "Exit 0 when the drawing is clean, 1 when errors remain (warnings alone\n"
     "never fail).\n\n"
     "  --design           also warn of what a design review marks: ground\n"
     "                     below sump or crown, gravity pipes rising or too\n"
     "                     flat, low cover, a smaller pipe downstream, sizes\n"
     "                     not in the library, crossing clearance below the\n"
     "                     threshold, two pipes between the same nodes, a node\n"
     "                     lying on a pipe it is not connected to\n"
     "  --settings FILE    design limits (minimum cover, minimum slope by size)\n"
     "                     in the form of docs/check-settings.md\n"
     "  --fix              repair what needs no guess: broken references\n"
     "                     dropped, node pipe lists rebuilt, left-over\n"
     "                     annotations erased, library counts recounted,\n"
     "                     crossings and low/high points rebuilt; prints each\n"
     "                     change, then what remains\n"
     "  -o, --output OUT   with --fix: write to OUT instead of DRAWING\n"
     "  --json             print JSON: every finding with code and values\n",
     Run});

}  // namespace

}  // namespace kestrana::cli
