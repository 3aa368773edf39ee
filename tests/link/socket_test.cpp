// The link over a real socket: a QTcpServer on 127.0.0.1 stands in for the instrument, and
// everything is driven by the event loop.

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include "link_test_util.h"

namespace {

constexpr int TIMEOUT_MS = 5000;

// An instrument stand-in that accepts one client and collects the lines it sends.
class FakeInstrument {
public:
    FakeInstrument() { EXPECT_TRUE(server.listen(QHostAddress::LocalHost)); }
    int port() const { return server.serverPort(); }

    bool Accept()
    {
        // Waiting through the event loop, so that the connector's socket goes on working.
        if (!client && QTest::qWaitFor([&] { return server.hasPendingConnections(); }, TIMEOUT_MS))
            client = server.nextPendingConnection();
        return client != nullptr;
    }
    /// Waits until `count` lines have come in.
    bool WaitForLines(size_t count)
    {
        return QTest::qWaitFor([&] {
            while (client && client->canReadLine())
                lines.push_back(client->readLine().toStdString());
            return lines.size() >= count;
        }, TIMEOUT_MS);
    }
    void Send(const std::string& text) { client->write(text.data(), qint64(text.size())), client->flush(); }

    QTcpServer server;
    QTcpSocket* client = nullptr;
    std::vector<std::string> lines;
};

std::shared_ptr<Connector> connect_to(FakeInstrument& instrument, const std::string& type)
{
    auto connector = Connector::Factory(nullptr, ::testing::UnitTest::GetInstance()->current_test_info()->name(), type);
    QSignalSpy connected(connector.get(), &Connector::Connected);
    connector->Connect("127.0.0.1", 0, instrument.port());
    EXPECT_TRUE(instrument.Accept());
    EXPECT_TRUE(connected.count() > 0 || connected.wait(TIMEOUT_MS));
    EXPECT_EQ(connector->ConnectedTo(), "127.0.0.1:" + std::to_string(instrument.port()));
    return connector;
}

TEST(Socket, FramingAcrossReads)
{
    FakeInstrument instrument;
    auto connector = connect_to(instrument, "tolvan");
    std::string log;
    RecordingListener listener("L", log);
    connector->RegisterListener("DATA", &listener);
    const std::string data = with_sum("DATA\t1\t2\t3\t");
    instrument.Send("DATAH\tA\tB\tC\n" + data.substr(0, 5));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !connector->Header("DATAH").empty(); }, TIMEOUT_MS));
    EXPECT_EQ(log, "");
    instrument.Send(data.substr(5) + with_sum("DATA\t4\t5\t6\t") + "<arvex><tolvan><name>sp");
    ASSERT_TRUE(QTest::qWaitFor([&] { return log.size() > 40; }, TIMEOUT_MS));
    EXPECT_EQ(log, "L:Data:DATA L:Post:DATA L:Data:DATA L:Post:DATA ");
    EXPECT_EQ(connector->VarStrings("DATA")[0], "4");

    // An XML line split over two reads is applied once, whole.
    QSignalSpy changes(connector.get(), &Connector::GotXMLChanges);
    instrument.Send("lit</name></tolvan></arvex>\n");
    ASSERT_TRUE(changes.wait(TIMEOUT_MS));
    EXPECT_EQ(connector->Doc_Tolvan().Conf().Name().get(), "split");
    instrument.Send("<arvex><tolvan><name>split</name></tolvan></arvex>\n" + with_sum("DATA\t7\t8\t9\t"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return connector->VarStrings("DATA")[0] == "7"; }, TIMEOUT_MS));
    EXPECT_EQ(changes.count(), 1);  // the same value again changes nothing
    Connector::LookupAndUnRegisterListener(&listener);
}

