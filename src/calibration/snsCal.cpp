// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/snsCal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>

#include "calibration/known_response.h"
#include "knowledge/table_address.h"
#include "shell/Common.h"

namespace brelant {

namespace {

constexpr double kZeroGas = 61440;
constexpr double kOne = 2048;
constexpr double kHighestWord = 65535;
constexpr float kMiddle = 127;
constexpr float kOffset = 5000;
constexpr int kFirstTableBlock = 32;

constexpr float kChannelOf5 = 1;
constexpr float kTemperatureOf61And7 = 4;
constexpr float kCO2Of61And7 = 5;
constexpr float kCO2Of6 = 11;

// Platform 7; each procedure has a table of its own.
constexpr int kTemperatureTableOf7 = 0;
constexpr int kSpanTableOf7 = 2;
constexpr int kO2TableOf7 = 4;
constexpr int kCurveOf7 = 1003;
constexpr int kZeroWordOf7 = 14;
constexpr int kTempCoefficientOf7 = 881;
constexpr int kBackgroundOf7 = 976;
constexpr int kSignalOf7 = 40;
constexpr int kTempDeviationOf7 = 42;
constexpr int kO2Signal = 38;
constexpr int kO2Zero = 760;
constexpr int kO2Span = 0;

int AddressOf7(int table) {
  return *TableAddress(7, table, 0);
}

/// The quotient, if there is one.
double Divide(double dividend, double divisor, const char* what) {
  const double quotient = dividend / divisor;
  if (divisor == 0 || !std::isfinite(quotient)) throw NoResult(what);
  return quotient;
}

constexpr const char* kNoSignal = "Can't compute the calibration, the sensor gives no signal";

}  // namespace

snsCal::snsCal(Session& session, SensorImage& image, SerialLink& link, snscom& com, SnsInfo& info,
               Table& table, const Machine& machine)
    : session_(session),
      image_(image),
      link_(link),
      com_(com),
      info_(info),
      table_(table),
      machine_(machine) {}

bool snsCal::Run(bool closePort, const Procedure& procedure) {
  change_.reset();
  bool done = false;
  try {
    done = procedure();
  } catch (const std::exception& fault) {
    session_.Fail(fault.what());
  }
  if (closePort) link_.Close();
  if (!done) change_.reset();
  return done;
}

bool snsCal::Read(int address, int count, bool isEeprom, bool keepPortOpen) {
  return com_.ReadSensorMemory(0, static_cast<float>(address), static_cast<std::uint8_t>(count), isEeprom,
                               keepPortOpen);
}

bool snsCal::Write(int address, int count, bool isEeprom, bool saveAfter) {
  return com_.WriteSensorMemory(0, static_cast<float>(address), static_cast<std::uint8_t>(count), isEeprom,
                                saveAfter, false, true, true, true);
}

bool snsCal::WriteTable(int table, bool keepPortOpen) {
  return com_.WriteSensorMemory(table + kFirstTableBlock, 0, 0, true, true, keepPortOpen, true, true, true);
}

void snsCal::NoteGas(float channel, std::vector<ResponsePoint> before, float signal,
                     std::optional<float> given) {
  auto after = KnownGasResponse(image_, info_, channel);
  if (before.empty() || after.empty()) return;
  // Zero gas is what the first point stands for.
  const ResponsePoint measured{signal, given.value_or(after.front().value)};
  change_ = {channel, false, std::move(before), std::move(after), measured};
}

/// The point of the curve that read the old value now reads the one that was told.
void snsCal::NoteTemperature(float channel, std::vector<ResponsePoint> before, float wanted) {
  auto after = KnownTemperatureResponse(image_, info_, channel);
  if (before.empty() || after.empty()) return;
  const auto position = table_.ValueToTable(TemperatureTable(channel), wanted);
  change_ = {channel, true, std::move(before), std::move(after), {position, wanted}};
}

// CO2 span

bool snsCal::CalibrateCO2Span(float channel, const std::string& spanText, bool keepPortOpen) {
  return Run(!keepPortOpen, [&] {
    switch (info_.GetPlatform()) {
      case 5:
        return SpanOf5(spanText);
      case 6:
      case 61:
        return SpanOf6And61(channel, spanText, keepPortOpen);
      default:
        return true;
    }
  });
}

bool snsCal::SpanOf5(const std::string& spanText) {
  constexpr float kTempSteps = 32;
  const auto before = KnownGasResponse(image_, info_, kChannelOf5);
  const double zeroWord = info_.GetZeroWord(kChannelOf5);
  const auto background = table_.Background(0);
  const float signal = info_.GetSignalWord(kChannelOf5);
  const double deviation = info_.GetTempDeviation(kChannelOf5);
  const double coefficient = info_.GetTempCoefficient(kChannelOf5) - kMiddle;
  const float given = ParseNumber(spanText);
  const double wanted = table_.ValueToTable(static_cast<int>(kChannelOf5), given);
  if (!background || !Sound()) return false;

  const double seen = kZeroGas - zeroWord * signal / kOne;
  if (seen <= 0) throw NoResult("The sensor sees no span gas");
  const double correction = (coefficient * deviation / kTempSteps + kOne) / kOne;
  const double span = Divide((kZeroGas - wanted) * kOne / seen, correction,
                             "Can't compute the span from the sensor's temperature");
  // The sensor would read no gas for ever, or whatever the bits of another number say.
  if (wanted >= kZeroGas || Round(span) < 1 || span > kHighestWord) {
    throw NoResult("Can't calibrate with this concentration");
  }
  info_.SetSpanWord(kChannelOf5, true, false, static_cast<float>(span));
  // The background stays the same concentration under the new span.
  table_.SetBackgroundWord(0, *background);
  if (!Write(0, 2, false, true)) return false;
  NoteGas(kChannelOf5, before, signal, given);
  return true;
}

bool snsCal::SpanOf6And61(float channel, const std::string& spanText, bool keepPortOpen) {
  const auto curve = CurveOfType(info_.GetCurveType(channel));
  if (!curve) {
    session_.Fail("Sensor = 0, ");
    return false;
  }
  const auto before = KnownGasResponse(image_, info_, channel);
  Measurement measured;
  measured.scale = info_.GetScaleFactor();
  measured.zeroWord = info_.GetZeroWord(channel);
  measured.tempDeviation = info_.GetTempDeviation(channel);
  measured.tempCoefficient = info_.GetTempCoefficient(channel) - kMiddle;
  // Only for what it fetches.
  if (!table_.Background(0)) return false;

  const float given = ParseNumber(spanText);
  constexpr int kPasses = 2;
  for (int pass = 0; pass < kPasses; ++pass) {
    measured.signal = info_.GetSignalWord(channel);
    if (!SpanPass(channel, {*curve, measured.scale}, measured, given - kOffset, keepPortOpen)) return false;
  }
  NoteGas(channel, before, measured.signal, given);
  return true;
}

bool snsCal::SpanPass(float channel, const SpanCurve& curve, Measurement measured, float span,
                      bool keepPortOpen) {
  const int table = info_.GetChannelTable(channel);
  if (!Sound()) return false;
  auto entries =
      SpanTable(curve, MeasuredTransmission(measured), span, kOffset, [this] { machine_.pump.DoEvents(); });
  if (!Sound()) return false;
  for (int i = 0; i < Table::kEntries; ++i) {
    table_.WriteTableEntry(table, i, entries.at(static_cast<std::size_t>(i)));
  }
  if (!WriteTable(table, keepPortOpen) || !WaitForSensor()) return false;
  info_.GetChannelRaw(channel, false);
  return true;
}

/// On the time of day: a wait that reaches midnight ends only by a cancel.
bool snsCal::WaitForSensor() {
  constexpr double kSeconds = 2.5;
  const double end = machine_.clock.Timer() + kSeconds;
  while (Sound() && !session_.Over()) {
    const double left = end - machine_.clock.Timer();
    if (left < 0) return true;
    machine_.pump.Wait(machine_.clock.Now() + std::chrono::milliseconds(static_cast<int>(left * 1000) + 1));
  }
  return false;
}

bool snsCal::CalibrateCO2SpanPlatform7(float spanRaw) {
  return Run(true, [&] { return SpanOf7(spanRaw); });
}

bool snsCal::SpanOf7(float spanRaw) {
  if (!Read(kCurveOf7, 1, true, true)) return false;
  const auto curve = CurveOfNibble(Bits(image_.EepromImage[kCurveOf7]) >> 4 & 15);
  if (!Read(kZeroWordOf7, 2, true, true) || !Read(kTempCoefficientOf7, 2, true, true) ||
      !Read(kBackgroundOf7, 2, true, true) || !Read(kTempDeviationOf7, 2, false, true) ||
      !Read(kSignalOf7, 2, false, true) || !Read(AddressOf7(kSpanTableOf7), kTableSize, true, false)) {
    return false;
  }
  // Only for what it fetches.
  if (!table_.Background(0)) return false;
  const auto before = KnownGasResponse(image_, info_, kCO2Of61And7);

  Measurement measured;
  measured.zeroWord = image_.EepromWord(kZeroWordOf7);
  measured.signal = image_.RamWord(kSignalOf7);
  measured.tempDeviation = static_cast<float>(SignedWord(image_.RamWord(kTempDeviationOf7)));
  measured.tempCoefficient = SignedByte(image_.EepromImage[kTempCoefficientOf7]);
  // The scale of the curve counts in the search only; the measurement is taken as with scale 1.
  measured.scale = 1;
  const auto table =
      SpanTable(curve, MeasuredTransmission(measured), spanRaw, 0, [this] { machine_.pump.DoEvents(); });
  if (!Sound()) return false;
  StoreSpanOf7(table);
  if (!Write(AddressOf7(kSpanTableOf7), kTableSize, true, false) || !Write(kBackgroundOf7, 2, true, false))
    return false;
  NoteGas(kCO2Of61And7, before, measured.signal, spanRaw);
  return true;
}

void snsCal::StoreSpanOf7(const GasTable& table) {
  for (std::size_t i = 0; i < table.size(); ++i) {
    image_.SetEepromWord(AddressOf7(kSpanTableOf7) + 2 * static_cast<int>(i), UnsignedWord(table[i]));
  }
}

// CO2 zero

bool snsCal::CalibrateCO2Zero(float channel, bool keepPortOpen, int kind, const std::string& text) {
  return Run(!keepPortOpen, [&] {
    if (channel != kPlatformChannel) return ZeroOfChannel(channel, keepPortOpen, kind, text);
    if (info_.GetPlatform() == 7) return ZeroOf7();
    return ZeroOfChannel(CO2Channel(), keepPortOpen, kind, text);
  });
}

float snsCal::CO2Channel() {
  switch (info_.GetPlatform()) {
    case 5:
      return kChannelOf5;
    case 6:
      return kCO2Of6;
    case 61: {
      const float variant = info_.GetProductVariant();
      return variant == 0 || variant == 1 ? kCO2Of61And7 : 0;
    }
    default:
      return kPlatformChannel;
  }
}

/// Always a calibration with zero gas.
bool snsCal::ZeroOf7() {
  const auto before = KnownGasResponse(image_, info_, kCO2Of61And7);
  if (!Read(kSignalOf7, 2, false, false) || !Sound()) return false;
  const float signal = image_.RamWord(kSignalOf7);
  const double zeroWord = Fix(Divide(kZeroGas, signal, kNoSignal) * kOne);
  image_.SetEepromWord(kZeroWordOf7, static_cast<float>(zeroWord));
  if (!Write(kZeroWordOf7, 2, true, false)) return false;
  NoteGas(kCO2Of61And7, before, signal, {});
  return true;
}

bool snsCal::ZeroOfChannel(float channel, bool keepPortOpen, int kind, const std::string& text) {
  const auto before = KnownGasResponse(image_, info_, channel);
  const float signal = info_.GetSignalWord(channel);
  std::optional<float> given;
  double zeroWord = 0;
  if (kind == zeroGas) {
    zeroWord = Fix(Divide(kZeroGas * kOne, signal, kNoSignal));
  } else if (kind == freshAir || kind == otherGas) {
    given = kind == freshAir ? table_.Background(0) : info_.TextToRaw(text, channel, false);
    if (!given) return false;
    const double target = table_.ValueToTable(info_.GetChannelTable(channel), *given);
    zeroWord = ZeroWordFor(target, channel, signal);
  }
  if (!Sound()) return false;
  if (info_.SetZeroWord(channel, true, keepPortOpen, static_cast<float>(zeroWord))) {
    NoteGas(channel, before, signal, given);
  }
  return true;
}

/// The zero word under which the signal stands at that position of the table.
double snsCal::ZeroWordFor(double target, float channel, float signal) {
  double spread = 1;
  switch (info_.GetPlatform()) {
    case 5:
      spread = info_.GetSpanWord(channel) / kOne;
      break;
    case 6:
    case 61:
      spread = info_.GetScaleFactor();
      break;
    default:
      break;
  }
  const double position =
      Round(kZeroGas - Divide(kZeroGas - target, spread, "Can't compute the calibration, the scale is 0"));
  return Fix(Divide(position * kOne, signal, kNoSignal));
}

// Temperature

bool snsCal::CalibrateTemperature(float value, float channel, bool keepPortOpen) {
  return Run(!keepPortOpen,
             [&] { return MoveTemperature(value, channel == kPlatformChannel ? TemperatureChannel() : 0); });
}

float snsCal::TemperatureChannel() {
  constexpr std::uint8_t kSecondTemperaturePart = 223;
  constexpr std::array<std::uint8_t, 2> kFirstTemperatureParts{221, 222};
  switch (info_.GetPlatform()) {
    case 6: {
      const auto part = info_.GetPartNumber();
      if (part == kSecondTemperaturePart) return 3;
      return std::count(kFirstTemperatureParts.begin(), kFirstTemperatureParts.end(), part) != 0 ? 2 : 0;
    }
    case 61: {
      const float variant = info_.GetProductVariant();
      return variant == 0 || variant == 1 ? kTemperatureOf61And7 : 0;
    }
    case 7:
      return kTemperatureOf61And7;
    default:
      return 0;
  }
}

bool snsCal::MoveTemperature(float value, float channel) {
  // Of two readings the second one counts.
  info_.GetChannelRaw(channel, false);
  const float reading = info_.GetChannelRaw(channel, false);
  const float wanted = info_.TextToRaw(NumberText(value), channel, false);
  const float delta = static_cast<float>(Signed(wanted) - Signed(reading));
  if (!Sound()) return false;

  const auto before = KnownTemperatureResponse(image_, info_, channel);
  switch (info_.GetPlatform()) {
    case 5: {
      const float zeroWord = info_.GetZeroWord(channel) + delta;
      return Sound() && info_.SetZeroWord(channel, true, false, zeroWord);
    }
    case 6:
    case 61:
    case 7:
      if (!MoveTable(TemperatureTable(channel), delta) || !SendTemperatureTable(channel)) return false;
      NoteTemperature(channel, before, wanted);
      return true;
    default:
      return true;
  }
}

/// Words of platform 7 are signed: a temperature that crosses 0 would otherwise move the table by 65536.
double snsCal::Signed(float word) {
  return info_.GetPlatform() == 7 ? SignedWord(word) : word;
}

int snsCal::TemperatureTable(float channel) {
  return info_.GetPlatform() == 7 ? kTemperatureTableOf7 : info_.GetChannelTable(channel);
}

bool snsCal::SendTemperatureTable(float channel) {
  if (info_.GetPlatform() == 7) return Write(AddressOf7(kTemperatureTableOf7), kTableSize, true, false);
  return WriteTable(TemperatureTable(channel), false);
}

bool snsCal::MoveTable(int table, float delta) {
  GasTable entries{};
  for (int i = 0; i < Table::kEntries; ++i) {
    const auto moved = static_cast<float>(Signed(table_.ReadTableEntry(table, i)) + delta);
    entries.at(static_cast<std::size_t>(i)) = info_.GetPlatform() == 7 ? UnsignedWord(moved) : moved;
    if (!Sound()) return false;
  }
  for (int i = 0; i < Table::kEntries; ++i) {
    table_.WriteTableEntry(table, i, entries.at(static_cast<std::size_t>(i)));
  }
  return true;
}

// O2

bool snsCal::CalibrateO2Zero() {
  return Run(true, [&] {
    if (!Read(kO2Signal, 2, false, false) || !Sound()) return false;
    image_.SetEepromWord(kO2Zero, image_.RamWord(kO2Signal));
    return Write(kO2Zero, 2, true, false);
  });
}

bool snsCal::CalibrateO2Span(float rawValue) {
  return Run(true, [&] {
    if (!Read(kO2Signal, 2, false, false)) return false;
    const double position = table_.ValueToTable(kO2TableOf7, rawValue);
    if (!Sound()) return false;
    const double span = Divide(position * kOne, image_.RamWord(kO2Signal), kNoSignal);
    image_.SetEepromWord(kO2Span, static_cast<float>(span));
    return Write(kO2Span, 2, true, false);
  });
}

}  // namespace brelant
