#include "watch/rawdatadialog.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>

#include <fstream>
#include <sstream>

#include "libskarn/dochalden.h"
#include "tests/watch/raw_test_util.h"
#include "tests/watch/watch_test_util.h"

namespace {

// DATAFLRAW lines of `bytes` and the end mark.
std::vector<std::string> raw_lines(const std::string& bytes)
{
    std::vector<std::string> lines;
    for (const std::string& payload : raw_payloads(bytes, 300))
        lines.push_back("DATAFLRAW\t" + payload + "\n");
    lines.push_back("DATAFLRAW\t\n");
    return lines;
}

struct RawDataDialogTest : testing::Test {
    RawDataDialogTest()
    {
        QObject::connect(&dialog, &RawDataDialog::SendXMLChanges, [this] { sent.push_back("changes"); });
        QObject::connect(&dialog, &RawDataDialog::SendRawXML, [this](std::string text) { sent.push_back(text); });
        file->setText(dir.filePath("raw.dat"));
    }
    QString Status() const
    {
        for (QLabel* label : dialog.findChildren<QLabel*>())
            if (label->text().startsWith("Status: "))
                return label->text();
        return "";
    }
    void Feed(const std::vector<std::string>& lines)
    {
        for (const std::string& line : lines)
            connector->HandleData(line);
    }
    std::string File() const
    {
        std::ostringstream all;
        all << std::ifstream(file->text().toStdString(), std::ios::binary).rdbuf();
        return all.str();
    }

    QTemporaryDir dir;
    std::shared_ptr<Connector> connector = Connector::Factory(nullptr, "fluor", "halden");
    ConfigCfgRawDataCapture& section = connector->Doc_Halden().Conf().Cfg().Rawdatacapture();
    RawDataDialog dialog{nullptr, "fluor", &section};
    std::vector<std::string> sent;
    QLineEdit* size = dialog.findChildren<QLineEdit*>()[0];
    QLineEdit* file = dialog.findChildren<QLineEdit*>()[1];
    QPushButton* capture = find_button(dialog, "Capture");
};

TEST_F(RawDataDialogTest, StartsNothingWithoutASizeOrAFile)
{
    EXPECT_EQ(dialog.windowTitle(), "Raw Data Capture: fluor");
    EXPECT_EQ(Status(), "Status: Idle");
    EXPECT_FALSE(find_button(dialog, "Close")->autoDefault());  // Return in a field must not close it
    for (const auto& [bytes, name] : {std::pair{"0", "raw.dat"}, std::pair{"", "raw.dat"}, std::pair{"12", ""}}) {
        size->setText(bytes);
        file->setText(name);
        capture->click();
        EXPECT_TRUE(sent.empty() && capture->isEnabled()) << bytes << " " << name;
    }
}

TEST_F(RawDataDialogTest, CapturesToTheFileSettingsFirstAndOverwritesItNextTime)
{
    std::string bytes;
    for (int i = 0; i < 50000; ++i)
        bytes += char(i * 7 % 251);
    Feed(raw_lines("not in a capture"));
    EXPECT_FALSE(QFile::exists(file->text()));

    size->setText("50000");
    dialog.findChild<QComboBox*>()->setCurrentIndex(2);
    capture->click();
    capture->click();  // one capture at a time
    EXPECT_EQ(sent, (std::vector<std::string>{"changes", "<arvex><halden><output><datarawcapture>true</datarawcapture>"
                                                         "</output><cmd><rawcapture>true</rawcapture></cmd></halden></arvex>\n"}));
    EXPECT_EQ(section.Size().get(), 50000);
    EXPECT_EQ(section.When().get_string(), "flash");
    EXPECT_EQ(Status(), "Status: Recording raw data...");

    std::vector<std::string> lines = raw_lines(bytes);
    Feed({lines.begin(), lines.end() - 1});
    EXPECT_EQ(Status(), "Status: Transfering raw data...");
    EXPECT_EQ(dialog.findChild<QProgressBar*>()->value(), 50000);
    EXPECT_FALSE(capture->isEnabled());
    Feed({lines.back()});
    EXPECT_EQ(Status(), "Status: Idle");
    EXPECT_TRUE(capture->isEnabled() && File() == bytes);
    Feed(raw_lines("after the end"));
    EXPECT_TRUE(File() == bytes);

    size->setText("5");
    capture->click();
    Feed(raw_lines("short"));
    EXPECT_EQ(File(), "short");

    // Data that does not inflate ends the capture, and says so.
    capture->click();
    Feed({"DATAFLRAW\tAAAAAAAA\n"});
    EXPECT_TRUE(Status().startsWith("Status: Capture failed: inflate() failed")) << Status().toStdString();
    EXPECT_TRUE(capture->isEnabled());
}

}  // namespace
