// The tokenizer over any text, recovering from every error as the documents do, and the query
// entity parser over the same text.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "xml/xml_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);

    std::istringstream in(text);
    XMLParser parser(in);
    for (;;) {
        const XMLParser::TokenType token = parser.GetNextToken();
        if (token == XMLParser::END_DOC)
            break;
        if (token == XMLParser::ERROR)
            parser.RecoverFromError();
        else if (token == XMLParser::START_ELEMENT) {
            // What a composite does to hand one element to several children: read ahead, go back.
            parser.MarkCurrToken();
            parser.GetNextToken();
            parser.PutBackToken();
            parser.GotoMarkedToken();
        }
    }

    XMLQueryStringParser query(text);
    if (query.GetNextToken() != XMLQueryStringParser::START_STRING)
        abort();
    // Every token takes at least one byte, so the text ends within its length.
    for (size_t tokens = 0; query.GetNextToken() != XMLQueryStringParser::END_STRING; ++tokens)
        if (tokens > size)
            abort();
    return 0;
}
