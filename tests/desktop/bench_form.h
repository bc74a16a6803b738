// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QDialog>
#include <QVBoxLayout>

#include "desktop/kit/Acts.h"
#include "desktop/kit/Views.h"
#include "desktop/kit/make.h"
#include "hand.h"
#include "shell/form.h"

namespace brelant::test {

/// A form of a test's own, and a window for the views on it.
struct BenchForm {
  BenchForm() {
    form.Show();
    LayOut<QVBoxLayout>(window, 4);
  }

  /// A widget of the window.
  template <typename Widget>
  Widget& Put() {
    auto& widget = Make<Widget>(window);
    window.layout()->addWidget(&widget);
    return widget;
  }

  void Open() {
    window.show();
    Activate(window);
    Pass();
  }

  /// What happens at the start of a pump pass.
  void Pass() {
    QApplication::processEvents();
    views.Refresh(acts.CarryOut());
  }

  Screen screen;
  Form form{screen, "bench", "Bench"};
  Acts acts;
  Views views{form, acts};
  QDialog window;
};

}  // namespace brelant::test
