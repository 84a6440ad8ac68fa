// `kestrana info`: what a drawing holds. Other parts of the system add
// their own facts with a static InfoSectionRegistrar in their cli file:
//
//   static cli::InfoSectionRegistrar project_info([](memhost::MemDocument& doc)
//       -> std::optional<cli::InfoSection> {
//     return cli::InfoSection{"project", {{"version", "2.00"}, {"networks",
//     "3", true}}};
//   });
//
// Sections are printed after the built-in facts, in registration order,
// as "title:" with indented "key: value" lines, or as a JSON object.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "dxf/summary.h"
#include "memhost/document.h"

namespace kestrana::cli {

struct InfoField {
  std::string key;
  std::string value;
  bool is_number = false;  // printed without quotes in JSON
};

struct InfoSection {
  std::string title;
  std::vector<InfoField> fields;
};

// Returns nothing when the section does not apply to the drawing.
using InfoSectionFn =
    std::function<std::optional<InfoSection>(memhost::MemDocument&)>;

struct InfoSectionRegistrar {
  explicit InfoSectionRegistrar(InfoSectionFn fn);
};

struct InfoOptions {
  std::string drawing;
};

struct InfoResult {
  std::string drawing;
  dxf::DrawingSummary summary;
  std::vector<InfoSection> sections;
};

InfoResult Info(const InfoOptions& options);
std::string FormatInfo(const InfoResult& result, bool json);

struct DumpOptions {
  std::string drawing;
};

std::vector<dxf::RecordDump> Dump(const DumpOptions& options);
std::string FormatDump(const std::vector<dxf::RecordDump>& records, bool json);

}  // namespace kestrana::cli
