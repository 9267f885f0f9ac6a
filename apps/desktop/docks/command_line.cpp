#include "apps/desktop/docks/command_line.h"

#include <QCompleter>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScrollBar>
#include <QStringListModel>
#include <QTextBlock>
#include <QToolButton>
#include <QVBoxLayout>

#include "apps/desktop/text.h"

namespace desktop {

using cad::ui::Prompt;

namespace {

constexpr int kMostLines = 5000;

// The last line of a question is asked beside the input; what stands before it is output.
std::pair<QString, QString> parted(const QString& text) {
  const qsizetype at = text.lastIndexOf(QLatin1Char('\n'));
  return {text.left(at + 1), text.mid(at + 1).trimmed()};
}

}  // namespace

CommandLine::CommandLine(QtFrontend& ui, CommandRunner& runner, QWidget* parent)
    : QWidget(parent),
      ui_(ui),
      runner_(runner),
      output_(new QPlainTextEdit(this)),
      question_(new QLabel(this)),
      keywords_(new QHBoxLayout),
      input_(new QLineEdit(this)),
      completions_(new QStringListModel(this)) {
  output_->setReadOnly(true);
  output_->setMaximumBlockCount(kMostLines);
  output_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  output_->setFocusPolicy(Qt::ClickFocus);
  output_->setAccessibleName(words(u"Messaggi dei comandi"));
  input_->setFont(output_->font());
  input_->setAccessibleName(words(u"Riga di comando"));
  auto* const completer = new QCompleter(completions_, this);
  completer->setCaseSensitivity(Qt::CaseInsensitive);
  input_->setCompleter(completer);
  auto* const line = new QHBoxLayout;
  line->addWidget(question_);
  line->addLayout(keywords_);
  line->addWidget(input_, 1);
  auto* const all = new QVBoxLayout(this);
  all->setContentsMargins(4, 4, 4, 4);
  all->setSpacing(4);
  all->addWidget(output_, 1);
  all->addLayout(line);
  input_->installEventFilter(this);
  connect(&ui, &QtFrontend::printed, this, &CommandLine::print);
  connect(&ui, &QtFrontend::refused, this, [this](const QString& reason) { echo(reason); });
  connect(&ui.prompts(), &PromptBroker::asked, this, &CommandLine::asked);
  connect(&ui.prompts(), &PromptBroker::answered, this, &CommandLine::answered);
  connect(&runner, &CommandRunner::unknown, this, [this](const QString& name) {
    echo(words(u"Comando sconosciuto \"%s\". Digitare GUIDA per l'elenco.")
             .replace(QStringLiteral("%s"), name));
  });
  answered();
}

void CommandLine::setCommands(const QStringList& names) {
  commands_ = names;
  if (!ui_.prompts().prompt()) completions_->setStringList(commands_);
}

void CommandLine::print(const QString& text) {
  QTextCursor end(output_->document());
  end.movePosition(QTextCursor::End);
  end.insertText(text);
  output_->verticalScrollBar()->setValue(output_->verticalScrollBar()->maximum());
}

// A line of its own.
void CommandLine::echo(const QString& text) {
  const bool fresh = output_->document()->lastBlock().text().isEmpty();
  print((fresh ? QString() : QStringLiteral("\n")) + text + QLatin1Char('\n'));
}

void CommandLine::asked() {
  const Prompt* const prompt = ui_.prompts().prompt();
  const auto [before, question] = parted(qt(prompt->text));
  if (!before.trimmed().isEmpty()) print(before);
  question_->setText(question);
  question_->setStyleSheet(QStringLiteral("font-weight: bold"));
  showKeywords(prompt);
}

void CommandLine::answered() {
  question_->setText(words(u"Comando:"));
  question_->setStyleSheet(QString());
  showKeywords(nullptr);
}

void CommandLine::showKeywords(const Prompt* prompt) {
  while (QLayoutItem* const item = keywords_->takeAt(0)) {
    if (item->widget()) item->widget()->deleteLater();
    delete item;
  }
  QStringList names;
  if (prompt && prompt->kind != Prompt::Kind::command) {
    for (const std::u16string& keyword : prompt->keywords) {
      const QString name = qt(keyword);
      names.push_back(name);
      auto* const button = new QToolButton(this);
      button->setText(name);
      button->setFocusPolicy(Qt::NoFocus);
      keywords_->addWidget(button);
      connect(button, &QToolButton::clicked, this, [this, name] {
        echo(question_->text() + QLatin1Char(' ') + name);
        ui_.prompts().answerText(wide(name));
      });
    }
  }
  completions_->setStringList(prompt ? names : commands_);
}

bool CommandLine::takesBlanks() const {
  const Prompt* const prompt = ui_.prompts().prompt();
  return prompt && prompt->allowBlanks && !input_->text().isEmpty();
}

void CommandLine::enter() {
  const QString text = input_->text();
  input_->clear();
  if (!text.trimmed().isEmpty() && (typed_.isEmpty() || typed_.last() != text))
    typed_.push_back(text);
  recalled_ = typed_.size();
  if (ui_.prompts().prompt()) {
    echo(question_->text() + QLatin1Char(' ') + text);
    if (text.isEmpty()) return ui_.prompts().enter();
    return ui_.prompts().answerText(wide(text));
  }
  if (text.trimmed().isEmpty()) return runner_.repeat();
  echo(words(u"Comando:") + QLatin1Char(' ') + text);
  runner_.start(wide(text.trimmed()));
}

void CommandLine::escape() {
  if (!input_->text().isEmpty()) return input_->clear();
  if (!ui_.prompts().prompt()) return;
  echo(question_->text() + QLatin1Char(' ') + words(u"*annullato*"));
  ui_.prompts().escape();
}

void CommandLine::recall(int step) {
  if (typed_.isEmpty()) return;
  recalled_ = std::clamp<qsizetype>(recalled_ + step, 0, typed_.size());
  input_->setText(recalled_ < typed_.size() ? typed_[recalled_] : QString());
}

bool CommandLine::eventFilter(QObject* watched, QEvent* event) {
  if (watched != input_ || event->type() != QEvent::KeyPress)
    return QWidget::eventFilter(watched, event);
  auto* const key = static_cast<QKeyEvent*>(event);
  switch (key->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      enter();
      return true;
    case Qt::Key_Space:
      if (takesBlanks()) return false;
      enter();
      return true;
    case Qt::Key_Escape:
      escape();
      return true;
    case Qt::Key_Up:
      recall(-1);
      return true;
    case Qt::Key_Down:
      recall(1);
      return true;
    case Qt::Key_Tab:
      // The first completion, as shells have it.
      input_->completer()->setCompletionPrefix(input_->text());
      if (input_->completer()->completionCount() > 0) {
        input_->setText(input_->completer()->currentCompletion());
      }
      return true;
    default:
      return false;
  }
}

void CommandLine::takeKey(QKeyEvent* event) {
  const bool own = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                   event->key() == Qt::Key_Escape || event->key() == Qt::Key_Up ||
                   event->key() == Qt::Key_Down || event->key() == Qt::Key_Tab ||
                   event->key() == Qt::Key_Space;
  if (own) {
    eventFilter(input_, event);
    return;
  }
  const bool plain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
  if (event->key() == Qt::Key_Backspace) {
    input_->backspace();
  } else if (plain && !event->text().isEmpty() && event->text().at(0).isPrint()) {
    input_->insert(event->text());
  } else {
    event->ignore();
  }
}

}  // namespace desktop
