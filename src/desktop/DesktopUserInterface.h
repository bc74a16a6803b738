// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>

#include "platform/pump.h"
#include "platform/user_interface.h"

class QDialog;
class QWidget;

namespace brelant {

/// Questions in boxes on the screen. Each waits for its answer on the pump, so that the windows behind it go
/// on showing what happens.
class DesktopUserInterface : public UserInterface {
 public:
  /// What the boxes need of the program that asks.
  struct Surroundings {
    Pump* pump = nullptr;
    /// The widget that the user has just acted on, or nullptr.
    std::function<QWidget*()> source;
    /// The window to stand in front of, or nullptr.
    std::function<QWidget*()> front;
    /// Nobody is interested in an answer any more.
    std::function<bool()> over;
  };

  /// Before the first question. Until then every one is answered as if it had been left.
  void Enter(Surroundings surroundings) { surroundings_ = std::move(surroundings); }

  Reply MessageBox(const std::string& text, Buttons buttons, const std::string& title, Icon icon) override;
  using UserInterface::InputBox;
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title) override;
  std::optional<std::string> FileDialog(FileUse use, const std::string& filter) override;
  std::optional<std::size_t> PopupMenu(const std::vector<std::string>& captions) override;
  void ShellOpen(const std::string& path) override;

 private:
  /// Opens the box and waits until it is left.
  void Ask(QDialog& box);
  void WaitFor(const QWidget& box);

  Surroundings surroundings_;
  /// Where the last file was chosen.
  QString folder_;
};

}  // namespace brelant
