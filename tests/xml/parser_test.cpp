#include "xml/xml_parser.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using T = XMLParser::TokenType;

struct Token {
    T type;
    std::string text;
    std::string value;
    bool operator==(const Token& o) const { return type == o.type && text == o.text && value == o.value; }
};

std::ostream& operator<<(std::ostream& os, const Token& t)
{
    return os << '{' << t.type << " \"" << t.text << "\" \"" << t.value << "\"}";
}

Token current(const XMLParser& p)
{
    return {p.GetCurrToken(), std::string(p.GetTokenString()), std::string(p.GetTokenValue())};
}

// Reads `n` tokens, or up to and including END_DOC or the first ERROR.
std::vector<Token> read_all(XMLParser& p, int n = -1)
{
    std::vector<Token> out;
    while (n-- != 0) {
        T t = p.GetNextToken();
        out.push_back(current(p));
        if (t == T::END_DOC || t == T::ERROR)
            break;
    }
    return out;
}

const Token SD{T::START_DOC, "", ""};
const Token ED{T::END_DOC, "", ""};
Token SE(const std::string& n) { return {T::START_ELEMENT, n, ""}; }
Token EE(const std::string& n) { return {T::END_ELEMENT, n, ""}; }
Token AT(const std::string& n) { return {T::ATTRIBUTE, n, ""}; }
Token PR(const std::string& n, const std::string& v) { return {T::ATTRIBUTE_VALUE_PAIR, n, v}; }
Token ST(const std::string& s) { return {T::STRING, s, ""}; }
Token ER(const std::string& m) { return {T::ERROR, m, ""}; }

const char* const EMPTY_NAME = "Empty XML tag name";
const char* const BAD_END = "Invalid XML tag end sequence";

