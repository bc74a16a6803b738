// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#include "panels/platform6/jumper_table.h"
#include "panels/platform6/show_live.h"
#include "shell/form.h"

namespace brelant::platform6 {

/// The face of the sensors whose two outputs are set by corner points (docs/memory-maps.md, Platform 6).
class JumperFace {
 public:
  JumperFace(Form& form, const std::function<void(Control&)>& makeEditable);

  void SetVisible(bool visible);
  /// Shows the corner points that the functions make. A point whose search ends without a number keeps its
  /// text.
  void Update(const FunctionEnds& ends, const Pass& pass);
  /// The functions of the last update.
  const FunctionEnds& Ends() const { return ends_; }
  /// The functions that make the corner points that are shown. Throws NoResult.
  FunctionEnds Read(const Pass& pass);
  /// Live values of channels 0, 1 and 9.
  void UpdateLive(const ShowLive& show);

  Control& pct6v3Settings;
  Control& txb6v3A1;
  Control& txb6v3A2;
  Control& txb6v3B;
  Control& txb6v3C;
  Control& txb6v3D1;
  Control& txb6v3D2;
  Control& txb6v3E;
  Control& txb6v3F;
  Control& txb6v3G1;
  Control& txb6v3G2;
  Control& txb6v3I;
  Control& txb6v3K;
  ControlArray txb6v3AN;

 private:
  ControlArray Fields() const;

  FunctionEnds ends_;
  float jumperOffset_ = 0;
};

}  // namespace brelant::platform6
