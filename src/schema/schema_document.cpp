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

}  // namespace lorekeep
