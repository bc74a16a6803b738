// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/script/parser.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <string>
#include <utility>

namespace brelant::script {

namespace {

using std::chrono::milliseconds;

constexpr std::string_view kBlanks = " \t\r\n\v\f";
constexpr char kQuote = '"';
constexpr char kComment = '#';
constexpr std::string_view kCancel = "cancel";
constexpr milliseconds kDefaultLimit = std::chrono::seconds(60);
constexpr double kLongestLimit = 1e6;

bool IsBlank(char c) {
  return kBlanks.find(c) != std::string_view::npos;
}

/// Behind the word or the quoted text that begins at `from`.
std::size_t EndOfWord(std::string_view line, std::size_t from) {
  if (line[from] != kQuote) return std::min(line.find_first_of(kBlanks, from), line.size());
  for (auto at = from + 1; at < line.size(); ++at) {
    if (line[at] != kQuote) continue;
    if (at + 1 == line.size() || line[at + 1] != kQuote) return at + 1;
    ++at;
  }
  return line.size();
}

std::string_view WithoutComment(std::string_view line) {
  for (std::size_t at = 0; at < line.size();) {
    if (IsBlank(line[at])) {
      ++at;
    } else if (line[at] == kComment) {
      return line.substr(0, at);
    } else {
      at = EndOfWord(line, at);
    }
  }
  return line;
}

std::string_view Trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string Unquoted(std::string_view quoted) {
  std::string text;
  for (std::size_t at = 1; at < quoted.size(); ++at) {
    if (quoted[at] == kQuote && ++at == quoted.size()) return text;
    text += quoted[at];
  }
  throw SyntaxError("a quote is missing at the end");
}

/// What is left of a line, taken word by word.
class Words {
 public:
  explicit Words(std::string_view line) : rest_(Trimmed(WithoutComment(line))) {}

  bool More() const { return !rest_.empty(); }
  bool Quoted() const { return More() && rest_.front() == kQuote; }

  std::string Next(const std::string& what) {
    if (!More()) throw SyntaxError(what + " is missing");
    const auto word = rest_.substr(0, EndOfWord(rest_, 0));
    rest_ = Trimmed(rest_.substr(word.size()));
    return word.front() == kQuote ? Unquoted(word) : std::string(word);
  }

  std::string Text(const std::string& what) {
    if (Quoted() || !More()) return Next(what);
    return std::string(std::exchange(rest_, {}));
  }

  /// A last word that is a number stands behind the text and not in it.
  std::string TextBeforeNumber(const std::string& what);

  void RequireEnd() const {
    if (More()) throw SyntaxError("\"" + std::string(rest_) + "\" is too much");
  }

