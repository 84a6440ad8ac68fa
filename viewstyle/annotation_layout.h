// How the lines of an annotation stack up, shared by the block definitions
// and the placed references.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/text_table.h"
#include "host/types.h"
#include "viewstyle/view_style_record.h"

namespace kestrana::viewstyle {

// The attribute block of an element kind.
const char* AttributeBlockName(ElementKind kind);

// The line before which a pipe annotation leaves its gap for the pipe:
// gravity pipe definitions round c / 2 half to even, everything placed on
// a pipe (and pressure pipe definitions) rounds c / 2 + 0.1. Node
// annotations have no gap: their middle index is c.
int DefinitionMiddleIndex(ElementKind kind, int count);
int PlacementMiddleIndex(ElementKind kind, int count);

// Offsets across the text direction of `count` lines with pitch `pitch`:
// from middle × pitch downwards, skipping one pitch before line `middle`.
std::vector<double> LineOffsets(int count, int middle, double pitch);

// The line pitch for a text height: one and a half heights.
double LinePitch(double text_height);

// The text height of an annotation format array.
double StyleTextHeight(const core::TextTable& format);

// The object named by a link field (";RelatedTo<ID>"): the text after the
// first ten characters, read as a number.
host::ObjectId LinkedObjectId(std::string_view link);

}  // namespace kestrana::viewstyle
