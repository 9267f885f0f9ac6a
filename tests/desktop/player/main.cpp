// The program `vessora` as cases call it, with the dialogs of its scripts in windows: each line
// moves widgets with mouse and keys, after each line they must show what the controls show, and
// whatever the case expects must come out as it does without windows.
//
// Subcommands other than "run" are handed on. DIALOG_PICTURES names a folder for a picture of each
// dialog as it opens; DIALOG_LANGUAGE=en shows them in English, as far as an Italian script goes.
#include <unistd.h>

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "apps/desktop/dialogs/run_dialog.h"
#include "apps/desktop/text.h"
#include "apps/program/host.h"
#include "apps/program/words.h"
#include "cad/ui/names.h"
#include "cad/ui/script_frontend.h"
#include "platform/files.h"
#include "platform/text.h"
#include "tests/desktop/player/widget_hand.h"
#include "tests/desktop/player/widget_state.h"

namespace {

namespace ui = cad::ui;
using namespace desktop;

class WidgetScript : public ui::ScriptFrontend {
 public:
  using ScriptFrontend::ScriptFrontend;
  // What windows showed otherwise than they should.
  QStringList wrong;

 protected:
  void showDialog(ui::Dialog& dialog) override {
    DialogWindow window(dialog, windows_.empty() ? nullptr : windows_.back());
    window.open();
    settle(window);
    look(window);
    picture(window, dialog.title());
    windows_.push_back(&window);
    ScriptFrontend::showDialog(dialog);
    windows_.pop_back();
    if (window.isVisible()) wrong.append(QStringLiteral("a window stays"));
  }

  ui::Gesture perform(ui::Dialog& dialog, std::u16string_view line) override {
    DialogWindow& window = *windows_.back();
    WidgetHand hand(window);
    const ui::Gesture done = performLine(dialog, line, hand);
    if (!dialog.ended()) {
      settle(window);
      look(window);
    }
    return done;
  }

  ui::Pressed showMessage(const ui::Message& message) override {
    const ui::Pressed meant = ScriptFrontend::showMessage(message);
    if (failed()) return meant;
    QTimer clicker;
    QObject::connect(&clicker, &QTimer::timeout, [&] {
      auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (box) answer(*box, message, meant);
    });
    clicker.start(1);
    const ui::Pressed pressed = runMessage(message, windows_.empty() ? nullptr : windows_.back());
    if (pressed != meant) wrong.append(QStringLiteral("a message gives another answer"));
    return pressed;
  }

 private:
  void look(const DialogWindow& window) {
    for (const QString& difference : differences(window))
      wrong.append(window.windowTitle() + u'/' + difference);
  }

  void answer(QMessageBox& box, const ui::Message& message, ui::Pressed meant) {
    picture(box, message.title + u" - " + message.text);
    if (box.text() != qt(message.text)) wrong.append(QStringLiteral("a message says otherwise"));
    for (QAbstractButton* button : box.buttons())
      if (button->text() == qt(ui::wordOf(meant))) return QTest::mouseClick(button, Qt::LeftButton);
    wrong.append(QStringLiteral("a message lacks its button"));
    box.close();
  }

  static void picture(QWidget& window, const std::u16string& name) {
    const char* const folder = std::getenv("DIALOG_PICTURES");
    if (!folder || !*folder) return;
    QString file = qt(ui::plainName(name)).left(60);
    for (QChar& sign : file)
      if (!sign.isLetterOrNumber()) sign = u'_';
    const QString path = QDir(QString::fromLocal8Bit(folder)).filePath(file);
    for (int i = 0; i < 4; ++i) {
      const QString numbered = QStringLiteral("%1-%2.png").arg(path).arg(i);
      if (QFile::exists(numbered)) continue;
      window.grab().save(numbered);
      return;
    }
  }

