// Deleting a network calls into the subsystems that own what goes with it;
// the classes call each other at this level, headers stay apart.
#include <string>
#include <vector>

#include "core/general.h"
#include "core/guards.h"
#include "crossing/crossing.h"
#include "host/host.h"
#include "library/library.h"
#include "lowhigh/lowhigh.h"
#include "profile/profile.h"

namespace kestrana::core {

void General::DeleteNetwork(host::Document& document,
                            std::string_view net_name) {
  UnlockedLayers unlocked(document);

  // The annotations stay behind DeleteNetworkCrossings for the pipes' erase
  // reaction, which no editor runs here: they go with the network.
  const std::vector<host::Entity*> crossings =
      crossing::Crossing::GetExistingCrossingPointsSet(document, net_name)
          .Entities();
  crossing::Crossing::DeleteNetworkCrossings(document, net_name);
  for (host::Entity* annotation : crossings) {
    try {
      annotation->Delete();
    } catch (const host::HostError&) {
      // Erased already.
    }
  }
  lowhigh::LowHigh::DeleteNetworkLowHighPoints(document, net_name);
  profile::Profile::DeleteNetworkProfiles(document, net_name);

  host::SelectionSet& set =
      GetNetworkSet(document, net_name, network_set::kElementsAndBlocks);
  library::Library::UpdateMaterialLibraryForDeleteNetwork(document, set);
  library::Library::UpdateSizeLibraryForDeleteNetwork(document, set);
  set.Erase();
  set.Delete();

  DeleteNetworkDefintion(document, net_name);
  DeleteNetworkLayers(document, net_name);
  // The network's own layers are gone; the others are locked again.
  unlocked.ForgetDeletedLayers();
}

}  // namespace kestrana::core
