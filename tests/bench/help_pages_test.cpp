// SPDX-License-Identifier: GPL-3.0-or-later
// The help pages that lie beside the programs.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace brelant::bench {
namespace {

const std::filesystem::path kDirectory = BRELANT_DATA_DIR;

std::string Page(const std::string& name) {
  std::ifstream file(kDirectory / name);
  EXPECT_TRUE(file.is_open()) << name;
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> Found(const std::string& text, const std::string& pattern) {
  const std::regex expression(pattern);
  std::vector<std::string> found;
  for (std::sregex_iterator it(text.begin(), text.end(), expression), end; it != end; ++it) {
    found.push_back((*it)[1]);
  }
  return found;
}

std::vector<std::string> Pages() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(kDirectory)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with("help") || !name.ends_with(".html")) continue;
    names.push_back(entry.path().lexically_relative(kDirectory).string());
  }
  return names;
}

/// What a link of that page leads to, from where all pages are counted.
std::string Target(const std::string& page, const std::string& link) {
  return (std::filesystem::path(page).parent_path() / link).lexically_normal().string();
}

TEST(HelpPages, ThereIsOneForEachVariantThatHasAPanel) {
  EXPECT_THAT(Pages(),
              testing::IsSupersetOf({"help5v0.html", "help5v1.html", "help5v2.html", "help5v3.html",
                                     "help6v0.html", "help6v1.html", "help6v2.html", "help6v3.html",
                                     "help6v4.html", "help6v5.html", "help61v0.html", "help61v1.html",
                                     "help7v1.html", "help7v2.html", "help8.html", "Support/help9.html"}));
}

// Both variants have one panel, and so one page.
TEST(HelpPages, OfPlatform7IsOne) {
  EXPECT_EQ(Page("help7v1.html"), Page("help7v2.html"));
}

TEST(HelpPages, OfPlatform7TellsEachTextOfTheStatusLine) {
  for (const char* text : {"FatalError", "Algorithm error", "Output error", "Selfdiagnostic error",
                           "Out of range", "Memory error", "Warming up"}) {
    EXPECT_THAT(Page("help7v2.html"), testing::HasSubstr("<td>" + std::string(text) + "</td>"));
    EXPECT_THAT(Page("help61v0.html"), testing::Not(testing::HasSubstr(text))) << text;
  }
}

TEST(HelpPages, OfPlatforms61And7TellTheAlarmsThatTheyHave) {
  for (const char* caption : {"CO2 PRE ALARM", "CO2 MAIN ALARM", "O2 PRE ALARM", "O2 MAIN ALARM", "OC 1"}) {
    EXPECT_THAT(Page("help61v0.html"), testing::HasSubstr(caption)) << caption;
    EXPECT_THAT(Page("help61v1.html"), testing::Not(testing::HasSubstr(caption))) << caption;
    EXPECT_THAT(Page("help7v2.html"), testing::Not(testing::HasSubstr(caption))) << caption;
  }
  EXPECT_THAT(Page("help61v1.html"), testing::Not(testing::HasSubstr("id=\"alarms\"")));
  EXPECT_THAT(Page("help7v2.html"), testing::HasSubstr("id=\"alarms\""));
}

// Platform 7 has one single point and no settings files; platform 61 has all.
TEST(HelpPages, OfPlatforms61And7TellTheCommandsThatTheyHave) {
  for (const char* page : {"help61v0.html", "help61v1.html"}) {
    EXPECT_THAT(Page(page), testing::HasSubstr("\"Fresh air\" and \"Other\"")) << page;
    EXPECT_THAT(Page(page), testing::HasSubstr("The ID is one of the settings.")) << page;
  }
  EXPECT_THAT(Page("help7v2.html"), testing::HasSubstr("\"Zero\" only"));
  EXPECT_THAT(Page("help7v2.html"), testing::Not(testing::HasSubstr("Fresh air")));
  EXPECT_THAT(Page("help7v2.html"), testing::HasSubstr("no settings files"));
}

TEST(HelpPages, OfTheSafetySystemTellsItsAlarmsRelaysAndMessages) {
  const std::string page = Page("Support/help9.html");
  for (const char* text : {"CO2 pre-alarm",
                           "CO2 main alarm",
                           "TWA alarm",
                           "TEMP 1 low",
                           "TEMP 1 high",
                           "TEMP 2 low",
                           "TEMP 2 high",
                           "WEIGHT pre-alarm",
                           "WEIGHT main alarm",
                           "<th scope=\"row\">ERR</th>",
                           "\"No alarm\"",
                           "at most four alarms",
                           "Only 3 channels can be chosen at the same",
                           "TWA drives output P0",
                           "No sensor detected, entering simulated mode.",
                           "Writing one or more values to Sensor FAILED.",
                           "Calibration error",
                           "Could not change logger values",
                           "Invalid Sensor ID!",
                           "Vega 3"}) {
    EXPECT_THAT(page, testing::HasSubstr(text));
  }
}

