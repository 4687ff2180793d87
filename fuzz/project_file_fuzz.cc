// A project file of any bytes: its records can be listed, a load brings up no more than these, and what a
// whole load brought up is there again after a save.
#include <cstddef>
#include <cstdint>

#include "fuzz/project_host.h"

namespace {

using namespace forgeyard;
using fuzz::require;

constexpr const char16_t* kFile = u"in.nqp";

struct Counts {
  std::size_t configurations = 0;
  std::size_t components = 0;
  std::int32_t connections = 0;
  friend bool operator==(const Counts&, const Counts&) = default;
};

Counts countsOf(IProject& project) {
  auto& contents = static_cast<CProject&>(project).contents();
  Counts counts{contents.configurations.size(), contents.components.size(), 0};
  Ref<IConnections> connections;
  check(project.get_Connections(&connections));
  check(connections->get_Count(&counts.connections));
  return counts;
}

bool isWhole(const Ref<IProject>& project) {
  return project.as<IProjectReport>()->omissions().empty();
}

void list(const Ref<IProject>& project, const BString& path) {
  ProjectRecords records;
  if (failed(project.as<IProjectRecords>()->ReadRecords(path, &records))) return;
  const auto count = [&](const char* name) {
    const RecordNode* list = records.records.find(name);
    return list ? list->get<RecordNode::List>()->size() : 0;
  };
  require(records.load.configurations <= count("configurations"));
  require(records.load.components <= count("components"));
  require(records.load.connections <= count("connections"));
  if (records.load.leftOut.empty()) {
    require(records.load.connections == count("connections"));
    require(records.load.configurations == count("configurations"));
  }
}

// What the records say makes the same file again.
void restore(const Ref<IProject>& project, const BString& path, const BString& copy) {
  ProjectRecords records;
  const Ref<IProjectRecords> reader = project.as<IProjectRecords>();
  if (failed(reader->ReadRecords(path, &records))) return;
  RecordFault fault;
  if (failed(reader->WriteRecords(copy, records.records, true, &fault))) {
    // Names that other programs have made, and we don't.
    require(fault.what.find("name") != std::string::npos);
    return;
  }
  ProjectRecords again;
  require(reader->ReadRecords(copy, &again) == S_OK && again.records == records.records);
}

void loadAndSave() {
  const Ref<IProject> first = fuzz::ProjectHost::project(kFile);
  if (failed(first->ProjectLoad())) return check(first->OnClose());
  const Counts counts = countsOf(*first);
  const bool whole = isWhole(first);
  require(first->ProjectSave() == S_OK && succeeded(first.as<IProjectReport>()->saveFailure()));
  check(first->OnClose());

  const Ref<IProject> second = fuzz::ProjectHost::project(kFile);
  require(succeeded(second->ProjectLoad()));
  if (whole) require(isWhole(second) && countsOf(*second) == counts);
  check(second->OnClose());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string file = fuzz::scratchDirectory() + "/in.nqp";
  fuzz::putFile(file, data, size);
  list(fuzz::ProjectHost::project(kFile), toModel(file).path);
  restore(fuzz::ProjectHost::project(kFile), toModel(file).path,
          toModel(fuzz::scratchDirectory() + "/copy.nqp").path);
  loadAndSave();
  std::filesystem::remove(file);
  return 0;
}
