// The message tables of the language, each on one tree, row after row, because every row builds on the
// state the rows before it left; and walking a tree, its change marks and defaults.

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
        {"&query_changes_item;", "", true}, {"<L><b>1.0</b></L>", ""}, {"<L><b>&query_item;</b></L>", "1"},
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
    const std::pair<const char*, bool> rows[] = {
        {"<L><a>qwerty</a></L>", false}, {"<L><c x=\"1\">5</c></L>", false}, {"<attic/>", true}, {"<L></M>", true},
        {"<L attr/>", true}, {"< L/>", true},
        {"", true},  // reading past the end leaves failbit, as on any stream
    };
    for (const auto& [message, fails] : rows) {
        TestTree tree;
        bool failed = false;
        reply(tree, message, &failed);
        EXPECT_EQ(failed, fails) << message;
    }
}

TEST(Language, AttributesArePresentOrAbsent)
{
    TestTree tree;
    run_table(tree, {
        {"<L><dog &query_item;></dog></L>", "pitch=\"11.22\""},
        {"<L><dog pitch=\"&query_item;\"/></L>", "11.22"}, {"<L><dog sticky/></L>", ""},
        {"<L><dog> &query; </dog></L>", "<L><dog sticky>88.11</dog></L>"},
        {"<L><dog &query; /></L>", "<L><dog sticky>88.11</dog></L>"},
        {"<L><dog pitch=\"&query_item;\"/></L>", "&disabled;"},
        {"<L><dog></dog><dog pitch=\"&query_item;\" sticky=\"&query_item;\" /></L>", "&disabled; &enabled;"},
        {"<L><dog sticky pitch=\"&query_item;21&query_item;\">1234.5</dog><dog &query_item;/></L>",
         "&disabled; 21 pitch=\"21\" sticky"},
        {"<L><dog>&query;</dog></L>", "<L><dog pitch=\"21\" sticky>1234.5</dog></L>"},
        {"<L><dog>2</dog><dog>&query;</dog></L>", "<L><dog>2</dog></L>"},
        {"<L><dog bark=\"&query_item;\" pitch=\"&query_item;\"/></L>", "&disabled;"},  // unknown ones are skipped
        {"<L><dog bark=\"15\" pitch=\"1\"/></L>", ""},
        {"<L><dog bark=\"14\" pitch=\"&query_item;\"/></L>", "1"},
        {"<L><dog pitch=\"\"/><dog>&query;</dog></L>", "<L><dog pitch=\"1\">2</dog></L>"},
        {"<L><dog pitch=\"&query_doctype_item;\" &query_doctype_item;/></L>",
         "{float:11.22} pitch=\"{float:11.22}\" sticky"},
    });
}

