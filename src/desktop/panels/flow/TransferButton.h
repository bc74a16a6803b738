// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QToolButton>
#include <functional>

#include "desktop/kit/Views.h"
#include "desktop/windows/TransferWindow.h"
#include "panels/Transfer.h"

namespace brelant::flow {

/// Opens the plot of what an output does with its inputs. A click on it ends an edit, as one on the
/// ground does.
class TransferButton : public QToolButton {
 public:
  TransferButton(Views& views, const Transfer& transfer, int output, std::function<std::size_t()> place,
                 QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  /// Made at the first click.
  TransferWindow* window_ = nullptr;
};

}  // namespace brelant::flow
