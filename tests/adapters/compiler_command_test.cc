#include "adapters/compiler/compiler_command.h"

#include <gtest/gtest.h>

#include "tests/adapters/scratch_tree.h"

namespace forgeyard {
namespace {

class CompilerCommandTest : public testing::Test {
 protected:
  CompilerCommandTest() {
    tree_.put("Main.c");
    tree_.put("inc/x.h");
    tree_.put("My Files/a.c");
    tree_.put("My Files/a b.c");
    tree_.put("My Files/inc/y.h");
    tree_.makeDirectory("My Files/out");
  }
  CompilerCommand read(std::string_view command) {
    UserRegistry registry(Registry::parse(
        "[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool\\Drives]\nC:=" + tree_.path() + "\n"));
    HostSpelling spelling(registry);
    return readCompilerCommand(tree_.words(command), spelling);
  }

  ScratchTree tree_;
};

TEST_F(CompilerCommandTest, RespellsPathsOfTheOptionsThatTakeThem) {
  const struct {
    const char* name;
    const char* given;
    const char* expected;
  } cases[] = {
      {"generated line", R"(cc -c -g -I~\inc -O2 -mgpopt -G8 -DA=1 -Wall -MD ~\Main.c -o~\main.obj)",
       "cc -c -g -I%/inc -O2 -mgpopt -G8 -DA=1 -Wall -MD %/Main.c -o%/main.obj"},
      {"case of an existing file", R"(cc ~\MAIN.C -I~\INC)", "cc %/Main.c -I%/inc"},
      {"drives", R"(cc C:\Main.c -oC:\main.obj -IC:\inc)", "cc %/Main.c -o%/main.obj -I%/inc"},
      {"apart", R"(cc -I ~\inc -o ~\a.o -isystem ~\inc -include ~\inc\x.h ~\Main.c)",
       "cc -I %/inc -o %/a.o -isystem %/inc -include %/inc/x.h %/Main.c"},
      {"joined",
       R"(cc -isystem~\inc -iquote~\inc -idirafter~\inc -imacros~\inc\x.h -isysroot~\inc --sysroot=~\inc -B~\inc -L~\inc)",
       "cc -isystem%/inc -iquote%/inc -idirafter%/inc -imacros%/inc/x.h -isysroot%/inc --sysroot=%/inc "
       "-B%/inc -L%/inc"},
      {"relative", R"(cc -Isub\inc src\a.c -oout\a.obj)", "cc -Isub/inc src/a.c -oout/a.obj"},
      {"other programs' arguments",
       R"(cc -Wp,-I~\inc,-DX=\n -Wa,-Isub\inc,-a=~\a.lst -Wl,-Map=~\a.map,-L~\inc)",
       "cc -Wp,-I%/inc,-DX=\\n -Wa,-Isub/inc,-a=%/a.lst -Wl,-Map=%/a.map,-L%/inc"},
      {"one argument of another program", R"(cc -Xlinker -Map=~\a.map -Xassembler -I~\inc)",
       "cc -Xlinker -Map=%/a.map -Xassembler -I%/inc"},
      {"response file", R"(cc @~\Main.c)", "cc @%/Main.c"},
      {"left alone", R"(cc -DP=\home\u -D Q=\tmp -U \tmp -W\tmp -fx=\tmp -m\tmp -x c -Ttext=0x10 -E)",
       R"(cc -DP=\home\u -D Q=\tmp -U \tmp -W\tmp -fx=\tmp -m\tmp -x c -Ttext=0x10 -E)"},
      {"linker script", R"(cc -T~\Main.c -T ~\Main.c)", "cc -T%/Main.c -T %/Main.c"},
      {"option at the end without its value", "cc -o", "cc -o"},
      {"standard input", "cc -xc -", "cc -xc -"},
      {"program with a path", R"(~\bin\cc -v)", "%/bin/cc -v"},
  };
  for (const auto& [name, given, expected] : cases) {
    EXPECT_EQ(joined(read(given).arguments), tree_.in(expected)) << name;
  }
}

TEST_F(CompilerCommandTest, HealsPathsWithBlanks) {
  const struct {
    const char* name;
    const char* given;
    std::vector<std::string> expected;
  } cases[] = {
      {"source and output",
       R"(cc -c ~\My Files\a.c -o~\My Files\out\a.obj )",
       {"cc", "-c", "%/My Files/a.c", "-o%/My Files/out/a.obj"}},
      {"file name",
       R"(cc ~\My Files\a b.c -o~\My Files\out\a b.obj )",
       {"cc", "%/My Files/a b.c", "-o%/My Files/out/a b.obj"}},
      {"include directory",
       R"(cc -I~\My Files\inc -I ~\My Files\inc -g ~\Main.c)",
       {"cc", "-I%/My Files/inc", "-I", "%/My Files/inc", "-g", "%/Main.c"}},
      {"a second input is one", R"(cc -o~\out.obj Main.c)", {"cc", "-o%/out.obj", "Main.c"}},
      {"nothing there", R"(cc ~\No Files\a.c)", {"cc", "%/No", "Files/a.c"}},
  };
  for (const auto& [name, given, expected] : cases) {
    std::vector<std::string> words = expected;
    for (std::string& word : words) word = tree_.in(word);
    EXPECT_EQ(read(given).arguments, words) << name;
  }
}

TEST_F(CompilerCommandTest, TellsWhatTheDependenciesAreAbout) {
  const CompilerCommand plain = read(R"(cc -c ~\Main.c -o~\main.obj)");
  EXPECT_FALSE(plain.wantsDependencies);
  const CompilerCommand command = read(R"(cc -c -MD C:\MAIN.c -MD -MT "a b" -MF C:\list.d -oC:\main.obj)");
  EXPECT_TRUE(command.wantsDependencies);
  EXPECT_TRUE(command.namesTarget);
  EXPECT_EQ(command.sources, (std::vector<std::string>{"C:\\MAIN.c"}));
  EXPECT_EQ(command.dependencyOutput, tree_ / "list.d");
  EXPECT_EQ(command.output, tree_ / "main.obj");
}

TEST_F(CompilerCommandTest, KnowsTheDriverAndItsSources) {
  tree_.put("options", "-DX='a b' -c Main.c");
  const struct {
    const char* given;
    std::vector<std::string> arguments;
    std::vector<std::string> sources;
  } cases[] = {
      {"ccache gcc -c Main.c", {"ccache", "gcc", "-c", "Main.c"}, {"Main.c"}},
      {R"(~\bin\ccache max_size=5 -v distcc C:\gcc Main.c)",
       {"%/bin/ccache", "max_size=5", "-v", "distcc", "%/gcc", "Main.c"},
       {"Main.c"}},
      {"icecc -c Main.c", {"icecc", "-c", "Main.c"}, {"Main.c"}},
      {"sccache", {"sccache"}, {}},
      {"sccache --", {"sccache", "--"}, {}},
      {"unknown gcc Main.c", {"unknown", "gcc", "Main.c"}, {"gcc", "Main.c"}},
      {"gcc Main.c b.o c.obj d.a e.so.1 -o x",
       {"gcc", "Main.c", "b.o", "c.obj", "d.a", "e.so.1", "-o", "x"},
       {"Main.c"}},
      {"gcc @%/options -g", {"gcc", "-DX=a b", "-c", "Main.c", "-g"}, {"Main.c"}},
      {"gcc @%/none", {"gcc", "@%/none"}, {}},
  };
  for (const auto& [given, arguments, sources] : cases) {
    const CompilerCommand command = read(given);
    std::vector<std::string> expected = arguments;
    for (std::string& word : expected) word = tree_.in(word);
    EXPECT_EQ(command.arguments, expected) << given;
    EXPECT_EQ(command.sources, sources) << given;
  }
}

}  // namespace
}  // namespace forgeyard
