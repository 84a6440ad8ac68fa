// Settings tables whose rows the commands switch on and off by name: the
// crossing pairs and the low/high point networks.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "commands/command.h"
#include "core/text_table.h"

namespace kestrana::commands {

// How a table keeps its switches and how a row is named in a refusal.
struct Switches {
  int column;
  const char* on;    // the cell of a row switched on
  const char* off;   // and off
  const char* what;  // "the pair"
  const char* both;  // "is both enabled and disabled"
};

// Switches on the rows `on` names and off those `off` names; `row_of`
// finds a row by its name or throws. OptionError for a row named in both.
template <class RowOf>
void SwitchRows(core::TextTable& table, const Switches& switches,
                const std::vector<std::string>& on,
                const std::vector<std::string>& off, RowOf row_of) {
  std::set<int> switched_on;
  for (const std::string& name : on) {
    const int row = row_of(name);
    switched_on.insert(row);
    table(row, switches.column) = switches.on;
  }
  for (const std::string& name : off) {
    const int row = row_of(name);
    if (switched_on.contains(row))
      throw OptionError(std::string(switches.what) + " " + name + " " +
                        switches.both);
    table(row, switches.column) = switches.off;
  }
}

}  // namespace kestrana::commands
