#include "hosts/console/serve/server.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>

#include "hosts/console/build/build_run.h"
#include "hosts/console/build/tool_processes.h"
#include "hosts/console/serve/protocol.h"
#include "workbench/base/failure.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

constexpr std::size_t kChunk = std::size_t{64} << 10;

// Without the tag in brackets at its beginning.
std::string reason(const nlohmann::json::exception& error) {
  const std::string_view text = error.what();
  const std::size_t tag = text.find("] ");
  return std::string(tag == text.npos ? text : text.substr(tag + 2));
}

}  // namespace

int Server::Input::descriptor() const noexcept {
  return STDIN_FILENO;
}

// Tells of the end of a build, behind its last lines, which come after the event.
class Server::BuildWatch final : public ComObject<IBuildToolE> {
 public:
  explicit BuildWatch(Server& server) : server_(server) {}

  HRESULT OnBuildStart(e_task, std::int32_t*) override { return S_OK; }
  HRESULT OnBuildEnd() override {
    ++server_.buildsEnded_;
    return guard([&] { server_.session_.apartment().post([&server = server_] { server.buildHasEnded(); }); });
  }

 private:
  Server& server_;
};

Server::Server(Session& session)
    : session_(session),
      reader_({[this](std::string message) {
                 waiting_.push_back([this, text = std::move(message)] { handle(text); });
               },
               [this](std::size_t bytes) {
                 waiting_.push_back([this, bytes] {
                   send(failure(nullptr, kInvalidRequest,
                                "The message has " + std::to_string(bytes) + " bytes; at most " +
                                    std::to_string(MessageReader::kLargest) + " are taken."),
                        true);
                 });
               }}),
      interruptBefore_(session.setInterrupt(&signals_)) {
  session_.host().outputWindow().setListener([this](const BString& tab, const BString& text) {
    notify("output", {{"tab", tab.narrow()}, {"text", text.narrow()}});
  });
  session_.host().frame().setListener([this](const BString& title, const BString& text) {
    notify("message", {{"title", title.narrow()}, {"text", text.narrow()}});
  });
  check(buildAdvice_.connect<IBuildToolE>(&session_.tool(), make<BuildWatch>(*this).get()));
  session_.loop().watch(&signals_, [this] { takeSignals(); });
  session_.loop().setOnOutputLost(
      [this] { session_.apartment().post([this] { close(ExitCode::OutputClosed); }); });
}

Server::~Server() {
  session_.loop().setOnOutputLost(nullptr);
  session_.loop().unwatch(&signals_);
  if (watching_) session_.loop().unwatch(&input_);
  subscriptions_.clear();
  buildAdvice_.disconnect();
  // Posted work must not outlive this object.
  static_cast<void>(session_.apartment().pumpPending());
  session_.host().outputWindow().setListener(nullptr);
  session_.host().frame().setListener(nullptr);
  session_.setInterrupt(interruptBefore_);
}

ExitCode Server::run() {
  session_.loop().watch(&input_, [this] { readInput(); });
  watching_ = true;
  session_.apartment().run();
  session_.waitForThreads();
  return exitCode_;
}

// The two ends of the line

