#include "foundation/str_util.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct Row {
    std::string in, out;
};

TEST(StrUtil, FirstNonWhite) {
    EXPECT_EQ(FirstNonWhite(" \t\r\n\v\fx y"), 'x');
    EXPECT_EQ(FirstNonWhite(""), 0);
    EXPECT_EQ(FirstNonWhite(" \n\t"), 0);
    EXPECT_EQ(FirstNonWhite(" \xa0"), '\xa0');  // no white space outside the C locale's
}

TEST(StrUtil, StripNonSpaceWS) {
    const Row rows[] = {
        {"", ""},
        {"a \t\r\nb\v\f", "a b"},
        {"  two  blanks  ", "  two  blanks  "},
        {"\n\t", ""},
    };
    for (const Row& r : rows)
        EXPECT_EQ(StripNonSpaceWS(r.in), r.out) << r.in;
}

TEST(StrUtil, StripNonSpaceWSOne) {
    const Row rows[] = {
        {"", ""},
        {"a", "a"},
        {"  a  b  ", " a b "},
        {"a \t b", "a b"},                 // a tab between blanks doesn't separate them
        {"a\n\nb", "ab"},
        {"<x>\n  <y/>\n</x>\n", "<x> <y/></x>"},
        {"\t \n \t", " "},
    };
    for (const Row& r : rows)
        EXPECT_EQ(StripNonSpaceWSOne(r.in), r.out) << r.in;
}

TEST(StrUtil, StripEndWS) {
    const Row rows[] = {
        {"  hello  ", "hello"},
        {"\thello\tagain\t", "hello\tagain"},
        {" \t\r\n\v\f", ""},
        {"", ""},
        {"x", "x"},
        {" x", "x"},
        {"x ", "x"},
    };
    for (const Row& r : rows)
        EXPECT_EQ(StripEndWS(r.in), r.out) << r.in;
}

TEST(StrUtil, CaseInsensitiveStringFind) {
    const std::size_t none = std::string::npos;
    const struct {
        std::string text;
        std::size_t at;
    } rows[] = {
        {"Content-Type", 0},
        {"content-typ", none},
        {"content-typer", 0},
        {"rcontent-type", 1},
        {"CONTENT-TYPE", 0},
        {"This is junk CONTENT-type and some more junk", 13},
        {"This is junk CANTENT-type and some more junk", none},
        {"CONTENT-TYPEcontent-type", 0},
        {"", none},
    };
    for (const auto& r : rows)
        EXPECT_EQ(CaseInsensitiveStringFind(r.text, "content-type", 0), r.at) << r.text;

    EXPECT_EQ(CaseInsensitiveStringFind("CONTENT-TYPEcontent-type", "content-type", 1), 12u);
    EXPECT_EQ(CaseInsensitiveStringFind("abc", "c", 3), none);
    EXPECT_EQ(CaseInsensitiveStringFind("abc", "a", 99), none);
    EXPECT_EQ(CaseInsensitiveStringFind("abc", "", 3), 3u);  // as std::string::find
    EXPECT_EQ(CaseInsensitiveStringFind("[@", "{`", 0), none);  // not letters: no case
}

TEST(StrUtil, CaseInsensitiveStringCompare) {
    const struct {
        std::string a, b;
        int result;
    } rows[] = {
        {"hello", "HELLO", 0},
        {"hello1", "HELLO2", -1},
        {"HELLO2", "hello1", 1},
        {"hello", "hello again", -1},
        {"hello again", "hello", 1},
        {"abc", "cba", -1},
        {"", "", 0},
        {"", "a", -1},
        {"\x80", "a", 1},  // bytes compare unsigned
        {"_", "a", -1},    // '_' lies between the cases: compared as lower case
    };
    for (const auto& r : rows)
        EXPECT_EQ(CaseInsensitiveStringCompare(r.a, r.b), r.result) << r.a << " / " << r.b;
}

}  // namespace
