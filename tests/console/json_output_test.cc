// --json: what every command then writes.

#include "tests/console/console_sandbox.h"
#include "tests/console/json_objects.h"

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
      {{"component", "list"}, "line", "text", "cc -> link", 0},
      {{"target", "list"}, "line", "text", "native", 0},
      {{"stop"}, "line", "text", "No build of yours is running.", 0},
      {{"typelib", "IProject"}, "line", "text", "interface IProject", 0},
      {{"--help"}, "line", "text", "Usage: ", 0},
      {{"build", "--help"}, "line", "text", "Run what is out of date", 0},
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
                      {"text", FORGEYARD_BIN_DIR "/Forgeyard.so"}};
  EXPECT_THAT(findings, testing::Contains(expected));
}

TEST_F(JsonOutput, ToolLinesOfAnyBytesAreText) {
  makeToolProject({"a.in"}, scriptedTool() + " print a\xff\xc3\xa4z");
  const Json expected{{"type", "line"}, {"tab", "Build"}, {"text", "a\xef\xbf\xbd\xc3\xa4z"}};
  EXPECT_THAT(told({"build"}), testing::Contains(expected));
}

}  // namespace
}  // namespace forgeyard::console
