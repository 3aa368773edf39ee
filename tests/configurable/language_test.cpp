// The message tables of the language. Each table runs on one tree, row after row, because every
// row builds on the state the rows before it left.

#include <gtest/gtest.h>

#include "test_tree.h"

namespace {

void run_table(TestTree& tree, const std::vector<Exchange>& rows)
{
    for (const Exchange& row : rows) {
        if (row.clear_first)
            tree._set_changed(false);
        EXPECT_EQ(reply(tree, row.message), row.expected) << "message: " << row.message;
    }
}

TEST(Language, CoreQueriesSettingsAndChanges)
{
    TestTree tree;
    run_table(tree, {
        {"&query_item;",
         "<L><a>1234</a><b>0.1234</b><d><e><g>0.11</g><g>0.22</g><g>0.33</g></e><f>6.5</f></d><c>43.21</c>"
         "<lunch>apple</lunch><dog pitch=\"11.22\">88.11</dog><dyn/></L>"},
        {"<L><a>&query_item;</a><b>&query_item;</b></L>", "1234 0.1234"},
        {"&query_changes_item;", "", true},
        {"<L><b>1.0</b></L>", ""},
        {"<L><b>&query_item;</b></L>", "1"},
        {"&query_changes_item;", "<L><b>1</b></L>"},
        {"<L><c> &query_item; 9 &query_item; </c></L>", "43.21 9"},
        {"<L><d><e><g>1</g></e></d> &query_changes_item; </L> ", "<d><e><g>1</g><g>1</g><g>1</g></e></d>", true},
        {"<L><dog>&query_item;&query_item;&query_item;</dog></L>", "88.11 88.11 88.11"},
        {"<L><d><GG>&query_item;</GG></d></L>", ""},
    });
}

TEST(Language, ErrorsAreReportedInsideTheReply)
{
    TestTree tree;
    run_table(tree, {
        {"<L><a>qwerty</a><b>2.1</b><a> &query_item; </a><b> &query_item; </b></L>",
         "<Error Param=\"a\">unable to read float</Error>1234 2.1"},
        {"<L><b>&query_illegal;</b></L>", "<Error Param=\"b\">Invalid query: &query_illegal;</Error>"},
        {"<attic>&query_item;</attic>", "<Error Param=\"L\">Invalid start element: attic</Error>"},
        {"<L><attic>&query_item;</attic><a>&query_item;</a></L>", "1234"},
        {"<L><a> &query_item; </a></L> this is some junk the configurable should throw away", "1234"},
        {"<L><a>junk &query_item;</a></L>", "<Error Param=\"a\">unable to read float</Error>1234"},
        // A failed child skips to the end of the element it failed in: here that is L.
        {"<L><a>7</b><c>&query_item;</c></L>", "<Error Param=\"a\">Invalid End Element: b</Error>"},
        {"<L><c x=\"1\">5</c><c>&query_item;</c></L>", "<Error Param=\"c\">This item has no attributes</Error>43.21"},
    });
}

TEST(Language, OnlyAFailureAtTheRootFailsTheStream)
{
    struct Row {
        const char* message;
        bool fails;
    } rows[] = {
        {"<L><a>qwerty</a></L>", false},
        {"<L><c x=\"1\">5</c></L>", false},
        {"<attic/>", true},
        {"<L></M>", true},
        {"<L attr/>", true},
        {"< L/>", true},
        {"", true},  // reading past the end leaves failbit, as on any stream
    };
    for (const Row& row : rows) {
        TestTree tree;
        bool failed = false;
        reply(tree, row.message, &failed);
        EXPECT_EQ(failed, row.fails) << row.message;
    }
}

TEST(Language, AttributesArePresentOrAbsent)
{
    TestTree tree;
    run_table(tree, {
        {"<L><dog &query_item;></dog></L>", "pitch=\"11.22\""},
        {"<L><dog pitch=\"&query_item;\"/></L>", "11.22"},
        {"<L><dog sticky/></L>", ""},
        {"<L><dog> &query; </dog></L>", "<L><dog sticky>88.11</dog></L>"},
        {"<L><dog &query; /></L>", "<L><dog sticky>88.11</dog></L>"},
        {"<L><dog pitch=\"&query_item;\"/></L>", "&disabled;"},
        {"<L><dog></dog><dog pitch=\"&query_item;\" sticky=\"&query_item;\" /></L>", "&disabled; &enabled;"},
        {"<L><dog sticky pitch=\"&query_item;21&query_item;\">1234.5</dog><dog &query_item;/></L>",
         "&disabled; 21 pitch=\"21\" sticky"},
        {"<L><dog>&query;</dog></L>", "<L><dog pitch=\"21\" sticky>1234.5</dog></L>"},
        {"<L><dog>2</dog><dog>&query;</dog></L>", "<L><dog>2</dog></L>"},
        {"<L><dog bark=\"&query_item;\"/></L>", ""},
        {"<L><dog bark=\"&query_item;\" pitch=\"&query_item;\"/></L>", "&disabled;"},
        {"<L><dog bark=\"15\" pitch=\"1\"/></L>", ""},
        {"<L><dog bark=\"14\" pitch=\"&query_item;\"/></L>", "1"},
        {"<L><dog pitch=\"\"/><dog>&query;</dog></L>", "<L><dog pitch=\"1\">2</dog></L>"},
        {"<L><dog pitch=\"&query_doctype_item;\" &query_doctype_item;/></L>",
         "{float:11.22} pitch=\"{float:11.22}\" sticky"},
    });
}

TEST(Language, AChangedAttributeMarksItsOwnerAndTheRoot)
{
    TestTree tree;
    reply(tree, "<L><dog pitch=\"11.22\" sticky/></L>");
    tree._set_changed(false);
    tree.pitch.set(3);
    EXPECT_TRUE(tree.pitch.has_changed());
    EXPECT_TRUE(tree.dog.has_changed());
    EXPECT_TRUE(tree.has_changed());
    EXPECT_FALSE(tree.sticky.has_changed());
    EXPECT_FALSE(tree.a.has_changed());
    EXPECT_EQ(reply(tree, "&query_changes;"), "<L><dog pitch=\"3\" sticky>88.11</dog></L>");
    tree.pitch.set_enabled(false);
    EXPECT_EQ(reply(tree, "&query_changes;"), "<L><dog sticky>88.11</dog></L>");
}

TEST(Language, ListsAreReplacedByEachMessage)
{
    TestTree tree;
    run_table(tree, {
        {"<L><dyn><val>1.2</val></dyn></L>", ""},
        {"<L><dyn>&query;</dyn></L>", "<L><dyn><val>1.2</val></dyn></L>"},
        {"<L><dyn><val1>1</val1><val2>2</val2><val3>3</val3></dyn></L>", ""},
        {"<L><dyn>&query_item;</dyn></L>", "<val1>1</val1><val2>2</val2><val3>3</val3>"},
        {"<L><dyn><val>1</val><val>2</val><val>3</val></dyn></L>", ""},
        {"<L><dyn>&query_item;</dyn></L>", "<val>1</val><val>2</val><val>3</val>"},
        {"<L><dyn><val>1</val><val>2</val><val>error</val><val>4</val><val>another error</val></dyn></L>",
         "<Error Param=\"val\">unable to read float</Error><Error Param=\"val\">unable to read float</Error>"},
        // An unknown word leaves the stream good, so those children stay at a new child's value.
        {"<L><dyn>&query_item;</dyn></L>", "<val>1</val><val>2</val><val>0</val><val>4</val><val>0</val>"},
        {"<L><dyn><val>1</val><val>3</val></dyn></L>", ""},
        {"<L><dyn></dyn><dyn>&query_doctype_item;</dyn></L>", "<val>{float:0}</val><val>{float:0}</val>"},
        // The whole list is the unit of change.
        {"<L><dyn>&query_changes_item;</dyn></L>", "<val>1</val><val>3</val>", true},
    });
}

TEST(Language, TypeTexts)
{
    TestTree tree;
    run_table(tree, {
        {"<L><lunch>&query_doctype_item;</lunch></L>",
         "{apple|banana|orange|grapes|tire|translate&lt;&gt;&amp;&apos;&quot;}"},
        {"<L><d>&query_doctype_item;</d></L>",
         "<e><g>{float:0.11}</g><g>{float:0.22}</g><g>{float:0.33}</g></e><f>{float:6.5}</f>"},
        {"<L><dyn>&query_doctype;</dyn></L>", "<L><dyn/></L>"},
        {"<L><dog>&query_doctype;</dog></L>", "<L><dog pitch=\"{float:11.22}\" sticky>{float:88.11}</dog></L>"},
    });
}

TEST(Language, ChoicesAreEscapedUnlessNoTranslation)
{
    TestTree tree;
    EXPECT_EQ(reply(tree, "<L><lunch>abc tire</lunch></L>"),
              "<Error Param=\"lunch\">invalid option: abc tire\n</Error>");
    EXPECT_FALSE(tree.lunch.has_changed());
    EXPECT_EQ(reply(tree, "<L><lunch>apple</lunch></L>"), "");
    EXPECT_FALSE(tree.lunch.has_changed());
    tree.lunch.set(5);
    EXPECT_EQ(reply(tree, "<L><lunch>&query_item;</lunch></L>"), "translate&lt;&gt;&amp;&apos;&quot;");
    tree.lunch.set_no_translation(true);
    std::ostringstream out;
    Configurable::set_compact(out, true);
    tree.lunch.configuration_noparent(out);
    EXPECT_EQ(out.str(), "<lunch>translate<>&'\"</lunch>");
}

TEST(Language, LockedNodesReportAndStillRead)
{
    TestTree tree;
    tree._set_locked(true);
    EXPECT_EQ(reply(tree, "<L><a>5</a></L>"), "<Error Param=\"a\">Configuration is locked</Error>");
    EXPECT_EQ(tree.a.get(), 5);
}

TEST(Language, ThrowOnErrorMode)
{
    struct Row {
        const char* message;
        const char* what;
    } rows[] = {
        {"<L><a>qwerty</a></L>", "XML error in item \"a\": unable to read float"},
        {"<L><b>&query_junk;</b></L>", "XML error in item \"b\": Invalid query: &query_junk;"},
        {"<M/>", "XML error in item \"L\": Invalid start element: M"},
        {"<L><lunch>pear</lunch></L>", "XML error in item \"lunch\": invalid option: pear\n"},
        {"<L><dog pitch=\"x\"/></L>", "XML error in item \"pitch\": unable to read float"},
    };
    for (const Row& row : rows) {
        TestTree tree;
        tree._set_throw_on_error(true);
        try {
            reply(tree, row.message);
            ADD_FAILURE() << "no exception for " << row.message;
        } catch (const Configurable::Error& e) {
            EXPECT_STREQ(e.what(), row.what);
        }
    }
}

TEST(Language, OutputEntryPoints)
{
    TestTree tree;
    std::ostringstream out;
    Configurable::set_compact(out, true);
    tree.g2.build_query(out);
    EXPECT_EQ(out.str(), "<L><d><e><g>&query;</g></e></d></L>");

    out.str("");
    tree.f.configuration(out);
    tree.f.changed(out);  // nothing: the tree was cleared
    tree.f.doctype(out);
    EXPECT_EQ(out.str(), "<L><d><f>6.5</f></d></L><L><d><f>{float:6.5}</f></d></L>");

    std::ostringstream formatted;
    tree.d.configuration_noparent(formatted);
    EXPECT_EQ(formatted.str(),
              "\n<d>\n\t<e>\n\t\t<g>0.11</g>\n\t\t<g>0.22</g>\n\t\t<g>0.33</g>\n\t</e>\n\t<f>6.5</f>\n</d>");
}

}  // namespace
