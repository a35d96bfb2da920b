#include <QGuiApplication>

#include <gtest/gtest.h>

/// Asked by the address sanitizer, which is there in some builds: what Qt and the fonts keep until
/// the end is no leak of ours, and can't be told from one.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}

// Views are tested with real events on a platform that needs no display; it draws in software.
int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // Each move of a finger arrives as itself; a slow machine would make one of several.
    qputenv("QML_NO_TOUCH_COMPRESSION", "1");
    QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
