#pragma once

#include <optional>
#include <ostream>
#include <vector>

#include "schema/language.hpp"
#include "search/find.hpp"
#include "tool/schema_set.hpp"

// lorekeep-tool find and replace: the window's Find and Replace over a mod.
namespace lorekeep::tool {

struct SearchRequest {
    Text find;
    Text with;
    std::optional<Language> language;  // none: every language
    search::FindOptions options;
    bool titles = false;  // titles as well as bodies
    bool dryRun = false;
};

// Prints each match as "file: language field position: context". Returns
// how many files could not be read.
int findInSchemas(const std::vector<SchemaFile>& files, const SearchRequest& request,
                  std::ostream& out, std::ostream& err);

// Replaces every match and writes each changed file through the window's
// safe save (only the changed records are written anew, with a new stamp;
// everything else keeps its bytes), with a line per changed file. Returns
// how many files could not be read or written.
int replaceInSchemas(const std::vector<SchemaFile>& files, const SearchRequest& request,
                     std::ostream& out, std::ostream& err);

}  // namespace lorekeep::tool
