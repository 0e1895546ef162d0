#pragma once

#include <fstream>
#include <iterator>
#include <ostream>
#include <string>

#include "markup/text.hpp"

namespace lorekeep::testing {

// Test literals are written in UTF-8; the core works in UTF-16.
inline Text T(std::string_view utf8) {
    return FromUtf8(utf8);
}

inline std::string ReadBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline std::string DataPath(const std::string& name) {
    return std::string(LOREKEEP_TEST_DATA_DIR) + "/" + name;
}

}  // namespace lorekeep::testing
