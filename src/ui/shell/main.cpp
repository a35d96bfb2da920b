#include <QGuiApplication>

#include "ui/shell/App.h"

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("sweepwright"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Sweepwright"));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.sweepwright.app"));
    QGuiApplication::setApplicationVersion(QStringLiteral(SWEEPWRIGHT_VERSION));
    return sweepwright::ui::runApp(application, QGuiApplication::arguments().mid(1));
}
