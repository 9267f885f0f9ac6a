// A session with the host's commands, a drawing in it and a user with prepared answers.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cad/api/owners.h"
#include "cad/drawing/drawing.h"
#include "cad/editor/commands.h"
#include "platform/text.h"
#include "tests/cad/drawing_testing.h"
#include "tests/editor/answering.h"
#include "tests/platform/scratch_folder.h"

class EditorTest : public platform::ScratchFolder {
 protected:
  using Texts = std::deque<std::u16string>;

  void SetUp() override {
    ScratchFolder::SetUp();
    session.setFrontend(&ui);
    cad::addHostCommands(session);
    session.newDrawing();
  }
  void TearDown() override {
    EXPECT_EQ(session.takeLeaks(), "");
    session.removeGroup(u"PROVA", 0);
    session.closeDrawing();
    session.setFrontend(nullptr);
    session.variables.clear();
    session.symbols.clear();
    ScratchFolder::TearDown();
  }
  cad::Drawing& drawing() { return session.database()->drawing(); }
  // Runs a command with answers; what it printed.
  std::u16string run(std::u16string_view command, Texts answers = {}) {
    ui.answers = std::move(answers);
    ui.printed.clear();
    ui.messages.clear();
    ui.complaints.clear();
    EXPECT_NE(session.run(command), cad::RunResult::unknown);
    return ui.printed;
  }
  void addCommand(std::u16string_view name, std::function<void()> body) {
    ASSERT_TRUE(session.addCommand(
        {u"PROVA", std::u16string(name), std::u16string(name), 0, std::move(body), u""}));
  }
  void drawLine(const AcGePoint3d& a, const AcGePoint3d& b) {
    const cad::Opened<AcDbLine> line(new AcDbLine(a, b));
    ASSERT_FALSE(testing_drawings::append(*session.database(), line.get()).isNull());
  }
  void openBytes(const std::string& bytes) {
    ASSERT_TRUE(platform::writeFile(at("disegno.dxf"), bytes));
    std::vector<std::string> warnings;
    const auto opened = session.openDrawing(at("disegno.dxf"), warnings);
    ASSERT_TRUE(opened) << opened.error();
  }

  Answering ui;
  cad::Session& session = cad::Session::instance();
};
