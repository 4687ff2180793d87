#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "engine/status_text.h"
#include "platform/storage/records.h"
#include "typelib/project.h"

namespace forgeyard {

inline std::string quoted(const char* kind, const BString& name) {
  return std::string(kind) + " \"" + name.narrow() + "\"";
}

// What was found damaged in an open compound file: clauses without a full stop, for omissions of this part.
inline constexpr const char* kDamagedPart = "a part of the file";
inline std::vector<std::string> damageOf(IStorage& root) {
  std::vector<BString> findings;
  if (const Ref<IDamageReport> report = query<IDamageReport>(&root)) check(report->Findings(&findings));
  std::vector<std::string> clauses;
  for (const BString& finding : findings) {
    clauses.push_back(finding.narrow());
    if (clauses.back().ends_with('.')) clauses.back().pop_back();
  }
  return clauses;
}

// Reads streams of records as far as they go, and notes what that leaves out and why. Borrows the list.
class RecordListing {
 public:
  explicit RecordListing(std::vector<LoadOmission>& leftOut) : leftOut_(leftOut) {}

  // Runs body(IStream&) on the stream of that name; what it throws ends the reading of this stream alone.
  template <class Body>
  void stream(IStorage& storage, const BString& name, Body&& body) {
    position_.clear();
    Ref<IStream> source;
    HRESULT status = storage.OpenStream(name, STGM_READ | STGM_SHARE_EXCLUSIVE, &source);
    if (succeeded(status)) status = guard([&] { body(*source); });
    if (failed(status)) leftOut_.push_back({quoted("stream", name) + position_, statusText(status)});
  }

  // Within such a body: reads a count, and runs one() so many times.
  template <class One>
  void records(RecordReader& reader, One&& one) {
    const std::uint32_t count = reader.u32();
    for (std::uint32_t i = 1; i <= count && i != 0; ++i) {
      position_ = ", record " + std::to_string(i) + " of " + std::to_string(count) + " and all behind it";
      one();
    }
    position_ = " behind its last record";
  }

 private:
  std::vector<LoadOmission>& leftOut_;
  std::string position_;
};

}  // namespace forgeyard
