// The settings classes: defaults, stored record, copies, comparison and the changed flag.

#include <gtest/gtest.h>

#include <map>

#include "tests/platform/com/memory_stream.h"
#include "tests/support/set_properties.h"
#include "tests/tools/support/record_bytes.h"
#include "tools/assembler/asm_settings.h"
#include "tools/command_line/cmd_line_settings.h"
#include "tools/compiler/cc_settings.h"
#include "tools/linker/linker_settings.h"

namespace forgeyard::test {
namespace {

template <class Class>
class Settings : public testing::Test {
 protected:
  static const SettingsTable& table() { return Class::kTable; }

  // A value that is neither the default nor any other property's.
  static Variant other(std::size_t property) {
    if (table().properties[property].isText()) {
      return BString::concat(u"value of ", table().properties[property].name);
    }
    return static_cast<std::int32_t>(1000 + property);
  }
  static void setAll(Class& settings) {
    for (std::size_t i = 0; i < table().properties.size(); ++i) {
      setProperty(settings, table().properties[i].name, other(i));
    }
  }
  static std::string saved(Class& settings) {
    const auto stream = make<MemoryStream>();
    EXPECT_EQ(settings.Save(stream.get(), false), S_OK);
    return stream->bytes;
  }
  static std::int32_t equal(Class& a, IBuilderSettings* b) {
    std::int32_t result = -1;
    EXPECT_EQ(a.LogicallyEqual(b, &result), S_OK);
    return result;
  }
};

using Classes = testing::Types<CmdLineSettings, CcSettings, AsmSettings, LinkerSettings>;
TYPED_TEST_SUITE(Settings, Classes);

// Programs that were compiled against the interface call by these numbers.
TYPED_TEST(Settings, IdentifiersCountOnInTheOrderOfTheInterface) {
  std::vector<std::int32_t> ids;
  for (const SettingsProperty& property : this->table().properties) ids.push_back(property.id);
  std::vector<std::int32_t> expected{1, 2, 3, 4, 5};  // 6 and 7 are Clone and LogicallyEqual
  while (expected.size() < ids.size()) expected.push_back(static_cast<std::int32_t>(expected.size()) + 3);
  EXPECT_EQ(ids, expected);
}

TYPED_TEST(Settings, EveryPropertyButBuildDirtyCountsInLogicallyEqual) {
  for (std::size_t i = 0; i < this->table().properties.size(); ++i) {
    const BString name = this->table().properties[i].name;
    const auto settings = make<TypeParam>();
    const auto changed = make<TypeParam>();
    setProperty(*changed, name, this->other(i));
    EXPECT_EQ(this->equal(*settings, changed.get()), name == BString(u"BuildDirty") ? 1 : 0) << name.narrow();
    EXPECT_EQ(this->equal(*changed, settings.get()), name == BString(u"BuildDirty") ? 1 : 0) << name.narrow();
  }
}

TYPED_TEST(Settings, CloneHasEveryValueAndALifeOfItsOwn) {
  const auto settings = make<TypeParam>();
  this->setAll(*settings);
  Ref<IBuilderSettings> clone;
  ASSERT_EQ(settings->get_Clone(&clone), S_OK);
  const Ref<ISettingsValues> values = clone.template as<ISettingsValues>();
  ASSERT_TRUE(values);
  EXPECT_EQ(&values->settingsValues().table(), &this->table());
  EXPECT_EQ(this->equal(*settings, clone.get()), 1);
  EXPECT_EQ(valueOf(*clone, &IBuilderSettings::get_BuildDirty),
            valueOf(*settings, &IBuilderSettings::get_BuildDirty));
  check(clone->put_Command(u"changed"));
  EXPECT_EQ(shown(getProperty(*settings, u"Command")), "value of Command");
}

TYPED_TEST(Settings, SettingsOfAnotherKindCannotBeCompared) {
  const auto settings = make<TypeParam>();
  const std::vector<Ref<IBuilderSettings>> others{make<CmdLineSettings>(), make<CcSettings>(),
                                                  make<AsmSettings>(), make<LinkerSettings>()};
  int kinds = 0;
  for (const Ref<IBuilderSettings>& other : others) {
    std::int32_t result = -1;
    if (settings->LogicallyEqual(other.get(), &result) == S_OK) {
      ++kinds;
    } else {
      EXPECT_EQ(result, 0);
    }
  }
  EXPECT_EQ(kinds, 1);
  std::int32_t result = -1;
  EXPECT_EQ(settings->LogicallyEqual(nullptr, &result), E_FAIL);
  EXPECT_EQ(result, 0);
}

TYPED_TEST(Settings, AreDirtyFromAChangeUntilTheNextLoadOrSave) {
  for (std::size_t i = 0; i < this->table().properties.size(); ++i) {
    const BString name = this->table().properties[i].name;
    const auto settings = make<TypeParam>();
    EXPECT_EQ(settings->IsDirty(), S_FALSE);
    setProperty(*settings, name, getProperty(*settings, name));
    EXPECT_EQ(settings->IsDirty(), S_FALSE) << name.narrow() << " put as it was";
    setProperty(*settings, name, this->other(i));
    EXPECT_EQ(settings->IsDirty(), S_OK) << name.narrow();

    Ref<IBuilderSettings> clone;
    check(settings->get_Clone(&clone));
    EXPECT_EQ(clone.template as<IPersistStream>()->IsDirty(), S_OK);

    const auto stream = make<MemoryStream>();
    check(settings->Save(stream.get(), false));
    EXPECT_EQ(settings->IsDirty(), S_OK);
    check(settings->Save(stream.get(), true));
    EXPECT_EQ(settings->IsDirty(), S_FALSE);
    setProperty(*settings, u"Command", BString(u"again"));
    check(stream->Seek(0, StreamSeek::Set, nullptr));
    check(settings->Load(stream.get()));
    EXPECT_EQ(settings->IsDirty(), S_FALSE);

    check(settings->get_Clone(&clone));
    EXPECT_EQ(clone.template as<IPersistStream>()->IsDirty(), S_FALSE);
  }
}

TYPED_TEST(Settings, RecordReadsBackAndLeavesThePositionBehindIt) {
  const auto settings = make<TypeParam>();
  this->setAll(*settings);
  const std::string record = this->saved(*settings);
  const auto stream = make<MemoryStream>("before" + record + "behind");
  check(stream->Seek(6, StreamSeek::Set, nullptr));
  const auto loaded = make<TypeParam>();
  ASSERT_EQ(loaded->Load(stream.get()), S_OK);
  EXPECT_EQ(stream->position, 6 + record.size());
  EXPECT_EQ(this->equal(*settings, loaded.get()), 1);
  EXPECT_EQ(this->saved(*loaded), record);
}

TYPED_TEST(Settings, RecordCutShortFailsAtEveryByteAndKeepsWhatWasRead) {
  const auto settings = make<TypeParam>();
  this->setAll(*settings);
  const std::string record = this->saved(*settings);
  for (std::size_t size = 0; size < record.size(); ++size) {
    const auto loaded = make<TypeParam>();
    ASSERT_EQ(loaded->Load(make<MemoryStream>(record.substr(0, size)).get()), E_FAIL) << size;
  }
  // All but the last number: what precedes it has arrived.
  const auto loaded = make<TypeParam>();
  EXPECT_EQ(loaded->Load(make<MemoryStream>(record.substr(0, record.size() - 1)).get()), E_FAIL);
  EXPECT_EQ(shown(getProperty(*loaded, u"CommandOutDir")), "value of CommandOutDir");

  const auto full = make<MemoryStream>();
  full->room = record.size() - 1;
  EXPECT_EQ(settings->Save(full.get(), true), E_FAIL);
  EXPECT_EQ(settings->IsDirty(), S_OK);
}

TYPED_TEST(Settings, HostileLengthFailsWithoutAllocatingIt) {
  const RecordBytes record = RecordBytes().number(0).number(0x7FFFFFFF);
  EXPECT_EQ(make<TypeParam>()->Load(make<MemoryStream>(record.bytes()).get()), E_FAIL);
}

// What a class holds when it is made: the properties that aren't 0 or empty.
template <class Class>
void expectDefaults(const std::map<std::string, std::string>& set) {
  const auto settings = make<Class>();
  for (const SettingsProperty& property : Class::kTable.properties) {
    const std::string name = BString(property.name).narrow();
    const auto found = set.find(name);
    const std::string expected = found != set.end() ? found->second : property.isText() ? "" : "0";
    EXPECT_EQ(shown(getProperty(*settings, property.name)), expected) << name;
  }
}

TEST(SettingsDefaults, DifferByClass) {
  expectDefaults<CmdLineSettings>({{"BuildDirty", "1"}});
  expectDefaults<CcSettings>({{"Input", ".c;.i;.ii;.m;.cc;.cxx;.cpp;.C;.s;.S"},
                              {"Output", ".obj"},
                              {"CommandOutDir", "$(CIntDir)"},
                              {"BuildDirty", "1"},
                              {"SmallDataThreshold", "0"},
                              {"WarningLevel", "1"}});
  expectDefaults<AsmSettings>({{"Output", ".obj"},
                               {"CommandOutDir", "$(CIntDir)"},
                               {"BuildDirty", "1"},
                               {"WriteNonGlobals", "1"},
                               {"WriteEquates", "1"}});
  expectDefaults<LinkerSettings>({{"Input", ".lk"},
                                  {"CommandOutDir", "$(COutDir)"},
                                  {"BuildDirty", "1"},
                                  {"CaseSensitive", "1"},
                                  {"Options", "/s"}});
}

// The record of a class, value by value, for all of its properties in the order of the interface.
template <class Class>
void expectRecord(const Properties& properties, const RecordBytes& record) {
  const auto settings = make<Class>();
  std::vector<BString> names;
  for (const SettingsProperty& property : Class::kTable.properties.subspan(kCommonSettings))
    names.emplace_back(property.name);
  ASSERT_EQ(properties.size(), names.size());
  for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(properties[i].name, names[i]);
  setProperties(*settings, {{u"Input", u"in"},
                            {u"Output", u"out"},
                            {u"Command", u""},
                            {u"CommandOutDir", u"d\u00FC\u4E2D"},
                            {u"BuildDirty", -2}});
  setProperties(*settings, properties);
  const auto stream = make<MemoryStream>();
  ASSERT_EQ(settings->Save(stream.get(), true), S_OK);
  EXPECT_EQ(stream->bytes, record.bytes());
}

RecordBytes common() {
  return RecordBytes().number(0).text(u"in").text(u"out").text(u"").text(u"d\u00FC\u4E2D").number(0xFFFFFFFE);
}

TEST(SettingsRecord, OfACommandLineHasTheSeparatorFirst) {
  expectRecord<CmdLineSettings>({{u"RunOnce", 7}, {u"FileSeparator", u", "}},
                                common().number(0).text(u", ").number(7));
}

TEST(SettingsRecord, OfACompilerFollowsTheInterface) {
  expectRecord<CcSettings>({{u"TranslateMode", 1},
                            {u"DebugInfo", 2},
                            {u"AnsiCompliance", 3},
                            {u"NoStdLibs", 4},
                            {u"SaveIntFiles", 5},
                            {u"IncludePath", u"inc"},
                            {u"DefineMacros", u"def"},
                            {u"UndefineMacros", u"undef"},
                            {u"OptimisationLevel", 6},
                            {u"PreprocessorOptions", u"pre"},
                            {u"AssemblerOptions", u"asm"},
                            {u"TargetCPUOptions", u"cpu"},
                            {u"SpecificOptimisations", u"opt"},
                            {u"SmallDataThreshold", u"small"},
                            {u"WarningLevel", 8},
                            {u"EnableSpecificWarnings", u"on"},
                            {u"DisableSpecificWarnings", u"off"},
                            {u"Options", u"last"}},
                           common()
                               .numbers({0, 1, 2, 3, 4, 5})
                               .text(u"inc")
                               .text(u"def")
                               .text(u"undef")
                               .number(6)
                               .text(u"pre")
                               .text(u"asm")
                               .text(u"cpu")
                               .text(u"opt")
                               .text(u"small")
                               .number(8)
                               .text(u"on")
                               .text(u"off")
                               .text(u"last")
                               .number(0));
}

TEST(SettingsRecord, OfAnAssemblerHasTheTwoFileFlagsFirst) {
  expectRecord<AsmSettings>({{u"ListConditionedOut", 1},
                             {u"WriteNonGlobals", 2},
                             {u"EnableCommonMacros", 3},
                             {u"ExpandMacros", 4},
                             {u"DisableWarnings", 5},
                             {u"MakeUndefinedXREF", 6},
                             {u"WriteEquates", 7},
                             {u"LineNumsInDebugInfo", 8},
                             {u"SLDInDebugInfo", 9},
                             {u"IncludePath", u"inc"},
                             {u"EquateSymbols", u"equ"},
                             {u"Options", u"opt"},
                             {u"CreateListingFile", 10},
                             {u"CreateSymbolFile", 11}},
                            common()
                                .numbers({0, 10, 11, 1, 2, 3, 4, 5, 6, 7, 8, 9})
                                .text(u"inc")
                                .text(u"equ")
                                .text(u"opt")
                                .number(0));
}

TEST(SettingsRecord, OfALinkerFollowsTheInterface) {
  expectRecord<LinkerSettings>({{u"OutputFormat", 1},
                                {u"OutputName", u"name"},
                                {u"AddOverlayRecognitionBytes", 2},
                                {u"ZeroBSSSections", 3},
                                {u"CaseSensitive", 4},
                                {u"ListExternals", 5},
                                {u"MultipleDefsWarning", 6},
                                {u"MultipleDeclsWarning", 7},
                                {u"RelocationFilePath", u"rel"},
                                {u"RelocationFileStyle", 8},
                                {u"GPRegisterLocation", u"gp"},
                                {u"LibraryPath", u"lib"},
                                {u"EquateSymbols", u"equ"},
                                {u"Options", u"opt"},
                                {u"CreateSymbolFile", 9},
                                {u"CreateMapFile", 10}},
                               common()
                                   .number(0)
                                   .number(1)
                                   .text(u"name")
                                   .numbers({2, 3, 4, 5, 6, 7})
                                   .text(u"rel")
                                   .number(8)
                                   .text(u"gp")
                                   .text(u"lib")
                                   .text(u"equ")
                                   .text(u"opt")
                                   .numbers({9, 10, 0}));
}

// What a flag, a choice and a text say of themselves, and a choice whose line of help is its own.
TEST(SettingsDescription, HasHelpAndChoicesOfItsRow) {
  const struct {
    const char16_t* property;
    std::string help;
    std::vector<std::pair<int, std::string>> choices;
  } cases[] = {
      {u"DebugInfo", "emit debug information (0 or 1)", {{0, "no"}, {1, "yes"}}},
      {u"WarningLevel", "0 none, 1 standard, 2 all", {{0, "none"}, {1, "standard"}, {2, "all"}}},
      {u"OptimisationLevel", "0 to 3", {{0, "none"}, {1, "some"}, {2, "more"}, {3, "most"}}},
      {u"IncludePath", "directories, separated by semicolons", {}},
      {u"BuildDirty", "changed since the last clean build (0 or 1)", {{0, "no"}, {1, "yes"}}},
  };
  for (const auto& row : cases) {
    const Member* member = typeInfo<ICcSettings>().find(BString(row.property));
    ASSERT_TRUE(member) << row.help;
    EXPECT_EQ(member->help, row.help);
    std::vector<std::pair<int, std::string>> choices;
    for (const Choice& choice : member->choices) choices.emplace_back(choice.value, choice.name);
    EXPECT_EQ(choices, row.choices) << row.help;
  }
}

TEST(SettingsRecord, VersionsAreNotLookedAt) {
  const RecordBytes record = RecordBytes()
                                 .number(99)
                                 .text(u"i")
                                 .text(u"o")
                                 .text(u"c")
                                 .text(u"d")
                                 .number(0)
                                 .number(77)
                                 .text(u",")
                                 .number(1);
  const auto settings = make<CmdLineSettings>();
  ASSERT_EQ(settings->Load(make<MemoryStream>(record.bytes()).get()), S_OK);
  EXPECT_EQ(shown(getProperty(*settings, u"FileSeparator")), ",");
  EXPECT_EQ(shown(getProperty(*settings, u"RunOnce")), "1");
}

}  // namespace
}  // namespace forgeyard::test
