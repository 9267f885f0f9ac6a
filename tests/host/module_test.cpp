// The plug-in as its host meets it: the real vessora.arx, loaded beside real translator libraries.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "cad/editor/session.h"
#include "module/jobs.h"
#include "platform/text.h"

namespace fs = std::filesystem;

namespace {

// Takes down what the module says and answers nothing else.
class Recorder : public cad::ui::Frontend {
 public:
  std::vector<std::u16string> messages;
  std::u16string printed;
  void print(std::u16string_view text) override { printed += text; }

 protected:
  void showDialog(cad::ui::Dialog&) override {}
  cad::ui::Pressed showMessage(const cad::ui::Message& m) override {
    messages.push_back(m.text);
    return cad::ui::defaultAnswer(m.buttons);
  }
  std::optional<std::u16string> showFileQuestion(const cad::ui::FileQuestion&) override {
    return {};
  }
  cad::ui::Answer showPrompt(const cad::ui::Prompt&) override {
    return {cad::ui::Answer::Status::cancel, u""};
  }
  void showInvalid(std::u16string_view) override {}
};

// A folder with a copy of the module, and of a translator that lacks function `missing` (-1: none
// there).
class ModuleFolder {
 public:
  explicit ModuleFolder(int missing) {
    std::string made = (fs::temp_directory_path() / "vessora module XXXXXX").string();
    if (!mkdtemp(made.data())) throw std::runtime_error(made + ": cannot be made");
    folder_ = made;
    fs::copy_file(VESSORA_ARX, folder_ / "vessora.arx");
    if (missing >= 0) {
      fs::copy_file(std::string(VESSORA_BROKEN) + std::to_string(missing) + ".so",
                    folder_ / "HNTranslatorDll.dll");
    }
  }
  ~ModuleFolder() { fs::remove_all(folder_); }
  std::string module() const { return (folder_ / "vessora.arx").string(); }
  std::string translator() const { return (folder_ / "HNTranslatorDll.dll").string(); }

