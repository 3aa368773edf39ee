#include "foundation/str_util.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// How command texts are stripped.
TEST(StrUtil, StripNonSpaceWSOne) {
    const struct {
        std::string in, out;
    } rows[] = {
        {"", ""}, {"  a  b  ", " a b "}, {"a \t b", "a b"},  // a tab between blanks doesn't separate them
        {"a\n\nb", "ab"}, {"<x>\n  <y/>\n</x>\n", "<x> <y/></x>"}, {"\t \n \t", " "},
    };
    for (const auto& r : rows)
        EXPECT_EQ(StripNonSpaceWSOne(r.in), r.out) << r.in;
}

TEST(StrUtil, CaseInsensitiveStringFind) {
    const std::size_t none = std::string::npos;
    const struct {
        std::string text, what;
        std::size_t from, at;
    } rows[] = {
        {"Content-Type", "content-type", 0, 0}, {"content-typ", "content-type", 0, none},
        {"rcontent-type", "content-type", 0, 1}, {"junk CONTENT-type and junk", "content-type", 0, 5},
        {"junk CANTENT-type and junk", "content-type", 0, none}, {"CONTENT-TYPEcontent-type", "content-type", 1, 12},
        {"", "content-type", 0, none}, {"abc", "c", 3, none}, {"abc", "a", 99, none},
        {"abc", "", 3, 3},      // as std::string::find
        {"[@", "{`", 0, none},  // not letters: no case
    };
    for (const auto& r : rows)
        EXPECT_EQ(CaseInsensitiveStringFind(r.text, r.what, r.from), r.at) << r.text << " / " << r.what;
}

TEST(StrUtil, CaseInsensitiveStringCompare) {
    const struct {
        std::string a, b;
        int result;
    } rows[] = {
        {"hello", "HELLO", 0}, {"hello1", "HELLO2", -1}, {"HELLO2", "hello1", 1},
        {"hello", "hello again", -1}, {"hello again", "hello", 1}, {"", "", 0}, {"", "a", -1},
        {"\x80", "a", 1},  // bytes compare unsigned
        {"_", "a", -1},    // '_' lies between the cases: compared as lower case
    };
    for (const auto& r : rows)
        EXPECT_EQ(CaseInsensitiveStringCompare(r.a, r.b), r.result) << r.a << " / " << r.b;
}

}  // namespace
