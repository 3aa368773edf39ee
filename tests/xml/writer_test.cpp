#include "xml/xml_writer.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>

namespace {

// Pieces written one after another, in either mode.
TEST(XMLWriter, Pieces)
{
    const struct {
        const char* what;
        bool formatted;
        std::function<void(XMLWriter&)> write;
        const char* written;
    } cases[] = {
        {"a document: its end closes what is open", true, [](XMLWriter& w) {
             w.WriteStartDoc();
             w.WriteStartElement("a");
             w.WriteAttributeValuePair("x", "1");
             w.WriteAttribute("y");
             w.write_string("text", true);
             w.WriteStartElement("ARVEX::b");
             w.WriteEndElement("ARVEX::b");
             w.WriteEndElement("a");
             w.WriteStartElement("c");
             w.WriteEndDoc();
         }, "<?xml version=\"1.0\"?>\n<a x=\"1\" y>text\n\t<ARVEX::b/>\n</a>\n<c/>\n"},
        {"answers to several queries, each under a transparent root", false, [](XMLWriter& w) {
             w.WriteStartElement("");
             w.write_string("43.21", false);
             w.WriteEndElement("");
             w.WriteStartElement("");
             w.write_string("", false);  // writes nothing, changes nothing
             w.write_string("9", false);
             w.WriteEndElement("");
             w.WriteStartElement("Error");
             w.WriteAttributeValuePair("Param", "x y");
             w.write_string("bad", true);
             w.WriteEndElement("Error");
             w.write_string("1234", false);
             w.write_string("2.1", false);
         }, "43.21 9<Error Param=\"x y\">bad</Error>1234 2.1"},
        {"an empty name is transparent", false, [](XMLWriter& w) {
             w.WriteStartElement("");
             w.WriteAttribute("");
             w.WriteAttributeValuePair("", "v");
             w.WriteStartElement("a");
             w.WriteAttribute("");
             w.write_string("1", false);
             w.WriteEndElement("a");
             w.WriteEndElement("");
         }, "<a>1</a>"},
        {"the end of an empty name still takes off indent", true, [](XMLWriter& w) {
             w.WriteStartElement("outer");
             w.WriteStartElement("");
             w.WriteStartElement("in");
             w.WriteEndElement("in");
             w.WriteEndElement("");
             w.WriteStartElement("in2");
             w.WriteEndElement("in2");
             w.WriteEndElement("outer");
         }, "\n<outer>\n\t<in/>\n<in2/>\n</outer>"},
        {"indent stops at zero", true, [](XMLWriter& w) {
             for (int i = 0; i < 3; ++i)
                 w.WriteEndElement("");
             w.WriteStartElement("a");
             w.WriteStartElement("b");
         }, "\n<a>\n\t<b"},
        {"names are cut and text escaped", false, [](XMLWriter& w) {
             w.WriteStartElement("bad name");
             w.WriteAttributeValuePair("q", "say \"hi\" & &query;");
             w.write_string("a<b & &query;", true);
             w.write_string("a<b", false);
             w.WriteEndElement("bad name");
         }, "<bad q=\"say &quot;hi&quot; &amp; &query;\">a&lt;b &amp; &query; a<b</bad>"},
    };
    for (const auto& c : cases) {
        std::ostringstream os;
        XMLWriter w(os, c.formatted);
        c.write(w);
        EXPECT_EQ(os.str(), c.written) << c.what;
    }
}

} // namespace
