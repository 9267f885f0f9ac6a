// A module of others beside the plug-in: both at work, one that goes, one that fails to start.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "cad/drawing/drawing.h"
#include "cad/editor/commands.h"
#include "module/jobs.h"
#include "platform/files.h"
#include "platform/text.h"
#include "tests/editor/answering.h"
#include "tests/module2/second.h"

ACRX_DEFINE(SecondService, AcRxObject)  // as whoever uses a service by its header does

namespace {

using cad::RunResult;
using cad::Session;

class Modules : public ::testing::Test {
 protected:
  void SetUp() override {
    session.setFrontend(&ui);
    cad::addHostCommands(session);
    session.newDrawing();
  }
  void TearDown() override {
    session.closeDrawing();
    session.unloadModules();
    session.setFrontend(nullptr);
  }
  platform::Result<cad::ModuleHandle> load(const std::string& name) {
    return session.loadModule(VESSORA_SECOND + name);
  }
  std::size_t drawn() const { return session.database()->drawing().index().allInSpace().size(); }
  Answering ui;
  Session& session = Session::instance();
};

TEST_F(Modules, ASecondOneWorksBesideThePlugIn) {
  const auto plugIn = session.loadModule(VESSORA_ARX);
  ASSERT_TRUE(plugIn) << plugIn.error();
  const auto second = load("second.arx");
  ASSERT_TRUE(second) << second.error();
  EXPECT_NE(*plugIn, *second);
  EXPECT_TRUE(session.addExport(*plugIn, u"VESSORA", {u"expinp", "expinp", u""}));
  EXPECT_FALSE(session.addExport(*second, u"VESSORA", {u"impinp", "impinp", u""}));
  EXPECT_FALSE(session.addExport(99, u"VESSORA", {u"impinp", "impinp", u""}));
  EXPECT_EQ(session.loadedModules().size(), 2u);

  ui.answers = {u"10,20", u"30,40"};
  EXPECT_EQ(session.run(u"_segno"), RunResult::done);
  EXPECT_EQ(session.run(u"MARK"), RunResult::done);
  EXPECT_EQ(ui.printed, u"\nsegno 1 in 11.0 su SEGNI\nsegno 2 in 31.0 su SEGNI");
  EXPECT_EQ(drawn(), 4u);
  EXPECT_EQ(session.takeLeaks(), "");
  session.run(u"U");
  EXPECT_EQ(drawn(), 2u);
  session.run(u"REDO");
  EXPECT_EQ(drawn(), 4u);
  const auto* service = static_cast<SecondService*>(acrxSysRegistry()->at(u"SecondService"));
  ASSERT_NE(service, nullptr);
  EXPECT_EQ(service->marks(), 2);

  EXPECT_FALSE(load("second.arx")) << "it is there already";
  ASSERT_TRUE(session.unloadModule(*second));
  EXPECT_EQ(session.run(u"MARK"), RunResult::unknown);
  EXPECT_EQ(session.commands().count(u"SEGNO"), 0u);
  EXPECT_EQ(session.commands().count(u"EXPINP"), 1u) << "the other one stays";
  EXPECT_EQ(acrxSysRegistry()->at(u"SecondService"), nullptr);
  EXPECT_EQ(acrxSysRegistry()->at(u"SecondForgotten"), nullptr);
  EXPECT_FALSE(session.unloadModule(*second));
  EXPECT_EQ(drawn(), 4u) << "what it drew stays";
  const auto again = load("second.arx");
  ASSERT_TRUE(again) << again.error();
  EXPECT_NE(*again, *second);
  ui.answers = {u"1,1"};
  EXPECT_EQ(session.run(u"MARK"), RunResult::done);
}

// The program, the host and the plug-in have the code that saves a copy each. A signal in the
// middle of any save (here the one that crosses the limit of the user) finds the file all the same.
TEST_F(Modules, SignalsTakeTheUnfinishedFilesOfAllAway) {
  const std::string folder = ::testing::TempDir() + "unfinished-" + std::to_string(getpid()) + "/";
  std::filesystem::create_directory(folder);
  ASSERT_TRUE(session.loadModule(VESSORA_ARX));
  auto* const jobs = vessora::Jobs::find();
  ASSERT_NE(jobs, nullptr);
  const vessora::InpFile borgo = jobs->openInp(platform::widen(VESSORA_EXAMPLES "borgo.inp"));
  ASSERT_GT(jobs->importInp(borgo, u"borgo", 1).drawn(), 0u);
  for (const bool module : {false, true}) {
    const pid_t child = fork();
    if (child == 0) {
      platform::endTemporaryFilesOnSignals();
      std::signal(SIGXFSZ, [](int) { raise(SIGTERM); });
      const rlimit limit{4096, 4096};
      setrlimit(RLIMIT_FSIZE, &limit);
      if (module) {
        jobs->exportNetwork({u"borgo", platform::widen(folder + "borgo.inp"), u"", 0});
      } else {
        (void)session.database()->drawing().save(folder + "borgo.dxf");
      }
      _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
    EXPECT_TRUE(std::filesystem::is_empty(folder)) << (module ? "plug-in" : "host");
  }
  std::filesystem::remove_all(folder);
}

TEST_F(Modules, OneThatFailsToStartLeavesNothingBehind) {
  const auto failing = load("failing.arx");
  ASSERT_FALSE(failing);
  EXPECT_NE(failing.error().find("failing.arx: il modulo ha rifiutato di avviarsi"),
            std::string::npos);
  EXPECT_TRUE(session.loadedModules().empty());
  EXPECT_EQ(session.run(u"MARK"), RunResult::unknown);
  EXPECT_EQ(acrxSysRegistry()->at(u"SecondForgotten"), nullptr);
  EXPECT_FALSE(load("none.arx"));
  const auto host = session.loadModule(VESSORA_CAD);
  ASSERT_FALSE(host);
  EXPECT_NE(host.error().find("acrxEntryPoint"), std::string::npos);
  EXPECT_TRUE(load("second.arx"));
}

TEST_F(Modules, OneGoesOnlyWhenItMayAndDoesNotRun) {
  const auto staying = load("staying.arx");
  ASSERT_TRUE(staying);
  EXPECT_NE(session.unloadModule(*staying).error().find("non permette"), std::string::npos);
  session.unloadModules();
  EXPECT_TRUE(session.loadedModules().empty()) << "at the end of the program it goes all the same";

  static cad::ModuleHandle second;
  static std::string refusal;
  static std::u16string running;
  second = *load("second.arx");
  static_cast<SecondService*>(acrxSysRegistry()->at(u"SecondService"))->setCallback([] {
    Session& s = Session::instance();
    running = acedGetAppName();
    const auto unloaded = s.unloadModule(second);
    refusal = unloaded ? "" : unloaded.error();
  });
  EXPECT_EQ(session.run(u"CALLBACK"), RunResult::done);
  EXPECT_NE(refusal.find("mentre un suo comando è in corso"), std::string::npos);
  EXPECT_EQ(running, platform::widen(VESSORA_SECOND "second.arx"));
  EXPECT_EQ(session.runningModule(), u"");
  EXPECT_TRUE(session.unloadModule(second));
}

TEST_F(Modules, UsersLoadAndUnloadByCommand) {
  ui.path = platform::widen(VESSORA_SECOND "second.arx");
  session.run(u"CARICAMODULO");
  EXPECT_NE(session.commands().count(u"MARK"), 0u);
  session.run(u"CARICAMODULO");
  ASSERT_EQ(ui.messages.size(), 1u);
  EXPECT_NE(ui.messages[0].find(u"già caricato"), std::u16string::npos);
  ui.answers = {u"altro", u"SECOND.ARX"};
  session.run(u"SCARICAMODULO");
  EXPECT_NE(session.commands().count(u"MARK"), 0u);
  session.run(u"SCARICAMODULO");
  EXPECT_EQ(session.commands().count(u"MARK"), 0u);
  session.run(u"SCARICAMODULO");
  EXPECT_NE(ui.printed.find(u"Nessun modulo caricato"), std::u16string::npos);
}

// What a command forgets is told under its name, and the session goes on.
TEST_F(Modules, WhatACommandForgetsIsToldAndLetGo) {
  ASSERT_TRUE(load("second.arx"));
  ui.answers = {u"1,1"};
  session.run(u"MARK");
  session.run(u"LEAK");
  const std::string left = session.takeLeaks();
  EXPECT_EQ(left.rfind("LEAK left:", 0), 0u) << left;
  EXPECT_NE(left.find("1 object(s) open"), std::string::npos) << left;
  EXPECT_NE(left.find("1 selection set(s)"), std::string::npos) << left;
  EXPECT_EQ(session.liveSelections(), 0);
  ui.answers = {u"2,2"};
  session.run(u"MARK");
  EXPECT_EQ(drawn(), 4u);
}

}  // namespace
