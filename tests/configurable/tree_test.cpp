// Walking and managing a tree: visitors, change marks, and the list operations.

#include <gtest/gtest.h>

#include "test_tree.h"

namespace {

// Records the walk as one line of words.
class Recorder : public ConfigurableVisitor {
public:
    explicit Recorder(bool enter_attributes) : _enter(enter_attributes) {}
    std::string log;

    void VisitConfigurable(Configurable& c) override { log += "node:" + c.name() + " "; }
    bool VisitAttributesBegin() override
    {
        log += "[ ";
        return _enter;
    }
    void VisitAttributesEnd() override { log += "] "; }
    void VisitConfigurableCompositeBegin(ConfigurableComposite& c) override { log += c.name() + "{ "; }
    void VisitConfigurableCompositeEnd(ConfigurableComposite& c) override { log += "}" + c.name() + " "; }
    void VisitConfigurableFloat(ConfigurableFloat& c) override { log += "float:" + c.name() + " "; }
    void VisitConfigurableMultipleChoice(ConfigurableMultipleChoice& c) override
    {
        log += "choice:" + c.name() + " ";
    }

private:
    bool _enter;
};

TEST(Visitor, WalksEveryChildAndAttributesOnlyOnRequest)
{
    TestTree tree;
    const std::string inner = "L{ float:a float:b d{ e{ float:g float:g float:g }e float:f float:GG }d float:c choice:lunch float:dog ";
    Recorder closed(false);
    tree.do_accept(closed);
    tree.do_accept_attributes(closed);
    EXPECT_EQ(closed.log, inner + "[ ] dyn{ }dyn }L ");

    Recorder open(true);
    tree.do_accept(open);
    EXPECT_EQ(open.log, inner + "[ float:pitch node:sticky ] dyn{ }dyn }L ");
}

TEST(Changes, ClearingGoesDownAndMarkingGoesUp)
{
    TestTree tree;
    EXPECT_FALSE(tree.has_changed());
    tree.g2.set(5);
    EXPECT_TRUE(tree.g2.has_changed());
    EXPECT_TRUE(tree.e.has_changed());
    EXPECT_TRUE(tree.d.has_changed());
    EXPECT_TRUE(tree.has_changed());
    EXPECT_FALSE(tree.g1.has_changed());
    EXPECT_EQ(tree.g2.change_count(), 1u);

    tree.e._set_changed(false);
    EXPECT_FALSE(tree.g2.has_changed());
    EXPECT_TRUE(tree.d.has_changed());  // a parent stays changed when a child is cleared

    tree.g2.set(5);  // the same value changes nothing
    EXPECT_FALSE(tree.g2.has_changed());

    tree.dog.set(1);
    tree._set_changed(false);
    for (Configurable* c : {static_cast<Configurable*>(&tree), static_cast<Configurable*>(&tree.dog),
                            static_cast<Configurable*>(&tree.pitch), static_cast<Configurable*>(&tree.GG)})
        EXPECT_FALSE(c->has_changed()) << c->name();
    tree.c.set(1);  // a query only reads the marks
    EXPECT_EQ(reply(tree, "&query_changes;"), "<L><c>1</c></L>");
    EXPECT_EQ(reply(tree, "&query_changes;"), "<L><c>1</c></L>");
}

TEST(Changes, ListenerHearsWhatHappens)
{
    struct Listener : ConfigurableListener {
        std::string log;
        void GotChanged(const ConfigurableEvent& e) override { log += "changed:" + e.configurable->name() + " "; }
        void GotConfigureBegin(const ConfigurableEvent&) override { log += "begin "; }
        void GotConfigureEnd(const ConfigurableEvent&) override { log += "end "; }
        void GotString(const ConfigurableEvent&, const std::string& text) override { log += "string:" + text + " "; }
        void GotWriteBegin(const ConfigurableEvent&) override { log += "write "; }
        void GotWriteEnd(const ConfigurableEvent&) override { log += "written "; }
    } listener;
    TestTree tree;
    tree.b.register_configurable_listener(&listener);
    EXPECT_EQ(reply(tree, "<L><b> 3 &query_item;</b></L>"), "3");
    EXPECT_EQ(listener.log, "begin string:3 &query_item; changed:b end ");
}

TEST(Lists, FindRemoveAndCopy)
{
    TestTree source;
    reply(source, "<L><dyn><v>1</v><v>2</v><v>2</v><w>3</w></dyn></L>");
    ConfigurableFloat key("v", 2);
    ASSERT_NE(source.dyn.find(key), nullptr);
    EXPECT_EQ(source.dyn.find(key)->get(), 2);

    TestTree copy;
    copy.dyn = source.dyn;
    EXPECT_TRUE(copy.dyn._is_composite_same(source.dyn));
    EXPECT_EQ(reply(copy, "&query;"), reply(source, "&query;"));

    copy._set_changed(false);
    copy.dyn = source.dyn;  // the same children: only the flags are taken over
    EXPECT_EQ(copy.dyn.children().size(), 4u);

    source._set_changed(false);
    source.dyn.remove(key);
    EXPECT_EQ(reply(source, "<L><dyn>&query_item;</dyn></L>"), "<v>1</v><w>3</w>");
    EXPECT_FALSE(source.dyn.has_changed());
    EXPECT_FALSE(copy.dyn._is_composite_same(source.dyn));

    source.dyn.set_to_default();
    EXPECT_TRUE(source.dyn.children().empty());
    EXPECT_TRUE(source.dyn.has_changed());

    // Adding marks the list and its parents; deleting all marks the list.
    source._set_changed(false);
    source.dyn.add(*new ConfigurableFloat("v", 1));
    EXPECT_TRUE(source.has_changed());
    source.dyn._set_changed(false);
    source.dyn._delete_all();
    EXPECT_TRUE(source.dyn.children().empty());
    EXPECT_TRUE(source.dyn.has_changed());
}

TEST(Lists, DefaultsReachOnlyEnabledChildren)
{
    TestTree tree;
    tree.a.set(1);
    tree.GG.set(2);
    tree.set_to_default();
    EXPECT_EQ(tree.a.get(), 1234);
    EXPECT_EQ(tree.GG.get(), 2);
}

}  // namespace

// Lookups remember where they stopped and whether names are shared; both must follow the children.
TEST(Composite, LookupsFollowTheChildren)
{
    ConfigurableComposite root("r");
    ConfigurableFloat x("x", 1), y("y", 2), z("z", 3), y2("y", 4);
    root.add(x);
    root.add(y);
    root.add(z);
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
