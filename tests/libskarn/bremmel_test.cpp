#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "libskarn/docbremmel.h"
#include "libskarn/docostrel.h"
#include "tests/libskarn/doc_test_util.h"

namespace {

/// Records the listener calls of a served document.
struct Recorder : ConfigurableListener {
    std::string name;
    std::vector<std::string>* log;
    const Configurable* source = nullptr;

    Recorder(const std::string& n, std::vector<std::string>& l) : name(n), log(&l) {}
    void GotChanged(const ConfigurableEvent& event) override
    {
        log->push_back(name);
        source = event.configurable;
    }
    void GotConfigureBegin(const ConfigurableEvent&) override {}
    void GotConfigureEnd(const ConfigurableEvent&) override {}
    void GotString(const ConfigurableEvent&, const std::string&) override {}
    void GotWriteBegin(const ConfigurableEvent&) override {}
    void GotWriteEnd(const ConfigurableEvent&) override {}
};

/// Serves one message as the instrument would; returns the reply.
template <class Doc>
std::string serve(Doc& doc, const std::string& message)
{
    std::istringstream in(message);
    std::ostringstream out;
    Configurable::set_compact(out, true);
    doc.configure_and_send_events(in, out);
    return out.str();
}

// --- Bremmel ---

TEST(Bremmel, ListenersHearOfChangesInTheOrderOfTheirNames)
{
    std::vector<std::string> log;
    Recorder second("second", log), first("first", log);
    DocBremmel doc;
    doc.AddListener("second", &second);
    doc.AddListener("first", &first);
    doc._set_changed(false);

    serve(doc, "<arvex><quenta><name>x</name></quenta></arvex>");
    serve(doc, envelope("bremmel", "<cfg><sonicbaud>57600</sonicbaud></cfg>"));
    EXPECT_TRUE(log.empty());

    serve(doc, envelope("bremmel", "<cfg><sonicbaud>9600</sonicbaud></cfg>"));
    EXPECT_EQ(log, (std::vector<std::string>{"first", "second"}));
    EXPECT_EQ(first.source, &doc);

    doc.RemoveListener("first");
    serve(doc, envelope("bremmel", "<cfg><head>sonic-1</head></cfg>"));
    EXPECT_EQ(log, (std::vector<std::string>{"first", "second", "second"}));
}

// --- Ostrel ---

TEST(Ostrel, FlowIsAFraction)
{
    struct Row {
        const char* sent;
        float stored;
    } rows[] = {{"1", 1}, {"1.5", 1}, {"0.25", 0.25f}, {"-0.5", 0}, {"0", 0}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.sent);
        DocOstrel doc;
        EXPECT_EQ(reply(doc, envelope("ost", std::string("<flow>") + row.sent + "</flow>")), "");
        EXPECT_EQ(doc.Conf().Flow().get(), row.stored);
    }
}

TEST(Ostrel, MessagesThatChangeNothing)
{
    const char* messages[] = {
        "<arvex><ost><cmd><reboot>true</reboot></cmd></ost></arvex>",
        "<arvex><ost><ack>false</ack><error>x</error><name>n</name><serialnumber>s</serialnumber></ost></arvex>",
        "<arvex><ostrel><flow>1</flow></ostrel></arvex>",
    };
    for (const char* message : messages) {
        SCOPED_TRACE(message);
        std::vector<std::string> log;
        Recorder recorder("r", log);
        DocOstrel doc;
        doc.AddListener("r", &recorder);
        doc._set_changed(false);
        EXPECT_EQ(serve(doc, message), "");
        EXPECT_FALSE(doc.has_changed());
        EXPECT_FALSE(doc.Conf().Cmd().Reboot().get());
        EXPECT_TRUE(log.empty());
    }
}

TEST(Ostrel, ServingResetsTheUnaddedCommand)
{
    DocOstrel doc;
    doc.Conf().Cmd().Reboot().set(true);
    serve(doc, envelope("ost", "<flow>0.5</flow>"));
    EXPECT_FALSE(doc.Conf().Cmd().Reboot().get());
    EXPECT_EQ(doc.Conf().Flow().get(), 0.5f);
}

}  // namespace
