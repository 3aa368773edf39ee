#pragma once
// The tree the tables run on: root L with floats a and b, d/e with three g, f and a disabled GG, c,
// the choice lunch, dog with the attribute pitch and the bare attribute sticky, and the float list dyn.

#include <sstream>
#include <string>
#include <vector>

#include "configurable/configbuiltin.h"
#include "configurable/configcomposite.h"

inline const std::vector<std::string>& lunch_choices()
{
    static const std::vector<std::string> choices{"apple", "banana", "orange", "grapes", "tire", "translate<>&'\""};
    return choices;
}

class FloatList : public ConfigurableCompositeDynamic<ConfigurableFloat> {
public:
    using ConfigurableCompositeDynamic::ConfigurableCompositeDynamic;

protected:
    ConfigurableFloat* _create(const std::string& name) override { return new ConfigurableFloat(name, 0); }
    void _copy(ConfigurableFloat& to, const ConfigurableFloat& from) override { to.set(from.get()); }
    bool _is_same(const ConfigurableFloat& a, const ConfigurableFloat& b) const override
    {
        return a.name() == b.name() && a.get() == b.get();
    }
};

struct TestTree : ConfigurableComposite {
    ConfigurableFloat a{"a", 1234}, b{"b", 0.1234f};
    ConfigurableComposite d{"d"}, e{"e"};
    ConfigurableFloat g1{"g", 0.11f}, g2{"g", 0.22f}, g3{"g", 0.33f}, f{"f", 6.5f}, GG{"GG", 1};
    ConfigurableFloat c{"c", 43.21f};
    ConfigurableMultipleChoice lunch{"lunch", lunch_choices(), 0};
    ConfigurableFloat dog{"dog", 88.11f}, pitch{"pitch", 11.22f};
    Configurable sticky{"sticky"};
    FloatList dyn{"dyn"};

    TestTree() : ConfigurableComposite("L")
    {
        for (ConfigurableFloat* g : {&g1, &g2, &g3})
            e.add(*g);
        for (Configurable* child : std::initializer_list<Configurable*>{&e, &f, &GG})
            d.add(*child);
        GG.set_enabled(false);
        dog.add_attribute(pitch);
        dog.add_attribute(sticky);
        sticky.set_enabled(false);
        for (Configurable* child : std::initializer_list<Configurable*>{&a, &b, &d, &c, &lunch, &dog, &dyn})
            add(*child);
        _set_changed(false);
    }
};

/// Sends one message to `node` and returns the compact reply.
inline std::string reply(Configurable& node, const std::string& message, bool* failed = nullptr)
{
    std::istringstream in(message);
    std::ostringstream out;
    Configurable::set_compact(out, true);
    node.configure(in, out);
    if (failed)
        *failed = in.fail();
    return out.str();
}

/// A row of a message table: the message, the reply, and whether to clear the changes first.
struct Exchange {
    const char* message;
    const char* expected;
    bool clear_first = false;
};
