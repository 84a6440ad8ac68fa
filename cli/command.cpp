#include "cli/command.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <ostream>

#include "cli/files.h"
#include "cli/session.h"
#include "commands/command.h"
#include "core/text.h"
#include "host/types.h"

namespace kestrana::cli {

namespace {
std::vector<CommandInfo>& Registry() {
  static std::vector<CommandInfo> registry;
  return registry;
}

const char* kOverview =
    "kestrana - utility pipe networks (sewers, storm drains, water mains) in "
    "DXF drawings\n\n"
    "Usage: kestrana COMMAND [ARGS...]\n"
    "       kestrana COMMAND --help\n"
    "       kestrana --version\n\n"
    "Commands:\n";

bool IsHelp(const std::string& a) { return a == "--help" || a == "-h"; }
}  // namespace

void RegisterCommand(CommandInfo info) {
  auto& registry = Registry();
  registry.push_back(std::move(info));
  std::sort(registry.begin(), registry.end(),
            [](const CommandInfo& a, const CommandInfo& b) {
              return a.name < b.name;
            });
}

const std::vector<CommandInfo>& Commands() { return Registry(); }

namespace {

// Every piece between separators, empty ones kept.
std::vector<std::string> Pieces(const std::string& text, char separator) {
  std::vector<std::string> pieces;
  size_t from = 0;
  for (size_t at; (at = text.find(separator, from)) != std::string::npos;
       from = at + 1)
    pieces.push_back(text.substr(from, at - from));
  pieces.push_back(text.substr(from));
  return pieces;
}

std::string Joined(const std::vector<std::string>& args, size_t count) {
  std::string joined;
  for (size_t i = 0; i < count; ++i) joined += (i ? " " : "") + args[i];
  return joined;
}

// A group ("style", "profile style") alone or with a wrong next word: what
// the group holds, on stdout when asked for with --help.
int ListGroup(const std::vector<CommandInfo>& commands,
              const std::vector<std::string>& args, Io& io) {
  std::vector<const CommandInfo*> group;
  size_t words = 0;
  for (size_t n = 1; n <= args.size(); ++n) {
    const std::string prefix = Joined(args, n) + " ";
    std::vector<const CommandInfo*> members;
    for (const auto& c : commands)
      if (c.name.rfind(prefix, 0) == 0) members.push_back(&c);
    if (members.empty()) break;
    group = std::move(members);
    words = n;
  }
  if (group.empty()) {
    io.err << "kestrana: unknown command '" << args[0]
           << "' (see kestrana --help)\n";
    return 2;
  }
  const std::string name = Joined(args, words);
  const bool help = args.size() == words + 1 && IsHelp(args[words]);
  std::ostream& os = help ? io.out : io.err;
  if (!help)
    os << "kestrana " << name << ": "
       << (args.size() == words ? std::string("which one?")
                                : "unknown command '" + args[words] + "'")
       << '\n';
  os << "Commands of '" << name << "':\n";
  size_t width = 0;
  for (const CommandInfo* c : group) width = std::max(width, c->name.size());
  for (const CommandInfo* c : group)
    os << "  " << c->name << std::string(width + 2 - c->name.size(), ' ')
       << c->summary << '\n';
  return help ? 0 : 2;
}

// Whether the command writes its drawing or file to standard output.
bool WritesStandardOutput(const std::vector<std::string>& args) {
  auto standard = [](const std::string& output) {
    return output == kStandardOutput || output == "/dev/stdout";
  };
  for (size_t i = 0; i < args.size(); ++i) {
    if (args[i].rfind("--output=", 0) == 0 && standard(args[i].substr(9)))
      return true;
    if ((args[i] == "-o" || args[i] == "--output") && i + 1 < args.size() &&
        standard(args[i + 1]))
      return true;
  }
  return false;
}

// "-" names the command's standard output while it runs.
class StandardOutputScope {
 public:
  explicit StandardOutputScope(std::ostream& out) { SetStandardOutput(&out); }
  ~StandardOutputScope() { SetStandardOutput(nullptr); }
  StandardOutputScope(const StandardOutputScope&) = delete;
  StandardOutputScope& operator=(const StandardOutputScope&) = delete;
};

// Runs a command and maps the kind of its failure to the exit code.
int Run(const CommandInfo& command, const std::vector<std::string>& args,
        Io& io) {
  StandardOutputScope standard_output(io.out);
  // Standard output then holds the file alone; what the command says goes
  // to stderr.
  Io command_io = WritesStandardOutput(args) ? Io{io.err, io.err} : io;
  auto fail = [&](const std::exception& e, const std::string& kind, int code) {
    PrintShownMessages(io.err, e.what());
    io.err << "kestrana " << command.name << ": " << kind << e.what() << '\n';
    if (code == 2) io.err << '\n' << command.usage;
    return code;
  };
  try {
    int code = command.run(args, command_io);
    PrintShownMessages(io.err);
    return code;
  } catch (const UsageError& e) {
    return fail(e, "", 2);
  } catch (const commands::OptionError& e) {
    return fail(e, "", 2);
  } catch (const host::HostError& e) {
    return fail(e, "drawing error: ", 1);
  } catch (const Error& e) {
    return fail(e, "", 1);
  } catch (const std::exception& e) {
    // A failure of no kind still reaches the user, once, here.
    return fail(e, "", 1);
  }
}

}  // namespace

int Main(const std::vector<std::string>& args, Io& io) {
  return Dispatch(Commands(), args, io);
}

int Dispatch(const std::vector<CommandInfo>& commands,
             const std::vector<std::string>& args, Io& io) {
  if (args.empty() || IsHelp(args[0])) {
    io.out << kOverview;
    size_t width = 18;
    for (const auto& c : commands) width = std::max(width, c.name.size());
    for (const auto& c : commands) {
      io.out << "  " << c.name;
      for (size_t i = c.name.size(); i < width; ++i) io.out << ' ';
      io.out << ' ' << c.summary << '\n';
    }
    if (args.empty()) return 2;
    return 0;
  }
  if (args[0] == "--version" || args[0] == "-V") {
    io.out << "kestrana " << KESTRANA_VERSION << " (project format 2.00)\n";
    return 0;
  }
  // The longest registered name that the arguments start with.
  const CommandInfo* command = nullptr;
  size_t words = 0;
  for (const auto& c : commands) {
    const std::vector<std::string> name = Pieces(c.name, ' ');
    if (name.size() > words && args.size() >= name.size() &&
        std::equal(name.begin(), name.end(), args.begin())) {
      command = &c;
      words = name.size();
    }
  }
  if (command == nullptr) return ListGroup(commands, args, io);
  std::vector<std::string> rest(args.begin() + words, args.end());
  if (std::any_of(rest.begin(), rest.end(), IsHelp)) {
    io.out << command->usage;
    return 0;
  }
  return Run(*command, rest, io);
}

Args::Args(const std::vector<std::string>& args, std::set<std::string> flags,
           std::set<std::string> options) {
  for (size_t i = 0; i < args.size(); ++i) {
    std::string a = args[i];
    if (a == "-o") a = "--output";
    if (a.size() > 2 && a.rfind("--", 0) == 0) {
      std::string name = a.substr(2);
      std::optional<std::string> value;
      if (auto eq = name.find('='); eq != std::string::npos) {
        value = name.substr(eq + 1);
        name = name.substr(0, eq);
      }
      if (flags.count(name)) {
        if (value) throw UsageError("option --" + name + " takes no value");
        flags_set_.insert(name);
      } else if (options.count(name)) {
        if (!value) {
          if (i + 1 >= args.size())
            throw UsageError("option --" + name + " needs a value");
          value = args[++i];
        }
        values_.emplace_back(name, *value);
      } else {
        throw UsageError("unknown option --" + name);
      }
    } else if (a.size() > 1 && a[0] == '-' && !(a[1] >= '0' && a[1] <= '9') &&
               a[1] != '.') {
      throw UsageError("unknown option " + a);
    } else {
      positionals_.push_back(a);
    }
  }
}

bool Args::Flag(const std::string& name) const {
  return flags_set_.count(name) > 0;
}

std::optional<std::string> Args::Option(const std::string& name) const {
  std::optional<std::string> found;
  for (const auto& [n, v] : values_) {
    if (n != name) continue;
    if (found) throw UsageError("option --" + name + " given twice");
    found = v;
  }
  return found;
}

std::vector<std::string> Args::Options(const std::string& name) const {
  std::vector<std::string> out;
  for (const auto& [n, v] : values_)
    if (n == name) out.push_back(v);
  return out;
}

std::string Args::Required(const std::string& name) const {
  auto v = Option(name);
  if (!v) throw UsageError("option --" + name + " is required");
  return *v;
}

std::vector<std::string> Args::Names(const std::string& name) const {
  const std::optional<std::string> value = Option(name);
  if (!value) return {};
  std::vector<std::string> names = SplitAtCommas(*value);
  for (const std::string& n : names)
    if (n.empty())
      throw UsageError("--" + name + ": an empty name in '" + *value + "'");
  return names;
}

std::vector<std::string> Args::RequiredNames(const std::string& name) const {
  Required(name);
  return Names(name);
}

std::pair<double, double> Args::RequiredPoint(const std::string& name,
                                              const std::string& form) const {
  const std::vector<std::string> xy = SplitAtCommas(Required(name));
  if (xy.size() != 2) throw UsageError("--" + name + " takes " + form);
  return {ParseReal(xy[0], "--" + name), ParseReal(xy[1], "--" + name)};
}

const std::string& Args::Drawing() const {
  return Positional(0, "the drawing (DRAWING.dxf)");
}

const std::string& Args::Positional(size_t index,
                                    const std::string& what) const {
  if (index >= positionals_.size()) throw UsageError("missing " + what);
  return positionals_[index];
}

void Args::ExpectPositionals(size_t count) const {
  if (positionals_.size() > count)
    throw UsageError("unexpected argument '" + positionals_[count] + "'");
}

std::vector<std::string> SplitAtCommas(const std::string& text) {
  if (text.empty()) return {};
  return Pieces(text, ',');
}

double ParseReal(const std::string& text, const std::string& what) {
  double value = 0;
  const char* first = text.data();
  const char* last = text.data() + text.size();
  auto [ptr, ec] = std::from_chars(first, last, value);
  // from_chars takes "nan" and "inf", and a value too large sets ec.
  if (text.empty() || ptr != last ||
      (ec != std::errc() && ec != std::errc::result_out_of_range))
    throw UsageError(what + ": '" + text + "' is not a number");
  if (ec != std::errc() || !core::InNumberRange(value))
    throw UsageError(what + ": '" + text + "' is out of range; numbers go " +
                     core::NumberRangeText());
  return value;
}

int ParseInt(const std::string& text, const std::string& what) {
  int value = 0;
  const char* first = text.data();
  const char* last = text.data() + text.size();
  auto [ptr, ec] = std::from_chars(first, last, value);
  if (text.empty() || ec != std::errc() || ptr != last)
    throw UsageError(what + ": '" + text + "' is not a whole number");
  return value;
}

std::string JsonString(const std::string& text) {
  std::string out = "\"";
  for (unsigned char c : text) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (c < 0x20) {
          char buf[8];
          std::snprintf(buf, sizeof buf, "\\u%04x", c);
          out += buf;
        } else {
          out += static_cast<char>(c);
        }
    }
  }
  return out + "\"";
}

}  // namespace kestrana::cli
