// import: a project of a source tree.

#include <filesystem>
#include <fstream>
#include <map>

#include "tests/hosts/console/console_sandbox.h"
#include "tests/support/places.h"
#include "workbench/import/source_text.h"

namespace forgeyard::console {

using namespace workbench;
namespace {

using testing::AllOf;
using testing::HasSubstr;
namespace fs = std::filesystem;

TEST(SourceText, FindsIncludesAndTheFunctionMain) {
  struct Row {
    const char* text;
    const char* includes;  // with their quotes or brackets
    MainFunction main;
  };
  constexpr auto none = MainFunction::None;
  constexpr auto present = MainFunction::Present;
  const Row rows[] = {
      {"#include \"a.h\"\n  # include <b/c.h> // d\n", "\"a.h\" <b/c.h> ", none},
      {"// #include \"a.h\"\n/*\n#include \"b.h\"\n*/ #define X \\\n#include \"c.h\"\n", "", none},
      {"#include MACRO\n#include \"never closed\nint x;\n", "", none},
      {"\t.include \"macros.inc\" # isn't\n\t.globl main\nmain:\n", "\"macros.inc\" ", present},
      {"int main(int n, char** v)\n{\n}\n", "", present},
      {"main(n, v)\n  char** v; { }", "", present},
      {"auto main() -> int { }", "", present},
      {"extern \"C\" {\nint main() { }\n}", "", present},
      {"#ifdef TEST\nint main() { }\n#endif\n", "", MainFunction::Conditional},
      {"#if 1\n#if 2\n#endif\n#endif\nint main(void) /* ( */ { }", "", present},
      {"int main(void);\nint f() { return main(); }", "", none},
      {"int App::main() { }\nint f() { if (main()) { } a.main(); }", "", none},
      {"const char* s = \"int main() { \\\" \"; int domain() { } int maint() { }", "", none},
      {"char c = '\"'; int main() { }", "", present},
  };
  for (const Row& row : rows) {
    const SourceFacts facts = readSourceText(row.text);
    std::string includes;
    for (const Include& include : facts.includes)
      includes += (include.quoted ? "\"" : "<") + include.name + (include.quoted ? "\" " : "> ");
    EXPECT_EQ(includes, row.includes) << row.text;
    EXPECT_EQ(facts.main, row.main) << row.text;
  }
}

class Import : public ConsoleSandbox {
 protected:
  void putAll(const std::map<std::string, std::string>& files) const {
    for (const auto& [name, text] : files) put(name, text);
  }
  // Builds all of it, once; the second build runs nothing.
  void expectBuilds() const {
    const Outcome build = must({"build"});
    EXPECT_GT(toolRuns(build), 0) << build.output;
    EXPECT_EQ(toolRuns(must({"build"})), 0);
  }
  std::string output(const std::string& program) const { return run(path("out/" + program)).output; }
};

TEST_F(Import, SampleBuildsAndRunsAndFollowsItsHeaders) {
  for (const char* way : {"directory", "kind"}) {
    setDirectory(std::string(way) + "/hello");
    fs::copy(places::samples() + "/hello", directory(), fs::copy_options::recursive);
    must({"import", ".", "--folders", way});
    expectBuilds();
    EXPECT_THAT(output("hello"), HasSubstr("4763 checks passed, 0 failed\n"));
    touch("text tools/table.h");
    EXPECT_EQ(toolRuns(must({"build"})), 5) << way;
  }
  EXPECT_THAT(shown({"component", "list"}), HasSubstr("folder  sources -> compile\n"));
  setDirectory("directory/hello");
  EXPECT_THAT(shown({"component", "list"}), HasSubstr("folder  text tools -> compile\n"));
}

TEST_F(Import, RomBecomesACompilerAnAssemblerAndALinker) {
  setDirectory("rom");
  fs::copy(places::samples() + "/rom", directory(), fs::copy_options::recursive);
  must({"import", ".", "--target", "mips", "--linker-script", "monitor.lk"});
  must({"set", "compile", "SmallDataThreshold=8", "OptimisationLevel=2",
        "Options=-std=c99;-ffreestanding;-fno-tree-loop-distribute-patterns"});
  must({"set", "link", "EquateSymbols=LOADED=1"});
  expectBuilds();
  EXPECT_THAT(run("qemu-mipsel", {path("out/monitor.cpe")}).output, HasSubstr("self test passed\n"));
}

TEST_F(Import, SourcesOfOneNameKeepAnObjectEach) {
  putAll({{"a/util.c", "int a(void) { return 1; }"},
          {"b/util.c", "int b(void) { return 20; }"},
          {"b/util.cpp", "extern \"C\" int c() { return 300; }"},
          {"c d/Util.c", "int d(void) { return 4000; }"},
          {"a/util.S", "\t.globl e\ne:\tmovl $50000, %eax\n\tret\n"},
          {"a/low.s", "\t.globl f\nf:\tmovl $600000, %eax\n\tret\n"},
          {"main.c",
           "#include <stdio.h>\nint a(void), b(void), c(void), d(void), e(void), f(void);\n"
           "int main(void) { printf(\"%d\", a() + b() + c() + d() + e() + f()); return 0; }"}});
  must({"import", "."});
  expectBuilds();
  EXPECT_EQ(output("project"), "654321");
}

TEST_F(Import, IncludePathsComeFromWhereTheHeadersLie) {
  putAll({{"src/main.c",
           "#include \"here.h\"\n#include <deep/er.h>\n#include \"lib.h\"\n#include <string.h>\n#include "
           "<math.h>\n"
           "int main(int n, char** v) { return strlen(v[0]) + pow(n, 0) + HERE + ER + LIB == 0; }"},
          {"src/here.h", "#define HERE 1\n"},
          {"include/deep/er.h", "#include \"other.h\"\n#define ER OTHER\n"},
          {"more include/other.h", "#define OTHER 2\n"},
          {"src/string.h", "#error the one of the system is meant\n"},
          {"lib/one/lib.h", "#define LIB 1\n"},
          {"src/two/lib.h", "#define LIB 2\n"},
          {"src/table.c", "#include \"rows.c\"\n"},
          {"src/rows.c", "int rows[] = {1};\n"}});
  const Outcome outcome = must({"import", "."});
  EXPECT_THAT(outcome.errors, HasSubstr("lib.h (lib/one/lib.h and src/two/lib.h)"));
  EXPECT_THAT(outcome.errors, HasSubstr("another source includes it: src/rows.c"));
  EXPECT_EQ(shown({"get", "compile", "IncludePath"}), "include;more include;src\\two\n");
  expectBuilds();
}

TEST_F(Import, APartOfATreeFindsTheHeadersOfTheWhole) {
  putAll({{"part/src/main.c",
           "#include \"part/src/a.h\"\n#include <common/b.h>\nint main(void) { return A - B; }"},
          {"part/src/a.h", "#define A 7\n"},
          {"common/b.h", "#define B 7\n"}});
  const Outcome outcome = must({"import", "part"});
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(shown({"-p", "part/part.nqp", "get", "compile", "IncludePath"}), "..\n");
  must({"-p", "part/part.nqp", "build"});
  EXPECT_EQ(run(path("part/out/part")).exitCode, 0);
}

TEST_F(Import, SeveralMainsAreSeveralProgramsAndNoneIsALibrary) {
  putAll({{"lib/text.c", "const char* text(void) { return \"text\"; }"},
          {"one/main.c", "#include <stdio.h>\nconst char* text(void);\nint main(void) { puts(text()); }"},
          {"two/main.c", "int main(void) { return 7; }"}});
  EXPECT_THAT(must({"import", "."}).errors, HasSubstr("a program of its own"));
  expectBuilds();
  EXPECT_EQ(output("one"), "text\n");
  EXPECT_EQ(run(path("out/two")).exitCode, 7);
  must({"-y", "import", ".", "--main", "one/main.c"});
  expectBuilds();
  EXPECT_EQ(output("project"), "text\n");
  EXPECT_THAT(must({"-y", "import", "lib", "-p", "elsewhere/l.nqp"}).errors, HasSubstr("a library is made"));
  must({"-p", "elsewhere/l.nqp", "build"});
  EXPECT_EQ(run("ar", {"t", path("elsewhere/out/libl.a")}).output, "text.obj\n");
}

TEST_F(Import, OnlySourcesOfTheTreeAreTaken) {
  putAll({{"main.c", "int main(void) { return 0; }"},
          {".hidden/a.c", "bad"},
          {"build/CMakeCache.txt", ""},
          {"build/b.c", "bad"},
          {"obj/c.c", "bad"},
          {"ignored/d.c", "bad"},
          {"generated.c", "bad"},
          {".gitignore", "ignored/\ngenerated.c\n"},
          {"qu\"ote.c", "bad"},
          {"two  blanks.c", "bad"},
          {"st*r.c", "int star;"},
          {"../outside/e.c", "int outside;"}});
  fs::create_directory_symlink(directory(), path("loop"));
  fs::create_directory_symlink(path("../outside"), path("shared"));
  fs::create_symlink("nowhere", path("dangling.c"));
  fs::create_symlink("main.c", path("again.c"));
  std::ofstream(path("back\\slash.c")) << "bad";
  run("git", {"-C", directory(), "init", "-q"});
  const Outcome outcome = must({"import", "."});
  for (const char* told : {"results of a build: obj and build", "ignored by git: generated.c and ignored",
                           "in the tree already: again.c and loop", "leads nowhere: dangling.c",
                           "tab or a line end in a name: qu\"ote.c", "two in a row: two  blanks.c",
                           "directories in a project: back\\slash.c", "for a pattern: st*r.c"})
    EXPECT_THAT(outcome.errors, HasSubstr(told));
  EXPECT_EQ(shown({"file", "list"}), "project\n  main.c\n  st*r.c\nshared\n  shared/e.c\n");
  must({"build"});
}

TEST_F(Import, DryRunShowsAllAndMakesNothing) {
  putAll({{"src/main.c", "int main(void) { return 0; }"}, {"src/a.h", ""}});
  const std::string plan = shown({"import", ".", "--dry-run", "-v"});
  EXPECT_THAT(plan,
              AllOf(HasSubstr("folder src (c;h), files: 2\n  " + path("src/main.c")),
                    HasSubstr("cc compile, fed by src\n"), HasSubstr("cmdline link, fed by compile\n")));
  for (const char* made : {"project.nqp", "obj", "out"}) EXPECT_FALSE(exists(made));
}

TEST_F(Import, ListOfObjectsTooLongForACommandIsLinkedInSteps) {
  std::string calls;
  std::string declarations;
  for (int i = 0; i < 420; ++i) {
    const std::string name = "part_" + std::to_string(i) + std::string(200, 'x');
    put("src/" + name + ".s",
        std::string("\t.globl ").append(name).append("\n").append(name) + ":\tmovl $1, %eax\n\tret\n");
    declarations += "int " + name + "(void);\n";
    calls += "sum += " + name + "();\n";
  }
  put("main.c", "#include <stdio.h>\n" + declarations + "int main(void) { int sum = 0;\n" + calls +
                    "printf(\"%d\", sum); }");
  EXPECT_THAT(must({"import", "."}).errors, HasSubstr("linked in steps"));
  must({"build"});
  EXPECT_EQ(output("project"), "420");
}

TEST_F(Import, WrongUseMakesNothing) {
  putAll({{"src/main.c", "int main(void) { return 0; }"}, {"empty/readme", ""}, {"taken/taken.nqp", "mine"}});
  put("taken/a.c", "");
  const Refusal table[] = {
      {{"import"}, "forgeyard import ."},
      {{"import", "nowhere"}, "nowhere can't be read"},
      {{"import", "src/main.c", "-p", "q.nqp"}, "src/main.c is no directory"},
      {{"import", "empty"}, "empty has no C, C++ or assembler sources"},
      {{"import", "src", "--folders", "kinds"}, "by kinds. Did you mean kind?"},
      {{"import", "src", "--target", "natve"}, "no target natve with a compiler. Did you mean native?"},
      {{"import", "src", "--main", "src/other.c"}, "src/other.c is none of the sources"},
      {{"import", "src", "--linker-script", "no.lk"}, "no.lk is no file"},
      {{"import", "src", "-p", "q.txt"}, "ends in \".nqp\""},
      {{"import", "taken"}, "taken.nqp was left as it is"},
  };
  for (const Refusal& row : table) {
    const Outcome outcome = forgeyard(row.arguments);
    EXPECT_EQ(outcome.exitCode, 2) << row.words;
    EXPECT_THAT(outcome.errors, HasSubstr(row.words));
  }
  EXPECT_EQ(content("taken/taken.nqp"), "mine");
  for (const char* made : {"src/src.nqp", "empty/empty.nqp", "q.nqp", "src/obj"})
    EXPECT_FALSE(exists(made)) << made;
  fs::permissions(path("taken/taken.nqp"), fs::perms::owner_read);
  EXPECT_THAT(forgeyard({"-y", "import", "taken"}).errors, HasSubstr("taken.nqp can't be made: "));
  fs::permissions(path("taken/taken.nqp"), fs::perms::owner_all);
  must({"-y", "import", "taken"});
  EXPECT_THAT(shown({"-p", "taken/taken.nqp", "file", "list"}), HasSubstr("  a.c\n"));
}

}  // namespace
}  // namespace forgeyard::console
