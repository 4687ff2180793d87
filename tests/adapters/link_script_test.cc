#include "adapters/linker/link_script.h"

#include <gtest/gtest.h>

#include "tests/adapters/scratch_tree.h"

namespace forgeyard {
namespace {

class LinkScriptTest : public testing::Test {
 protected:
  LinkScriptTest() {
    tree_.makeDirectory("copies");
    copies_ = tree_ / "copies";
  }
  // Reads `text` as the script game.lk; "%" and "~" stand for the test's directory.
  LinkScript& read(std::string_view text) {
    tree_.put("game.lk", tree_.in(text));
    script_.emplace(spelling_, searched_, copies_);
    script_->read(tree_ / "game.lk");
    return *script_;
  }
  std::string rewritten(std::string_view text) { return readFile(read(text).copy()); }

  ScratchTree tree_;
  UserRegistry registry_{Registry()};
  HostSpelling spelling_{registry_};
  std::string copies_;
  std::vector<std::string> searched_{tree_ / "lib", tree_.path()};
  std::optional<LinkScript> script_;
};

TEST_F(LinkScriptTest, SpellsPathsForTheLinkerAndKeepsTheRest) {
  tree_.put("lib/Start.obj");
  tree_.put("My Files/a.obj");
  const struct {
    const char* name;
    const char* given;
    const char* expected;
  } cases[] = {
      {"nothing to do", "ENTRY(__start)\nINPUT(start.o)\n", "ENTRY(__start)\nINPUT(start.o)\n"},
      {"backslashes", "INPUT(obj\\a.obj,~\\b.obj)", "INPUT(obj/a.obj,%/b.obj)"},
      {"drive", "INPUT(Z:\\x\\a.obj)", "INPUT(/x/a.obj)"},
      {"case of an existing file", "INPUT(START.OBJ)", "INPUT(%/lib/Start.obj)"},
      {"path with a blank", "INPUT(\"~\\my files\\A.obj\")", "INPUT(\"%/My Files/a.obj\")"},
      {"groups and libraries", "GROUP(-lc AS_NEEDED(-lm x\\y.a) -lgcc)",
       "GROUP(-lc AS_NEEDED(-lm x/y.a) -lgcc)"},
      {"directories", "SEARCH_DIR(~\\lib) SEARCH_DIR(\"=/lib\")", "SEARCH_DIR(%/lib) SEARCH_DIR(\"=/lib\")"},
      {"comments stay", "/* a\\b\n c */ INPUT(a.o) /* open", "/* a\\b\n c */ INPUT(a.o) /* open"},
      {"sections", "SECTIONS {\n . = 0x80010000;\n .text : { obj\\start.obj(.text) *(.text*) }\n}\n",
       "SECTIONS {\n . = 0x80010000;\n .text : { obj/start.obj(.text) *(.text*) }\n}\n"},
      {"operators", "A = 1 << 2; B += A ? 3 : (4 % 5); PROVIDE(C = .);",
       "A = 1 << 2; B += A ? 3 : (4 % 5); PROVIDE(C = .);"},
      {"pattern that would begin a comment", "SECTIONS { .t : { \\*.o(.t) } }",
       "SECTIONS { .t : { \"/*.o\"(.t) } }"},
      {"nothing", "", ""},
  };
  for (const auto& [name, given, expected] : cases) {
    // The percent sign of the operators means itself.
    const std::string wanted = std::string(name) == "operators" ? given : tree_.in(expected);
    const std::string text = std::string(name) == "operators" ? given : tree_.in(given);
    tree_.put("game.lk", text);
    LinkScript script(spelling_, searched_, copies_);
    EXPECT_TRUE(script.read(tree_ / "game.lk")) << name << ": " << joined(script.problems());
    EXPECT_EQ(readFile(script.copy()), wanted) << name;
  }
}

TEST_F(LinkScriptTest, KnowsWhoLaysOutSectionsAndTheGlobalPointer) {
  EXPECT_FALSE(read("INPUT(SECTIONS.o) /* SECTIONS { */").hasSections());
  EXPECT_TRUE(read("ENTRY(a)\nSECTIONS{ .text : { *(.text) } }").hasSections());
  EXPECT_EQ(read("SECTIONS { .text : { *(.text) }\n _gp = . + 0x7ff0; }").globalPointer().line, 2U);
  EXPECT_EQ(read("_gp=0x80000000;").globalPointer().line, 1U);
  EXPECT_EQ(read("a = _gp;\nASSERT(_gp == 5, \"\")").globalPointer().file, "");
}

TEST_F(LinkScriptTest, CopiesWhatItIncludes) {
  tree_.put("lib/objects.lk", "INPUT(obj\\a.obj)\nINCLUDE more.lk\n");
  tree_.put("more.lk", "SECTIONS { INCLUDE \"in side.lk\" }\n");
  tree_.put("In Side.lk", ".text : { obj\\*(.text) }\n");
  LinkScript& script = read("ENTRY(a)\nINCLUDE objects.lk INCLUDE objects.lk\nINPUT(b.obj)\n");
  EXPECT_EQ(joined(script.problems()), "");
  EXPECT_TRUE(script.hasSections());
  const std::string copies = copies_;
  EXPECT_EQ(readFile(script.copy()),
            "ENTRY(a)\nINCLUDE \"" + copies + "/2.lk\" INCLUDE \"" + copies + "/2.lk\"\nINPUT(b.obj)\n");
  EXPECT_EQ(tree_.content("copies/2.lk"), "INPUT(obj/a.obj)\nINCLUDE \"" + copies + "/1.lk\"\n");
  EXPECT_EQ(tree_.content("copies/1.lk"), "SECTIONS { INCLUDE \"" + copies + "/0.lk\" }\n");
  EXPECT_EQ(tree_.content("copies/0.lk"), ".text : { obj/*(.text) }\n");
}

TEST_F(LinkScriptTest, NamesFileAndLineOfEveryFault) {
  tree_.put("self.lk", "\n INCLUDE \"~/../self.lk\"\n");
  tree_.put("a.lk", "INCLUDE b.lk\n");
  tree_.put("b.lk", "\n\nINCLUDE a.lk\n");
  tree_.put("c.lk", "\nINPUT(game.lk)\n");
  const std::string lk = tree_ / "game.lk";
  const std::string searched = "; looked in the working directory, " + (tree_ / "lib") + ", " + tree_.path();
  const struct {
    std::string_view text;
    std::vector<std::string> problems;
  } cases[] = {
      {"ENTRY(a)\n\nINPTU(a.obj)\n", {lk + ":3: unknown word \"INPTU\""}},
      {"INPUT(a.obj)\nmain.obj util.obj\n", {lk + ":2: unknown word \"main.obj\""}},
      {"X;\n/* c\n */ Y;\n", {lk + ":1: unknown word \"X\"", lk + ":3: unknown word \"Y\""}},
      {"\nINCLUDE none.lk\n", {lk + ":2: cannot find none.lk" + searched}},
      {"\n\nINCLUDE game.lk\n", {lk + ":3: game.lk includes itself"}},
      {"INCLUDE a.lk\n", {(tree_ / "b.lk") + ":3: a.lk includes itself by way of " + (tree_ / "b.lk")}},
      {"INCLUDE", {lk + ":1: INCLUDE names no file"}},
      {"\nINPUT(\"a.obj)\n", {lk + ":2: a quote isn't closed on its line"}},
      {std::string_view("ELF\0\n", 5), {lk + ":1: this is no text, so no linker script"}},
      {"\n\nINPUT(game.lk)\n", {lk + ":3: game.lk includes itself"}},
      {"INPUT(x.obj c.lk)\n",
       {(tree_ / "c.lk") + ":2: game.lk includes itself by way of " + (tree_ / "c.lk")}},
      {"INCLUDE )\nX\n", {lk + ":1: INCLUDE names no file", lk + ":2: unknown word \"X\""}},
  };
  for (const auto& [text, problems] : cases) EXPECT_EQ(read(text).problems(), problems) << text;
  LinkScript missing(spelling_, searched_, copies_);
  EXPECT_FALSE(missing.read(tree_ / "none.lk"));
  EXPECT_EQ(missing.problems(),
            std::vector<std::string>{"cannot read " + (tree_ / "none.lk") + ": No such file or directory"});
}

TEST_F(LinkScriptTest, ExplainsWhatTheLinkerSays) {
  tree_.put("lib/Start.obj");
  const LinkScript& script = read("INPUT(START.obj\n  none.obj obj\\none.obj -lnix)\nINPUT(~\\no.obj)\n");
  const std::string lk = tree_ / "game.lk";
  const std::string searched = "; looked in the working directory, " + (tree_ / "lib") + ", " + tree_.path();
  const struct {
    std::string line;
    std::string text;
  } cases[] = {
      {"ld: cannot find none.obj: No such file or directory", lk + ":2: cannot find none.obj" + searched},
      {"ld: cannot find obj/none.obj: No such file or directory",
       lk + ":2: cannot find obj\\none.obj" + searched},
      {"ld: cannot find -lnix: No such file or directory",
       lk + ":2: cannot find -lnix" + searched + ", and the linker's own directories"},
      {"ld: cannot find " + (tree_ / "no.obj"), lk + ":3: cannot find " + tree_.model("no.obj")},
      {"ld: cannot find -lc: No such file or directory", "ld: cannot find -lc: No such file or directory"},
      {"ld:" + script.copy() + ":2: syntax error", lk + ":2: syntax error"},
      {"ld: " + script.copy() + ": odd", "ld: " + lk + ": odd"},
      {"ld:" + script.copy() + ": file format not recognized; treating as linker script", ""},
      {"main.obj: in function `main':", "main.obj: in function `main':"},
      {"", ""},
  };
  for (const auto& [line, text] : cases) EXPECT_EQ(script.explain(line), text) << line;
}

TEST_F(LinkScriptTest, FindsThePlaceThatTheLinkerDoesNotTell) {
  tree_.put("open.lk", "SECTIONS {\n");
  const std::string script =
      "ENTRY(go)\nMEMORY {\n rom : ORIGIN = 0, LENGTH = 1K\n}\nINPUT(a.obj sub\\b.txt)\n"
      "SECTIONS {\n .text : { *(.text) } > rom\n}\nASSERT(0, \"too \\ big\")\n";
  const std::string lk = tree_ / "game.lk";
  const struct {
    std::string text;  // of the script
    std::string line;
    std::string told;
  } cases[] = {
      {script, "ld: region `rom' overflowed by 8 bytes", ":3: region `rom' overflowed by 8 bytes"},
      {script, "ld: out.cpe section `.text' will not fit in region `rom'",
       ":7: out.cpe section `.text' will not fit in region `rom'"},
      {script, "ld: section .text LMA [0,1] overlaps section .data LMA [0,1]",
       ":7: section .text LMA [0,1] overlaps section .data LMA [0,1]"},
      {script, "ld: warning: cannot find entry symbol go; defaulting to 0",
       ":1: warning: cannot find entry symbol go; defaulting to 0"},
      {script, "sub/b.txt: file not recognized: file format not recognized",
       ":5: sub/b.txt: file not recognized: file format not recognized"},
      {script, "/x/a.obj: file not recognized: file truncated",
       ":5: /x/a.obj: file not recognized: file truncated"},
      {script, "ld: too / big", ":9: too / big"},
      {script, "ld: no input files", ":1: the script names nothing to link; INPUT(a.obj b.obj) would"},
      {"A = 1;\n/* c\n", "ld: EOF in comment", ":2: syntax error: this comment isn't closed"},
      {"SECTIONS {\n .t : { *(.t) }\n", "ld:*:0: syntax error", ":1: syntax error: this \"{\" isn't closed"},
      {"SECTIONS {\n .t : {\n *(.t\n", "ld:*:0: syntax error", ":3: syntax error: this \"(\" isn't closed"},
      {"A = 1;\nB = 2\n\n/**/", "ld:*:0: syntax error",
       ":4: syntax error: the script ends inside a statement"},
  };
  for (const auto& [text, line, told] : cases) {
    const LinkScript& read = this->read(text);
    std::string seen = line;
    if (const std::size_t star = seen.find('*'); star != seen.npos) seen.replace(star, 1, read.copy());
    EXPECT_EQ(read.explain(seen), lk + told) << text;
  }
  EXPECT_EQ(read("INCLUDE open.lk\n").explain("ld:" + script_->copy() + ":0: syntax error"),
            (tree_ / "open.lk") + ":1: syntax error: this \"{\" isn't closed");
  EXPECT_FALSE(read("ENTRY(a)").namesInputs());
  EXPECT_TRUE(read("GROUP(-lc)").namesInputs());
}

}  // namespace
}  // namespace forgeyard
