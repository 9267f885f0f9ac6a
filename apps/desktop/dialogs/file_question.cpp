#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>

#include "apps/desktop/dialogs/run_dialog.h"
#include "apps/desktop/text.h"
#include "platform/format.h"

namespace desktop {

using cad::ui::FileQuestion;
using cad::ui::Pressed;

namespace {

// The folder of the last file: the next one is mostly there too.
QString& lastFolder() {
  static QString folder;
  return folder;
}

// "INP Files (*.inp)", as the window wants it: words, then patterns in parentheses.
QStringList nameFilters(const FileQuestion& question) {
  QStringList filters;
  for (const cad::ui::FileFilter& filter : cad::ui::filtersOf(question.filter)) {
    const QString said = qt(filter.words);
    QString patterns = qt(filter.pattern).replace(u';', u' ');
    if (patterns == QStringLiteral("*.*")) patterns = QStringLiteral("*");
    filters.append(said.left(said.indexOf(u'(')).trimmed() + QStringLiteral(" (") + patterns +
                   u')');
  }
  return filters;
}

QString titleOf(const FileQuestion& question) {
  if (!question.title.empty()) return qt(question.title);
  return question.mode == FileQuestion::Mode::save ? words(u"Salva nel file")
                                                   : words(u"File da aprire");
}

// An extension for names without one: that of the first filter, if it has just one.
QString suffixOf(const QStringList& filters) {
  if (filters.isEmpty()) return {};
  const QString& filter = filters.front();
  const QString pattern = filter.mid(filter.lastIndexOf(u'(') + 1).chopped(1);
  const QString suffix = pattern.mid(2);
  const bool simple = pattern.startsWith(QStringLiteral("*.")) && !suffix.contains(u'*') &&
                      !suffix.contains(u' ') && !suffix.contains(u'?');
  return simple ? suffix : QString();
}

void setUp(QFileDialog& dialog, const FileQuestion& question) {
  const bool save = question.mode == FileQuestion::Mode::save;
  dialog.setWindowTitle(titleOf(question));
  dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  // Whether a file may be replaced is asked in the words of the rest.
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  // Without a desktop around there is no dialog of its own.
  if (QGuiApplication::platformName() == QStringLiteral("offscreen"))
    dialog.setOption(QFileDialog::DontUseNativeDialog);
  const QStringList filters = nameFilters(question);
  if (!filters.isEmpty()) dialog.setNameFilters(filters);
  if (save) dialog.setDefaultSuffix(suffixOf(filters));
  dialog.setLabelText(QFileDialog::LookIn, words(u"Cartella:"));
  dialog.setLabelText(QFileDialog::FileName, words(u"Nome del file:"));
  dialog.setLabelText(QFileDialog::FileType, words(u"Tipo di file:"));
  dialog.setLabelText(QFileDialog::Accept, save ? words(u"Salva") : words(u"Apri"));
  dialog.setLabelText(QFileDialog::Reject, words(u"Annulla"));

  const QString name = qt(question.name);
  const bool proposed = !name.isEmpty() && !name.contains(u'*');
  const QFileInfo file(name);
  dialog.setDirectory(proposed && file.isAbsolute() ? file.absolutePath()
                      : lastFolder().isEmpty()      ? QDir::currentPath()
                                                    : lastFolder());
  if (proposed) dialog.selectFile(file.isAbsolute() ? file.fileName() : name);
}

bool mayReplace(const QString& path, QWidget* parent) {
  if (!QFileInfo::exists(path)) return true;
  const std::u16string text =
      platform::format(platform::words(u"Il file %s esiste già. Sostituirlo?"),
                       wide(QDir::toNativeSeparators(path)));
  return runMessage({wide(titleOf({FileQuestion::Mode::save})), text, cad::ui::Icon::question,
                     cad::ui::Buttons::yesNo},
                    parent) == Pressed::yes;
}

}  // namespace

std::optional<std::u16string> runFileQuestion(const FileQuestion& question, QWidget* parent) {
  QFileDialog dialog(parent);
  setUp(dialog, question);
  while (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
    const QString path = dialog.selectedFiles().front();
    lastFolder() = QFileInfo(path).absolutePath();
    if (question.mode == FileQuestion::Mode::open || mayReplace(path, &dialog)) return wide(path);
    dialog.selectFile(path);
  }
  return std::nullopt;
}

}  // namespace desktop
