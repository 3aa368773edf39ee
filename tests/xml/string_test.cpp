#include "xml/xml_string.h"

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

struct ReadCase {
    const char* input;
    std::string value;
    std::string rest;  // what is left unread
};

template <class S>
void check_reads(const std::vector<ReadCase>& cases)
{
    for (const ReadCase& c : cases) {
        std::istringstream is(c.input);
        S s;
        is >> s;
        EXPECT_EQ(static_cast<const std::string&>(s), c.value) << "input: " << c.input;
        is.clear();
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(is), {}), c.rest) << "input: " << c.input;
    }
}

TEST(XMLString, Reads)
{
    check_reads<XMLString>({
        {"Read up to tag </end_tag>", "Read up to tag", "</end_tag>"},
        {"<tag> the tag prevents reading anything", "", "<tag> the tag prevents reading anything"}, {"> x", "", "> x"},
        {"\"A quoted 'string'\"", "A quoted 'string'", ""}, {"'A quoted \"string\"'", "A quoted \"string\"", ""},
        {"A quoted \"string\"", "A quoted", "\"string\""}, {"A quoted 'string'", "A quoted", "'string'"},
        {"'A quoted' string", "A quoted", " string"}, {"\"A quoted\" string", "A quoted", " string"},
        {"AttrName='AttrValue'", "AttrName=", "'AttrValue'"},
        {" \t\r\n inner   blanks\tkept \n", "inner   blanks\tkept", ""}, {"''", "", ""},
        {"'unclosed <tag>", "unclosed ", "<tag>"}, {"'open to the end", "open to the end", ""},
        {"&lt;&gt;&quot;&apos;&amp;", "<>\"'&", ""}, {"'&lt;&gt;&quot;&apos;&amp;'", "<>\"'&", ""},
        // Unknown entities survive; there are no numeric references.
        {"a &query; b", "a &query; b", ""}, {"&#65; &LT;", "&#65; &LT;", ""},
        // White space right after an unfinished entity is lost.
        {"a &junk b", "a &junkb", ""}, {"'a &junk b'", "a &junkb", ""}, {"a &junk\nb", "a &junkb", ""},
        {"a &amp", "a &amp", ""}, {"x&y<z", "x&y", "<z"}, {"a&b&lt;", "a&b<", ""}, {"'a&b'c", "a&b", "c"},
        {"a&b'c'", "a&b", "'c'"},
        // Bytes above 127 are plain text, not white space.
        {"\xC3\xA9t\xC3\xA9\xA0 ", "\xC3\xA9t\xC3\xA9\xA0", ""}});
}

TEST(XMLName, Reads)
{
    check_reads<XMLName>({
        {"name attr=\"value\"", "name", " attr=\"value\""}, {"attr=\"value\"", "attr", "=\"value\""},
        {"_na:me/>", "_na:me", "/>"}, {":name<tag>", ":name", "<tag>"}, {":name-with_dash<>", ":name-with_dash", "<>"},
        {".no-name", "", ".no-name"}, {"<tag>not a name", "", "<tag>not a name"}, {" name", "", " name"},
        {"1abc", "", "1abc"}, {"&query_item;", "&query_item;", ""},
        {"&entity_name;with junk", "&entity_name;", "with junk"}, {"a&b", "a", "&b"}, {"a1.b-c", "a1.b-c", ""},
        {"na\xC3\xA9", "na", "\xC3\xA9"}});
}

// A quoted string stops at its quote; an unquoted one runs to the end of the stream, which fails it.
TEST(XMLString, ReadStateBits)
{
    for (const char* text : {"'x' ", "x ", "   "}) {
        std::istringstream is(text);
        XMLString s;
        is >> s;
        EXPECT_EQ(is.good(), text[0] == '\'') << text;
        EXPECT_EQ(is.fail() && is.eof(), text[0] != '\'') << text;
    }
}

// Strings escape what would break the markup but leave entities alone; names are cut at the first
// character that is not a name's.
TEST(XMLString, Writes)
{
    auto written = [](const XMLString& s) {
        std::ostringstream os;
        os << s;
        return os.str();
    };
    const std::pair<std::string, std::string> escaped[] = {
        {"'stuff '\"<>& to do", "&apos;stuff &apos;&quot;&lt;&gt;&amp; to do"}, {"&begin", "&amp;begin"},
        {"goodbye & &query;", "goodbye &amp; &query;"}, {"&junk;", "&junk;"}, {"&lt;", "&lt;"}, {"&;", "&amp;;"},
        {"tricky&", "tricky&amp;"}, {"&a b;", "&amp;a b;"}, {"&a&b;", "&amp;a&b;"}, {"&a<b;", "&amp;a&lt;b;"},
        {"", ""}};
    for (const auto& [value, text] : escaped)
        EXPECT_EQ(written(XMLString(value)), text) << value;
    const std::pair<std::string, std::string> cut[] = {
        {"name with spaces", "name"}, {"&entity_name;with junk", "&entity_name;"}, {"ARVEX::tag31", "ARVEX::tag31"},
        {"9lives", ""}, {"-x", ""}, {"a&b", "a"}, {"", ""}};
    for (const auto& [value, text] : cut)
        EXPECT_EQ(written(XMLName(value)), text) << value;
}

} // namespace
