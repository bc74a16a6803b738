// SPDX-License-Identifier: GPL-3.0-or-later
#include "qt/QtSettingsStore.h"

namespace brelant {

namespace {

constexpr auto kOwner = "BRELANT";

QString UsersOwn() {
  return QSettings(QSettings::IniFormat, QSettings::UserScope, kOwner, kOwner).fileName();
}

QString PathOf(const std::string& application, const std::string& section, const std::string& key) {
  return QString::fromStdString(application + "/" + section + "/" + key);
}

}  // namespace

QtSettingsStore::QtSettingsStore(const std::string& file)
    : settings_(file.empty() ? UsersOwn() : QString::fromStdString(file), QSettings::IniFormat) {}

std::string QtSettingsStore::Read(const std::string& application, const std::string& section,
                                  const std::string& key, const std::string& fallback) const {
  const auto value = settings_.value(PathOf(application, section, key), QString::fromStdString(fallback));
  // A text with a comma that a person wrote into the file without quotes is read as a list.
  return (value.typeId() == QMetaType::QStringList ? value.toStringList().join(", ") : value.toString())
      .toStdString();
}

void QtSettingsStore::Write(const std::string& application, const std::string& section,
                            const std::string& key, const std::string& value) {
  settings_.setValue(PathOf(application, section, key), QString::fromStdString(value));
}

}  // namespace brelant
