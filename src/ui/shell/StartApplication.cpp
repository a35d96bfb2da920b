#include "ui/shell/StartApplication.h"

#include <QtGlobal>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace sweepwright::ui {

namespace {

struct Message {
    QtMsgType type;
    QByteArray category;
    QString text;
};

/// What Qt has said since the start began.
std::vector<Message>& heldMessages() {
    static std::vector<Message> messages;
    return messages;
}

[[noreturn]] void endWithoutDisplay() {
    QString reason = QStringLiteral("no platform for windows");
    const auto told = std::ranges::find_if(heldMessages(), [](const Message& message) {
        return message.category.startsWith("qt.qpa");
    });
    if (told != heldMessages().end()) reason = told->text.simplified();
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        reason += QStringLiteral(" (neither DISPLAY nor WAYLAND_DISPLAY is set)");
    const QString line =
        QStringLiteral("sweepwright: can't open a window: %1; sweepctl needs none\n");
    std::fputs(qUtf8Printable(line.arg(reason)), stderr);
    std::fflush(stderr);
    std::_Exit(EXIT_FAILURE);
}

void hold(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (type == QtFatalMsg) endWithoutDisplay();
    heldMessages().push_back({type, context.category, text});
}

}  // namespace

std::unique_ptr<QGuiApplication> startApplication(int& argc, char** argv) {
    const QtMessageHandler tell = qInstallMessageHandler(hold);
    auto application = std::make_unique<QGuiApplication>(argc, argv);
    qInstallMessageHandler(tell);
    for (const Message& message : heldMessages())
        tell(message.type, {nullptr, 0, nullptr, message.category.constData()}, message.text);
    heldMessages().clear();
    return application;
}

}  // namespace sweepwright::ui
