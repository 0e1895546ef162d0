#pragma once

#include <vector>

#include "markup/text.hpp"

namespace lorekeep::tool {

// The markers of a body or title in order: each "\n<" up to and including its
// ">" and the separator after it, as a translator must keep them. With
// `lineBreaks`, each real line break (CR LF, CR or LF) outside a marker is
// listed too, in its place, as one "\n" whatever its kind.
std::vector<Text> markersIn(TextView text, bool lineBreaks = false);

}  // namespace lorekeep::tool
