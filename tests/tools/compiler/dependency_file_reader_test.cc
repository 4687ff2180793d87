#include "tools/compiler/dependency_file_reader.h"

#include <gtest/gtest.h>

#include <string>

namespace forgeyard {
namespace {

using Names = std::vector<std::string_view>;

TEST(DependencyFile, NamesBehindTargetAndSourceAreTheDependencies) {
  const struct {
    const char* name;
    std::string_view text;
    Names names;
  } cases[] = {
      {"one line", "a.obj: a.c a.h b.h", {"a.h", "b.h"}},
      {"no headers", "a.obj: a.c", {}},
      {"no headers and a blank", "a.obj: a.c ", {}},
      {"target alone", "a.obj:", {}},
      {"target and a blank", "a.obj: ", {}},
      {"nothing", "", {}},
      {"a blank", " ", {}},
      {"two blanks", "  ", {}},
      {"three blanks", "   ", {""}},
      {"four blanks", "    ", {"", ""}},
      {"continued line", "a.obj: a.c x.h \\\n y.h", {"x.h", "y.h"}},
      {"continued line with CR LF", "a.obj: a.c x.h \\\r\n y.h \\\r\n z.h", {"x.h", "y.h", "z.h"}},
      {"continued before the first header", "a.obj: a.c \\\n x.h", {"x.h"}},
      {"two blanks give an empty name", "a.obj: a.c x.h  y.h", {"x.h", "", "y.h"}},
      {"continued line with two blanks", "a.obj: a.c x.h \\\n  y.h", {"x.h", "", "y.h"}},
      {"blank at the end", "a.obj: a.c x.h ", {"x.h"}},
      {"a line end inside a name stays", "a.obj: a.c x.h\nb.obj: y.h", {"x.h\nb.obj:", "y.h"}},
      {"a name with a backslash in front is lost", "a.obj: a.c \\p\\x.h y.h", {"y.h"}},
      {"backslashes further on are kept", "a.obj: a.c C:\\p\\x.h y.h", {"C:\\p\\x.h", "y.h"}},
      {"no unescaping", "a.obj: a.c my\\ file.h $$x \\#y", {"my\\", "file.h", "$$x"}},
      {"a tab parts nothing", "a.obj: a.c x.h\ty.h", {"x.h\ty.h"}},
      {"a backslash at the very end", "a.obj: a.c x.h \\", {"x.h"}},
      {"a source on the next line counts as a header", "a.obj: \\\n a.c x.h", {"a.c", "x.h"}},
      {"bytes beyond ASCII", "a.obj: a.c gr\xC3\xBC\xDF.h", {"gr\xC3\xBC\xDF.h"}},
  };
  for (const auto& row : cases) EXPECT_EQ(parseDependencyFile(row.text), row.names) << row.name;
}

TEST(DependencyFile, NamesOfAnyLengthAreWhole) {
  const std::string name(5000, 'n');
  const std::string text = "a.obj: a.c " + name + " b.h";
  EXPECT_EQ(parseDependencyFile(text), (Names{name, "b.h"}));
}

}  // namespace
}  // namespace forgeyard