TEST(XMLParser, Tokens)
{
    const struct {
        const char* input;
        std::vector<Token> tokens;
    } cases[] = {
        {"", {SD, ED}}, {"<t a1 a2=\"v s\">s</t>", {SD, SE("t"), AT("a1"), PR("a2", "v s"), ST("s"), EE("t"), ED}},
        {"<t a=\"1\" b='2' c/><u></u>",
            {SD, SE("t"), PR("a", "1"), PR("b", "2"), AT("c"), EE("t"), SE("u"), EE("u"), ED}},
        {"x y <t> z w </t> v u", {SD, ST("x y"), SE("t"), ST("z w"), EE("t"), ST("v u"), ED}},
        {"<?xml v?><!--c--><r/><!ENTITY n><s/>", {SD, SE("r"), EE("r"), SE("s"), EE("s"), ED}},
        {"<!--<f>in a comment</f>--><x/>", {SD, SE("x"), EE("x"), ED}}, {"<!---><x/>", {SD, SE("x"), EE("x"), ED}},
        {"<!--><x/>--><y/>", {SD, SE("y"), EE("y"), ED}}, {"<!-- a -- b ---><x/>", {SD, SE("x"), EE("x"), ED}},
        {"<!><x/>", {SD, SE("x"), EE("x"), ED}}, {"<?>?><x/>", {SD, SE("x"), EE("x"), ED}},
        // Declarations end at the first ">", nesting or not.
        {"<!DOCTYPE a [<!ENTITY b>]><x/>", {SD, ST("]"), ER("Invalid '>' character outside XML tags")}},
        {"<r>{doc type}</r>   {more}   ", {SD, SE("r"), ST("{doc type}"), EE("r"), ST("{more}"), ED}},
        // White space after a start tag's ">" is an empty STRING; after other tokens it is skipped.
        {"<a>\n  <b/>\n</a>\n", {SD, SE("a"), ST(""), SE("b"), EE("b"), EE("a"), ED}},
        {"<?xml version=\"1.0\"?>\n<a/>", {SD, ST(""), SE("a"), EE("a"), ED}},
        {"<arvex>&query;</arvex>", {SD, SE("arvex"), ST("&query;"), EE("arvex"), ED}},
        {"<t &query_item; x='&query;'/>", {SD, SE("t"), AT("&query_item;"), PR("x", "&query;"), EE("t"), ED}},
        {"<a x='1 &amp; 2' y=\"&lt;&quot;\">", {SD, SE("a"), PR("x", "1 & 2"), PR("y", "<\""), ED}},
        // Unquoted values run to the next quote or angle bracket.
        {"<t a=1 b=2>", {SD, SE("t"), PR("a", "1 b=2"), ED}}, {"<t a=1/>x", {SD, SE("t"), PR("a", "1/"), ST("x"), ED}},
        {"<a>1 2</a>3 4", {SD, SE("a"), ST("1 2"), EE("a"), ST("3 4"), ED}},
        // Errors.
        {"< badtagname>", {SD, ER(EMPTY_NAME)}}, {"</ >", {SD, ER(EMPTY_NAME)}},
        {"<badtag/ >just some junk", {SD, SE("badtag"), ER(BAD_END)}},
        {"<badendtag>just some junk</badendtag >", {SD, SE("badendtag"), ST("just some junk"), ER(BAD_END)}},
        {"<a b = c>", {SD, SE("a"), AT("b"), ER(EMPTY_NAME)}},
        {"<a <b>", {SD, SE("a"), ER("Cannot start new element inside start tag")}},
        {"text > more", {SD, ST("text"), ER("Invalid '>' character outside XML tags")}},
        // Input that stops short.
        {"<", {SD, ED}}, {"<a", {SD, ED}}, {"<a x", {SD, SE("a"), ED}}, {"<a x=1", {SD, SE("a"), ED}},
        {"<a x='1'", {SD, SE("a"), PR("x", "1"), ED}}, {"<a/", {SD, SE("a"), ED}}, {"</a", {SD, ED}},
        {"<!-- open", {SD, ED}}, {"<? open", {SD, ED}}};
    for (const auto& c : cases) {
        std::istringstream is(c.input);
        XMLParser p(is);
        EXPECT_EQ(read_all(p), c.tokens) << c.input;
        // The stream fails at the end; an error leaves it short of the end.
        EXPECT_TRUE(is.fail()) << c.input;
        EXPECT_EQ(is.eof(), c.tokens.back().type == T::END_DOC) << c.input;
    }
}

// Recovery skips to the end of the element and clears the stream's failbit.
TEST(XMLParser, Recovery)
{
    const struct {
        const char* input;
        int reads;  // GetNextToken calls before RecoverFromError
        Token landed;
        std::vector<Token> after;
    } cases[] = {
        {"< bad>just some junk</bad><good/>", 2, EE("bad"), {SE("good"), EE("good")}},
        // The start tag stays open across the error, so recovery goes on inside it.
        {"<a b = c d='1'>text</a><e/>", 4, EE("a"), {SE("e"), EE("e")}},
        {"<r><a>x > y<b/></a><c/></r>", 5, EE("a"), {SE("c"), EE("c"), EE("r")}},
        {"<r><a>x > y > z</a><c/></r>", 5, EE("a"), {SE("c"), EE("c"), EE("r")}}, {"<r><a>x > y", 5, ED, {}},
        {"<a>></a><b/>", 3, EE("a"), {SE("b"), EE("b")}},
        // With no error at hand it skips an unwanted element.
        {"<r><skip><x a='1'>t</x><y/></skip><keep/></r>", 3, EE("skip"), {SE("keep"), EE("keep"), EE("r")}}};
    for (const auto& c : cases) {
        std::istringstream is(c.input);
        XMLParser p(is);
        read_all(p, c.reads);
        p.RecoverFromError();
        EXPECT_EQ(current(p), c.landed) << c.input;
        EXPECT_EQ(is.good(), c.landed.type != T::END_DOC) << c.input;
        std::vector<Token> after = read_all(p);
        after.pop_back();
        EXPECT_EQ(after, c.after) << c.input;
    }
}

