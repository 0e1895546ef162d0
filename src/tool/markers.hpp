#pragma once

#include <vector>

#include "markup/text.hpp"

namespace lorekeep::tool {

// The markers of a body or title in order: each "\n<" up to and including its
// ">" and the separator after it, as a translator must keep them.
std::vector<Text> markersIn(TextView text);

}  // namespace lorekeep::tool
