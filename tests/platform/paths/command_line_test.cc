#include "platform/paths/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace forgeyard {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(CommandLine, EmptyLineHasNoArgument) {
  EXPECT_THAT(CommandLineToArgvW(""), IsEmpty());
}

struct ToolCase {
  std::string_view command;
  std::string program;
  std::vector<std::string> arguments;
};

TEST(ToolCommand, NamesTheProgramAndItsArguments) {
  const ToolCase cases[] = {
      {R"(cc -c \home\u\a.c -o\home\u\a.obj )", "cc", {"-c", R"(\home\u\a.c)", R"(-o\home\u\a.obj)"}},
      {R"(   "C:\My Dir\cc.exe" x)", R"(C:\My Dir\cc.exe)", {"x"}},
      {R"(cc -I"C:\My Dir\" -c a.c)", "cc", {R"(-IC:\My Dir" -c a.c)"}},
      {R"(cc -I"C:\My Dir\\" -c a.c)", "cc", {R"(-IC:\My Dir\)", "-c", "a.c"}},
      {R"(cc a\\"""b c")", "cc", {R"(a\"b)", "c"}},
      {R"(cc "a\\""b c")", "cc", {R"(a\"b)", "c"}},
      {"  ", "", {}},
      {"", "", {}},
      {"\"\" x", "", {"x"}},
  };
  for (const ToolCase& c : cases) {
    const ToolCommand tool = splitToolCommand(c.command);
    EXPECT_EQ(tool.program, c.program) << c.command;
    EXPECT_EQ(tool.arguments, c.arguments) << c.command;
  }
}

TEST(CommandLine, ArgumentsAloneAreCutLikeThoseBehindAProgram) {
  EXPECT_THAT(splitArguments(R"("a b" \"c\" d\)"), ElementsAre("a b", "\"c\"", "d\\"));
  EXPECT_THAT(splitArguments("  \t "), IsEmpty());
}

TEST(QuoteArgument, QuotesOnlyWhatNeedsIt) {
  EXPECT_EQ(quoteArgument(R"(\home\u\a.c)"), R"(\home\u\a.c)");
  EXPECT_EQ(quoteArgument(""), R"("")");
  EXPECT_EQ(quoteArgument("a b"), R"("a b")");
  EXPECT_EQ(quoteArgument(R"(my dir\)"), R"("my dir\\")");
}

TEST(QuoteArgument, AnyArgumentsComeBack) {
  std::mt19937 random(3);
  for (int i = 0; i < 20'000; ++i) {
    std::vector<std::string> arguments(random() % 4);
    std::string line;
    for (std::string& argument : arguments) {
      argument.resize(random() % 7);
      for (char& c : argument) c = "\\\" \ta"[random() % 5];
      line += quoteArgument(argument) + " ";
    }
    ASSERT_EQ(splitArguments(line), arguments) << line;
  }
}

// Names between braces.
MarkedText marked(std::string_view text) {
  MarkedText result;
  char mark = MarkedText::kPlainText;
  for (const char c : text) {
    if (c == '{' || c == '}') {
      mark = c == '{' ? 'n' : MarkedText::kPlainText;
    } else {
      result.append({&c, 1}, mark);
    }
  }
  return result;
}

std::vector<std::string> words(const MarkedCommand& command) {
  std::vector<std::string> list{command.program.text};
  for (const MarkedText& argument : command.arguments) {
    EXPECT_EQ(argument.text.size(), argument.marks.size());
    list.push_back(argument.text);
  }
  return list;
}

TEST(MarkedCommand, HoldsNamesTogether) {
  const struct {
    std::string_view command;
    std::vector<std::string> everywhere;
    std::vector<std::string> insideQuotes;
  } rows[] = {
      {"cc {a  b} -o{c d}.o", {"cc", "a  b", "-oc d.o"}, {"cc", "a", "b", "-oc", "d.o"}},
      {"cc \"{a  b}\" x", {"cc", "a  b", "x"}, {"cc", "a  b", "x"}},
      {"cc {a\"b} c\"", {"cc", "a\"b", "c"}, {"cc", "ab c"}},
      {"cc \"{a\" b}\"", {"cc", "a\" b"}, {"cc", "a\" b"}},
      {R"(cc -d"{\o\}" x)", {"cc", R"(-d\o\)", "x"}, {"cc", R"(-d\o\)", "x"}},
      {R"(cc -d{\o\}" x")", {"cc", R"(-d\o\ x)"}, {"cc", R"(-d\o")", "x"}},
      {R"(cc "{a\}{\"b}")", {"cc", R"(a\\"b)"}, {"cc", R"(a\\"b)"}},
      {R"("{my dir\}cc" {x})", {R"(my dir\cc)", "x"}, {R"(my dir\cc)", "x"}},
      {R"({my dir\}cc x)", {R"(my dir\cc)", "x"}, {"my", R"(dir\cc)", "x"}},
      {"\"{a\"b}\" x", {"a\"b", "x"}, {"a\"b", "x"}},
  };
  for (const auto& row : rows) {
    const MarkedText command = marked(row.command);
    EXPECT_EQ(words(splitMarkedCommand(command, NamesHold::Everywhere)), row.everywhere) << row.command;
    EXPECT_EQ(words(splitMarkedCommand(command, NamesHold::InsideQuotes)), row.insideQuotes) << row.command;
  }
}

TEST(MarkedCommand, WithoutNamesIsSplitAsEver) {
  std::mt19937 random(5);
  for (int i = 0; i < 20'000; ++i) {
    std::string text(random() % 12, ' ');
    for (char& c : text) c = "\\\" \tab"[random() % 6];
    MarkedText command;
    command.append(text, MarkedText::kPlainText);
    const ToolCommand tool = splitToolCommand(text);
    std::vector<std::string> expected{tool.program};
    expected.insert(expected.end(), tool.arguments.begin(), tool.arguments.end());
    for (const NamesHold hold : {NamesHold::Everywhere, NamesHold::InsideQuotes})
      ASSERT_EQ(words(splitMarkedCommand(command, hold)), expected) << text;
  }
}

TEST(JoinToolCommand, ComesBackOrIsRefused) {
  std::mt19937 random(7);
  int refused = 0;
  for (int i = 0; i < 20'000; ++i) {
    ToolCommand command;
    command.program.resize(random() % 5);
    command.arguments.resize(random() % 4);
    for (char& c : command.program) c = "\\\" \ta"[random() % 5];
    for (std::string& argument : command.arguments) {
      argument.resize(random() % 7);
      for (char& c : argument) c = "\\\" \ta"[random() % 5];
    }
    const std::optional<std::string> text = joinToolCommand(command);
    const bool hasQuote = command.program.find('"') != std::string::npos;
    if (!text) {
      EXPECT_TRUE(hasQuote || command.program.empty()) << command.program;
      ++refused;
    } else {
      ASSERT_EQ(splitToolCommand(*text), command) << *text;
    }
  }
  EXPECT_LT(refused, 15'000);
}

}  // namespace
}  // namespace forgeyard
