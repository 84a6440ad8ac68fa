// What a drawing can hold, shared by the readers of files and the command
// line so that every way in refuses the same values.
#pragma once

namespace kestrana::host {

// The largest magnitude of a number a drawing holds (coordinates, levels,
// sizes, offsets): far beyond any survey grid, small enough that a value
// keeps its digits through 15-digit texts and that sums and offsets of two
// such values stay finite. NaN and infinities are never held.
inline constexpr double kLargestNumber = 1e9;

}  // namespace kestrana::host
