// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/QtSettingsStore.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace brelant {
namespace {

class QtSettingsStoreTest : public ::testing::Test {
 protected:
  std::string File() const { return folder_.filePath("store.ini").toStdString(); }
  void Put(const QByteArray& content) const {
    QFile file(folder_.filePath("store.ini"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(content), content.size());
  }
  QByteArray Content() const {
    QFile file(folder_.filePath("store.ini"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
  }
  std::string ReadAgain(const std::string& key) const {
    return QtSettingsStore(File()).Read("BRELANT", "Start", key, "(none)");
  }
  void WriteAndClose(const std::string& key, const std::string& value) const {
    QtSettingsStore(File()).Write("BRELANT", "Start", key, value);
  }

  QTemporaryDir folder_;
};

class KeptTextTest : public QtSettingsStoreTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(KeptTextTest, ComesBackAsItStands) {
  WriteAndClose("Com", GetParam());
  EXPECT_EQ(ReadAgain("Com"), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Texts, KeptTextTest,
                         ::testing::Values("1", "", "True", "/dev/ttyUSB0", "a, b,c", "a;b", "\"quoted\"",
                                           "  leading and trailing  ", "@Invalid()", "C:\\dir\\x", "k=v#c%20",
                                           "\xc3\xa5\xc3\xa4\xc3\xb6", "line\nline"));

TEST_F(QtSettingsStoreTest, AnAbsentKeyGivesTheFallback) {
  const QtSettingsStore store(File());
  EXPECT_EQ(store.Read("BRELANT", "Start", "Com", "1"), "1");
  EXPECT_EQ(store.Read("BRELANT", "Start", "ID", ""), "");
}

TEST_F(QtSettingsStoreTest, ApplicationsAreApart) {
  QtSettingsStore store(File());
  store.Write("BRELANT", "Start", "Dont", "1");
  store.Write("KVX", "Start", "Dont", "0");
  EXPECT_EQ(store.Read("BRELANT", "Start", "Dont", ""), "1");
  EXPECT_EQ(store.Read("KVX", "Start", "Dont", ""), "0");
}

TEST_F(QtSettingsStoreTest, TheFileHasAGroupForEachApplication) {
  WriteAndClose("Com", "2");
  EXPECT_EQ(Content(), "[BRELANT]\nStart\\Com=2\n");
}

TEST_F(QtSettingsStoreTest, ReadsATextWithCommasThatAPersonWrote) {
  Put("[BRELANT]\nStart\\Com=COM1, COM2\n");
  EXPECT_EQ(ReadAgain("Com"), "COM1, COM2");
}

TEST_F(QtSettingsStoreTest, NonsenseIsAnEmptyStoreThatCanBeWritten) {
  QByteArray nonsense;
  for (int i = 0; i < 4096; ++i) nonsense.append(static_cast<char>(i * 167 + i / 256));
  Put(nonsense);
  EXPECT_EQ(ReadAgain("Com"), "(none)");
  WriteAndClose("Com", "3");
  EXPECT_EQ(ReadAgain("Com"), "3");
}

TEST_F(QtSettingsStoreTest, AFolderIsAStoreThatForgets) {
  ASSERT_TRUE(QDir(folder_.path()).mkdir("store.ini"));
  EXPECT_EQ(ReadAgain("Com"), "(none)");
  WriteAndClose("Com", "3");
  EXPECT_EQ(ReadAgain("Com"), "(none)");
}

TEST_F(QtSettingsStoreTest, APlaceThatCannotBeIsAStoreThatForgets) {
  Put("a file");
  const auto below = File() + "/below/store.ini";
  QtSettingsStore(below).Write("BRELANT", "Start", "Com", "3");
  EXPECT_EQ(QtSettingsStore(below).Read("BRELANT", "Start", "Com", "(none)"), "(none)");
}

}  // namespace
}  // namespace brelant
