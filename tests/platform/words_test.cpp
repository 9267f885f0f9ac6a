// Which language texts come in, and that the English catalogue is used whole.
#include "platform/words.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <map>

namespace {

// The variables that choose a language, as the test wants them; as they were behind it.
class Words : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : kNames) {
      if (const char* value = std::getenv(name)) before_[name] = value;
      unsetenv(name);
    }
  }
  void TearDown() override {
    for (const char* name : kNames) {
      unsetenv(name);
      if (before_.contains(name)) setenv(name, before_[name].c_str(), 1);
    }
  }

 private:
  static constexpr std::array kNames = {"VESSORA_LANG", "LC_ALL", "LC_MESSAGES", "LANG"};
  std::map<std::string, std::string> before_;
};

TEST_F(Words, TheFirstVariableThatIsSetDecides) {
  EXPECT_TRUE(platform::isItalian()) << "no locale: texts as they stand in the sources";
  setenv("LANG", "en_US.UTF-8", 1);
  EXPECT_EQ(platform::language(), "en");
  setenv("LANG", "it_IT.UTF-8", 1);
  EXPECT_TRUE(platform::isItalian());
  setenv("LC_MESSAGES", "de_DE.UTF-8", 1);
  EXPECT_EQ(platform::language(), "en");
  setenv("LC_MESSAGES", "", 1);
  EXPECT_TRUE(platform::isItalian()) << "an empty variable is none";
  setenv("LANG", "en_US.UTF-8", 1);
  for (const char* none : {"C", "C.UTF-8", "POSIX"}) {
    setenv("LC_ALL", none, 1);
    EXPECT_TRUE(platform::isItalian()) << none;
  }
  setenv("VESSORA_LANG", "it", 1);
  EXPECT_TRUE(platform::isItalian());
  setenv("VESSORA_LANG", "en_GB.UTF-8@euro", 1);
  EXPECT_EQ(platform::language(), "en_GB");
  setenv("VESSORA_LANG", "../../etc/en", 1);
  EXPECT_TRUE(platform::isItalian()) << "it becomes part of a path";
}

TEST_F(Words, TextsComeInTheLanguageOfTheMoment) {
  setenv("LANG", "en_US.UTF-8", 1);
  EXPECT_EQ(platform::words("Opzioni"), "Options");
  EXPECT_EQ(platform::words(u"Opzioni"), u"Options");
  EXPECT_EQ(platform::words("testo di nessuno"), "testo di nessuno");
  setenv("VESSORA_LANG", "en_GB", 1);
  EXPECT_EQ(platform::words("Opzioni"), "Options") << "a region has the words of its language";
  setenv("VESSORA_LANG", "xx", 1);
  EXPECT_EQ(platform::words("Opzioni"), "Opzioni") << "a language without a catalogue";
  setenv("VESSORA_LANG", "it", 1);
  EXPECT_EQ(platform::words("Opzioni"), "Opzioni");
}

}  // namespace
