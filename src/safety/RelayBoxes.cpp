// SPDX-License-Identifier: GPL-3.0-or-later
#include "safety/RelayBoxes.h"

#include <array>

namespace brelant {

namespace {

constexpr std::array<int, 2> kTemp1Pair{3, 4};
constexpr std::array<int, 2> kTemp2Pair{8, 9};
constexpr std::size_t kRegulators = 16;

/// The box of each regulator. The later entries win, as required.
std::array<int, kRegulators> BoxOfRegulator() {
  std::array<int, kRegulators> boxes{};
  const auto put = [&boxes](int regulator, int box) { boxes.at(static_cast<std::size_t>(regulator)) = box; };
  put(0, RelayBoxes::kNoAlarm);
  put(9, RelayBoxes::kNoAlarm);
  put(snsZ7731::RegCO2Main, 1);
  put(snsZ7731::RegCO2Pre, 0);
  put(snsZ7731::RegTWA, 2);
  put(snsZ7731::RegTemp1Low, 3);
  put(snsZ7731::RegTemp1High, 4);
  put(snsZ7731::RegTemp2Low, 9);
  put(snsZ7731::RegTemp2High, 8);
  put(snsZ7731::RegWeightMain, 7);
  return boxes;
}

/// 5 and 6 stand for regulator 0, which leaves a list with a free entry as it was.
int RegulatorOfBox(int box) {
  static constexpr std::array<int, 8> kRegulatorOfSingle{
      snsZ7731::RegCO2Pre, snsZ7731::RegCO2Main, snsZ7731::RegTWA, 0, 0, 0, 0, snsZ7731::RegWeightMain};
  if (box == kTemp1Pair[0] || box == kTemp1Pair[1]) return snsZ7731::RegTemp1Low;
  if (box == kTemp2Pair[0] || box == kTemp2Pair[1]) return snsZ7731::RegTemp2Low;
  return kRegulatorOfSingle.at(static_cast<std::size_t>(box));
}

}  // namespace

RelayBoxes::RelayBoxes(Form& form, const std::string& name, snsZ7731::RelayList& list,
                       UserInterface& userInterface)
    : boxes(form.AddArray(ControlKind::check, name, kBoxes)), list_(list), userInterface_(userInterface) {
  for (int i = 0; i < kBoxes; ++i) boxes[i].onClick = [this, i] { Click(i); };
}

void RelayBoxes::Show() {
  const auto boxOf = BoxOfRegulator();
  std::array<bool, kBoxes> ticked{};
  const auto at = [&ticked](int box) -> bool& { return ticked.at(static_cast<std::size_t>(box)); };
  for (int i = 0; i < snsZ7731::kRelayEntries; ++i)
    at(boxOf.at(static_cast<std::size_t>(list_.Entry(i)))) = true;
  for (const auto& pair : {kTemp1Pair, kTemp2Pair}) at(pair[0]) = at(pair[1]) = at(pair[0]) || at(pair[1]);
  for (int i = 0; i < kBoxes; ++i) boxes[i].SetValue(at(i) ? 1 : 0);
}

void RelayBoxes::Click(int box) {
  const bool wanted = boxes[box].Value() == 1;
  const int regulator = RegulatorOfBox(box);
  const bool done = !wanted || list_.Add(regulator);
  if (!wanted) list_.Remove(regulator);
  Set(box, wanted && done);
  if (!done) userInterface_.Tell("Only 3 channels can be chosen at the same time for each relay");
}

/// A temperature's two boxes move together.
void RelayBoxes::Set(int box, bool ticked) {
  for (const auto& pair : {kTemp1Pair, kTemp2Pair}) {
    if (box != pair[0] && box != pair[1]) continue;
    for (const int each : pair) boxes[each].SetValue(ticked ? 1 : 0);
    return;
  }
  boxes[box].SetValue(ticked ? 1 : 0);
}

}  // namespace brelant
