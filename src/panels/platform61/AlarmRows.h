// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "comm/SensorImage.h"
#include "knowledge/SnsInfo.h"
#include "shell/form.h"
#include "shell/panel.h"

namespace brelant::platform61 {

/// The three alarm rows of a platform 7 sensor: a channel, which side of a level is alarm, and the level. The
/// middle row makes the main alarm, the others the pre alarm (docs/memory-maps.md, Platform 7).
class AlarmRows {
 public:
  static constexpr int kRows = 3;

  struct Rules {
    /// Gives a field the edit rules.
    std::function<void(Control&)> makeEditable;
    /// The user wants another channel for a row.
    std::function<void(int)> chooseChannel;
  };

  AlarmRows(Form& form, SensorImage& image, SnsInfo& info, const Rules& rules);

  void SetVisible(bool visible);
  /// Reads what the levels are scaled by, so that no level is shown, and taken back, as none. False: a read
  /// failed.
  bool FetchChannels();
  /// `channels`: the menu that names a channel by its number.
  void Update(const ControlArray& channels);
  void Read();
  void StoreChannel(int row, int channel);

  /// A live value and the caption of its channel.
  struct Value {
    const Control& caption;
    const Control& field;
  };
  /// Compares the levels with the values as the form shows both. A row whose channel is none of these takes
  /// the value of the row before it, the first one 0.
  void ShowStates(std::span<const Value> values);
  void ForgetStates();
  std::vector<Panel::Alarm> States() const;

  Control& pctAlarm07;
  ControlArray lblAlarm7Channel;
  ControlArray lblAlarm7Unit;
  ControlArray lblAlarm7Slope;
  /// Fields that the user may change, whatever they are called.
  ControlArray lblAlarm7Level;
  Control& txbAlarm7StatusPre;
  Control& txbAlarm7StatusMain;

 private:
  bool IsBelow(int row) const;
  /// The number in the low nibble of a row's channel byte.
  int ChannelOf(int row) const;

  SensorImage& image_;
  SnsInfo& info_;
};

}  // namespace brelant::platform61
