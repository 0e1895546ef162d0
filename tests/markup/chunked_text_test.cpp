#include <gtest/gtest.h>

#include <random>

#include "markup/chunked_text.hpp"

namespace lorekeep::markup {
namespace {

// Random edits against a plain string: typing, deleting, pastes and cuts that
// span several chunks, clearing it all and starting again; after each edit
// the size and random stretches (and now and then the whole) read the same.
TEST(ChunkedText, EditsReadBackAsAStringWould) {
    std::mt19937 random(20261125);
    const auto text = [&random](std::size_t length) {
        Text t;
        for (std::size_t k = 0; k < length; ++k) {
            t.push_back(static_cast<char16_t>(u'a' + random() % 26));
        }
        return t;
    };
    Text model = text(20'000);
    ChunkedText chunked;
    chunked.assign(model);
    for (int edit = 0; edit < 3000; ++edit) {
        const std::size_t start = random() % (model.size() + 2);  // now and then past the end
        const std::size_t kind = random() % 20;
        std::size_t removed = 0;
        Text inserted;
        if (kind < 8) {
            inserted = text(1);
        } else if (kind < 14) {
            removed = 1;
        } else if (kind < 18) {
            inserted = text(random() % 12'000);
            removed = random() % 12'000;
        } else if (kind < 19) {
            removed = model.size();  // everything from `start`
        } else {
            inserted = text(random() % 30);
        }
        const std::size_t at = std::min(start, model.size());
        model.replace(at, std::min(removed, model.size() - at), inserted);
        chunked.replace(start, removed, inserted);
        ASSERT_EQ(chunked.size(), model.size()) << "edit " << edit;
        const std::size_t from = random() % (model.size() + 1);
        const std::size_t to = from + random() % 9'000;
        ASSERT_EQ(chunked.copy(from, to), model.substr(from, to - from)) << "edit " << edit;
        if (edit % 100 == 0) {
            ASSERT_EQ(chunked.copy(0, model.size()), model) << "edit " << edit;
        }
    }
}

}  // namespace
}  // namespace lorekeep::markup
