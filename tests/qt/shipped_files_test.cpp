// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/shipped_files.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace brelant {
namespace {

void Put(const QString& path, const QByteArray& content) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(content);
}

QByteArray Content(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
}

TEST(ShippedFilesTest, AreCopiedWhereTheyAreMissing) {
  const QTemporaryDir from;
  const QTemporaryDir parent;
  const auto to = parent.filePath("new/BRELANT");
  for (const auto* name : {"DEF00231.PDT", "Vega 3.sim", "help5v0.html", "helpComSet.html", "help.css",
                           "brelant", "last.set", "index.html"}) {
    Put(from.filePath(name), name);
  }
  ASSERT_TRUE(QDir(from.path()).mkpath("Support"));
  for (const auto* name : {"Support/help9.html", "Support/notes.txt"}) Put(from.filePath(name), name);
  CopyShippedFiles(from.path(), to);
  EXPECT_EQ(QDir(to + "/Support").entryList(QDir::Files), QStringList{"help9.html"});
  EXPECT_EQ(QDir(to).entryList(QDir::Files, QDir::Name),
            (QStringList{"DEF00231.PDT", "Vega 3.sim", "help.css", "help5v0.html", "helpComSet.html"}));
  EXPECT_EQ(Content(to + "/Vega 3.sim"), "Vega 3.sim");
}

TEST(ShippedFilesTest, WhatTheUserHasStaysAsItIs) {
  const QTemporaryDir from;
  const QTemporaryDir to;
  Put(from.filePath("Vega 3.sim"), "shipped");
  Put(to.filePath("Vega 3.sim"), "the user's");
  CopyShippedFiles(from.path(), to.path());
  EXPECT_EQ(Content(to.filePath("Vega 3.sim")), "the user's");
}

}  // namespace
}  // namespace brelant
