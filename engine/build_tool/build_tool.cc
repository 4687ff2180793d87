#include "engine/build_tool/build_tool.h"

#include <algorithm>

#include "engine/build_tool/project_list.h"
#include "engine/modal_scope.h"
#include "platform/com/class_table.h"
#include "platform/paths/shell_path.h"
#include "platform/storage/records/records.h"
#include "typelib/classes.h"
#include "typelib/folder.h"

namespace forgeyard {

// The look-up that projects and components get: the tool serves itself, the host everything else.
class CBuildTool::Services final : public ComObject<IServiceLookup> {
 public:
  Services(CBuildTool* tool, IServiceLookup* host) : tool_(static_cast<IBuildTool*>(tool)), host_(host) {}

  HRESULT LookUp(const Guid& service, const Guid& iid, void** out) override {
    *out = nullptr;
    if (service == SID_BuildTool) {
      const Ref<IBuildTool> tool = tool_.lock();
      return tool ? tool->QueryInterface(iid, out) : E_FAIL;
    }
    return host_ ? host_->LookUp(service, iid, out) : E_FAIL;
  }

 private:
  WeakRef<IBuildTool> tool_;
  Ref<IServiceLookup> host_;
};

CBuildTool::CBuildTool() : selection_(std::make_shared<const std::vector<BString>>()) {}

HRESULT CBuildTool::OnLoad(IUnknown* site) {
  return guard([&] {
    site_ = query<IServiceLookup>(site);
    services_ = make<Services>(this, site_.get());
  });
}

HRESULT CBuildTool::OnUnload() {
  return guard([&] {
    active_ = nullptr;
    for (const auto projects = std::exchange(projects_, {}); const Ref<IProject>& project : projects) {
      ignore(project->ProjectClose());
      ignore(project->OnClose());
    }
    inputs_.clear();
    saveToken_ = nullptr;
    storage_ = nullptr;
    stopEvent_.reset();
    services_ = nullptr;
    site_ = nullptr;
    dropSinks();
  });
}

// Projects of the workspace

HRESULT CBuildTool::get_Projects(Ref<IProjects>* out) {
  return guard([&] { *out = make<CProjects>(this); });
}

HRESULT CBuildTool::get_ActiveProject(Ref<IProject>* out) {
  *out = active_;
  return S_OK;
}

HRESULT CBuildTool::put_ActiveProject(IProject* value) {
  return guard([&] {
    if (building_) return E_BUILDING;
    const Ref<IProject> chosen(value);
    if (const Ref<IProject> old = active_) check(old->put_Active(0));
    active_ = chosen;
    if (active_) check(active_->put_Active(1));
    refreshProjectMenu();
    notify(kToolActiveProject);
    return S_OK;
  });
}

HRESULT CBuildTool::get_Building(std::int32_t* value) {
  *value = building_ ? 1 : 0;
  return S_OK;
}

Ref<IProject> CBuildTool::newProject() {
  Ref<IProject> project = createInstance<IProject>(CLSID_Project);
  const Ref<IComponentSite> sited = project.as<IComponentSite>();
  if (!sited) throw StatusError(E_FAIL);
  check(sited->SetServices(services_.get()));
  projects_.push_back(project);
  return project;
}

void CBuildTool::addProject(IProject* project) {
  if (const Ref<IComponentSite> sited = query<IComponentSite>(project))
    check(sited->SetServices(services_.get()));
  projects_.emplace_back(project);
  ReviewActiveProject();
}

void CBuildTool::deleteProject(IProject* project) {
  const auto found = std::find_if(projects_.begin(), projects_.end(),
                                  [&](const auto& entry) { return entry.get() == project; });
  if (found == projects_.end()) return;
  projects_.erase(found);
  ReviewActiveProject();
}

void CBuildTool::ReviewActiveProject() {
  notify(kToolProjects);
  if (!active_ && !projects_.empty()) {
    check(put_ActiveProject(projects_.front().get()));
  } else if (active_ && projects_.empty()) {
    check(put_ActiveProject(nullptr));
  }
  notify(kToolActiveProject);
  refreshProjectMenu();
}

HRESULT CBuildTool::InsertProject(const BString& path, Ref<IProject>* out) {
  return guard([&] {
    std::u16string directory(path.view());
    PathRemoveFileSpecA(directory);
    std::u16string fileName(path.view());
    PathStripPathA(fileName);
    Ref<IProject> project = createInstance<IProject>(CLSID_Project);
    const Ref<IComponentSite> sited = project.as<IComponentSite>();
    if (!sited) throw StatusError(E_FAIL);
    check(sited->SetServices(services_.get()));
    const auto setNames = [&] {
      check(project->put_FileName(fileName));
      check(project->put_WorkingDirectory(directory));
    };
    setNames();
    check(project->ProjectLoad());
    // The load has brought back what the file held.
    setNames();
    check(project->ProjectSave());
    addProject(project.get());
    if (out) *out = project;
  });
}

// The stream "BuildTool" of the workspace storage

namespace {

constexpr const char16_t* kStreamName = u"BuildTool";
constexpr const char16_t* kNoProject = u"<none>";
constexpr std::uint32_t kOpen = STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr std::uint32_t kLook = STGM_READ | STGM_SHARE_EXCLUSIVE;

// Runs one() at the record of each project; gives the name of the active one.
template <class One>
BString readProjects(IStream& stream, One&& one) {
  STATSTG stat;
  check(stream.Stat(&stat));
  if (stat.size == 0) return kNoProject;
  RecordReader reader(&stream);
  const std::uint32_t version = reader.u32();
  for (std::uint32_t left = reader.count(sizeof(std::uint32_t)); left > 0; --left) one();
  return version == 0 ? BString(kNoProject) : reader.listedString();
}

}  // namespace

HRESULT CBuildTool::GetClassID(Guid* out) {
  *out = CLSID_BuildTool;
  return S_OK;
}

HRESULT CBuildTool::IsDirty() {
  return S_OK;
}

HRESULT CBuildTool::InitNew(IStorage* storage) {
  return Load(storage);
}

HRESULT CBuildTool::Load(IStorage* storage) {
  return guard([&] {
    storage_ = Ref<IStorage>(storage);
    Ref<IStream> stream;
    if (failed(storage->OpenStream(kStreamName, kOpen, &stream))) {
      check(storage->CreateStream(kStreamName, kOpen | STGM_CREATE, &stream));
      return;
    }
    const BString wanted = readProjects(*stream, [&] {
      const Ref<IProject> project = newProject();
      check(project.as<IPersistStream>()->Load(stream.get()));
      ReviewActiveProject();
    });
    if (wanted == kNoProject) return;
    for (const auto projects = projects_; const Ref<IProject>& project : projects) {
      BString name;
      check(project->get_Name(&name));
      if (name == wanted) {
        check(put_ActiveProject(project.get()));
        break;
      }
    }
  });
}

HRESULT CBuildTool::ReadProjects(IStorage* storage, WorkspaceRecords* out) {
  return guard([&] {
    *out = {};
    Ref<IStream> stream;
    if (failed(storage->OpenStream(kStreamName, kLook, &stream))) return;
    const BString wanted = readProjects(*stream, [&] {
      const auto record = createInstance<IWorkspaceProjectRecord>(CLSID_Project);
      if (!record) throw StatusError(E_FAIL);
      check(record->ReadRecord(stream.get(), &out->projects.emplace_back()));
    });
    if (out->projects.empty()) return;
    // As a load does: the first one, unless another one is named.
    const auto named =
        std::find_if(out->projects.begin(), out->projects.end(),
                     [&](const StoredWorkspaceProject& entry) { return entry.name == wanted; });
    const bool found = wanted != kNoProject && named != out->projects.end();
    out->active = found ? static_cast<std::size_t>(named - out->projects.begin()) : 0;
  });
}

HRESULT CBuildTool::Save(IStorage* storage, bool) {
  return guard([&] {
    IStorage* target = storage ? storage : storage_.get();
    if (!target) throw StatusError(E_FAIL);
    Ref<IStream> stream;
    check(target->CreateStream(kStreamName, kOpen | STGM_CREATE, &stream));
    RecordWriter writer(stream.get());
    writer.u32(1);
    writer.u32(static_cast<std::uint32_t>(projects_.size()));
    for (const auto projects = projects_; const Ref<IProject>& project : projects) {
      check(project.as<IPersistStream>()->Save(stream.get(), true));
    }
    BString name = kNoProject;
    if (active_) check(active_->get_Name(&name));
    writer.listedString(name);
  });
}

HRESULT CBuildTool::SaveCompleted(IStorage* storage) {
  if (storage) storage_ = Ref<IStorage>(storage);
  return S_OK;
}

HRESULT CBuildTool::HandsOffStorage() {
  storage_ = nullptr;
  return S_OK;
}

}  // namespace forgeyard
