#include "engine/self_documentation/self_documenting.h"

#include <algorithm>
#include <utility>

#include "engine/self_documentation/history_entries.h"
#include "engine/self_documentation/module_path.h"
#include "platform/files/host_location.h"

namespace forgeyard {

namespace {

bool isEnd(const HistoryRow& row) {
  return row.version == 0 && !row.key && !row.text;
}

bool beginsVersion(const HistoryRow& row) {
  return row.version != 0 && !row.key;
}

// Calls visit(row, version) for each row with a key.
template <class Visit>
void forEachRow(const History& history, Visit&& visit) {
  std::int32_t version = 0;
  for (const HistoryRow* row = history.rows; !isEnd(*row); ++row) {
    if (beginsVersion(*row)) {
      version = row->version;
    } else {
      visit(*row, version);
    }
  }
}

Ref<IEntries> entriesWhere(const History& history, const BString& key, std::int32_t first,
                           std::int32_t last) {
  const bool anyVersion = first == -1 && last == -1;
  std::vector<CEntries::Row> rows;
  forEachRow(history, [&](const HistoryRow& row, std::int32_t version) {
    if (!anyVersion && (version < first || version > last)) return;
    BString rowKey = BString::fromNarrow(row.key);
    if (!key.empty() && rowKey != key) return;
    rows.push_back({std::move(rowKey), BString::fromNarrow(row.text), version});
  });
  return make<CEntries>(std::move(rows));
}

}  // namespace

HRESULT SelfDocumenting::GetVersion(std::int32_t* version) {
  *version = 0;
  for (const HistoryRow* row = history().rows; !isEnd(*row); ++row) {
    if (beginsVersion(*row)) *version = std::max(*version, row->version);
  }
  return S_OK;
}

HRESULT SelfDocumenting::Entries(const BString& key, std::int32_t first, std::int32_t last,
                                 Ref<IEntries>* out) {
  *out = nullptr;
  return guard([&] {
    if (!std::exchange(built_, true)) all_ = entriesWhere(history(), {}, -1, -1);
    *out = key.empty() && first == -1 && last == -1 ? all_ : entriesWhere(history(), key, first, last);
  });
}

HRESULT SelfDocumenting::Children(std::vector<Guid>* out) {
  return guard([&] {
    out->clear();
    for (const Guid* child = history().children; *child != GUID_NULL; ++child) out->push_back(*child);
  });
}

HRESULT SelfDocumenting::GetModule(BString* out) {
  return guard([&] {
    const ModelPath path = modulePath().empty() ? ModelPath{} : toModel(modulePath());
    *out = path && !path.path.empty() ? path.path : BString(u"No Module");
  });
}

}  // namespace forgeyard
