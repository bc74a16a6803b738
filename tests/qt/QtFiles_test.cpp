// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/QtFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

#include "platform/machine_error.h"

namespace brelant {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kAll = 1000;

/// The superuser reads everything, so a test of permissions must be somebody else for a while.
class AsNobody {
 public:
#ifdef Q_OS_UNIX
  AsNobody() : wasRoot_(geteuid() == 0 && seteuid(kNobody) == 0) {}
  ~AsNobody() {
    if (wasRoot_ && seteuid(0) != 0) std::abort();
  }

 private:
  static constexpr uid_t kNobody = 65534;
  bool wasRoot_;
#else
  AsNobody() = default;
#endif
 public:
  AsNobody(const AsNobody&) = delete;
  AsNobody& operator=(const AsNobody&) = delete;
};

class QtFilesTest : public ::testing::Test {
 protected:
  std::string In(const std::string& name) const { return folder_.path().toStdString() + "\\\\" + name; }
  QString Plain(const std::string& name) const { return folder_.filePath(QString::fromStdString(name)); }

  void Put(const std::string& name, const QByteArray& content) const {
    QFile file(Plain(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(content), content.size());
  }
  QByteArray Content(const std::string& name) const {
    QFile file(Plain(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
  }
  void MakeFolder(const std::string& name) const { ASSERT_TRUE(QDir(folder_.path()).mkdir(Plain(name))); }
  QStringList Entries() const {
    return QDir(folder_.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
  }

  QTemporaryDir folder_;
  QtFiles files_;
};

TEST_F(QtFilesTest, ReadsAtMostTheLimit) {
  Put("a.bin", QByteArray("\x00\xff\x0d\x0a\x1a", 5));
  EXPECT_EQ(files_.Read(In("a.bin"), kAll), (Bytes{0, 255, 13, 10, 26}));
  EXPECT_EQ(files_.Read(In("a.bin"), 2), (Bytes{0, 255}));
}

TEST_F(QtFilesTest, ReadsAnEmptyFile) {
  Put("empty", "");
  EXPECT_THAT(files_.Read(In("empty"), kAll), IsEmpty());
}

TEST_F(QtFilesTest, ReadingWhatIsNoReadableFileThrows) {
  MakeFolder("DEF00231.PDT");
  EXPECT_THROW(files_.Read(In("DEF00231.PDT"), kAll), MachineError);
  EXPECT_THROW(files_.Read(In("missing"), kAll), MachineError);
}

TEST_F(QtFilesTest, ReadingAFileWithoutPermissionThrows) {
  Put("closed", "x");
  ASSERT_TRUE(QFile::setPermissions(Plain("closed"), QFileDevice::WriteOwner));
  const AsNobody nobody;
  EXPECT_THROW(files_.Read(In("closed"), kAll), MachineError);
}

TEST_F(QtFilesTest, AFolderExistsToo) {
  MakeFolder("folder");
  Put("def00104.pdt", "x");
  EXPECT_TRUE(files_.Exists(In("folder")));
  EXPECT_TRUE(files_.Exists(In("DEF00104.PDT")));
  EXPECT_FALSE(files_.Exists(In("missing")));
}

TEST_F(QtFilesTest, WritesTheWholeFileAndNothingBesideIt) {
  Put("a.set", "a longer content that was there before");
  files_.Write(In("a.set"), Bytes{0, 13, 10, 255});
  EXPECT_EQ(Content("a.set"), QByteArray("\x00\x0d\x0a\xff", 4));
  EXPECT_EQ(Entries(), QStringList{"a.set"});
}

TEST_F(QtFilesTest, LastSettingsAreOneFile) {
  files_.Write(In("Last.set"), Bytes{1});
  files_.Write(In("last.set"), Bytes{2});
  EXPECT_EQ(files_.Read(In("LAST.set"), kAll), Bytes{2});
  EXPECT_EQ(Entries(), QStringList{"last.set"});
  files_.Remove(In("Last.set"));
  EXPECT_FALSE(files_.Exists(In("last.set")));
}

// Whoever opened the old file before goes on reading it: the new content is another file, which took its
// name.
TEST_F(QtFilesTest, AWriteReplacesTheFileAndNeverItsContent) {
  Put("a.set", "old");
  QFile old(Plain("a.set"));
  ASSERT_TRUE(old.open(QIODevice::ReadOnly));
  files_.Write(In("a.set"), Bytes{'n', 'e', 'w'});
  EXPECT_EQ(old.readAll(), "old");
  EXPECT_EQ(Content("a.set"), "new");
}

TEST_F(QtFilesTest, AFailedWriteLeavesTheOldFile) {
  MakeFolder("folder");
  EXPECT_THROW(files_.Write(In("folder"), Bytes{1}), MachineError);
  EXPECT_THROW(files_.Write(In("none\\a.set"), Bytes{1}), MachineError);
  EXPECT_EQ(Entries(), QStringList{"folder"});
}

TEST_F(QtFilesTest, AWriteDoesNotTouchAFileOfAnotherCase) {
  Put("vega.set", "kept");
  files_.Write(In("Vega.set"), Bytes{'n'});
  EXPECT_EQ(Content("vega.set"), "kept");
  EXPECT_EQ(Content("Vega.set"), "n");
}

TEST_F(QtFilesTest, RemovesWhatExistsAndThrowsForWhatDoesNot) {
  Put("a", "");
  files_.Remove(In("a"));
  EXPECT_THAT(Entries(), IsEmpty());
  EXPECT_THROW(files_.Remove(In("a")), MachineError);
}

TEST_F(QtFilesTest, ListsFilesByName) {
  Put("b.sim", "");
  Put("Vega 3.sim", "");
  Put("a.sim", "");
  MakeFolder("folder.sim");
  EXPECT_THAT(files_.List(In("")), ElementsAre("Vega 3.sim", "a.sim", "b.sim"));
}

TEST_F(QtFilesTest, ListsNothingForWhatIsNoFolder) {
  Put("a", "");
  EXPECT_THAT(files_.List(In("a")), IsEmpty());
  EXPECT_THAT(files_.List(In("missing")), IsEmpty());
}

TEST_F(QtFilesTest, TheLogGrowsByLines) {
  files_.OpenLog(In("ComLogg.txt"))->PrintLine("one\r\n two");
  files_.OpenLog(In("ComLogg.txt"))->PrintLine("three");
#ifdef Q_OS_WIN
  EXPECT_EQ(Content("ComLogg.txt"), "one\r\n two\r\nthree\r\n");
#else
  EXPECT_EQ(Content("ComLogg.txt"), "one\r\n two\nthree\n");
#endif
}

TEST_F(QtFilesTest, ALogThatCannotBeOpenedThrows) {
  MakeFolder("ComLogg.txt");
  EXPECT_THROW(files_.OpenLog(In("ComLogg.txt")), MachineError);
  EXPECT_THROW(files_.OpenLog(In("none\\ComLogg.txt")), MachineError);
}

}  // namespace
}  // namespace brelant
