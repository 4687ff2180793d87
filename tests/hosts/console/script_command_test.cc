// script: Lua over the live objects.

#include <filesystem>

#include "tests/hosts/console/console_sandbox.h"

namespace forgeyard::console {
namespace {

using e2e::RunningProgram;
using testing::HasSubstr;

class ScriptCommand : public ConsoleSandbox {
 protected:
  Outcome run(const std::string& script, Lines arguments = {}) const {
    put("s.lua", script);
    Lines line{"script", "s.lua"};
    line.insert(line.end(), arguments.begin(), arguments.end());
    return forgeyard(line);
  }
};

// A project with two sources that a tool copies, made, saved, built, rebuilt and loaded again.
constexpr const char* kWholeJob = R"LUA(
local project = BuildTool.Projects:New()
project.Name = "job"
project.WorkingDirectory = forgeyard.modelpath(".")
project.FileName = "job.nqp"
project:ProjectInit()
BuildTool.ActiveProject = project

local function add(class, ...)
  local component = forgeyard.create(class)
  forgeyard.answer(...)
  project.Components:New(component)
  return component
end
local sources = add("KV.Folder", "sources", "in")
local tool = add("KV.CmdLine", "copy")
project.Connections:New(sources, tool)
project:InsertFiles({forgeyard.modelpath("a.in"), forgeyard.modelpath("b.in")}, sources)

local config = project.ActiveConfiguration
config.OutputDirectory = "out"
config.Cookie["Target"] = "native"
local settings = tool:Setting(config)
settings.output = ".out"
settings.COMMANDOUTDIR = "$(COutDir)"
settings.Command = 'cp "$(FileFullPath)" "$(OutDir)$(FileName).out"'

local told = {}
forgeyard.on(BuildTool, "OnBuildStart", function(task) told[#told + 1] = "start " .. task end)
local off = forgeyard.on(BuildTool, "OnBuildEnd", function() told[#told + 1] = "end" end)
forgeyard.on(project, "onchanged", function(name) told[name] = (told[name] or 0) + 1 end)
assert(forgeyard.run("ProjectBuild") == "OK")
assert(off() and not off())
assert(forgeyard.run("ProjectRebuild") == "OK")
assert(table.concat(told, ",") == "start 0,end,start 1", table.concat(told, ","))
project:ProjectSave()
assert(told.Dirty == 1, told.Dirty)

local names = {}
for component in each(project.Components) do names[#names + 1] = component.ComponentName end
for index, file in pairs(sources.SourceFiles) do names[#names + 1] = index .. forgeyard.hostpath(file.Name):match("[^/]+$") end
assert(table.concat(names, " ") == "sources copy 0a.in 1b.in", table.concat(names, " "))
assert(#project.Components == 2 and project.Components(0) == sources and project.Components[1] == tool)
assert(config == project.Configurations("Default") and config:Cookie("target") == "" and config:Cookie("Target") == "native")
project:ProjectClose()

local again = BuildTool:InsertProject(forgeyard.modelpath("job.nqp"))
assert(tostring(again) == "IProject job" and again ~= project)

local commands = {"InsertFolder", "InsertCmdLine", "InsertCc", "InsertAsm", "InsertLinker"}
assert(not pcall(forgeyard.run, "InsertCc"), "the active project is closed")
BuildTool.ActiveProject = again
names = {}
for _, command in ipairs(commands) do
  forgeyard.answer(command)
  forgeyard.run(command)
  local new = again.Components(#again.Components - 1)
  names[#names + 1] = new.ComponentName .. " " .. tostring(new:Setting(again.ActiveConfiguration))
end
assert(table.concat(names, ",") == "InsertFolder IFolderSettings,InsertCmdLine ICmdLineSettings," ..
  "InsertCc ICcSettings,InsertAsm IAsmSettings,InsertLinker ILinkerSettings", table.concat(names, ","))
forgeyard.run("InsertCc")
assert(#again.Components == 7, "a dialog that isn't filled in is cancelled")
print("done", #BuildTool.Projects)
)LUA";

TEST_F(ScriptCommand, MakesAProjectBuildsItAndHearsOfIt) {
  put("a.in", "a");
  put("b.in", "b");
  const Outcome outcome = run(kWholeJob);
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors << outcome.output;
  EXPECT_EQ(outcome.errors,
            "forgeyard: New compiler: cancelled, since nothing was given to fill it in with.\n");
  EXPECT_TRUE(outcome.output.ends_with("Final result: OK\n-----\ndone\t2\n")) << outcome.output;
  EXPECT_EQ(toolRuns(outcome), 4);
  EXPECT_EQ(content("out/b.out"), "b");
  setDirectory("project");
  EXPECT_THAT(shown({"file", "list"}), HasSubstr("  a.in\n  b.in\n"));
}

TEST_F(ScriptCommand, ErrorsTellTheLineTheMemberAndTheStatus) {
  makeProject();
  const struct {
    const char* script;
    const char* message;
  } table[] = {
      {"\nprint(BuildTool.Projekts)",
       "s.lua:2: IBuildTool.Projekts: there is no such member (0x80020006). Did you mean Projects?"},
      {"BuildTool.Building = 1", "s.lua:1: IBuildTool.Building: it can't be set (0x80020003)"},
      {"BuildTool.ActiveProject.Dirty = {}",
       "IProject.Dirty: the value: a value of another type is needed (0x8002"},
      {"BuildTool.ActiveProject.Dirty = 1e30", "the number is out of range (0x8002000A)"},
      {"BuildTool.ActiveProject.Name = print", "an object is needed here, not a function"},
      {"BuildTool:InsertProject()", "IBuildTool.InsertProject: argument 1: it is missing (0x80020004)"},
      {"BuildTool:InsertProject('a', 'b', 'c')", "there are too many arguments (0x8002000E)"},
      {"BuildTool:InsertProject([[\\nowhere\\x.nqp]])", "IBuildTool.InsertProject: "},
      {"print(BuildTool(1))", "IBuildTool: it is no collection with items"},
      {"for x in each(BuildTool) do end", "IBuildTool: it is no collection"},
      {"forgeyard.create('KV.Nothing')", "s.lua:1: KV.Nothing: the class is not registered"},
      {"forgeyard.create('KV.Workspace')", "KV.Workspace: this part is not built yet"},
      {"forgeyard.run('ProjectBiuld')", "The module has no command ProjectBiuld."},
      {"forgeyard.run('ProjectStopBuild')", "The command ProjectStopBuild can't be run now."},
      {"forgeyard.on(BuildTool, 'OnBuildEdn', print)",
       "IBuildTool.OnBuildEdn: there is no such event. Did you mean OnBu"},
      {"local f = forgeyard.on\nf(BuildTool, 'OnBuildStart', function() error('not today') end)\n"
       "forgeyard.run('ProjectBuild')",
       "s.lua:2: not today"},
      {"forgeyard.on(BuildTool, 'OnBuildStart', function() forgeyard.run('ProjectClean') end)\n"
       "forgeyard.run('ProjectBuild')",
       "can't be run from within an event"},
      {"x =", "s.lua:1: unexpected symbol near <eof>"},
  };
  for (const auto& row : table) {
    put("s.lua", row.script);
    const Outcome outcome = forgeyard({"-p", "p.nqp", "script", "s.lua"});
    EXPECT_EQ(outcome.exitCode, 2) << row.script;
    EXPECT_THAT(outcome.errors, HasSubstr(row.message)) << row.script;
  }
  EXPECT_THAT(refused({"script", "none.lua"}), HasSubstr("cannot open none.lua"));
}

TEST_F(ScriptCommand, CatchesErrorsWithTheirStatus) {
  EXPECT_EQ(run("local ok, e = pcall(function() return BuildTool.Nothing end)\n"
                "print(ok, string.format('%X', e.status), e.member)")
                .output,
            "false\t80020006\tIBuildTool.Nothing\n");
}

TEST_F(ScriptCommand, SavesThatFailAreErrors) {
  makeProject();
  put("s.lua", "local p = BuildTool.ActiveProject\np.Name = 'x'\np:ProjectSave()");
  e2e::Start limited = start({"-p", "p.nqp", "script", "s.lua"});
  limited.fileLimit = 100;
  const std::string before = content("p.nqp");
  const Outcome outcome = RunningProgram(limited).finish();
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("s.lua:3: IProject.ProjectSave: "));
  EXPECT_EQ(content("p.nqp"), before);
}

TEST_F(ScriptCommand, EndsAsTheScriptWishes) {
  const struct {
    const char* script;
    int exitCode;
  } table[] = {{"", 0},
               {"return 7", 7},
               {"return true", 0},
               {"return false", 1},
               {"os.exit()", 0},
               {"os.exit(3)", 3},
               {"os.exit(false)", 1},
               {"pcall(os.exit, 4) while true do end", 4},
               {"error()", 2},
               {"return 'x'", 0},
               {"#!/bin/x\nos.exit(5)", 5}};
  for (const auto& row : table) EXPECT_EQ(run(row.script).exitCode, row.exitCode) << row.script;
}

TEST_F(ScriptCommand, TakesArgumentsAsTheyStand) {
  EXPECT_EQ(run("print(arg[0], #arg, ...)", {"-q", "--all=", "[x]", "--", "-p"}).output,
            "s.lua\t5\t-q\t--all=\t[x]\t--\t-p\n");
}

TEST_F(ScriptCommand, AnAssignmentChangesWhatFollowsFromTheProperty) {
  makeProject();
  put("s.lua", R"LUA(
local project = BuildTool.ActiveProject
for component in each(project.Components) do
  if component.ComponentName == "cc" then
    local settings = component:Setting(project.ActiveConfiguration)
    settings.TranslateMode = 1
    print(settings.Input, settings.Output)
    settings.Output = ".asm"
    print(settings.Output)
  end
end
)LUA");
  EXPECT_EQ(must({"-p", "p.nqp", "script", "s.lua"}).output, ".c;.i;.ii;.m;.cc;.cxx;.cpp;.C\t.s\n.asm\n");
}

TEST_F(ScriptCommand, WorksOnTheProjectAndConfigurationOfTheOptions) {
  makeProject();
  must({"workspace", "add", "p.nqp", "-w", "ws"});
  put("s.lua", R"LUA(
local project = BuildTool.ActiveProject
print(project and project.ActiveConfiguration.Name or "none")
)LUA");
  const struct {
    Lines options;
    const char* configuration;
  } table[] = {
      {{}, "none"},
      {{"-p", "p.nqp"}, "Default"},
      {{"-p", "p.nqp", "-c", "Small"}, "Small"},
      {{"-w", "ws"}, "Default"},
      {{"-w", "ws", "-c", "Small"}, "Small"},
      {{"-c", "Small"}, "Small"},
  };
  const std::string before = content("p.nqp");
  for (const auto& row : table) {
    Lines line = row.options;
    line.insert(line.end(), {"script", "s.lua"});
    EXPECT_EQ(must(line).output, std::string(row.configuration) + "\n")
        << testing::PrintToString(row.options);
  }
  EXPECT_EQ(content("p.nqp"), before);
  EXPECT_THAT(refused({"-c", "Big", "script", "s.lua"}), HasSubstr("There is no configuration Big."));
}

TEST_F(ScriptCommand, ComesFromStandardInputToo) {
  e2e::Start line = start({"script", "-", "x"});
  line.withInput = true;
  RunningProgram program(line);
  program.write("print(arg[1], BuildTool)");
  program.closeInput();
  EXPECT_EQ(program.finish().output, "x\tIBuildTool\n");
}

TEST_F(ScriptCommand, RefusesABuildInItsCallback) {
  makeProject();
  put("s.lua",
      "forgeyard.on(BuildTool, 'OnBuildStart', function() return true "
      "end)\nprint(forgeyard.run('ProjectBuild'))");
  EXPECT_EQ(must({"-p", "p.nqp", "script", "s.lua"}).output, "\n");
}

TEST_F(ScriptCommand, CtrlCEndsEndlessLoops) {
  for (const std::string loop :
       {"while true do end", "while true do pcall(function() while true do end end) end"}) {
    put("s.lua", "print('up') io.stdout:flush()\n" + loop);
    RunningProgram program(start({"script", "s.lua"}));
    ASSERT_TRUE(program.waitForOutput("up\n"));
    program.interrupt();
    EXPECT_EQ(program.finish().exitCode, 130) << loop;
  }
}

// Where no instruction of the script is reached any more: in a pattern, in a finalizer, in another program.
TEST_F(ScriptCommand, CtrlCEndsWhatRunsNoInstructions) {
  for (const std::string work :
       {"local _ = (('a'):rep(5000)):find(('a-'):rep(50) .. 'b')",
        "setmetatable({}, {__gc = function() while true do end end}) collectgarbage()",
        "os.execute('trap \"\" INT; sleep 1000 & echo $! > child; wait')"}) {
    put("s.lua", "print('up') io.stdout:flush()\n" + work);
    RunningProgram program(start({"script", "s.lua"}));
    ASSERT_TRUE(program.waitForOutput("up\n"));
    if (work.starts_with("os")) waitForFile("child");
    program.interrupt();
    EXPECT_EQ(program.finish().exitCode, 130) << work;
  }
  EXPECT_TRUE(becomesQuiet());
}

TEST_F(ScriptCommand, LoadsNoBytecode) {
  EXPECT_EQ(run("local f = assert(io.open('b.lua', 'wb')) f:write(string.dump(function() print('ran') end)) "
                "f:close()")
                .exitCode,
            0);
  const Outcome direct = forgeyard({"script", "b.lua"});
  EXPECT_EQ(direct.exitCode, 2);
  EXPECT_THAT(direct.errors, HasSubstr("attempt to load a binary chunk"));
  for (const std::string call :
       {"load(string.dump(function() print('ran') end), 'x', 'b')", "loadfile('b.lua', 'b')",
        "select(2, pcall(dofile, 'b.lua'))", "select(2, pcall(require, 'b'))"}) {
    const Outcome outcome = run("print(" + call + ")");
    EXPECT_THAT(outcome.output, HasSubstr("attempt to load a binary chunk")) << call;
  }
  EXPECT_EQ(run("print(load('return 1 + ...', 'x', 't', {})(1))").output, "2\n");
  EXPECT_EQ(run("print(os.execute('exit 3'))").output, "nil\texit\t3\n");
}

TEST_F(ScriptCommand, CtrlCInItsBuildStopsBoth) {
  makeToolProject({"a.in"}, scriptedTool() + " pid running hang");
  put("s.lua", "forgeyard.run('ProjectBuild')\nprint('still here')");
  RunningProgram program(start({"-p", "p.nqp", "script", "s.lua"}));
  waitForFile("running");
  program.interrupt();
  const Outcome outcome = program.finish();
  EXPECT_EQ(outcome.exitCode, 130);
  EXPECT_THAT(outcome.output, HasSubstr("Final result: STOPPED"));
  EXPECT_EQ(outcome.output.find("still here"), std::string::npos);
  EXPECT_TRUE(becomesQuiet());
}

}  // namespace
}  // namespace forgeyard::console