 private:
  std::string_view rest_;
};

template <typename Number>
std::optional<Number> ParseNumber(std::string_view text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return {};
  return number;
}

std::optional<milliseconds> ParseSeconds(std::string_view text) {
  const auto seconds = ParseNumber<double>(text);
  if (!seconds || !(*seconds >= 0 && *seconds <= kLongestLimit)) return {};
  return milliseconds(std::llround(*seconds * 1000));
}

std::string Words::TextBeforeNumber(const std::string& what) {
  if (Quoted() || !More()) return Next(what);
  const auto lastBlank = rest_.find_last_of(kBlanks);
  if (lastBlank == std::string_view::npos || !ParseSeconds(rest_.substr(lastBlank + 1))) return Text(what);
  const auto text = Trimmed(rest_.substr(0, lastBlank));
  rest_ = rest_.substr(lastBlank + 1);
  return std::string(text);
}

int ParseCount(Words& words, const std::string& what, int least) {
  const auto word = words.Next(what);
  const auto number = ParseNumber<int>(word);
  if (!number || *number < least) throw SyntaxError("\"" + word + "\" is not " + what);
  return *number;
}

milliseconds ParseLimit(Words& words) {
  if (!words.More()) return kDefaultLimit;
  const auto word = words.Next("a number of seconds");
  const auto limit = ParseSeconds(word);
  if (!limit) throw SyntaxError("\"" + word + "\" is not a number of seconds");
  return *limit;
}

ControlName ParseControl(Words& words) {
  const auto name = words.Next("a control");
  const auto dot = name.find('.');
  if (dot == std::string::npos) return {"", name};
  if (dot == 0 || dot + 1 == name.size()) throw SyntaxError("\"" + name + "\" is not a control");
  return {name.substr(0, dot), name.substr(dot + 1)};
}

Property ParseProperty(Words& words) {
  const auto name = words.Next("a property");
  const auto property = FindProperty(name);
  if (!property) throw SyntaxError("\"" + name + "\" is not a property");
  return *property;
}

template <typename OnControl>
Command ParseOnControl(Words& words) {
  return OnControl{ParseControl(words)};
}

template <typename WithText>
Command ParseControlAndText(Words& words) {
  auto control = ParseControl(words);
  return WithText{std::move(control), words.Text("a text")};
}

template <typename OnForm>
Command ParseOnForm(Words& words) {
  return OnForm{words.More() ? words.Next("a form") : ""};
}

template <typename Cancellable>
Command ParseCancellable(Words& words) {
  const bool mayCancel = !words.Quoted();
  auto text = words.Text("a text");
  if (mayCancel && text == kCancel) return Cancellable{std::nullopt};
  return Cancellable{std::move(text)};
}

Command ParseGet(Words& words) {
  auto control = ParseControl(words);
  if (!words.More()) return Get{std::move(control), std::nullopt};
  return Get{std::move(control), ParseProperty(words)};
}

Command ParseExpect(Words& words) {
  auto control = ParseControl(words);
  const auto property = ParseProperty(words);
  return Expect{std::move(control), property, words.Text("a value")};
}

Command ParseChoose(Words& words) {
  return Choose{words.Text("a caption")};
}

Command ParseReply(Words& words) {
  const auto name = words.Next("a reply");
  if (name == "ok") return Reply{UserInterface::Reply::ok};
  if (name == kCancel) return Reply{UserInterface::Reply::cancel};
  if (name == "yes") return Reply{UserInterface::Reply::yes};
  if (name == "no") return Reply{UserInterface::Reply::no};
  throw SyntaxError("\"" + name + "\" is not ok, cancel, yes or no");
}

Command ParseImage(Words& words) {
  const auto name = words.Next("ram or eeprom");
  if (name != "ram" && name != "eeprom") throw SyntaxError("\"" + name + "\" is not ram or eeprom");
  const int from = ParseCount(words, "an address", 0);
  return Image{name == "eeprom", from, words.More() ? ParseCount(words, "a count", 1) : 1};
}

Command ParseWait(Words& words) {
  const auto what = words.Next("what to wait for");
  if (what == "idle") return Wait{Wait::For::idle, "", 0, ParseLimit(words)};
  if (what == "message") return Wait{Wait::For::message, "", 0, ParseLimit(words)};
  if (what == "form") {
    auto form = words.Next("a form");
    return Wait{Wait::For::form, std::move(form), 0, ParseLimit(words)};
  }
  if (what == "progress") {
    auto text = words.TextBeforeNumber("a text");
    return Wait{Wait::For::progress, std::move(text), 0, ParseLimit(words)};
  }
  if (what == "poll") {
    const int polls = words.More() ? ParseCount(words, "a number of polls", 1) : 1;
    return Wait{Wait::For::poll, "", polls, ParseLimit(words)};
  }
  if (const auto time = ParseSeconds(what)) return Wait{Wait::For::time, "", 0, *time};
  throw SyntaxError("\"" + what + "\" is nothing to wait for");
}

Command ParseQuit(Words& /*words*/) {
  return Quit{};
}

using CommandParser = Command (*)(Words&);

CommandParser FindParser(const std::string& name) {
  static const std::map<std::string, CommandParser, std::less<>> parsers{
      {"get", ParseGet},
      {"dump", ParseOnForm<Dump>},
      {"type", ParseControlAndText<Type>},
      {"enter", ParseControlAndText<Enter>},
      {"focus", ParseOnControl<Focus>},
      {"leave", ParseOnControl<Leave>},
      {"click", ParseOnControl<Click>},
      {"select", ParseControlAndText<Select>},
      {"choose", ParseChoose},
      {"answer", ParseCancellable<Answer>},
      {"reply", ParseReply},
      {"file", ParseCancellable<File>},
      {"wait", ParseWait},
      {"expect", ParseExpect},
      {"image", ParseImage},
      {"close", ParseOnForm<Close>},
      {"quit", ParseQuit},
  };
  const auto found = parsers.find(name);
  if (found == parsers.end()) throw SyntaxError("\"" + name + "\" is not a command");
  return found->second;
}

}  // namespace

std::optional<Command> ParseLine(std::string_view line) {
  Words words(line);
  if (!words.More()) return {};
  auto command = FindParser(words.Next("a command"))(words);
  words.RequireEnd();
  return command;
}

}  // namespace brelant::script
