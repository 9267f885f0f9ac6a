// The question for a file.
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include "apps/desktop/dialogs/run_dialog.h"
#include "tests/desktop/dialog_driver.h"

namespace desktop {
namespace {

using cad::ui::FileQuestion;

class FileQuestionTest : public DialogTest {
 protected:
  QString path(const QString& name) const { return folder_.filePath(name); }
  void make(const QString& name) const {
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  }
  static QFileDialog* dialog() {
    return qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
  }
  static Step inDialog(std::function<void(QFileDialog&)> act) {
    return {"the question", [] { return dialog() && dialog()->isVisible(); },
            [act = std::move(act)] { act(*dialog()); }};
  }
  // Types a name, and presses Enter once the window has looked for it.
  static void name(std::vector<Step>& steps, const QString& name) {
    steps.push_back(
        inDialog([name](QFileDialog& dialog) { typeOver(dialog.findChild<QLineEdit*>(), name); }));
    steps.push_back({"the name is known",
                     [] {
                       const auto* const buttons =
                           dialog() ? dialog()->findChild<QDialogButtonBox*>() : nullptr;
                       return buttons && buttons->buttons().front()->isEnabled();
                     },
                     [] {
                       QTimer::singleShot(
                           0, [] { key(dialog()->findChild<QLineEdit*>(), Qt::Key_Return); });
                     }});
  }
  std::optional<std::u16string> ask(const FileQuestion& question, std::vector<Step> steps) {
    bool running = true;
    std::optional<std::u16string> chosen;
    QTimer::singleShot(0, [&] {
      chosen = runFileQuestion(question, nullptr);
      running = false;
    });
    drive(
        std::move(steps), [&] { return !running; },
        [] {
          if (QWidget* const top = QApplication::activeModalWidget()) top->close();
        },
        5000);
    return chosen;
  }

  QTemporaryDir folder_;
};

TEST_F(FileQuestionTest, ProposesANameAndAsksBeforeAFileIsReplaced) {
  make(u"c'è.csv"_qs);
  const QString there = QDir::toNativeSeparators(path(u"c'è.csv"_qs));
  const QString replace = u"Il file %1 esiste già. Sostituirlo?"_qs.arg(there);
  const FileQuestion question{FileQuestion::Mode::save, u"", wide(path(u"Results.csv"_qs)),
                              u"CSV Files (*.csv)|*.csv|"};
  std::vector<Step> steps{inDialog([](QFileDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), u"Salva nel file"_qs);
    EXPECT_EQ(dialog.nameFilters(), QStringList(u"CSV Files (*.csv)"_qs));
    EXPECT_EQ(dialog.findChild<QLineEdit*>()->text(), u"Results.csv"_qs);
    EXPECT_EQ(dialog.labelText(QFileDialog::Accept), u"Salva"_qs);
  })};
  name(steps, u"c'è.csv"_qs);
  steps.push_back(answering(replace, Qt::Key_Escape));
  name(steps, u"c'è"_qs);
  steps.push_back(answering(replace, Qt::Key_Return));
  const auto chosen = ask(question, std::move(steps));
  EXPECT_EQ(chosen, wide(path(u"c'è.csv"_qs))) << "with the extension of the filter";
}

TEST_F(FileQuestionTest, OpensWhatIsThereAndRemembersTheFolder) {
  make(u"rete.inp"_qs);
  FileQuestion question{FileQuestion::Mode::open, u"Rete", wide(path(u"manca.inp"_qs)),
                        u"INP Files (*.inp)|*.inp|All (*.*)|*.*|"};
  std::vector<Step> steps;
  name(steps, u"rete.inp"_qs);
  EXPECT_EQ(ask(question, std::move(steps)), wide(path(u"rete.inp"_qs)));
  question.name = u"*.inp";  // a pattern proposes nothing
  QString folder;
  EXPECT_EQ(ask(question, {inDialog([&](QFileDialog& dialog) {
                  EXPECT_EQ(dialog.windowTitle(), u"Rete"_qs);
                  EXPECT_EQ(dialog.nameFilters().join(u'|'), u"INP Files (*.inp)|All (*)"_qs);
                  EXPECT_EQ(dialog.findChild<QLineEdit*>()->text(), QString());
                  folder = dialog.directory().path();
                  key(&dialog, Qt::Key_Escape);
                })}),
            std::nullopt);
  EXPECT_EQ(folder, folder_.path());
}

}  // namespace
}  // namespace desktop
