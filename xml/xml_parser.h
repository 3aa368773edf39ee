#pragma once

#include <istream>
#include <list>
#include <memory>
#include <memory_resource>
#include <string>

class XMLCharReader;

// Pull tokenizer of the instruments' configuration language. Deliberately
// lenient: unquoted attribute values, entities as attribute names and text
// made of several strings are all accepted, and end tags are not matched
// against start tags. Every token read is kept, so tokens can be read again
// (PutBackToken, MarkCurrToken/GotoMarkedToken).
//
// Errors never throw: an ERROR token carries the message and failbit is set
// on the stream. The parser then stays on the error until RecoverFromError.
class XMLParser {
public:
    enum TokenType {
        START_ELEMENT,        // string: the element name
        END_ELEMENT,          // string: the element name ("/>" repeats the open one)
        ATTRIBUTE,            // string: the attribute name, no value
        ATTRIBUTE_VALUE_PAIR, // string: the name; value: the unescaped value
        STRING,               // string: the trimmed text; may be empty
        START_DOC,
        END_DOC,
        ERROR,                // string: the message, or empty if the stream failed
    };

    // The stream's state bits belong to the parser from now on.
    explicit XMLParser(std::istream& is);

    // Moves on by one token and returns its type; replays stored tokens
    // before reading new ones. Returns ERROR again while the current token
    // is an error. The first call yields START_DOC.
    TokenType GetNextToken();
    TokenType GetCurrToken() const { return (*_curr)->type; }
    const std::string& GetTokenString() const { return (*_curr)->text; }
    const std::string& GetTokenValue() const { return (*_curr)->value; }

    // Steps back one token (not before the first).
    void PutBackToken();
    void MarkCurrToken() { _mark = _curr; }
    // Returns to the marked token; what followed it is replayed.
    void GotoMarkedToken() { _curr = _mark; }

    // Clears the stream state and skips to the end tag of the element the
    // parser stands in (or to END_DOC), passing over further errors. Also
    // skips an unwanted element when called on its START_ELEMENT.
    void RecoverFromError();

private:
    struct TokenInfo {
        TokenType type = ERROR;
        std::string text;
        std::string value;
    };
    using History = std::pmr::list<std::shared_ptr<TokenInfo>>;

    TokenType _advance();
    std::shared_ptr<TokenInfo> _new_token();
    std::shared_ptr<TokenInfo> _read_token();
    void _read_outside_tag(XMLCharReader& in, TokenInfo& tok);
    void _read_inside_tag(XMLCharReader& in, TokenInfo& tok);
    bool _failed(TokenInfo& tok) const;
    void _error(TokenInfo& tok, const char* message);

    std::istream& _is;
    // Tokens are never freed before the parser: one arena spares a malloc
    // and a free for each token and list entry.
    std::pmr::monotonic_buffer_resource _arena;
    History _history{&_arena};
    History::iterator _curr;
    History::iterator _mark;
    std::string _open_element;
    bool _start_tag_open = false;
};

// Splits the text of an element or attribute into plain text, query
// entities ("&query;", "&query_changes_item;", ...) and "{...}" doctype texts.
// The first token is START_STRING, the last END_STRING.
class XMLQueryStringParser {
public:
    enum TokenType {
        QUERY,                  // "&query_item;"
        QUERY_CONTEXT,          // "&query;", "&query_context;"
        QUERY_CHANGES,          // "&query_changes_item;"
        QUERY_CHANGES_CONTEXT,  // "&query_changes;", "&query_changes_context;"
        QUERY_DOCTYPE,          // "&query_doctype_item;"
        QUERY_DOCTYPE_CONTEXT,  // "&query_doctype;", "&query_doctype_context;"
        STRING,                 // plain text, blanks included
        DOCTYPE,                // value: the text between the braces
        START_STRING,
        END_STRING,
        ERROR,                  // value: the unknown "&query...;" entity
    };

    explicit XMLQueryStringParser(const std::string& text) : _text(text) {}

    TokenType GetNextToken();
    // The next GetNextToken returns the current token again.
    void PutBackToken() { _put_back = true; }
    // The current token's text: the entity for queries and errors.
    const std::string& GetTokenValue() const { return _value; }

private:
    std::string _text;
    std::string::size_type _pos = 0;
    TokenType _type = START_STRING;
    std::string _value;
    bool _put_back = true;
};