// What an installer must not learn too late.
TEST(HelpPages, OfTheSafetySystemWarnsOfWhatActsAtOnceAndOfWhatDoesNot) {
  const std::string page = Page("Support/help9.html");
  const auto warnings = Found(page, "<p class=\"warn\"><b>([^<]+)");
  EXPECT_THAT(warnings,
              testing::Contains(testing::HasSubstr("A level goes to the unit as soon as you finish it")));
  EXPECT_THAT(warnings, testing::Contains(testing::HasSubstr("TWA by KiBus")));
  EXPECT_THAT(page,
              testing::HasSubstr("Ticks go to the unit with the next level, or with \"Send to sensor\""));
}

TEST(HelpPages, OfPlatform8TellsItsAlarmsCommandsAndMessages) {
  const std::string page = Page("help8.html");
  for (const char* text :
       {"CO2 pre-alarm", "CO2 main alarm", "TWA alarm", "TEMP 1 low", "TEMP 1 high", "WEIGHT, empty tank",
        "WEIGHT, full tank", "at most three alarms",
        "Only 3 channels can be chosen at the same time for each relay", "above 29 becomes 29",
        "TWA drives output P0", "Version 1 has no tank", "CO2 single point, Fresh air", "<h3>TWA reset</h3>",
        "No sensor detected, entering simulated mode.", "The unit does not answer.",
        "The settings of the unit have not been read.", "Unkown protokol", "Calibration error"}) {
    EXPECT_THAT(page, testing::HasSubstr(text));
  }
  // What only the safety system has.
  for (const char* text : {"ERR", "TEMP 2", "Off line", "No alarm", "Vega 3", "Options..."}) {
    EXPECT_THAT(page, testing::Not(testing::HasSubstr(text)));
  }
}

// Nothing is read back here, and the relays are empty while they are sent.
TEST(HelpPages, OfPlatform8WarnsOfWhatAnInstallerMustNotLearnTooLate) {
  const auto warnings = Found(Page("help8.html"), "<p class=\"warn\"><b>([^<]+)");
  for (const char* warning : {"A level goes to the unit as soon as you finish it",
                              "A sending takes all alarms off both relays", "What is sent is not checked."}) {
    EXPECT_THAT(warnings, testing::Contains(testing::HasSubstr(warning)));
  }
}

// From where one looks for a page, each panel's is found.
TEST(HelpPages, AllPagesOfUnitsAreLinkedFromWhatTheyShare) {
  for (const char* shared : {"help_calibration.html", "help_settings.html", "helpComSet.html"}) {
    EXPECT_THAT(Found(Page(shared), "href=\"([^\"]+)\""),
                testing::IsSupersetOf({"help8.html", "Support/help9.html"}))
        << shared;
  }
}

TEST(HelpPages, EachPageIsStyled) {
  for (const std::string& name : Pages()) {
    const auto styles = Found(Page(name), "<link rel=\"stylesheet\" href=\"([^\"]+)\"");
    ASSERT_EQ(styles.size(), 1U) << name;
    EXPECT_TRUE(std::filesystem::exists(kDirectory / Target(name, styles.front()))) << name;
  }
}

TEST(HelpPages, EachLinkLeadsSomewhere) {
  for (const std::string& name : Pages()) {
    for (const std::string& link : Found(Page(name), "href=\"([^\"]+)\"")) {
      const auto hash = link.find('#');
      const std::string page = hash == 0 ? name : Target(name, link.substr(0, hash));
      ASSERT_TRUE(std::filesystem::exists(kDirectory / page)) << name << ": " << link;
      if (hash == std::string::npos) continue;
      EXPECT_THAT(Found(Page(page), " id=\"([^\"]+)\""), testing::Contains(link.substr(hash + 1)))
          << name << ": " << link;
    }
  }
}

TEST(HelpPages, EachHeadingIsListedOnItsPage) {
  for (const std::string& name : Pages()) {
    const std::string page = Page(name);
    const auto headings = Found(page, "<h2 id=\"([^\"]+)\"");
    EXPECT_EQ(std::set<std::string>(headings.begin(), headings.end()).size(), headings.size()) << name;
    EXPECT_THAT(Found(page, "<li><a href=\"#([^\"]+)\""), testing::ElementsAreArray(headings)) << name;
  }
}

TEST(HelpPages, NoneHasAnUnfilledPlace) {
  for (const std::string& name : Pages())
    EXPECT_THAT(Page(name), testing::Not(testing::HasSubstr("@"))) << name;
}

}  // namespace
}  // namespace brelant::bench
