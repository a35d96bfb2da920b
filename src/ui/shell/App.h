#pragma once

#include <QStringList>

class QGuiApplication;
class QQmlEngine;

namespace sweepwright::ui {

/// Gives an engine what the views of the kit need: the symbols and the modules' place.
void prepareEngine(QQmlEngine& engine);

/// Runs the app with the words after the program's name; the process's exit status.
int runApp(QGuiApplication& application, const QStringList& words);

}  // namespace sweepwright::ui
