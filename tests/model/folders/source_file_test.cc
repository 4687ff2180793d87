// Source files: names, dependency lists, records.

#include "model/folders/source_file.h"

#include <gmock/gmock.h>

#include "tests/model/support/model_fixture.h"
#include "tests/platform/com/memory_stream.h"

namespace forgeyard::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SourceFileTest : public ModelTest {
 protected:
  void SetUp() override {
    project_ = project();
    check(project_->put_WorkingDirectory(u"\\home\\u\\p"));
    file_ = make<CSourceFile>();
    check(file_->put_Project(project_.get()));
  }
  void TearDown() override {
    file_ = nullptr;
    project_ = nullptr;
  }
  std::vector<std::string> automatic() {
    Ref<ISimpleCollection> names;
    check(file_->get_AutomaticDeps(&names));
    return texts(names);
  }
  std::vector<std::string> manual() {
    Ref<ISimpleCollection> names;
    check(file_->get_ManualDeps(&names));
    return texts(names);
  }

  Ref<CProject> project_;
  Ref<CSourceFile> file_;
};

struct KeptCase {
  const char* name;
  const char16_t* given;
  const char* kept;
};

}  // namespace

TEST_F(SourceFileTest, AnnouncesReadingThePersistedNameAndNotWritingIt) {
  const Ref<NotifySink> sink = listen(static_cast<ISourceFile*>(file_.get()));
  check(file_->put_Name(u"n"));
  check(file_->put_PersistAs(u"p"));
  EXPECT_EQ(persistAs(file_.get()), "p");
  EXPECT_EQ(persistAs(file_.get()), "p");
  check(file_->put_Project(nullptr));
  check(file_->put_SourceControl(1));
  check(file_->put_SourceControl(1));
  EXPECT_THAT(sink->ids, ElementsAre(1, 2, 2, 3, 9));
}

TEST_F(SourceFileTest, KeepsNoTimes) {
  double value = 42;
  EXPECT_EQ(file_->get_LastUpdated(&value), S_OK);
  EXPECT_EQ(file_->get_LastUpdatedDeps(&value), S_OK);
  EXPECT_EQ(value, 42);
}

TEST_F(SourceFileTest, ManualDependenciesMayStandTwiceAndGoTogether) {
  check(file_->AddManualDep(u"a"));
  check(file_->AddManualDep(u"b"));
  check(file_->AddManualDep(u"a"));
  EXPECT_THAT(manual(), ElementsAre("a", "b", "a"));
  check(file_->RemoveManualDep(u"A"));
  EXPECT_EQ(manual().size(), 3u);
  check(file_->RemoveManualDep(u"a"));
  EXPECT_THAT(manual(), ElementsAre("b"));
}

TEST_F(SourceFileTest, AutomaticDependenciesAreKeptShort) {
  const KeptCase rows[] = {
      {"inside", u"\\home\\u\\p\\inc\\a.h", ".\\inc\\a.h"},
      {"slashes", u"/home/u/p/inc/a.h", ".\\inc\\a.h"},
      {"way round", u"/home/u/p/src/../inc/./a.h", ".\\inc\\a.h"},
      {"outside", u"/usr/include/stdio.h", "\\usr\\include\\stdio.h"},
      {"other case", u"/home/u/P/a.h", "\\home\\u\\P\\a.h"},
      {"sibling that begins alike", u"/home/u/project/a.h", ".roject\\a.h"},
      {"relative", u"inc/a.h", "inc\\a.h"},
      {"dot", u"./a.h", "a.h"},
      {"empty", u"", "\\"},
      {"drive", u"C:/sdk/x.h", "C:\\sdk\\x.h"},
  };
  for (const KeptCase& row : rows) {
    SCOPED_TRACE(row.name);
    check(file_->put_AutomaticDeps(enumerator({row.given}).get()));
    EXPECT_THAT(automatic(), ElementsAre(row.kept));
  }
}

TEST_F(SourceFileTest, LongNamesAreKeptWhole) {
  const std::u16string deep = u"\\home\\u\\p\\" + std::u16string(400, u'd') + u"\\a.h";
  check(file_->put_AutomaticDeps(enumerator({deep}).get()));
  EXPECT_EQ(automatic()[0].size(), 400 + 6u);
}

TEST_F(SourceFileTest, AutomaticDependenciesAreReplacedAsAWhole) {
  check(file_->put_AutomaticDeps(enumerator({u"a", u"a"}).get()));
  EXPECT_THAT(automatic(), ElementsAre("a", "a"));
  check(file_->put_AutomaticDeps(make<FakeBuilderTask>().get()));
  EXPECT_EQ(automatic().size(), 2u) << "not a list of texts";
  EXPECT_EQ(file_->put_AutomaticDeps(nullptr), S_OK);
  EXPECT_EQ(automatic().size(), 2u);
  check(file_->put_AutomaticDeps(enumerator({}).get()));
  EXPECT_THAT(automatic(), IsEmpty());
}

