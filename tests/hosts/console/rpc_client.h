#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/e2e/running_program.h"

namespace forgeyard::console {

// The other side of "forgeyard serve --stdio", as a child process of the test.
class RpcClient {
 public:
  using Json = nlohmann::json;

  explicit RpcClient(e2e::Start start);

  e2e::RunningProgram& program() { return program_; }
  // Bytes as they stand, and as a message of their own.
  bool write(std::string_view bytes) { return program_.write(bytes); }
  bool send(std::string_view message);

  // Sends a request without waiting for its answer. Its id.
  int request(const std::string& method, const Json& parameters = Json::object());
  // Waits for the answer. Null if none comes.
  Json responseTo(const Json& id);
  Json ask(const std::string& method, const Json& parameters = Json::object()) {
    return responseTo(request(method, parameters));
  }
  // The result of a request that is to succeed; fails the test with the error otherwise.
  Json must(const std::string& method, const Json& parameters = Json::object());
  // The number of an object that is the value of a property.
  int object(int owner, const std::string& member);

  // All that has come, in order.
  std::vector<Json> messages() const;
  // Waits until so many have come; false if they don't.
  bool waitForMessages(std::size_t count);

 private:
  e2e::RunningProgram program_;
  int lastId_ = 0;
};

}  // namespace forgeyard::console
