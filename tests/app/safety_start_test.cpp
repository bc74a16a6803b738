// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/program_bench.h"
#include "bench/modbus_registers.h"
#include "connection/ReadPartModbus.h"
#include "safety/frmZ7731Chart.h"

namespace brelant {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::kUnknownSensor;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char* kPanel = "frmZ7731Chart";
constexpr const char* kNoRead = "Can't read from sensor";
constexpr const char* kLast = "C:\\KVX\\last.set";

/// The program with a virtual central unit on its line, which can be reached over Modbus too.
class UnitBench : public test::ProgramBench<test::SensorPort> {
 public:
  explicit UnitBench(const bench::SensorSetup& setup = {.part = 154}) : ProgramBench(setup) {}

  /// The registers of the unit as it is now, under that address.
  void PutOnModbus(int address = 1) {
    auto& unit = modbus.units[address];
    const auto ram = port.sensor.Ram();
    const auto eeprom = port.sensor.Eeprom();
    for (int number = 0; number < 32; ++number) {
      if (const auto word = bench::InputRegister(ram, eeprom, number)) unit.input[number] = *word;
    }
    for (int number = 0; number < 12288; ++number) {
      const auto place = bench::HoldingRegister(ram.size(), eeprom.size(), number);
      if (!place) continue;
      const auto& memory = place->in_eeprom ? eeprom : ram;
      unit.holding[number] =
          static_cast<std::uint16_t>(memory[place->address] << 8 | memory[place->address + 1]);
    }
  }
  /// It does not hear KiBus, as a unit that is set to Modbus.
  void Deafen() { port.onOutput = nullptr; }

