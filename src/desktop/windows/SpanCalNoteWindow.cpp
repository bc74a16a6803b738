// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/windows/SpanCalNoteWindow.h"

#include <QPushButton>

#include "desktop/kit/bind.h"
#include "desktop/kit/make.h"
#include "desktop/kit/text.h"

namespace brelant {

SpanCalNoteWindow::SpanCalNoteWindow(frmSpanCalNote& note, Acts& acts) : DialogWindow(note.form, acts) {
  auto& layout = LayOut<QVBoxLayout>(*this, 12);
  layout.setContentsMargins(20, 18, 20, 16);
  layout.setSizeConstraint(QLayout::SetFixedSize);
  auto& title = Make<QLabel>(*this);
  ScaleFont(title, 1.5, QFont::DemiBold);
  Bind(views_, note.Label1, title);
  layout.addWidget(&title);
  auto& text = Make<QLabel>(*this);
  text.setWordWrap(true);
  text.setFixedWidth(Digits(text, 58));
  Bind(views_, note.Label2, text);
  layout.addWidget(&text);
  auto& buttons = AddRow(layout, 8);
  buttons.addStretch();
  for (auto* control : {&note.Command1, &note.Command2}) {
    auto& button = Make<QPushButton>(*this);
    button.setAutoDefault(true);
    Bind(views_, *control, button, {control == &note.Command1 ? 'C' : 'N'});
    buttons.addWidget(&button);
  }
}

}  // namespace brelant
