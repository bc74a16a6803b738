// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/sending.h"

namespace brelant {
namespace {

using std::chrono::seconds;
using test::Bytes;
using test::FactoryBench;
using test::Framed;
using test::RamBytes;
using test::SampleRam;
using test::SettingsFile;
using test::SettingsFile5;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFile = "C:\\Files\\a.set";
constexpr const char* kOtherModel = "This setfile can't be used on this sensor";

// Platform 5

/// What the sensor holds; both backgrounds are zero gas.
RamBytes SensorRam5() {
  auto ram = SampleRam();
  test::Put(ram, 216, {240, 0});
  test::Put(ram, 223, {240, 0});
  return ram;
}

/// What the file holds: every byte differs but for the model, the ID and the backgrounds.
RamBytes FileRam5() {
  auto ram = SensorRam5();
  for (auto& byte : ram) byte = static_cast<std::uint8_t>(byte ^ 0x11);
  test::Put(ram, 65, {104});
  test::Put(ram, 138, {8, 0, 8, 0});
  test::Put(ram, 208, {7});
  test::Put(ram, 216, {240, 0});
  test::Put(ram, 223, {240, 0});
  test::Put(ram, 226, {0});
  return ram;
}

class SendFile5Test : public testing::Test {
 protected:
  SendFile5Test() { bench.files.Put(kFile, SettingsFile5(FileRam5())); }

  void ExpectRefused(const std::string& text) {
    EXPECT_THAT(bench.ui.Texts(), ElementsAre(text));
    EXPECT_THAT(bench.Written(), IsEmpty());
    EXPECT_FALSE(bench.program->msg.Visible());
    EXPECT_EQ(bench.program->session.LastError, "");
  }

