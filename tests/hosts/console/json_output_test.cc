// --json: what every command then writes.

#include "tests/hosts/console/console_sandbox.h"
#include "tests/hosts/console/json_objects.h"
#include "tests/support/places.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;

class JsonOutput : public ConsoleSandbox {
 protected:
  std::vector<Json> told(Lines arguments) const {
    arguments.emplace_back("--json");
    return objectsOf(forgeyard(arguments));
  }
};

TEST_F(JsonOutput, LinesAndFailuresOfEveryCommandAreObjects) {
  makeProject();
  const struct {
    Lines arguments;
    const char* type;
    const char* field;
    const char* words;
    int exitCode;
  } table[] = {
      {{"get", "cc", "Output"}, "property", "value", ".obj\n", 0},
      {{"file", "list"}, "source", "file", "", 0},
      {{"config", "list"}, "configuration", "configuration", "Default\nSmall\n", 0},
      {{"component", "list"}, "component", "component", "src\ninc\ncc\nlink\n", 0},
      {{"target", "list"}, "target", "target", "native\n", 0},
      {{"workspace", "list"}, "workspace_project", "project", "", 0},
      {{"history"}, "line", "text", "Project", 0},
      {{"stop"}, "line", "text", "No build of yours is running.", 0},
      {{"typelib", "IProject"}, "line", "text", "interface IProject", 0},
      {{"--help"}, "line", "text", "Usage: ", 0},
      {{"build", "--help"}, "line", "text", "Run what is out of date", 0},
      {{"completion", "bash"}, "line", "text", "complete -F _forgeyard forgeyard", 0},
      {{"man", "build"}, "line", "text", ".SH NAME", 0},
      {{"export", "make", "--output", "-"}, "line", "text", "all:", 0},
      {{"build", "-v"}, "message", "text", "Module ", 0},
      {{"get", "cc", "Nope"}, "error", "message", "Nope", 2},
      {{"-p", "other.nqp", "get", "cc"}, "error", "message", "other.nqp", 2},
      {{"buidl"}, "error", "message", "Did you mean build?", 2},
      {{"build", "--fast"}, "error", "message", "--fast", 2},
      {{"serve", "--stdio"}, "error", "message", "JSON-RPC", 2},
  };
  for (const auto& row : table) {
    const std::vector<Json> objects = told(row.arguments);
    std::string all;
    for (const Json& object : ofType(objects, row.type)) all += object.value(row.field, "") + "\n";
    EXPECT_THAT(all, HasSubstr(row.words)) << testing::PrintToString(row.arguments);
    EXPECT_EQ(objects.back().value("exit_code", -1), row.exitCode);
    EXPECT_EQ(ofType(objects, "error").size(), row.exitCode == 0 ? 0 : 1);
  }
}

TEST_F(JsonOutput, RecordsOfADumpAreOneObject) {
  makeProject();
  const std::vector<Json> dumps = ofType(told({"dump"}), "dump");
  ASSERT_EQ(dumps.size(), 1);
  EXPECT_EQ(dumps.front().at("records"), Json::parse(shown({"dump"})));
}

TEST_F(JsonOutput, FindingsOfTheDoctorAreObjects) {
  const std::vector<Json> findings = ofType(told({"doctor"}), "finding");
  const Json expected{{"type", "finding"},
                      {"state", "ok"},
                      {"subject", "module"},
                      {"text", places::programs() + "/Forgeyard.so"}};
  EXPECT_THAT(findings, testing::Contains(expected));
}

TEST_F(JsonOutput, ToolLinesOfAnyBytesAreText) {
  makeToolProject({"a.in"}, scriptedTool() + " print a\xff\xc3\xa4z");
  const Json expected{{"type", "line"}, {"tab", "Build"}, {"text", "a\xef\xbf\xbd\xc3\xa4z"}};
  EXPECT_THAT(told({"build"}), testing::Contains(expected));
}

