// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/panels/flow/columns.h"

#include "desktop/kit/text.h"

namespace brelant::flow {

Columns::Columns(const QWidget& widget, bool dense)
    : badge(Digits(widget, 3)),
      channel(Digits(widget, 14)),
      number(Digits(widget, 8)),
      unit(Digits(widget, 5)),
      picture(Digits(widget, dense ? 10 : 13), Digits(widget, dense ? 6 : 8)),
      tick(Digits(widget, 6)),
      gap(Digits(widget, 1)) {}

}  // namespace brelant::flow