// Tokens after a mark are replayed from the store: the stream is read again only past them.
TEST(XMLParser, ReplayAfterMarkLeavesStreamAlone)
{
    std::istringstream is("<r><a x='1'>v</a><a x='2'/><z/></r>");
    XMLParser p(is);
    read_all(p, 2);
    p.MarkCurrToken();
    const std::vector<Token> first = read_all(p, 6);
    const auto pos = is.tellg();
    p.GotoMarkedToken();
    EXPECT_EQ(current(p), SE("r"));
    EXPECT_EQ(read_all(p, 6), first);
    EXPECT_EQ(is.tellg(), pos);
    EXPECT_EQ(read_all(p, 1), std::vector<Token>{EE("a")});
    EXPECT_NE(is.tellg(), pos);

    // Recovery goes through the stored tokens first.
    std::istringstream nested("<r><a><b/></a><c/></r>");
    XMLParser q(nested);
    read_all(q, 3);
    q.MarkCurrToken();
    read_all(q, 4);
    q.GotoMarkedToken();
    q.RecoverFromError();
    EXPECT_EQ(current(q), EE("a"));
    EXPECT_EQ(read_all(q), (std::vector<Token>{SE("c"), EE("c"), EE("r"), ED}));
}

// An error repeats until recovery, also after putting back the token before it.
TEST(XMLParser, ErrorBlocksUntilRecovery)
{
    std::istringstream is("<a/>>");
    XMLParser p(is);
    read_all(p);
    p.PutBackToken();
    EXPECT_EQ(current(p), EE("a"));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(p.GetNextToken(), T::ERROR);
    EXPECT_EQ(p.GetTokenString(), "Invalid '>' character outside XML tags");
}

// Hands out its text a few bytes per refill, as a socket or a file does, or with no buffer at all
// (chunk 0), one byte per call.
class ChunkBuf : public std::streambuf {
public:
    ChunkBuf(std::string text, std::size_t chunk) : _text(std::move(text)), _chunk(chunk) {}

protected:
    int_type underflow() override
    {
        const std::size_t pos = _chunk == 0 ? _pos : gptr() ? std::size_t(gptr() - _text.data()) : 0;
        if (pos >= _text.size())
            return traits_type::eof();
        if (_chunk != 0)
            setg(_text.data(), _text.data() + pos, _text.data() + pos + std::min(_chunk, _text.size() - pos));
        return traits_type::to_int_type(_text[pos]);
    }
    int_type uflow() override
    {
        const int_type c = underflow();
        if (c != traits_type::eof())
            _chunk == 0 ? void(++_pos) : gbump(1);
        return c;
    }
    int_type pbackfail(int_type c) override
    {
        if (_chunk != 0 || _pos == 0)
            return traits_type::eof();
        --_pos;
        return traits_type::not_eof(c);
    }

private:
    std::string _text;
    std::size_t _chunk;
    std::size_t _pos = 0;
};

TEST(XMLParser, TokensDoNotDependOnHowTheStreamIsBuffered)
{
    const char* texts[] = {
        "<tagname attr1 attr2=\"attr value string\">string</tagname>",
        "<?pi?><!--c--><a b='x &lt; y' c=1 d>t &amp; &query; u &junk</a>  trailing text  ",
        "<badtag/ >just some junk",
        "<r><s>&query_item;</s><t/></r> after",
        "<a x='say \"hi\"' y=\"it's\" z=w> \t t u \n</a><b;c d;e=f>x\"y</b;c>< e>",
    };
    for (const char* text : texts) {
        std::istringstream whole(text);
        XMLParser reference(whole);
        const std::vector<Token> expected = read_all(reference);
        for (std::size_t chunk : {1, 3, 0}) {
            ChunkBuf buf(text, chunk);
            std::istream is(&buf);
            XMLParser p(is);
            EXPECT_EQ(read_all(p), expected) << text << " in chunks of " << chunk;
            EXPECT_EQ(is.rdstate(), whole.rdstate()) << text << " in chunks of " << chunk;
        }
    }
    // A stream with no buffer, or one that failed before, yields ERROR (END_DOC only with eofbit).
    std::istream none(nullptr);
    std::istringstream failed("<a/>");
    failed.setstate(std::ios::failbit);
    for (std::istream* is : {&none, static_cast<std::istream*>(&failed)}) {
        XMLParser p(*is);
        EXPECT_EQ(read_all(p), (std::vector<Token>{SD, ER("")}));
    }
}

