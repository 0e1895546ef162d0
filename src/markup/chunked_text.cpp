#include "markup/chunked_text.hpp"

#include <algorithm>
#include <iterator>

namespace lorekeep::markup {

namespace {

// Chunks are cut at this length and cut again once an edit makes one twice
// as long; a chunk's own edit then moves at most a few kilobytes.
constexpr std::size_t kChunkLength = 4096;

}  // namespace

void ChunkedText::cut(TextView text, std::vector<Text>& out) {
    for (std::size_t at = 0; at < text.size(); at += kChunkLength) {
        out.emplace_back(text.substr(at, kChunkLength));
    }
}

void ChunkedText::assign(TextView text) {
    m_chunks.clear();
    cut(text, m_chunks);
    m_size = text.size();
}

std::pair<std::size_t, std::size_t> ChunkedText::locate(std::size_t position) const {
    std::size_t begins = 0;
    for (std::size_t k = 0; k < m_chunks.size(); ++k) {
        if (position < begins + m_chunks[k].size() || k + 1 == m_chunks.size()) {
            return {k, begins};
        }
        begins += m_chunks[k].size();
    }
    return {0, 0};
}

void ChunkedText::replace(std::size_t start, std::size_t removed, TextView inserted) {
    start = std::min(start, m_size);
    removed = std::min(removed, m_size - start);
    if (m_chunks.empty()) {
        cut(inserted, m_chunks);
        m_size = inserted.size();
        return;
    }
    // The chunks that the change touches become one text, changed, and are
    // cut again where it has grown too long.
    const auto [first, firstBegins] = locate(start);
    std::size_t last = first;
    for (std::size_t end = firstBegins + m_chunks[first].size();
         end < start + removed && last + 1 < m_chunks.size(); end += m_chunks[last].size()) {
        ++last;
    }
    Text merged = std::move(m_chunks[first]);
    for (std::size_t k = first + 1; k <= last; ++k) {
        merged.append(m_chunks[k]);
    }
    merged.replace(start - firstBegins, removed, inserted);
    m_size = m_size - removed + inserted.size();
    std::vector<Text> pieces;
    if (merged.size() <= 2 * kChunkLength) {
        if (!merged.empty() || m_chunks.size() == 1) {
            pieces.push_back(std::move(merged));
        }
    } else {
        cut(merged, pieces);
    }
    const auto from = m_chunks.begin() + static_cast<std::ptrdiff_t>(first);
    if (pieces.size() == 1 && last == first) {
        *from = std::move(pieces.front());
        return;
    }
    m_chunks.erase(from, m_chunks.begin() + static_cast<std::ptrdiff_t>(last) + 1);
    m_chunks.insert(m_chunks.begin() + static_cast<std::ptrdiff_t>(first),
                    std::make_move_iterator(pieces.begin()), std::make_move_iterator(pieces.end()));
}

Text ChunkedText::copy(std::size_t from, std::size_t to) const {
    to = std::min(to, m_size);
    Text out;
    if (from >= to) {
        return out;
    }
    out.reserve(to - from);
    auto [k, begins] = locate(from);
    for (; k < m_chunks.size() && begins < to; begins += m_chunks[k++].size()) {
        const std::size_t a = std::max(from, begins) - begins;
        const std::size_t b = std::min(to, begins + m_chunks[k].size()) - begins;
        if (b > a) {
            out.append(m_chunks[k], a, b - a);
        }
    }
    return out;
}

}  // namespace lorekeep::markup