  frmZ7731Chart& Panel() { return dynamic_cast<frmZ7731Chart&>(*program->session.CurrentPanel); }
};

class SafetyStartTest : public testing::Test {
 protected:
  /// On Modbus the dialog's choice is taken before the start.
  static void SpeakModbus(UnitBench& bench) { bench.Store("Prot", "ModBus"); }
  static void WhenShown(UnitBench& bench, const std::function<void()>& look = {}) {
    bench.When(kPanel, [&bench, look] {
      if (look) look();
      bench.Panel().form.Close();
    });
  }
  static void ExpectStarted(UnitBench& bench) {
    EXPECT_EQ(bench.CountShown(kPanel), 1);
    EXPECT_THAT(bench.ui.Texts(), IsEmpty());
  }
  static void ExpectRefused(UnitBench& bench, const std::string& text) {
    EXPECT_EQ(bench.CountShown(kPanel), 0);
    EXPECT_THAT(bench.ui.Texts(), ElementsAre(text));
    EXPECT_EQ(bench.CountShown("frmComSet"), 2);
    EXPECT_FALSE(bench.port.PortOpen());
    EXPECT_FALSE(bench.modbus.IsOpen());
    EXPECT_FALSE(bench.program->msg.Visible());
  }
};

TEST_F(SafetyStartTest, EachModelHasThePanelOnKiBus) {
  for (const int model : {1, 3, 5, 6, 7}) {
    UnitBench bench({.part = 154, .variant = model});
    bench.StartSingle();
    WhenShown(bench, [&] {
      EXPECT_EQ(bench.Panel().txbSN.Text(), "15401042");
      EXPECT_EQ(bench.Panel().form.Caption(), "BRELANT");
      EXPECT_TRUE(bench.Panel().cbxSimulated.Visible());
      EXPECT_EQ(bench.Panel().cbxSimulated.Value(), 0);
      EXPECT_EQ(bench.Panel().m_Temp2.Enabled(), model != 5);
      EXPECT_TRUE(bench.port.PortOpen());
    });
    bench.Run();
    ExpectStarted(bench);
  }
}

TEST_F(SafetyStartTest, EachModelHasThePanelOnModbus) {
  for (const int model : {1, 3, 5, 6, 7}) {
    UnitBench bench({.part = 154, .variant = model});
    SpeakModbus(bench);
    bench.PutOnModbus();
    bench.Deafen();
    bench.StartSingle();
    WhenShown(bench, [&] {
      EXPECT_EQ(bench.Panel().txbSN.Text(), "15401042");
      EXPECT_EQ(bench.program->image.RamImage[65], 154);
      EXPECT_TRUE(bench.program->image.RamValid[65]);
      EXPECT_TRUE(bench.modbus.IsOpen());
    });
    bench.Run();
    ExpectStarted(bench);
  }
}

TEST_F(SafetyStartTest, OtherModelsAreRefused) {
  for (const std::uint8_t model : {0, 2, 4, 8, 255}) {
    UnitBench bench;
    bench.port.sensor.Eeprom()[4125] = model;
    bench.StartSingle();
    bench.Run();
    ExpectRefused(bench, kUnknownSensor);
  }
}

TEST_F(SafetyStartTest, OtherModelsAreRefusedOnModbus) {
  for (const std::uint8_t model : {0, 2, 4, 8}) {
    UnitBench bench;
    SpeakModbus(bench);
    bench.port.sensor.Eeprom()[4125] = model;
    bench.PutOnModbus();
    bench.Deafen();
    bench.StartSingle();
    bench.Run();
    ExpectRefused(bench, kUnknownSensor);
  }
}

TEST_F(SafetyStartTest, AUnitWithAnotherIdentificationIsRefused) {
  for (const std::uint8_t word : {0, 116, 118}) {
    for (const bool isModbus : {false, true}) {
      UnitBench bench;
      bench.port.sensor.Eeprom()[4124] = word;
      if (isModbus) {
        SpeakModbus(bench);
        bench.PutOnModbus();
        bench.Deafen();
      }
      bench.StartSingle();
      bench.Run();
      ExpectRefused(bench, kUnknownSensor);
    }
  }
}

// Model, then identification, on a connection that is gone before the panel makes its own.
TEST_F(SafetyStartTest, TheConnectionIsReleasedBeforeThePanelsOwnOnKiBus) {
  UnitBench bench;
  bench.StartSingle();
  WhenShown(bench);
  bench.Run();
  std::vector<std::string> words;
  std::string frame;
  for (const auto& act : bench.port.Story()) {
    if (act == "open" || act == "close") {
      if (!frame.empty()) words.push_back(frame);
      frame.clear();
      words.push_back(act);
    } else if (act == "254") {
      if (!frame.empty()) words.push_back(frame);
      frame = ">";
    } else {
      frame += " " + act;
    }
  }
  ASSERT_GE(words.size(), 11U);
  // The probe, the part number, Main's own connection with its two reads, and the panel's.
  EXPECT_THAT(std::vector(words.begin(), words.begin() + 12),
              ElementsAre("open", "close", "open", "> 129 65 194", "close", "open", "> 129 65 194",
                          "> 137 16 29 182", "> 137 16 28 181", "close", "open", "> 129 65 194"))
      << testing::PrintToString(words);
  int open = 0;
  for (const auto& word : words) {
    if (word == "open") ++open;
    if (word == "close") --open;
    EXPECT_LE(open, 1);
  }
}

TEST_F(SafetyStartTest, TheConnectionIsReleasedAfterAFailureToo) {
  UnitBench bench;
  bench.StartSingle();
  int frames = 0;
  bench.port.onOutput = [&, answer = bench.port.onOutput](const test::Bytes& bytes) {
    // The identification is never told.
    if (bytes.size() == 1 && bytes.front() == 254) ++frames;
    if (frames < 4) answer(bytes);
  };
  bench.Run();
  ExpectRefused(bench, "The unit does not answer.");
}

TEST_F(SafetyStartTest, TheProtocolIsChosenBehindTheConnectionOnlyForTheModel) {
  UnitBench bench;
  SpeakModbus(bench);
  bench.PutOnModbus();
  bench.Deafen();
  // What goes out on each road, and how many requests there have been by then.
  std::vector<std::size_t> kiBusAt;
  bench.port.onOutput = [&](const test::Bytes&) { kiBusAt.push_back(bench.modbus.Requests().size()); };
  bench.StartSingle();
  WhenShown(bench);
  bench.Run();
  ExpectStarted(bench);
  // Over Modbus the unit is looked for and asked for its part number first. Then Main connects, and only
  // behind that chooses Modbus.
  ASSERT_THAT(kiBusAt, Not(IsEmpty()));
  EXPECT_THAT(kiBusAt, testing::Each(2U));
  const auto story = bench.modbus.Story();
  EXPECT_EQ(story.front(), "1 holding 4128");
  const auto model = std::find(story.begin(), story.end(), "1 holding 10254");
  ASSERT_NE(model, story.end());
  EXPECT_EQ(*(model + 1), "1 holding 10254");
  EXPECT_EQ(*(model + 2), "1 holding 4128");
}

TEST_F(SafetyStartTest, TheModelIsReadBehindABoxThatSaysSo) {
  UnitBench bench;
  std::vector<std::string> texts;
  bench.pump.OnPass([&] {
    const auto& msg = bench.program->msg;
    const auto text = msg.Visible() ? msg.Label1.Text() : std::string();
    if (!text.empty() && (texts.empty() || texts.back() != text)) texts.push_back(text);
    return false;
  });
  bench.StartSingle();
  WhenShown(bench);
  bench.Run();
  EXPECT_THAT(texts, ElementsAre("Please wait", "Reading sensor"));
}

TEST_F(SafetyStartTest, ANetworkUnitIsAddressedByItsIdOnKiBus) {
  UnitBench bench({.part = 154, .id = 17});
  bench.StartNetwork("17");
  WhenShown(bench);
  bench.Run();
  ExpectStarted(bench);
  const auto sent = bench.port.Sent();
  EXPECT_EQ(sent.front(), 241);
  EXPECT_EQ(std::count(sent.begin(), sent.end(), 254), 0);
}

TEST_F(SafetyStartTest, ANetworkUnitIsAddressedByItsIdOnModbus) {
  UnitBench bench({.part = 154, .id = 17});
  SpeakModbus(bench);
  bench.PutOnModbus(17);
  bench.Deafen();
  bench.StartNetwork("17");
  WhenShown(bench);
  bench.Run();
  ExpectStarted(bench);
  EXPECT_THAT(bench.modbus.Story(), testing::Each(StartsWith("17 ")));
}

TEST_F(SafetyStartTest, PollsAUnitOnEitherRoad) {
  for (const bool isModbus : {false, true}) {
    UnitBench bench;
    if (isModbus) {
      SpeakModbus(bench);
      bench.PutOnModbus();
      bench.Deafen();
    }
    bench.StartSingle();
    bench.When(kPanel, [&] {
      // The first values have no Case words yet.
      EXPECT_THAT(bench.Panel().txbCHact[5].Text(), Not(testing::HasSubstr(".")));
      bench.After(seconds(5), [&] {
        EXPECT_EQ(bench.program->session.polls, 2U);
        EXPECT_LE(std::stod(bench.Panel().txbCHact[5].Text()), 50);
        bench.Panel().form.Close();
      });
    });
    bench.Run();
    ExpectStarted(bench);
  }
}

// The end

TEST_F(SafetyStartTest, TheEndSendsNothingAndKeepsNoFile) {
  for (const bool isModbus : {false, true}) {
    UnitBench bench;
    if (isModbus) {
      SpeakModbus(bench);
      bench.PutOnModbus();
      bench.Deafen();
    }
    bench.files.Put(kLast, {1, 2, 3});
    bench.StartSingle();
    WhenShown(bench, [&] {
      bench.Panel().txbKelLevel[4].SetText("29");
      bench.port.Forget();
      bench.modbus.Forget();
      bench.Panel().form.Close();
      EXPECT_THAT(bench.port.Sent(), IsEmpty());
      EXPECT_THAT(bench.modbus.Story(), IsEmpty());
      EXPECT_FALSE(bench.port.PortOpen());
      EXPECT_FALSE(bench.modbus.IsOpen());
      EXPECT_FALSE(bench.files.Exists(kLast));
    });
    bench.Run();
    ExpectStarted(bench);
    EXPECT_EQ(bench.port.sensor.Eeprom()[4240] * 256 + bench.port.sensor.Eeprom()[4241], 2300);
  }
}

TEST_F(SafetyStartTest, AnEndInTheMiddleOfAPollIsSilent) {
  for (const int moment : {2005, 2020, 2050, 2100}) {
    UnitBench bench;
    bench.StartSingle();
    bench.When(kPanel, [&] { bench.After(milliseconds(moment), [&] { bench.Panel().form.Close(); }); });
    bench.Run();
    ExpectStarted(bench);
    EXPECT_EQ(bench.CountShown("frmComSet"), 2) << moment;
  }
}

TEST_F(SafetyStartTest, ASecondSessionFindsTheUnitAgain) {
  UnitBench bench;
  for (int session = 0; session < 2; ++session) {
    bench.StartSingle();
    WhenShown(bench);
  }
  bench.Run();
  EXPECT_EQ(bench.CountShown(kPanel), 2);
  EXPECT_THAT(bench.ui.Texts(), IsEmpty());
}

// Without a unit

TEST_F(SafetyStartTest, Vega3IsSimulatedWithoutAFileAndWithoutALine) {
  for (const char* protocol : {"KiBus", "ModBus"}) {
    UnitBench bench;
    bench.Store("Prot", protocol);
    bench.files.Put("C:\\KVX\\Vega 3.sim", {1});
    std::vector<std::string> read;
    bench.files.onRead = [&](const std::string& path) { read.push_back(path); };
    bench.StartSimulated("Vega 3");
    WhenShown(bench, [&] {
      const auto& image = bench.program->image;
      EXPECT_EQ(image.RamImage[65], 154);
      EXPECT_EQ(image.EepromImage[4124], 117);
      EXPECT_EQ(image.EepromImage[4125], 3);
      EXPECT_TRUE(image.RamValid[65] && image.EepromValid[4124] && image.EepromValid[4125]);
      auto& panel = bench.Panel();
      EXPECT_EQ(panel.form.Caption(), "BRELANT Simulated mode");
      EXPECT_FALSE(panel.cbxSimulated.Visible());
      EXPECT_EQ(panel.cbxSimulated.Value(), 1);
      for (const auto* control : {&panel.mReadfromsensor, &panel.mSendtosensor, &panel.mCalibrate,
                                  &panel.btnReadFromSensor, &panel.btnSendToSensor}) {
        EXPECT_FALSE(control->Enabled()) << control->Name();
      }
    });
    bench.Run();
    ExpectStarted(bench);
    EXPECT_THAT(read, IsEmpty());
    EXPECT_THAT(bench.port.Story(), Not(Contains("open")));
    EXPECT_THAT(bench.modbus.Story(), IsEmpty());
  }
}

// The part number over Modbus

TEST_F(SafetyStartTest, APartNumberThatCannotBeReadIsTold) {
  UnitBench bench;
  SpeakModbus(bench);
  bench.StartSingle();
  bench.Run();
  ExpectRefused(bench, kNoRead);
  EXPECT_THAT(bench.port.Sent(), IsEmpty());
}

TEST_F(SafetyStartTest, APartNumberOfNoughtIsRefused) {
  UnitBench bench;
  SpeakModbus(bench);
  bench.PutOnModbus();
  bench.Deafen();
  bench.modbus.units[1].holding[4128] = 0;
  bench.StartSingle();
  bench.Run();
  ExpectRefused(bench, kUnknownSensor);
}

class ReadPartModbusTest : public testing::Test {
 protected:
  ReadPartModbusTest() { bench.Make(); }

