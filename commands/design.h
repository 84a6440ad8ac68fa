// Designing a drawn network: sizes and levels chosen by the rules of
// sizing/ and set as `kestrana pipe set` and `node set` set them. The
// shape of a command: command.h.
#pragma once

#include <string>

#include "sizing/design.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

enum class DesignRules { kSewer, kWaterMains };

struct DesignOptions {
  std::string network;
  DesignRules rules = DesignRules::kSewer;
};

struct DesignResult {
  sizing::Design design;  // as it was set
};

// Every pipe of the network takes its section and material, then every
// node its sump and matching rule; connected elements follow each edit.
DesignResult DesignNetwork(host::Document& document,
                           const DesignOptions& options);

}  // namespace kestrana::commands