  std::vector<DialogWindow*> windows_;
};

// What an Italian script says, in the words of the language that is shown: messages, entries,
// values. Checks are left out.
std::string translated(const std::string& script) {
  std::u16string out;
  for (const QString& row : qt(script).split(u'\n')) {
    QString line = row.trimmed();
    if (line.startsWith(u':') || line.contains(QStringLiteral(" ? ")) || line.endsWith(u'?'))
      continue;
    qsizetype from = line.startsWith(u'!') ? 1 : -1;
    for (const char* sign : {" = ", " > "})
      if (from < 0 && line.contains(QLatin1String(sign)))
        from = line.indexOf(QLatin1String(sign)) + 3;
    if (from >= 0) {
      qsizetype end = line.startsWith(u'!') ? line.indexOf(QStringLiteral(" -> ")) : line.size();
      if (end < 0) end = line.size();
      const QString said =
          line.mid(from, end - from).trimmed().replace(QStringLiteral("\\n"), QStringLiteral("\n"));
      line = line.left(from) + u' ' + words(wide(said)).replace(u'\n', QStringLiteral("\\n")) +
             line.mid(end);
    }
    out += wide(line) + u'\n';
  }
  return platform::narrow(out);
}

struct Options {
  std::string drawing, script, out;
  program::InpMode mode = program::InpMode::full;
};

Options optionsOf(int argc, char** argv) {
  Options o;
  for (int i = 2; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--classic") {
      o.mode = program::InpMode::classic;
    } else if (word == "-o" && i + 1 < argc) {
      o.out = argv[++i];
    } else {
      (o.drawing.empty() ? o.drawing : o.script) = word;
    }
  }
  return o;
}

// What Qt complains of is a fault, but for what a machine without a session or a screen lacks.
void tellWarning(QtMsgType, const QMessageLogContext&, const QString& text) {
  if (!text.startsWith(QStringLiteral("QStandardPaths")) &&
      !text.startsWith(QStringLiteral("This plugin does not support")))
    std::fprintf(stderr, "vessora: window: %s\n", text.toLocal8Bit().constData());
}

int fail(const std::string& message) {
  std::fprintf(stderr, "vessora: %s\n", program::oneLine(message).c_str());
  return 1;
}

platform::Result<void> openDrawing(const std::string& path) {
  if (path == "-") {
    cad::Session::instance().newDrawing();
    return {};
  }
  std::vector<std::string> warnings;
  auto opened = cad::Session::instance().openDrawing(path, warnings);
  for (const std::string& warning : warnings)
    std::fprintf(stderr, "vessora: %s%s\n", program::words("attenzione: ").c_str(),
                 program::oneLine(warning).c_str());
  return opened;
}

int run(const Options& o) {
  const auto script = platform::readFile(o.script);
  if (!script) return fail(script.error());
  if (const std::string language = ui::languageOfScript(*script); !language.empty())
    platform::chooseLanguage(language);
  std::string lines = *script;
  if (const char* language = std::getenv("DIALOG_LANGUAGE")) {
    platform::chooseLanguage(language);
    lines = translated(lines);
  }
  WidgetScript player(lines, o.script, [](std::u16string_view text) {
    std::fputs(platform::printable(platform::narrow(text)).c_str(), stdout);
  });
  struct Stop {
    ~Stop() { program::stopHost(); }
  } const stop;
  if (auto started = program::startHost(player, o.mode); !started) return fail(started.error());
  if (auto opened = openDrawing(o.drawing); !opened) return fail(opened.error());
  cad::Session& session = cad::Session::instance();
  session.commandLoop([&] { return player.hasAnswer() && !player.failed(); });
  std::fputs("\n", stdout);
  for (const QString& wrong : player.wrong) fail("window: " + utf8(wrong));
  if (auto finished = player.finish(); !finished) return fail(finished.error());
  if (const std::string left = session.takeLeaks(); !left.empty()) return fail(left);
  if (o.out.empty()) return player.wrong.isEmpty() ? 0 : 1;
  if (auto saved = session.saveDrawing(o.out); !saved) return fail(saved.error());
  return player.wrong.isEmpty() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || std::strcmp(argv[1], "run") != 0) {
    execv(REAL_PROGRAM, argv);
    return 127;
  }
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  qInstallMessageHandler(tellWarning);
  platform::endTemporaryFilesOnSignals();
  const QApplication application(argc, argv);
  return run(optionsOf(argc, argv));
}
