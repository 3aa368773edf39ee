#include "xml/xml_parser.h"

#include "xml/xml_reader.h"


XMLParser::XMLParser(std::istream& is) : _is(is)
{
    // START_DOC twice: it is current before anything is read, and the first
    // GetNextToken delivers it as well.
    _history.reserve(64);
    TokenInfo& start = _new_token();
    start.type = START_DOC;
    _history.push_back(&start);
    _go(0);
}

XMLParser::~XMLParser()
{
    // The first entry is the second one again.
    for (std::size_t i = 1; i < _history.size(); ++i)
        _history[i]->~TokenInfo();
}

XMLParser::TokenInfo& XMLParser::_new_token()
{
    if (_block_next == _block_end) {
        constexpr std::size_t BLOCK = 32;
        _block_next = static_cast<TokenInfo*>(_arena.allocate(BLOCK * sizeof(TokenInfo), alignof(TokenInfo)));
        _block_end = _block_next + BLOCK;
    }
    TokenInfo* tok = new (_block_next++) TokenInfo;
    _history.push_back(tok);
    return *tok;
}

void XMLParser::PutBackToken()
{
    if (_curr > 0)
        _go(_curr - 1);
}

void XMLParser::RecoverFromError()
{
    _is.clear();
    int depth = 1;
    for (;;) {
        switch (_advance()) {
        case START_ELEMENT:
            ++depth;
            break;
        case END_ELEMENT:
            if (--depth < 1)
                return;
            break;
        case END_DOC:
            return;
        case ERROR:
            _is.clear();
            break;
        default:
            break;
        }
    }
}

void XMLParser::_read_token()
{
    TokenInfo& tok = _new_token();
    _in.start();
    if (!_failed(tok)) {
        _in.skip_ws();
        if (!_shortcut(tok)) {
            if (_start_tag_open)
                _read_inside_tag(tok);
            else
                _read_outside_tag(tok);
        }
    }
    _in.finish();
}

bool XMLParser::_shortcut(TokenInfo& tok)
{
    bool closed;
    const auto s = _in.shortcut(_start_tag_open, closed, tok.text, tok.value);
    if (closed)
        _start_tag_open = false;
    switch (s) {
    case XMLCharReader::START_TAG:
        tok.type = START_ELEMENT;
        _open_element = &tok;
        _start_tag_open = true;
        return true;
    case XMLCharReader::END_TAG: tok.type = END_ELEMENT; return true;
    case XMLCharReader::TEXT: tok.type = STRING; return true;
    case XMLCharReader::ATTRIBUTE: tok.type = ATTRIBUTE; return true;
    case XMLCharReader::PAIR: tok.type = ATTRIBUTE_VALUE_PAIR; return true;
    default: return false;
    }
}

bool XMLParser::_failed(TokenInfo& tok) const
{
    if (!_in.failed())
        return false;
    tok.type = _in.eof() ? END_DOC : ERROR;
    tok.text.clear();
    tok.value.clear();
    return true;
}

void XMLParser::_error(TokenInfo& tok, const char* message)
{
    tok.type = ERROR;
    tok.text = message;
    _in.setstate(std::ios::failbit);
}

