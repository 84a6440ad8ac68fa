// The pieces of node matching that single edits and whole conversions share:
// applying a node's rule to the records of its pipes, and bringing what
// depends on an edited pipe up to date.
#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "core/record.h"

namespace kestrana::host {
class Document;
class Entity;
class Object;
}  // namespace kestrana::host

namespace kestrana::editing {

// Called with each pipe matched, and whether its record changed.
using PipeMatched = std::function<void(host::Entity& pipe, bool changed)>;

// Sets the invert at the node's end of every listed pipe by the rule and
// names the node in the pipe's node-label field, writing the pipe when that
// changed it; start-side pipes first, each list in order.
void MatchPipesAtNode(host::Document& document, host::Entity& node_entity,
                      std::string_view node_label,
                      std::string_view pipes_at_start_oid,
                      std::string_view pipes_at_end_oid, double sump_level,
                      int16_t matching, const PipeMatched& matched);

// The annotation texts, crossings and profile flags of one edited pipe.
void RefreshEditedPipe(host::Document& document, host::Entity& pipe);
// The same for many pipes, each once, reading the view style once. Pipes
// without crossings skip the crossing upkeep, which would change nothing.
void RefreshEditedPipes(host::Document& document,
                        const std::vector<host::Entity*>& pipes);

// A pipe's record, which must be whole.
core::Record ReadPipe(const host::Object& pipe);
// A node's record, which must be whole.
core::Record ReadNode(const host::Object& node);

}  // namespace kestrana::editing
