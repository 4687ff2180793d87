#pragma once

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "hosts/console/base/exit_code.h"
#include "hosts/console/build/stop_signals.h"
#include "hosts/console/serve/message_stream.h"
#include "hosts/console/serve/object_handles.h"
#include "hosts/console/session/session.h"
#include "workbench/automation/events.h"
#include "workbench/automation/late_bound.h"

namespace forgeyard::console {

// JSON-RPC 2.0 over standard input and output: the live objects of a session for another program. Requests
// are answered one after the other, also while a build runs; that of a build is answered at its end. When the
// client goes away, a build is stopped and the server ends. Main thread only.
class Server {
 public:
  explicit Server(Session& session);
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server();

  // Serves until the client goes or asks for the end, or the user says stop.
  ExitCode run();

 private:
  using Json = ObjectHandles::Json;
  using Reply = std::function<void(Json)>;

  struct Input final : Waitable {
    int descriptor() const noexcept override;
  };
  class BuildWatch;
  struct Method {
    const char* name;
    Json (Server::*answer)(const Json& parameters);
  };
  struct Waiting {
    Json id;
    Reply reply;
  };

  static std::span<const Method> methods();

  // The two ends of the line
  void readInput();
  void takeSignals();
  void send(const Json& message, bool urgent);
  void notify(const char* method, Json parameters);

  // Requests
  void serveWaiting();
  void handle(const std::string& message);
  void handleBatch(const Json& requests);
  void handleRequest(const Json& request, const Reply& reply);
  Json answer(const Json& request, const std::string& name, const Reply& reply);
  static Json failure(const Json& id, int code, const std::string& message, Json data = nullptr);

  // What clients can ask for; each takes the parameters and gives the result.
  Json initialize(const Json& parameters);
  Json get(const Json& parameters);
  Json set(const Json& parameters);
  Json call(const Json& parameters);
  Json items(const Json& parameters);
  Json create(const Json& parameters);
  Json release(const Json& parameters);
  Json describeObject(const Json& parameters);
  Json subscribe(const Json& parameters);
  Json unsubscribe(const Json& parameters);
  Json fillDialog(const Json& parameters);
  Json modelPath(const Json& parameters);
  Json hostPath(const Json& parameters);
  Json shutdown(const Json& parameters);
  // True if the command has started a build, whose end is the answer.
  bool runModuleCommand(const Json& parameters);

  IUnknown* objectIn(const Json& parameters) const;
  workbench::FoundMember memberIn(const Json& parameters) const;
  std::vector<Variant> argumentsIn(const Json& parameters) const;

  // The end
  bool isBuilding();
  void stopBuild();
  void close(ExitCode code);
  void buildHasEnded();

  Session& session_;
  MessageReader reader_;
  Input input_;
  StopSignals signals_;
  const Waitable* interruptBefore_;
  ObjectHandles handles_;
  std::deque<std::function<void()>> waiting_;  // of what has been read
  std::map<std::int64_t, Advice> subscriptions_;
  std::int64_t lastSubscription_ = 0;
  Advice buildAdvice_;
  std::optional<Waiting> build_;  // the request that has started the build
  int buildsEnded_ = 0;
  int signalsTaken_ = 0;
  bool watching_ = false;
  bool closing_ = false;
  ExitCode exitCode_ = ExitCode::Success;
};

}  // namespace forgeyard::console
