// serve: JSON-RPC with a client as the parent process.

#include <algorithm>
#include <filesystem>

#include "hosts/console/serve/message_stream.h"
#include "tests/hosts/console/console_sandbox.h"
#include "tests/hosts/console/rpc_client.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;
using Json = RpcClient::Json;

class ServeCommand : public ConsoleSandbox {
 protected:
  e2e::Start server() const { return start({"-p", "p.nqp", "serve", "--stdio"}); }
  // A build whose only tool places the file "running" and hangs.
  void makeHanging() const { makeToolProject({"a.in"}, scriptedTool() + " print up pid running hang"); }
};

int buildTool(RpcClient& client) {
  return client.must("initialize")["BuildTool"]["object"];
}

Lines textsOf(const std::vector<Json>& messages) {
  Lines texts;
  for (const Json& message : messages) {
    if (message.value("method", "") == "output") texts.push_back(message["params"]["text"]);
  }
  return texts;
}

TEST_F(ServeCommand, ReachesObjectsAndBuilds) {
  makeToolProject({"a.in", "b.in"},
                  scriptedTool() + " print \"$(FileName)\" touch \"$(OutDir)$(FileName).out\"");
  RpcClient client(server());
  const int tool = buildTool(client);
  const int project = client.object(tool, "activeproject");
  EXPECT_EQ(client.object(tool, "ActiveProject"), project) << "one object has one number";
  client.must("set", {{"object", project}, {"member", "Name"}, {"value", "renamed"}});
  EXPECT_EQ(client.must("get", {{"object", project}, {"member", "Name"}}), "renamed");
  const Json components = client.must("items", {{"object", client.object(project, "Components")}});
  ASSERT_EQ(components.size(), 2U);
  EXPECT_EQ(components[0]["type"], "IFolder");
  const int configuration = client.object(project, "ActiveConfiguration");
  client.must("set",
              {{"object", configuration}, {"member", "Cookie"}, {"arguments", {"Target"}}, {"value", "t"}});
  EXPECT_EQ(client.must("get", {{"object", configuration}, {"member", "Cookie"}, {"arguments", {"Target"}}}),
            "t");
  const Json settings = client.must("get", {{"object", components[1]["object"]},
                                            {"member", "Setting"},
                                            {"arguments", {{{"object", configuration}}}}});
  EXPECT_EQ(settings["type"], "ICmdLineSettings");
  const Json ended = client.must("subscribe", {{"object", tool}, {"event", "OnBuildEnd"}});
  client.must("subscribe", {{"object", project}, {"event", "OnChanged"}});

  EXPECT_EQ(client.must("run", {{"command", "ProjectBuild"}})["result"], "OK");
  const std::vector<Json> messages = client.messages();
  const Lines texts = textsOf(messages);
  for (const char* line : {"a", "b", "Final result: OK"})
    EXPECT_EQ(std::count(texts.begin(), texts.end(), line), 1) << line;
  EXPECT_EQ(std::count_if(messages.begin(), messages.end(),
                          [&](const Json& m) {
                            return m.value("method", "") == "event" && m["params"]["subscription"] == ended;
                          }),
            1);
  EXPECT_TRUE(messages.back().contains("result")) << "the answer comes behind all lines";
  EXPECT_EQ(client.must("unsubscribe", {{"subscription", ended}}), true);
  EXPECT_EQ(client.must("unsubscribe", {{"subscription", ended}}), false);

  client.must("call", {{"object", project}, {"member", "ProjectSave"}});
  EXPECT_THAT(client.must("describe", {{"object", project}})["events"].dump(),
              HasSubstr("OnNewConfiguration"));
  EXPECT_EQ(client.must("hostpath", {{"path", client.must("modelpath", {{"path", "x y"}})}}), path("x y"));
  client.must("shutdown");
  const Outcome outcome = client.program().finish();
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(ServeCommand, MakesComponentsByTheirClass) {
  makeProject();
  RpcClient client(server());
  const int project = client.object(buildTool(client), "ActiveProject");
  const Json made = client.must("create", {{"class", "KV.Cc"}});
  client.must("answer", {{"texts", {"second"}}});
  client.must("call",
              {{"object", client.object(project, "Components")}, {"member", "New"}, {"arguments", {made}}});
  EXPECT_EQ(client.must("get", {{"object", made["object"]}, {"member", "Name"}}), "second");
  EXPECT_EQ(client.must("release", {{"object", made["object"]}}), true);
  EXPECT_EQ(client.must("release", {{"object", made["object"]}}), false);
  client.must("call", {{"object", project}, {"member", "ProjectSave"}});
  client.program().closeInput();
  EXPECT_EQ(client.program().finish().exitCode, 0);
  EXPECT_THAT(shown({"component", "list"}), HasSubstr("second"));
}

TEST_F(ServeCommand, WrongRequestsAreAnsweredAndTheNextOnesServed) {
  makeProject();
  RpcClient client(server());
  const int tool = buildTool(client);
  const struct {
    const char* method;
    Json parameters;
    int code;
    const char* words;
  } table[] = {
      {"fly", Json::object(), -32601, "There is no method fly."},
      {"get", Json::object(), -32602, "\"object\""},
      {"get", {{"object", "x"}, {"member", "Name"}}, -32602, "\"object\""},
      {"get", {{"object", 999}, {"member", "Name"}}, -32602, "There is no object 999"},
      {"get", {{"object", tool}}, -32602, "\"member\""},
      {"get", {{"object", tool}, {"member", "Projekts"}}, -32000, "Did you mean Projects?"},
      {"get", {{"object", tool}, {"member", "Projects"}, {"arguments", 1}}, -32602, "array"},
      {"get", {{"object", tool}, {"member", "Projects"}, {"arguments", {1}}}, -32000, "too many arguments"},
      {"set", {{"object", tool}, {"member", "ActiveProject"}}, -32602, "\"value\""},
      {"set", {{"object", tool}, {"member", "ActiveProject"}, {"value", "x"}}, -32000, "another type"},
      {"set",
       {{"object", tool}, {"member", "ActiveProject"}, {"value", {{"object", 999}}}},
       -32602,
       "no object 999"},
      {"call", {{"object", tool}, {"member", "Projects"}}, -32000, "it is no method"},
      {"items", {{"object", tool}}, -32000, "no collection"},
      {"create", {{"class", "KV.Nothing"}}, -32000, "not registered"},
      {"subscribe", {{"object", tool}, {"event", "OnRain"}}, -32000, "no such event"},
      {"run", {{"command", "ProjectFly"}}, -32001, "There is no command ProjectFly."},
      {"run", {{"command", "ProjectStopBuild"}}, -32001, "can't be run now"},
      {"answer", {{"texts", {1}}}, -32602, "texts"},
      {"modelpath", {{"path", "a\\b"}}, -32602, "a\\b"},
  };
  for (const auto& row : table) {
    const Json response = client.ask(row.method, row.parameters);
    ASSERT_TRUE(response.contains("error")) << row.method << response;
    EXPECT_EQ(response["error"]["code"], row.code) << response;
    EXPECT_THAT(std::string(response["error"]["message"]), HasSubstr(row.words)) << row.method;
  }
  const Json response = client.ask("get", {{"object", tool}, {"member", "Nothing"}});
  EXPECT_EQ(response["error"]["data"], (Json{{"status", 0x80020006U}, {"member", "IBuildTool.Nothing"}}));
}

TEST_F(ServeCommand, BadMessagesAreAnswered) {
  makeProject();
  RpcClient client(server());
  std::size_t answers = 0;
  const struct {
    std::string message;
    int code;
  } table[] = {{"{", -32700},
               {"", -32700},
               {"\xFF\xFE", -32700},
               {std::string(100000, '['), -32700},
               {"[]", -32600},
               {"17", -32600},
               {R"({"id": "t", "method": "initialize"})", -32600},
               {R"({"jsonrpc": "1.0", "id": "t", "method": "initialize"})", -32600},
               {R"({"jsonrpc": "2.0", "id": {}, "method": "initialize"})", -32600},
               {R"({"jsonrpc": "2.0", "id": "t", "method": 5})", -32600},
               {R"({"jsonrpc": "2.0", "id": "t", "method": "get", "params": [1]})", -32600}};
  for (const auto& row : table) {
    client.send(row.message);
    ASSERT_TRUE(client.waitForMessages(++answers)) << row.message.substr(0, 80);
    EXPECT_EQ(client.messages().back()["error"]["code"], row.code) << client.messages().back();
  }
  client.send(
      R"([7, {"jsonrpc":"2.0","method":"get"}, {"jsonrpc":"2.0","id":"x","method":"hostpath","params":{"path":"\\a"}}])");
  ASSERT_TRUE(client.waitForMessages(++answers));
  const Json batch = client.messages().back();
  ASSERT_EQ(batch.size(), 2U) << batch;
  EXPECT_EQ(batch[0]["error"]["code"], -32600);
  EXPECT_EQ(batch[1]["result"], "/a");

  const std::size_t huge = MessageReader::kLargest + 1;
  client.write("Content-Length: " + std::to_string(huge) + "\r\n\r\n");
  const std::string block(1 << 20, 'x');
  for (std::size_t left = huge; left > 0; left -= std::min(left, block.size()))
    ASSERT_TRUE(client.write(std::string_view(block).substr(0, std::min(left, block.size()))));
  ASSERT_TRUE(client.waitForMessages(++answers));
  EXPECT_EQ(client.messages().back()["error"]["code"], -32600);
  EXPECT_EQ(client.must("initialize")["largestMessage"], MessageReader::kLargest);

  client.write("no header\r\n\r\n");
  EXPECT_EQ(client.program().finish().exitCode, 2);
  EXPECT_EQ(client.messages().back()["error"]["code"], -32700);
}

TEST_F(ServeCommand, AnswersWhileABuildRunsAndStopsIt) {
  makeHanging();
  RpcClient client(server());
  const int tool = buildTool(client);
  const int build = client.request("run", {{"command", "ProjectBuild"}});
  waitForFile("running");
  EXPECT_EQ(client.must("get", {{"object", tool}, {"member", "Building"}}), 1);
  for (const char* command : {"ProjectBuild", "InsertFolder"}) {
    EXPECT_THAT(std::string(client.ask("run", {{"command", command}})["error"]["message"]),
                HasSubstr("can't be run now"));
  }
  EXPECT_EQ(client.must("run", {{"command", "ProjectStopBuild"}}), nullptr);
  EXPECT_EQ(client.responseTo(build)["result"]["result"], "STOPPED");
  std::filesystem::remove(path("running"));
  client.request("run", {{"command", "ProjectBuild"}});
  waitForFile("running");
  client.must("shutdown");
  EXPECT_EQ(client.program().finish().exitCode, 130);
  EXPECT_TRUE(becomesQuiet());
}

TEST_F(ServeCommand, EndsWithItsClientAndTakesTheToolsAlong) {
  makeHanging();
  const struct {
    const char* name;
    void (*go)(RpcClient&);
    int exitCode;
  } table[] = {{"end of input", [](RpcClient& c) { c.program().closeInput(); }, 130},
               {"SIGTERM", [](RpcClient& c) { c.program().signal(SIGTERM); }, 130},
               {"Ctrl-C", [](RpcClient& c) { c.program().interrupt(); }, 130},
               {"SIGKILL", [](RpcClient& c) { c.program().signal(SIGKILL); }, 128 + SIGKILL}};
  for (const auto& row : table) {
    std::filesystem::remove(path("running"));
    RpcClient client(server());
    client.request("run", {{"command", "ProjectBuild"}});
    waitForFile("running");
    row.go(client);
    EXPECT_EQ(client.program().finish().exitCode, row.exitCode) << row.name;
    EXPECT_TRUE(becomesQuiet()) << row.name;
  }
}

TEST_F(ServeCommand, NeedsToKnowItsLine) {
  EXPECT_THAT(refused({"serve"}), HasSubstr("--stdio"));
}

}  // namespace
}  // namespace forgeyard::console
