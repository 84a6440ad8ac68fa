// kestrana renew-ids: every object ID stored in the project's records
// rebuilt from the labels kept beside it.
#include <optional>
#include <string>

#include "cli/command.h"
#include "cli/project.h"
#include "cli/session.h"
#include "dxf/io.h"
#include "oids/update_oids.h"

namespace kestrana::cli {

RenewIdsResult RenewIds(const RenewIdsOptions& options) {
  RenewIdsResult result;
  dxf::EditDrawing(
      options.drawing, options.output,
      [&](memhost::MemDocument& document) {
        RequireProject(document);
        result.was_stale = oids::UpdateOIDs::StoredIdsAreStale(document);
        result.records = oids::UpdateOIDs::UpdateObjectIDs(document);
      },
      CommandLoadOptions());
  result.written = options.output.value_or(options.drawing);
  return result;
}

namespace {

int Run(const std::vector<std::string>& args, Io& io) {
  Args a(args, {}, {"output"});
  a.ExpectPositionals(1);
  RenewIdsOptions options{a.Positional(0, "the drawing (DRAWING.dxf)"),
                          a.Option("output")};
  RenewIdsResult r = RenewIds(options);
  if (r.records == 0)
    io.out << "every stored object ID was current\n";
  else
    io.out << "renewed the object IDs of " << r.records
           << (r.records == 1 ? " record" : " records") << "\n";
  io.out << "wrote " << r.written << "\n";
  return 0;
}

Registrar renew_ids_command(
    {"renew-ids", "rebuild stored object IDs from their labels",
     "Usage: kestrana renew-ids DRAWING [-o OUT]\n\n"
     "Records link objects by object IDs, which a CAD session hands out\n"
     "afresh each time it opens a drawing; every ID list has a partner\n"
     "list of labels. This rebuilds every stored ID of the project from\n"
     "those labels and the objects' current IDs, drops references whose\n"
     "labels name nothing, and puts the current marker IDs into the\n"
     "project record. Every command does this by itself when it finds the\n"
     "stored IDs are another session's; this command does it always.\n\n"
     "  -o, --output OUT   write to OUT instead of DRAWING\n",
     Run});

}  // namespace
}  // namespace kestrana::cli
