#include "model/folders/file_insertion.h"

#include <algorithm>

#include "engine/modal_scope.h"
#include "model/core/enumerate.h"
#include "model/folders/file_names.h"
#include "model/folders/source_file.h"

namespace forgeyard {

namespace {

std::u16string capitals(std::u16string_view text) {
  std::u16string result(text);
  std::transform(result.begin(), result.end(), result.begin(), [](char16_t c) {
    return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c;
  });
  return result;
}

std::u16string_view extensionOf(std::u16string_view name) {
  const std::size_t dot = name.rfind(u'.');
  return dot == name.npos ? std::u16string_view() : name.substr(dot + 1);
}

}  // namespace

bool takesExtension(std::u16string_view list, std::u16string_view extension) {
  for (std::size_t at = list.find(extension); at != list.npos; at = list.find(extension, at + 1)) {
    const std::size_t end = at + extension.size();
    if (end == list.size()) return true;
    if (end + 1 < list.size() && list[end + 1] == u';') return true;
  }
  return false;
}

void FileInsertion::collectTargets() {
  for (const Ref<IComponent>& component : project_.contents().components) {
    const Ref<IFolder> folder = component.as<IFolder>();
    if (!folder) continue;
    Target target;
    check(folder->get_SourceFiles(&target.files));
    check(folder->get_Extension(&target.extension));
    targets_.push_back(std::move(target));
  }
}

void FileInsertion::collectNames(ISourceFiles& files) {
  forEachObject<ISourceFile>(files, [&](ISourceFile& file) {
    BString name;
    check(file.get_Name(&name));
    names_.insert(capitals(name));
  });
}

// The last folder takes what no other does, so that no file is lost.
ISourceFiles* FileInsertion::targetFor(const BString& name) const {
  const std::u16string_view extension = extensionOf(name);
  const auto last = targets_.end() - 1;
  return std::find_if(targets_.begin(), last,
                      [&](const Target& target) { return takesExtension(target.extension, extension); })
      ->files.get();
}

void FileInsertion::run(IEnumString* files, IDispatch* folder) {
  collectTargets();
  if (targets_.empty()) throw StatusError(E_FAIL);
  Ref<ISourceFiles> chosen;
  if (folder) {
    if (const Ref<IFolder> given = query<IFolder>(folder)) check(given->get_SourceFiles(&chosen));
  }
  std::vector<BString> wanted;
  forEach(Ref<IEnumString>(files), [&](const BString& name) { wanted.push_back(name); });
  // The name as it stands against names in capitals: only one wholly in capitals is ever refused.
  const auto isInCapitals = [](const BString& name) { return capitals(name) == name.view(); };
  if (std::any_of(wanted.begin(), wanted.end(), isInCapitals)) {
    for (const Target& target : targets_) collectNames(*target.files);
  }
  for (const BString& name : wanted) {
    if (names_.contains(std::u16string(name.view()))) {
      refused_.push_back(name);
    } else if (!folder) {
      add(name, *targetFor(name));
    } else if (chosen) {
      add(name, *chosen);
    }
  }
}

void FileInsertion::add(const BString& name, ISourceFiles& files) {
  const auto file = make<CSourceFile>();
  check(file->put_Project(&project_.project()));
  check(file->put_PersistAs(persistedName(name, project_.contents().workingDirectory)));
  check(file->put_Name(name));
  check(files.Add(file.get()));
}

void FileInsertion::tellRefused() const {
  if (refused_.empty()) return;
  std::u16string text =
      u"One or more files could not be added to the specified project.\n\n"
      u"These files already exist in the project:\n";
  for (const BString& name : refused_) {
    text += name.view();
    text += u'\n';
  }
  const ModalScope scope(project_.services().get());
  scope.show(text, u"Add Files", MessageButtons::Ok, MessageIcon::Information);
}

}  // namespace forgeyard
