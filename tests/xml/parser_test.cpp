#include "xml/xml_parser.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
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
    return {p.GetCurrToken(), p.GetTokenString(), p.GetTokenValue()};
}

// Reads up to and including END_DOC or the first ERROR.
std::vector<Token> read_all(XMLParser& p)
{
    std::vector<Token> out;
    for (;;) {
        T t = p.GetNextToken();
        out.push_back(current(p));
        if (t == T::END_DOC || t == T::ERROR)
            return out;
    }
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
        {"", {SD, ED}},
        {"<tagname attr1 attr2=\"attr value string\">string</tagname>",
            {SD, SE("tagname"), AT("attr1"), PR("attr2", "attr value string"), ST("string"), EE("tagname"), ED}},
        {"<tagname attr1=\"val1\" attr2='val2' attr3/><tag2></tag2><tag3/>",
            {SD, SE("tagname"), PR("attr1", "val1"), PR("attr2", "val2"), AT("attr3"), EE("tagname"),
             SE("tag2"), EE("tag2"), SE("tag3"), EE("tag3"), ED}},
        {"some string stuff to start with <tag> some tag stuff </tag> end string stuff",
            {SD, ST("some string stuff to start with"), SE("tag"), ST("some tag stuff"), EE("tag"),
             ST("end string stuff"), ED}},
        {"<?xml version stuff?><!--comment--><realtag/><!ENTITY name><another/>",
            {SD, SE("realtag"), EE("realtag"), SE("another"), EE("another"), ED}},
        {"<!--<faketag>some stuff in the comment</faketag>--><real/>", {SD, SE("real"), EE("real"), ED}},
        {"<!---><x/>", {SD, SE("x"), EE("x"), ED}}, {"<!--><x/>--><y/>", {SD, SE("y"), EE("y"), ED}},
        {"<!-- a -- b ---><x/>", {SD, SE("x"), EE("x"), ED}}, {"<!><x/>", {SD, SE("x"), EE("x"), ED}},
        {"<?>?><x/>", {SD, SE("x"), EE("x"), ED}},
        // Declarations end at the first ">", nesting or not.
        {"<!DOCTYPE a [<!ENTITY b>]><x/>", {SD, ST("]"), ER("Invalid '>' character outside XML tags")}},
        {"<realtag1>{document type information}</realtag1>   {some more doctype stuff}   ",
            {SD, SE("realtag1"), ST("{document type information}"), EE("realtag1"), ST("{some more doctype stuff}"), ED}},
        // White space after a start tag's ">" is an empty STRING; after other tokens it is skipped.
        {"<a>\n  <b/>\n</a>\n", {SD, SE("a"), ST(""), SE("b"), EE("b"), EE("a"), ED}},
        {"<?xml version=\"1.0\"?>\n<a/>", {SD, ST(""), SE("a"), EE("a"), ED}},
        {"<arvex>&query;</arvex>", {SD, SE("arvex"), ST("&query;"), EE("arvex"), ED}},
        {"<tolvan &query_item; x='&query;'/>", {SD, SE("tolvan"), AT("&query_item;"), PR("x", "&query;"), EE("tolvan"), ED}},
        {"<a x='1 &amp; 2' y=\"&lt;&quot;\">", {SD, SE("a"), PR("x", "1 & 2"), PR("y", "<\""), ED}},
        // Unquoted values run to the next quote or angle bracket.
        {"<tag a=1 b=2>", {SD, SE("tag"), PR("a", "1 b=2"), ED}},
        {"<tag a=1/>x", {SD, SE("tag"), PR("a", "1/"), ST("x"), ED}},
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
        {"<!-- open", {SD, ED}},
        {"<? open", {SD, ED}}};
    for (const auto& c : cases) {
        std::istringstream is(c.input);
        XMLParser p(is);
        EXPECT_EQ(read_all(p), c.tokens) << c.input;
    }
}

TEST(XMLParser, StateBits)
{
    std::istringstream ok("<a>x</a>");
    XMLParser p(ok);
    read_all(p);
    EXPECT_TRUE(ok.fail() && ok.eof());

    std::istringstream bad("<a <b>");
    XMLParser q(bad);
    read_all(q);
    EXPECT_TRUE(bad.fail());
    EXPECT_FALSE(bad.eof());

    // A stream that failed before yields ERROR (END_DOC only with eofbit).
    std::istringstream failed("<a/>");
    failed.setstate(std::ios::failbit);
    XMLParser r(failed);
    EXPECT_EQ(read_all(r), (std::vector<Token>{SD, {T::ERROR, "", ""}}));
}

