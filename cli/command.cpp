#include "cli/command.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <ostream>

#include "cli/session.h"
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

int Main(const std::vector<std::string>& args, Io& io) {
  if (args.empty() || IsHelp(args[0])) {
    io.out << kOverview;
    size_t width = 18;
    for (const auto& c : Commands()) width = std::max(width, c.name.size());
    for (const auto& c : Commands()) {
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
  auto leading_words = [&](size_t n) {
    std::string joined = args[0];
    for (size_t i = 1; i < n; ++i) joined += " " + args[i];
    return joined;
  };
  for (const auto& c : Commands()) {
    size_t n = 1 + std::count(c.name.begin(), c.name.end(), ' ');
    if (args.size() < n) continue;
    if (leading_words(n) == c.name && n > words) {
      command = &c;
      words = n;
    }
  }
  if (command == nullptr) {
    // Group words alone ("style", "profile style") or with a wrong next
    // word: list what the group holds.
    std::string prefix;
    size_t group_words = 0;
    for (size_t n = 1; n <= args.size(); ++n) {
      const std::string candidate = leading_words(n) + " ";
      if (std::none_of(Commands().begin(), Commands().end(),
                       [&](const CommandInfo& c) {
                         return c.name.rfind(candidate, 0) == 0;
                       }))
        break;
      prefix = candidate;
      group_words = n;
    }
    std::vector<const CommandInfo*> group;
    for (const auto& c : Commands())
      if (!prefix.empty() && c.name.rfind(prefix, 0) == 0) group.push_back(&c);
    if (group.empty()) {
      io.err << "kestrana: unknown command '" << args[0]
             << "' (see kestrana --help)\n";
      return 2;
    }
    const std::string group_name = leading_words(group_words);
    bool help = args.size() == group_words + 1 && IsHelp(args[group_words]);
    std::ostream& os = help ? io.out : io.err;
    if (!help) {
      os << "kestrana " << group_name << ": "
         << (args.size() <= group_words
                 ? std::string("which one?")
                 : "unknown command '" + args[group_words] + "'")
         << '\n';
    }
    os << "Commands of '" << group_name << "':\n";
    size_t width = 0;
    for (const CommandInfo* c : group) width = std::max(width, c->name.size());
    for (const CommandInfo* c : group)
      os << "  " << c->name << std::string(width + 2 - c->name.size(), ' ')
         << c->summary << '\n';
    return help ? 0 : 2;
  }
  std::vector<std::string> rest(args.begin() + words, args.end());
  if (std::any_of(rest.begin(), rest.end(), IsHelp)) {
    io.out << command->usage;
    return 0;
  }
  try {
    int code = command->run(rest, io);
    PrintShownMessages(io.err);
    return code;
  } catch (const UsageError& e) {
    PrintShownMessages(io.err, e.what());
    io.err << "kestrana " << command->name << ": " << e.what() << "\n\n"
           << command->usage;
    return 2;
  } catch (const CommandError& e) {
    PrintShownMessages(io.err, e.what());
    io.err << "kestrana " << command->name << ": " << e.what() << '\n';
    return 1;
  } catch (const host::HostError& e) {
    PrintShownMessages(io.err, e.what());
    io.err << "kestrana " << command->name << ": drawing error: " << e.what()
           << '\n';
    return 1;
  } catch (const std::exception& e) {
    PrintShownMessages(io.err, e.what());
    io.err << "kestrana " << command->name << ": " << e.what() << '\n';
    return 1;
  }
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
  std::vector<std::string> parts;
  size_t from = 0;
  for (size_t comma; (comma = text.find(',', from)) != std::string::npos;
       from = comma + 1)
    parts.push_back(text.substr(from, comma - from));
  if (!text.empty()) parts.push_back(text.substr(from));
  return parts;
}

double ParseReal(const std::string& text, const std::string& what) {
  double value = 0;
  const char* first = text.data();
  const char* last = text.data() + text.size();
  auto [ptr, ec] = std::from_chars(first, last, value);
  if (text.empty() || ec != std::errc() || ptr != last)
    throw UsageError(what + ": '" + text + "' is not a number");
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