TEST_F(SourceFileTest, ACollectionIsACopyThatCanBeGivenBack) {
  check(file_->put_AutomaticDeps(enumerator({u"a", u"b"}).get()));
  Ref<ISimpleCollection> names;
  check(file_->get_AutomaticDeps(&names));
  check(file_->put_AutomaticDeps(enumerator({}).get()));
  std::int32_t count = -1;
  check(names->get_Count(&count));
  EXPECT_EQ(count, 2);
  Ref<IUnknown> walk;
  check(names->get__NewEnum(&walk));
  std::vector<std::string> found;
  forEach(walk.as<IEnumVARIANT>(),
          [&](const Variant& value) { found.push_back(text(*value.get<BString>())); });
  EXPECT_THAT(found, ElementsAre("a", "b"));
  check(file_->put_AutomaticDeps(names.get()));
  EXPECT_THAT(automatic(), ElementsAre("a", "b"));
}

TEST_F(SourceFileTest, EqualNamesShareOneText) {
  const auto other = make<CSourceFile>();
  check(other->put_Project(project_.get()));
  check(file_->put_AutomaticDeps(enumerator({u"/home/u/p/a.h"}).get()));
  check(other->put_AutomaticDeps(enumerator({std::u16string(u".\\a.h")}).get()));
  check(other->put_AutomaticDeps(enumerator({u"\\home\\u\\p\\a.h"}).get()));
  EXPECT_EQ(file_->automaticDependencies()[0].identity(), other->automaticDependencies()[0].identity());
}

// Records

struct ResolveCase {
  const char* name;
  const char16_t* directory;
  const char16_t* persisted;
  const char* resolved;
};

TEST_F(SourceFileTest, RelativeNamesAreResolvedAgainstTheReadersDirectory) {
  const ResolveCase rows[] = {
      {"plain", u"\\w", u".\\a.c", "\\w\\a.c"},
      {"trailing backslash", u"\\w\\", u".\\a.c", "\\w\\a.c"},
      {"upward", u"\\w\\x", u"..\\a.c", "\\w\\a.c"},
      {"sibling whose name began alike", u"\\w", u".x\\a.c", "\\w\\.x\\a.c"},
      {"drive", u"C:\\w", u".\\s\\a.c", "C:\\w\\s\\a.c"},
      {"absolute", u"\\w", u"D:\\lib\\a.c", "stored"},
      {"no dot", u"\\w", u"a.c", "stored"},
      {"empty", u"\\w", u"", "stored"},
  };
  for (const ResolveCase& row : rows) {
    SCOPED_TRACE(row.name);
    check(project_->put_WorkingDirectory(row.directory));
    check(file_->put_PersistAs(row.persisted));
    check(file_->put_Name(u"stored"));
    const auto stream = make<MemoryStream>();
    check(file_->Save(stream.get(), true));
    for (const bool withProject : {true, false}) {
      stream->position = 0;
      const auto read = make<CSourceFile>();
      if (withProject) check(read->put_Project(project_.get()));
      EXPECT_EQ(read->Load(stream.get()), S_OK);
      EXPECT_EQ(name(read.get()), withProject ? row.resolved : "stored");
      EXPECT_EQ(read->IsDirty(), S_FALSE);
    }
  }
}

TEST_F(SourceFileTest, OlderRecordsLackTheirLaterFields) {
  for (const std::uint32_t version : {0u, 1u, 2u, 3u}) {
    SCOPED_TRACE(version);
    const auto stream = make<MemoryStream>();
    RecordWriter record(stream.get());
    record.u32(version);
    record.listedString(u"p");
    record.listedString(u"n");
    if (version > 0) {
      record.u32(1);
      record.listedString(u"auto");
      record.u32(2);
      record.listedString(u"m");
      record.listedString(u"m");
    }
    if (version > 1) record.u32(1);
    stream->position = 0;
    file_ = make<CSourceFile>();
    EXPECT_EQ(file_->Load(stream.get()), S_OK);
    EXPECT_EQ(stream->position, stream->bytes.size());
    EXPECT_EQ(automatic().size(), version > 0 ? 1u : 0u);
    EXPECT_EQ(manual().size(), version > 0 ? 2u : 0u);
    std::int32_t control = -1;
    check(file_->get_SourceControl(&control));
    EXPECT_EQ(control, version > 1 ? 1 : 0);
  }
}

TEST_F(SourceFileTest, AListLongerThanTheStreamFailsBeforeItTakesMemory) {
  const auto stream = make<MemoryStream>();
  RecordWriter record(stream.get());
  record.u32(2);
  record.listedString(u"p");
  record.listedString(u"n");
  record.u32(0xFFFFFFF0);
  stream->position = 0;
  EXPECT_EQ(file_->Load(stream.get()), E_FAIL);
}

TEST_F(SourceFileTest, AnEmptyTextComesBackEmptyAndNotNull) {
  const auto stream = make<MemoryStream>();
  check(file_->Save(stream.get(), true));
  stream->position = 0;
  const auto read = make<CSourceFile>();
  check(read->Load(stream.get()));
  EXPECT_EQ(name(read.get()), "");
  EXPECT_EQ(persistAs(read.get()), "");
}

}  // namespace forgeyard::test
