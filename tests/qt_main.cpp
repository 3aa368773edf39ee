// Test main for the layers that use Qt: one application object, headless unless told otherwise.

#include <gtest/gtest.h>

#include <QApplication>
#include <QStandardPaths>

// In sanitizer builds: Qt's offscreen platform plugin keeps its screen and cursor objects until
// the process ends. The leak checker needs full stacks (Qt's libraries have no frame pointers) to
// tell them from ours.
extern "C" const char* __asan_default_options()
{
    return "fast_unwind_on_malloc=0";
}

extern "C" const char* __lsan_default_suppressions()
{
    return "leak:QGuiApplicationPrivate::createPlatformIntegration\n";
}

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);  // settings go to a test location, not the user's
    QApplication app(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
