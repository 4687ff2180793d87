// How files enter a project, and how it finds them again.

#include <gmock/gmock.h>

#include <random>

#include "model/folders/file_insertion.h"
#include "model/folders/source_file.h"
#include "platform/paths/shell_path.h"
#include "tests/model/support/model_fixture.h"

namespace forgeyard::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class InsertionTest : public ModelTest {};

struct ExtensionCase {
  const char16_t* list;
  const char16_t* extension;
  bool taken;
};

}  // namespace

TEST(ExtensionListTest, IsSearchedAsText) {
  const ExtensionCase rows[] = {
      {u"c", u"c", true},         {u"c;s", u"c", false},  // the first of two isn't found
      {u"c;s", u"s", true},       {u"c;s;h", u"s", false}, {u"c;cpp;h", u"h", true},
      {u"c;cpp;h", u"pp", false}, {u"c;x;", u"c", false},  {u"cx;", u"c", true},  // a semicolon two behind it
      {u"abc", u"c", true},                                                       // the end of a longer one
      {u"C", u"c", false},        {u"", u"c", false},      {u"", u"", true},
      {u"c;s", u"", true},        {u"c", u"cpp", false},   {u"cc", u"c", true},  // found at the second place
      {u"*.c;*.s", u"s", true},
  };
  for (const ExtensionCase& row : rows) {
    EXPECT_EQ(takesExtension(row.list, row.extension), row.taken)
        << BString(row.list).narrow() << " / " << BString(row.extension).narrow();
  }
}

TEST_F(InsertionTest, TheExtensionChoosesTheFolderAndTheLastTakesTheRest) {
  const Ref<CProject> project = newProject();
  const Ref<CFolder> sources = addFolder(*project, u"C", u"c");
  const Ref<CFolder> headers = addFolder(*project, u"H", u"h");
  const Ref<CFolder> rest = addFolder(*project, u"S", u"s");
  insert(*project, {u"\\x\\a.c", u"\\x\\b.h", u"\\x\\c.s", u"\\x\\d.txt", u"\\x\\e.tar.c", u"\\x.c\\f"});
  EXPECT_THAT(fileNames(*sources), ElementsAre("\\x\\a.c", "\\x\\e.tar.c"));
  EXPECT_THAT(fileNames(*headers), ElementsAre("\\x\\b.h"));
  EXPECT_THAT(fileNames(*rest), ElementsAre("\\x\\c.s", "\\x\\d.txt", "\\x.c\\f"));
  // A name without a dot has an empty extension, which any list takes.
  insert(*project, {u"\\x\\Makefile"});
  EXPECT_EQ(fileNames(*sources).back(), "\\x\\Makefile");
}

TEST_F(InsertionTest, AGivenFolderTakesEverything) {
  const Ref<CProject> project = newProject();
  const Ref<CFolder> sources = addFolder(*project, u"C", u"c");
  const Ref<CFolder> other = addFolder(*project, u"Other", u"s");
  insert(*project, {u"\\a.c", u"\\b.s"}, static_cast<IFolder*>(sources.get()));
  EXPECT_THAT(fileNames(*sources), ElementsAre("\\a.c", "\\b.s"));
  EXPECT_THAT(fileNames(*other), IsEmpty());
  insert(*project, {u"\\c.c"}, static_cast<IProject*>(project.get()));
  EXPECT_EQ(fileNames(*sources).size(), 2u) << "no folder at all";
  EXPECT_TRUE(host_->messages().empty());
}

TEST_F(InsertionTest, WithoutAFolderNothingCanBeInserted) {
  const Ref<CProject> project = newProject();
  addFake(*project);
  EXPECT_EQ(project->InsertFiles(enumerator({u"\\a.c"}).get(), nullptr), E_FAIL);
}

TEST_F(InsertionTest, OnlyNamesInCapitalsAreRefused) {
  const Ref<CProject> project = newProject();
  const Ref<CFolder> folder = addFolder(*project, u"f");
  insert(*project, {u"\\x\\a.c"});
  insert(*project, {u"\\x\\a.c"});
  EXPECT_EQ(fileNames(*folder).size(), 2u) << "a lower-case letter makes it new";
  insert(*project, {u"\\X\\A.C", u"\\X\\B.C", u"\\X\\A.C"});
  EXPECT_THAT(fileNames(*folder), ElementsAre("\\x\\a.c", "\\x\\a.c", "\\X\\B.C"));
  EXPECT_THAT(host_->messages(),
              ElementsAre(ShownMessage{"One or more files could not be added to the specified project.\n\n"
                                       "These files already exist in the project:\n\\X\\A.C\n\\X\\A.C\n",
                                       "Add Files", MessageButtons::Ok, MessageIcon::Information}));
  insert(*project, {u"\\X\\NEW.C", u"\\X\\NEW.C"});
  EXPECT_EQ(fileNames(*folder).size(), 5u) << "twice in one call";
  EXPECT_EQ(host_->messages().size(), 1u);
}

