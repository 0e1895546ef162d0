#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace lorekeep::tool {

// Runs `lorekeep-tool` with its arguments (without the program name). Returns
// the exit status: 0 fine, 1 findings or refusals, 2 bad usage.
int runTool(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

}  // namespace lorekeep::tool
