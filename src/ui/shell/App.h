#pragma once

#include <QStringList>

class QGuiApplication;
class QQmlEngine;

namespace sweepwright::ui {

class AppIconStore;

/// Gives an engine what the views need: the symbols, the apps' icons and the modules' place.
/// `icons` must outlive the engine.
void prepareEngine(QQmlEngine& engine, const AppIconStore& icons);

/// Runs the app with the words after the program's name; the process's exit status.
int runApp(QGuiApplication& application, const QStringList& words);

}  // namespace sweepwright::ui
