#include "model/folders/source_files.h"

#include "model/core/enumerate.h"
#include "model/folders/source_file.h"

namespace forgeyard {

HRESULT CSourceFiles::get_Item(const Variant& index, Ref<ISourceFile>* out) {
  const std::int32_t* at = index.get<std::int32_t>();
  if (!at) {
    *out = nullptr;
    return E_FAIL;
  }
  const auto& files = folder_->sourceFiles();
  if (*at < 0 || static_cast<std::size_t>(*at) >= files.size()) return E_FAIL;
  *out = files[static_cast<std::size_t>(*at)];
  return S_OK;
}

HRESULT CSourceFiles::Add(ISourceFile* file) {
  return guard([&] {
    if (!file) return E_POINTER;
    folder_->add(file);
    folder_->filesChanged();
    return S_OK;
  });
}

HRESULT CSourceFiles::get_Count(std::int32_t* value) {
  *value = static_cast<std::int32_t>(folder_->sourceFiles().size());
  return S_OK;
}

HRESULT CSourceFiles::get__NewEnum(Ref<IUnknown>* out) {
  return guard([&] { *out = enumerateObjects(folder_->sourceFiles()); });
}

HRESULT CSourceFiles::Delete(ISourceFile* file) {
  return guard([&] {
    if (!file || !folder_->remove(file)) return E_FAIL;
    folder_->filesChanged();
    return S_OK;
  });
}

HRESULT CSourceFiles::New(Ref<ISourceFile>* out) {
  return guard([&] {
    const auto file = make<CSourceFile>();
    check(file->put_Project(folder_->owner().get()));
    folder_->add(file.get());
    folder_->filesChanged();
    if (out) *out = file;
  });
}

HRESULT CSourceFiles::AddMulti(IEnumUnknown* files) {
  return guard([&] {
    forEach(Ref<IEnumUnknown>(files), [&](const Ref<IUnknown>& object) {
      if (const Ref<ISourceFile> file = object.as<ISourceFile>()) folder_->add(file.get());
    });
    folder_->filesChanged();
  });
}

HRESULT CSourceFiles::RemoveMulti(IEnumUnknown* files) {
  return guard([&] {
    std::unordered_set<IUnknown*> identities;
    forEach(Ref<IEnumUnknown>(files),
            [&](const Ref<IUnknown>& object) { identities.insert(object.as<IUnknown>().get()); });
    folder_->remove(identities);
    folder_->filesChanged();
  });
}

}  // namespace forgeyard
