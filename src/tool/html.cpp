#include "tool/html.hpp"

namespace lorekeep::tool {

std::string renderHtml(const SchemaDocument&, Language) {
    return {};
}

}  // namespace lorekeep::tool