TEST_F(JsonOutput, FilesOfDiagnosticsAreThoseOfTheUser) {
  const struct {
    std::string told;
    const char* file;
  } table[] = {{"a.c", "a.c"},
               {"./sub/../a.c", "a.c"},
               {path("sub/a.c"), "sub/a.c"},
               {"/nowhere/a.h", "/nowhere/a.h"},
               {"\\nowhere\\a.h", "/nowhere/a.h"}};
  std::string command = scriptedTool();
  for (const auto& row : table) command += " print \"" + row.told + ":1: error: x\"";
  command += " print \"make[1]: Entering directory '" + path("sub") + "'\" print \"../b.c:1: error: x\"";
  command += " print \"make[1]: Leaving directory '" + path("sub") + "'\" print \"c.c:1: error: x\"";
  makeToolProject({"1.in"}, command);
  const std::vector<Json> found = ofType(told({"build"}), "diagnostic");
  ASSERT_EQ(found.size(), std::size(table) + 2);
  for (std::size_t i = 0; i < std::size(table); ++i) EXPECT_EQ(found[i].at("file"), table[i].file);
  EXPECT_EQ(found[found.size() - 2].at("file"), "b.c");
  EXPECT_EQ(found.back().at("file"), "c.c");
}

TEST_F(JsonOutput, BuildTellsWhatHappensInOrder) {
  makeToolProject({"1.in", "2.in"}, scriptedTool() + " print \"$(FileName).c:3:4: error: wrong\" exit 5");
  std::string order;
  const std::vector<Json> objects = told({"build"});
  for (const Json& object : objects) {
    if (object.at("type") != "line") order += object.at("type").get<std::string>() + "\n";
  }
  EXPECT_EQ(
      order,
      "build_start\ncomponent_start\ntool_start\ndiagnostic\ntool_end\ntool_start\ndiagnostic\ntool_end\n"
      "component_end\nbuild_end\nresult\n");
  EXPECT_THAT(objects, testing::Contains(Json{{"type", "build_start"},
                                              {"project", path("p.nqp")},
                                              {"directory", directory()},
                                              {"configuration", "Default"},
                                              {"task", "build"}}));
  EXPECT_THAT(objects, testing::Contains(Json{{"type", "diagnostic"},
                                              {"severity", "error"},
                                              {"file", "2.c"},
                                              {"line", 3},
                                              {"column", 4},
                                              {"text", "wrong"},
                                              {"component", "tool"}}));
  Json start = ofType(objects, "tool_start").back();
  EXPECT_NE(start.value("command", "").find("2.c:3:4"), std::string::npos);
  start.erase("command");
  EXPECT_EQ(
      start,
      (Json{{"type", "tool_start"}, {"component", "tool"}, {"index", 2}, {"count", 2}, {"file", "2.in"}}));
  Json end = ofType(objects, "tool_end").back();
  end.erase("elapsed_ms");
  EXPECT_EQ(
      end, (Json{{"type", "tool_end"}, {"component", "tool"}, {"index", 2}, {"count", 2}, {"exit_code", 5}}));
  Json result = ofType(objects, "build_end").back();
  result.erase("elapsed_ms");
  EXPECT_EQ(
      result,
      (Json{{"type", "build_end"}, {"result", "ERRORS"}, {"errors", 2}, {"warnings", 0}, {"tools", 2}}));
}

TEST_F(JsonOutput, FailureWithoutAWordIsADiagnosticToo) {
  makeToolProject({"1.in"}, scriptedTool() + " exit 5");
  EXPECT_THAT(ofType(told({"build"}), "diagnostic"),
              testing::ElementsAre(Json{{"type", "diagnostic"},
                                        {"severity", "error"},
                                        {"file", "1.in"},
                                        {"text", "\"tool\" ended with exit code 5"},
                                        {"component", "tool"}}));
}

TEST_F(JsonOutput, StoppedBuildTellsItsEndToo) {
  makeToolProject({"1.in"}, scriptedTool() + " pid running hang");
  e2e::RunningProgram build(start({"build", "--json"}));
  waitForFile("running");
  build.interrupt();
  const Outcome outcome = build.finish();
  EXPECT_EQ(outcome.exitCode, 130);
  const std::vector<Json> objects = objectsOf(outcome);
  EXPECT_EQ(ofType(objects, "build_end").at(0).at("result"), "STOPPED");
  EXPECT_FALSE(ofType(objects, "tool_end").at(0).contains("exit_code"));
  EXPECT_THAT(ofType(objects, "message").at(0).at("text"), HasSubstr("Stopping."));
}

}  // namespace
}  // namespace forgeyard::console