  bool Read(bool reportError = true) {
    auto& program = *bench.program;
    return ReadPartModbus({program.session, program.link, bench.files, bench.modbus, program.unitNames.names,
                           program.unitNames.modbus},
                          program.image, "7", reportError);
  }
  Session& GetSession() { return bench.program->session; }
  std::string Log() { return bench.files.Text("C:\\KVX\\ComLogg.txt"); }

  UnitBench bench;
};

TEST_F(ReadPartModbusTest, PutsItIntoTheImageAndLetsGoOfTheLine) {
  bench.PutOnModbus();
  bench.modbus.units[1].holding[4128] = 0x1200 + 154;
  EXPECT_TRUE(Read());
  EXPECT_EQ(bench.program->image.RamImage[65], 154);
  EXPECT_TRUE(bench.program->image.RamValid[65]);
  EXPECT_EQ(bench.modbus.port, "7");
  EXPECT_FALSE(bench.modbus.IsOpen());
  EXPECT_THAT(bench.port.Sent(), IsEmpty());
  EXPECT_EQ(GetSession().LastError, "");
}

TEST_F(ReadPartModbusTest, TheBroadcastIdIsTheOnlyUnit) {
  for (const auto& [id, address] : {std::pair{30.0F, 1}, std::pair{31.0F, 1}, std::pair{29.0F, 29},
                                    std::pair{5.0F, 5}, std::pair{0.0F, 0}}) {
    bench.modbus.units.clear();
    bench.modbus.Forget();
    bench.PutOnModbus(address);
    GetSession().SensorId = id;
    EXPECT_TRUE(Read()) << id;
    EXPECT_THAT(bench.modbus.Story(), testing::Each(std::to_string(address) + " holding 4128")) << id;
  }
}

TEST_F(ReadPartModbusTest, ANoughtIsStoredAllTheSame) {
  bench.PutOnModbus();
  bench.modbus.units[1].holding[4128] = 0;
  bench.program->image.RamImage[65] = 104;
  EXPECT_TRUE(Read());
  EXPECT_EQ(bench.program->image.RamImage[65], 0);
  EXPECT_TRUE(bench.program->image.RamValid[65]);
  EXPECT_EQ(bench.program->info.GetPlatform(), 0);
  EXPECT_EQ(GetSession().LastError, "Unknown product");
}

TEST_F(ReadPartModbusTest, AFailureIsToldAndLogged) {
  GetSession().AppDir = "C:\\KVX\\";
  GetSession().TrafficLogOn = true;
  GetSession().BusBusyText = "busy";
  EXPECT_FALSE(Read());
  EXPECT_EQ(GetSession().LastError, kNoRead);
  EXPECT_EQ(GetSession().BusBusyText, "");
  EXPECT_FALSE(bench.modbus.IsOpen());
  EXPECT_FALSE(bench.program->image.RamValid[65]);
  const auto log = Log();
  const auto at = log.find("Could not read Part MB");
  ASSERT_NE(at, std::string::npos);
  EXPECT_EQ(log.find("Could not read Part MB", at + 1), std::string::npos);
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1);
  EXPECT_EQ(bench.files.openLogs, 0);
}

