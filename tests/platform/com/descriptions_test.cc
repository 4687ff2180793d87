// Walks every description of a dual interface, as the console, scripts and the reference listing do.

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <numeric>
#include <regex>
#include <set>
#include <typeinfo>

#include "tests/platform/com/live_objects.h"
#include "tests/support/places.h"
#include "typelib/type_library.h"
#include "typelib/vss_database.h"

namespace forgeyard {
namespace {

// An object of no class: each slot of its table of operations notes its own number.
constexpr std::size_t kSlots = 128;
std::size_t calledSlot = 0;

template <std::size_t Slot>
HRESULT note(void*) {
  calledSlot = Slot;
  return S_OK;
}

struct Operations {
  std::ptrdiff_t offsetToTop = 0;
  const std::type_info* type;  // says that the object is an I, for checks of the object behind a call
  std::array<HRESULT (*)(void*), kSlots> slots;
};

struct Probe {
  const void* operations;
};

template <class I>
Probe* probe() {
  static const Operations operations{
      0, &typeid(I), []<std::size_t... Slot>(std::index_sequence<Slot...>){return std::array{&note<Slot>...};
}
(std::make_index_sequence<kSlots>())
};  // namespace
static Probe object{operations.slots.data()};
return &object;
}  // namespace forgeyard

struct Described {
  const TypeInfo* type;
  const TypeInfo* base;  // of the interface above, as declared
  Probe* object;
};

template <class I>
Described described() {
  const TypeInfo* base = nullptr;
  if constexpr (!std::is_same_v<typename I::Base, IDispatch>) base = &typeInfo<typename I::Base>();
  return {&typeInfo<I>(), base, probe<I>()};
}

template <class... Is>
std::vector<Described> describedAll(TypeList<Is...>) {
  return {described<Is>()...};
}

const std::vector<Described>& descriptions() {
  static const auto all = [] {
    auto described = describedAll(DualInterfaces{});
    // Those of the database belong to a module of its own, not to the type library.
    const auto database = describedAll(TypeList<IVSSDatabase, IVSSItem, IVSSItems>{});
    described.insert(described.end(), database.begin(), database.end());
    return described;
  }();
  return all;
}

std::string lowered(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::string memberName(const TypeInfo& type, const Member& member) {
  return std::string(type.name) + "." + member.name;
}

std::size_t namesIn(std::string_view list) {
  return list.empty() ? 0 : static_cast<std::size_t>(std::count(list.begin(), list.end(), ',')) + 1;
}

std::size_t inParams(const Thunk& thunk) {
  return static_cast<std::size_t>(
      std::count_if(thunk.params.begin(), thunk.params.end(), [](const Param& param) { return !param.out; }));
}

// Own members, then those above.
template <class Visit>
void forEachMember(const TypeInfo* type, Visit&& visit) {
  for (; type; type = type->base) {
    for (const Member& member : type->members) visit(*type, member);
  }
}

// Calls visit(file, match) for each match in the headers of the folders.
template <class Visit>
void forEachInHeaders(const std::regex& pattern, std::initializer_list<const char*> folders, Visit&& visit) {
  for (const char* folder : folders) {
    const std::filesystem::path root = std::filesystem::path(places::sources()) / folder;
    for (const auto& entry : std::filesystem::directory_iterator(root)) {
      if (entry.path().extension() != ".h") continue;
      std::ifstream in(entry.path());
      const std::string text{std::istreambuf_iterator<char>(in), {}};
      for (std::sregex_iterator at(text.begin(), text.end(), pattern), end; at != end; ++at)
        visit(entry.path(), *at);
    }
  }
}

TEST(Descriptions, AreAllWalkedHere) {
  std::set<std::string> declared;
  forEachInHeaders(std::regex(R"(FORGEYARD_DUAL\((I\w+)\))"), {"typelib"},
                   [&](const auto&, const std::smatch& match) { declared.insert(match[1]); });
  std::set<std::string> walked;
  for (const Described& one : descriptions()) walked.insert(one.type->name);
  EXPECT_EQ(walked, declared);
}

TEST(Descriptions, KnowTheDescriptionAbove) {
  for (const Described& one : descriptions()) EXPECT_EQ(one.type->base, one.base) << one.type->name;
}

TEST(Descriptions, HaveEachIdentifierAndEachNameOnce) {
  for (const Described& one : descriptions()) {
    std::set<std::int32_t> ids;
    std::set<std::string> names;
    forEachMember(one.type, [&](const TypeInfo& type, const Member& member) {
      EXPECT_TRUE(ids.insert(member.id).second) << one.type->name << ": id of " << memberName(type, member);
      EXPECT_TRUE(names.insert(lowered(member.name)).second)
          << one.type->name << ": " << memberName(type, member);
    });
  }
}

TEST(Descriptions, HelpWithEveryMember) {
  for (const Described& one : descriptions()) {
    for (const Member& member : one.type->members) {
      EXPECT_FALSE(std::string_view(member.help).empty()) << memberName(*one.type, member);
      const bool isProperty = member.get || member.put;
      EXPECT_NE(isProperty, static_cast<bool>(member.method)) << memberName(*one.type, member);
    }
  }
}

TEST(Descriptions, NameTheParametersThatAMemberTakes) {
  for (const Described& one : descriptions()) {
    for (const Member& member : one.type->members) {
      const std::size_t named = namesIn(member.arguments);
      if (member.method) {
        EXPECT_EQ(named, member.method.params.size()) << memberName(*one.type, member);
      }
      // For a property the indexes have to be named, the value may.
      for (const Thunk& form : {member.get, member.put}) {
        if (!form) continue;
        EXPECT_GE(named + 1, form.params.size()) << memberName(*one.type, member);
        EXPECT_LE(named, form.params.size()) << memberName(*one.type, member);
      }
    }
  }
}

TEST(Descriptions, HaveOneResultAtMostAndItIsTheLast) {
  for (const Described& one : descriptions()) {
    for (const Member& member : one.type->members) {
      const std::string name = memberName(*one.type, member);
      for (const Thunk& form : {member.get, member.put, member.method}) {
        if (!form) continue;
        const std::size_t in = inParams(form);
        EXPECT_GE(in + 1, form.params.size()) << name;
        EXPECT_TRUE(in == form.params.size() || form.params.back().out) << name;
      }
      if (member.get) {
        EXPECT_TRUE(!member.get.params.empty() && member.get.params.back().out) << name;
      }
      if (member.put) {
        EXPECT_TRUE(!member.put.params.empty() && !member.put.params.back().out) << name;
      }
      if (member.get && member.put) {
        ASSERT_EQ(member.get.params.size(), member.put.params.size()) << name;
        for (std::size_t i = 0; i < member.get.params.size(); ++i) {
          EXPECT_EQ(member.get.params[i].type, member.put.params[i].type) << name;
        }
      }
    }
  }
}

TEST(Descriptions, OfCollectionsHaveTheUsualIdentifiers) {
  for (const Described& one : descriptions()) {
    for (const Member& member : one.type->members) {
      const std::string_view name = member.name;
      EXPECT_EQ(member.id == DISPID_NEWENUM, name == "_NewEnum") << memberName(*one.type, member);
      EXPECT_EQ(member.id == DISPID_VALUE, name == "Item") << memberName(*one.type, member);
      if (name == "_NewEnum" || name == "Item" || name == "Count") {
        EXPECT_TRUE(member.get && !member.put) << memberName(*one.type, member);
      }
    }
  }
}

Variant someValue(ParamType type) {
  return type == ParamType::Object ? Variant::null() : type == ParamType::Bstr ? Variant(u"") : Variant(0);
}

std::size_t slotOf(const Thunk& form, void* object) {
  std::vector<Variant> arguments;
  for (const Param& param : form.params) {
    if (!param.out) arguments.push_back(someValue(param.type));
  }
  calledSlot = 0;
  Variant result;
  EXPECT_EQ(form.call(object, arguments, &result, nullptr), S_OK);
  return calledSlot;
}

std::size_t operationsIn(const TypeInfo* type) {
  std::size_t count = 7;  // of IUnknown and IDispatch
  forEachMember(type, [&](const TypeInfo&, const Member& member) {
    count += static_cast<std::size_t>(static_cast<bool>(member.get)) + static_cast<bool>(member.put) +
             static_cast<bool>(member.method);
  });
  return count;
}

// Neither a wrong operation behind a name nor one left out in between goes unseen.
TEST(Descriptions, CallTheOperationsInTheOrderOfTheInterface) {
  for (const Described& one : descriptions()) {
    std::size_t expected = operationsIn(one.type->base);
    for (const Member& member : one.type->members) {
      for (const Thunk& form : {member.get, member.put, member.method}) {
        if (!form) continue;
        EXPECT_EQ(slotOf(form, one.object), expected) << memberName(*one.type, member);
        ++expected;
      }
    }
  }
}

TEST(InterfaceIdentifiers, BelongToOneInterfaceEach) {
  std::map<std::string, std::string> owners;
  std::size_t found = 0;
  const std::regex pattern(
      R"(struct (\w+)[^{}]*\{\s*(?:using [^;]*;\s*)*static constexpr Guid iid\s*=\s*guid\("([^"]+)\"\))");
  forEachInHeaders(pattern, {"typelib", "platform/com", "platform/storage"},
                   [&](const std::filesystem::path& file, const std::smatch& match) {
                     ++found;
                     const std::string owner = match[1].str() + " in " + file.filename().string();
                     const auto [at, isNew] = owners.emplace(lowered(match[2]), owner);
                     EXPECT_TRUE(isNew) << owner << " and " << at->second << " have one identifier";
                   });
  EXPECT_GT(found, descriptions().size());
}

}  // namespace
}  // namespace forgeyard
