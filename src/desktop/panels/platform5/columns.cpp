// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/platform5/columns.h"

#include "desktop/kit/text.h"

namespace brelant::platform5 {

Columns::Columns(const QWidget& widget)
    : badge(Digits(widget, 3)),
      channel(Digits(widget, 14)),
      number(Digits(widget, 8)),
      unit(Digits(widget, 5)),
      picture(Digits(widget, 13), Digits(widget, 8)),
      tick(Digits(widget, 6)),
      gap(Digits(widget, 1)) {}

}  // namespace brelant::platform5
