#include "commands/profile_lines.h"

#include "commands/profile_support.h"
#include "core/general.h"
#include "core/lists.h"
#include "core/names.h"
#include "core/pipe_record.h"
#include "core/record.h"
#include "core/references.h"
#include "core/user_names.h"
#include "host/errors.h"
#include "host/host.h"
#include "profile/profile.h"

namespace kestrana::commands {

ProfileLinesResult ProfileLines(host::Document& document,
                                const ProfileLinesOptions& typed) {
  ProfileLinesOptions options = typed;
  options.network =
      core::FindNetworkName(document, typed.network).value_or(typed.network);
  if (RequireProfileNetwork(document, options.network) != core::kGravity)
    throw InvalidInputError("\"" + options.network +
                            "\" is a pressure network; lines are named "
                            "after the manholes of gravity networks");
  ProfileLinesResult result{options.network, {}};
  for (const profile::GravityLine& line :
       profile::Profile::GetGravityLineNames(document, options.network)) {
    ProfileLine named{line.name, {}};
    for (const std::string& id : core::ListEntries(line.pipe_oids))
      named.pipes.push_back(core::General::EntityLabelFromCombined(
          core::Record::ReadRequired(core::EntityFromIdText(document, id))
              .Text(core::PipeField::kCombinedLabel)));
    result.lines.push_back(std::move(named));
  }
  return result;
}

}  // namespace kestrana::commands
