#include "apps/desktop/window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include "apps/desktop/actions.h"
#include "apps/desktop/canvas/canvas.h"
#include "apps/desktop/docks/command_line.h"
#include "apps/desktop/docks/docks.h"
#include "apps/desktop/icons.h"
#include "apps/desktop/results/results_view.h"
#include "apps/desktop/safety/recovery.h"
#include "apps/desktop/text.h"
#include "apps/desktop/view_file.h"
#include "apps/desktop/work/progress.h"
#include "apps/program/words.h"
#include "cad/editor/session.h"
#include "module/jobs.h"
#include "platform/files.h"
#include "platform/format.h"
#include "platform/text.h"

namespace desktop {

using cad::ui::Prompt;

namespace {

constexpr int kMostRecent = 10;

cad::Session& session() { return cad::Session::instance(); }
cad::Drawing* drawing() {
  return session().database() ? &session().database()->drawing() : nullptr;
}

bool isDrawing(const QString& path) {
  return QFileInfo(path).suffix().compare(QStringLiteral("dxf"), Qt::CaseInsensitive) == 0;
}
bool isNetwork(const QString& path) {
  return QFileInfo(path).suffix().compare(QStringLiteral("inp"), Qt::CaseInsensitive) == 0;
}
bool isResults(const QString& path) {
  const QString suffix = QFileInfo(path).suffix().toLower();
  return suffix == QStringLiteral("rpt") || suffix == QStringLiteral("out");
}

}  // namespace

Window::Window(QtFrontend& ui)
    : ui_(ui),
      runner_(ui.prompts()),
      guard_([this] { return !runner_.running(); }),
      canvas_(new Canvas(ui.prompts(), this)) {
  ui_.setWindow(this);
  auto* const middle = new QWidget(this);
  auto* const column = new QVBoxLayout(middle);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(canvas_, 1);
  setCentralWidget(middle);
  setAcceptDrops(true);
  setWindowIcon(iconNamed(QStringLiteral("vessora")));
  resize(1360, 860);
  makeDocks();
  results_ = std::make_unique<ResultsView>(*canvas_, *column, *this);
  makeActions();
  makeStatusBar();
  makeGuard();
  connect(canvas_, &Canvas::typed, commandLine_, &CommandLine::takeKey);
  connect(canvas_, &Canvas::gripMoved, this, &Window::moveNode);
  connect(canvas_, &Canvas::activated, this, [this](std::uint32_t record) {
    canvas_->select({record});
    runCommand(u"LIST");
  });
  connect(canvas_, &Canvas::menuWanted, this, [this](const QPoint& at) {
    QMenu menu;
    menu.addAction(words(u"Ripeti l'ultimo comando"), &runner_, &CommandRunner::repeat);
    menu.addSeparator();
    for (const char* name : {"LIST", "MOVE", "ERASE", "HNMODEPA", "extents"}) {
      menu.addAction(actions_.value(QString::fromLatin1(name)));
    }
    menu.exec(at);
  });
  connect(canvas_, &Canvas::cursorAt, this, [this](double x, double y, double z) {
    place_->setText(
        QStringLiteral("%1  %2  %3").arg(x, 0, 'f', 3).arg(y, 0, 'f', 3).arg(z, 0, 'f', 2));
  });
  connect(&runner_, &CommandRunner::started, this, &Window::commandStarted);
  connect(&runner_, &CommandRunner::finished, this, &Window::commandFinished);
  connect(&ui_.prompts(), &PromptBroker::asked, this, &Window::asked);
  restoreLayout();
  follow();
  canvas_->setFocus();
}

Window::~Window() { ui_.setWindow(nullptr); }

// --- parts ---------------------------------------------------------------------------------------

void Window::makeDocks() {
  commandLine_ = new CommandLine(ui_, runner_, this);
  auto* const dock = new QDockWidget(words(u"Riga di comando"), this);
  dock->setObjectName(QStringLiteral("commandLine"));
  dock->setWidget(commandLine_);
  addDockWidget(Qt::BottomDockWidgetArea, dock);
  docks_ = new Docks(*canvas_, runner_, *this);
  connect(docks_, &Docks::said, this, &Window::say);
  resizeDocks({dock}, {fontMetrics().height() * 7}, Qt::Vertical);
  QStringList names;
  for (const auto& [key, command] : session().commands()) names.push_back(qt(key));
  commandLine_->setCommands(names);
}

void Window::makeStatusBar() {
  place_ = new QLabel(this);
  state_ = new QLabel(this);
  statusBar()->addWidget(state_, 1);
  statusBar()->addPermanentWidget(place_);
}

QAction* Window::addAction(const ActionRow& row, QMenu* menu) {
  auto* const action = menu->addAction(iconNamed(QString::fromLatin1(row.icon)), words(row.text));
  QString tip = words(row.tip);
  if (!tip.isEmpty()) tip[0] = tip[0].toUpper();
  if (row.shortcut) {
    action->setShortcut(QKeySequence(row.shortcut));
    action->setToolTip(
        QStringLiteral("%1 (%2)").arg(tip, action->shortcut().toString(QKeySequence::NativeText)));
  } else {
    action->setToolTip(tip);
  }
  action->setStatusTip(tip);
  if (!row.command.empty()) {
    const std::u16string command(row.command);
    actions_.insert(qt(command), action);
    connect(action, &QAction::triggered, this, [this, command] { runCommand(command); });
  } else {
    const QString own = QString::fromLatin1(row.own);
    actions_.insert(own, action);
    connect(action, &QAction::triggered, this, [this, own, action] { doOwn(own, action); });
  }
  return action;
}

void Window::makeActions() {
  auto* const bar = addToolBar(words(u"Strumenti"));
  bar->setObjectName(QStringLiteral("tools"));
  bar->setIconSize({20, 20});
  QHash<int, QMenu*> menus;
  Menu last = Menu::file;
  for (const ActionRow& row : actionRows()) {
    QMenu*& menu = menus[static_cast<int>(row.menu)];
    if (!menu) menu = menuBar()->addMenu(titleOf(row.menu));
    if (!*row.text) {
      menu->addSeparator();
      continue;
    }
    if (std::string_view(row.own) == "recent") {
      recent_ = menu->addMenu(words(row.text));
      continue;
    }
    auto* const action = addAction(row, menu);
    if (!row.toolBar) continue;
    if (row.menu != last && !bar->actions().isEmpty()) bar->addSeparator();
    last = row.menu;
    bar->addAction(action);
  }
  for (const char* name : {"dark", "labels", "snap", "ortho"}) {
    actions_.value(QString::fromLatin1(name))->setCheckable(true);
  }
  actions_.value(QStringLiteral("writeResults"))->setEnabled(false);
  for (const char* name : {"dark", "labels", "snap"}) {
    actions_.value(QString::fromLatin1(name))->setChecked(true);
  }
  auto* const docks = menus[static_cast<int>(Menu::view)];
  docks->addSeparator();
  for (QDockWidget* const dock : findChildren<QDockWidget*>())
    docks->addAction(dock->toggleViewAction());
  showRecent();
}

void Window::doOwn(const QString& what, QAction* action) {
  const auto is = [&](const char* name) { return what == QLatin1String(name); };
  if (is("extents")) return canvas_->zoomExtents();
  if (is("window")) return zoomByWindow();
  if (is("previous")) return canvas_->previousView();
  if (is("in")) return canvas_->zoomBy(1.5);
  if (is("out")) return canvas_->zoomBy(1 / 1.5);
  if (is("plan")) return canvas_->setPlan();
  if (is("orbit")) return canvas_->setOblique();
  if (is("dark")) {
    canvas_->setDark(action->isChecked());
    return docks_->follow();
  }
  if (is("labels")) return canvas_->setLabels(action->isChecked());
  if (is("snap")) return canvas_->setSnapping(action->isChecked());
  if (is("ortho")) return canvas_->setOrtho(action->isChecked());
  if (is("picture")) return savePicture();
  if (is("print")) return print();
  if (is("solve")) return solve();
  if (is("writeResults")) return writeResults();
  if (is("openResults")) return openResults();
  if (is("about")) return about();
  if (is("selectAll")) return canvas_->selectAll();
}

// --- commands ------------------------------------------------------------------------------------

void Window::runCommand(std::u16string_view name) {
  answerWithSelection_ = !canvas_->selection().empty();
  runner_.start(name);
}

void Window::commandStarted(const QString& name) {
  state_->setText(name);
  // What follows from a command's own dialogs and prompts is no longer the chosen objects' affair.
  QTimer::singleShot(0, this, [this] {
    if (!runner_.running()) answerWithSelection_ = false;
  });
}

// The first question for objects takes those that are chosen, and the next one their end.
void Window::asked() {
  const Prompt* const prompt = ui_.prompts().prompt();
  if (!prompt || prompt->kind != Prompt::Kind::selection || !answerWithSelection_) return;
  const auto chosen = canvas_->selection();
  if (chosen.empty() || !drawing()) {
    answerWithSelection_ = false;
    return ui_.prompts().enter();
  }
  cad::ui::Answer answer;
  for (const std::uint32_t record : chosen)
    answer.objects.push_back(drawing()->record(record).handle);
  canvas_->select({});
  ui_.prompts().answer(std::move(answer));
}

void Window::commandFinished() {
  state_->clear();
  answerWithSelection_ = false;
  ui_.setNextFile({});
  session().takeLeaks();
  follow();
  if (session().quitRequested()) {
    closing_ = true;
    close();
  }
}

void Window::follow() {
  cad::Drawing* const now = drawing();
  const std::uint32_t number = now ? now->number() : 0;
  if (number != shown_) {
    shown_ = number;
    solved_ = {};
    actions_.value(QStringLiteral("writeResults"))->setEnabled(false);
    canvas_->setDrawing(now);
    rememberFile(qt(session().drawingPath()));
  } else {
    canvas_->refresh();
  }
  if (session().view.set) {
    canvas_->zoomTo(
        {session().view.low.x, session().view.low.y, session().view.high.x, session().view.high.y});
    session().view.set = false;
  }
  actions_.value(QStringLiteral("SAVE"))->setEnabled(now && session().isModified());
  docks_->follow();
  results_->follow(number);
  guard_.follow();
  showTitle();
}

void Window::showTitle() {
  const QString path = qt(session().drawingPath());
  const QString name = path.isEmpty() ? words(u"senza nome") : QFileInfo(path).fileName();
  setWindowTitle(QStringLiteral("%1[*] - vessora").arg(name));
  setWindowModified(session().isModified());
  setWindowFilePath(path);
}

// --- files ---------------------------------------------------------------------------------------

void Window::openFile(const QString& path) {
  if (isNetwork(path)) return runner_.startWork([this, path] { importNow(path); });
  if (isResults(path)) return runner_.startWork([this, path] { openResultsNow(path); });
  ui_.setNextFile(wide(QFileInfo(path).absoluteFilePath()));
  runner_.start(u"OPEN");
}

// As the job does it, with what the terminal's program refuses and warns of.
void Window::importNow(const QString& path) {
  vessora::Jobs* const jobs = vessora::Jobs::find();
  if (!jobs) return;
  if (!drawing()) session().newDrawing();
  const vessora::InpFile file = jobs->openInp(wide(QFileInfo(path).absoluteFilePath()));
  const vessora::InpFindings found = jobs->examineInp(file);
  const std::string no =
      found.readable ? program::faultOf(found) : program::words("non si può leggere");
  if (!no.empty()) {
    ui_.messageBox(
        {u"", wide(path) + u": " + platform::widen(no), cad::ui::Icon::stop, cad::ui::Buttons::ok});
    return;
  }
  vessora::ImportResult result;
  {
    const DrawingProgress progress(state_, words(u"Disegno della rete"));
    drawing()->beginCommand(u"IMPINP");
    result = jobs->importInp(file, found.name, std::nullopt);
    drawing()->endCommand();
  }
  for (const vessora::DrawnKind& kind : result.kinds) {
    for (const std::string& line : program::described(kind.notices))
      commandLine_->print(qt("\n" + line));
  }
  commandLine_->print(qt("\n" + platform::narrow(found.name) + ": " +
                         program::describe(jobs->network(found.name).counts) + "\n"));
  QTimer::singleShot(0, canvas_, &Canvas::zoomExtents);
}

void Window::rememberFile(const QString& path) {
  if (path.isEmpty()) return;
  QSettings settings;
  QStringList files = settings.value(QStringLiteral("recent")).toStringList();
  files.removeAll(path);
  files.prepend(path);
  while (files.size() > kMostRecent) files.removeLast();
  settings.setValue(QStringLiteral("recent"), files);
  showRecent();
}

void Window::showRecent() {
  recent_->clear();
  const QStringList files = QSettings().value(QStringLiteral("recent")).toStringList();
  for (const QString& file : files) {
    recent_->addAction(QFileInfo(file).fileName(), this, [this, file] { openFile(file); })
        ->setStatusTip(file);
  }
  recent_->setEnabled(!files.isEmpty());
}

void Window::dragEnterEvent(QDragEnterEvent* event) {
  for (const QUrl& url : event->mimeData()->urls()) {
    const QString path = url.toLocalFile();
    if (isDrawing(path) || isNetwork(path) || isResults(path)) return event->acceptProposedAction();
  }
}

void Window::dropEvent(QDropEvent* event) {
  for (const QUrl& url : event->mimeData()->urls()) {
    const QString path = url.toLocalFile();
    if (isDrawing(path) || isNetwork(path) || isResults(path)) {
      event->acceptProposedAction();
      return openFile(path);
    }
  }
}

void Window::closeEvent(QCloseEvent* event) {
  if (!closing_) {
    // The command that runs is left first; then the user is asked about changes.
    event->ignore();
    runner_.start(u"QUIT");
    return;
  }
  keepLayout();
  guard_.release();
  event->accept();
}

// --- safety --------------------------------------------------------------------------------------

void Window::say(const QString& text) {
  statusBar()->showMessage(text, 15000);
  commandLine_->print(QLatin1Char('\n') + text + QLatin1Char('\n'));
}

void Window::makeGuard() {
  connect(&guard_, &Guard::sharedWith, this,
          [this](const QString& program, const QString& host, qint64 process) {
            say(words(u"Attenzione: il disegno è aperto anche in un altro programma: ") +
                QStringLiteral("%1, %2, %3").arg(program, host).arg(process));
          });
  connect(&guard_, &Guard::changedOutside, this, [this](const QString& path) {
    say(words(u"Attenzione: altri hanno modificato il file del disegno dopo l'apertura: ") + path);
  });
  connect(&guard_, &Guard::failed, this, [this](const QString& why) {
    say(words(u"La copia di sicurezza non è stata scritta: ") + why);
  });
}

void Window::offerRecovery() {
  for (const Recovery& one : recoveries()) {
    const QString name = one.drawing.isEmpty() ? words(u"senza nome") : one.drawing;
    QMessageBox box(QMessageBox::Question, words(u"Recupero"),
                    words(u"Il programma non è terminato come doveva. C'è una copia di sicurezza "
                          u"delle modifiche:"),
                    QMessageBox::NoButton, this);
    QString what = name + QLatin1Char('\n') + words(u"copia del ") +
                   QLocale::system().toString(one.saved.toLocalTime(), QLocale::ShortFormat);
    if (one.drawingIsNewer)
      what += QLatin1Char('\n') + words(u"il disegno è stato scritto ancora dopo la copia");
    box.setInformativeText(what);
    QPushButton* const yes = box.addButton(words(u"Recupera"), QMessageBox::AcceptRole);
    QPushButton* const later = box.addButton(words(u"Più tardi"), QMessageBox::RejectRole);
    QPushButton* const no = box.addButton(words(u"Elimina la copia"), QMessageBox::DestructiveRole);
    box.setDefaultButton(yes);
    box.setEscapeButton(static_cast<QAbstractButton*>(later));
    box.exec();
    const QAbstractButton* const clicked = box.clickedButton();
    if (clicked == no) discard(one);
    if (clicked != yes) continue;
    const auto path = recover(one);
    if (!path) {
      ui_.messageBox(
          {u"", platform::widen(path.error()), cad::ui::Icon::stop, cad::ui::Buttons::ok});
      continue;
    }
    return openFile(*path);
  }
}

// --- things of the window ------------------------------------------------------------------------

void Window::moveNode(std::uint32_t record, double x, double y) {
  runner_.startWork([this, record, x, y] {
    vessora::Jobs* const jobs = vessora::Jobs::find();
    if (!jobs || !drawing()) return;
    drawing()->beginCommand(u"MOVE");
    bool done = false;
    for (const vessora::NetworkInfo& network : jobs->networks()) {
      const vessora::ChangeResult result =
          jobs->moveNode(network.name, drawing()->idOf(record), x, y);
      if (!result.done()) continue;
      done = true;
      for (const auto* notices : {&result.notices, &result.warnings}) {
        for (const std::string& line : program::described(*notices)) {
          commandLine_->print(qt("\n" + line));
        }
      }
      break;
    }
    drawing()->endCommand();
    if (!done) statusBar()->showMessage(words(u"Non è un nodo di una rete: usare SPOSTA."), 5000);
  });
}

// --- calculation ---------------------------------------------------------------------------------

std::u16string Window::askNetwork() {
  vessora::Jobs* const jobs = vessora::Jobs::find();
  if (!jobs || !drawing()) return {};
  const vessora::PickedNetwork picked = jobs->pickNetwork(u"", u"");
  if (picked.why == vessora::PickedNetwork::Why::found) return picked.name;
  if (picked.names.empty()) {
    say(words(u"Il disegno non ha reti: disegnarne una, o importare un file INP."));
    return {};
  }
  Prompt prompt;
  prompt.kind = Prompt::Kind::keyword;
  prompt.text = platform::words(u"\nRete: ");
  prompt.keywords = picked.names;
  for (;;) {
    const cad::ui::Answer answer = ui_.ask(prompt);
    if (answer.status != cad::ui::Answer::Status::ok) return {};
    for (const std::u16string& name : picked.names) {
      if (platform::equalNoCase(name, answer.text)) return name;
    }
    ui_.invalid(platform::words(u"La rete non c'è."));
  }
}

void Window::solve() {
  runner_.startWork([this] {
    const std::u16string network = askNetwork();
    if (network.empty()) return;
    Solved solved = solveNetwork(network, this);
    for (const std::string& line : solved.messages) commandLine_->print(qt("\n" + line));
    if (solved.cancelled) return say(words(u"Calcolo fermato."));
    if (!solved.fault.empty()) {
      say(qt(solved.fault));
      ui_.messageBox({platform::words(u"Calcolo"), platform::widen(solved.fault),
                      cad::ui::Icon::stop, cad::ui::Buttons::ok});
      return;
    }
    solved_ = std::move(solved);
    solvedNetwork_ = network;
    actions_.value(QStringLiteral("writeResults"))->setEnabled(true);
    say(words(u"Calcolo riuscito: ") + qt(network));
    // Seen at once; nothing of it is drawn.
    if (const QString no = results_->open(qt(solved_.output), network); !no.isEmpty()) say(no);
  });
}

// The results of the latest run onto the drawing, as one step: of the period that is asked for.
void Window::writeResults() {
  runner_.startWork([this] {
    vessora::Jobs* const jobs = vessora::Jobs::find();
    if (!jobs || !drawing() || solved_.output.empty()) return;
    const vessora::Report report = jobs->openReport(platform::widen(solved_.output));
    const vessora::ReportPeriods periods = jobs->periodsOf(report);
    if (periods.times.empty()) return say(words(u"Non ci sono risultati."));
    Prompt prompt;
    prompt.text =
        platform::format(platform::words(u"\nPeriodo dei risultati, da %s a %s <%s>: "),
                         periods.times.front(), periods.times.back(), periods.times.front());
    const cad::ui::Answer answer = ui_.ask(prompt);
    using Status = cad::ui::Answer::Status;
    if (answer.status != Status::ok && answer.status != Status::none) return;
    const std::u16string period = answer.status == Status::none
                                      ? periods.times.front()
                                      : program::periodOf(periods, platform::narrow(answer.text));
    if (period.empty()) return say(words(u"Il periodo non c'è."));
    const vessora::ReportRows rows = jobs->rowsOf(report, period, periods.lowerCaseHrs);
    const vessora::ReportFindings found = jobs->examineResults(rows, solvedNetwork_);
    if (const std::string no = program::faultOf(found, solvedNetwork_); !no.empty())
      return say(qt(no));
    drawing()->beginCommand(u"IMPRPT");
    const vessora::ResultCounts written = jobs->writeResults(rows, solvedNetwork_);
    drawing()->endCommand();
    say(qt(program::describe(written, solvedNetwork_, period)));
  });
}

void Window::openResults() {
  runner_.startWork([this] {
    cad::ui::FileQuestion question;
    question.title = platform::words(u"Apri risultati");
    question.filter = platform::words(u"Risultati (*.out;*.rpt)|*.out;*.rpt|");
    if (const auto path = ui_.askFile(question)) openResultsNow(qt(*path));
  });
}

void Window::openResultsNow(const QString& path) {
  const std::u16string network = askNetwork();
  if (network.empty()) return;
  const QString no = results_->open(QFileInfo(path).absoluteFilePath(), network);
  if (no.isEmpty()) return say(words(u"Risultati: ") + QFileInfo(path).fileName());
  say(no);
  ui_.messageBox({u"", wide(no), cad::ui::Icon::stop, cad::ui::Buttons::ok});
}

void Window::zoomByWindow() {
  runner_.startWork([this] {
    Prompt prompt;
    prompt.kind = Prompt::Kind::point;
    prompt.text = platform::words(u"\nPrimo angolo: ");
    const auto first = ui_.ask(prompt);
    if (!first.place) return;
    prompt.text = platform::words(u"\nAngolo opposto: ");
    prompt.base = first.place;
    const auto second = ui_.ask(prompt);
    if (!second.place) return;
    const auto &a = *first.place, &b = *second.place;
    canvas_->zoomTo(
        {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)});
  });
}

