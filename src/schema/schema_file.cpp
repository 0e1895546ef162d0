#include "schema/schema_file.hpp"

#include <sys/stat.h>

#include <new>

#include "schema/file_reader.hpp"
#include "schema/limits.hpp"
#include "schema/safe_file.hpp"
#include "schema/schema_writer.hpp"

namespace lorekeep {

namespace {

FileResult failure(std::string reason) {
    return {false, std::move(reason)};
}

}  // namespace

std::size_t maxSchemaFileSize() {
    static const std::size_t size =
        largestSchemaSize({kMaxLineLength, kMaxLineLength, kMaxTitleLength, kMaxBodyLength});
    return size;
}

bool fitsTheWindow(const RecordRead& record) {
    return (!record.font || record.font->text.size() <= kMaxLineLength) &&
           (!record.title || record.title->size() <= kMaxTitleLength) &&
           (!record.body || record.body->size() <= kMaxBodyLength);
}

std::string schemaFilePath(TextView folder, TextView name) {
    const std::string exact = toUtf8(schemaPath(folder, name));
    struct stat st {};
    if (lstat(exact.c_str(), &st) == 0) {
        return exact;
    }
    // The other seven spellings of "sch": S, C and H each in either case.
    const std::string stem = exact.substr(0, exact.size() - 3);
    std::string found;
    for (int spelling = 1; spelling < 8; ++spelling) {
        std::string candidate = stem;
        candidate += (spelling & 1) != 0 ? 'S' : 's';
        candidate += (spelling & 2) != 0 ? 'C' : 'c';
        candidate += (spelling & 4) != 0 ? 'H' : 'h';
        if (lstat(candidate.c_str(), &st) == 0) {
            if (!found.empty()) {
                return exact;  // which one is meant is anyone's guess
            }
            found = candidate;
        }
    }
    return found.empty() ? exact : found;
}

FileResult saveSchema(const SchemaDocument& document, const LocalDateTime& stamp) {
    // The name is the file's third line: a line break in it would make a
    // file that no load can take apart.
    if (document.name.find_first_of(u"\r\n") != Text::npos) {
        return failure("a schema name cannot hold a line break");
    }
    try {
        const std::string bytes = composeSchemaBytes(document, stamp);
        const ReplaceResult replaced =
            replaceFileContents(schemaFilePath(document.folder, document.name), bytes);
        return replaced ? FileResult{true, {}} : failure(replaced.error);
    } catch (const std::bad_alloc&) {
        return failure("out of memory");
    }
}

LoadResult loadSchemaFile(const std::string& path, const ReaderOptions& options,
                          std::string* bytes) {
    LoadResult result;
    try {
        std::string read;
        if (!readFileBytes(path, maxSchemaFileSize(), read, &result.reason)) {
            return result;
        }
        result.read = readSchema(read, options);
        if (bytes != nullptr) {
            *bytes = std::move(read);
        }
    } catch (const std::bad_alloc&) {
        return {false, "out of memory", {}};
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
