// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <vector>

#include "shell/form.h"

namespace brelant {

/// What the function blocks of a panel feed, which decides what shapes they can have.
enum class FunctionClass { digital = 1, analog = 2, unsignedAnalog = 3, unsignedDigital = 4 };

/// The pictures of the function blocks. The picture that is visible is the function's type, and the only
/// place where sign and slope live between two reads of the form.
class FunctionBlocks {
 public:
  /// Types in the order of docs/memory-maps.md, Platform 5.
  enum Type {
    digPsignPslope,
    digPsignNslope,
    digNsignPslope,
    digNsignNslope,
    nsignNslope,
    nsignPslope,
    psignNslope,
    psignPslope,
    pslope,
    nslope,
    digPslope,
    digNslope
  };
  static constexpr int kTypes = 12;
  /// Types that have a sign, or stand on an analog output; the others occur on some panels only.
  static constexpr int kUsualTypes = 10;
  /// Names of the pictures, by type.
  static constexpr std::array<const char*, kTypes> kPictures{
      "pctFDigPsignPslope", "pctFDigPsignNslope", "pctFDigNsignPslope", "pctFDigNsignNslope",
      "pctFNsignNslope",    "pctFNsignPslope",    "pctFPsignNslope",    "pctFPsignPslope",
      "pctFPslope",         "pctFNslope",         "pctFDigPslope",      "pctFDigNslope"};

  /// `classOf` tells the class of a function now; `changed` is called after a user has stepped a picture on.
  /// `types`: how many of the types the panel has pictures for.
  FunctionBlocks(Form& form, int count, int types, std::function<FunctionClass(int)> classOf,
                 const std::function<void()>& changed);

  /// Shows one picture of the function: by sign and slope, or with `step` the next one of its class.
  void FunkTypeUpdate(int index, bool step, bool sign, bool slope);
  /// Shows no picture of any function.
  void Hide();
  /// Sign and slope of the visible picture; types without a sign leave `sign` as it is.
  void FunkTypeRead(int index, bool& sign, bool& slope) const;
  std::optional<int> VisibleType(int index) const;

 private:
  std::vector<ControlArray> pictures_;
  std::function<FunctionClass(int)> classOf_;
};

}  // namespace brelant
