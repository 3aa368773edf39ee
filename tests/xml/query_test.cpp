#include "xml/xml_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Q = XMLQueryStringParser::TokenType;
using Tokens = std::vector<std::pair<Q, std::string>>;

// The tokens between START_STRING and END_STRING.
Tokens split(const std::string& text)
{
    XMLQueryStringParser p(text);
    EXPECT_EQ(p.GetNextToken(), Q::START_STRING);
    Tokens out;
    for (Q t; (t = p.GetNextToken()) != Q::END_STRING;)
        out.emplace_back(t, p.GetTokenValue());
    EXPECT_EQ(p.GetTokenValue(), "");
    return out;
}

TEST(XMLQueryStringParser, Tokens)
{
    const struct {
        std::string text;
        Tokens tokens;
    } cases[] = {
        {"", {}}, {"&query_item;", {{Q::QUERY, "&query_item;"}}},
        {"This is a &query_item; string",
            {{Q::STRING, "This is a "}, {Q::QUERY, "&query_item;"}, {Q::STRING, " string"}}},
        {"This isn't", {{Q::STRING, "This isn't"}}},
        {"&query; at the beginning", {{Q::QUERY_CONTEXT, "&query;"}, {Q::STRING, " at the beginning"}}},
        {"at the end &query_changes_context;",
            {{Q::STRING, "at the end "}, {Q::QUERY_CHANGES_CONTEXT, "&query_changes_context;"}}},
        {"an illegal &query string", {{Q::STRING, "an illegal &query string"}}},
        {"x; &query", {{Q::STRING, "x; &query"}}},
        {"&query_changes_item; and then an error &query_junk; query",
            {{Q::QUERY_CHANGES, "&query_changes_item;"}, {Q::STRING, " and then an error "},
             {Q::ERROR, "&query_junk;"}, {Q::STRING, " query"}}},
        // The search for ";" crosses white space.
        {"&query x; y", {{Q::ERROR, "&query x;"}, {Q::STRING, " y"}}},
        {"{doctype information}", {{Q::DOCTYPE, "doctype information"}}},
        {"begin {doctype information}", {{Q::STRING, "begin {doctype information}"}}},
        {"{doctype information} end", {{Q::STRING, "{doctype information} end"}}}, {"{}", {{Q::DOCTYPE, ""}}},
        {"{", {{Q::STRING, "{"}}}, {"&query;{tolvan}", {{Q::QUERY_CONTEXT, "&query;"}, {Q::DOCTYPE, "tolvan"}}},
        {"{a}&query;", {{Q::DOCTYPE, "a"}, {Q::QUERY_CONTEXT, "&query;"}}},
        {"&query;&query_item;", {{Q::QUERY_CONTEXT, "&query;"}, {Q::QUERY, "&query_item;"}}},
        // The entity table.
        {"&query_context;", {{Q::QUERY_CONTEXT, "&query_context;"}}},
        {"&query_changes;", {{Q::QUERY_CHANGES_CONTEXT, "&query_changes;"}}},
        {"&query_doctype;", {{Q::QUERY_DOCTYPE_CONTEXT, "&query_doctype;"}}},
        {"&query_doctype_context;", {{Q::QUERY_DOCTYPE_CONTEXT, "&query_doctype_context;"}}},
        {"&query_doctype_item;", {{Q::QUERY_DOCTYPE, "&query_doctype_item;"}}},
        {"&query_items;", {{Q::ERROR, "&query_items;"}}},
        {"&queryx;", {{Q::ERROR, "&queryx;"}}}};
    for (const auto& c : cases)
        EXPECT_EQ(split(c.text), c.tokens) << c.text;
}

TEST(XMLQueryStringParser, PutBackRepeatsToken)
{
    XMLQueryStringParser p("a &query;");
    p.PutBackToken(); // START_STRING is already pending
    EXPECT_EQ(p.GetNextToken(), Q::START_STRING);
    EXPECT_EQ(p.GetNextToken(), Q::STRING);
    p.PutBackToken();
    EXPECT_EQ(p.GetNextToken(), Q::STRING);
    EXPECT_EQ(p.GetTokenValue(), "a ");
    EXPECT_EQ(p.GetNextToken(), Q::QUERY_CONTEXT);
    EXPECT_EQ(p.GetNextToken(), Q::END_STRING);
    EXPECT_EQ(p.GetNextToken(), Q::END_STRING);
}

} // namespace
