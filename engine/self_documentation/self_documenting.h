#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/com/object.h"
#include "typelib/self_documenting.h"

namespace forgeyard {

// One row of a class's history. A row without a key begins a version, to which the rows behind it belong;
// those before the first stand at version 0.
struct HistoryRow {
  std::int32_t version = 0;
  const char* key = nullptr;
  const char* text = nullptr;
};

// What a class tells of itself: its rows, ended by one of zeros, and the classes that stand below it in a
// report, ended by the null identifier.
struct History {
  const HistoryRow* rows;
  const Guid* children;
};

// The first three rows of every class.
#define FORGEYARD_HISTORY_HEAD(className)              \
  {0, "Class", className}, {0, "FixDate", "3/7/98"}, { \
    0, "FixedIn", "1,0,0,2"                            \
  }

inline constexpr Guid kNoChildren[] = {GUID_NULL};

// A class that carries its history; stands in ComObject's list. Main thread only.
class SelfDocumenting : public IKVSelfDocumenting {
 public:
  using Base = IKVSelfDocumenting;
  static constexpr Guid iid = IKVSelfDocumenting::iid;

  HRESULT GetVersion(std::int32_t* version) override;
  HRESULT Entries(const BString& key, std::int32_t first, std::int32_t last, Ref<IEntries>* out) override;
  HRESULT Children(std::vector<Guid>* out) override;
  HRESULT GetModule(BString* out) override;

 protected:
  ~SelfDocumenting() = default;
  virtual const History& history() const = 0;

 private:
  // Made with the first question.
  Ref<IEntries> all_;
  bool built_ = false;
};

}  // namespace forgeyard
