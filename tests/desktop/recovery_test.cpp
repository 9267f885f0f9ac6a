// Copies of changed drawings: whole or not there, found after a crash, never in the way of a file.
#include "apps/desktop/safety/recovery.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "cad/api/database.h"
#include "platform/files.h"

namespace desktop {
namespace {

class RecoveryTest : public testing::Test {
 protected:
  void SetUp() override {
    qputenv("VESSORA_RECOVERY", folder_.filePath(QStringLiteral("kept")).toUtf8());
    path_ = folder_.filePath(QStringLiteral("paese.dxf"));
    ASSERT_TRUE(database_.drawing().save(path_.toStdString()));
  }
  void TearDown() override { dropCopies(); }
  // As a process that keeps a copy and is killed.
  void crash(const QString& path) {
    const pid_t child = fork();
    if (child == 0) _exit(keepCopy(database_.drawing(), path) ? 0 : 1);
    int status = 1;
    waitpid(child, &status, 0);
    ASSERT_EQ(status, 0);
  }
  static std::string bytes(const QString& path) {
    const auto read = platform::readFile(path.toStdString());
    return read ? *read : std::string();
  }

  QTemporaryDir folder_;
  AcDbDatabase database_;
  QString path_;
};

TEST_F(RecoveryTest, OfAProcessThatLivesNothingIsOffered) {
  ASSERT_TRUE(keepCopy(database_.drawing(), path_));
  EXPECT_TRUE(QFileInfo::exists(path_ + QStringLiteral(".autosave")));
  EXPECT_TRUE(recoveries().empty());
  dropCopies();
  EXPECT_FALSE(QFileInfo::exists(path_ + QStringLiteral(".autosave")));
}

TEST_F(RecoveryTest, ACrashIsOfferedAndTheDrawingBeforeItIsKept) {
  crash(path_);
  const std::string kept = bytes(path_ + QStringLiteral(".autosave"));
  {
    QFile newer(path_);
    ASSERT_TRUE(newer.open(QIODevice::WriteOnly));
    newer.write("di un altro");
    newer.setFileTime(QDateTime::currentDateTime().addSecs(60), QFileDevice::FileModificationTime);
  }
  auto found = recoveries();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].drawing, path_);
  EXPECT_TRUE(found[0].drawingIsNewer);
  const auto recovered = recover(found[0]);
  ASSERT_TRUE(recovered) << recovered.error();
  EXPECT_EQ(*recovered, path_);
  EXPECT_EQ(bytes(path_), kept);
  EXPECT_EQ(bytes(path_ + QStringLiteral(".before-recovery")), "di un altro");
  EXPECT_TRUE(recoveries().empty());
}

TEST_F(RecoveryTest, WithoutItsIndexACopyIsNotWholeAndIsLeftAlone) {
  crash(path_);
  auto found = recoveries();
  ASSERT_EQ(found.size(), 1U);
  QFile::remove(found[0].index);
  EXPECT_TRUE(recoveries().empty());
  EXPECT_TRUE(QFileInfo::exists(found[0].copy));
}

TEST_F(RecoveryTest, ADrawingWithoutANameGetsOne) {
  qputenv("HOME", folder_.path().toUtf8());
  crash(QString());
  auto found = recoveries();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_TRUE(found[0].drawing.isEmpty());
  const auto recovered = recover(found[0]);
  ASSERT_TRUE(recovered) << recovered.error();
  EXPECT_TRUE(recovered->endsWith(QStringLiteral(".dxf")));
  AcDbDatabase again(false);
  std::vector<std::string> warnings;
  EXPECT_TRUE(again.drawing().load(recovered->toStdString(), warnings));
}

}  // namespace
}  // namespace desktop