TEST_F(InsertionTest, RefusedFilesWithoutAFrameFailBehindTheWork) {
  const Ref<CProject> project = newProject();
  const Ref<CFolder> folder = addFolder(*project, u"f");
  insert(*project, {u"\\A"});
  host_->withdraw(SID_MainFrame);
  EXPECT_EQ(project->InsertFiles(enumerator({u"\\A", u"\\B"}).get(), nullptr), E_FAIL);
  EXPECT_THAT(fileNames(*folder), ElementsAre("\\A", "\\B"));
}

TEST_F(InsertionTest, NamesBelowTheWorkingDirectoryAreStoredRelative) {
  const Ref<CProject> project = newProject();
  const Ref<CFolder> folder = addFolder(*project, u"f");
  struct Row {
    const char16_t* directory;
    const char16_t* name;
    const char* persisted;
  };
  const Row rows[] = {
      {u"\\w", u"\\w\\s\\a.c", ".\\s\\a.c"}, {u"\\w", u"\\work\\a.c", ".ork\\a.c"},
      {u"\\w", u"\\W\\a.c", "\\W\\a.c"},     {u"\\w\\", u"\\w\\a.c", ".a.c"},
      {u"\\w", u"C:\\w\\a.c", "C:\\w\\a.c"}, {u"\\w", u".\\a.c", ".\\a.c"},
  };
  for (const Row& row : rows) {
    check(project->put_WorkingDirectory(row.directory));
    insert(*project, {row.name});
    const Ref<ISourceFile> added = folder->sourceFiles().back();
    EXPECT_EQ(persistAs(added.get()), row.persisted);
    EXPECT_EQ(name(added.get()), BString(row.name).narrow());
  }
}

TEST_F(InsertionTest, EveryFileIsToldAndTheListsFollowOnce) {
  const Ref<CProject> project = newProject();
  addFolder(*project, u"f");
  check(project->put_Dirty(0));
  const Ref<NotifySink> sink = listen(static_cast<IProject*>(project.get()));
  insert(*project, {u"\\a", u"\\b", u"\\c"});
  EXPECT_THAT(sink->ids, ElementsAre(22, 19, 22, 22, 30));
}

TEST_F(InsertionTest, OneNameMayComeAsAValue) {
  const Ref<CProject> project = newProject();
  const Ref<CFolder> folder = addFolder(*project, u"f");
  EXPECT_EQ(project->InsertFiles2(Variant(BString(u"\\a.c")), nullptr), S_OK);
  EXPECT_EQ(project->InsertFiles2(Variant(12), static_cast<IFolder*>(folder.get())), S_OK);
  EXPECT_THAT(fileNames(*folder), ElementsAre("\\a.c", "12"));
  EXPECT_EQ(project->InsertFiles2(Variant(BString()), nullptr), E_FAIL);
  EXPECT_EQ(project->InsertFiles2(Variant(BString(u"")), nullptr), E_FAIL);
}

// Finding

namespace {

// What the index stands for.
ISourceFile* walk(CProject& project, const BString& wanted) {
  for (const Ref<IComponent>& component : project.contents().components) {
    const Ref<IFolderFiles> folder = component.as<IFolderFiles>();
    if (!folder) continue;
    for (const Ref<ISourceFile>& file : folder->sourceFiles()) {
      BString stored;
      check(file->get_Name(&stored));
      std::string pattern = stored.narrow();
      std::string name = wanted.narrow();
      PathMakePrettyA(pattern);
      PathMakePrettyA(name);
      if (PathMatchSpecA(name, pattern)) return file.get();
    }
  }
  return nullptr;
}

class FindTest : public InsertionTest {
 protected:
  static ISourceFile* find(CProject& project, const BString& wanted) {
    Ref<ISourceFile> found;
    EXPECT_EQ(project.FindFileInProject(wanted, &found), S_OK);
    return found.get();
  }
};

}  // namespace

