#pragma once

#include <cstddef>
#include <new>
#include <istream>
#include <memory_resource>
#include <string>
#include <vector>

#include "xml/xml_reader.h"

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
    ~XMLParser();
    XMLParser(const XMLParser&) = delete;
    XMLParser& operator=(const XMLParser&) = delete;

    // Moves on by one token and returns its type; replays stored tokens
    // before reading new ones. Returns ERROR again while the current token
    // is an error. The first call yields START_DOC.
    TokenType GetNextToken()
    {
        if (GetCurrToken() == ERROR)
            return ERROR;
        return _advance();
    }
    TokenType GetCurrToken() const { return _tok->type; }
    const std::string& GetTokenString() const { return _tok->text; }
    const std::string& GetTokenValue() const { return _tok->value; }

    // Steps back one token (not before the first).
    void PutBackToken();
    void MarkCurrToken() { _mark = _curr; }
    // Returns to the marked token; what followed it is replayed.
    void GotoMarkedToken() { _go(_mark); }

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
    void _go(std::size_t index)
    {
        _curr = index;
        _tok = _history[index];
    }
    TokenType _advance()
    {
        if (_curr + 1 == _history.size())
            _read_token();
        _go(_curr + 1);
        return _tok->type;
    }
    TokenInfo& _new_token();
    void _read_token();
    // A token that XMLCharReader::shortcut reads whole; false if none.
    bool _shortcut(TokenInfo& tok);
    void _read_outside_tag(TokenInfo& tok);
    void _read_inside_tag(TokenInfo& tok);
    bool _failed(TokenInfo& tok) const;
    void _error(TokenInfo& tok, const char* message);

    std::istream& _is;
    XMLCharReader _in{_is};
    // Tokens are never freed before the parser: an arena, which covers a
    // short message without a malloc, holds them in blocks, so that they
    // (and the strings handed out) stay in place. The history refers to them.
    std::byte _initial[4096];
    std::pmr::monotonic_buffer_resource _arena{_initial, sizeof _initial};
    std::pmr::vector<TokenInfo*> _history{&_arena};
    TokenInfo* _block_next = nullptr;
    TokenInfo* _block_end = nullptr;
    std::size_t _curr = 0;
    std::size_t _mark = 0;
    const TokenInfo* _tok = nullptr;
    const TokenInfo* _open_element = nullptr; // whose start tag is open
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
