// Settings, other instances, processes, the beep.
#include "platform/qt/qtsystem.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QVariant>
#include <cstdio>
#include <memory>

#include "platform/loop.h"
#include "platform/qt/qtbase.h"
#include "platform/qt/qteditor.h"
#include "platform/qt/qtloop.h"
#include "platform/system.h"

namespace {

constexpr const char* Organisation = "Halvane2";
constexpr const char* Application = "Halvane2";

QString KeyOf(const std::string& section, const std::string& key) {
  return ToQt(section) + u'/' + ToQt(key);
}

// One lock for each user and place of settings. It goes with the process, however that ends.
QString InstanceLock() {
  QString settings = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
  if (folder.isEmpty() || !QFileInfo(folder).isWritable()) {
    folder = settings + "/" + Organisation;
    QDir().mkpath(folder);
  }
  QByteArray mark = QCryptographicHash::hash(settings.toUtf8(), QCryptographicHash::Md5).toHex();
  return folder + "/halvane2-" + QString::fromLatin1(mark.left(12)) + ".lock";
}

// A value with a comma, written by hand, is read as a list; it is one text all the same.
std::string TextOf(const QVariant& value) {
  const bool isList = value.typeId() == QMetaType::QStringList;
  return FromQt(isList ? value.toStringList().join(u',') : value.toString());
}

}  // namespace

QSettings& SettingsStore() {
  static QSettings* settings = Make<QSettings>(Organisation, Application);
  return *settings;
}

std::string GetSetting(const std::string& section, const std::string& key,
                       const std::string& otherwise) {
  return TextOf(SettingsStore().value(KeyOf(section, key), ToQt(otherwise)));
}

void SaveSetting(const std::string& section, const std::string& key, const std::string& value) {
  SettingsStore().setValue(KeyOf(section, key), ToQt(value));
}

std::map<std::string, std::string> GetAllSettings(const std::string& section) {
  std::map<std::string, std::string> all;
  QSettings& settings = SettingsStore();
  settings.beginGroup(ToQt(section));
  for (const QString& key : settings.childKeys()) all[FromQt(key)] = TextOf(settings.value(key));
  settings.endGroup();
  return all;
}

bool AnotherInstanceRuns() {
  static QLockFile* lock = nullptr;
  if (lock && lock->isLocked()) return false;
  if (!lock) {
    lock = Make<QLockFile>(InstanceLock());
    lock->setStaleLockTime(0);  // only a process that no longer runs makes it stale
  }
  if (lock->tryLock(0)) return false;
  // Where no lock can be written nobody can be told apart; the program then runs.
  if (lock->error() != QLockFile::LockFailedError) return false;
  // The end has no window; who has started it from a terminal is told.
  std::fputs("halvane2: Halvane2 runs already for this user; this one ends.\n", stderr);
  return true;
}

// ---- processes ----------------------------------------------------------------------------------

bool StartCommand(const QString& program, const QStringList& arguments,
                  std::function<void(int)> ended, std::string& why) {
  auto* process = Make<QProcess>(QueueObject());
  process->setStandardInputFile(QProcess::nullDevice());
  process->setStandardOutputFile(QProcess::nullDevice());
  process->setStandardErrorFile(QProcess::nullDevice());
  QObject::connect(process, &QProcess::finished, process,
                   [process, ended](int exitCode, QProcess::ExitStatus status) {
                     int code = status == QProcess::NormalExit ? exitCode : -1;
                     RunFromQueue([ended, code] {
                       if (ended) ended(code);
                     });
                     process->deleteLater();
                   });
  process->start(program, arguments);
  if (process->waitForStarted()) return true;
  why = FromQt(process->errorString());
  delete process;
  return false;
}

bool StartProcess(const std::string& program, const std::string& argument,
                  std::function<void(int)> ended) {
  std::string why;
  QStringList arguments;
  if (!argument.empty()) arguments << ToQt(argument);
  return StartCommand(ToQt(program), arguments, std::move(ended), why);
}

bool StartTextEditor(const std::string& path, std::function<void()> ended, std::string& why) {
  QString file = QFileInfo(ToQt(path)).absoluteFilePath();
  if (!QFileInfo::exists(file)) {
    why = "There is no file " + FromQt(file) + ".";
    return false;
  }
  std::optional<EditorCommand> editor = FindTextEditor(file);
  if (!editor) {
    why =
        "No text editor was found. Install one (for instance mousepad or gedit), or name one in "
        "the environment variable VISUAL.";
    return false;
  }
  std::string reason;
  if (StartCommand(
          editor->program, editor->arguments,
          [ended](int) {
            if (ended) ended();
          },
          reason))
    return true;
  why = FromQt(editor->program) + " cannot be started: " + reason;
  return false;
}

void Beep() { QApplication::beep(); }
