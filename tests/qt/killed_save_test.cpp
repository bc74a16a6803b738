// SPDX-License-Identifier: GPL-3.0-or-later
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <chrono>
#include <csignal>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "qt/numbered_save.h"

namespace brelant {
namespace {

using namespace test;
using std::chrono::microseconds;

/// The whole file of that save, byte for byte (docs/memory-maps.md, Settings files); its selection may be
/// another's.
QByteArray FileOf(unsigned number, unsigned marks) {
  constexpr int kPad = 30;
  QByteArray blocks;
  const auto begin = [&](int type, int size) {
    for (const int byte : {type, 0, size % 256, size / 256}) blocks.append(static_cast<char>(byte));
  };
  begin(10, 512);
  for (std::size_t i = 0; i < kEepromBytes; ++i) blocks.append(static_cast<char>(EepromByte(number, i)));
  begin(15, 542);
  blocks.append(kPad, '\0');
  for (std::size_t i = 0; i < kEepromBytes; ++i) blocks.append(static_cast<char>(MarkByte(marks, i)));

  unsigned sum = 0;
  for (const char byte : blocks) sum += static_cast<unsigned char>(byte);
  QByteArray file;
  for (const auto byte : {1U, sum % 256, sum / 256 % 256, 1062U % 256, 1062U / 256, 2U}) {
    file.append(static_cast<char>(byte));
  }
  file.append(11, '\0');
  return file + blocks;
}

QByteArray FileOf(unsigned number) {
  return FileOf(number, number);
}

QByteArray Content(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class SavedFolder : public ::testing::Test {
 protected:
  QString Path(const QString& name = "a.set") const { return folder_.filePath(name); }
  std::string Told(const QString& name = "a.set") const {
    return Path(name).replace('/', "\\").toStdString();
  }
  QStringList Entries() const {
    return QDir(folder_.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
  }

  void ExpectFile(const QByteArray& expected) const {
    const auto content = Content(Path());
    EXPECT_TRUE(content == expected) << content.size() << " bytes";
  }

  QTemporaryDir folder_;
};

/// A program that saves over and over, and is killed. It shows what a crash does, not what a power cut does
/// to what the system has not yet put on the disk.
class KilledSaveTest : public SavedFolder {
 protected:
  KilledSaveTest() {
    loop_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    loop_.start(BRELANT_SAVE_LOOP, {});
  }
  ~KilledSaveTest() override {
    loop_.closeWriteChannel();
    if (!loop_.waitForFinished()) loop_.kill();
  }

  struct Death {
    /// Saves that were completed, counted from the first worker on.
    unsigned done;
    bool saving;
  };

  /// Starts a worker and kills it after that time.
  void Kill(const QByteArray& how, microseconds after, Death& death) {
    loop_.write(how + ' ' + Path().toUtf8() + '\n');
    const auto worker = Line().toInt();
    ASSERT_GT(worker, 0);
    std::this_thread::sleep_for(after);
    ASSERT_EQ(::kill(worker, SIGKILL), 0);
    const auto words = Line().split(' ');
    ASSERT_EQ(words.size(), 2);
    ASSERT_NE(words[1].toInt(), -1) << "a save failed";
    death = {words[0].toUInt(), words[1].toInt() == 1};
  }
  QByteArray Line() {
    while (!loop_.canReadLine() && loop_.waitForReadyRead()) {
    }
    return loop_.readLine().trimmed();
  }

  /// Files beside the one that is saved.
  QStringList Leftovers() const {
    auto entries = Entries();
    entries.removeAll("a.set");
    return entries;
  }
  /// Nobody who looks for settings or simulations must find a file that was left behind.
  void ExpectUnmistakable(const QStringList& leftovers) const {
    for (const auto& name : leftovers) {
      EXPECT_FALSE(name.endsWith(".set", Qt::CaseInsensitive)) << name.toStdString();
      EXPECT_FALSE(name.endsWith(".sim", Qt::CaseInsensitive)) << name.toStdString();
    }
  }

 private:
  QProcess loop_;
};

TEST_F(KilledSaveTest, AKilledSaveLeavesTheOldFileOrTheNewOne) {
  constexpr int kKills = 300;
  int inTheMiddle = 0;
  unsigned done = 0;
  QByteArray before;
  for (int i = 0; i < kKills; ++i) {
    Death death{};
    // From at once to 7 ms, in steps that fall nowhere twice.
    ASSERT_NO_FATAL_FAILURE(Kill("again", microseconds(i * 1237 % 7001), death));
    inTheMiddle += death.saving ? 1 : 0;
    const auto content = Content(Path());
    const bool isOld = content == (death.done == done ? before : FileOf(death.done));
    const bool isNew = death.saving && content == FileOf(death.done + 1);
    ASSERT_TRUE(isOld || isNew) << "kill " << i << " in save " << death.done + 1 << ": " << content.size()
                                << " bytes";
    done = death.done;
    before = content;
  }
  EXPECT_GT(done, 0U);
  EXPECT_GT(inTheMiddle, kKills / 10);
  const auto leftovers = Leftovers();
  ExpectUnmistakable(leftovers);
  EXPECT_LE(leftovers.size(), inTheMiddle);
  RecordProperty("inTheMiddle", inTheMiddle);
  RecordProperty("leftovers", static_cast<int>(leftovers.size()));
}

TEST_F(KilledSaveTest, AKilledFirstSaveLeavesNoFileOrAWholeOne) {
  constexpr int kKills = 100;
  int none = 0;
  for (int i = 0; i < kKills; ++i) {
    Death death{};
    ASSERT_NO_FATAL_FAILURE(Kill("first", microseconds(i * 1237 % 3001), death));
    if (!QFile::exists(Path())) {
      ++none;
      continue;
    }
    const auto content = Content(Path());
    ASSERT_TRUE(content == FileOf(death.done) || content == FileOf(death.done + 1)) << "kill " << i;
    ASSERT_TRUE(QFile::remove(Path()));
  }
  EXPECT_GT(none, 0);
  ExpectUnmistakable(Leftovers());
}

// Saves that fail

/// No file of this process may grow beyond that size: to whoever writes, a full disk.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, signal_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit before_{};
  void (*signal_)(int);
};

class RealSaveTest : public SavedFolder {
 protected:
  /// Saves in both ways, and none of them succeeds.
  void ExpectFailure(const std::string& path) {
    EXPECT_FALSE(saver_.Save(path, 2)) << path;
    EXPECT_FALSE(saver_.SaveSettings(path, 2)) << path;
  }

  NumberedSaver saver_;
};

TEST_F(RealSaveTest, OnAFullDiskTheOldFileStays) {
  ASSERT_TRUE(saver_.Save(Told(), 1));
  // A file is 1079 bytes.
  for (const rlim_t room : {0U, 1U, 500U, 1078U}) {
    bool anew = false;
    bool again = false;
    {
      const FullDisk full(room);
      again = saver_.Save(Told(), 2);
      anew = saver_.Save(Told("b.set"), 2);
    }
    EXPECT_FALSE(again) << room;
    EXPECT_FALSE(anew) << room;
    ExpectFile(FileOf(1));
    EXPECT_EQ(Entries(), QStringList{"a.set"}) << room;
  }
  EXPECT_TRUE(saver_.Save(Told(), 2));
  ExpectFile(FileOf(2));
}

TEST_F(RealSaveTest, ANameThatIsAFolderStaysAFolder) {
  ASSERT_TRUE(QDir(folder_.path()).mkdir("a.set"));
  ExpectFailure(Told());
  EXPECT_EQ(Entries(), QStringList{"a.set"});
  EXPECT_TRUE(QDir(Path()).isEmpty());
}

TEST_F(RealSaveTest, AFolderThatIsAFileOrNotThereTakesNoFile) {
  ASSERT_TRUE(saver_.Save(Told(), 1));
  ExpectFailure(Told() + "\\b.set");
  ExpectFailure(Told("none") + "\\b.set");
  ExpectFile(FileOf(1));
  EXPECT_EQ(Entries(), QStringList{"a.set"});
}

TEST_F(RealSaveTest, AFolderThatTakesNoFilesEvenFromTheSuperuserTakesNone) {
  ExpectFailure("\\proc\\a.set");
  EXPECT_FALSE(QFile::exists("/proc/a.set"));
}

TEST_F(RealSaveTest, ARewrittenBlockKeepsItsPlaceAndTheOtherBlock) {
  ASSERT_TRUE(saver_.Save(Told(), 1));
  for (unsigned number = 2; number < 20; ++number) {
    ASSERT_TRUE(saver_.SaveSettings(Told(), number));
    ExpectFile(FileOf(number, 1));
    EXPECT_EQ(Entries(), QStringList{"a.set"});
  }
}

}  // namespace
}  // namespace brelant
