#pragma once

#include <string>

#include "schema/language.hpp"
#include "schema/schema_document.hpp"

namespace lorekeep::tool {

// One language's preview as a standalone HTML page (UTF-8): the preview's
// text, colours, alignments, breaks and page breaks on the game's light page,
// with the title above it.
std::string renderHtml(const SchemaDocument& document, Language language);

}  // namespace lorekeep::tool
