#include "schema/schema_file.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>

#include "schema/safe_file.hpp"
#include "schema/schema_writer.hpp"

namespace lorekeep {

namespace {

FileResult failure(std::string reason) {
    return {false, std::move(reason)};
}

FileResult readFileBytes(const std::string& path, std::string& bytes) {
    std::error_code error;
    if (path.find('\0') != std::string::npos) {
        return failure("invalid file name");
    }
    if (!std::filesystem::is_regular_file(std::filesystem::path(path), error)) {
        return failure(path + " is not a readable file");
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return failure("cannot open " + path);
    }
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    if (in.bad()) {
        return failure("cannot read " + path);
    }
    return {true, {}};
}

}  // namespace

FileResult saveSchema(const SchemaDocument& document, const LocalDateTime& stamp) {
    try {
        std::string reason;
        const std::string bytes = composeSchemaBytes(document, stamp);
        if (!replaceFileContents(toUtf8(schemaPath(document.folder, document.name)), bytes,
                                 &reason)) {
            return failure(reason);
        }
        return {true, {}};
    } catch (const std::bad_alloc&) {
        return failure("out of memory");
    }
}

LoadResult loadSchema(TextView folder, TextView name, const ReaderOptions& options) {
    LoadResult result;
    try {
        std::string bytes;
        const FileResult file = readFileBytes(toUtf8(schemaPath(folder, name)), bytes);
        if (!file) {
            result.reason = file.reason;
            return result;
        }
        result.read = readSchema(bytes, options);
    } catch (const std::bad_alloc&) {
        result = {false, "out of memory", {}};
        return result;
    }
    result.ok = result.read.complete();
    if (result.read.records.empty()) {
        result.reason = "the file cannot be taken apart into four records";
    } else if (!result.ok) {
        result.reason = "the record of " +
                        toUtf8(kLanguages[result.read.records.size() - 1].tabCaption) +
                        " cannot be read";
    }
    return result;
}

}  // namespace lorekeep
