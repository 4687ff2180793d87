// why, status and --dry-run: what the next build would do.

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/hosts/console/console_sandbox.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;

class PlanCommands : public ConsoleSandbox {
 protected:
  // "gen" makes a header from "text.in", "cc" compiles two sources of which one includes it by way of
  // another, "link" joins the objects.
  void makeGeneratedProgram() const {
    put("text.in", "#define TEXT 0\n");
    put("a.c", "#include \"between.h\"\nint main(void) { return TEXT; }\n");
    put("between.h", "#include \"text.h\"\n");
    put("b.c", "int b;\n");
    must({"new", "p.nqp"});
    must({"config", "set", "Target=native", "OutputDirectory=out", "IntermediateDirectory=obj",
          "UpdateFileDependencies=1"});
    must({"folder", "add", "texts", "--filter", "in"});
    must({"folder", "add", "src", "--filter", "c"});
    must({"component", "add", "cmdline", "gen"});
    must({"component", "add", "cc", "cc"});
    must({"component", "add", "cmdline", "link"});
    for (const auto& [from, to] : {std::pair("texts", "gen"), {"gen", "cc"}, {"src", "cc"}, {"cc", "link"}})
      must({"connect", from, to});
    must({"set", "gen", "Output=.h", "CommandOutDir=$(WorkDir)",
          "Command=cp \"$(FileFullPath)\" \"$(OutDir)$(FileName).h\""});
    must({"set", "cc", "Input=.c"});
    must({"set", "link", "Input=.obj", "Output=prog", "CommandOutDir=$(COutDir)", "RunOnce=1",
          "FileSeparator=\" \"", "Command=gcc -o \"$(OutDir)prog\" \"$(FileFullPathList)\""});
    must({"file", "add", "text.in", "a.c", "b.c"});
  }
  Lines files() const {
    Lines names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory()))
      names.push_back(entry.path().string());
    std::sort(names.begin(), names.end());
    return names;
  }
};

// The whole point of a plan: whatever has changed, it is what the build then does.
TEST_F(PlanCommands, TheBuildRunsWhatTheDryRunLists) {
  makeGeneratedProgram();
  struct Step {
    const char* name;
    std::function<void()> change;
    std::size_t runs;
  };
  const auto removed = [this](const char* name) {
    return [=, this] { std::filesystem::remove(path(name)); };
  };
  const auto touched = [this](const char* name) { return [=, this] { touch(name); }; };
  const Step steps[] = {
      {"nothing is built", [] {}, 4},
      {"everything is built", [] {}, 0},
      {"a header that a tool makes follows its source, and all that reads it", touched("text.in"), 3},
      {"a header's reader", touched("between.h"), 2},
      {"an object", removed("obj/b.obj"), 2},
      {"the program", removed("out/prog"), 1},
      {"a dependency", removed("text.h"), 3},
      {"settings",
       [this] {
         must({"set", "cc", "WarningLevel=2"});
       },
       3},
  };
  for (const Step& step : steps) {
    step.change();
    const std::string before = content("p.nqp");
    const Lines there = files();
    Lines listed = must({"build", "--dry-run"}).lines();
    std::erase(listed, "All outputs up to date.");
    EXPECT_EQ(listed.size(), step.runs) << step.name;
    EXPECT_EQ(content("p.nqp"), before) << step.name;
    EXPECT_EQ(files(), there) << step.name;
    const Outcome built = must({"build"});
    EXPECT_EQ(e2e::toolRuns(built), static_cast<int>(step.runs)) << step.name;
    for (const std::string& command : listed)
      EXPECT_EQ(e2e::count(built, command), 1) << step.name << command;
  }
}

// Runs of one component can read, or make, what another of its runs makes.
TEST_F(PlanCommands, EachRunIsJudgedBehindTheOnesBeforeIt) {
  std::filesystem::create_directory(path("below"));
  makeToolProject({"a.txt", "b.txt", "c.txt", "below/c.txt"}, "");
  must({"set", "tool", "Output=.out", "CommandOutDir=$(WorkDir)",
        "Command=cp \"$(FileFullPath)\" \"$(OutDir)$(FileName).out\""});
  auto project = nlohmann::json::parse(shown({"dump", "p.nqp"}));
  for (auto& file : project["components"][0]["files"]) {
    const std::string name = file["PersistAs"];
    if (name == ".\\a.txt" || name == ".\\c.txt") file["ManualDeps"] = {".\\b.out"};
  }
  put("p.json", project.dump());
  std::filesystem::remove(path("p.nqp"));
  must({"restore", "p.json", "p.nqp"});
  must({"build"});
  must({"build"});
  struct Step {
    const char* name;
    std::function<void()> change;
    std::size_t runs;
  };
  const Step steps[] = {
      {"two files make one", [this] { std::filesystem::remove(path("c.out")); }, 1},
      {"of those that read it only the one behind runs", [this] { touch("b.txt"); }, 2},
      {"the one ahead follows", [] {}, 1},
      {"all is done", [] {}, 0},
  };
  for (const Step& step : steps) {
    step.change();
    const Lines listed = must({"-q", "build", "--dry-run"}).lines();
    EXPECT_EQ(listed.size(), step.runs) << step.name;
    EXPECT_EQ(e2e::toolRuns(must({"build"})), static_cast<int>(step.runs)) << step.name;
  }
}

