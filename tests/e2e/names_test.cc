// Names and places that other tools trip over.
#include "tests/e2e/sandbox.h"

namespace forgeyard::e2e {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct Naming {
  const char* name;
  const char* directory;  // the project's
  const char* source;     // of main
  const char* header;     // included by it
  const char* include;    // IncludePath
};

class Names : public Sandbox, public testing::WithParamInterface<Naming> {};

TEST_P(Names, BuildOnceAndRebuildOnlyWhatChanged) {
  const Naming& naming = GetParam();
  setDirectory(naming.directory);
  const std::string header = std::filesystem::path(naming.header).filename();
  put(naming.source, "#include \"" + header + "\"\nint main(void) { return CODE; }\n");
  put(naming.header, "#define CODE 7\n");
  put("lib/part.c", "int part;\n");
  makeProgramProject({naming.source, "lib/part.c"});
  must({"set", "cc", std::string("IncludePath=") + naming.include});

  EXPECT_EQ(toolRuns(must({"build"})), 3);
  EXPECT_EQ(run(path("out/prog")).exitCode, 7);
  const Outcome again = must({"build"});
  EXPECT_EQ(toolRuns(again), 0) << again.output;

  put(naming.header, "#define CODE 8\n");
  EXPECT_EQ(compiled(must({"build"})).size(), 1U);
  EXPECT_EQ(run(path("out/prog")).exitCode, 8);
  EXPECT_EQ(toolRuns(must({"build"})), 0);
  EXPECT_THAT(must({"file", "list"}).output, HasSubstr(naming.source));
}

INSTANTIATE_TEST_SUITE_P(
    Table, Names,
    testing::Values(
        Naming{"BlankInTheProjectDirectory", "My Projects/first one", "src/main.c", "inc/code.h", "inc"},
        Naming{"BlankInASourceDirectory", "project", "the source/main.c", "inc/code.h", "inc"},
        Naming{"BlankInASourceName", "project", "src/my main.c", "inc/code.h", "inc"},
        Naming{"BlankInAHeaderDirectory", "project", "src/main.c", "my inc/code.h", "my inc"},
        Naming{"BlanksEverywhere", "My Projects", "the source/my main.c", "my inc/my code.h", "my inc"},
        Naming{"NonAsciiLetters", "Über/Проект", "исходник/größe.c", "включай/日本.h", "включай"},
        Naming{"DollarHashAndPercent", "a $b #c %d", "s$x/m#n.c", "i%n/c$d.h", "i%n"},
        Naming{"QuotesBracketsAndCommas", "it's (1) [2], {3}", "a&b/x'y.c", "inc/code.h", "inc"},
        Naming{"DotsInDirectories", "v1.2.d/x.y", "a.b/main.c", "i.n/code.h", "i.n"},
        Naming{"CapitalsThatDifferInNothingElse", "Project", "SRC/Main.c", "Inc/Code.h", "Inc"}),
    [](const auto& info) { return info.param.name; });

TEST_F(Sandbox, SourcesAndHeadersMayLieAboveTheProject) {
  setDirectory("tree/build");
  put("../src/main.c", "#include \"../inc/code.h\"\nint main(void) { return CODE; }\n");
  put("../inc/code.h", "#define CODE 5\n");
  makeProgramProject({"../src/main.c"});
  EXPECT_EQ(toolRuns(must({"build"})), 2);
  EXPECT_EQ(run(path("out/prog")).exitCode, 5);
  EXPECT_EQ(toolRuns(must({"build"})), 0);
  put("../inc/code.h", "#define CODE 6\n");
  EXPECT_THAT(compiled(must({"build"})), ElementsAre("main"));
  EXPECT_EQ(toolRuns(must({"build"})), 0);
}

TEST_F(Sandbox, ProjectIsTheSameFromWhereverItIsNamed) {
  put("main.c", "int main(void) { return 0; }\n");
  makeProgramProject({"main.c"});
  must({"build"});
  const std::string file = path("p.nqp");
  setDirectory("elsewhere/deep");
  EXPECT_EQ(toolRuns(must({"-p", file, "build"})), 0);
  EXPECT_EQ(toolRuns(must({"-p", "../../project/p.nqp", "build"})), 0);
  EXPECT_THAT(compiled(must({"-p", "../../project/p.nqp", "compile", "../../project/main.c"})),
              ElementsAre("main"));
}

TEST_F(Sandbox, MovedProjectBuildsInItsNewPlace) {
  put("src/main.c", "#include \"code.h\"\nint main(void) { return CODE; }\n");
  put("src/code.h", "#define CODE 3\n");
  makeProgramProject({"src/main.c"});
  must({"build"});
  const std::string before = directory();
  setDirectory("moved");
  std::filesystem::remove(directory());
  std::filesystem::rename(before, directory());
  must({"build"});
  put("src/code.h", "#define CODE 4\n");
  EXPECT_THAT(compiled(must({"build"})), ElementsAre("main"));
  EXPECT_EQ(run(path("out/prog")).exitCode, 4);
  EXPECT_EQ(toolRuns(must({"build"})), 0);
}

}  // namespace
}  // namespace forgeyard::e2e
