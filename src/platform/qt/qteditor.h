// Which text editor there is, and how it is started so that its process stays until it is closed.
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

struct EditorCommand {
  QString program;
  QStringList arguments;
};

// Nothing when none is installed.
std::optional<EditorCommand> FindTextEditor(const QString& file);
