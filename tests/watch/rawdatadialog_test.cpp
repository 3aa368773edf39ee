#include "watch/rawdatadialog.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTemporaryDir>

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/base64.h"
#include "foundation/zlib.h"
#include "libskarn/dochalden.h"

namespace {

std::string read_file(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
}

// DATAFLRAW lines of `bytes`, deflated, 300 compressed bytes a line, and the end mark.
std::vector<std::string> raw_lines(const std::string& bytes)
{
    std::string compressed;
    Deflate(bytes.begin(), bytes.end(), std::back_inserter(compressed));
    std::vector<std::string> lines;
    for (size_t at = 0; at < compressed.size(); at += 300) {
        std::string line = "DATAFLRAW\t";
        const auto from = compressed.begin() + long(at);
        Base64Encode(from, from + long(std::min<size_t>(300, compressed.size() - at)), std::back_inserter(line), true);
        lines.push_back(line + "\n");
    }
    lines.push_back("DATAFLRAW\t\n");
    return lines;
}

class RawDataDialogTest : public testing::Test {
protected:
    void SetUp() override
    {
        connector = Connector::Factory(nullptr, "fluor", "halden");
        section = &connector->Doc_Halden().Conf().Cfg().Rawdatacapture();
        dialog = std::make_unique<RawDataDialog>(nullptr, "fluor", section);
        QObject::connect(dialog.get(), &RawDataDialog::SendXMLChanges, [this] { sent.push_back("changes"); });
        QObject::connect(dialog.get(), &RawDataDialog::SendRawXML, [this](std::string text) { sent.push_back(text); });
        size = dialog->findChildren<QLineEdit*>()[0];
        file = dialog->findChildren<QLineEdit*>()[1];
        for (QPushButton* button : dialog->findChildren<QPushButton*>())
            if (button->text() == "Capture")
                capture = button;
        file->setText(dir.filePath("raw.dat"));
    }
    QString Status() const
    {
        for (QLabel* label : dialog->findChildren<QLabel*>())
            if (label->text().startsWith("Status: "))
                return label->text();
        return "";
    }
    void Feed(const std::vector<std::string>& lines)
    {
        for (const std::string& line : lines)
            connector->HandleData(line);
    }

    QTemporaryDir dir;
    std::shared_ptr<Connector> connector;
    ConfigCfgRawDataCapture* section;
    std::unique_ptr<RawDataDialog> dialog;
    std::vector<std::string> sent;
    QLineEdit *size, *file;
    QPushButton* capture = nullptr;
};

TEST_F(RawDataDialogTest, StartsNothingWithoutASizeOrAFile)
{
    EXPECT_EQ(dialog->windowTitle(), "Raw Data Capture: fluor");
    EXPECT_EQ(size->text(), "0");
    EXPECT_EQ(Status(), "Status: Idle");
    const struct {
        const char* size;
        const char* file;
    } cases[] = {{"0", "raw.dat"}, {"", "raw.dat"}, {"12", ""}};
    for (const auto& c : cases) {
        size->setText(c.size);
        file->setText(c.file);
        capture->click();
        EXPECT_TRUE(sent.empty()) << c.size << " " << c.file;
        EXPECT_TRUE(capture->isEnabled());
    }
    // Return in a line edit must not close the window.
    for (QPushButton* button : dialog->findChildren<QPushButton*>())
        if (button->text() == "Close") {
            EXPECT_FALSE(button->autoDefault() || button->isDefault());
        }
}

TEST_F(RawDataDialogTest, CapturesToTheFileSettingsFirstAndOverwritesItNextTime)
{
    std::string bytes;
    for (int i = 0; i < 50000; ++i)
        bytes += char(i * 7 % 251);
    const std::string path = file->text().toStdString();
    Feed(raw_lines("not in a capture"));  // nothing is captured
    EXPECT_FALSE(QFile::exists(file->text()));

    size->setText("50000");
    dialog->findChild<QComboBox*>()->setCurrentIndex(2);
    capture->click();
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[0], "changes");
    EXPECT_EQ(sent[1], "<arvex><halden><output><datarawcapture>true</datarawcapture></output><cmd><rawcapture>true"
                       "</rawcapture></cmd></halden></arvex>\n");
    EXPECT_EQ(section->Size().get(), 50000);
    EXPECT_EQ(section->When().get_string(), "flash");
    EXPECT_EQ(Status(), "Status: Recording raw data...");
    EXPECT_FALSE(capture->isEnabled());
    capture->click();  // one capture at a time
    EXPECT_EQ(sent.size(), 2u);

    std::vector<std::string> lines = raw_lines(bytes);
    const std::string end_mark = lines.back();
    lines.pop_back();
    Feed(lines);
    EXPECT_EQ(Status(), "Status: Transfering raw data...");
    EXPECT_EQ(dialog->findChild<QProgressBar*>()->value(), 50000);
    Feed({end_mark});
    EXPECT_EQ(Status(), "Status: Idle");
    EXPECT_TRUE(capture->isEnabled());
    EXPECT_TRUE(read_file(path) == bytes);

    Feed(raw_lines("after the end"));
    EXPECT_TRUE(read_file(path) == bytes);

    size->setText("5");
    capture->click();
    Feed(raw_lines("short"));
    EXPECT_EQ(read_file(path), "short");
}

TEST_F(RawDataDialogTest, DataThatDoesNotInflateEndsTheCaptureWithWhatCameBefore)
{
    size->setText("100");
    capture->click();
    Feed({"DATAFLRAW\tAAAAAAAA\n"});
    EXPECT_TRUE(Status().startsWith("Status: Capture failed: inflate() failed")) << Status().toStdString();
    EXPECT_TRUE(capture->isEnabled());
}

}  // namespace
