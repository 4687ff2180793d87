#include "model/project_records.h"

#include "engine/record_listing.h"
#include "model/configuration.h"
#include "model/project.h"
#include "model/project_reader.h"
#include "model/stream_names.h"
#include "platform/com/class_table.h"
#include "platform/paths/shell_path.h"

namespace forgeyard {

namespace {

constexpr std::uint32_t kReadOnly = STGM_TRANSACTED | STGM_SHARE_EXCLUSIVE | STGM_READ;
// A file that somebody works on is looked at all the same.
constexpr std::uint32_t kLook = STGM_TRANSACTED | STGM_SHARE_DENY_NONE | STGM_READ;
// Projects have two levels; a file that is made to go on for ever ends here.
constexpr int kDeepestLevel = 32;

class RecordsReader {
 public:
  RecordsReader(IStorage& root, ProjectRecords& records)
      : root_(root), records_(records), listing_(records.leftOut) {}

  void read() {
    for (const std::string& finding : damageOf(root_))
      records_.elementsLeftOut.push_back({kDamagedPart, finding});
    records_.elements = elementsOf(root_, 1);
    readSettings();
    readConfigurations();
    for (const StoredElement& element : records_.elements) {
      if (element.type == StgType::Storage) readComponent(element);
    }
    readConnections();
  }

 private:
  void leaveOut(std::string what, std::string why) {
    records_.leftOut.push_back({std::move(what), std::move(why)});
  }

  std::vector<StoredElement> elementsOf(IStorage& storage, int level) {
    std::vector<StoredElement> elements;
    Ref<IEnumSTATSTG> walk;
    check(storage.EnumElements(&walk));
    forEach(walk, [&](const STATSTG& found) {
      StoredElement element{found.name, found.type, found.size, found.clsid, {}};
      if (found.type == StgType::Storage) element.elements = elementsBelow(storage, found.name, level);
      elements.push_back(std::move(element));
    });
    return elements;
  }

  std::vector<StoredElement> elementsBelow(IStorage& storage, const BString& name, int level) {
    Ref<IStorage> below;
    const HRESULT status = storage.OpenStorage(name, kReadOnly, &below);
    if (succeeded(status) && level < kDeepestLevel) return elementsOf(*below, level + 1);
    records_.elementsLeftOut.push_back({"what is below " + quoted("storage", name),
                                        failed(status) ? statusText(status) : "it lies too deep"});
    return {};
  }

  void readSettings() {
    listing_.stream(root_, kSettingsStream, [&](IStream& stream) {
      RecordReader reader(&stream);
      records_.settings = SettingsBlock::load(reader);
    });
  }

  void readConfigurations() {
    listing_.stream(root_, kConfigurationsStream, [&](IStream& stream) {
      RecordReader reader(&stream);
      listing_.records(reader, [&] {
        const std::uint32_t version = reader.peekU32();
        const auto configuration = make<CConfiguration>();
        check(configuration->Load(&stream));
        records_.configurations.push_back({version, configuration});
      });
      records_.active = reader.listedString();
    });
  }

  void readComponent(const StoredElement& element) {
    StoredComponent component{element.name, element.clsid, nullptr, {}, {}, {}};
    const std::string step = quoted("component", element.name);
    Ref<IStorage> storage;
    if (failed(root_.OpenStorage(element.name, kReadOnly, &storage))) return;  // told with the elements
    component.object = createInstance<IComponent>(element.clsid);
    const Ref<IComponentRecords> reader = component.object.as<IComponentRecords>();
    if (!reader) {
      component.object = nullptr;
      leaveOut(step, "there is no component class " + formatGuid(element.clsid));
    } else if (const HRESULT status = reader->ReadRecords(storage.get(), &component); failed(status)) {
      leaveOut(step, statusText(status));
    }
    for (const LoadOmission& omission : component.leftOut)
      leaveOut(step + ", " + omission.what, omission.why);
    records_.components.push_back(std::move(component));
  }

  void readConnections() {
    listing_.stream(root_, kConnectionsStream, [&](IStream& stream) {
      RecordReader reader(&stream);
      reader.u32();  // version
      listing_.records(reader, [&] {
        reader.u32();  // version
        const std::int32_t from = reader.i32();
        records_.connections.push_back({from, reader.i32()});
      });
    });
  }

  IStorage& root_;
  ProjectRecords& records_;
  RecordListing listing_;
};

LoadResult resultOf(CProject& project) {
  LoadResult result;
  result.configurations = project.contents().configurations.size();
  result.components = project.contents().components.size();
  if (project.contents().active) check(project.contents().active->get_Name(&result.active));
  Ref<IConnections> connections;
  check(project.get_Connections(&connections));
  std::int32_t count = 0;
  check(connections->get_Count(&count));
  result.connections = static_cast<std::size_t>(count);
  return result;
}

// Into a project that ends here.
LoadResult loadOnTrial(IStorage& root, const BString& path) {
  std::u16string directory(path.view());
  PathRemoveFileSpecA(directory);
  const auto project = make<CProject>();
  check(project->put_WorkingDirectory(directory));
  std::vector<LoadOmission> omissions;
  ProjectReader reader(*project, root, omissions, ProjectReader::Access::ReadOnly);
  reader.readSettings();
  reader.readContents();
  LoadResult result = resultOf(*project);
  result.leftOut = std::move(omissions);
  check(project->OnClose());
  return result;
}

}  // namespace

ProjectRecords readProjectRecords(IStorage& root, const BString& path) {
  ProjectRecords records;
  RecordsReader(root, records).read();
  records.load = loadOnTrial(root, path);
  return records;
}

HRESULT CProject::ReadRecords(const BString& path, ProjectRecords* out) {
  return guard([&] {
    Ref<IStorage> root;
    check(StgOpenStorage(path, kLook, &root));
    *out = readProjectRecords(*root, path);
  });
}

}  // namespace forgeyard
