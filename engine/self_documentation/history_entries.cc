#include "engine/self_documentation/history_entries.h"

#include "engine/simple_collection.h"

namespace forgeyard {

namespace {

class CEntry final : public ComObject<Dual<IEntry>> {
 public:
  explicit CEntry(CEntries::Row row) : row_(std::move(row)) {}

  HRESULT get_Key(BString* value) override {
    *value = row_.key;
    return S_OK;
  }
  HRESULT get_Text(BString* value) override {
    *value = row_.text;
    return S_OK;
  }
  HRESULT get_Version(std::int32_t* value) override {
    *value = row_.version;
    return S_OK;
  }

 private:
  CEntries::Row row_;
};

}  // namespace

CEntries::CEntries(std::vector<Row> rows) : rows_(std::move(rows)) {
  for (const Row& row : rows_) byKey_[row.key].push_back(row);
}

HRESULT CEntries::get_Item(const Variant& index, Ref<IEntry>* out) {
  return guard([&] {
    *out = nullptr;
    const auto* position = index.get<std::int32_t>();
    if (!position || *position < 0 || static_cast<std::size_t>(*position) >= rows_.size()) return E_FAIL;
    *out = make<CEntry>(rows_[static_cast<std::size_t>(*position)]);
    return S_OK;
  });
}

HRESULT CEntries::get_Count(std::int32_t* value) {
  *value = static_cast<std::int32_t>(rows_.size());
  return S_OK;
}

HRESULT CEntries::get__NewEnum(Ref<IUnknown>* out) {
  return guard([&] {
    std::vector<Variant> values;
    for (const Row& row : rows_) values.emplace_back(Ref<IDispatch>(make<CEntry>(row)));
    *out = make<ListEnumerator<IEnumVARIANT>>(std::move(values));
  });
}

HRESULT CEntries::get_Keys(Ref<ISimpleCollection>* out) {
  return guard([&] {
    std::vector<BString> keys;
    for (const auto& entry : byKey_) keys.push_back(entry.first);
    *out = make<CSimpleCollection>(std::move(keys));
  });
}

HRESULT CEntries::EntriesWithKey(const BString& key, Ref<IEntries>* out) {
  return guard([&] {
    const auto found = byKey_.find(key);
    *out = make<CEntries>(found == byKey_.end() ? std::vector<Row>() : found->second);
  });
}

}  // namespace forgeyard
