#include "foundation/str_util.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(StrUtil, FirstNonWhite) {
    EXPECT_EQ(FirstNonWhite(" \t\r\n\v\fx y"), 'x');
    EXPECT_EQ(FirstNonWhite(""), 0);
    EXPECT_EQ(FirstNonWhite(" \n\t"), 0);
    EXPECT_EQ(FirstNonWhite(" \xa0"), '\xa0');  // no white space outside the C locale's
}

TEST(StrUtil, Strip) {
    using Strip = std::string (*)(const std::string&);
    const struct {
        Strip strip;
        std::string in, out;
    } rows[] = {
        {StripNonSpaceWS, "", ""}, {StripNonSpaceWS, "a \t\r\nb\v\f", "a b"},
        {StripNonSpaceWS, "  two  blanks  ", "  two  blanks  "}, {StripNonSpaceWS, "\n\t", ""},
        {StripNonSpaceWSOne, "", ""}, {StripNonSpaceWSOne, "  a  b  ", " a b "},
        {StripNonSpaceWSOne, "a \t b", "a b"},  // a tab between blanks doesn't separate them
        {StripNonSpaceWSOne, "a\n\nb", "ab"}, {StripNonSpaceWSOne, "<x>\n  <y/>\n</x>\n", "<x> <y/></x>"},
        {StripNonSpaceWSOne, "\t \n \t", " "}, {StripEndWS, "\thello\tagain\t", "hello\tagain"},
        {StripEndWS, " \t\r\n\v\f", ""}, {StripEndWS, "", ""}, {StripEndWS, "x", "x"}, {StripEndWS, " x", "x"},
        {StripEndWS, "x ", "x"},
    };
    for (const auto& r : rows)
        EXPECT_EQ(r.strip(r.in), r.out) << r.in;
}

TEST(StrUtil, CaseInsensitiveStringFind) {
    const std::size_t none = std::string::npos;
    const struct {
        std::string text, what;
        std::size_t from, at;
    } rows[] = {
        {"Content-Type", "content-type", 0, 0}, {"content-typ", "content-type", 0, none},
        {"rcontent-type", "content-type", 0, 1},
        {"This is junk CONTENT-type and some more junk", "content-type", 0, 13},
        {"This is junk CANTENT-type and some more junk", "content-type", 0, none},
        {"CONTENT-TYPEcontent-type", "content-type", 1, 12}, {"", "content-type", 0, none}, {"abc", "c", 3, none},
        {"abc", "a", 99, none},
        {"abc", "", 3, 3},        // as std::string::find
        {"[@", "{`", 0, none},    // not letters: no case
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
