// vessora-desktop: the window.
#include <QApplication>
#include <QCommandLineParser>
#include <QLibraryInfo>
#include <QLocale>
#include <QSettings>
#include <QTimer>
#include <QTranslator>
#include <cstdio>

#include "apps/desktop/text.h"
#include "apps/desktop/window.h"
#include "apps/program/host.h"
#include "cad/editor/session.h"

namespace {

int fail(const std::string& why) {
  std::fprintf(stderr, "vessora-desktop: %s\n", why.c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  using desktop::words;
  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("vessora-desktop"));
  QApplication::setOrganizationName(QStringLiteral("vessora"));
  QApplication::setApplicationVersion(QStringLiteral(VESSORA_VERSION));
  // Numbers have a point everywhere in the product; Qt's own words follow the product's language.
  QLocale::setDefault(QLocale::c());
  QTranslator translator;
  if (platform::isItalian() &&
      translator.load(QStringLiteral("qtbase_it"),
                      QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QApplication::installTranslator(&translator);
  }
  QCommandLineParser arguments;
  arguments.setApplicationDescription(words(u"Reti acquedottistiche nel disegno CAD."));
  arguments.addPositionalArgument(words(u"FILE"), words(u"un disegno DXF o una rete INP"),
                                  words(u"[FILE]"));
  const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                words(u"mostra questo aiuto"));
  const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                   words(u"mostra la versione"));
  const QCommandLineOption picture(QStringLiteral("picture"),
                                   words(u"scrive un'immagine della finestra ed esce"),
                                   words(u"FILE.png"));
  arguments.addOptions({help, version, picture});
  if (!arguments.parse(QApplication::arguments())) {
    std::fprintf(stderr, "vessora-desktop: %s\n", desktop::utf8(arguments.errorText()).c_str());
    return 2;
  }
  if (arguments.isSet(help)) {
    std::fputs(desktop::utf8(arguments.helpText()).c_str(), stdout);
    return 0;
  }
  if (arguments.isSet(version)) {
    std::puts("vessora-desktop " VESSORA_VERSION);
    return 0;
  }
  desktop::QtFrontend ui;
  if (auto started = program::startHost(ui, program::InpMode::full); !started) {
    return fail(started.error());
  }
  cad::Session::instance().newDrawing();
  int status = 0;
  {
    desktop::Window window(ui);
    window.show();
    if (!arguments.positionalArguments().isEmpty()) {
      window.openFile(arguments.positionalArguments().first());
    } else if (!arguments.isSet(picture)) {
      QTimer::singleShot(0, &window, &desktop::Window::offerRecovery);
    }
    if (arguments.isSet(picture)) {
      QTimer::singleShot(1500, &window, [&] {
        const bool written = window.grab().save(arguments.value(picture));
        QApplication::exit(written ? 0
                                   : fail(desktop::utf8(arguments.value(picture)) + ": " +
                                          platform::words("non scritto")));
      });
    }
    status = QApplication::exec();
  }
  program::stopHost();
  return status;
}
