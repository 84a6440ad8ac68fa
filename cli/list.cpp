#include "cli/list.h"

#include <algorithm>
#include <ostream>
#include <sstream>
#include <vector>

#include "cli/command.h"
#include "cli/json.h"
#include "cli/session.h"
#include "commands/elements.h"
#include "core/text.h"
#include "memhost/document.h"
#include "memhost/text_metrics.h"

namespace kestrana::cli {

namespace {

using commands::NetworkElements;
using commands::NodeListing;
using commands::PipeListing;

// Lengths, levels, coordinates and slopes in percent: what the tables show.
constexpr int kPlaces = 2;

std::string Fixed(double value) {
  return core::FormatNumber(core::RoundHalfEven(value, kPlaces), "0.00");
}

std::string SlopePercent(const PipeListing& pipe) {
  return pipe.slope ? Fixed(*pipe.slope * 100) : "";
}

struct Column {
  const char* heading;  // of the text table
  const char* key;      // of CSV and JSON
  bool number;
};

const std::vector<Column> kPipeColumns = {
    {"LABEL", "label", false},      {"HANDLE", "handle", false},
    {"FROM", "start_node", false},  {"TO", "end_node", false},
    {"SIZE", "size", false},        {"MATERIAL", "material", false},
    {"LENGTH", "length", true},     {"START IL", "start_invert", true},
    {"END IL", "end_invert", true}, {"SLOPE %", "slope_percent", true},
    {"VERTICES", "vertices", true}};

const std::vector<Column> kNodeColumns = {{"LABEL", "label", false},
                                          {"HANDLE", "handle", false},
                                          {"X", "x", true},
                                          {"Y", "y", true},
                                          {"GROUND", "ground", true},
                                          {"SUMP", "sump", true},
                                          {"DEPTH", "depth", true},
                                          {"MATCHING", "matching", false},
                                          {"LOW/HIGH", "low_high", false}};

std::vector<std::string> PipeRow(const PipeListing& p) {
  return {p.label,
          p.handle,
          p.from,
          p.to,
          memhost::DisplayText(p.size),
          p.material,
          Fixed(p.length),
          Fixed(p.start_invert),
          Fixed(p.end_invert),
          SlopePercent(p),
          std::to_string(p.vertices.size())};
}

std::vector<std::string> NodeRow(const NodeListing& n) {
  return {
      n.label,         n.handle,      Fixed(n.position.x), Fixed(n.position.y),
      Fixed(n.ground), Fixed(n.sump), Fixed(n.depth),      n.matching,
      n.low_high};
}

// Characters on screen: UTF-8 continuation bytes take no room.
size_t Width(const std::string& text) {
  return static_cast<size_t>(std::count_if(
      text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

// Columns as wide as their widest cell; numbers to the right.
void Table(std::ostream& out, const std::vector<Column>& columns,
           const std::vector<std::vector<std::string>>& rows) {
  std::vector<size_t> width;
  for (const Column& c : columns) width.push_back(Width(c.heading));
  for (const auto& row : rows)
    for (size_t i = 0; i < row.size(); ++i)
      width[i] = std::max(width[i], Width(row[i]));
  auto line = [&](const std::vector<std::string>& cells) {
    std::string text;
    for (size_t i = 0; i < cells.size(); ++i) {
      const std::string gap(width[i] - Width(cells[i]), ' ');
      text += (i ? "  " : "") +
              (columns[i].number ? gap + cells[i] : cells[i] + gap);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    out << "  " << text << "\n";
  };
  std::vector<std::string> headings;
  for (const Column& c : columns) headings.push_back(c.heading);
  line(headings);
  for (const auto& row : rows) line(row);
}

}  // namespace

std::string ElementsTables(const std::string& network,
                           const NetworkElements& elements, ListedKinds kinds) {
  std::ostringstream out;
  if (kinds != ListedKinds::kNodes) {
    out << network << " pipes (" << elements.pipes.size() << ")\n";
    std::vector<std::vector<std::string>> rows;
    for (const PipeListing& p : elements.pipes) rows.push_back(PipeRow(p));
    Table(out, kPipeColumns, rows);
  }
  if (kinds != ListedKinds::kPipes) {
    if (kinds == ListedKinds::kBoth) out << "\n";
    out << network << " nodes (" << elements.nodes.size() << ")\n";
    std::vector<std::vector<std::string>> rows;
    for (const NodeListing& n : elements.nodes) rows.push_back(NodeRow(n));
    Table(out, kNodeColumns, rows);
  }
  return out.str();
}

namespace {

struct Listed {
  commands::NetworkInfo network;
  NetworkElements elements;
};

// A CSV field, quoted when it holds a separator, a quote or a line end.
std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (char c : text)
    quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

void CsvLine(std::ostream& out, const std::vector<std::string>& cells) {
  for (size_t i = 0; i < cells.size(); ++i)
    out << (i ? "," : "") << CsvField(cells[i]);
  out << "\r\n";
}

// One table per file: a spreadsheet opens it as it is. Sizes go as their
// numbers, so the size column is split into shape, span, rise and cells.
std::string Csv(const std::vector<Listed>& listed, ListedKinds kinds) {
  std::ostringstream out;
  if (kinds == ListedKinds::kPipes) {
    CsvLine(out, {"network", "label", "handle", "start_node", "end_node",
                  "shape", "span", "rise", "cells", "material", "length",
                  "start_invert", "end_invert", "slope_percent", "vertices"});
    for (const Listed& l : listed)
      for (const PipeListing& p : l.elements.pipes)
        CsvLine(out,
                {l.network.name, p.label, p.handle, p.from, p.to,
                 p.section.box ? "box" : "circular",
                 core::GeneralText(p.section.span),
                 core::GeneralText(p.section.rise),
                 std::to_string(p.section.cells), p.material, Fixed(p.length),
                 Fixed(p.start_invert), Fixed(p.end_invert), SlopePercent(p),
                 std::to_string(p.vertices.size())});
  } else {
    CsvLine(out, {"network", "label", "handle", "x", "y", "ground", "sump",
                  "depth", "matching", "low_high"});
    for (const Listed& l : listed)
      for (const NodeListing& n : l.elements.nodes)
        CsvLine(out, {l.network.name, n.label, n.handle, Fixed(n.position.x),
                      Fixed(n.position.y), Fixed(n.ground), Fixed(n.sump),
                      Fixed(n.depth), n.matching, n.low_high});
  }
  return out.str();
}

void PipeJson(JsonWriter& json, const PipeListing& p) {
  json.BeginObject();
  json.Key("label").String(p.label);
  json.Key("handle").String(p.handle);
  json.Key("start_node").String(p.from);
  json.Key("end_node").String(p.to);
  json.Key("size").Size(p.section);
  json.Key("material").String(p.material);
  json.Key("length").Number(p.length, kPlaces);
  json.Key("start_invert").Number(p.start_invert, kPlaces);
  json.Key("end_invert").Number(p.end_invert, kPlaces);
  json.Key("slope_percent");
  if (p.slope)
    json.Number(*p.slope * 100, kPlaces);
  else
    json.Null();
  json.Key("vertices").BeginArray();
  for (const commands::PlanPoint& v : p.vertices) {
    json.BeginArray();
    json.Number(v.x, kPlaces).Number(v.y, kPlaces);
    json.EndArray();
  }
  json.EndArray();
  json.EndObject();
}

void NodeJson(JsonWriter& json, const NodeListing& n) {
  json.BeginObject();
  json.Key("label").String(n.label);
  json.Key("handle").String(n.handle);
  json.Key("x").Number(n.position.x, kPlaces);
  json.Key("y").Number(n.position.y, kPlaces);
  json.Key("ground").Number(n.ground, kPlaces);
  json.Key("sump").Number(n.sump, kPlaces);
  json.Key("depth").Number(n.depth, kPlaces);
  json.Key("matching").String(n.matching);
  json.Key("low_high");
  if (n.low_high.empty())
    json.Null();
  else
    json.String(n.low_high);
  json.EndObject();
}

std::string Json(const std::vector<Listed>& listed, ListedKinds kinds) {
  JsonWriter json;
  json.BeginObject().Key("networks").BeginArray();
  for (const Listed& l : listed) {
    json.BeginObject();
    json.Key("name").String(l.network.name);
    json.Key("type").String(l.network.type);
    if (kinds != ListedKinds::kNodes) {
      json.Key("pipes").BeginArray();
      for (const PipeListing& p : l.elements.pipes) PipeJson(json, p);
      json.EndArray();
    }
    if (kinds != ListedKinds::kPipes) {
      json.Key("nodes").BeginArray();
      for (const NodeListing& n : l.elements.nodes) NodeJson(json, n);
      json.EndArray();
    }
    json.EndObject();
  }
  json.EndArray().EndObject();
  return json.Text();
}

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {"pipes", "nodes", "json", "csv"}, {"network"});
  a.ExpectPositionals(1);
  a.Drawing();
  if (a.Flag("pipes") && a.Flag("nodes"))
    throw UsageError(
        "--pipes and --nodes exclude each other (give neither "
        "for both)");
  if (a.Flag("json") && a.Flag("csv"))
    throw UsageError("--json and --csv exclude each other");
  const ListedKinds kinds = a.Flag("pipes")   ? ListedKinds::kPipes
                            : a.Flag("nodes") ? ListedKinds::kNodes
                                              : ListedKinds::kBoth;
  if (a.Flag("csv") && kinds == ListedKinds::kBoth)
    throw UsageError(
        "--csv needs --pipes or --nodes: a CSV file holds one "
        "table");
  const std::optional<std::string> only = a.Option("network");

  std::unique_ptr<memhost::MemDocument> document =
      OpenProjectDrawing(a.Drawing());
  std::vector<commands::NetworkInfo> networks;
  if (only)
    networks.push_back({*only, commands::NetworkType(*document, *only)});
  else
    networks = commands::ListNetworks(*document);
  std::vector<Listed> listed;
  for (const commands::NetworkInfo& network : networks)
    listed.push_back(
        {network, commands::ListElements(*document, {network.name})});

  if (a.Flag("json")) {
    io.out << Json(listed, kinds);
  } else if (a.Flag("csv")) {
    io.out << Csv(listed, kinds);
  } else if (listed.empty()) {
    io.out << "The project has no networks.\n";
  } else {
    for (size_t i = 0; i < listed.size(); ++i)
      io.out << (i ? "\n" : "")
             << ElementsTables(listed[i].network.name, listed[i].elements,
                               kinds);
  }
  return 0;
}

Registrar list_command(
    {"list", "the pipes and nodes of networks as a table, CSV or JSON",
     "Usage: kestrana list DRAWING [--network N] [--pipes | --nodes]\n"
     "         [--json | --csv]\n\n"
     "Lists the pipes and nodes of every network of DRAWING, or of one.\n"
     "Per pipe: label, handle, start and end node, size, material, length,\n"
     "invert levels at start and end, slope in percent (the fall from start\n"
     "to end over the length; negative when the pipe rises) and the number\n"
     "of vertices. Per node: label, handle, position, ground and sump\n"
     "levels, depth (ground less sump), matching rule and the low or high\n"
     "point marked at it. Lengths, levels and slopes are rounded to two\n"
     "decimals in every form. The drawing is only read.\n\n"
     "  --network N   only the network N\n"
     "  --pipes       only the pipes\n"
     "  --nodes       only the nodes\n"
     "  --json        JSON (see docs/json.md): sizes as shape, span, rise\n"
     "                and cells, vertices as [x, y] pairs\n"
     "  --csv         CSV for a spreadsheet: a header row and one line per\n"
     "                element; needs --pipes or --nodes\n",
     Run});

}  // namespace

}  // namespace kestrana::cli