TEST_F(FindTest, WritesOnlyWhatItFinds) {
  const Ref<CProject> project = newProject();
  const Ref<CFolder> folder = addFolder(*project, u"f");
  Ref<ISourceFile> found = addFile(*folder, u"\\a.c");
  const Ref<ISourceFile> before = found;
  EXPECT_EQ(project->FindFileInProject(u"\\b.c", &found), S_OK);
  EXPECT_EQ(found, before);
  EXPECT_EQ(project->FindFileInProject({}, &found), E_FAIL);
  EXPECT_EQ(project->FindFileInProject(u"\\A.C", &found), S_OK);
  EXPECT_EQ(found, before);
}

TEST_F(FindTest, FollowsEveryChange) {
  const Ref<CProject> project = newProject();
  const Ref<CFolder> first = addFolder(*project, u"1");
  const Ref<CFolder> second = addFolder(*project, u"2");
  const Ref<ISourceFile> later = addFile(*second, u"\\a.c");
  EXPECT_EQ(find(*project, u"\\a.c"), later.get());
  const Ref<ISourceFile> earlier = addFile(*first, u"\\A.c");
  EXPECT_EQ(find(*project, u"\\a.c"), earlier.get());
  check(earlier->put_Name(u"\\b.c"));
  EXPECT_EQ(find(*project, u"\\a.c"), later.get());
  EXPECT_EQ(find(*project, u"\\b.c"), earlier.get());
  Ref<ISourceFiles> files;
  check(first->get_SourceFiles(&files));
  check(files->Delete(earlier.get()));
  EXPECT_EQ(find(*project, u"\\b.c"), nullptr);
  check(project->DeleteComponent(static_cast<IFolder*>(second.get())));
  EXPECT_EQ(find(*project, u"\\a.c"), nullptr);
}

TEST_F(FindTest, AStoredPatternMatchesWidelyInItsTurn) {
  const Ref<CProject> project = newProject();
  const Ref<CFolder> folder = addFolder(*project, u"f");
  const Ref<ISourceFile> plain = addFile(*folder, u"\\x\\a.c");
  const Ref<ISourceFile> pattern = addFile(*folder, u"\\x\\*.c");
  const Ref<ISourceFile> hidden = addFile(*folder, u"\\x\\b.c");
  const Ref<ISourceFile> list = addFile(*folder, u"\\y;\\z");
  const Ref<ISourceFile> blank = addFile(*folder, u"  \\q");
  EXPECT_EQ(find(*project, u"\\x\\a.c"), plain.get());
  EXPECT_EQ(find(*project, u"\\x\\b.c"), pattern.get());
  EXPECT_EQ(find(*project, u"\\z"), list.get());
  EXPECT_EQ(find(*project, u"\\q"), blank.get());
  EXPECT_EQ(find(*project, u"  \\q"), nullptr);
}

// Whatever names and changes come, the index gives what the walk gives.
TEST_F(FindTest, AgreesWithTheWalk) {
  const Ref<CProject> project = newProject();
  const Ref<CFolder> folders[] = {addFolder(*project, u"1"), addFolder(*project, u"2")};
  const std::u16string_view letters = u"aAbB.\\*?; \u00e9\u00c9\u0130\u212a\U0001F600";
  std::mt19937 random(20240229);
  const auto pick = [&](std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
  };
  const auto anyName = [&] {
    std::u16string name;
    for (std::size_t length = pick(4); length > 0; --length) name += letters[pick(letters.size())];
    return BString(name);
  };
  for (int step = 0; step < 4000; ++step) {
    CFolder& folder = *folders[pick(2)];
    const auto& files = folder.sourceFiles();
    const std::size_t action = pick(20);
    if (action == 0 && files.size() < 30) {
      addFile(folder, anyName());
    } else if (action == 1 && !files.empty()) {
      check(files[pick(files.size())]->put_Name(anyName()));
    } else if (action == 2 && !files.empty()) {
      Ref<ISourceFiles> collection;
      check(folder.get_SourceFiles(&collection));
      check(collection->Delete(files[pick(files.size())].get()));
    } else {
      const BString wanted = anyName();
      if (wanted.isNull()) continue;
      ASSERT_EQ(find(*project, wanted), walk(*project, wanted)) << step << " \"" << wanted.narrow() << "\"";
    }
  }
}

}  // namespace forgeyard::test
