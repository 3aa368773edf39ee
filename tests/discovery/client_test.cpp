// The client against the test double: every answer comes through a pipe, the client's socket
// notifier and the event loop, as it does from a daemon.

#include <gtest/gtest.h>

#include <QTest>

#include <arpa/inet.h>

#include <functional>
#include <set>

#include "discovery/bonjourclient.h"
#include "discovery_test_util.h"
#include "tests/discovery/dnssd_double.h"

namespace {

constexpr int kTimeoutMs = 5000;
const char* const kType = "_arvex-tolvan._tcp";

FakeService Tolvan(const std::string& name = "ch4-sim-1", const std::string& host = "tolvan-1.local.")
{
    return {name, kType, "local.", 2, host, 4410, std::string("\x0cmodel=Tolvan\x07ver=1.2\x0d" "company=Arvex")};
}

// A call's fields as "flags|interface|name|type|domain|rrtype|rrclass".
std::string Shown(const DnsSdCall& c)
{
    return std::to_string(c.flags) + "|" + std::to_string(c.interface_index) + "|" + c.name + "|" + c.type + "|" +
           c.domain + "|" + std::to_string(c.rrtype) + "|" + std::to_string(c.rrclass);
}

class Client : public ::testing::Test {
protected:
    void SetUp() override
    {
        DnsSdDouble::Reset();
        client = std::make_unique<BonjourClient>(&listener);
    }
    void TearDown() override
    {
        client.reset();
        EXPECT_TRUE(DnsSdDouble::LiveRefs().empty()) << "the client left requests behind";
    }

    /// Runs the event loop until every queued answer has been taken.
    static void Settle() { EXPECT_TRUE(QTest::qWaitFor([] { return DnsSdDouble::PendingAnswers() == 0; }, kTimeoutMs)); }

    /// What a client of its own hears of `service` with `record`, found by browsing.
    static RecordingListener Heard(const FakeService& service, const FakeRecord& record)
    {
        DnsSdDouble::Reset();
        RecordingListener heard;
        BonjourClient scoped(&heard);
        DnsSdDouble::Announce(service);
        DnsSdDouble::AddRecord(record);
        scoped.Browse(service.type);
        Settle();
        return heard;
    }

    /// Announces `service` with `records` and browses for its type.
    void Find(const FakeService& service, const std::vector<FakeRecord>& records)
    {
        DnsSdDouble::Announce(service);
        for (const FakeRecord& record : records)
            DnsSdDouble::AddRecord(record);
        client->Browse(service.type);
        Settle();
    }