TEST(Language, ListsAreReplacedByEachMessage)
{
    TestTree tree;
    run_table(tree, {
        {"<L><dyn><val>1.2</val></dyn></L>", ""}, {"<L><dyn>&query;</dyn></L>", "<L><dyn><val>1.2</val></dyn></L>"},
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

// Choices are checked and escaped; doctype queries give the type texts.
TEST(Language, ChoicesAndTypeTexts)
{
    TestTree tree;
    run_table(tree, {
        {"<L><lunch>abc tire</lunch></L>", "<Error Param=\"lunch\">invalid option: abc tire\n</Error>"},
        {"<L><lunch>apple</lunch></L>", ""},
        {"&query_changes_item;", ""},  // neither a bad choice nor the same one is a change
        {"<L><lunch>&query_doctype_item;</lunch></L>",
         "{apple|banana|orange|grapes|tire|translate&lt;&gt;&amp;&apos;&quot;}"},
        {"<L><d>&query_doctype_item;</d></L>",
         "<e><g>{float:0.11}</g><g>{float:0.22}</g><g>{float:0.33}</g></e><f>{float:6.5}</f>"},
        {"<L><dyn>&query_doctype;</dyn></L>", "<L><dyn/></L>"},
        {"<L><dog>&query_doctype;</dog></L>", "<L><dog pitch=\"{float:11.22}\" sticky>{float:88.11}</dog></L>"},
    });
    tree.lunch.set(5);
    EXPECT_EQ(reply(tree, "<L><lunch>&query_item;</lunch></L>"), "translate&lt;&gt;&amp;&apos;&quot;");
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

// Records the walk as one line of words.
struct Recorder : ConfigurableVisitor {
    bool enter = false;
    std::string log;

    void VisitConfigurable(Configurable& c) override { log += "node:" + c.name() + " "; }
    bool VisitAttributesBegin() override { return log += "[ ", enter; }
    void VisitAttributesEnd() override { log += "] "; }
    void VisitConfigurableCompositeBegin(ConfigurableComposite& c) override { log += c.name() + "{ "; }
    void VisitConfigurableCompositeEnd(ConfigurableComposite& c) override { log += "}" + c.name() + " "; }
    void VisitConfigurableFloat(ConfigurableFloat& c) override { log += "float:" + c.name() + " "; }
    void VisitConfigurableMultipleChoice(ConfigurableMultipleChoice& c) override { log += "choice:" + c.name() + " "; }
};

TEST(Visitor, WalksEveryChildAndAttributesOnlyOnRequest)
{
    TestTree tree;
    const std::string inner =
        "L{ float:a float:b d{ e{ float:g float:g float:g }e float:f float:GG }d float:c choice:lunch float:dog ";
    Recorder closed, open;
    tree.do_accept(closed);
    tree.do_accept_attributes(closed);
    EXPECT_EQ(closed.log, inner + "[ ] dyn{ }dyn }L ");

    open.enter = true;
    tree.do_accept(open);
    EXPECT_EQ(open.log, inner + "[ float:pitch node:sticky ] dyn{ }dyn }L ");
}

// Marks go up to the root, from attributes too; clearing goes down to every child and attribute.
TEST(Changes, MarksAndDefaults)
{
    TestTree tree;
    auto changed = [&tree] {
        std::string names;
        for (Configurable* c : std::initializer_list<Configurable*>{&tree, &tree.d, &tree.e, &tree.g1, &tree.g2,
                                                                    &tree.GG, &tree.dog, &tree.pitch, &tree.sticky})
            names += c->has_changed() ? c->name() + " " : "";
        return names;
    };
    EXPECT_EQ(changed(), "");
    tree.g2.set(5);
    EXPECT_EQ(changed(), "L d e g ");
    EXPECT_EQ(tree.g2.change_count(), 1u);
    tree.e._set_changed(false);
    EXPECT_EQ(changed(), "L d ");  // a parent stays changed when a child is cleared
    tree.g2.set(5);                // the same value changes nothing
    EXPECT_EQ(changed(), "L d ");

    tree.GG.set(2);
    tree.sticky._set_changed(true);
    tree._set_changed(false);
    EXPECT_EQ(changed(), "");
    tree.pitch.set(3);
    EXPECT_EQ(changed(), "L dog pitch ");
    tree.c.set(1);  // a query only reads the marks
    EXPECT_EQ(reply(tree, "&query_changes;"), "<L><c>1</c><dog pitch=\"3\">88.11</dog></L>");
    EXPECT_EQ(reply(tree, "&query_changes;"), "<L><c>1</c><dog pitch=\"3\">88.11</dog></L>");
    tree.pitch.set_enabled(false);
    EXPECT_EQ(reply(tree, "&query_changes;"), "<L><c>1</c><dog>88.11</dog></L>");

    // Defaults reach only enabled children; a default list is empty, which is a change.
    TestTree other;
    for (TestTree* t : {&tree, &other})
        reply(*t, "<L><dyn><v>1</v><w>3</w></dyn></L>");
    EXPECT_TRUE(other.dyn._is_composite_same(tree.dyn));
    tree.a.set(1);
    tree._set_changed(false);
    tree.set_to_default();
    EXPECT_EQ(tree.a.get(), 1234);
    EXPECT_EQ(tree.GG.get(), 2);
    EXPECT_TRUE(tree.dyn.children().empty() && tree.dyn.has_changed());
    EXPECT_FALSE(other.dyn._is_composite_same(tree.dyn));
}

}  // namespace

// Lookups remember where they stopped and whether names are shared; both must follow the children.
TEST(Composite, LookupsFollowTheChildren)
{
    ConfigurableComposite root("r");
    ConfigurableFloat x("x", 1), y("y", 2), z("z", 3), y2("y", 4);
    for (ConfigurableFloat* child : {&x, &y, &z})
        root.add(*child);
    for (const char* name : {"z", "x", "y", "y", "w", "x"}) {
        Configurable* found = root.lookup(name);
        EXPECT_EQ(found ? found->name() : "", std::string(name) == "w" ? "" : name);
    }
    root.lookup("z");
    root.add(y2);  // now shared: the first y comes first, the second one next
    auto first = root.lookup_first("y");
    ASSERT_EQ(*first, &y);
    auto next = root.lookup_next(first, "y");
    ASSERT_EQ(*next, &y2);
    EXPECT_EQ(root.lookup_next(next, "y"), root.children().end());
    EXPECT_EQ(*root.lookup_next(root.children().begin(), "z"), &z);
}
