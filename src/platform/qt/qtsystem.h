// Settings and processes as the other Qt files and the test user see them.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <string>

class QSettings;

QSettings& SettingsStore();
// Starts a program; `ended` runs from the queue. False with the reason when it cannot be started.
bool StartCommand(const QString& program, const QStringList& arguments,
                  std::function<void(int)> ended, std::string& why);
