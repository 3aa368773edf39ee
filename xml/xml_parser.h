#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <istream>
#include <memory_resource>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "xml/xml_reader.h"

// Pull tokenizer of the instruments' configuration language. Deliberately
// lenient: unquoted attribute values, entities as attribute names and text
// made of several strings are all accepted, and end tags are not matched
// against start tags. Every token read is kept, so tokens can be read again
// (PutBackToken, MarkCurrToken/GotoMarkedToken); their texts stay valid as
// long as the parser lives.
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
    std::string_view GetTokenString() const { return _tok->text; }
    std::string_view GetTokenValue() const { return _tok->value; }

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
    // Texts point into the parser's own text blocks, or at a static message.
    struct TokenInfo {
        TokenType type = ERROR;
        std::string_view text;
        std::string_view value;
    };
    void _go(std::size_t index)
    {
        _curr = index;
        _tok = &_blocks[index / BLOCK][index % BLOCK];
    }
    TokenType _advance()
    {
        if (_curr + 1 == _size) {
            ++_curr;
            _tok = &_read_token();
        } else {
            _go(_curr + 1);
        }
        return _tok->type;
    }
    // A new last token in the history; by default of type ERROR with empty texts.
    TokenInfo& _append(TokenType type = ERROR, std::string_view text = {}, std::string_view value = {})
    {
        if (_block_next == _block_end)
            _new_block();
        ++_size;
        return *new (_block_next++) TokenInfo{type, text, value};
    }
    void _new_block();
    // Appends the next token of the stream.
    const TokenInfo& _read_token();
    void _read_outside_tag(TokenInfo& tok);
    void _read_inside_tag(TokenInfo& tok);
    bool _failed(TokenInfo& tok) const;
    void _error(TokenInfo& tok, const char* message);
    // The start tag of `tok` is now the open one.
    void _start_element(const TokenInfo& tok)
    {
        _open_element = tok.text;
        _start_tag_open = true;
    }
    // A copy of `text` that lives as long as the parser.
    std::string_view _keep(std::string_view text)
    {
        if (text.size() > static_cast<std::size_t>(_text_end - _text_next))
            _new_text_block(text.size());
        char* copy = _text_next;
        _copy(copy, text);
        _text_next += text.size();
        return {copy, text.size()};
    }
    void _new_text_block(std::size_t size);
    // Most texts are short: they are copied in at most two overlapping words, without a call.
    static void _copy(char* to, std::string_view text)
    {
        const char* from = text.data();
        const std::size_t n = text.size();
        if (n >= 8 && n <= 16) {
            std::uint64_t head, tail;
            std::memcpy(&head, from, 8);
            std::memcpy(&tail, from + n - 8, 8);
            std::memcpy(to, &head, 8);
            std::memcpy(to + n - 8, &tail, 8);
        } else if (n >= 4 && n < 8) {
            std::uint32_t head, tail;
            std::memcpy(&head, from, 4);
            std::memcpy(&tail, from + n - 4, 4);
            std::memcpy(to, &head, 4);
            std::memcpy(to + n - 4, &tail, 4);
        } else if (n > 0 && n < 4) {
            to[0] = from[0];
            to[n / 2] = from[n / 2];
            to[n - 1] = from[n - 1];
        } else {
            text.copy(to, n);
        }
    }

    std::istream& _is;
    XMLCharReader _in{_is};
    // The history and the texts live in an arena, which covers a short
    // message without a malloc and is freed with the parser. The history is
    // kept in blocks, so that tokens stay where they are when it grows.
    static constexpr std::size_t BLOCK = 128;
    std::byte _initial[8192];
    std::pmr::monotonic_buffer_resource _arena{_initial, sizeof _initial};
    std::pmr::vector<TokenInfo*> _blocks{&_arena};
    std::size_t _size = 0;
    TokenInfo* _block_next = nullptr; // where the next token goes
    TokenInfo* _block_end = nullptr;
    char* _text_next = nullptr;
    char* _text_end = nullptr;
    // Names and strings read byte by byte are gathered here first.
    std::string _scratch;
    std::string _scratch_value;
    std::size_t _curr = 0;
    std::size_t _mark = 0;
    const TokenInfo* _tok = nullptr;
    std::string_view _open_element; // whose start tag is open
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
