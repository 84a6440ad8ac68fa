// The kestrana command line: a registry of commands, each a thin layer over
// a function of commands/ (parse the arguments, open and save the drawing,
// print the result), plus the small argument parser they share. Failures
// are the kinds of host/errors.h; Main maps them to exit codes.
#pragma once

#include <functional>
#include <iosfwd>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace kestrana::cli {

// Bad command-line use; main prints it with the command's usage, exit 2.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Io {
  std::ostream& out;
  std::ostream& err;
};

struct CommandInfo {
  std::string name;     // words: "info", "network add", "profile style list"
  std::string summary;  // one line for the command list
  std::string usage;    // the full --help text
  std::function<int(const std::vector<std::string>& args, Io& io)> run;
};

void RegisterCommand(CommandInfo info);
const std::vector<CommandInfo>& Commands();

// Registers a command from a command's own source file.
struct Registrar {
  explicit Registrar(CommandInfo info) { RegisterCommand(std::move(info)); }
};

// Runs the command line (without the program name) with the registered
// commands; returns the exit code: 0 done, 1 refused or failed, 2 the
// command line was wrong (a usage error or a value the command does not
// take, commands::OptionError).
int Main(const std::vector<std::string>& args, Io& io);
// The same with the commands given.
int Dispatch(const std::vector<CommandInfo>& commands,
             const std::vector<std::string>& args, Io& io);

// Options are "--name value", "--name=value" or flags "--name"; "-o" is the
// short form of "--output". Everything else is positional.
//
// What most commands take has one accessor here: the drawing (the first
// positional), -o OUT, --network, label lists and --json.
class Args {
 public:
  Args(const std::vector<std::string>& args, std::set<std::string> flags,
       std::set<std::string> options);

  // The drawing, the first positional; UsageError when missing.
  const std::string& Drawing() const;
  std::optional<std::string> Output() const { return Option("output"); }
  // Where a command that changes the drawing writes it.
  std::string Written() const { return Output().value_or(Drawing()); }
  // --network, which the command needs.
  std::string Network() const { return Required("network"); }
  bool Json() const { return Flag("json"); }

  bool Flag(const std::string& name) const;
  std::optional<std::string> Option(const std::string& name) const;
  // Every value of a repeatable option, in order.
  std::vector<std::string> Options(const std::string& name) const;
  std::string Required(const std::string& name) const;
  // The comma-separated names an option gives ("P-1,P-2"); none when the
  // option is absent. UsageError for an empty name in the list.
  std::vector<std::string> Names(const std::string& name) const;
  // The same for an option the command needs.
  std::vector<std::string> RequiredNames(const std::string& name) const;
  // "X,Y" of an option the command needs.
  std::pair<double, double> RequiredPoint(const std::string& name,
                                          const std::string& form) const;
  const std::vector<std::string>& Positionals() const { return positionals_; }
  // The positional at `index`, or a UsageError naming `what`.
  const std::string& Positional(size_t index, const std::string& what) const;
  void ExpectPositionals(size_t count) const;

 private:
  std::set<std::string> flags_set_;
  std::vector<std::pair<std::string, std::string>> values_;
  std::vector<std::string> positionals_;
};

// "a,b,,c" as its pieces, empty ones kept ("a," gives "a" and ""); no
// pieces for the empty text.
std::vector<std::string> SplitAtCommas(const std::string& text);

// Parses a real; UsageError naming the option when the text is not one or
// lies outside the numbers a drawing holds (core::InNumberRange).
double ParseReal(const std::string& text, const std::string& what);
int ParseInt(const std::string& text, const std::string& what);

// Text escaped for a JSON string literal (quotes included).
std::string JsonString(const std::string& text);

}  // namespace kestrana::cli
