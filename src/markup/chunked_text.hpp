#pragma once

#include <cstddef>
#include <vector>

#include "markup/text.hpp"

namespace lorekeep::markup {

// A long text held in chunks of a few thousand characters, so that a change
// costs in proportion to the change and not to the text behind it (a flat
// string moves everything after an insertion: 32 MB at the start of a
// 16-million-character body).
class ChunkedText {
  public:
    void assign(TextView text);
    std::size_t size() const { return m_size; }
    // Replaces `removed` characters from `start` (both clamped to the text).
    void replace(std::size_t start, std::size_t removed, TextView inserted);
    // The characters from `from` to `to` (clamped).
    Text copy(std::size_t from, std::size_t to) const;

  private:
    // The chunk that holds `position` (the last one for the end) and where
    // that chunk begins.
    std::pair<std::size_t, std::size_t> locate(std::size_t position) const;
    // Appends `text` to `out` as chunks of the usual length.
    static void cut(TextView text, std::vector<Text>& out);

    std::vector<Text> m_chunks;
    std::size_t m_size = 0;
};

}  // namespace lorekeep::markup
