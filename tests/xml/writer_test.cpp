#include "xml/xml_writer.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>

namespace {

// The small document of the writer's documentation, in either mode.
std::string sample(bool formatted)
{
    std::ostringstream os;
    XMLWriter w(os, formatted);
    w.WriteStartDoc();
    w.WriteStartElement("greeting");
    w.write_string("Hello, world!", true);
    w.WriteEndElement("greeting");
    w.WriteStartElement("tag1");
    w.WriteAttributeValuePair("tag1_attr", "tag1_val");
    w.WriteAttribute("tag1_attr2");
    w.WriteEndElement("tag1");
    w.WriteStartElement("tag2");
    w.WriteStartElement("tag3");
    w.WriteAttribute("attr");
    w.write_string("Howdy from tag3", true);
    w.WriteStartElement("ARVEX::tag31");
    w.write_string("this is tag31", true);
    w.WriteEndElement("ARVEX::tag31");
    w.WriteEndElement("tag3");
    w.WriteEndElement("tag2");
    w.WriteStartElement("tag4");
    w.WriteEndDoc();
    return os.str();
}

TEST(XMLWriter, Document)
{
    EXPECT_EQ(sample(true),
              "<?xml version=\"1.0\"?>\n"
              "<greeting>Hello, world!</greeting>\n"
              "<tag1 tag1_attr=\"tag1_val\" tag1_attr2/>\n"
              "<tag2>\n"
              "\t<tag3 attr>Howdy from tag3\n"
              "\t\t<ARVEX::tag31>this is tag31</ARVEX::tag31>\n"
              "\t</tag3>\n"
              "</tag2>\n"
              "<tag4/>\n");
    EXPECT_EQ(sample(false),
              "<?xml version=\"1.0\"?><greeting>Hello, world!</greeting>"
              "<tag1 tag1_attr=\"tag1_val\" tag1_attr2/><tag2><tag3 attr>Howdy from tag3"
              "<ARVEX::tag31>this is tag31</ARVEX::tag31></tag3></tag2><tag4/>\n");
}

// Pieces written one after another, in either mode.
TEST(XMLWriter, Pieces)
{
    const struct {
        const char* what;
        bool formatted;
        std::function<void(XMLWriter&)> write;
        const char* written;
    } cases[] = {
        {"compact: no line feed without end of document", false, [](XMLWriter& w) {
             w.WriteStartElement("arvex");
             w.WriteStartElement("dyn");
             w.WriteEndElement("dyn");
             w.WriteEndElement("arvex");
         }, "<arvex><dyn/></arvex>"},
        {"formatted: a line feed first without start of document", true, [](XMLWriter& w) {
             w.WriteStartElement("a");
             w.WriteEndElement("a");
         }, "\n<a/>"},
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
