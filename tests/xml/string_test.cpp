#include "xml/xml_string.h"

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>
#include <string>

namespace {

struct ReadCase {
    const char* input;
    std::string value;
    std::string rest; // what is left unread
};

void PrintTo(const ReadCase& c, std::ostream* os)
{
    *os << testing::PrintToString(std::string(c.input));
}

template <class S>
void check_read(const ReadCase& c)
{
    std::istringstream is(c.input);
    S s;
    is >> s;
    EXPECT_EQ(static_cast<const std::string&>(s), c.value) << "input: " << c.input;
    is.clear();
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(is), {}), c.rest) << "input: " << c.input;
}

class StringRead : public testing::TestWithParam<ReadCase> {};
TEST_P(StringRead, ValueAndRest) { check_read<XMLString>(GetParam()); }

INSTANTIATE_TEST_SUITE_P(Cases, StringRead, testing::Values(
    ReadCase{"Read up to tag </end_tag>", "Read up to tag", "</end_tag>"},
    ReadCase{"<tag> the tag prevents reading anything", "", "<tag> the tag prevents reading anything"},
    ReadCase{"> x", "", "> x"},
    ReadCase{"\"A quoted 'string'\"", "A quoted 'string'", ""},
    ReadCase{"'A quoted \"string\"'", "A quoted \"string\"", ""},
    ReadCase{"A quoted \"string\"", "A quoted", "\"string\""},
    ReadCase{"A quoted 'string'", "A quoted", "'string'"},
    ReadCase{"'A quoted' string", "A quoted", " string"},
    ReadCase{"\"A quoted\" string", "A quoted", " string"},
    ReadCase{"AttrName='AttrValue'", "AttrName=", "'AttrValue'"},
    ReadCase{" \t\r\n inner   blanks\tkept \n", "inner   blanks\tkept", ""},
    ReadCase{"''", "", ""},
    ReadCase{"'unclosed <tag>", "unclosed ", "<tag>"},
    ReadCase{"'open to the end", "open to the end", ""},
    ReadCase{"&lt;&gt;&quot;&apos;&amp;", "<>\"'&", ""},
    ReadCase{"'&lt;&gt;&quot;&apos;&amp;'", "<>\"'&", ""},
    // Unknown entities survive; there are no numeric references.
    ReadCase{"a &query; b", "a &query; b", ""},
    ReadCase{"&#65; &LT;", "&#65; &LT;", ""},
    // White space right after an unfinished entity is lost.
    ReadCase{"a &junk b", "a &junkb", ""},
    ReadCase{"'a &junk b'", "a &junkb", ""},
    ReadCase{"a &junk\nb", "a &junkb", ""},
    ReadCase{"a &amp", "a &amp", ""},
    ReadCase{"x&y<z", "x&y", "<z"},
    ReadCase{"a&b&lt;", "a&b<", ""},
    ReadCase{"'a&b'c", "a&b", "c"},
    ReadCase{"a&b'c'", "a&b", "'c'"},
    // Bytes above 127 are plain text, not white space.
    ReadCase{"\xC3\xA9t\xC3\xA9\xA0 ", "\xC3\xA9t\xC3\xA9\xA0", ""}));

class NameRead : public testing::TestWithParam<ReadCase> {};
TEST_P(NameRead, ValueAndRest) { check_read<XMLName>(GetParam()); }

INSTANTIATE_TEST_SUITE_P(Cases, NameRead, testing::Values(
    ReadCase{"name attr=\"value\"", "name", " attr=\"value\""},
    ReadCase{"attr=\"value\"", "attr", "=\"value\""},
    ReadCase{"_na:me/>", "_na:me", "/>"},
    ReadCase{":name<tag>", ":name", "<tag>"},
    ReadCase{":name-with_dash<>", ":name-with_dash", "<>"},
    ReadCase{".no-name", "", ".no-name"},
    ReadCase{"<tag>not a name", "", "<tag>not a name"},
    ReadCase{" name", "", " name"},
    ReadCase{"1abc", "", "1abc"},
    ReadCase{"&query_item;", "&query_item;", ""},
    ReadCase{"&entity_name;with junk", "&entity_name;", "with junk"},
    ReadCase{"a&b", "a", "&b"},
    ReadCase{"a1.b-c", "a1.b-c", ""},
    ReadCase{"na\xC3\xA9", "na", "\xC3\xA9"}));

TEST(XMLString, ReadStateBits)
{
    std::istringstream quoted("'x' ");
    XMLString s;
    quoted >> s;
    EXPECT_TRUE(quoted.good());

    std::istringstream unquoted("x ");
    unquoted >> s;
    EXPECT_TRUE(unquoted.fail() && unquoted.eof());

    std::istringstream blank("   ");
    blank >> s;
    EXPECT_TRUE(blank.fail() && blank.eof());
}

TEST(XMLString, ReadThroughBaseUsesNameRules)
{
    XMLName name;
    XMLString& base = name;
    std::istringstream is("abc def");
    is >> base;
    EXPECT_EQ(static_cast<const std::string&>(name), "abc");
}

struct WriteCase {
    std::string value;
    std::string written;
};

void PrintTo(const WriteCase& c, std::ostream* os)
{
    *os << testing::PrintToString(c.value);
}

class StringWrite : public testing::TestWithParam<WriteCase> {};

TEST_P(StringWrite, Escapes)
{
    std::ostringstream os;
    os << XMLString(GetParam().value);
    EXPECT_EQ(os.str(), GetParam().written);
}

INSTANTIATE_TEST_SUITE_P(Cases, StringWrite, testing::Values(
    WriteCase{"'lots of stuff '\"<>& to do", "&apos;lots of stuff &apos;&quot;&lt;&gt;&amp; to do"},
    WriteCase{"&begin", "&amp;begin"},
    WriteCase{"goodbye & &query;", "goodbye &amp; &query;"},
    WriteCase{"&junk;", "&junk;"},
    WriteCase{"&lt;", "&lt;"},
    WriteCase{"&;", "&amp;;"},
    WriteCase{"tricky&", "tricky&amp;"},
    WriteCase{"&a b;", "&amp;a b;"},
    WriteCase{"&a&b;", "&amp;a&b;"},
    WriteCase{"&a<b;", "&amp;a&lt;b;"},
    WriteCase{"", ""}));

TEST(XMLString, WriteThenReadRoundTrips)
{
    const std::string text = "'lots of stuff '\"<>& to do";
    std::stringstream ss;
    ss << '"' << XMLString(text) << '"';
    XMLString back;
    ss >> back;
    EXPECT_EQ(static_cast<const std::string&>(back), text);
}

class NameWrite : public testing::TestWithParam<WriteCase> {};

TEST_P(NameWrite, Cuts)
{
    std::ostringstream os;
    os << XMLName(GetParam().value);
    EXPECT_EQ(os.str(), GetParam().written);
}

INSTANTIATE_TEST_SUITE_P(Cases, NameWrite, testing::Values(
    WriteCase{"name with spaces", "name"},
    WriteCase{"&entity_name;with junk", "&entity_name;"},
    WriteCase{"ARVEX::tag31", "ARVEX::tag31"},
    WriteCase{"9lives", ""},
    WriteCase{"-x", ""},
    WriteCase{"a&b", "a"},
    WriteCase{"", ""}));

} // namespace