 private:
  fs::path folder_;
};

class ModuleTest : public ::testing::Test {
 protected:
  void SetUp() override { session.setFrontend(&ui); }
  void TearDown() override {
    session.closeDrawing();
    session.unloadModules();
    session.setFrontend(nullptr);
    session.symbols.clear();
  }
  bool load(const ModuleFolder& folder) {
    auto loaded = session.loadModule(folder.module());
    error = loaded ? "" : loaded.error();
    for (const char* name : {"expinp", "impinp", "netvis"}) {
      if (loaded) session.addExport(*loaded, u"VESSORA", {platform::widen(name), name, u""});
    }
    return static_cast<bool>(loaded);
  }
  template <class Function>
  Function* get(const char* name) {
    return session.moduleFunction<Function>(name);
  }
  Recorder ui;
  cad::Session& session = cad::Session::instance();
  std::string error;
};

TEST_F(ModuleTest, WithoutTranslatorTheLoadFailsAndNamesTheFile) {
  const ModuleFolder folder(-1);
  EXPECT_FALSE(load(folder));
  ASSERT_EQ(ui.messages.size(), 1U);
  EXPECT_EQ(platform::narrow(ui.messages[0]).find("Error while loading "), 0U);
  EXPECT_NE(platform::narrow(ui.messages[0]).find("HNTranslatorDll.dll"), std::string::npos);
  EXPECT_EQ(session.commands().count(u"EXPINP"), 0U);
}

TEST_F(ModuleTest, EachMissingFunctionButTheLastStopsTheLoadWithItsNumber) {
  for (int missing = 1; missing <= 7; ++missing) {
    ui.messages.clear();
    EXPECT_FALSE(load(ModuleFolder(missing))) << missing;
    ASSERT_EQ(ui.messages.size(), 1U) << missing;
    EXPECT_EQ(platform::narrow(ui.messages[0]), "Error while creating imported function " +
                                                    std::to_string(missing) +
                                                    " from HNTranslatorDll.dll.");
  }
  ui.messages.clear();
  EXPECT_TRUE(load(ModuleFolder(8)));
  EXPECT_TRUE(ui.messages.empty());
}

TEST_F(ModuleTest, ATextGoesThroughTheTranslatorThatStandsBesideTheModule) {
  const ModuleFolder folder(0);
  ASSERT_TRUE(load(folder)) << error;
  session.setSymbol(u"hn-cpath", u"/nowhere\\");
  session.newDrawing();
  session.run(u"expinp");
  ASSERT_EQ(ui.messages.size(), 1U);
  EXPECT_EQ(ui.messages[0], u"non esiste alcuna rete!");
}

TEST_F(ModuleTest, ATranslatorLoadedByOthersIsUsedAndLeftAlone) {
  const ModuleFolder folder(0);
  void* ours = dlopen(folder.translator().c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(ours, nullptr) << dlerror();
  const ModuleFolder alone(-1);  // nothing beside the module: it must find the one in the process
  EXPECT_TRUE(load(alone)) << error;
  session.unloadModules();
  void* still = dlopen("HNTranslatorDll.dll", RTLD_NOLOAD | RTLD_NOW);
  EXPECT_NE(still, nullptr);
  if (still) dlclose(still);
  dlclose(ours);
}

TEST_F(ModuleTest, HostMessagesAreAnswered) {
  const ModuleFolder folder(0);
  ASSERT_TRUE(load(folder)) << error;
  auto* entry = get<AcRx::AppRetCode(AcRx::AppMsgCode, void*)>("acrxEntryPoint");
  ASSERT_NE(entry, nullptr);
  for (const int message : {3, 4, 9, 5, 6, 7, 12345}) {
    EXPECT_EQ(entry(static_cast<AcRx::AppMsgCode>(message), nullptr), AcRx::kRetOK) << message;
  }
  // The second of the two teardown messages does nothing.
  EXPECT_EQ(entry(AcRx::kUnloadAppMsg, nullptr), AcRx::kRetOK);
  EXPECT_EQ(entry(AcRx::kQuitMsg, nullptr), AcRx::kRetOK);
}

// Stands where the module wants to put its jobs.
class Squatter : public AcRxObject {};

TEST_F(ModuleTest, JobsAreThereWhileTheModuleIs) {
  using vessora::Jobs;
  EXPECT_EQ(Jobs::find(), nullptr);
  {
    const ModuleFolder folder(0);
    ASSERT_TRUE(load(folder)) << error;
    Jobs* const jobs = Jobs::find();
    ASSERT_NE(jobs, nullptr);
    EXPECT_EQ(jobs->commands().size(), 15U);
    for (const vessora::CommandRow& row : jobs->commands()) {
      EXPECT_NE(get<void()>(row.symbol.c_str()), nullptr) << row.symbol;
      EXPECT_FALSE(row.help.empty());
    }
    session.unloadModules();
  }
  EXPECT_EQ(Jobs::find(), nullptr);
  // Another's object under the name is not taken for the jobs, and does not keep the module out.
  Squatter other;
  ASSERT_TRUE(acrxSysRegistry()->atPut(Jobs::kService, &other));
  const ModuleFolder folder(0);
  EXPECT_TRUE(load(folder)) << error;
  EXPECT_EQ(Jobs::find(), nullptr);
  session.unloadModules();
  EXPECT_EQ(acrxSysRegistry()->remove(Jobs::kService), &other);
}

TEST_F(ModuleTest, VersionAndModuleObject) {
  const ModuleFolder folder(0);
  ASSERT_TRUE(load(folder)) << error;
  for (const char* name : {"acrxGetApiVersion", "odrxGetAPIVersion"}) {
    auto* version = get<void(std::int32_t*, std::int32_t*, std::int32_t*, std::int32_t*)>(name);
    std::int32_t v[4] = {-1, -1, -1, -1};
    version(&v[0], &v[1], &v[2], &v[3]);
    EXPECT_EQ(v[0], 23);
    EXPECT_EQ(v[1], 2);
    EXPECT_EQ(v[2], 0);
    EXPECT_EQ(v[3], 0);
  }
  auto* create = get<OdRxModule*(void*&)>("odrxCreateModuleObject");
  int a = 0, b = 0;
  void *first = &a, *second = &b;
  OdRxModule* object = create(first);
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(first, nullptr);  // the object took the handle over
  EXPECT_EQ(object->sysData(), &a);
  EXPECT_EQ(create(second), object);
  EXPECT_EQ(second, &b);  // the second handle stays with its caller
}

TEST_F(ModuleTest, WithoutRootPathOrDrawingACommandDoesNothing) {
  const ModuleFolder folder(0);
  ASSERT_TRUE(load(folder)) << error;
  session.newDrawing();
  session.run(u"expinp");
  EXPECT_TRUE(ui.messages.empty());  // no hn-cpath: not a word
  session.closeDrawing();
  session.setSymbol(u"hn-cpath", u"/nowhere\\");
  void* before = afxResourceHandle();
  session.run(u"expinp");
  EXPECT_TRUE(ui.messages.empty());
  EXPECT_NE(afxResourceHandle(), before);  // left on the module when there is no drawing
  afxSetResourceHandle(before);
  session.newDrawing();
  session.run(u"expinp");
  EXPECT_EQ(ui.messages.size(), 1U);
  EXPECT_EQ(afxResourceHandle(), before);
  EXPECT_EQ(session.takeLeaks(), "");
}

}  // namespace
