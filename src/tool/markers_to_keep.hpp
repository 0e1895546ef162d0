#pragma once

#include <vector>

#include "markup/text.hpp"

namespace lorekeep::tool {

// What a translator must keep of a body or title, in order: each tag written
// "\n<" … ">" with the separator after it (as the scanner reads it), and
// with `lineBreaks` each real line break (CR LF, CR or LF) outside a tag, as
// one "\n" whatever its kind.
std::vector<Text> markersToKeep(TextView text, bool lineBreaks = false);

}  // namespace lorekeep::tool