void Window::savePicture() {
  cad::ui::FileQuestion question;
  question.mode = cad::ui::FileQuestion::Mode::save;
  question.title = platform::words(u"Salva immagine");
  question.filter = platform::words(
      u"Immagini (*.png)|*.png|Immagini SVG (*.svg)|*.svg|Documenti PDF (*.pdf)|*.pdf|");
  const auto path = ui_.askFile(question);
  if (!path || !drawing()) return;
  const QString fault = writeView(*drawing(), canvas_->camera(), canvas_->isDark(), qt(*path));
  if (!fault.isEmpty()) {
    ui_.messageBox({u"", wide(fault), cad::ui::Icon::stop, cad::ui::Buttons::ok});
  }
}

void Window::print() {
  if (drawing()) printView(*drawing(), canvas_->camera(), this);
}

void Window::about() {
  QMessageBox::about(this, words(u"Informazioni"),
                     words(u"vessora: reti acquedottistiche nel disegno CAD."));
}

void Window::keepLayout() {
  QSettings settings;
  settings.setValue(QStringLiteral("geometry"), saveGeometry());
  settings.setValue(QStringLiteral("state"), saveState());
  settings.setValue(QStringLiteral("dark"), canvas_->isDark());
}

void Window::restoreLayout() {
  const QSettings settings;
  restoreGeometry(settings.value(QStringLiteral("geometry")).toByteArray());
  restoreState(settings.value(QStringLiteral("state")).toByteArray());
  const bool dark = settings.value(QStringLiteral("dark"), true).toBool();
  canvas_->setDark(dark);
  actions_.value(QStringLiteral("dark"))->setChecked(dark);
}

void Window::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) update();
  QMainWindow::changeEvent(event);
}

}  // namespace desktop
