#pragma once

#include <iosfwd>
#include <string>
#include <utility>

// A text value of the configuration language, read and written with its
// escaping. Bytes pass unconverted.
//
// Reading skips leading white space, then takes either a quoted string (up
// to the same quote; "<" and ">" also end it and are left unread) or an
// unquoted one (up to a quote or angle bracket, trailing white space dropped).
// "&lt;", "&gt;", "&quot;", "&apos;" and "&amp;" are decoded; any other entity
// such as "&query;" is kept verbatim. White space right after an unfinished
// entity is lost.
//
// Writing escapes quotes and angle brackets; an "&" stays as it is when a
// complete entity follows, so text holding a query is not escaped twice.
class XMLString {
public:
    XMLString() = default;
    XMLString(std::string value) : _value(std::move(value)) {}
    XMLString(const XMLString&) = default;
    XMLString(XMLString&&) = default;
    XMLString& operator=(const XMLString&) = default;
    XMLString& operator=(XMLString&&) = default;
    virtual ~XMLString() = default;

    operator const std::string&() const { return _value; }

protected:
    virtual void _read(std::istream& is);
    virtual void _write(std::ostream& os) const;

    std::string _value;

    friend std::istream& operator>>(std::istream& is, XMLString& s);
    friend std::ostream& operator<<(std::ostream& os, const XMLString& s);
};

std::istream& operator>>(std::istream& is, XMLString& s);
std::ostream& operator<<(std::ostream& os, const XMLString& s);

// A tag or attribute name. It begins with a letter, "&", ":" or "_" and goes
// on with letters, digits, "-", ".", ":", ";" and "_"; a ";" ends it, so
// "&query_item;" is a name. Reading stops before the first other byte and
// leaves it unread; writing cuts the text at the same place.
class XMLName : public XMLString {
public:
    using XMLString::XMLString;

protected:
    void _read(std::istream& is) override;
    void _write(std::ostream& os) const override;
};
