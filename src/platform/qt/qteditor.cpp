// Which text editor there is, and how it is started so that its process stays until it is closed.
#include "platform/qt/qteditor.h"

#include <QProcess>
#include <QStandardPaths>

namespace {

// Editors with a window, and what makes them wait instead of handing the file to a running one.
struct EditorRow {
  const char* program;
  const char* waits;  // "" when they do so by themselves
};
constexpr EditorRow WindowEditors[] = {
    {"gnome-text-editor", "--standalone"},
    {"gedit", "--standalone"},
    {"kate", "--block"},
    {"kwrite", ""},
    {"mousepad", "--disable-server"},
    {"xed", "--standalone"},
    {"pluma", ""},
    {"featherpad", "--standalone"},
    {"leafpad", ""},
    {"l3afpad", ""},
    {"geany", "--new-instance"},
    {"gvim", "--nofork"},
    {"emacs", ""},
    {"xedit", ""},
};
constexpr EditorRow Terminals[] = {
    {"xterm", "-e"}, {"konsole", "-e"}, {"xfce4-terminal", "-x"}, {"x-terminal-emulator", "-e"}};
constexpr const char* TerminalEditors[] = {"nano", "vim", "vi", "less"};

bool Installed(const QString& program) {
  return !QStandardPaths::findExecutable(program).isEmpty();
}

QStringList WithFile(const char* option, const QString& file) {
  return *option ? QStringList{option, file} : QStringList{file};
}

// A command with arguments in an environment variable.
std::optional<EditorCommand> FromVariable(const char* variable, const QString& file) {
  QStringList parts = QProcess::splitCommand(qEnvironmentVariable(variable));
  if (parts.isEmpty() || !Installed(parts.front())) return std::nullopt;
  QString program = parts.takeFirst();
  for (const EditorRow& row : WindowEditors)
    if (parts.isEmpty() && program == row.program)
      return EditorCommand{program, WithFile(row.waits, file)};
  return EditorCommand{program, parts << file};
}

std::optional<EditorCommand> InTerminal(const QString& file) {
  std::optional<EditorCommand> editor = FromVariable("EDITOR", file);
  for (const char* program : TerminalEditors)
    if (!editor && Installed(program)) editor = EditorCommand{program, {file}};
  if (!editor) return std::nullopt;
  for (const EditorRow& terminal : Terminals)
    if (Installed(terminal.program))
      return EditorCommand{terminal.program,
                           QStringList{terminal.waits, editor->program} + editor->arguments};
  return std::nullopt;
}

}  // namespace

std::optional<EditorCommand> FindTextEditor(const QString& file) {
#ifdef Q_OS_WIN
  return EditorCommand{"notepad.exe", {file}};
#else
  if (auto named = FromVariable("VISUAL", file)) return named;
  for (const EditorRow& row : WindowEditors)
    if (Installed(row.program)) return EditorCommand{row.program, WithFile(row.waits, file)};
  return InTerminal(file);
#endif
}
