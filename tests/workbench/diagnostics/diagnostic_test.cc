// Lines as compilers, assemblers, linkers and what runs them print them, and what is understood of them.

#include "workbench/diagnostics/diagnostic.h"

#include <gtest/gtest.h>

#include "platform/text/narrow.h"
#include "workbench/diagnostics/findings.h"

namespace forgeyard::workbench {
namespace {

// "SEVERITY PLACE | TEXT", with a "~" in front of a consequence; empty for a line that tells no fault.
std::string told(const std::string& line) {
  const auto found = recognise(wideFromNarrow(line));
  if (!found) return "";
  return (found->consequence ? "~" : "") + std::string(word(found->severity)) + " " + found->place() + " | " +
         found->text;
}

struct Row {
  const char* line;
  const char* told;
};

TEST(Diagnostic, UnderstandsWhatToolsPrint) {
  const Row table[] = {
      // A compiler
      {"a.c:2:27: error: 'nowhere' undeclared (first use in this function)",
       "error a.c:2:27 | 'nowhere' undeclared (first use in this function)"},
      {"bad.h:1:42: warning: unused variable 'y' [-Wunused-variable]",
       "warning bad.h:1:42 | unused variable 'y' [-Wunused-variable]"},
      {"bad.h:1:42: error: unused variable 'y' [-Werror=unused-variable]",
       "error bad.h:1:42 | unused variable 'y' [-Werror=unused-variable]"},
      {"b.c:2:5: note: declared here", "note b.c:2:5 | declared here"},
      {"t.cc:1:8: note:   initializing argument 1 of 'void f(int)'",
       "note t.cc:1:8 | initializing argument 1 of 'void f(int)'"},
      {"a.c:2:10: fatal error: missing.h: No such file or directory",
       "error a.c:2:10 | missing.h: No such file or directory"},
      {"b.c:4:2: error: #error stop here", "error b.c:4:2 | #error stop here"},
      {"/home/u/my work/a.c:7:1: warning: x: error: y", "warning /home/u/my work/a.c:7:1 | x: error: y"},
      {"\\home\\u\\a.c:7: error: old form", "error \\home\\u\\a.c:7 | old form"},
      {"C:\\p\\a.c:7:12: error: on a drive", "error C:\\p\\a.c:7:12 | on a drive"},
      {"ErrorHandling.cpp:3:4: warning: careful", "warning ErrorHandling.cpp:3:4 | careful"},
      {"caf\xc3\xa9.c:1:1: error: \xe2\x80\x98x\xe2\x80\x99",
       "error caf\xc3\xa9.c:1:1 | \xe2\x80\x98x\xe2\x80\x99"},
      {"In file included from a.c:1:", "note a.c:1 | In file included from a.c:1:"},
      {"In file included from dir/x.h:12,", "note dir/x.h:12 | In file included from dir/x.h:12,"},
      {"                 from a.c:3:", "note a.c:3 |                  from a.c:3:"},
      {"t.cc:1:71:   required from here", "note t.cc:1:71 | required from here"},
      {"cc1: fatal error: nofile.c: No such file or directory",
       "error cc1 | nofile.c: No such file or directory"},
      {"gcc: error: unrecognized command-line option '--nonsense'",
       "error gcc | unrecognized command-line option '--nonsense'"},
      {"mipsel-linux-gnu-gcc: fatal error: no input files", "error mipsel-linux-gnu-gcc | no input files"},
      {"\x1b[01m\x1b[Kd.c:3:5:\x1b[m\x1b[K \x1b[01;35m\x1b[Kwarning: \x1b[m\x1b[Kno prototype for "
       "'\x1b[01m\x1b[Kd\x1b[m\x1b[K'",
       "warning d.c:3:5 | no prototype for 'd'"},
      {"\x1b[01m\x1b[Kd.c:3:5:\x1b[m\x1b[K \x1b[01;35m\x1b[Kwarning: \x1b[m\x1b[Kunused "
       "[\x1b]8;;https://x.org/a\x07-Wa\x1b]8;;\x07] [\x1b]8;;https://x.org/b\x1b\\-Wb\x1b]8;;\x1b\\]\x1b(B",
       "warning d.c:3:5 | unused [-Wa] [-Wb]"},
      {"tests/a.py:3: WARNING: slow", "warning tests/a.py:3 | slow"},
      // An assembler
      {"as: unrecognized option '--frob'", "error as | unrecognized option '--frob'"},
      {"my file.s: Warning: end of file not at end of a line; newline inserted",
       "warning my file.s | end of file not at end of a line; newline inserted"},
      {"s.s:2: Error: no such instruction: `frobnicate %eax,%ebx'",
       "error s.s:2 | no such instruction: `frobnicate %eax,%ebx'"},
      {"s.s:8: Warning: careful", "warning s.s:8 | careful"},
      {"s.s:6:  Info: macro invoked from here", "note s.s:6 | macro invoked from here"},
      {"Error: can't open nofile.s for reading: No such file or directory",
       "error  | can't open nofile.s for reading: No such file or directory"},
      // A linker
      {"/usr/bin/ld: d.o:(.data+0x0): multiple definition of `shared'; c.o:(.data+0x0): first defined here",
       "error d.o | multiple definition of `shared'; c.o:(.data+0x0): first defined here"},
      {"/usr/bin/ld: c.o: warning: relocation against `missing_data' in read-only section `.text'",
       "warning c.o | relocation against `missing_data' in read-only section `.text'"},
      {"/usr/bin/ld: d.o:(.data+0x0): multiple definition of `s'; c.o:/p/c.c:1: first defined here",
       "error d.o | multiple definition of `s'; c.o:/p/c.c:1: first defined here"},
      {"/usr/bin/ld: l.a(d.o):/my work/d.c:1: multiple definition of `s'; c.obj:/p/c.c:1: first defined here",
       "error /my work/d.c:1 | multiple definition of `s'; c.obj:/p/c.c:1: first defined here"},
      {"/usr/bin/ld: s.o: relocation R_X86_64_32 against symbol `v' can not be used when making a PIE object",
       "error s.o | relocation R_X86_64_32 against symbol `v' can not be used when making a PIE object"},
      {"c.c:(.text+0x5): undefined reference to `missing_function'",
       "error c.c | undefined reference to `missing_function'"},
      {"/usr/bin/ld: c.c:(.text+0xb): undefined reference to `missing_data'",
       "error c.c | undefined reference to `missing_data'"},
      {"/tmp/c.c:4: undefined reference to `missing_function'",
       "error /tmp/c.c:4 | undefined reference to `missing_function'"},
      {"/usr/bin/ld: /tmp/c.c:4: undefined reference to `missing_data'",
       "error /tmp/c.c:4 | undefined reference to `missing_data'"},
      {"/usr/bin/ld: warning: creating DT_TEXTREL in a PIE",
       "warning /usr/bin/ld | creating DT_TEXTREL in a PIE"},
      {"/usr/bin/ld: NOTE: This behaviour is deprecated", "note /usr/bin/ld | This behaviour is deprecated"},
      {"/usr/bin/ld: cannot find -lnowhere: No such file or directory",
       "error /usr/bin/ld | cannot find -lnowhere: No such file or directory"},
      {"ld:bad.lk:0: syntax error", "error bad.lk | syntax error"},
      {"ld:s.s:2: syntax error", "error s.s:2 | syntax error"},
      {"rom.lk:12: region `rom' overflowed by 120 bytes",
       "error rom.lk:12 | region `rom' overflowed by 120 bytes"},
      {"ld: a.out section `.text' will not fit in region `rom'",
       "error ld | a.out section `.text' will not fit in region `rom'"},
      {"mipsel-linux-gnu-ld: cannot open linker script file no.lk: No such file or directory",
       "error mipsel-linux-gnu-ld | cannot open linker script file no.lk: No such file or directory"},
      {"ld: unrecognized option '--frob'", "error ld | unrecognized option '--frob'"},
      {"objcopy: 'nofile.o': No such file", "error objcopy | 'nofile.o': No such file"},
      {"rules.mk:1: *** missing separator.  Stop.", "error rules.mk:1 | missing separator.  Stop."},
      // What only follows
      {"collect2: error: ld returned 1 exit status", "~error  | collect2: error: ld returned 1 exit status"},
      {"/usr/bin/ld: final link failed: bad value", "~error  | /usr/bin/ld: final link failed: bad value"},
      {"make: *** [Makefile:2: all] Error 1", "~error make | [Makefile:2: all] Error 1"},
      {"make[2]: *** [Makefile:2: all] Error 1", "~error make | [Makefile:2: all] Error 1"},
      // What stands around the tools
      {"TideSpawn: cannot start \"x\": not found in /d or on PATH",
       "error TideSpawn | cannot start \"x\": not found in /d or on PATH"},
      {"gnu-cc: warning: cannot write /d/a.d", "warning gnu-cc | cannot write /d/a.d"},
      {"TRAMLINK: unknown switch \"/y\"", "error TRAMLINK | unknown switch \"/y\""},
      // No faults
      {"", ""},
      {"a.c: In function 'main':", ""},
      {"s.s: Assembler messages:", ""},
      {"/usr/bin/ld: c.o: in function `main':", ""},
      {"d.o: in function `d':", ""},
      {"ld:g.o: file format not recognized; treating as linker script", ""},
      {"ld: use the --help option for usage information", ""},
      {"ld: total time in link: 0.000827", ""},
      {"ar: creating lib.a", ""},
      {"    1 | static int f(void) { return x ? 1 : 2; }", ""},
      {"compilation terminated.", ""},
      {"0 errors, 0 warnings", ""},
      {"Compiling error.c: done", ""},
      {"errors: 0", ""},
      {"test: errors: none", ""},
      {"      time: 10:30: fine", ""},
      {"12:30:01 warning", ""},
      {"https://example.org:80/error", ""},
  };
  for (const Row& row : table) EXPECT_EQ(told(row.line), row.told) << row.line;
}

TEST(Diagnostic, MarksPlaceAndSeverityInTheLine) {
  const std::u16string line = u"a.c:1:2: fatal error: x.h: none";
  const auto found = recognise(line);
  ASSERT_TRUE(found);
  EXPECT_EQ(line.substr(0, found->placeEnd), u"a.c:1:2");
  EXPECT_EQ(line.substr(found->wordBegin, found->wordEnd - found->wordBegin), u"fatal error:");
  EXPECT_EQ(recognise(u"\x1b[1ma.c:1:2:\x1b[m error: x")->wordEnd, 0U) << "has colours of its own";
}

TEST(Findings, CountWhatIsSaidTwiceOnceAndConsequencesAlone) {
  Findings findings;
  const auto run = [&](std::initializer_list<const char*> lines, int exitCode) {
    findings.toolStarted();
    for (const char* line : lines) {
      if (const auto found = recognise(wideFromNarrow(line))) findings.add(*found, "c");
    }
    findings.toolEnded("c", "f.in", exitCode);
  };
  run({"x.h:1:2: warning: careful", "a.c:3:4: error: wrong", "make: *** [all] Error 1",
       "a.c:3:4: note: here"},
      2);
  run({"x.h:1:2: warning: careful", "x.h:1:2: error: careful"}, 1);
  run({"make: *** [all] Error 1"}, 2);
  run({"make: [all] Error 1 (ignored)", "x.h:1:2: warning: careful"}, 0);
  run({"x.h:1:2: warning: careful"}, 7);
  findings.add(*recognise(u"Error: unplaced"), "c");
  findings.add(*recognise(u"Error: unplaced"), "d");
  ASSERT_EQ(findings.warnings().size(), 1U);
  EXPECT_EQ(findings.warnings()[0].count, 4U);
  ASSERT_EQ(findings.errors().size(), 6U);
  EXPECT_EQ(findings.errors()[1].diagnostic.place(), "x.h:1:2");
  EXPECT_TRUE(findings.errors()[2].diagnostic.consequence);
  EXPECT_EQ(findings.errors()[2].count, 1U);
  EXPECT_EQ(findings.errors()[3].diagnostic.place(), "f.in");
  EXPECT_EQ(findings.errors()[5].where(), "d");
}

}  // namespace
}  // namespace forgeyard::workbench
