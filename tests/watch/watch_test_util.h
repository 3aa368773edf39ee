#pragma once
// Helpers of the watch tests.

#include <fstream>
#include <sstream>

#include "tests/link/link_test_util.h"
#include "tests/service/wire.h"

/// The running test's name: a host of its own in the connector registry.
inline std::string test_host() { return ::testing::UnitTest::GetInstance()->current_test_info()->name(); }

/// The one visible window of `window` titled `title`.
inline QDialog* shown_dialog(const QWidget& window, const QString& title)
{
    QDialog* found = nullptr;
    for (QDialog* dialog : window.findChildren<QDialog*>())
        if (dialog->windowTitle() == title) {
            EXPECT_EQ(found, nullptr) << "two windows " << title.toStdString();
            found = dialog;
        }
    EXPECT_TRUE(found && found->isVisible()) << title.toStdString();
    return found;
}

inline std::string read_file(const std::string& path)
{
    std::ostringstream all;
    all << std::ifstream(path, std::ios::binary).rdbuf();
    return all.str();
}
