#include "engine/build_tool/project_list.h"

namespace forgeyard {

HRESULT CProjects::get_Item(const Variant& index, Ref<IProject>* out) {
  const auto* position = index.get<std::int32_t>();
  if (!position) {
    *out = nullptr;
    return E_FAIL;
  }
  const auto& projects = tool_->projects();
  if (*position < 0 || static_cast<std::size_t>(*position) >= projects.size()) return E_FAIL;
  *out = projects[static_cast<std::size_t>(*position)];
  return S_OK;
}

HRESULT CProjects::Add(IProject* project) {
  if (!project) return E_POINTER;
  return guard([&] { tool_->addProject(project); });
}

HRESULT CProjects::get_Count(std::int32_t* value) {
  *value = static_cast<std::int32_t>(tool_->projects().size());
  return S_OK;
}

HRESULT CProjects::get__NewEnum(Ref<IUnknown>* out) {
  return guard([&] {
    std::vector<Variant> values;
    for (const Ref<IProject>& project : tool_->projects()) values.emplace_back(Ref<IDispatch>(project));
    *out = make<ListEnumerator<IEnumVARIANT>>(std::move(values));
  });
}

HRESULT CProjects::Delete(IProject* project) {
  return guard([&] { tool_->deleteProject(project); });
}

HRESULT CProjects::New(Ref<IProject>* out) {
  *out = nullptr;
  // The list's change is its caller's to follow up, who mostly has something to do with the project first.
  return guard([&] { *out = tool_->newProject(); });
}

}  // namespace forgeyard