// --- the query strings inside a message's text ---

using Q = XMLQueryStringParser::TokenType;
using QueryTokens = std::vector<std::pair<Q, std::string>>;

// The tokens between START_STRING and END_STRING.
QueryTokens split(const std::string& text)
{
    XMLQueryStringParser p(text);
    EXPECT_EQ(p.GetNextToken(), Q::START_STRING);
    QueryTokens out;
    for (Q t; (t = p.GetNextToken()) != Q::END_STRING;)
        out.emplace_back(t, p.GetTokenValue());
    EXPECT_EQ(p.GetTokenValue(), "");
    return out;
}

TEST(XMLQueryStringParser, Tokens)
{
    const struct {
        std::string text;
        QueryTokens tokens;
    } cases[] = {
        {"", {}}, {"&query_item;", {{Q::QUERY, "&query_item;"}}}, {"isn't", {{Q::STRING, "isn't"}}},
        {"a &query_item; b", {{Q::STRING, "a "}, {Q::QUERY, "&query_item;"}, {Q::STRING, " b"}}},
        {"&query; first", {{Q::QUERY_CONTEXT, "&query;"}, {Q::STRING, " first"}}},
        {"last &query_changes_context;", {{Q::STRING, "last "}, {Q::QUERY_CHANGES_CONTEXT, "&query_changes_context;"}}},
        {"an illegal &query string", {{Q::STRING, "an illegal &query string"}}},
        {"x; &query", {{Q::STRING, "x; &query"}}},
        {"&query_changes_item; bad &query_junk; q",
            {{Q::QUERY_CHANGES, "&query_changes_item;"}, {Q::STRING, " bad "}, {Q::ERROR, "&query_junk;"},
             {Q::STRING, " q"}}},
        // The search for ";" crosses white space.
        {"&query x; y", {{Q::ERROR, "&query x;"}, {Q::STRING, " y"}}},
        {"{doctype info}", {{Q::DOCTYPE, "doctype info"}}}, {"begin {doctype}", {{Q::STRING, "begin {doctype}"}}},
        {"{doctype} end", {{Q::STRING, "{doctype} end"}}}, {"{}", {{Q::DOCTYPE, ""}}}, {"{", {{Q::STRING, "{"}}},
        {"&query;{tolvan}", {{Q::QUERY_CONTEXT, "&query;"}, {Q::DOCTYPE, "tolvan"}}},
        {"{a}&query;", {{Q::DOCTYPE, "a"}, {Q::QUERY_CONTEXT, "&query;"}}},
        {"&query;&query_item;", {{Q::QUERY_CONTEXT, "&query;"}, {Q::QUERY, "&query_item;"}}},
        // The entity table.
        {"&query_context;", {{Q::QUERY_CONTEXT, "&query_context;"}}},
        {"&query_changes;", {{Q::QUERY_CHANGES_CONTEXT, "&query_changes;"}}},
        {"&query_doctype;", {{Q::QUERY_DOCTYPE_CONTEXT, "&query_doctype;"}}},
        {"&query_doctype_context;", {{Q::QUERY_DOCTYPE_CONTEXT, "&query_doctype_context;"}}},
        {"&query_doctype_item;", {{Q::QUERY_DOCTYPE, "&query_doctype_item;"}}},
        {"&query_items;", {{Q::ERROR, "&query_items;"}}}, {"&queryx;", {{Q::ERROR, "&queryx;"}}}};
    for (const auto& c : cases)
        EXPECT_EQ(split(c.text), c.tokens) << c.text;
}

} // namespace
