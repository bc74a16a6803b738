// SPDX-License-Identifier: GPL-3.0-or-later
#include "panels/FunctionBlocks.h"

#include <utility>

namespace brelant {

namespace {

struct Group {
  int first;
  int last;
};

Group GroupOf(FunctionClass kind) {
  switch (kind) {
    case FunctionClass::digital:
      return {FunctionBlocks::digPsignPslope, FunctionBlocks::digNsignNslope};
    case FunctionClass::analog:
      return {FunctionBlocks::nsignNslope, FunctionBlocks::psignPslope};
    case FunctionClass::unsignedAnalog:
      return {FunctionBlocks::pslope, FunctionBlocks::nslope};
    default:
      return {FunctionBlocks::digPslope, FunctionBlocks::digNslope};
  }
}

int TypeOf(FunctionClass kind, bool sign, bool slope) {
  switch (kind) {
    case FunctionClass::digital:
      return sign ? (slope ? FunctionBlocks::digPsignPslope : FunctionBlocks::digPsignNslope)
                  : (slope ? FunctionBlocks::digNsignPslope : FunctionBlocks::digNsignNslope);
    case FunctionClass::analog:
      return sign ? (slope ? FunctionBlocks::psignPslope : FunctionBlocks::psignNslope)
                  : (slope ? FunctionBlocks::nsignPslope : FunctionBlocks::nsignNslope);
    case FunctionClass::unsignedAnalog:
      return slope ? FunctionBlocks::pslope : FunctionBlocks::nslope;
    default:
      return slope ? FunctionBlocks::digPslope : FunctionBlocks::digNslope;
  }
}

int NextType(FunctionClass kind, std::optional<int> type) {
  const auto group = GroupOf(kind);
  if (!type || *type < group.first || *type >= group.last) return group.first;
  return *type + 1;
}

}  // namespace

FunctionBlocks::FunctionBlocks(Form& form, int count, int types, std::function<FunctionClass(int)> classOf,
                               const std::function<void()>& changed)
    : classOf_(std::move(classOf)) {
  for (int type = 0; type < types; ++type) {
    const auto& pictures = pictures_.emplace_back(
        form.AddArray(ControlKind::picture, kPictures.at(static_cast<std::size_t>(type)), count));
    for (int i = 0; i < count; ++i) {
      pictures[i].SetVisible(false);
      pictures[i].onClick = [this, i, changed] {
        FunkTypeUpdate(i, true, false, false);
        changed();
      };
    }
  }
}

void FunctionBlocks::FunkTypeUpdate(int index, bool step, bool sign, bool slope) {
  const auto kind = classOf_(index);
  const int type = step ? NextType(kind, VisibleType(index)) : TypeOf(kind, sign, slope);
  for (std::size_t i = 0; i < pictures_.size(); ++i) {
    pictures_[i][index].SetVisible(static_cast<int>(i) == type);
  }
}

void FunctionBlocks::Hide() {
  for (const auto& pictures : pictures_) {
    for (auto* picture : pictures) picture->SetVisible(false);
  }
}

void FunctionBlocks::FunkTypeRead(int index, bool& sign, bool& slope) const {
  const auto type = VisibleType(index);
  if (!type) return;
  switch (*type) {
    case digPsignPslope:
    case psignPslope:
      sign = slope = true;
      break;
    case digPsignNslope:
    case psignNslope:
      sign = true;
      slope = false;
      break;
    case digNsignPslope:
    case nsignPslope:
      sign = false;
      slope = true;
      break;
    case digNsignNslope:
    case nsignNslope:
      sign = slope = false;
      break;
    default:
      slope = *type == pslope || *type == digPslope;
  }
}

std::optional<int> FunctionBlocks::VisibleType(int index) const {
  for (std::size_t type = 0; type < pictures_.size(); ++type) {
    if (pictures_[type][index].Visible()) return static_cast<int>(type);
  }
  return {};
}

}  // namespace brelant
