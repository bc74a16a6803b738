// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/DesktopUserInterface.h"

#include <QApplication>
#include <QCursor>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMenu>
#include <QMessageBox>
#include <QUrl>

#include "desktop/kit/placement.h"
#include "desktop/kit/text.h"
#include "qt/machine_path.h"

namespace brelant {

namespace {

QMessageBox::StandardButtons ButtonsOf(UserInterface::Buttons buttons) {
  switch (buttons) {
    case UserInterface::Buttons::okCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case UserInterface::Buttons::yesNo:
      return QMessageBox::Yes | QMessageBox::No;
    default:
      return QMessageBox::Ok;
  }
}

/// A box that was left without pressing a button is answered with the more careful one.
UserInterface::Reply ReplyOf(int result, UserInterface::Buttons buttons) {
  switch (result) {
    case QMessageBox::Yes:
      return UserInterface::Reply::yes;
    case QMessageBox::Ok:
      return UserInterface::Reply::ok;
    default:
      break;
  }
  switch (buttons) {
    case UserInterface::Buttons::yesNo:
      return UserInterface::Reply::no;
    case UserInterface::Buttons::okCancel:
      return UserInterface::Reply::cancel;
    default:
      return UserInterface::Reply::ok;
  }
}

/// "(*.Set)|*.Set" in Qt's form, for file systems that tell cases apart too.
QString NameFilter(const QString& filter) {
  const auto pattern = filter.section('|', 1, 1).trimmed();
  const auto lower = pattern.toLower();
  return QString("%1 (%2)").arg(pattern, pattern == lower ? pattern : pattern + " " + lower);
}

}  // namespace

UserInterface::Reply DesktopUserInterface::MessageBox(const std::string& text, Buttons buttons,
                                                      const std::string& title, Icon icon) {
  QMessageBox box;
  box.setObjectName("MessageBox");
  box.setTextFormat(Qt::PlainText);
  box.setText(QString::fromStdString(text));
  box.setWindowTitle(QString::fromStdString(title));
  box.setIcon(icon == Icon::stop ? QMessageBox::Critical : QMessageBox::NoIcon);
  box.setStandardButtons(ButtonsOf(buttons));
  if (buttons == Buttons::yesNo) box.setDefaultButton(QMessageBox::No);
  Ask(box);
  return ReplyOf(box.result(), buttons);
}

std::optional<std::string> DesktopUserInterface::InputBox(const std::string& prompt,
                                                          const std::string& title) {
  QInputDialog box;
  box.setObjectName("InputBox");
  box.setWindowTitle(title.empty() ? QApplication::applicationName() : QString::fromStdString(title));
  box.setLabelText(QString::fromStdString(prompt));
  Ask(box);
  if (box.result() != QDialog::Accepted) return {};
  return box.textValue().toStdString();
}

std::optional<std::string> DesktopUserInterface::FileDialog(FileUse use, const std::string& filter) {
  QFileDialog box;
  box.setObjectName("FileDialog");
  box.setAcceptMode(use == FileUse::open ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
  box.setFileMode(use == FileUse::open ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
  const auto told = QString::fromStdString(filter);
  box.setNameFilter(NameFilter(told));
  box.setDefaultSuffix(told.section("*.", -1));
  if (!folder_.isEmpty()) box.setDirectory(folder_);
  Ask(box);
  if (box.result() != QDialog::Accepted || box.selectedFiles().isEmpty()) return {};
  const auto name = box.selectedFiles().constFirst();
  folder_ = QFileInfo(name).path();
  return name.toStdString();
}

std::optional<std::size_t> DesktopUserInterface::PopupMenu(const std::vector<std::string>& captions) {
  if (captions.empty()) return {};
  QMenu menu;
  menu.setObjectName("PopupMenu");
  for (const auto& caption : captions) menu.addAction(WithMnemonic(QString::fromStdString(caption), {}));
  std::optional<std::size_t> choice;
  QObject::connect(&menu, &QMenu::triggered, &menu, [&](QAction* action) {
    choice = static_cast<std::size_t>(menu.actions().indexOf(action));
  });
  const auto* source = surroundings_.source ? surroundings_.source() : nullptr;
  menu.popup(source == nullptr ? QCursor::pos() : source->mapToGlobal(QPoint(0, source->height())));
  WaitFor(menu);
  return choice;
}

void DesktopUserInterface::ShellOpen(const std::string& path) {
  QDesktopServices::openUrl(QUrl::fromLocalFile(ExistingPath(path)));
}

void DesktopUserInterface::Ask(QDialog& box) {
  PlaceOver(box, surroundings_.front ? surroundings_.front() : nullptr);
  box.setWindowModality(Qt::ApplicationModal);
  box.open();
  WaitFor(box);
}

void DesktopUserInterface::WaitFor(const QWidget& box) {
  const auto over = [this] { return surroundings_.pump == nullptr || surroundings_.over(); };
  while (box.isVisible() && !over()) surroundings_.pump->Wait(std::chrono::microseconds::max());
}

}  // namespace brelant
