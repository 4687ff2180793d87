// What a client can ask the server for.

#include <array>

#include "hosts/console/serve/protocol.h"
#include "hosts/console/serve/server.h"
#include "platform/com/class_table.h"
#include "platform/files/host_location.h"
#include "workbench/automation/idl.h"
#include "workbench/automation/late_bound.h"
#include "workbench/base/failure.h"
#include "workbench/session/registered_classes.h"

namespace forgeyard::console {

using namespace workbench;

std::span<const Server::Method> Server::methods() {
  static constexpr std::array all{
      Method{"initialize", &Server::initialize},
      Method{"get", &Server::get},
      Method{"set", &Server::set},
      Method{"call", &Server::call},
      Method{"items", &Server::items},
      Method{"create", &Server::create},
      Method{"release", &Server::release},
      Method{"describe", &Server::describeObject},
      Method{"subscribe", &Server::subscribe},
      Method{"unsubscribe", &Server::unsubscribe},
      Method{"answer", &Server::fillDialog},
      Method{"modelpath", &Server::modelPath},
      Method{"hostpath", &Server::hostPath},
      Method{"shutdown", &Server::shutdown},
  };
  return all;
}

IUnknown* Server::objectIn(const Json& parameters) const {
  return handles_.at(numberIn(parameters, "object"));
}

FoundMember Server::memberIn(const Json& parameters) const {
  IUnknown* object = objectIn(parameters);
  return requireMember(object, textIn(parameters, "member"));
}

std::vector<Variant> Server::argumentsIn(const Json& parameters) const {
  std::vector<Variant> arguments;
  const auto given = parameters.find("arguments");
  if (given == parameters.end()) return arguments;
  if (!given->is_array()) throw InvalidParameters("The \"arguments\" are an array.");
  for (const Json& argument : *given) arguments.push_back(handles_.fromJson(argument));
  return arguments;
}

Server::Json Server::initialize(const Json&) {
  Json commands = Json::array();
  for (const BString& name : session_.host().commands().names()) commands.push_back(name.narrow());
  return {{"name", "forgeyard"},
          {"version", FORGEYARD_VERSION},
          {"largestMessage", MessageReader::kLargest},
          {"BuildTool", handles_.toJson(Variant(Ref<IDispatch>(&session_.tool())))},
          {"commands", std::move(commands)}};
}

Server::Json Server::get(const Json& parameters) {
  const FoundMember found = memberIn(parameters);
  return handles_.toJson(getProperty(found, argumentsIn(parameters)));
}

Server::Json Server::set(const Json& parameters) {
  const FoundMember found = memberIn(parameters);
  std::vector<Variant> arguments = argumentsIn(parameters);
  const auto value = parameters.find("value");
  if (value == parameters.end()) throw InvalidParameters("A \"value\" is needed.");
  arguments.push_back(handles_.fromJson(*value));
  putProperty(found, arguments);
  return nullptr;
}

Server::Json Server::call(const Json& parameters) {
  const FoundMember found = memberIn(parameters);
  return handles_.toJson(callMethod(found, argumentsIn(parameters)));
}

Server::Json Server::items(const Json& parameters) {
  Json values = Json::array();
  for (const Variant& value : elementsOf(objectIn(parameters))) values.push_back(handles_.toJson(value));
  return values;
}

Server::Json Server::create(const Json& parameters) {
  const std::string& name = textIn(parameters, "class");
  const Guid clsid = classNamed(session_.registry(), name);
  void* object = nullptr;
  const HRESULT status =
      clsid == GUID_NULL ? REGDB_E_CLASSNOTREG : CoCreateInstance(clsid, IUnknown::iid, &object);
  if (failed(status)) throw MemberError(status, name, describe(status));
  return handles_.toJson(Variant(Ref<IUnknown>::adopt(static_cast<IUnknown*>(object))));
}

Server::Json Server::release(const Json& parameters) {
  return handles_.release(numberIn(parameters, "object"));
}

Server::Json Server::describeObject(const Json& parameters) {
  IUnknown* object = objectIn(parameters);
  Json interfaces = Json::array();
  for (const TypeInfo* type : interfacesOf(object)) interfaces.push_back(type->name);
  Json idl = Json::array();
  for (const TypeInfo* type : interfacesOf(object)) {
    for (; type; type = type->base) {
      for (const std::string& line : interfaceLines(*type)) idl.push_back(line);
    }
  }
  return {{"interfaces", std::move(interfaces)}, {"events", eventNames(object)}, {"idl", std::move(idl)}};
}

Server::Json Server::subscribe(const Json& parameters) {
  IUnknown* object = objectIn(parameters);
  const std::string& event = textIn(parameters, "event");
  const std::int64_t number = lastSubscription_ + 1;
  subscriptions_[number] =
      console::subscribe(object, event, [this, number, event](std::span<const Variant> arguments) {
        Json values = Json::array();
        for (const Variant& argument : arguments) values.push_back(handles_.toJson(argument));
        notify("event", {{"subscription", number}, {"event", event}, {"arguments", std::move(values)}});
        return Variant();
      });
  return lastSubscription_ = number;
}

Server::Json Server::unsubscribe(const Json& parameters) {
  return subscriptions_.erase(numberIn(parameters, "subscription")) != 0;
}

Server::Json Server::fillDialog(const Json& parameters) {
  const auto texts = parameters.find("texts");
  if (texts == parameters.end() || !texts->is_array())
    throw InvalidParameters("An array \"texts\" is needed.");
  std::vector<BString> fields;
  for (const Json& text : *texts) {
    if (!text.is_string()) throw InvalidParameters("The \"texts\" are texts.");
    fields.push_back(BString::fromNarrow(text.get_ref<const std::string&>()));
  }
  session_.host().frame().fillNextDialog(std::move(fields));
  return nullptr;
}

Server::Json Server::modelPath(const Json& parameters) {
  const ModelPath path = toModel(textIn(parameters, "path"));
  if (!path) throw InvalidParameters(path.error);
  return path.path.narrow();
}

Server::Json Server::hostPath(const Json& parameters) {
  const auto path = spelledHost(BString::fromNarrow(textIn(parameters, "path")));
  return path ? Json(*path) : Json();
}

Server::Json Server::shutdown(const Json&) {
  session_.apartment().post([this] { close(ExitCode::Success); });
  return nullptr;
}

bool Server::runModuleCommand(const Json& parameters) {
  const std::string& name = textIn(parameters, "command");
  const bool wasBuilding = isBuilding();
  const int endedBefore = buildsEnded_;
  CommandOutcome outcome = CommandOutcome::Unknown;
  const HRESULT status =
      guard([&] { outcome = session_.host().commands().run(BString::fromNarrow(name).view()); });
  if (failed(status)) throw MemberError(status, name, describe(status));
  if (outcome == CommandOutcome::Unknown) throw Failure("There is no command " + name + ".");
  if (outcome == CommandOutcome::Disabled) throw Failure("The command " + name + " can't be run now.");
  return !wasBuilding && (isBuilding() || buildsEnded_ != endedBefore);
}

}  // namespace forgeyard::console