TEST_F(ReadPartModbusTest, WithoutTheLogNothingIsLogged) {
  GetSession().AppDir = "C:\\KVX\\";
  EXPECT_FALSE(Read());
  EXPECT_FALSE(bench.files.Exists("C:\\KVX\\ComLogg.txt"));
}

TEST_F(ReadPartModbusTest, AFailureIsNotToldUnlessItIsWanted) {
  EXPECT_FALSE(Read(false));
  EXPECT_EQ(GetSession().LastError, "");
}

TEST_F(ReadPartModbusTest, AnEarlierFailureStays) {
  GetSession().LastError = "some trouble";
  EXPECT_FALSE(Read());
  EXPECT_EQ(GetSession().LastError, "some trouble");
}

TEST_F(ReadPartModbusTest, AnyFailureOfTheLineIsOne) {
  using Kind = test::VirtualModbus::Kind;
  bench.PutOnModbus();
  for (const auto kind : {Kind::exception, Kind::port}) {
    GetSession().LastError.clear();
    bench.modbus.Fail({kind});
    EXPECT_FALSE(Read());
    EXPECT_EQ(GetSession().LastError, kNoRead);
  }
  bench.modbus.failOpen = true;
  EXPECT_FALSE(Read());
}

TEST_F(ReadPartModbusTest, TheSerialPortIsClosedAfterAFailure) {
  bench.port.SetPortOpen(true);
  EXPECT_FALSE(Read());
  EXPECT_FALSE(bench.port.PortOpen());
}

}  // namespace
}  // namespace brelant
