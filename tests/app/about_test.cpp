#include "app/aboutdialog.h"
#include "app/mymainwindow.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QTimer>

#include <string>

namespace {

struct Row {
    std::string program, about;
};

TEST(AboutTextPath, ExtensionReplaced) {
    const Row rows[] = {
        {"/opt/arvex/sondar.exe", "/opt/arvex/sondar.license"},
        {"C:\\Arvex\\sondar.exe", "C:\\Arvex\\sondar.license"},
        {"sondar.tar.gz", "sondar.tar.license"},           // only the last extension goes
        {"/opt/arvex/sondar", "/opt/arvex/sondar.license"},
        {"sondar", "sondar.license"},
        {".sondar", ".sondar.license"},                    // a leading "." is not an extension
        {"./sondar", "./sondar.license"},
        {"", ".license"},
        {"/home/a.b/sondar", "/home/a.license"},           // the last "." counts wherever it stands
        {"sondar.", "sondar.license"},
    };
    for (const Row& r : rows)
        EXPECT_EQ(AboutTextPath(r.program), r.about) << r.program;
}

class About : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(_dir.isValid()); }

    std::string Write(const char* file_name, const QByteArray& content)
    {
        const QString path = _dir.filePath(file_name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path.toStdString();
    }

    QTemporaryDir _dir;
};

TEST_F(About, ShowsTheFileAsHtmlOrOneDefaultLine) {
    const std::string path = Write("sondar.license", "<h1>Terms</h1>\n<p>Use it &amp; enjoy \xc3\xa5.</p>\n");
    AboutDialog dialog(nullptr, path);
    EXPECT_EQ(dialog.windowTitle(), "About this application...");
    EXPECT_EQ(dialog.size(), QSize(640, 400));
    auto* text = dialog.findChild<QTextEdit*>();
    EXPECT_TRUE(text->isReadOnly());
    EXPECT_EQ(text->toPlainText().trimmed(), QString::fromUtf8("Terms\nUse it & enjoy \xc3\xa5."));

    AboutDialog missing(nullptr, _dir.filePath("absent.license").toStdString());
    const QString shown = missing.findChild<QTextEdit*>()->toPlainText();
    EXPECT_FALSE(shown.isEmpty());
    EXPECT_FALSE(shown.contains('\n'));
}

// The main window's About action finds the text beside the program it was started as.
TEST_F(About, MainWindowReadsTheFileBesideTheProgram) {
    Write("sondar.license", "<p>beside the program</p>");
    MyMainWindow window("Arvex Sondar", _dir.filePath("sondar.bin").toStdString());
    QString shown;
    bool found = false;
    QTimer::singleShot(0, &window, [&] {
        auto* dialog = window.findChild<AboutDialog*>();
        if (!dialog)
            return;
        found = true;
        shown = dialog->findChild<QTextEdit*>()->toPlainText();
        dialog->close();
    });
    window.OnAbout();
    EXPECT_TRUE(found);
    EXPECT_EQ(shown, "beside the program");
}

}  // namespace