// Only a damaged file has one; builds pass over it without a word.
TEST_F(PlanCommands, ACircleIsLeftOut) {
  makeToolProject({"a.txt"}, "true");
  for (const char* name : {"x", "y"}) must({"component", "add", "cmdline", name});
  auto project = nlohmann::json::parse(shown({"dump", "p.nqp"}));
  project["connections"].push_back({{"from", 2}, {"to", 3}});
  project["connections"].push_back({{"from", 3}, {"to", 2}});
  put("q.json", project.dump());
  must({"restore", "q.json", "q.nqp"});
  must({"-p", "q.nqp", "build"});
  EXPECT_EQ(forgeyard({"-p", "q.nqp", "build", "--dry-run"}).exitCode, 0);
  EXPECT_EQ(shown({"-p", "q.nqp", "why", "x"}), "x: would be left out: its connections go in a circle.\n");
  EXPECT_THAT(shown({"-p", "q.nqp", "graph"}),
              HasSubstr("x (cmdline, left out, connected in a circle) -> y"));
}

// There dependencies have another spelling than what makes them.
TEST_F(PlanCommands, DirectoriesMayHaveBlanksAndOtherLetters) {
  setDirectory("my pr\xC3\xB6ject");
  makeGeneratedProgram();
  must({"build"});
  EXPECT_EQ(shown({"why", "between.h"}), "cc, a.c: up to date.\n");
  touch("between.h");
  EXPECT_THAT(shown({"why", "a.c"}), HasSubstr("cc, a.c: between.h ("));
  must({"build"});
  touch("text.in");
  const Lines listed = must({"build", "--dry-run"}).lines();
  EXPECT_EQ(listed.size(), 3u);
  EXPECT_EQ(e2e::toolRuns(must({"build"})), 3);
}

TEST_F(PlanCommands, ReasonsAreToldInWords) {
  makeGeneratedProgram();
  EXPECT_THAT(shown({"why"}), HasSubstr("cc: would run for 2 of 2 files.\n  a.c: the settings have changed"));
  must({"build"});
  EXPECT_EQ(shown({"why"}),
            "gen: up to date, 1 input.\ncc: up to date, 2 inputs.\nlink: up to date, 2 inputs.\n");
  EXPECT_EQ(shown({"why", "cc"}), "cc: up to date, 2 inputs.\n  a.c: up to date.\n  b.c: up to date.\n");

  touch("text.in");
  const std::string all = shown({"why"});
  EXPECT_THAT(all, testing::ContainsRegex("gen: would run for 1 of 1 file.\n  text.in: text.in "
                                          "\\([-0-9]+ [0-9:.]+\\) is newer than text.h \\("));
  EXPECT_THAT(all, HasSubstr("cc: would run for 1 of 2 files.\n"
                             "  a.c: text.h will be newer than obj/a.obj: the same build makes it.\n"));
  EXPECT_EQ(shown({"why", "between.h"}),
            "cc, a.c: text.h will be newer than obj/a.obj: the same build makes it.\n")
      << "by what reads it";
  EXPECT_EQ(shown({"why", "out/prog"}),
            "link, out/prog: obj/a.obj will be newer than out/prog: the same build makes it.\n");

  must({"build"});
  std::filesystem::remove(path("between.h"));
  std::filesystem::remove(path("obj/b.obj"));
  EXPECT_EQ(shown({"why", "a.c"}),
            "cc, a.c: between.h, which a.c depends on, is missing or can't be read.\n");
  EXPECT_EQ(shown({"why", "b.c"}), "cc, b.c: obj/b.obj is missing.\n");
  std::filesystem::remove(path("b.c"));
  EXPECT_EQ(shown({"why", "src"}),
            "src: a folder runs nothing; it feeds 2 files to what is connected to it.\n");
}

