#include "model/file/project_reader.h"

#include <algorithm>

#include "engine/component/omission_text.h"
#include "model/configurations/configuration.h"
#include "model/file/stream_names.h"
#include "platform/com/class_table.h"
#include "typelib/connection.h"

namespace forgeyard {

namespace {

constexpr std::uint32_t kReadStream = STGM_READ | STGM_SHARE_EXCLUSIVE;
constexpr std::uint32_t kSubStorage = STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE;

}  // namespace

void ProjectReader::leaveOut(std::string what, std::string why) {
  std::vector<LoadOmission>& omissions = project_.report().omissions;
  const bool known = std::any_of(omissions.begin(), omissions.end(),
                                 [&](const LoadOmission& o) { return o.what == what && o.why == why; });
  if (!known) omissions.push_back({std::move(what), std::move(why)});
}

Ref<IStream> ProjectReader::stream(const char16_t* name) {
  Ref<IStream> found;
  step_ = quoted("stream", name);
  const HRESULT status = root_.OpenStream(name, kReadStream, &found);
  // A file may lack a stream, and the project then keeps its defaults.
  if (failed(status) && status != STG_E_FILENOTFOUND) leaveOut(step_, statusText(status));
  return found;
}

void ProjectReader::readSettings() {
  const HRESULT status = guard([&] {
    if (const Ref<IStream> source = stream(kSettingsStream)) {
      RecordReader record(source.get());
      project_.contents().settings = SettingsBlock::load(record);
    }
  });
  if (failed(status)) leaveOut(step_, statusText(status));
}

// What the next save would lose without a word.
void ProjectReader::leaveOutDamage() {
  for (const std::string& finding : damageOf(root_)) leaveOut(kDamagedPart, finding);
}

void ProjectReader::readContents() {
  leaveOutDamage();
  const HRESULT status = guard([&] {
    readConfigurations();
    readComponents();
    readConnections();
  });
  if (failed(status)) leaveOut(step_ + " and all behind it", statusText(status));
}

// These are no new configurations: no event goes out.
void ProjectReader::readConfigurations() {
  const Ref<IStream> source = stream(kConfigurationsStream);
  if (!source) return;
  project_.contents().active = nullptr;
  RecordReader record(source.get());
  // A list that is cut short keeps what precedes the cut, so its length isn't checked first.
  for (std::uint32_t left = record.u32(); left > 0; --left) {
    const auto configuration = make<CConfiguration>();
    check(configuration->put_Project(&project_.project()));
    check(configuration->Load(source.get()));
    project_.contents().configurations.emplace_back(configuration);
  }
  activate(record.listedString());
}

void ProjectReader::activate(const BString& name) {
  Ref<IConfigurations> configurations;
  check(project_.project().get_Configurations(&configurations));
  step_ = quoted("active configuration", name);
  check(configurations->get_Item(name, &project_.contents().active));
  project_.notifications().send(kProjectActiveConfiguration);
}

void ProjectReader::readComponents() {
  step_ = "list of components";
  Ref<IEnumSTATSTG> elements;
  check(root_.EnumElements(&elements));
  STATSTG element;
  while (elements->Next(1, &element, nullptr) == S_OK) {
    if (element.type == StgType::Storage) readComponent(element);
  }
}

void ProjectReader::readComponent(const STATSTG& element) {
  step_ = quoted("component", element.name);
  Ref<IStorage> storage;
  const std::uint32_t mode = kSubStorage | (access_ == Access::ReadWrite ? STGM_READWRITE : STGM_READ);
  if (const HRESULT status = root_.OpenStorage(element.name, mode, &storage); failed(status)) {
    return leaveOut(step_, statusText(status));
  }
  // A storage of another class is none of ours, and a save leaves it as it is.
  const Ref<IPersistStorage> persist = createInstance<IPersistStorage>(element.clsid);
  const Ref<IComponent> component = persist.as<IComponent>();
  if (!component) return;
  if (const HRESULT status = guard([&] { attach(*component, *persist, *storage); }); failed(status)) {
    ignore(component->Close());
    throw StatusError(status);
  }
  project_.contents().storages.add(persist, storage, element.name);
  project_.contents().components.push_back(component);
}

void ProjectReader::attach(IComponent& component, IPersistStorage& persist, IStorage& storage) {
  check(component.SetParent(&project_.project(), project_.services().get()));
  check(component.Init());
  check(persist.Load(&storage));
}

void ProjectReader::readConnections() {
  const Ref<IStream> source = stream(kConnectionsStream);
  if (!source) return;
  Ref<IConnections> connections;
  check(project_.project().get_Connections(&connections));
  check(connections.as<IPersistStream>()->Load(source.get()));
}

}  // namespace forgeyard
