#pragma once

#include <QStringList>
#include <optional>

class QGuiApplication;
class QQmlEngine;

namespace sweepwright::ui {

class AppIconStore;

/// Gives an engine what the views need: the symbols, the apps' icons and the modules' place.
/// `icons` must outlive the engine.
void prepareEngine(QQmlEngine& engine, const AppIconStore& icons);

/// Answers words that ask for the help or the version, which needs an application but no display:
/// the process's exit status. None for other words.
std::optional<int> answerQuestion(const QStringList& words);

/// Runs the app with the words after the program's name; the process's exit status.
int runApp(QGuiApplication& application, const QStringList& words);

}  // namespace sweepwright::ui