void XMLParser::_read_outside_tag(TokenInfo& tok)
{
    XMLCharReader& in = _in;
    // Processing instructions, comments and declarations yield no tokens.
    int c;
    for (;;) {
        c = in.get();
        if (c != '<')
            break;
        int c2 = in.get();
        if (c2 == '?') {
            for (int prev = 0; (c = in.get()) != XMLCharReader::END && !(prev == '?' && c == '>'); prev = c) {
            }
        } else if (c2 == '!') {
            c = in.get();
            if (c == '-') {
                // Dashes count only after "<!-", so "<!--->" is a whole comment.
                for (int dashes = 0; (c = in.get()) != XMLCharReader::END && !(c == '>' && dashes >= 2);)
                    dashes = c == '-' ? dashes + 1 : 0;
            } else if (c != '>') {
                while (c != XMLCharReader::END && (c = in.get()) != '>') {
                }
            }
        } else {
            if (c2 != XMLCharReader::END)
                in.unget();
            break;
        }
        if (_failed(tok))
            return;
    }
    if (_failed(tok))
        return;

    if (c == '>') {
        _error(tok, "Invalid '>' character outside XML tags");
    } else if (c == '<') {
        if (in.get() != '/') {
            if (_failed(tok))
                return;
            in.unget();
            in.read_name(tok.text);
            if (_failed(tok))
                return;
            if (tok.text.empty()) {
                _error(tok, "Empty XML tag name");
                return;
            }
            tok.type = START_ELEMENT;
            _open_element = &tok;
            _start_tag_open = true;
        } else {
            in.read_name(tok.text);
            c = in.get();
            if (_failed(tok))
                return;
            if (tok.text.empty())
                _error(tok, "Empty XML tag name");
            else if (c == '>')
                tok.type = END_ELEMENT;
            else
                _error(tok, "Invalid XML tag end sequence");
        }
    } else {
        // Text up to the end of input is a normal STRING; END_DOC follows.
        in.unget();
        in.read_string(tok.text);
        tok.type = STRING;
    }
}

void XMLParser::_read_inside_tag(TokenInfo& tok)
{
    XMLCharReader& in = _in;
    int c = in.get();
    if (_failed(tok))
        return;
    switch (c) {
    case '>':
        // The bracket has no token of its own; no white space is skipped, so
        // that between ">" and "<" comes out as an empty STRING.
        _start_tag_open = false;
        _read_outside_tag(tok);
        break;
    case '<':
        _error(tok, "Cannot start new element inside start tag");
        break;
    case '/':
        c = in.get();
        if (_failed(tok))
            return;
        if (c == '>') {
            _start_tag_open = false;
            tok.type = END_ELEMENT;
            tok.text = _open_element->text;
        } else {
            _error(tok, "Invalid XML tag end sequence");
        }
        break;
    default:
        // The byte after the name is consumed even when the name is empty,
        // so that recovery always makes progress.
        in.unget();
        in.read_name(tok.text);
        c = in.get();
        if (_failed(tok))
            return;
        if (tok.text.empty()) {
            _error(tok, "Empty XML tag name");
        } else if (c == '=') {
            in.read_string(tok.value);
            if (_failed(tok))
                return;
            tok.type = ATTRIBUTE_VALUE_PAIR;
        } else {
            in.unget();
            tok.type = ATTRIBUTE;
        }
        break;
    }
}

XMLQueryStringParser::TokenType XMLQueryStringParser::GetNextToken()
{
    if (_put_back) {
        _put_back = false;
        return _type;
    }
    if (_pos >= _text.size()) {
        _value.clear();
        return _type = END_STRING;
    }
    auto end = std::string::npos;
    const auto query = _text.find("&query", _pos);
    const auto semi = query == std::string::npos ? query : _text.find(';', query);
    if (semi != std::string::npos) {
        if (query == _pos) {
            _value.assign(_text, query, semi + 1 - query);
            _pos = semi + 1;
            static const struct {
                const char* entity;
                TokenType type;
            } table[] = {
                {"&query;", QUERY_CONTEXT},
                {"&query_context;", QUERY_CONTEXT},
                {"&query_changes;", QUERY_CHANGES_CONTEXT},
                {"&query_changes_context;", QUERY_CHANGES_CONTEXT},
                {"&query_item;", QUERY},
                {"&query_changes_item;", QUERY_CHANGES},
                {"&query_doctype;", QUERY_DOCTYPE_CONTEXT},
                {"&query_doctype_context;", QUERY_DOCTYPE_CONTEXT},
                {"&query_doctype_item;", QUERY_DOCTYPE},
            };
            for (const auto& t : table) {
                if (_value == t.entity)
                    return _type = t.type;
            }
            return _type = ERROR;
        }
        end = query;
    }
    _value.assign(_text, _pos, end - _pos);
    _pos = end == std::string::npos ? _text.size() : end;
    if (_value.size() >= 2 && _value.front() == '{' && _value.back() == '}') {
        _value = _value.substr(1, _value.size() - 2);
        return _type = DOCTYPE;
    }
    return _type = STRING;
}
