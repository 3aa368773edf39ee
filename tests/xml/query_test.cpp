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

struct QueryCase {
    std::string text;
    Tokens tokens;
};

void PrintTo(const QueryCase& c, std::ostream* os)
{
    *os << testing::PrintToString(c.text);
}

class QuerySplit : public testing::TestWithParam<QueryCase> {};

TEST_P(QuerySplit, Tokens)
{
    EXPECT_EQ(split(GetParam().text), GetParam().tokens);
}

INSTANTIATE_TEST_SUITE_P(Cases, QuerySplit, testing::Values(
    QueryCase{"", {}},
    QueryCase{"&query_item;", {{Q::QUERY, "&query_item;"}}},
    QueryCase{"This is a &query_item; string",
              {{Q::STRING, "This is a "}, {Q::QUERY, "&query_item;"}, {Q::STRING, " string"}}},
    QueryCase{"This isn't", {{Q::STRING, "This isn't"}}},
    QueryCase{"&query; at the beginning", {{Q::QUERY_CONTEXT, "&query;"}, {Q::STRING, " at the beginning"}}},
    QueryCase{"at the end &query_changes_context;",
              {{Q::STRING, "at the end "}, {Q::QUERY_CHANGES_CONTEXT, "&query_changes_context;"}}},
    QueryCase{"an illegal &query string", {{Q::STRING, "an illegal &query string"}}},
    QueryCase{"x; &query", {{Q::STRING, "x; &query"}}},
    QueryCase{"&query_changes_item; and then an error &query_junk; query",
              {{Q::QUERY_CHANGES, "&query_changes_item;"}, {Q::STRING, " and then an error "},
               {Q::ERROR, "&query_junk;"}, {Q::STRING, " query"}}},
    // The search for ";" crosses white space.
    QueryCase{"&query x; y", {{Q::ERROR, "&query x;"}, {Q::STRING, " y"}}},
    QueryCase{"{doctype information}", {{Q::DOCTYPE, "doctype information"}}},
    QueryCase{"begin {doctype information}", {{Q::STRING, "begin {doctype information}"}}},
    QueryCase{"{doctype information} end", {{Q::STRING, "{doctype information} end"}}},
    QueryCase{"{}", {{Q::DOCTYPE, ""}}},
    QueryCase{"{", {{Q::STRING, "{"}}},
    QueryCase{"&query;{tolvan}", {{Q::QUERY_CONTEXT, "&query;"}, {Q::DOCTYPE, "tolvan"}}},
    QueryCase{"{a}&query;", {{Q::DOCTYPE, "a"}, {Q::QUERY_CONTEXT, "&query;"}}},
    QueryCase{"&query;&query_item;", {{Q::QUERY_CONTEXT, "&query;"}, {Q::QUERY, "&query_item;"}}}));

TEST(XMLQueryStringParser, EntityTable)
{
    const std::pair<const char*, Q> table[] = {
        {"&query;", Q::QUERY_CONTEXT},
        {"&query_context;", Q::QUERY_CONTEXT},
        {"&query_changes;", Q::QUERY_CHANGES_CONTEXT},
        {"&query_changes_context;", Q::QUERY_CHANGES_CONTEXT},
        {"&query_item;", Q::QUERY},
        {"&query_changes_item;", Q::QUERY_CHANGES},
        {"&query_doctype;", Q::QUERY_DOCTYPE_CONTEXT},
        {"&query_doctype_context;", Q::QUERY_DOCTYPE_CONTEXT},
        {"&query_doctype_item;", Q::QUERY_DOCTYPE},
        {"&query_items;", Q::ERROR},
        {"&queryx;", Q::ERROR},
    };
    for (const auto& [entity, type] : table)
        EXPECT_EQ(split(entity), (Tokens{{type, entity}})) << entity;
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
