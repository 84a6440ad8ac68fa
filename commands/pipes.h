// `kestrana pipe split|merge|reverse`: pipes cut, joined and turned round,
// with everything that hangs on them. The shape of a command: command.h.
#pragma once

#include <string>

#include "commands/elements.h"

namespace kestrana::memhost {
class MemDocument;
}

namespace kestrana::commands {

struct SplitOptions {
  std::string network;
  std::string label;
  double x = 0, y = 0;  // the split point
};
struct SplitResult {
  std::string first, second, node;  // the labels of the parts and new node
};
// Answers "Select pipe to split:" and "Pick split point:". RefusedError
// with the system's message for a point off the pipe or at its end.
SplitResult SplitPipe(memhost::MemDocument& document,
                      const SplitOptions& options);

using MergeOptions = PipeLabels;
struct MergeResult {
  int pipes = 0;       // merged
  std::string merged;  // the label of the pipe they became
};
// Answers "Select Pipes to Merge:". RefusedError with the system's message
// for pipes that are not one run of one material and size.
MergeResult MergePipes(memhost::MemDocument& document,
                       const MergeOptions& options);

using ReverseOptions = PipeLabels;
struct ReverseResult {
  int pipes = 0;
};
// Answers "Select Pipes to Reverse:".
ReverseResult ReversePipes(memhost::MemDocument& document,
                           const ReverseOptions& options);

}  // namespace kestrana::commands
