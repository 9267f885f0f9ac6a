// Dialogs as windows: keys and focus, judging while typing, nesting, messages.
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "apps/desktop/dialogs/run_dialog.h"
#include "tests/desktop/dialog_driver.h"
#include "tests/ui/sample_dialogs.h"

namespace desktop {
namespace {

namespace ui = cad::ui;
using Outcome = ui::Outcome;

QWidget* widgetOf(DialogWindow& window, const ui::Control& control) {
  return window.projectionOf(control)->widget();
}
QString remarkOf(DialogWindow& window, const ui::Control& control) {
  const QLabel* const remark = window.projectionOf(control)->remark();
  return remark->isVisible() ? remark->text() : QString();
}

TEST_F(DialogTest, TabGoesAsTheControlsAreDeclared) {
  sample::PipeDialog dialog;
  QStringList visited;
  play(dialog, {in(u"Ramo"_qs, [&](DialogWindow& window) {
         for (int i = 0; i < 12; ++i) {
           const QString name = window.focusWidget()->objectName();
           if (visited.isEmpty() || visited.back() != name) visited.append(name);
           key(window.focusWidget(), Qt::Key_Tab);  // hour and minute are two stops
         }
         key(&window, Qt::Key_Escape);
       })});
  EXPECT_EQ(visited.join(u'|').toStdString(),
            "Nome del ramo|Abilita|Diametro [mm]|gg|Materiale|Ora iniziale|OK|Annulla|?|"
            "Nome del ramo|Abilita");
}

TEST_F(DialogTest, EnterAndEscEndItAsTheirButtonsDo) {
  sample::PipeDialog pipe;
  pipe.length = 5;
  const auto pressed = [&](std::function<void(DialogWindow&)> act) {
    return play(pipe, {in(u"Ramo"_qs, std::move(act))});
  };
  EXPECT_EQ(pressed([&](DialogWindow& window) {
              typeOver(widgetOf(window, pipe.diameter), u"63.5"_qs);
              key(widgetOf(window, pipe.diameter), Qt::Key_Return);
            }),
            Outcome::ok);
  EXPECT_EQ(pipe.diameter.value(), 63.5);
  EXPECT_EQ(pressed([&](DialogWindow& window) {
              widgetOf(window, pipe.cancel)->setFocus();
              key(widgetOf(window, pipe.cancel), Qt::Key_Return);
            }),
            Outcome::cancel);
  EXPECT_EQ(pressed([&](DialogWindow& window) {
              key(widgetOf(window, pipe.material), Qt::Key_Enter);  // the one of the digits
            }),
            Outcome::ok);
  EXPECT_EQ(pressed([&](DialogWindow& window) { window.close(); }), Outcome::cancel);
  sample::NetworkDialog list;  // names no button for Enter: OK it is
  EXPECT_EQ(play(list, {in(u"Selezionare una rete"_qs,
                           [&](DialogWindow& window) {
                             EXPECT_TRUE(
                                 static_cast<QPushButton*>(widgetOf(window, list.ok))->isDefault());
                             key(widgetOf(window, list.networks), Qt::Key_Down);
                             key(widgetOf(window, list.networks), Qt::Key_Return);
                           })}),
            Outcome::ok);
  EXPECT_EQ(list.networks.shown(), u"Borgo");
}

TEST_F(DialogTest, JudgesNumbersWhileTheyAreTypedAndAgainOnOk) {
  sample::PipeDialog dialog;
  dialog.length = 5;
  const QString complaint = u"Immettere un numero compreso tra 0.0001 e 3000."_qs;
  const auto type = [&](DialogWindow& window, const QString& text) {
    typeOver(widgetOf(window, dialog.diameter), text);
    window.redraw();
    return remarkOf(window, dialog.diameter);
  };
  const Outcome outcome =
      play(dialog, {in(u"Ramo"_qs,
                       [&](DialogWindow& window) {
                         EXPECT_EQ(remarkOf(window, dialog.diameter), QString());
                         EXPECT_EQ(type(window, u"dodici"_qs), u"Immettere un numero."_qs);
                         EXPECT_EQ(type(window, u"12.5"_qs), QString());
                         EXPECT_EQ(type(window, u"5000"_qs), complaint);
                         key(&window, Qt::Key_Return);
                       }),
                    answering(complaint, Qt::Key_Return), in(u"Ramo"_qs, [&](DialogWindow& window) {
                      EXPECT_EQ(window.focusWidget(), widgetOf(window, dialog.diameter));
                      key(window.focusWidget(), Qt::Key_1);  // over the text, which is selected
                      key(window.focusWidget(), Qt::Key_Return);
                    })});
  EXPECT_EQ(outcome, Outcome::ok);
  EXPECT_EQ(dialog.diameter.value(), 1);
}

TEST_F(DialogTest, FollowsWhatTheDialogDoesToItsControls) {
  sample::PipeDialog dialog;
  play(dialog, {in(u"Ramo"_qs, [&](DialogWindow& window) {
         WidgetHand hand(window);
         const auto look = [&] {
           settle(window);
           EXPECT_EQ(differences(window).join(u'\n').toStdString(), "");
         };
         typeOver(widgetOf(window, dialog.name), u"condotta"_qs);
         QTest::keyClicks(widgetOf(window, dialog.name), u"123"_qs);
         EXPECT_EQ(dialog.name.shown(), u"condotta") << "the field takes eight";
         EXPECT_TRUE(hand.press(dialog.custom));
         look();
         EXPECT_TRUE(widgetOf(window, dialog.length)->isEnabled());
         EXPECT_TRUE(hand.enter(dialog.material, u"Ghisa"));
         EXPECT_EQ(static_cast<QComboBox*>(widgetOf(window, dialog.material))->currentText(),
                   u"Ghisa"_qs);
         look();  // it snaps back
         EXPECT_EQ(dialog.chosen, 1);
         dialog.days.setVisible(false);
         dialog.setTitle(u"Condotta");
         dialog.start.set({7, 45});
         look();
         EXPECT_EQ(window.windowTitle(), u"Condotta"_qs);
         EXPECT_TRUE(hand.enter(dialog.start, u"8:30"));
         look();
         QTest::keyClick(widgetOf(window, dialog.start), Qt::Key_Up);
         EXPECT_EQ(dialog.start.shown(), u"08:31");
         look();
         dialog.end(Outcome::cancel);
       })});
}

TEST_F(DialogTest, HidesABoxWithAllThatIsInIt) {
  sample::QueryDialog dialog;
  play(dialog, {in(u"Interroga Rete"_qs, [&](DialogWindow& window) {
         for (ui::Control* control : {static_cast<ui::Control*>(&dialog.flowMin),
                                      static_cast<ui::Control*>(&dialog.flowFilter)})
           control->setVisible(false);
         settle(window);
         for (const GroupBox& box : window.boxes())
           EXPECT_EQ(box.box->isVisible(), box.group != &dialog.flow) << utf8(box.box->title());
         dialog.end(Outcome::cancel);
       })});
}

TEST_F(DialogTest, OpensOthersAndMessagesOverIt) {
  sample::QueryDialog dialog;
  const QString title = u"Interroga Rete"_qs;
  play(dialog, {in(title,
                   [&](DialogWindow& window) {
                     static_cast<QPushButton*>(widgetOf(window, dialog.byMaterial))->click();
                   }),
                in(u"Materiale"_qs, [](DialogWindow& window) { key(&window, Qt::Key_Return); }),
                in(title,
                   [&](DialogWindow& window) {
                     static_cast<QPushButton*>(widgetOf(window, dialog.remove))->click();
                   }),
                answering(u"Cancellare il pattern?"_qs, Qt::Key_Escape),
                in(title,
                   [&](DialogWindow& window) {
                     EXPECT_EQ(dialog.list.count(), 3) << "Esc says no";
                     static_cast<QPushButton*>(widgetOf(window, dialog.remove))->click();
                   }),
                answering(u"Cancellare il pattern?"_qs, Qt::Key_Return),
                in(title, [&](DialogWindow& window) { key(&window, Qt::Key_Escape); })});
  EXPECT_EQ(dialog.material, u"PEAD");
  EXPECT_EQ(dialog.list.count(), 0);
}

TEST_F(DialogTest, MessagesAnswerEnterAndEscAsInATerminal) {
  for (ui::Buttons buttons :
       {ui::Buttons::ok, ui::Buttons::okCancel, ui::Buttons::yesNo, ui::Buttons::yesNoCancel}) {
    for (Qt::Key pressed : {Qt::Key_Return, Qt::Key_Escape}) {
      QStringList shown, meant;
      QTimer::singleShot(0, [&] {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        for (const QAbstractButton* button : box->buttons()) shown.append(button->text());
        key(box, pressed);
      });
      const ui::Pressed answer =
          runMessage({u"Titolo", u"1 < 2 & <b>tre</b>", ui::Icon::question, buttons}, nullptr);
      for (ui::Pressed button : ui::answersOf(buttons)) meant.append(qt(ui::wordOf(button)));
      EXPECT_EQ(shown, meant);
      EXPECT_EQ(answer,
                pressed == Qt::Key_Return ? ui::defaultAnswer(buttons) : ui::escapeAnswer(buttons));
    }
  }
}

}  // namespace
}  // namespace desktop
