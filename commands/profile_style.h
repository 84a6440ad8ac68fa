// Profile style commands: `kestrana profile style list|show|import|export|
// delete`. Each works on an open project drawing; the caller opens and
// saves it and reads or writes the style file.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "profile/style_markers.h"

namespace kestrana::host {
class Document;
}

namespace kestrana::commands {

struct ProfileStyleSummary {
  std::string name;
  std::vector<profile::StyleProfile> profiles;  // drawn with the style
  friend bool operator==(const ProfileStyleSummary&,
                         const ProfileStyleSummary&) = default;
};

struct ProfileStyleListOptions {};
struct ProfileStyleListResult {
  std::vector<ProfileStyleSummary> styles;  // in the project's order
};
ProfileStyleListResult ProfileStyleList(host::Document& document,
                                        const ProfileStyleListOptions& options);

struct ProfileStyleShowOptions {
  std::string name = {};
};
struct ProfileStyleShowResult {
  ProfileStyleSummary style;
  std::vector<std::string> items;  // the 21 record values
};
// NotFoundError naming the styles there are.
ProfileStyleShowResult ProfileStyleShow(host::Document& document,
                                        const ProfileStyleShowOptions& options);

struct ProfileStyleExportOptions {
  std::string name = {};
};
struct ProfileStyleExportResult {
  std::string name;
  std::string text;  // the style file
};
// The drawing's own lists (its profiles and their networks) stay out of
// the file, so that it imports into any drawing.
ProfileStyleExportResult ProfileStyleExport(
    host::Document& document, const ProfileStyleExportOptions& options);

struct ProfileStyleImportOptions {
  std::vector<std::string> items = {};   // the record values of a style file
  std::optional<std::string> name = {};  // else the name the file gives
};
struct ProfileStyleImportResult {
  std::string name;
  std::string marker_id;
};
// InvalidInputError for settings that are not numbers where numbers are
// read, or a name that is empty or has characters names cannot hold;
// RefusedError for a name another style has.
ProfileStyleImportResult ProfileStyleImport(
    host::Document& document, const ProfileStyleImportOptions& options);

struct ProfileStyleDeleteOptions {
  std::string name = {};
};
struct ProfileStyleDeleteResult {
  std::string name;
};
// RefusedError naming the profiles while profiles drawn with the style
// exist.
ProfileStyleDeleteResult ProfileStyleDelete(
    host::Document& document, const ProfileStyleDeleteOptions& options);

}  // namespace kestrana::commands
