#include "xml/xml_parser.h"

#include <algorithm>

#include "xml/xml_reader.h"


namespace {

bool has(char c, unsigned char bit)
{
    return xml_class::table.bits[static_cast<unsigned char>(c)] & bit;
}

// Where the name that starts at `p` ends, as read_name takes it: at the first byte that can't be in
// a name, or past a ";". Null when the window ends first, since more input could lengthen it.
const char* name_end(const char* p, const char* end)
{
    ++p;
    while (p != end && has(*p, xml_class::NAME_PLAIN))
        ++p;
    if (p == end)
        return nullptr;
    return *p == ';' ? p + 1 : p;
}

std::string_view view(const char* from, const char* to)
{
    return {from, static_cast<std::size_t>(to - from)};
}

} // namespace

XMLCharReader::Shortcut XMLCharReader::shortcut(bool in_tag, bool& closed, std::string_view& text, std::string_view& value)
{
    closed = false;
    if (!_good() || _p == _end)
        return NONE;
    if (!in_tag)
        return _outside(_p, text);
    if (*_p != '>')
        return _attribute(_p, text, value);
    const Shortcut s = _outside(_p + 1, text);
    closed = s != NONE;
    return s;
}

XMLCharReader::Shortcut XMLCharReader::_outside(const char* p, std::string_view& text)
{
    if (_end - p < 2)
        return NONE;
    if (*p == '<') {
        if (p[1] == '/') {
            if (_end - p < 3 || !has(p[2], xml_class::NAME_START))
                return NONE;
            const char* e = name_end(p + 2, _end);
            if (!e || e == _end || *e != '>')
                return NONE;
            text = view(p + 2, e);
            _p = e + 1;
            return END_TAG;
        }
        if (!has(p[1], xml_class::NAME_START))
            return NONE;
        const char* e = name_end(p + 1, _end);
        if (!e)
            return NONE;
        text = view(p + 1, e);
        _p = e;
        return START_TAG;
    }
    if (*p == '>')
        return NONE;
    while (p != _end && has(*p, xml_class::SPACE))
        ++p;
    if (p == _end || *p == '"' || *p == '\'' || *p == '&')
        return NONE;
    const char* stop = p;
    const char* kept = p; // past the last byte that is not white space
    while (stop != _end) {
        const unsigned char bits = xml_class::table.bits[static_cast<unsigned char>(*stop)];
        if (bits & xml_class::STOP)
            break;
        ++stop;
        if (!(bits & xml_class::SPACE))
            kept = stop;
    }
    if (stop == _end || *stop == '&')
        return NONE;
    text = view(p, kept);
    _p = stop;
    return TEXT;
}

XMLCharReader::Shortcut XMLCharReader::_attribute(const char* p, std::string_view& name, std::string_view& value)
{
    if (!has(*p, xml_class::NAME_START))
        return NONE;
    const char* e = name_end(p, _end);
    if (!e || e == _end)
        return NONE;
    if (*e != '=') {
        name = view(p, e);
        _p = e;
        return ATTRIBUTE;
    }
    const char* q = e + 1;
    if (q == _end || (*q != '"' && *q != '\''))
        return NONE;
    const char* r = q + 1;
    for (;; ++r) {
        if (r == _end)
            return NONE;
        if (!has(*r, xml_class::STOP))
            continue;
        if (*r == *q)
            break;
        if (*r != '"' && *r != '\'')
            return NONE;
    }
    name = view(p, e);
    value = view(q + 1, r);
    _p = r + 1;
    return PAIR;
}

XMLParser::XMLParser(std::istream& is) : _is(is)
{
    // START_DOC twice: it is current before anything is read, and the first
    // GetNextToken delivers it as well.
    _append().type = START_DOC;
    _append().type = START_DOC;
    _go(0);
}

void XMLParser::_new_block()
{
    auto* block = static_cast<TokenInfo*>(_arena.allocate(BLOCK * sizeof(TokenInfo), alignof(TokenInfo)));
    _blocks.push_back(block);
    _block_next = block;
    _block_end = block + BLOCK;
}

void XMLParser::_new_text_block(std::size_t size)
{
    const std::size_t block = std::max<std::size_t>(size, 2048);
    _text_next = static_cast<char*>(_arena.allocate(block, 1));
    _text_end = _text_next + block;
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

const XMLParser::TokenInfo& XMLParser::_read_token()
{
    _in.start();
    const TokenInfo* tok = nullptr;
    if (!_in.failed()) {
        _in.skip_ws();
        bool closed;
        std::string_view text, value;
        const auto s = _in.shortcut(_start_tag_open, closed, text, value);
        if (closed)
            _start_tag_open = false;
        switch (s) {
        case XMLCharReader::START_TAG:
            tok = &_append(START_ELEMENT, _keep(text));
            _start_element(*tok);
            break;
        case XMLCharReader::END_TAG: tok = &_append(END_ELEMENT, _keep(text)); break;
        case XMLCharReader::TEXT: tok = &_append(STRING, _keep(text)); break;
        case XMLCharReader::ATTRIBUTE: tok = &_append(ATTRIBUTE, _keep(text)); break;
        case XMLCharReader::PAIR: tok = &_append(ATTRIBUTE_VALUE_PAIR, _keep(text), _keep(value)); break;
        case XMLCharReader::NONE: break;
        }
    }
    if (!tok) {
        // The rest goes byte by byte.
        TokenInfo& slow = _append();
        if (!_failed(slow)) {
            if (_start_tag_open)
                _read_inside_tag(slow);
            else
                _read_outside_tag(slow);
        }
        tok = &slow;
    }
    _in.finish();
    return *tok;
}

bool XMLParser::_failed(TokenInfo& tok) const
{
    if (!_in.failed())
        return false;
    tok = {_in.eof() ? END_DOC : ERROR, {}, {}};
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
            in.read_name(_scratch);
            if (_failed(tok))
                return;
            if (_scratch.empty()) {
                _error(tok, "Empty XML tag name");
            } else {
                tok = {START_ELEMENT, _keep(_scratch), {}};
                _start_element(tok);
            }
        } else {
            in.read_name(_scratch);
            c = in.get();
            if (_failed(tok))
                return;
            if (_scratch.empty()) {
                _error(tok, "Empty XML tag name");
            } else if (c == '>') {
                tok.type = END_ELEMENT;
                tok.text = _keep(_scratch);
            } else {
                _error(tok, "Invalid XML tag end sequence");
            }
        }
    } else {
        // Text up to the end of input is a normal STRING; END_DOC follows.
        in.unget();
        in.read_string(_scratch);
        tok.type = STRING;
        tok.text = _keep(_scratch);
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
            tok.text = _open_element;
        } else {
            _error(tok, "Invalid XML tag end sequence");
        }
        break;
    default:
        // The byte after the name is consumed even when the name is empty,
        // so that recovery always makes progress.
        in.unget();
        in.read_name(_scratch);
        c = in.get();
        if (_failed(tok))
            return;
        if (_scratch.empty()) {
            _error(tok, "Empty XML tag name");
        } else if (c == '=') {
            in.read_string(_scratch_value);
            if (_failed(tok))
                return;
            tok = {ATTRIBUTE_VALUE_PAIR, _keep(_scratch), _keep(_scratch_value)};
        } else {
            in.unget();
            tok = {ATTRIBUTE, _keep(_scratch), {}};
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
