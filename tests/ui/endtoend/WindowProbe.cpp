#include "ui/endtoend/WindowProbe.h"

#include <QGuiApplication>

namespace sweepwright::test {

namespace {

// Between two looks at a window.
constexpr int kMilliseconds = 30;

bool isWanted(const QQuickItem* item, const QString& wanted) {
    return item->objectName() == wanted || item->property("text").toString() == wanted;
}

// Of several the one nearest the root: a button rather than the label in it.
QQuickItem* find(const QString& wanted) {
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        auto* quick = qobject_cast<QQuickWindow*>(window);
        if (quick == nullptr || !quick->isExposed()) continue;
        QList<QQuickItem*> items{quick->contentItem()};
        while (!items.isEmpty()) {
            QQuickItem* each = items.takeFirst();
            if (!each->isVisible() || !each->isEnabled() || each->opacity() < 0.99) continue;
            if (isWanted(each, wanted)) return each;
            items += each->childItems();
        }
    }
    return nullptr;
}

QRectF frameOf(const QQuickItem* item) {
    const QRectF inWindow = item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
    const QWindow* window = item->window();
    const double ratio = window->devicePixelRatio();
    return {(inWindow.topLeft() + QPointF(window->position())) * ratio, inWindow.size() * ratio};
}

}  // namespace

WindowProbe::WindowProbe(const QString& socketName) {
    connect(&server_, &QLocalServer::newConnection, this, [this] {
        QLocalSocket* socket = server_.nextPendingConnection();
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { takeRequests(socket); });
        connect(socket, &QLocalSocket::disconnected, this, [this, socket] {
            std::erase_if(waiting_,
                          [socket](const Request& each) { return each.socket == socket; });
            socket->deleteLater();
        });
    });
    connect(&clock_, &QTimer::timeout, this, &WindowProbe::answerWhatCanBe);
    if (!server_.listen(socketName)) qFatal("the window probe can't listen");
}

void WindowProbe::takeRequests(QLocalSocket* socket) {
    while (socket->canReadLine()) {
        waiting_.push_back({socket, QString::fromUtf8(socket->readLine()).trimmed(), QRectF()});
    }
    if (!waiting_.empty()) clock_.start(kMilliseconds);
}

void WindowProbe::answerWhatCanBe() {
    std::erase_if(waiting_, [this](Request& each) { return answer(each); });
    if (waiting_.empty()) clock_.stop();
}

bool WindowProbe::answer(Request& request) {
    const QQuickItem* item = find(request.wanted);
    if (item == nullptr) return false;
    const QRectF frame = frameOf(item);
    const bool atRest = frame == request.last;
    request.last = frame;
    if (!atRest) return false;
    request.socket->write(QStringLiteral("%1 %2 %3 %4\n")
                              .arg(frame.x())
                              .arg(frame.y())
                              .arg(frame.width())
                              .arg(frame.height())
                              .toUtf8());
    return true;
}

QObject* WindowProbePlugin::create(const QString& key, const QString& parameters) {
    return key == QLatin1String("windowprobe") ? new WindowProbe(parameters) : nullptr;
}

}  // namespace sweepwright::test