// A Tolvan gets the three queries and its record selection; changes then go out at once, and within
// the period they are coalesced.
TEST(Socket, OpeningThenChangesGoOutAtOnceThenCoalesce)
{
    FakeInstrument instrument;
    auto connector = connect_to(instrument, "tolvan");
    ASSERT_TRUE(instrument.WaitForLines(4));
    EXPECT_EQ(instrument.lines, (std::vector<std::string>{"<arvex>&query_doctype;</arvex>\n",
                                                          "<arvex>&query_changes;</arvex>\n", "<arvex>&query;</arvex>\n",
                                                          TypeTolvan().OutputSelection()}));
    DocTolvan& doc = connector->Doc_Tolvan();
    doc._set_changed(false);
    QSignalSpy changes(connector.get(), &Connector::GotXMLChanges);

    doc.Conf().Name().set("first");
    connector->OnSendXMLChanges();
    ASSERT_TRUE(instrument.WaitForLines(5));
    EXPECT_EQ(instrument.lines[4], "<arvex><tolvan><name>first</name></tolvan></arvex>\n");
    EXPECT_EQ(changes.count(), 1);

    doc.Conf().Name().set("second");
    connector->OnSendXMLChanges();  // within the period: waits for the timer
    doc.Conf().Ipaddress().set("10.0.0.1");
    connector->OnSendXMLChanges();
    EXPECT_EQ(changes.count(), 1);
    ASSERT_TRUE(instrument.WaitForLines(6));
    EXPECT_EQ(instrument.lines[5],
              "<arvex><tolvan><name>second</name><ipaddress>10.0.0.1</ipaddress></tolvan></arvex>\n");
    EXPECT_EQ(changes.count(), 2);
    EXPECT_FALSE(doc.has_changed());

    // Nothing changed: nothing goes out, not even when the timer fires; raw text goes at once.
    connector->OnSendXMLChanges();
    connector->OnSendRawXML("<arvex><tolvan><cmd><poll>true</poll></cmd></tolvan></arvex>\n");
    ASSERT_TRUE(instrument.WaitForLines(7));
    EXPECT_EQ(instrument.lines[6], "<arvex><tolvan><cmd><poll>true</poll></cmd></tolvan></arvex>\n");
    doc.Conf().Name().set("third");
    connector->OnSendXMLChanges();
    ASSERT_TRUE(instrument.WaitForLines(8));
    EXPECT_EQ(instrument.lines[7], "<arvex><tolvan><name>third</name></tolvan></arvex>\n");
    EXPECT_EQ(changes.count(), 3);
}

TEST(Socket, QueueFallsThroughTheLastRefusalIsShownOnceAndDisconnectForgetsIt)
{
    std::vector<QString> boxes;
    Connector::SetMessageBox([&](QWidget*, const QString& title, const QString& text) { boxes.push_back(title + "|" + text); });
    // Ports that refuse: a server that listened once and was closed.
    std::vector<int> closed;
    for (int i = 0; i < 3; ++i) {
        QTcpServer server;
        ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
        closed.push_back(server.serverPort());
    }
    auto connector = Connector::Factory(nullptr, "queue-host", "tolvan");
    for (int port : closed)
        connector->Connect("127.0.0.1", 0, port);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !boxes.empty(); }, TIMEOUT_MS));
    ASSERT_EQ(boxes.size(), 1u);  // and it is the last target's: nothing is left to try
    EXPECT_EQ(boxes[0], "Connect To Instrument|The connection was refused by the peer. Make sure the instrument is "
                        "running, and check that the host name and port settings are correct.");
    EXPECT_EQ(connector->ConnectedTo(), "127.0.0.1:" + std::to_string(closed[2]));

    // A good target after two bad ones is reached without a box. Connecting then only queues, and
    // disconnecting forgets the queue.
    boxes.clear();
    FakeInstrument instrument;
    QSignalSpy connected(connector.get(), &Connector::Connected);
    connector->Connect("127.0.0.1", 0, closed[0]);
    connector->Connect("127.0.0.1", 0, instrument.port());
    EXPECT_TRUE(instrument.Accept());
    EXPECT_TRUE(connected.count() > 0 || connected.wait(TIMEOUT_MS));
    EXPECT_TRUE(boxes.empty());
    Connector::SetMessageBox([](QWidget*, const QString&, const QString&) {});
    connector->Connect("fe80::1", 4, 4410);
    EXPECT_EQ(connector->ConnectedTo(), "127.0.0.1:" + std::to_string(instrument.port()));
    connector->Disconnect();
    EXPECT_EQ(connector->ConnectedTo(), "");
    QSignalSpy disconnected(connector.get(), &Connector::Disconnected);
    EXPECT_TRUE(disconnected.count() > 0 || disconnected.wait(TIMEOUT_MS));
    EXPECT_EQ(connector->ConnectedTo(), "");  // a queued target would be dialled on this signal
}

}  // namespace
