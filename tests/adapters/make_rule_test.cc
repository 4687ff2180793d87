#include "adapters/compiler/make_rule.h"

#include <gtest/gtest.h>

namespace forgeyard {
namespace {

using Names = std::vector<std::string>;

TEST(MakeRule, UndoesTheNotationOfMake) {
  const struct {
    const char* name;
    const char* text;
    Names prerequisites;
  } cases[] = {
      {"one line", "x: a.c y.h\n", {"a.c", "y.h"}},
      {"no headers", "x: a.c\n", {"a.c"}},
      {"no prerequisites", "x:\n", {}},
      {"no line end", "x: a.c y.h", {"a.c", "y.h"}},
      {"continued", "x: a.c \\\n y.h \\\n z.h\n", {"a.c", "y.h", "z.h"}},
      {"continued at once", "x: \\\n a.c y.h\n", {"a.c", "y.h"}},
      {"continued without a blank", "x: a.c\\\ny.h\n", {"a.c", "y.h"}},
      {"other line ends", "x: a.c \\\r\n y.h\r\n", {"a.c", "y.h"}},
      {"tabs and many blanks", "x: \t a.c \t\ty.h  \n", {"a.c", "y.h"}},
      {"blank in a name", "x: a\\ b.c in\\ c/y\\ z.h\n", {"a b.c", "in c/y z.h"}},
      {"backslash before a blank", "x: a.c b\\\\\\ c/q\\.h\n", {"a.c", "b\\ c/q\\.h"}},
      {"backslash at a name's end", "x: a\\\\ y.h\n", {"a\\", "y.h"}},
      {"number sign", "x: a.c h\\#1.h\n", {"a.c", "h#1.h"}},
      {"dollar", "x: a.c a$$b.h $x\n", {"a.c", "a$b.h", "$x"}},
      {"other letters", "x: größe.c \xE6\x97\xA5.h\n", {"größe.c", "\xE6\x97\xA5.h"}},
      {"colon in a name", "C:/x.o: C:/a.c b:c.h\n", {"C:/a.c", "b:c.h"}},
      {"several targets", "x y\\ z: a.c\n", {"a.c"}},
      {"target on a line of its own", "xxxxxxxxxx: \\\n a.c\n", {"a.c"}},
      {"rules for each header", "x: a.c y.h z.h\ny.h:\n\nz.h:\n", {"a.c", "y.h", "z.h"}},
      {"rules for each header, other line ends", "x: a.c y.h\r\ny.h:\r\n", {"a.c", "y.h"}},
  };
  for (const auto& [name, text, prerequisites] : cases) {
    const MakeRule rule = readMakeRule(text);
    EXPECT_EQ(rule.prerequisites, prerequisites) << name;
    EXPECT_TRUE(rule.complete) << name;
  }
}

TEST(MakeRule, SaysWhenItDoesNotUnderstand) {
  const struct {
    const char* name;
    const char* text;
  } cases[] = {
      {"line end in a name", "x: a.c d\nx/n.h \\\n y.h\n"},
      {"line end in a name, with rules for each header", "x: a.c d\nx/n.h\nd\nx/n.h:\n"},
      {"no rule", "nothing of the kind\n"},
      {"nothing", ""},
      {"a second rule with prerequisites", "x: a.c\ny: b.c\n"},
  };
  for (const auto& [name, text] : cases) EXPECT_FALSE(readMakeRule(text).complete) << name;
}

}  // namespace
}  // namespace forgeyard
