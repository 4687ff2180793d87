#include "tests/hosts/console/rpc_client.h"

#include <gtest/gtest.h>

namespace forgeyard::console {

namespace {

e2e::Start withInput(e2e::Start start) {
  start.withInput = true;
  return start;
}

}  // namespace

RpcClient::RpcClient(e2e::Start start) : program_(withInput(std::move(start))) {}

bool RpcClient::send(std::string_view message) {
  return write("Content-Length: " + std::to_string(message.size()) + "\r\n\r\n" + std::string(message));
}

int RpcClient::request(const std::string& method, const Json& parameters) {
  const Json message{{"jsonrpc", "2.0"}, {"id", ++lastId_}, {"method", method}, {"params", parameters}};
  send(message.dump());
  return lastId_;
}

std::vector<RpcClient::Json> RpcClient::messages() const {
  std::vector<Json> all;
  std::string_view rest = program_.seen();
  for (;;) {
    const std::size_t header = rest.find("\r\n\r\n");
    if (header == rest.npos) return all;
    const std::size_t length = std::stoul(std::string(rest.substr(rest.find(' ') + 1, header)));
    if (rest.size() < header + 4 + length) return all;
    all.push_back(Json::parse(rest.substr(header + 4, length)));
    rest.remove_prefix(header + 4 + length);
  }
}

RpcClient::Json RpcClient::responseTo(const Json& id) {
  do {
    for (const Json& message : messages()) {
      if (message.is_object() && message.contains("id") && message["id"] == id) return message;
    }
  } while (program_.readSome());
  return nullptr;
}

bool RpcClient::waitForMessages(std::size_t count) {
  while (messages().size() < count) {
    if (!program_.readSome()) return false;
  }
  return true;
}

RpcClient::Json RpcClient::must(const std::string& method, const Json& parameters) {
  const Json response = ask(method, parameters);
  EXPECT_TRUE(response.contains("result")) << method << parameters << " " << response;
  return response.contains("result") ? response["result"] : Json();
}

int RpcClient::object(int owner, const std::string& member) {
  return must("get", {{"object", owner}, {"member", member}})["object"];
}

}  // namespace forgeyard::console
