// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/windows/dialog_parts.h"

#include <QGroupBox>

#include "desktop/kit/bind.h"
#include "desktop/kit/make.h"

namespace brelant {

QVBoxLayout& AddGroup(const QString& title, QWidget& window, QBoxLayout& layout) {
  auto& group = Make<QGroupBox>(window, title);
  layout.addWidget(&group);
  auto& inside = LayOut<QVBoxLayout>(group, 8);
  inside.setContentsMargins(12, 10, 12, 12);
  return inside;
}

QPushButton& AddButton(Views& views, Control& control, QChar mnemonic, QWidget& window, QBoxLayout& layout) {
  auto& button = Make<QPushButton>(window);
  button.setAutoDefault(false);
  Bind(views, control, button, {mnemonic});
  layout.addWidget(&button);
  return button;
}

QRadioButton& AddOption(Views& views, Control& control, QChar mnemonic, QWidget& window, QBoxLayout& layout) {
  auto& option = Make<QRadioButton>(window);
  Bind(views, control, option, {mnemonic});
  layout.addWidget(&option);
  return option;
}

}  // namespace brelant
