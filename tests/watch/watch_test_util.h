#pragma once
// Helpers of the watch tests: a connector fed by hand, one per test.

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QPushButton>

#include <memory>
#include <string>

#include "tests/link/link_test_util.h"

/// The running test's name: a host of its own in the connector registry.
inline std::string test_host()
{
    return ::testing::UnitTest::GetInstance()->current_test_info()->name();
}

/// The push button of `window` that reads `text`, or null.
inline QPushButton* find_button(const QWidget& window, const QString& text)
{
    for (QPushButton* button : window.findChildren<QPushButton*>())
        if (button->text() == text)
            return button;
    return nullptr;
}