// Recovery skips to the end of the element.
TEST(XMLParser, Recovery)
{
    const struct {
        const char* input;
        int reads;  // GetNextToken calls before RecoverFromError
        Token landed;
        std::vector<Token> after;
    } cases[] = {
        {"< badtagname>just some junk</badtagname><goodstuff/>", 2, EE("badtagname"),
            {SE("goodstuff"), EE("goodstuff")}},
        // The start tag stays open across the error, so recovery goes on inside it.
        {"<a b = c d='1'>text</a><e/>", 4, EE("a"), {SE("e"), EE("e")}},
        {"<r><a>x > y<b/></a><c/></r>", 5, EE("a"), {SE("c"), EE("c"), EE("r")}},
        {"<r><a>x > y > z</a><c/></r>", 5, EE("a"), {SE("c"), EE("c"), EE("r")}}, {"<r><a>x > y", 5, ED, {}},
        // With no error at hand it skips an unwanted element.
        {"<r><skip><x a='1'>t</x><y/></skip><keep/></r>", 3, EE("skip"), {SE("keep"), EE("keep"), EE("r")}}};
    for (const auto& c : cases) {
        std::istringstream is(c.input);
        XMLParser p(is);
        for (int i = 0; i < c.reads; ++i)
            p.GetNextToken();
        p.RecoverFromError();
        EXPECT_EQ(current(p), c.landed) << c.input;
        std::vector<Token> after = read_all(p);
        after.pop_back();
        EXPECT_EQ(after, c.after) << c.input;
    }
}

TEST(XMLParser, RecoveryClearsStreamState)
{
    std::istringstream is("<a>></a><b/>");
    XMLParser p(is);
    read_all(p);
    ASSERT_TRUE(is.fail());
    p.RecoverFromError();
    EXPECT_EQ(current(p), EE("a"));
    EXPECT_TRUE(is.good());
}

TEST(XMLParser, StartDocAndPutBack)
{
    std::istringstream is("<a/>");
    XMLParser p(is);
    EXPECT_EQ(p.GetCurrToken(), T::START_DOC);
    p.PutBackToken(); // at the first entry: nothing happens
    EXPECT_EQ(p.GetNextToken(), T::START_DOC);
    EXPECT_EQ(p.GetNextToken(), T::START_ELEMENT);
    p.PutBackToken();
    p.PutBackToken();
    p.PutBackToken();
    EXPECT_EQ(p.GetCurrToken(), T::START_DOC);
    EXPECT_EQ(p.GetNextToken(), T::START_DOC);
    EXPECT_EQ(p.GetNextToken(), T::START_ELEMENT);
    EXPECT_EQ(p.GetNextToken(), T::END_ELEMENT);
    EXPECT_EQ(p.GetNextToken(), T::END_DOC);
}

TEST(XMLParser, ReplayAfterMarkLeavesStreamAlone)
{
    std::istringstream is("<r><a x='1'>v</a><a x='2'/><z/></r>");
    XMLParser p(is);
    while (p.GetNextToken() != T::START_ELEMENT) {
    }
    p.MarkCurrToken();
    std::vector<Token> first;
    for (int i = 0; i < 6; ++i) {
        p.GetNextToken();
        first.push_back(current(p));
    }
    const auto pos = is.tellg();

    p.GotoMarkedToken();
    EXPECT_EQ(current(p), SE("r"));
    std::vector<Token> again;
    for (int i = 0; i < 6; ++i) {
        p.GetNextToken();
        again.push_back(current(p));
    }
    EXPECT_EQ(again, first);
    EXPECT_EQ(is.tellg(), pos);

    // Past the replayed part the stream is read again.
    EXPECT_EQ(p.GetNextToken(), T::END_ELEMENT);
    EXPECT_EQ(p.GetTokenString(), "a");
    EXPECT_NE(is.tellg(), pos);
}

TEST(XMLParser, RecoveryReplaysStoredTokensFirst)
{
    std::istringstream is("<r><a><b/></a><c/></r>");
    XMLParser p(is);
    for (int i = 0; i < 3; ++i)
        p.GetNextToken();
    ASSERT_EQ(current(p), SE("a"));
    p.MarkCurrToken();
    for (int i = 0; i < 4; ++i)
        p.GetNextToken();
    ASSERT_EQ(current(p), SE("c"));
    p.GotoMarkedToken();
    p.RecoverFromError();
    EXPECT_EQ(current(p), EE("a"));
    std::vector<Token> rest = read_all(p);
    EXPECT_EQ(rest, (std::vector<Token>{SE("c"), EE("c"), EE("r"), ED}));
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
        if (_chunk == 0)
            return _pos < _text.size() ? traits_type::to_int_type(_text[_pos]) : traits_type::eof();
        if (gptr() && gptr() < egptr())
            return traits_type::to_int_type(*gptr());
        const std::size_t pos = gptr() ? std::size_t(gptr() - _text.data()) : 0;
        if (pos >= _text.size())
            return traits_type::eof();
        char* next = _text.data() + pos;
        setg(_text.data(), next, next + std::min(_chunk, _text.size() - pos));
        return traits_type::to_int_type(*next);
    }
    int_type uflow() override
    {
        if (_chunk != 0)
            return std::streambuf::uflow();
        return _pos < _text.size() ? traits_type::to_int_type(_text[_pos++]) : traits_type::eof();
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
    std::istream none(nullptr);
    XMLParser p(none);
    EXPECT_EQ(read_all(p), (std::vector<Token>{SD, ER("")}));
}

} // namespace
