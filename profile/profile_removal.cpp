#include <vector>

#include "events/events.h"
#include "host/host.h"
#include "profile/profile.h"

namespace kestrana::profile {

void Profile::DeleteNetworkProfiles(host::Document& document,
                                    std::string_view net_name) {
  std::vector<host::Entity*> profiles =
      GetExistingProfileSet(document, net_name).Entities();
  for (host::Entity* block : profiles) {
    events::Events::ProfileWillBeErased(
        document, host::As<host::BlockReference>(*block), "", "");
    block->Delete();
  }
}

}  // namespace kestrana::profile