  FactoryBench bench{SensorRam5()};
};

struct Chunk {
  std::size_t address;
  std::size_t count;
};
const std::vector<Chunk> kWritten5{{31, 2},  {57, 4},  {61, 2},  {162, 4}, {166, 4}, {170, 4}, {174, 4},
                                   {178, 4}, {182, 4}, {186, 4}, {190, 4}, {194, 3}, {205, 4}, {212, 2},
                                   {216, 4}, {220, 4}, {224, 4}, {228, 4}, {232, 1}};

TEST_F(SendFile5Test, SendsTheSettingsOfTheFile) {
  bench.Send(kFile);
  auto sent = FileRam5();
  // The background of gas 1 is read from 223 and written to 222.
  test::Put(sent, 222, {240, 0});
  auto expected = SensorRam5();
  std::vector<Bytes> frames;
  for (const auto& [address, count] : kWritten5) {
    const bool high = address >= 128;
    Bytes frame{static_cast<std::uint8_t>(count + (high ? 64 : 0)),
                static_cast<std::uint8_t>(address - (high ? 128 : 0))};
    for (std::size_t i = address; i < address + count; ++i) {
      frame.push_back(sent.at(i));
      expected.at(i) = sent.at(i);
    }
    frames.push_back(Framed(frame));
  }
  frames.push_back({161, 0, 161});
  EXPECT_EQ(bench.Written(), frames);
  // The first by hand: mode 2 and amount 49, each with bits 0 and 4 turned over.
  EXPECT_EQ(frames[0], (Bytes{2, 31, 19, 32, 84}));
  EXPECT_EQ(bench.SensorRam(), Bytes(expected.begin(), expected.end()));
  EXPECT_EQ(bench.port.sensor.Count().saves, 1);
  EXPECT_TRUE(bench.ui.messages.empty());
  EXPECT_FALSE(bench.port.PortOpen());
}

TEST_F(SendFile5Test, GoesItsStepsInOrder) {
  std::vector<std::string> story;
  bench.files.onRead = [&](const std::string& path) {
    story.push_back(path + " after " + std::to_string(bench.port.sensor.Frames().size()));
  };
  bench.Send(kFile);
  // The part number, then the definition, then the whole of RAM, then the file.
  EXPECT_THAT(story, ElementsAre("C:\\KVX\\\\DEF00104.PDT after 1", std::string(kFile) + " after 45"));
  EXPECT_EQ(bench.port.sensor.Frames().at(0), (Bytes{131, 65, 196}));
  EXPECT_EQ(bench.port.sensor.Frames().size(), 45U + kWritten5.size() + 1);
  EXPECT_EQ(bench.CountShown("frm5"), 0);
}

TEST_F(SendFile5Test, ShowsWhatItDoesInFrontOfTheDialog) {
  std::vector<std::string> texts;
  bool busy = true;
  bench.pump.OnPass([&] {
    const auto& msg = bench.program->msg;
    if (!msg.Visible()) return false;
    busy = busy && bench.program->comSet.form.Busy();
    if (texts.empty() || texts.back() != msg.Label1.Text()) texts.push_back(msg.Label1.Text());
    return false;
  });
  bench.Send(kFile);
  EXPECT_THAT(texts, ElementsAre("Loading settings", "Reading sensor", "Saving to sensor"));
  EXPECT_TRUE(busy);
  EXPECT_FALSE(bench.program->comSet.form.Busy());
  EXPECT_FALSE(bench.program->msg.Visible());
}

TEST_F(SendFile5Test, TheBackgroundKeepsItsConcentrationToTheGrain) {
  auto file = FileRam5();
  test::Put(file, 216, {176, 0});  // 45056
  bench.files.Put(kFile, SettingsFile5(file));
  bench.Send(kFile);
  EXPECT_TRUE(bench.ui.messages.empty());
  const auto ram = bench.SensorRam();
  // e^(-c / 10000) moves less than 10 positions a ppm, and a concentration is kept in whole ppm.
  EXPECT_NEAR(ram[216] * 256 + ram[217], 45056, 6);
}

TEST_F(SendFile5Test, VariantsUpTo2AreSentTo) {
  struct Case {
    int variant;
    bool sent;
  };
  for (const auto& [variant, sent] :
       {Case{0, true}, Case{1, true}, Case{2, true}, Case{3, false}, Case{4, false}}) {
    auto ram = SensorRam5();
    ram[226] = static_cast<std::uint8_t>(variant);
    FactoryBench fresh(ram);
    auto file = FileRam5();
    file[226] = ram[226];
    fresh.files.Put(kFile, SettingsFile5(file));
    fresh.Send(kFile);
    EXPECT_EQ(fresh.port.sensor.Count().saves, sent ? 1 : 0) << variant;
    if (sent) {
      EXPECT_TRUE(fresh.ui.messages.empty()) << variant;
    } else {
      EXPECT_THAT(fresh.ui.Texts(), ElementsAre(test::kUnknownSensor)) << variant;
      EXPECT_EQ(fresh.SensorRam(), Bytes(ram.begin(), ram.end()));
    }
  }
}

TEST_F(SendFile5Test, AFileOfAnotherVariantIsRefused) {
  auto file = FileRam5();
  file[226] = 1;
  bench.files.Put(kFile, SettingsFile5(file));
  bench.Send(kFile);
  ExpectRefused(kOtherModel);
  for (std::size_t i = 0; i < 256; ++i) {
    EXPECT_EQ(bench.program->image.RamImage[i], SensorRam5()[i]) << i;
  }
}

/// A file of one protocol generation for a sensor of the other; the variant is the same.
struct OtherGeneration {
  std::uint8_t sensorPart;
  std::uint8_t filePart;
  Bytes save;
};
class SendFileOfOtherGenerationTest : public testing::TestWithParam<OtherGeneration> {};
INSTANTIATE_TEST_SUITE_P(, SendFileOfOtherGenerationTest,
                         testing::Values(OtherGeneration{104, 231, {161, 0, 161}},
                                         OtherGeneration{231, 104, {153, 173, 70}}));

TEST_P(SendFileOfOtherGenerationTest, EndsWithTheSaveOfTheSensorsOwn) {
  const auto& [sensorPart, filePart, save] = GetParam();
  FactoryBench bench(sensorPart);
  bench.files.Put("C:\\KVX\\DEF00231.PDT", test::DefinitionFile(test::CurvedChannels()));
  auto ram = SensorRam5();
  ram[65] = sensorPart;
  std::copy(ram.begin(), ram.end(), bench.port.sensor.Ram().begin());
  auto file = FileRam5();
  file[65] = filePart;
  bench.files.Put(kFile, SettingsFile5(file));
  bench.Send(kFile);
  EXPECT_TRUE(bench.ui.messages.empty());
  const auto written = bench.Written();
  ASSERT_EQ(written.size(), kWritten5.size() + 1);
  EXPECT_EQ(written.back(), save);
  EXPECT_EQ(bench.port.sensor.Count().saves, 1);
  // The settings are in the sensor, its part number is its own.
  auto expected = ram;
  test::Put(file, 222, {240, 0});
  for (const auto& [address, count] : kWritten5) {
    for (auto i = address; i < address + count; ++i) expected.at(i) = file.at(i);
  }
  EXPECT_EQ(bench.SensorRam(), Bytes(expected.begin(), expected.end()));
  EXPECT_EQ(bench.program->image.RamImage[65], sensorPart);
}

TEST_F(SendFile5Test, ABlockOfAnotherSizeIsDamage) {
  for (const std::size_t size : {0U, 111U, 239U, 241U}) {
    FactoryBench fresh(SensorRam5());
    const auto whole = SettingsFile5(FileRam5());
    Bytes payload(whole.begin() + 21, whole.end());
    payload.resize(size);
    fresh.files.Put(kFile, SettingsFile({{1, payload}, {99, Bytes(240, 7)}}));
    fresh.Send(kFile);
    EXPECT_THAT(fresh.ui.Texts(), ElementsAre(std::string("File is damaged ") + kFile)) << size;
    EXPECT_THAT(fresh.Written(), IsEmpty());
    EXPECT_EQ(test::RamOf(fresh.program->image), SensorRam5());
  }
}

TEST_F(SendFile5Test, ABlockOfRamWithThePartOfAnotherPlatformIsRefusedWithoutAWord) {
  for (const int part : {33, 85, 88, 215}) {
    FactoryBench fresh(SensorRam5());
    auto file = FileRam5();
    file[65] = static_cast<std::uint8_t>(part);
    fresh.files.Put(kFile, SettingsFile5(file));
    std::size_t framesThen = 0;
    fresh.files.onRead = [&](const std::string& path) {
      if (path == kFile) framesThen = fresh.port.sensor.Frames().size();
    };
    fresh.Send(kFile);
    EXPECT_THAT(fresh.ui.Texts(), ElementsAre(kOtherModel)) << part;
    EXPECT_THAT(fresh.Written(), IsEmpty());
    // The sensor is not asked for anything once the file has been read.
    EXPECT_EQ(fresh.port.sensor.Frames().size(), framesThen);
    EXPECT_EQ(test::RamOf(fresh.program->image), SensorRam5());
  }
}

TEST_F(SendFile5Test, AFileOfAnotherPlatformIsRefused) {
  bench.files.Put(kFile, test::SettingsFileEeprom(217));
  bench.Send(kFile);
  ExpectRefused("Setfile error");
}

TEST_F(SendFile5Test, FilesThatCannotBeReadAreRefused) {
  auto damaged = SettingsFile5(FileRam5());
  damaged[100] ^= 1;
  bench.files.Put(kFile, damaged);
  bench.Send(kFile);
  ExpectRefused(std::string("File is damaged ") + kFile);
}

TEST_F(SendFile5Test, AFileThatIsGoneIsToldInFrontOfTheBox) {
  bool boxed = false;
  bench.ui.onMessage = [&] { boxed = bench.program->msg.Visible(); };
  bench.Send("C:\\Files\\none.set");
  EXPECT_TRUE(boxed);
  ExpectRefused("File not found C:\\Files\\none.set");
}

TEST_F(SendFile5Test, AFailingDiskIsTold) {
  bench.files.Break(kFile);
  bench.Send(kFile);
  EXPECT_EQ(bench.ui.messages.size(), 1U);
  EXPECT_THAT(bench.Written(), IsEmpty());
}

TEST_F(SendFile5Test, WithoutADefinitionNothingIsRead) {
  bench.files.Remove("C:\\KVX\\DEF00104.PDT");
  bench.Send(kFile);
  ExpectRefused("Can't find file: C:\\KVX\\\\DEF00104.PDT, ");
  EXPECT_EQ(bench.port.sensor.Frames().size(), 1U);
}

TEST_F(SendFile5Test, ABlankNameIsAskedFor) {
  for (const char* name : {"", "   "}) {
    FactoryBench fresh(SensorRam5());
    fresh.When("frmComSet", [&] {
      fresh.Control("frmComSet", "txbFileName").SetText(name);
      fresh.PressSend();
    });
    fresh.Run();
    EXPECT_THAT(fresh.ui.Texts(), ElementsAre("Please enter file name in the textbox."));
    EXPECT_TRUE(fresh.port.Events().empty());
    EXPECT_EQ(fresh.program->session.LastError, "");
  }
}

TEST_F(SendFile5Test, ATypedNameDoesNotCount) {
  bench.When("frmComSet", [&] {
    bench.Control("frmComSet", "txbFileName").SetText(kFile);
    bench.PressSend();
  });
  bench.Run();
  EXPECT_TRUE(bench.ui.messages.empty());
  EXPECT_TRUE(bench.port.Events().empty());
  EXPECT_FALSE(bench.program->msg.Visible());
  EXPECT_EQ(bench.CountShown("frmComSet"), 1);
}

TEST_F(SendFile5Test, ANameThatIsTypedOverTheChosenOneDoesNotCount) {
  bench.When("frmComSet", [&] {
    bench.ui.chosenFiles = {kFile};
    bench.Click("frmComSet", "Command5");
    bench.Control("frmComSet", "txbFileName").SetText("C:\\Files\\none.set");
    bench.PressSend();
  });
  bench.Run();
  EXPECT_TRUE(bench.ui.messages.empty());
  EXPECT_EQ(bench.port.sensor.Count().saves, 1);
}

TEST_F(SendFile5Test, ADialogThatIsCancelledKeepsTheChosenName) {
  bench.When("frmComSet", [&] {
    bench.ui.chosenFiles = {kFile, std::nullopt};
    bench.Click("frmComSet", "Command5");
    bench.Click("frmComSet", "Command5");
    EXPECT_EQ(bench.Control("frmComSet", "txbFileName").Text(), kFile);
    bench.PressSend();
  });
  bench.Run();
  EXPECT_EQ(bench.port.sensor.Count().saves, 1);
}

TEST_F(SendFile5Test, ModbusIsNotSpokenYet) {
  bench.When("frmComSet", [&] {
    bench.ui.chosenFiles = {kFile};
    bench.Click("frmComSet", "Command5");
    bench.Click("frmComSet", "optComProt(1)");
    bench.PressSend();
  });
  bench.Run();
  EXPECT_THAT(bench.ui.Texts(), ElementsAre("Can't read from sensor"));
  EXPECT_TRUE(bench.port.Events().empty());
}

TEST_F(SendFile5Test, TakesPortAndIdOfTheDialog) {
  bench.port.sensor.SetId(7);
  bench.When("frmComSet", [&] {
    bench.Control("frmComSet", "txbComPort").SetText("/dev/ttyUSB7");
    bench.Click("frmComSet", "optStartMode(1)");
    bench.Control("frmComSet", "txbID").SetText("7");
    bench.ui.chosenFiles = {kFile};
    bench.Click("frmComSet", "Command5");
    bench.PressSend();
  });
  bench.Run();
  EXPECT_EQ(bench.port.selected, "/dev/ttyUSB7");
  EXPECT_EQ(bench.port.Sent().at(0), 231);
  EXPECT_EQ(bench.port.sensor.Count().saves, 1);
}

TEST_F(SendFile5Test, ASilentLineIsTold) {
  bench.port.onOutput = nullptr;
  bench.Send(kFile);
  EXPECT_THAT(bench.ui.Texts(), ElementsAre("Can't read from sensor"));
  EXPECT_FALSE(bench.port.PortOpen());
  EXPECT_FALSE(bench.program->msg.Visible());
}

TEST_F(SendFile5Test, APortThatCannotBeOpenedIsTold) {
  bench.port.failOpen = true;
  bench.Send(kFile);
  EXPECT_EQ(bench.ui.messages.size(), 1U);
  EXPECT_FALSE(bench.program->msg.Visible());
}

TEST_F(SendFile5Test, CancelWhileItReadsIsSilent) {
  const auto answer = bench.port.onOutput;
  bench.port.onOutput = [&, answer](const Bytes& bytes) {
    if (bench.port.sensor.Frames().size() == 20) bench.Click("frmMsg", "Command1");
    answer(bytes);
  };
  bench.Send(kFile);
  EXPECT_TRUE(bench.ui.messages.empty());
  EXPECT_THAT(bench.Written(), IsEmpty());
  EXPECT_LT(bench.port.sensor.Frames().size(), 25U);
  EXPECT_FALSE(bench.program->msg.Visible());
  EXPECT_EQ(bench.program->session.LastError, "");
  EXPECT_FALSE(bench.port.PortOpen());
}

TEST_F(SendFile5Test, CancelWhileItWritesSendsNoMoreAndNoSave) {
  const auto answer = bench.port.onOutput;
  bench.port.onOutput = [&, answer](const Bytes& bytes) {
    answer(bytes);
    if (bytes.size() > 1 && bytes[1] == 34) bench.Click("frmMsg", "Command1");
  };
  bench.Send(kFile);
  EXPECT_TRUE(bench.ui.messages.empty());
  EXPECT_EQ(bench.Written().size(), 4U);
  EXPECT_EQ(bench.port.sensor.Count().saves, 0);
}

TEST_F(SendFile5Test, AWriteThatFailsIsTold) {
  const auto answer = bench.port.onOutput;
  bench.port.onOutput = [answer](const Bytes& bytes) {
    if (bytes.size() < 5) answer(bytes);
  };
  bench.Send(kFile);
  EXPECT_THAT(bench.ui.Texts(), ElementsAre("Can't save to sensor"));
}

TEST_F(SendFile5Test, LeavingTheDialogInTheMiddleEndsTheProcess) {
  const auto answer = bench.port.onOutput;
  bench.port.onOutput = [&, answer](const Bytes& bytes) {
    answer(bytes);
    if (bench.port.sensor.Frames().size() == 20) bench.program->comSet.form.Close();
  };
  bench.Send(kFile);
  EXPECT_TRUE(bench.program->session.processOver);
  EXPECT_TRUE(bench.ui.messages.empty());
  EXPECT_LT(bench.port.sensor.Frames().size(), 25U);
  EXPECT_FALSE(bench.port.PortOpen());
}

TEST_F(SendFile5Test, ThePressItselfSendsNothing) {
  bench.When("frmComSet", [&] {
    bench.ui.chosenFiles = {kFile};
    bench.Click("frmComSet", "Command5");
    bench.Click("frmComSet", "cmdSendFile");
    EXPECT_TRUE(bench.port.Events().empty());
    bench.After(seconds(120), [&] { bench.Click("frmComSet", "btnExit"); });
  });
  bench.Run();
  EXPECT_EQ(bench.port.sensor.Count().saves, 1);
}

TEST_F(SendFile5Test, ASessionCanFollow) {
  bench.When("frmComSet", [&] {
    bench.ui.chosenFiles = {kFile};
    bench.Click("frmComSet", "Command5");
    bench.Click("frmComSet", "cmdSendFile");
    bench.After(seconds(60), [&] {
      bench.Click("frmComSet", "optStartMode(0)");
      bench.Click("frmComSet", "btnStartKVX");
    });
  });
  std::string time;
  bench.When("frm5", [&] {
    time = bench.Control("frm5", "txbDigTtime").Text();
    bench.program->session.CurrentPanel->form.Close();
  });
  bench.Run();
  // 10 with bits 0 and 4 turned over is 27 quarters.
  EXPECT_EQ(time, "6.75");
  EXPECT_TRUE(bench.ui.messages.empty());
}

TEST_F(SendFile5Test, TwoPressesSendTwice) {
  bench.When("frmComSet", [&] {
    bench.ui.chosenFiles = {kFile};
    bench.Click("frmComSet", "Command5");
    bench.Click("frmComSet", "cmdSendFile");
    bench.After(seconds(60), [&] { bench.PressSend(); });
  });
  bench.Run();
  EXPECT_EQ(bench.port.sensor.Count().saves, 2);
}

// Other platforms

/// A voice on the line that knows its part number and nothing else.
class SendFileToAVoiceTest : public testing::TestWithParam<int> {
 protected:
  SendFileToAVoiceTest() {
    bench.port.onOutput = [this](const Bytes& bytes) {
      for (const auto byte : bytes) heard.push_back(byte);
      const auto part = static_cast<std::uint8_t>(GetParam());
      if (heard == Bytes{254}) bench.port.Arrive({223});
      if (heard == Bytes{254, 131, 65, 196}) bench.port.Arrive(Framed({6, part, 0, 0}));
      if (heard.size() == 4) heard.clear();
    };
  }

