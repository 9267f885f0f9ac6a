// Commands in a window: they wait for answers while events go on, and one ends before the next.
#include "apps/desktop/command_runner.h"

#include <gtest/gtest.h>

#include <vector>

#include "apps/desktop/qt_frontend.h"
#include "cad/api/editor.h"
#include "cad/editor/commands.h"
#include "cad/editor/session.h"
#include "tests/desktop/drive.h"

namespace desktop {
namespace {

class CommandRunnerTest : public testing::Test {
 protected:
  void SetUp() override {
    cad::Session& session = cad::Session::instance();
    session.setFrontend(&ui_);
    cad::addHostCommands(session);
    session.newDrawing();
    add(u"CHIEDI", [this] {
      double value = 0;
      asked_.push_back(acedGetReal(u"\nValore: ", value));
      values_.push_back(value);
    });
    // Asks on and on, whatever comes back.
    add(u"INSISTI", [this] {
      for (;;) {
        double value = 0;
        asked_.push_back(acedGetReal(u"\nAncora: ", value));
      }
    });
  }
  void TearDown() override {
    cad::Session::instance().closeDrawing();
    cad::Session::instance().removeGroup(u"PROVA", 0);
    cad::Session::instance().setFrontend(nullptr);
  }
  static void add(std::u16string_view name, std::function<void()> body) {
    cad::Command command;
    command.group = u"PROVA";
    command.globalName = command.localName = name;
    command.function = std::move(body);
    cad::Session::instance().addCommand(std::move(command));
  }

  Step asked(std::u16string_view text, std::function<void()> act) {
    return {"a question",
            [this, text] {
              const cad::ui::Prompt* const prompt = ui_.prompts().prompt();
              return prompt && prompt->text == text;
            },
            std::move(act)};
  }
  void take(std::vector<Step> steps) {
    drive(
        std::move(steps), [this] { return !runner_.busy(); }, [this] { runner_.abandon(); });
  }

  QtFrontend ui_;
  CommandRunner runner_{ui_.prompts()};
  std::vector<int> asked_;
  std::vector<double> values_;
};

TEST_F(CommandRunnerTest, WaitsForAnAnswerWhileEventsGoOn) {
  runner_.start(u"CHIEDI");
  take({asked(u"\nValore: ",
              [this] {
                EXPECT_TRUE(runner_.running());
                ui_.prompts().answerText(u"nessun numero");
              }),
        asked(u"\nValore: ", [this] { ui_.prompts().answerText(u"12.5"); })});
  EXPECT_EQ(values_, std::vector<double>{12.5});
}

TEST_F(CommandRunnerTest, ASecondCommandEndsTheFirstEvenIfItAsksOn) {
  runner_.start(u"INSISTI");
  take({asked(u"\nAncora: ", [this] { runner_.start(u"CHIEDI"); }),
        asked(u"\nValore: ", [this] { ui_.prompts().enter(); })});
  EXPECT_EQ(asked_, std::vector<int>{RTNONE});
  runner_.repeat();
  take({asked(u"\nValore: ", [this] { runner_.abandon(); })});
  EXPECT_FALSE(ui_.ended());
}

}  // namespace
}  // namespace desktop
