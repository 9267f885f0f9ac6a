#include "apps/desktop/safety/recovery.h"

#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QSysInfo>
#include <algorithm>

#include "apps/desktop/text.h"
#include "platform/files.h"

namespace desktop {
namespace {

const QString kSuffix = QStringLiteral(".autosave");

// Indexes carry host and process, so that each process finds its own and those of the dead.
QString ownMark() { return QStringLiteral("%1-%2").arg(QSysInfo::machineHostName()).arg(getpid()); }

QString indexFor(const QString& drawing) {
  const QByteArray key =
      QCryptographicHash::hash(drawing.toUtf8(), QCryptographicHash::Sha1).toHex().left(12);
  return QStringLiteral("%1/%2-%3.json").arg(recoveryFolder(), ownMark(), QString::fromLatin1(key));
}

QString copyFor(const QString& drawing) {
  if (!drawing.isEmpty() && QFileInfo(QFileInfo(drawing).absolutePath()).isWritable()) {
    return drawing + kSuffix;
  }
  const QString index = indexFor(drawing);
  return index.left(index.size() - 5) + QStringLiteral(".dxf");
}

platform::Result<void> write(const QString& path, std::string_view bytes) {
  return platform::writeFile(utf8(path), bytes);
}

// When a process began, by the system's count; empty for one that is no more, or has ended and
// nobody has taken note. A number alone may be another process's by now.
QString beginningOf(qint64 process) {
  QFile file(QStringLiteral("/proc/%1/stat").arg(process));
  if (!file.open(QIODevice::ReadOnly)) return {};
  // Behind the name, which may hold anything, in brackets: the state, and 19 fields on the time.
  const QByteArray line = file.readAll();
  const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
  if (fields.size() < 20 || fields[0] == "Z" || fields[0] == "X") return {};
  return QString::fromLatin1(fields[19]);
}

std::optional<QJsonObject> readIndex(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
  if (!document.isObject()) return std::nullopt;
  return document.object();
}

void removeIndexed(const QString& index, const QString& copy) {
  QFile::remove(index);
  QFile::remove(copy);
}

// A name beside the drawing that nothing has.
QString freeName(const QString& wanted) {
  for (int i = 1;; ++i) {
    const QString name = i == 1 ? wanted : QStringLiteral("%1-%2").arg(wanted).arg(i);
    if (!QFileInfo::exists(name)) return name;
  }
}

}  // namespace

QString recoveryFolder() {
  const QString own = qEnvironmentVariable("VESSORA_RECOVERY");
  const QString folder =
      own.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
                          QStringLiteral("/recovery")
                    : own;
  QDir().mkpath(folder);
  return folder;
}

platform::Result<void> keepCopy(cad::Drawing& drawing, const QString& path) {
  const QString index = indexFor(path), copy = copyFor(path);
  // While the copy is written there is none.
  QFile::remove(index);
  if (auto written = write(copy, drawing.toBytes()); !written) return written;
  QJsonObject entry;
  entry[QStringLiteral("drawing")] = path;
  entry[QStringLiteral("copy")] = copy;
  entry[QStringLiteral("host")] = QSysInfo::machineHostName();
  entry[QStringLiteral("process")] = static_cast<qint64>(getpid());
  entry[QStringLiteral("began")] = beginningOf(getpid());
  entry[QStringLiteral("saved")] = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
  entry[QStringLiteral("modified")] =
      QFileInfo(path).lastModified().toUTC().toString(Qt::ISODateWithMs);
  return write(index, QJsonDocument(entry).toJson().toStdString());
}

void dropCopies() {
  const QDir folder(recoveryFolder());
  for (const QString& name :
       folder.entryList({ownMark() + QStringLiteral("-*.json")}, QDir::Files)) {
    const QString index = folder.filePath(name);
    const auto entry = readIndex(index);
    removeIndexed(index, entry ? (*entry)[QStringLiteral("copy")].toString() : QString());
  }
}

std::vector<Recovery> recoveries() {
  std::vector<Recovery> found;
  const QDir folder(recoveryFolder());
  for (const QString& name : folder.entryList({QStringLiteral("*.json")}, QDir::Files)) {
    const QString index = folder.filePath(name);
    const auto entry = readIndex(index);
    if (!entry || (*entry)[QStringLiteral("host")].toString() != QSysInfo::machineHostName())
      continue;
    const QString began = beginningOf((*entry)[QStringLiteral("process")].toInteger());
    if (!began.isEmpty() && began == (*entry)[QStringLiteral("began")].toString()) continue;
    Recovery one;
    one.index = index;
    one.copy = (*entry)[QStringLiteral("copy")].toString();
    one.drawing = (*entry)[QStringLiteral("drawing")].toString();
    one.saved = QDateTime::fromString((*entry)[QStringLiteral("saved")].toString(), Qt::ISODate);
    const QString now = QFileInfo(one.drawing).lastModified().toUTC().toString(Qt::ISODateWithMs);
    one.drawingIsNewer = !one.drawing.isEmpty() && QFileInfo::exists(one.drawing) &&
                         now != (*entry)[QStringLiteral("modified")].toString();
    if (QFileInfo::exists(one.copy)) found.push_back(std::move(one));
  }
  std::sort(found.begin(), found.end(),
            [](const Recovery& a, const Recovery& b) { return a.saved > b.saved; });
  return found;
}

platform::Result<QString> recover(const Recovery& recovery) {
  QString target = recovery.drawing;
  if (target.isEmpty()) {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QDir().mkpath(folder);
    target =
        freeName(QStringLiteral("%1/%2-%3.dxf")
                     .arg(folder, words(u"recuperato"),
                          recovery.saved.toLocalTime().toString(QStringLiteral("yyyyMMdd-hhmm"))));
  } else if (QFileInfo::exists(target)) {
    const QString kept = freeName(target + QStringLiteral(".before-recovery"));
    if (!QFile::copy(target, kept)) {
      return platform::Error{utf8(kept) + ": " + platform::words("non scritto")};
    }
  }
  const auto bytes = platform::readFile(utf8(recovery.copy));
  if (!bytes) return platform::Error{bytes.error()};
  if (auto written = write(target, *bytes); !written) return platform::Error{written.error()};
  discard(recovery);
  return target;
}

void discard(const Recovery& recovery) { removeIndexed(recovery.index, recovery.copy); }

}  // namespace desktop