  test::ProgramBench<test::ScriptedPort> bench;
  Bytes heard;
};
INSTANTIATE_TEST_SUITE_P(, SendFileToAVoiceTest, testing::Values(50, 64, 26));

TEST_P(SendFileToAVoiceTest, IsRefused) {
  bench.files.Put(kFile, SettingsFile5(FileRam5()));
  bench.When("frmComSet", [this] {
    bench.ui.chosenFiles = {kFile};
    bench.Click("frmComSet", "Command5");
    bench.Click("frmComSet", "cmdSendFile");
    bench.After(seconds(120), [this] { bench.Click("frmComSet", "btnExit"); });
  });
  bench.Run();
  EXPECT_THAT(bench.ui.Texts(), ElementsAre(test::kUnknownSensor));
  EXPECT_EQ(bench.port.Sent(), (Bytes{254, 131, 65, 196}));
}

// Platforms 6 and 61

/// 512 marks behind their 30 zero bytes.
Bytes Marks(const std::vector<std::pair<std::size_t, std::uint8_t>>& marks) {
  Bytes payload(542);
  for (const auto& [address, mark] : marks) payload.at(30 + address) = mark;
  return payload;
}

TEST(SendFile6, ABlockOfAnotherSizeIsDamage) {
  struct Sizes {
    std::size_t selection;
    std::size_t settings;
  };
  for (const int part : {217, 215}) {
    for (const auto& [selection, settings] : {Sizes{542, 511}, Sizes{542, 513}, Sizes{542, 0},
                                              Sizes{541, 512}, Sizes{543, 512}, Sizes{30, 512}}) {
      FactoryBench bench(part);
      const auto before = bench.SensorEeprom();
      Bytes changed = before;
      changed[50] ^= 0xFF;
      changed.resize(settings, 9);
      auto marks = Marks({{50, 255}});
      marks.resize(selection, 255);
      bench.files.Put(kFile, SettingsFile({{15, marks}, {10, changed}}));
      bench.Send(kFile);
      EXPECT_THAT(bench.ui.Texts(), ElementsAre(std::string("File is damaged ") + kFile))
          << part << " " << selection << " " << settings;
      EXPECT_THAT(bench.Written(), IsEmpty());
      EXPECT_EQ(bench.SensorEeprom(), before);
      for (std::size_t i = 0; i < 512; ++i) EXPECT_EQ(bench.program->image.EepromImage[i], before[i]) << i;
    }
  }
}

TEST(SendFile6, SendsWhatTheFilesSelectionMarks) {
  FactoryBench bench(217);
  auto eeprom = bench.SensorEeprom();
  const auto before = eeprom;
  eeprom[50] ^= 0xFF;   // a whole byte
  eeprom[96] ^= 0xFF;   // bit 7 alone
  eeprom[106] ^= 0xFF;  // no mark
  bench.files.Put(kFile, SettingsFile({{15, Marks({{50, 255}, {96, 128}})}, {10, eeprom}}));
  bench.Send(kFile);
  EXPECT_TRUE(bench.ui.messages.empty());
  // Counter, unlock, the two words, lock, save.
  const auto word = [&](std::uint8_t half, std::uint8_t first, std::uint8_t second) {
    return Framed({10, half, first, second});
  };
  EXPECT_EQ(bench.Written(), (std::vector<Bytes>{{65, 102, 0, 167},
                                                 {147, 0, 147},
                                                 word(25, before[50] ^ 0xFF, before[51]),
                                                 word(48, before[96] ^ 0x80, before[97]),
                                                 {16, 0, 16},
                                                 {32, 0, 32}}));
  auto expected = before;
  expected[50] ^= 0xFF;
  expected[96] ^= 0x80;
  EXPECT_EQ(bench.SensorEeprom(), expected);
  EXPECT_TRUE(bench.port.sensor.Locked());
  EXPECT_FALSE(bench.port.PortOpen());
}

TEST(SendFile6, TheFilesOwnGasWordsAreExpressedForThisSensor) {
  FactoryBench bench(217);
  auto eeprom = bench.SensorEeprom();
  const auto before = eeprom;
  // Zero gas in any sensor: background 61440, and with the zero word 4096 the base 30720.
  ASSERT_EQ(eeprom[46] * 256 + eeprom[47], 4096);
  eeprom[36] = 120;
  eeprom[37] = 0;
  eeprom[38] = 240;
  eeprom[39] = 0;
  bench.files.Put(kFile,
                  SettingsFile({{10, eeprom}, {15, Marks({{36, 255}, {37, 255}, {38, 255}, {39, 255}})}}));
  // This sensor's zero word is half as large, so its base is twice as large.
  bench.port.sensor.Eeprom()[46] = 8;
  bench.Send(kFile);
  EXPECT_TRUE(bench.ui.messages.empty());
  auto expected = before;
  expected[46] = 8;
  expected[36] = expected[38] = 240;
  expected[37] = expected[39] = 0;
  EXPECT_EQ(bench.SensorEeprom(), expected);
}

TEST(SendFile6, WithNothingToChangeItUnlocksAndLocksAndSaves) {
  FactoryBench bench(217);
  bench.files.Put(kFile, SettingsFile({{10, bench.SensorEeprom()}, {15, Marks({{50, 255}, {96, 127}})}}));
  bench.Send(kFile);
  EXPECT_EQ(bench.Written(),
            (std::vector<Bytes>{{65, 102, 0, 167}, {147, 0, 147}, {16, 0, 16}, {32, 0, 32}}));
}

TEST(SendFile6, ReadsTheWholeEepromFirst) {
  FactoryBench bench(217);
  bench.files.Put(kFile, SettingsFile({{10, bench.SensorEeprom()}, {15, Marks({})}}));
  std::size_t frames = 0;
  bench.files.onRead = [&](const std::string&) {
    if (frames == 0) frames = bench.port.sensor.Frames().size();
  };
  bench.Send(kFile);
  EXPECT_EQ(frames, 1U + 86);
}

void ExpectOtherModel(int part, const std::function<void(Bytes&)>& change) {
  FactoryBench bench(part);
  const auto before = bench.SensorEeprom();
  auto eeprom = before;
  eeprom[50] ^= 0xFF;
  change(eeprom);
  bench.files.Put(kFile, SettingsFile({{10, eeprom}, {15, Marks({{50, 255}})}}));
  bench.Send(kFile);
  EXPECT_THAT(bench.ui.Texts(), ElementsAre(kOtherModel));
  EXPECT_THAT(bench.Written(), IsEmpty());
  const auto& image = bench.program->image;
  for (std::size_t i = 0; i < 512; ++i) EXPECT_EQ(image.EepromImage[i], before[i]) << i;
  // The part number is not restored.
  EXPECT_EQ(image.RamImage[65], eeprom[164]);
}

TEST(SendFile6, AFileOfAnotherModelIsRefused) {
  ExpectOtherModel(217, [](Bytes& eeprom) { eeprom[164] = 216; });  // part number
  ExpectOtherModel(217, [](Bytes& eeprom) { eeprom[98] ^= 4; });    // an installed channel
  ExpectOtherModel(217, [](Bytes& eeprom) { eeprom[158] ^= 2; });   // CO2
  ExpectOtherModel(217, [](Bytes& eeprom) { eeprom[165] ^= 1; });   // sequential control
  ExpectOtherModel(217, [](Bytes& eeprom) { eeprom[58] ^= 3; });    // gas curve
}

TEST(SendFile61, AFileOfAnotherModelIsRefused) {
  ExpectOtherModel(215, [](Bytes& eeprom) { eeprom[173] = 1; });    // variant
  ExpectOtherModel(215, [](Bytes& eeprom) { eeprom[164] = 217; });  // platform
}

TEST(SendFile6, AFileWithoutASelectionIsRefused) {
  for (const int part : {217, 215}) {
    FactoryBench bench(part);
    bench.files.Put(kFile, SettingsFile({{10, bench.SensorEeprom()}}));
    bench.Send(kFile);
    EXPECT_THAT(bench.ui.Texts(), ElementsAre("Setfile error"));
    EXPECT_THAT(bench.Written(), IsEmpty());
  }
}

TEST(SendFile6, AFileWithASelectionAloneIsRefused) {
  FactoryBench bench(217);
  bench.files.Put(kFile, SettingsFile({{15, Marks({{50, 255}})}}));
  bench.Send(kFile);
  EXPECT_THAT(bench.ui.Texts(), ElementsAre("Setfile error"));
  EXPECT_THAT(bench.Written(), IsEmpty());
}

TEST(SendFile6, EveryVariantUpTo5IsSentTo) {
  for (int variant = 0; variant <= 5; ++variant) {
    FactoryBench bench(217, variant);
    bench.files.Put(kFile, SettingsFile({{10, bench.SensorEeprom()}, {15, Marks({})}}));
    bench.Send(kFile);
    EXPECT_TRUE(bench.ui.messages.empty()) << variant;
    EXPECT_EQ(bench.port.sensor.Count().saves, 1) << variant;
  }
}

TEST(SendFile6, AVariantThatIsNotKnownIsRefused) {
  for (const int part : {217, 215}) {
    FactoryBench bench(part);
    bench.port.sensor.Eeprom()[173] = 7;
    bench.files.Put(kFile, SettingsFile({{10, bench.SensorEeprom()}, {15, Marks({})}}));
    bench.Send(kFile);
    EXPECT_THAT(bench.ui.Texts(), ElementsAre(test::kUnknownSensor));
    EXPECT_THAT(bench.Written(), IsEmpty());
  }
}

TEST(SendFile61, SendsWhatTheFilesSelectionMarks) {
  for (const int variant : {0, 1}) {
    FactoryBench bench(215, variant);
    auto eeprom = bench.SensorEeprom();
    const auto before = eeprom;
    eeprom[76] ^= 0x01;
    eeprom[77] ^= 0xFF;
    eeprom[58] = 240;
    eeprom[59] = 0;
    eeprom[80] ^= 0xFF;
    bench.files.Put(kFile,
                    SettingsFile({{10, eeprom}, {15, Marks({{76, 255}, {77, 255}, {58, 255}, {59, 255}})}}));
    bench.Send(kFile);
    EXPECT_TRUE(bench.ui.messages.empty());
    EXPECT_EQ(bench.Written(), (std::vector<Bytes>{{197, 55, 252},
                                                   Framed({10, 29, 240, 0}),
                                                   Framed({10, 38, static_cast<std::uint8_t>(before[76] ^ 1),
                                                           static_cast<std::uint8_t>(before[77] ^ 0xFF)}),
                                                   {169, 171, 84},
                                                   {145, 0, 145}}));
  }
}

}  // namespace
}  // namespace brelant
