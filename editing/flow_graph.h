// A converted network as a graph of its nodes and pipes, each pipe running
// from its start node to its end node: the order water flows in.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestrana::host {
class Document;
class Entity;
}  // namespace kestrana::host

namespace kestrana::editing {

struct FlowGraph {
  struct Node {
    host::Entity* entity;
    std::string label;
    double ground;
    std::vector<size_t> in, out;  // pipes ending and starting here
  };
  struct Pipe {
    host::Entity* entity;
    std::string label;
    size_t from, to;  // nodes
    double length;
  };
  std::vector<Node> nodes;  // in the network's order
  std::vector<Pipe> pipes;
};

// The network's nodes and pipes as their records link them.
FlowGraph ReadFlowGraph(host::Document& document, std::string_view network);

// The nodes with every node upstream of one before it. RefusedError for a
// network that runs in a circle.
std::vector<size_t> UpstreamFirst(const FlowGraph& graph);

}  // namespace kestrana::editing
