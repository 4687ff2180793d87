#include "hosts/console/session/history_report.h"

#include <algorithm>
#include <set>
#include <unordered_set>

#include "platform/com/class_table.h"
#include "platform/text/fold.h"
#include "typelib/self_documenting.h"
#include "workbench/base/failure.h"
#include "workbench/base/nearest.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

constexpr std::string_view kProgramPrefix = "KV.";

std::string_view plainName(std::string_view program) {
  if (program.size() > kProgramPrefix.size() &&
      equalFoldedAscii(program.substr(0, kProgramPrefix.size()), kProgramPrefix))
    program.remove_prefix(kProgramPrefix.size());
  return program;
}

// Walks through the classes: writes what is wanted of each, or only takes down the keys of all entries.
class Report {
 public:
  Report(Session& session, const HistoryWish& wish)
      : session_(session), wish_(wish), classes_(registeredClasses(session.registry())) {}

  void tellAll() { wish_.className.empty() ? fromStart() : fromNamed(); }

  // Throws a Failure if no entry has the key that is wanted.
  void requireKey() {
    std::set<std::string> keys;
    keys_ = &keys;
    tellAll();
    keys_ = nullptr;
    told_.clear();
    if (keys.contains(wish_.key)) return;
    const std::vector<std::string> names(keys.begin(), keys.end());
    throw Failure("There are no entries " + wish_.key + "." + suggestion(wish_.key, names, "keys"));
  }

 private:
  void fromStart() {
    for (const auto& [one, object] : session_.objects().all()) {
      if (const Ref<IKVSelfDocumenting> own = object.as<IKVSelfDocumenting>()) tell(one, *own, "");
    }
  }

  void fromNamed() {
    std::vector<std::string> names;
    for (const RegisteredClass& one : classes_) {
      names.emplace_back(plainName(one.program));
      if (!equalFoldedAscii(std::string_view(names.back()), plainName(wish_.className))) continue;
      const Ref<IUnknown> object = createInstance<IUnknown>(one.clsid);
      if (!object)
        throw Failure("The class " + names.back() + " is not built yet; it has no history to tell.");
      const Ref<IKVSelfDocumenting> own = object.as<IKVSelfDocumenting>();
      if (!own) throw Failure("The class " + names.back() + " has no history.");
      return tell(one, *own, "");
    }
    throw Failure("There is no class " + wish_.className + "." +
                  suggestion(wish_.className, names, "classes"));
  }

  void tell(const RegisteredClass& one, IKVSelfDocumenting& object, const std::string& indent) {
    // A class may stand below several.
    if (!told_.insert(one.clsid).second) return;
    std::int32_t version = 0;
    check(object.GetVersion(&version));
    if (!keys_) {
      session_.output().line(indent + std::string(plainName(one.program)) + ", version " +
                             std::to_string(version));
    }
    tellRows(object, indent + "  ");
    std::vector<Guid> children;
    check(object.Children(&children));
    for (const Guid& child : children) tellChild(child, indent + "  ");
  }

  void tellRows(IKVSelfDocumenting& object, const std::string& indent) {
    Ref<IEntries> entries;
    check(object.Entries(BString::fromNarrow(keys_ ? "" : wish_.key), wish_.first, wish_.last, &entries));
    std::int32_t count = 0;
    check(entries->get_Count(&count));
    for (std::int32_t i = 0; i < count; ++i) {
      Ref<IEntry> entry;
      check(entries->get_Item(Variant(i), &entry));
      std::int32_t version = 0;
      BString key;
      BString text;
      check(entry->get_Version(&version));
      check(entry->get_Key(&key));
      check(entry->get_Text(&text));
      if (keys_) {
        keys_->insert(key.narrow());
        continue;
      }
      session_.output().line(indent + std::to_string(version) + "  " + key.narrow() + ": " + text.narrow());
    }
  }

  void tellChild(const Guid& clsid, const std::string& indent) {
    const auto one = std::find_if(classes_.begin(), classes_.end(),
                                  [&](const RegisteredClass& c) { return c.clsid == clsid; });
    const Ref<IKVSelfDocumenting> object = createInstance<IKVSelfDocumenting>(clsid);
    if (one != classes_.end() && object) tell(*one, *object, indent);
  }

  Session& session_;
  const HistoryWish& wish_;
  std::vector<RegisteredClass> classes_;
  std::unordered_set<Guid> told_;
  std::set<std::string>* keys_ = nullptr;  // where they are only taken down
};

}  // namespace

void reportHistory(Session& session, const HistoryWish& wish) {
  Report report(session, wish);
  if (!wish.key.empty()) report.requireKey();
  report.tellAll();
}

}  // namespace forgeyard::console
