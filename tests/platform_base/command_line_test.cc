#include "platform/paths/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace forgeyard
