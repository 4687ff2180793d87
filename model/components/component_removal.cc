#include "model/components/component_removal.h"

#include <algorithm>

#include "engine/modal_scope.h"

namespace forgeyard {

HRESULT removeComponent(ProjectCore& project, CConnections* connections, IUnknown* component) {
  return guard([&] {
    const ModalScope scope(project.services().get());
    if (scope.show(u"Are you sure you want to delete this component?", u"Delete Component",
                   MessageButtons::YesNo, MessageIcon::Exclamation) != MessageAnswer::Yes) {
      return S_OK;
    }
    ProjectContents& contents = project.contents();
    auto& list = contents.components;
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const auto& entry) { return sameObject(entry.get(), component); });
    if (found == list.end()) return E_FAIL;
    const Ref<IComponent> gone = *found;
    if (connections) connections->deleteAllOf(gone.get());
    if (contents.root) contents.storages.destroy(gone.get(), *contents.root);
    ignore(gone->Close());
    std::erase(list, gone);
    project.notifications().contentsChanged(kProjectConnections);
    project.componentsChanged();
    return S_OK;
  });
}

}  // namespace forgeyard
