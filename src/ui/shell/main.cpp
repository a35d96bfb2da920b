#include <QGuiApplication>

#include "ui/shell/App.h"
#include "ui/shell/StartApplication.h"

int main(int argc, char** argv) {
    using namespace sweepwright;
    QGuiApplication::setApplicationName(QStringLiteral("sweepwright"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Sweepwright"));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.sweepwright.app"));
    {
        const QCoreApplication withoutDisplay(argc, argv);
        if (const auto status = ui::answerQuestion(QCoreApplication::arguments().mid(1)))
            return *status;
    }
    const auto application = ui::startApplication(argc, argv);
    return ui::runApp(*application, QGuiApplication::arguments().mid(1));
}