// Inside of the loop's wait: the work is left to a call, and no more is read until that is done.
void Server::readInput() {
  std::array<char, kChunk> bytes;
  const ssize_t got = ::read(STDIN_FILENO, bytes.data(), bytes.size());
  if (got < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (got <= 0) {
    waiting_.emplace_back([this] { close(ExitCode::Success); });
  } else if (!reader_.feed(std::string_view(bytes.data(), static_cast<std::size_t>(got)))) {
    waiting_.emplace_back([this] {
      send(failure(nullptr, kParseError, "A message begins with a line Content-Length: NUMBER."), true);
      close(ExitCode::Failure);
    });
  }
  if (waiting_.empty()) return;
  session_.loop().unwatch(&input_);
  watching_ = false;
  session_.apartment().post([this] { serveWaiting(); });
}

void Server::serveWaiting() {
  while (!waiting_.empty()) {
    const std::function<void()> next = std::move(waiting_.front());
    waiting_.pop_front();
    next();
  }
  if (closing_ || watching_) return;
  session_.loop().watch(&input_, [this] { readInput(); });
  watching_ = true;
}

void Server::takeSignals() {
  while (signals_.take()) {
    switch (++signalsTaken_) {
      case 1:
        session_.apartment().post([this] { close(ExitCode::Stopped); });
        break;
      case 2:
        session_.apartment().post([] { killTools(); });
        break;
      default:
        ::_exit(static_cast<int>(ExitCode::Stopped));
    }
  }
}

// Lines of a build may wait a moment for more of them.
void Server::send(const Json& message, bool urgent) {
  // Names of files may have bytes in them that are no UTF-8.
  session_.output().raw(framed(message.dump(-1, ' ', false, Json::error_handler_t::replace)));
  if (urgent) session_.output().flush();
}

void Server::notify(const char* method, Json parameters) {
  send({{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(parameters)}}, false);
}

// Requests

Server::Json Server::failure(const Json& id, int code, const std::string& message, Json data) {
  Json error{{"code", code}, {"message", message}};
  if (!data.is_null()) error["data"] = std::move(data);
  return {{"jsonrpc", "2.0"}, {"id", id}, {"error", std::move(error)}};
}

void Server::handle(const std::string& message) {
  Json request;
  try {
    request = Json::parse(message);
  } catch (const Json::exception& error) {
    return send(failure(nullptr, kParseError, "The message is no JSON: " + reason(error)), true);
  }
  if (request.is_array()) return handleBatch(request);
  handleRequest(request, [this](const Json& response) { send(response, true); });
}

void Server::handleBatch(const Json& requests) {
  if (requests.empty()) return send(failure(nullptr, kInvalidRequest, "The batch is empty."), true);
  struct Batch {
    Json responses = Json::array();
    std::size_t open = 0;
  };
  const auto batch = std::make_shared<Batch>();
  // One for the loop itself, so that the first answer doesn't close the batch.
  batch->open = 1;
  const auto done = [this, batch] {
    if (--batch->open == 0 && !batch->responses.empty()) send(batch->responses, true);
  };
  for (const Json& request : requests) {
    if (expectsAnswer(request)) ++batch->open;
    handleRequest(request, [batch, done](Json response) {
      batch->responses.push_back(std::move(response));
      done();
    });
  }
  done();
}

void Server::handleRequest(const Json& request, const Reply& reply) {
  const std::string fault = faultOf(request);
  if (!fault.empty()) return reply(failure(idOf(request), kInvalidRequest, fault));
  const Reply answerTo = expectsAnswer(request) ? reply : Reply([](const Json&) {});
  const std::string& name = request["method"].get_ref<const std::string&>();
  if (Json response = answer(request, name, answerTo); !response.is_null()) answerTo(std::move(response));
}

// The response; null when it comes later.
Server::Json Server::answer(const Json& request, const std::string& name, const Reply& reply) {
  const Json id = idOf(request);
  const Json parameters = request.value("params", Json::object());
  try {
    if (name == "run") {
      if (runModuleCommand(parameters)) {
        build_ = Waiting{id, reply};
        return nullptr;
      }
      return {{"jsonrpc", "2.0"}, {"id", id}, {"result", nullptr}};
    }
    for (const Method& method : methods()) {
      if (name == method.name)
        return {{"jsonrpc", "2.0"}, {"id", id}, {"result", (this->*method.answer)(parameters)}};
    }
    return failure(id, kMethodNotFound, "There is no method " + name + ".");
  } catch (const MemberError& error) {
    return failure(
        id, kMemberFailed, error.what(),
        {{"status", static_cast<std::uint32_t>(code(error.status()))}, {"member", error.member()}});
  } catch (const InvalidParameters& error) {
    return failure(id, kInvalidParameters, error.what());
  } catch (const StatusError& error) {
    return failure(id, kMemberFailed, describe(error.status()),
                   {{"status", static_cast<std::uint32_t>(code(error.status()))}});
  } catch (const std::exception& error) {
    return failure(id, kRequestFailed, error.what());
  }
}

// The end

bool Server::isBuilding() {
  std::int32_t building = 0;
  ignore(session_.tool().get_Building(&building));
  return building != 0;
}

// The command is disabled, and does nothing, when no build runs.
void Server::stopBuild() {
  ignore(guard([&] { static_cast<void>(session_.host().commands().run(u"ProjectStopBuild")); }));
}

// The end waits for that of a build.
void Server::close(ExitCode code) {
  if (!closing_) exitCode_ = code;
  closing_ = true;
  if (!isBuilding()) return session_.apartment().quit();
  if (exitCode_ == ExitCode::Success) exitCode_ = ExitCode::Stopped;
  stopBuild();
}

void Server::buildHasEnded() {
  if (const auto request = std::exchange(build_, std::nullopt)) {
    request->reply({{"jsonrpc", "2.0"},
                    {"id", request->id},
                    {"result", {{"result", resultWord(lastResult(session_))}}}});
  }
  if (closing_) session_.apartment().quit();
}

}  // namespace forgeyard::console
