#include "tool/po.hpp"

#include <ostream>

namespace lorekeep::tool {

bool exportPo(const std::vector<SchemaFile>&, Language, bool, const std::string&,
              std::ostream& errors) {
    errors << "lorekeep-tool: export is not built yet\n";
    return false;
}

ImportCounts importPo(const std::string&, const std::vector<SchemaFile>&, bool, std::ostream& out) {
    out << "lorekeep-tool: import is not built yet\n";
    return {0, 1};
}

}  // namespace lorekeep::tool
