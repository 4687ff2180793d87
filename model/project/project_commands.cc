#include "model/project/project_commands.h"

#include <string>

#include "engine/modal_scope.h"
#include "platform/text/split.h"
#include "typelib/folder.h"

namespace forgeyard {

namespace {

// "*.c;*.h" for a folder's list of extensions, with or without dots and stars in it.
std::u16string filterPattern(std::u16string_view extensions) {
  std::u16string pattern;
  forEachInList(extensions, [&](std::u16string_view piece) {
    const std::size_t dot = piece.rfind(u'.');
    if (dot != piece.npos) piece.remove_prefix(dot + 1);
    pattern += pattern.empty() ? u"*." : u";*.";
    pattern += piece;
  });
  return pattern.empty() ? u"*.*" : pattern;
}

FileFilter filterFor(IFolder& folder) {
  BString name;
  BString extensions;
  check(folder.get_Name(&name));
  check(folder.get_Extension(&extensions));
  const BString pattern = filterPattern(extensions);
  return {BString::concat(name, u" (", pattern) + u")", pattern};
}

}  // namespace

HRESULT ProjectCommands::save() {
  return project_.contents().root ? project_.ProjectSave() : S_FALSE;
}

bool ProjectCommands::mayLoseChanges() const {
  std::int32_t dirty = 0;
  check(project_.get_Dirty(&dirty));
  if (!dirty || !project_.contents().root) return true;
  const ModalScope scope(project_.core().services().get());
  return scope.show(
             u"You have made changes to this project. If you unload \nthe project now, you will lose those "
             u"changes.",
             u"Unload Project", MessageButtons::OkCancel, MessageIcon::Exclamation) == MessageAnswer::Ok;
}

HRESULT ProjectCommands::unload() {
  return guard([&] {
    if (!mayLoseChanges()) return S_FALSE;
    return project_.contents().root ? project_.ProjectClose() : S_FALSE;
  });
}

HRESULT ProjectCommands::reload() {
  return guard([&] {
    if (project_.contents().root) check(project_.ProjectClose());
    return project_.ProjectLoad();
  });
}

HRESULT ProjectCommands::activate(std::size_t configuration) {
  return guard([&] {
    const auto& all = project_.contents().configurations;
    if (configuration >= all.size()) return E_INVALIDARG;
    if (!project_.building()) return project_.put_ActiveConfiguration(all[configuration].get());
    const ModalScope scope(project_.core().services().get());
    scope.show(u"A project's active configuration may not be changed during a build", u"Project",
               MessageButtons::Ok, MessageIcon::Exclamation);
    return S_FALSE;
  });
}

std::vector<FileFilter> ProjectCommands::fileFilters() const {
  std::vector<FileFilter> filters;
  for (const Ref<IComponent>& component : project_.contents().components) {
    if (const Ref<IFolder> folder = component.as<IFolder>()) filters.push_back(filterFor(*folder));
  }
  filters.push_back({u"All files (*.*)", u"*.*"});
  return filters;
}

HRESULT ProjectCommands::insertFiles() {
  return guard([&] {
    Ref<IEnumString> chosen;
    {
      const ModalScope scope(project_.core().services().get());
      const Ref<IDialogHost> host = lookUp<IDialogHost>(project_.core().services().get(), SID_MainFrame);
      if (!host) return E_FAIL;
      check(host->ChooseFiles(u"Insert files into active project", fileFilters(), &chosen));
    }
    return chosen ? project_.InsertFiles(chosen.get(), nullptr) : S_FALSE;
  });
}

}  // namespace forgeyard
