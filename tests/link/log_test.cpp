// Logging: the stream's own lines, events and headers first, in both modes.

#include <gtest/gtest.h>

#include <QPushButton>
#include <QTemporaryDir>

#include <fstream>
#include <sstream>

#include "link/logdialog.h"
#include "link_test_util.h"

namespace {

std::string read_file(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

class LogTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        path = dir.filePath("log.txt").toStdString();
        connector = Connector::Factory(nullptr, ::testing::UnitTest::GetInstance()->current_test_info()->name(), "tolvan");
        connector->SetLogFileName(path);
    }

    QTemporaryDir dir;
    std::string path;
    std::shared_ptr<Connector> connector;
    const std::string data1 = with_sum("DATA\t1\t2\t3\t"), data2 = with_sum("DATA\t4\t5\t6\t"),
                      stat = with_sum("DATASTAT\t7\t8\t9\t");
};

TEST_F(LogTest, ContinuousWritesTheStreamAsItComes)
{
    connector->HandleData("DATAEVENT\tPOWER\ton\n");
    connector->HandleData("DATAH\tA\tB\tC\n");
    connector->HandleData("DATAU\tppm\n");
    connector->StartLoggingToFile();
    EXPECT_TRUE(connector->IsLogging());
    connector->HandleData(data1);
    connector->HandleData("DATA\t1\t2\t3\t000\n");  // bad sum
    connector->HandleData("DATASTATH\tX\tY\tZ\n");
    connector->HandleData(stat);
    connector->HandleData("DATACLOCK\t12:00\n");
    connector->HandleData("DATAFLRAW\txyz\n");
    connector->HandleData("DATAU\tppm\n");
    connector->HandleXML("<arvex><tolvan><name>n</name></tolvan></arvex>\n");
    connector->StopLoggingToFile();
    EXPECT_EQ(read_file(path), "DATAEVENT\tPOWER\ton\nDATAH\tA\tB\tC\n" + data1 + "DATASTATH\tX\tY\tZ\n" + stat +
                                   "DATACLOCK\t12:00\n");

    connector->StartLoggingToFile();  // the same name again empties the file
    connector->StopLoggingToFile();
    EXPECT_EQ(read_file(path), "DATAEVENT\tPOWER\ton\nDATAH\tA\tB\tC\nDATASTATH\tX\tY\tZ\n");
}

TEST_F(LogTest, OnButtonWritesTheLatestRecordsPerPress)
{
    connector->SetLogContinuous(false);
    connector->HandleData("DATAH\tA\tB\tC\n");
    connector->HandleData(data1);
    connector->HandleData(data2);
    connector->HandleData(stat);
    connector->LogDataNow();  // no file yet: nothing
    connector->StartLoggingToFile();
    connector->LogDataNow();
    connector->HandleData("DATASTATH\tX\tY\tZ\n");  // later headers are not written
    connector->LogDataNow();
    connector->StopLoggingToFile();
    EXPECT_EQ(read_file(path), "DATAH\tA\tB\tC\n" + data2 + stat + data2 + stat);
}

TEST_F(LogTest, DialogButtonFollowsTheFourStates)
{
    LogDialog dialog(nullptr, "host", connector);
    auto button_text = [&] {
        for (QPushButton* b : dialog.findChildren<QPushButton*>())
            if (b->text() == "Start" || b->text() == "Stop" || b->text() == "Log Now")
                return b->text();
        return QString();
    };
    EXPECT_EQ(button_text(), "Start");
    dialog.OnStartButton();
    EXPECT_EQ(button_text(), "Stop");
    EXPECT_TRUE(connector->IsLogging());
    dialog.OnLogRadio();
    EXPECT_EQ(button_text(), "Log Now");
    dialog.OnStartButton();  // open and on-button: logs now, stays open
    EXPECT_TRUE(connector->IsLogging());
    dialog.OnContinuousRadio();
    dialog.OnStartButton();
    EXPECT_FALSE(connector->IsLogging());
    dialog.OnStartButton();
    EXPECT_TRUE(connector->IsLogging());
    dialog.close();  // closing ends logging
    EXPECT_FALSE(connector->IsLogging());
}

TEST_F(LogTest, ALoggingConnectorIsNeverReplaced)
{
    connector->StartLoggingToFile();
    Connector* old = connector.get();
    const std::string name = connector->Host();
    connector.reset();
    connector = Connector::Factory(nullptr, name, "tolvan");
    EXPECT_EQ(connector.get(), old);
    connector->StopLoggingToFile();
}

}  // namespace
