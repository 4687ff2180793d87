#include "hosts/console/project/records_json.h"

#include <nlohmann/json.hpp>

#include "hosts/console/project/components.h"
#include "hosts/console/project/properties.h"
#include "typelib/cookies.h"

namespace forgeyard::console {

namespace {

using Json = nlohmann::ordered_json;

Json textOrNull(const BString& text) {
  return text.isNull() ? Json() : Json(text.narrow());
}

template <class Items, class Make>
Json list(const Items& items, Make&& make) {
  Json result = Json::array();
  for (const auto& item : items) result.push_back(make(item));
  return result;
}

Json element(const StoredElement& element) {
  if (element.type == StgType::Stream)
    return {{"name", element.name.narrow()}, {"kind", "stream"}, {"size", element.size}};
  return {
      {"name", element.name.narrow()}, {"kind", "storage"}, {"clsid", "{" + formatGuid(element.clsid) + "}"}};
}

Json settings(const StoredProjectSettings& stored) {
  return {{"version", stored.version},
          {"Name", stored.name.narrow()},
          {"FileName", stored.fileName.narrow()},
          {"SSRoot", stored.ssRoot.narrow()},
          {"NextComponentId", stored.nextComponentId},
          {"SSDatabasePath", stored.ssDatabasePath.narrow()},
          {"SSVersion", stored.ssVersion}};
}

template <class Interface, class Value>
Value valueOf(const Ref<Interface>& object, HRESULT (Interface::*get)(Value*)) {
  Value value{};
  check((object.get()->*get)(&value));
  return value;
}

Json cookies(const Ref<IConfiguration>& configuration) {
  const Ref<IKVSupportCookies> table = configuration.as<IKVSupportCookies>();
  Ref<IEnumString> names;
  check(table->GetCookies(&names));
  Json pairs = Json::array();
  forEach(names, [&](const BString& name) {
    BString value;
    check(table->get_Cookie(name, &value));
    pairs.push_back(Json::array({name.narrow(), textOrNull(value)}));
  });
  return pairs;
}

Json configuration(const StoredObject<IConfiguration>& stored) {
  const Ref<IConfiguration>& object = stored.object;
  return {{"version", stored.version},
          {"Name", valueOf(object, &IConfiguration::get_Name).narrow()},
          {"OutputDirectory", valueOf(object, &IConfiguration::get_OutputDirectory).narrow()},
          {"IntermediateDirectory", valueOf(object, &IConfiguration::get_IntermediateDirectory).narrow()},
          {"cookies", cookies(object)},
          {"BuildDirty", valueOf(object, &IConfiguration::get_BuildDirty) != 0},
          {"UpdateFileDependencies", valueOf(object, &IConfiguration::get_UpdateFileDependencies) != 0}};
}

Json names(const Ref<ISimpleCollection>& collection) {
  Ref<IUnknown> walk;
  check(collection->get__NewEnum(&walk));
  Json result = Json::array();
  forEach(walk.as<IEnumVARIANT>(), [&](const Variant& value) {
    BString name;
    check(value.toText(&name));
    result.push_back(name.narrow());
  });
  return result;
}

Json sourceFile(const StoredObject<ISourceFile>& stored) {
  const Ref<ISourceFile>& object = stored.object;
  return {{"version", stored.version},
          {"PersistAs", valueOf(object, &ISourceFile::get_PersistAs).narrow()},
          {"Name", valueOf(object, &ISourceFile::get_Name).narrow()},
          {"AutomaticDeps", names(valueOf(object, &ISourceFile::get_AutomaticDeps))},
          {"ManualDeps", names(valueOf(object, &ISourceFile::get_ManualDeps))},
          {"SourceControl", valueOf(object, &ISourceFile::get_SourceControl)}};
}

Json value(const Variant& variant) {
  if (const auto* number = variant.get<std::int32_t>()) return *number;
  if (const auto* number = variant.get<std::uint32_t>()) return *number;
  if (const auto* truth = variant.get<bool>()) return *truth;
  BString text;
  check(variant.toText(&text));
  return text.narrow();
}

Json componentSettings(const StoredComponentSettings& stored) {
  Json result{{"configuration", stored.configuration.narrow()}};
  const Ref<IDispatch> object = stored.settings.as<IDispatch>();
  for (const std::string& property : readableProperties(*object))
    result[property] = value(propertyValue(*object, property));
  return result;
}

Json component(const StoredComponent& stored) {
  Json result{{"element", stored.element.narrow()}, {"clsid", "{" + formatGuid(stored.clsid) + "}"}};
  const ComponentKind* kind = kindOf(stored.clsid);
  result["kind"] = kind ? Json(kind->name) : Json();
  if (!stored.object) return result;
  result["Id"] = valueOf(stored.object, &IComponent::get_Id);
  result["Name"] = valueOf(stored.object, &IComponent::get_ComponentName).narrow();
  if (const Ref<IFolder> folder = stored.object.as<IFolder>()) {
    result["Extension"] = valueOf(folder, &IFolder::get_Extension).narrow();
    result["files"] = list(stored.files, sourceFile);
  }
  result["settings"] = list(stored.settings, componentSettings);
  return result;
}

Json connection(const StoredConnection& stored) {
  return {{"from", stored.from}, {"to", stored.to}};
}

Json omission(const LoadOmission& left) {
  return {{"what", left.what}, {"why", left.why}};
}

Json load(const LoadResult& result) {
  Json json{{"configurations", result.configurations},
            {"active", textOrNull(result.active)},
            {"components", result.components},
            {"connections", result.connections}};
  if (!result.leftOut.empty()) json["left_out"] = list(result.leftOut, omission);
  return json;
}

}  // namespace

std::string recordsAsJson(const std::string& file, const ProjectRecords& records) {
  Json json{{"file", file}, {"root_elements", list(records.elements, element)}};
  json["settings"] = records.settings ? settings(*records.settings) : Json();
  json["configurations"] = list(records.configurations, configuration);
  json["active"] = textOrNull(records.active);
  json["components"] = list(records.components, component);
  json["connections"] = list(records.connections, connection);
  json["load"] = load(records.load);
  std::vector<LoadOmission> leftOut = records.elementsLeftOut;
  leftOut.insert(leftOut.end(), records.leftOut.begin(), records.leftOut.end());
  if (!leftOut.empty()) json["left_out"] = list(leftOut, omission);
  // Names are bytes of any kind; JSON has text alone.
  return json.dump(2, ' ', false, Json::error_handler_t::replace);
}

}  // namespace forgeyard::console
