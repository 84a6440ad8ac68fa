#include "profile/pipe_chain.h"

#include "core/general.h"
#include "core/pipe_record.h"
#include "core/references.h"
#include "host/host.h"

namespace kestrana::profile {

using core::PipeField;

PipeChainIndex::PipeChainIndex(const std::vector<host::Entity*>& pipes) {
  for (host::Entity* entity : pipes) {
    const core::Record record =
        core::ReadRecordWithFields(*entity, core::kPipeRecordLength, "pipe");
    ChainPipe pipe;
    pipe.entity = &host::As<host::LwPolyline>(*entity);
    pipe.label = core::General::EntityLabelFromCombined(
        record.Text(PipeField::kCombinedLabel));
    pipe.start_node = record.Text(PipeField::kStartNodeLabel);
    pipe.end_node = record.Text(PipeField::kEndNodeLabel);
    const int index = static_cast<int>(pipes_.size());
    at_node_[pipe.start_node].push_back(index);
    if (pipe.end_node != pipe.start_node)
      at_node_[pipe.end_node].push_back(index);
    pipes_.push_back(std::move(pipe));
  }
  for (ChainPipe& pipe : pipes_) {
    pipe.at_start = static_cast<int>(PipesAt(pipe.start_node).size()) - 1;
    pipe.at_end = static_cast<int>(PipesAt(pipe.end_node).size()) - 1;
  }
}

const std::vector<int>& PipeChainIndex::PipesAt(const std::string& node) const {
  return at_node_.at(node);
}

std::vector<int> PipeChainIndex::EndPipes() const {
  std::vector<int> ends;
  for (size_t i = 0; i < pipes_.size(); ++i)
    if (pipes_[i].IsEnd()) ends.push_back(static_cast<int>(i));
  return ends;
}

bool PipeChainIndex::IsOneRun() const {
  if (pipes_.size() == 1) return true;
  if (pipes_.empty()) return false;
  for (const ChainPipe& pipe : pipes_) {
    if (pipe.at_start > 1 || pipe.at_end > 1) return false;    // a branch
    if (pipe.at_start == 0 && pipe.at_end == 0) return false;  // on its own
  }
  const std::vector<int> ends = EndPipes();
  if (ends.size() != 2) return false;  // a ring has none
  // Two ends could belong to a run beside a separate ring.
  const ChainPipe& first = pipes_[ends.front()];
  return Walk(ends.front(), first.at_start == 0).size() == pipes_.size();
}

std::vector<PipeChainIndex::Step> PipeChainIndex::Walk(int first,
                                                       bool from_start) const {
  std::vector<Step> steps;
  std::vector<bool> taken(pipes_.size(), false);
  std::string node =
      from_start ? pipes_[first].start_node : pipes_[first].end_node;
  int current = first;
  while (current >= 0) {
    const ChainPipe& pipe = pipes_[current];
    taken[current] = true;
    const int direction = pipe.start_node == node ? 0 : 1;
    steps.push_back({current, direction});
    node = direction == 0 ? pipe.end_node : pipe.start_node;
    current = -1;
    for (int next : PipesAt(node))
      if (!taken[next]) {
        current = next;
        break;
      }
  }
  return steps;
}

}  // namespace kestrana::profile