TEST_F(PlanCommands, AFileThatIsRewrittenInPlaceHasAMarker) {
  makeToolProject({"a.txt"}, "cp \"$(FileFullPath)\" \"$(FileFullPath)\"");
  must({"set", "tool", "Output=.txt", "CommandOutDir=$(WorkDir)", "Command=touch \"$(FileFullPath)\""});
  must({"build"});
  EXPECT_THAT(shown({"why", "tool"}), HasSubstr("a.txt: up to date."));
  std::filesystem::remove(path("a.txt.tool.trg"));
  EXPECT_THAT(shown({"why", "a.txt"}), HasSubstr("the marker a.txt.tool.trg is missing"));
}

TEST_F(PlanCommands, ProblemsStandWhereTheBuildWouldMeetThem) {
  makeGeneratedProgram();
  must({"config", "set", "Target="});
  const Outcome dry = forgeyard({"build", "--dry-run"});
  EXPECT_EQ(dry.exitCode, 1);
  EXPECT_EQ(dry.lines().size(), 1u) << "gen alone: " << dry.output;
  EXPECT_THAT(dry.errors, HasSubstr("cc: The target for this project was not specified."));
  EXPECT_THAT(dry.errors, HasSubstr("link would not be started"));
  const Outcome status = forgeyard({"status"});
  EXPECT_EQ(status.exitCode, 1);
  EXPECT_THAT(status.output, HasSubstr("configuration Default, no target\n"
                                       "  folder   texts  1 file\n"
                                       "  folder   src    2 files\n"
                                       "  cmdline  gen    1 input, 1 output, 1 out of date\n"
                                       "  cc       cc     2 inputs, 2 outputs, can't run\n"
                                       "  cmdline  link   waits for what feeds it\n"
                                       "Problem: cc: The target"));
}

TEST_F(PlanCommands, ToolsThatAreNotThereAreNamed) {
  makeToolProject({"a.txt"}, "no-such-tool \"$(FileFullPath)\"");
  EXPECT_THAT(shown({"status"}), HasSubstr("Missing: tool: no-such-tool is not found"));
}

TEST_F(PlanCommands, ListsOfOtherTasks) {
  makeProgramProject({"main.c"});
  put("main.c", "int main(void) { return 0; }\n");
  EXPECT_EQ(shown({"clean", "--dry-run"}), "") << "nothing is there";
  must({"build"});
  EXPECT_EQ(shown({"clean", "--dry-run"}), "obj/main.obj\nout/prog\n");
  EXPECT_TRUE(exists("out/prog"));
  EXPECT_EQ(must({"rebuild", "--dry-run"}).lines().size(), 2u);
  EXPECT_EQ(must({"compile", "main.c", "--dry-run"}).lines().size(), 1u);
}

TEST_F(PlanCommands, ProgramsReadTheSameAsObjects) {
  makeProgramProject({"main.c"});
  put("main.c", "int main(void) { return 0; }\n");
  must({"build"});
  touch("main.c");
  const Lines why = must({"--json", "why"}).lines();
  ASSERT_EQ(why.size(), 5u);
  const auto component = nlohmann::json::parse(why[0]);
  EXPECT_EQ(component.at("type"), "component");
  EXPECT_EQ(component.at("state"), "out-of-date");
  EXPECT_EQ(component.at("inputs"), nlohmann::json({"main.c"}));
  const auto run = nlohmann::json::parse(why[1]);
  EXPECT_EQ(run.at("type"), "planned_run");
  EXPECT_EQ(run.at("reason"), "dependency-newer");
  EXPECT_EQ(run.at("cause"), "main.c");
  EXPECT_GT(run.at("cause_time_ns"), run.at("output_time_ns"));
  EXPECT_FALSE(nlohmann::json::parse(why[3]).contains("cause_time_ns")) << "is yet to be made";
  const auto project = nlohmann::json::parse(must({"--json", "status"}).lines()[0]);
  EXPECT_EQ(project.at("target"), "native");
}

TEST_F(PlanCommands, NamesThatAreNoneGetASuggestion) {
  makeProgramProject({"main.c"});
  EXPECT_THAT(refused({"why", "mian.c"}), HasSubstr("Did you mean main.c?"));
  EXPECT_THAT(refused({"why", "lnik"}), HasSubstr("Did you mean link?"));
  EXPECT_THAT(refused({"status", "x"}), HasSubstr("forgeyard: "));
}

}  // namespace
}  // namespace forgeyard::console