    RecordingListener listener;
    std::unique_ptr<BonjourClient> client;
};

TEST_F(Client, BrowseResolvesAndReportsOncePerAddress)
{
    DnsSdDouble::Announce(Tolvan());
    for (const char* address : {"10.1.2.3", "fe80::1", "2001:db8::7"})
        DnsSdDouble::AddRecord(FakeRecord::Address("tolvan-1.local.", 2, address));
    client->Browse(kType);
    // Answers come from the event loop only.
    EXPECT_TRUE(listener.added.empty());
    EXPECT_TRUE(DnsSdDouble::Calls("Resolve").empty());
    Settle();

    ASSERT_EQ(listener.added.size(), 3u);
    std::set<SocketAddress> addresses;
    const std::map<std::string, std::string> txt{{"model", "Tolvan"}, {"ver", "1.2"}, {"company", "Arvex"}};
    for (const FoundAddress& found : listener.added) {
        EXPECT_EQ(found.name + "|" + found.type + "|" + found.domain + "|" + found.host,
                  "ch4-sim-1|_arvex-tolvan._tcp|local.|tolvan-1.local.");
        EXPECT_EQ(found.interface_index, 2u);
        EXPECT_EQ(found.txt, txt);
        addresses.insert(found.address);
    }
    EXPECT_EQ(addresses, (std::set<SocketAddress>{Address("10.1.2.3", 4410), Address("fe80::1", 4410, 2),
                                                  Address("2001:db8::7", 4410)}));
    EXPECT_TRUE(listener.errors.empty());

    // Browse on all interfaces in the default domains, then resolve and query on the service's one.
    std::vector<std::string> calls;
    for (const DnsSdCall& call : DnsSdDouble::Calls())
        calls.push_back(call.function + ":" + Shown(call));
    EXPECT_EQ(calls, (std::vector<std::string>{"Browse:0|0||_arvex-tolvan._tcp|(null)|0|0",
                                               "Resolve:0|2|ch4-sim-1|_arvex-tolvan._tcp|local.|0|0",
                                               "QueryRecord:0|2|tolvan-1.local.|||1|1",
                                               "QueryRecord:0|2|tolvan-1.local.|||28|1"}));

    // Resolve and queries end with their first batch of answers; only the browse goes on.
    EXPECT_EQ(DnsSdDouble::LiveRefs().size(), 1u);
    EXPECT_EQ(DnsSdDouble::LiveRefs(), DnsSdDouble::LiveRefs("Browse"));
}

// Which address answers are reported, with which scope, and how the TXT record reads.
TEST_F(Client, AddressAnswersAndTxtEntries)
{
    using Map = std::map<std::string, std::string>;
    auto record = [](unsigned interface_index, const char* address) {
        return FakeRecord::Address("tolvan-1.local.", interface_index, address);
    };
    auto short_record = [](std::uint16_t rrtype, std::size_t size) {
        return FakeRecord{"tolvan-1.local.", 2, rrtype, std::string(size, '\x01')};
    };
    struct Row {
        const char* what;
        FakeRecord record;
        bool reported;
        unsigned scope;
        std::string txt = Tolvan().txt;
        Map entries = {{"model", "Tolvan"}, {"ver", "1.2"}, {"company", "Arvex"}};
    };
    const Row rows[] = {
        {"A", record(2, "10.0.0.1"), true, 0},
        {"A without interface", record(0, "10.0.0.1"), true, 0},
        {"A link-local", record(2, "169.254.3.4"), true, 0},
        {"AAAA link-local", record(2, "fe80::1"), true, 2},
        {"AAAA link-local, scope from the answer", record(5, "fe80::1"), true, 5},
        {"AAAA global", record(2, "2001:db8::1"), true, 0},
        {"AAAA fe81 is not link-local", record(2, "fe81::1"), true, 0},
        {"AAAA link-local without interface", record(0, "fe80::1"), false, 0},
        {"AAAA global without interface", record(0, "2001:db8::1"), false, 0},
        {"A of 3 bytes", short_record(1, 3), false, 0},
        {"AAAA of 15 bytes", short_record(28, 15), false, 0},
        {"empty TXT", record(2, "10.0.0.1"), true, 0, "", {}},
        {"value with =", record(2, "10.0.0.1"), true, 0, "\x05" "a=b=c", {{"a", "b=c"}}},
        {"key without =", record(2, "10.0.0.1"), true, 0, "\x04" "flag\x03k=v", {{"k", "v"}}},
        {"empty key, empty value", record(2, "10.0.0.1"), true, 0, "\x02k=\x02=v", {{"k", ""}, {"", "v"}}},
        {"empty entry", record(2, "10.0.0.1"), true, 0, std::string("\x00\x03k=v", 5), {{"k", "v"}}},
        {"last of a key wins", record(2, "10.0.0.1"), true, 0, "\x03k=1\x03k=2", {{"k", "2"}}},
        {"keys keep their case", record(2, "10.0.0.1"), true, 0, "\x03K=1\x03k=2", {{"K", "1"}, {"k", "2"}}},
        {"entry beyond the end", record(2, "10.0.0.1"), true, 0, "\x03k=v\x09x=y", {{"k", "v"}}},
        {"entry a byte beyond the end", record(2, "10.0.0.1"), true, 0, "\x03k=v\x04x=y", {{"k", "v"}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        FakeService service = Tolvan();
        service.txt = row.txt;
        const RecordingListener heard = Heard(service, row.record);
        EXPECT_TRUE(heard.errors.empty());
        ASSERT_EQ(heard.added.size(), row.reported ? 1u : 0u);
        if (row.reported) {
            EXPECT_EQ(heard.added[0].interface_index, row.record.interface_index);
            EXPECT_EQ(heard.added[0].address.Scope(), row.scope);
            EXPECT_EQ(heard.added[0].address.Port(), 4410);
            EXPECT_EQ(heard.added[0].txt, row.entries);
        }
    }
}

// Failures of the calls made by the program may throw, if the listener asks for it; failures
// that come from the event loop never do; without a listener nothing does.
TEST_F(Client, WhatMayThrow)
{
    const auto browse = [](BonjourClient& c) { c.Browse("_x._tcp"); };
    const std::string bare = "Unable to browse for service: _x._tcp";
    const struct {
        const char* function;  // that fails
        DNSServiceErrorType code;
        std::function<void(BonjourClient&)> call;
        std::string message;
    } synchronous[] = {
        // The ends of the range of words and both sides of its gap; without a word the message stays bare.
        {"Browse", -65537, browse, bare + ": Unknown Error"},
        {"Browse", -65545, browse, bare + ": Not Initialized"},
        {"Browse", -65546, browse, bare},
        {"Browse", -65547, browse, bare + ": Already Registered"},
        {"Browse", -65559, browse, bare + ": Bad Time"},
        {"Browse", -65560, browse, bare},
        {"Browse", -1, browse, bare},
        {"Browse", 1, browse, bare},
        {"Register", kDNSServiceErr_BadParam, [](BonjourClient& c) { c.Register("me", "_x._tcp", "", 1, {}); },
         "Unable to register service: me: Bad Parameter"},
        {"ReconfirmRecord", kDNSServiceErr_Refused,
         [](BonjourClient& c) { c.Confirm("h.local.", SocketAddress("10.0.0.1")); },
         "Unable to confirm: h.local.: Refused"},
    };
    for (const auto& row : synchronous) {
        SCOPED_TRACE(row.message);
        for (bool ask : {false, true}) {
            listener.errors.clear();
            listener.throw_on_error = ask;
            DnsSdDouble::FailNext(row.function, row.code);
            if (ask) {
                try {
                    row.call(*client);
                    ADD_FAILURE() << "no exception";
                } catch (const BonjourClient::Error& e) {
                    EXPECT_EQ(e.what(), row.message);
                }
            } else {
                EXPECT_NO_THROW(row.call(*client));
            }
            EXPECT_EQ(listener.errors, std::vector<std::string>{row.message});
        }
    }
    EXPECT_TRUE(DnsSdDouble::LiveRefs().empty());

    // From the event loop: the listener asks for exceptions, gets none, and hears every failure
    // but that of a resolve that cannot start, which is dropped in silence.
    listener.errors.clear();
    listener.throw_on_error = true;
    DnsSdDouble::FailNext("Resolve", kDNSServiceErr_Unknown);
    Find(Tolvan("unstartable", "unstartable.local."), {FakeRecord::Address("unstartable.local.", 2, "10.0.0.1")});
    FakeService unresolvable = Tolvan("no-such");
    unresolvable.resolve_error = kDNSServiceErr_NoSuchName;
    FakeService refused = Tolvan("refused", "refused.local.");
    DnsSdDouble::AddRecord({"refused.local.", 2, 1, "", kDNSServiceErr_Refused});
    FakeService unqueryable = Tolvan("unqueryable", "unqueryable.local.");
    DnsSdDouble::Announce(unresolvable);
    Settle();
    DnsSdDouble::Announce(refused);
    Settle();
    DnsSdDouble::FailNext("QueryRecord", kDNSServiceErr_BadParam);
    DnsSdDouble::Announce(unqueryable);
    Settle();
    DnsSdDouble::BrowseError(kType, kDNSServiceErr_BadState);
    Settle();
    DnsSdDouble::FailNext("RegisterReply", kDNSServiceErr_NameConflict);
    client->Register("taken", kType, "", 4410, {});
    Settle();
    DnsSdDouble::FailProcessing(DnsSdDouble::LiveRefs("Browse").at(0), kDNSServiceErr_Unknown);
    Settle();
    EXPECT_EQ(listener.errors, (std::vector<std::string>{
                                   "Error resolving: No Such Name",
                                   "Error querying: Refused",
                                   "Error resolving: Bad Parameter",
                                   "Error browsing: Bad State",
                                   "Error registering: Name Conflict",
                                   "Unable to process result: Unknown Error",
                               }));
    EXPECT_TRUE(listener.added.empty());
    // Each failed request gave its slot back. Left are the AAAA queries of "refused" and
    // "unqueryable", which nothing answers.
    EXPECT_EQ(DnsSdDouble::LiveRefs().size(), 2u);
    EXPECT_EQ(DnsSdDouble::LiveRefs("QueryRecord").size(), 2u);

    // Without a listener the same failures and finds go unheard, and nothing throws.
    client = std::make_unique<BonjourClient>(nullptr);
    DnsSdDouble::FailNext("Browse", kDNSServiceErr_Unknown);
    EXPECT_NO_THROW(client->Browse("_y._tcp"));
    DnsSdDouble::Announce(Tolvan());
    DnsSdDouble::AddRecord(FakeRecord::Address("tolvan-1.local.", 2, "10.0.0.1"));
    client->Browse(kType);
    client->Register("me", "_x._tcp", "", 1, {});
    Settle();
    client->Clear();
    EXPECT_TRUE(DnsSdDouble::LiveRefs().empty());
}

TEST_F(Client, OutOfResources)
{
    for (int i = 0; i < 100; ++i)
        client->Browse("_t" + std::to_string(i) + "._tcp");
    EXPECT_TRUE(listener.errors.empty());
    ASSERT_EQ(DnsSdDouble::LiveRefs().size(), 100u);

    client->Browse("_t100._tcp");
    client->Register("me", "_x._tcp", "", 1, {});
    EXPECT_EQ(listener.errors, (std::vector<std::string>{"Unable to browse for service: _t100._tcp: Out of resources",
                                                         "Unable to register service: me: Out of resources"}));
    EXPECT_EQ(DnsSdDouble::Calls().size(), 100u) << "a request without a slot reaches the daemon";

    // A failure frees its slot, and the next request gets it.
    listener.errors.clear();
    DnsSdDouble::FailProcessing(DnsSdDouble::LiveRefs().at(7), kDNSServiceErr_Unknown);
    Settle();
    EXPECT_EQ(listener.errors, std::vector<std::string>{"Unable to process result: Unknown Error"});
    EXPECT_EQ(DnsSdDouble::LiveRefs().size(), 99u);
    listener.errors.clear();
    client->Browse("_t100._tcp");
    EXPECT_TRUE(listener.errors.empty());
    EXPECT_EQ(DnsSdDouble::LiveRefs().size(), 100u);

    listener.throw_on_error = true;
    EXPECT_THROW(client->Browse("_t101._tcp"), BonjourClient::Error);

    // The resolve and the two address queries behind a service need slots of their own.
    client.reset();
    struct Row {
        int browses_before;
        std::vector<std::string> errors;
        std::size_t added;  // A answers first, then AAAA
    };
    const Row rows[] = {
        {99, {"Error browsing: Out of resources"}, 0},  // no slot to resolve
        {98, {}, 0},                                   // resolved, no slot to query: skipped in silence
        {97, {}, 1},                                   // only the A query got a slot
        {96, {}, 2},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.browses_before);
        DnsSdDouble::Reset();
        RecordingListener heard;
        BonjourClient scoped(&heard);
        for (int i = 0; i < row.browses_before; ++i)
            scoped.Browse("_t" + std::to_string(i) + "._tcp");
        DnsSdDouble::AddRecord(FakeRecord::Address("tolvan-1.local.", 2, "10.0.0.1"));
        DnsSdDouble::AddRecord(FakeRecord::Address("tolvan-1.local.", 2, "2001:db8::1"));
        DnsSdDouble::Announce(Tolvan());
        scoped.Browse(kType);
        Settle();
        EXPECT_EQ(heard.errors, row.errors);
        EXPECT_EQ(heard.added.size(), row.added);
        // Every slot of the chain came back.
        EXPECT_EQ(DnsSdDouble::LiveRefs().size(), std::size_t(row.browses_before + 1));
    }
}

TEST_F(Client, ClearThenBrowseFindsEverythingAgain)
{
    DnsSdDouble::AddRecord(FakeRecord::Address("tolvan-1.local.", 2, "10.0.0.1"));
    DnsSdDouble::AddRecord(FakeRecord::Address("tolvan-2.local.", 2, "10.0.0.2"));
    DnsSdDouble::Announce(Tolvan("ch4-sim-2", "tolvan-2.local."));
    // Queries that nothing answers stay open until the clear: the AAAA queries of all three,
    // and the A query of the silent one.
    DnsSdDouble::Announce(Tolvan("silent", "silent.local."));
    Find(Tolvan(), {});
    ASSERT_EQ(listener.added.size(), 2u);
    EXPECT_EQ(DnsSdDouble::LiveRefs("QueryRecord").size(), 4u);

    client->Clear();
    EXPECT_TRUE(DnsSdDouble::LiveRefs().empty());
    client->Browse(kType);
    Settle();
    ASSERT_EQ(listener.added.size(), 4u);
    std::multiset<std::string> names;
    for (const FoundAddress& found : listener.added)
        names.insert(found.name);
    EXPECT_EQ(names, (std::multiset<std::string>{"ch4-sim-1", "ch4-sim-1", "ch4-sim-2", "ch4-sim-2"}));
    EXPECT_TRUE(listener.errors.empty());

    DnsSdDouble::Withdraw("ch4-sim-2");
    Settle();
    EXPECT_EQ(listener.removed, std::vector<std::string>{"ch4-sim-2|_arvex-tolvan._tcp|local."});
    EXPECT_EQ(DnsSdDouble::Calls("Resolve").size(), 6u) << "a removal resolves nothing";
}

TEST_F(Client, RegisterAndConfirm)
{
    client->Register("ch4-sim-1", kType, "", 4410, {{"ver", "1.2"}, {"model", "Tolvan"}, {"company", "Arvex"}});
    client->Register("long", "_x._tcp", "local.", 1, {{"k", std::string(300, 'v')}});
    const auto calls = DnsSdDouble::Calls("Register");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(Shown(calls[0]), "0|0|ch4-sim-1|_arvex-tolvan._tcp||0|0");
    EXPECT_EQ(calls[0].host, "(null)");
    EXPECT_EQ(calls[0].port, htons(4410));
    // Key order, each pair behind its length, which is cut to eight bits.
    EXPECT_EQ(calls[0].data, std::string("\x0d" "company=Arvex\x0cmodel=Tolvan\x07ver=1.2"));
    EXPECT_EQ(calls[1].domain, "local.");
    ASSERT_EQ(calls[1].data.size(), 1u + 302u);
    EXPECT_EQ(static_cast<unsigned char>(calls[1].data[0]), 302u & 0xff);

    EXPECT_TRUE(listener.registered.empty());
    Settle();
    EXPECT_EQ(listener.registered, (std::vector<std::string>{"ch4-sim-1|_arvex-tolvan._tcp|local.", "long|_x._tcp|local."}));
    // The registrations last as long as the client.
    EXPECT_EQ(DnsSdDouble::LiveRefs("Register").size(), 2u);

    client->Confirm("tolvan-1.local.", Address("10.1.2.3", 4410));
    client->Confirm("tolvan-1.local.", Address("fe80::1", 4410, 2));
    const auto confirms = DnsSdDouble::Calls("ReconfirmRecord");
    ASSERT_EQ(confirms.size(), 2u);
    EXPECT_EQ(Shown(confirms[0]), "0|0|tolvan-1.local.|||1|1");
    EXPECT_EQ(confirms[0].data, std::string("\x0a\x01\x02\x03"));
    EXPECT_EQ(Shown(confirms[1]), "0|0|tolvan-1.local.|||28|1");
    EXPECT_EQ(confirms[1].data, std::string("\xfe\x80", 2) + std::string(13, '\0') + "\x01");
    EXPECT_TRUE(listener.errors.empty());
}

}  // namespace
