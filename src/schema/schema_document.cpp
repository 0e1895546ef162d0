#include "schema/schema_document.hpp"

namespace lorekeep {

Text schemaPath(TextView folder, TextView name) {
    Text path;
    path.reserve(folder.size() + 1 + name.size() + kSchemaExtension.size());
    path.append(folder);
    path.push_back(kPathSeparator);
    path.append(name);
    path.append(kSchemaExtension);
    return path;
}

bool hasSchemaExtension(TextView fileName) {
    if (fileName.size() < kSchemaExtension.size()) {
        return false;
    }
    const TextView tail = fileName.substr(fileName.size() - kSchemaExtension.size());
    for (std::size_t k = 0; k < tail.size(); ++k) {
        const char16_t c =
            tail[k] >= u'A' && tail[k] <= u'Z' ? static_cast<char16_t>(tail[k] + 0x20) : tail[k];
        if (c != kSchemaExtension[k]) {
            return false;
        }
    }
    return true;
}

}  // namespace lorekeep
