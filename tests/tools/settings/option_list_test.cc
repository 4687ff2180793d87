#include "tools/settings/option_list.h"

#include <gtest/gtest.h>

#include "tools/settings/file_fields.h"

namespace forgeyard {
namespace {

TEST(OptionList, EachEntryOfAListStandsBehindThePrefixWithABlankBehindIt) {
  const struct {
    const char* name;
    OptionPair option;
    std::u16string_view text;
  } cases[] = {
      {"plain", {u"-I", u"inc"}, u"-Iinc "},
      {"several", {u"-D", u"A=1;B"}, u"-DA=1 -DB "},
      {"no value, no prefix", {u"-I", u""}, u""},
      {"only semicolons and blanks", {u"-I", u" ;; ;  "}, u""},
      {"blanks and empty entries", {u"-x", u" ; a b ;;c "}, u"-x\"a b\" -xc "},
      {"quotes come after the prefix", {u"-I", u"C:\\My Dir"}, u"-I\"C:\\My Dir\" "},
      {"quoted already", {u"-I", u"\"C:\\My Dir\""}, u"-I\"C:\\My Dir\" "},
      {"a quote in front alone", {u"-I", u"\"a b"}, u"-I\"a b "},
      {"a quote behind alone", {u"-I", u"a b\""}, u"-Ia b\" "},
      {"a quote inside", {u"-D", u"S=\"a b\"c"}, u"-D\"S=\"a b\"c\" "},
      {"tabs are no blanks", {u"-I", u"\ta\tb\t"}, u"-I\ta\tb\t "},
      {"an empty prefix", {u"", u"/s;/t"}, u"/s /t "},
      {"the prefix is never split or quoted", {u"tool a;b ", u"-c"}, u"tool a;b -c "},
  };
  for (const auto& row : cases) {
    std::u16string text;
    ExpandOptionPair(row.option, text);
    EXPECT_EQ(text, row.text) << row.name;
  }
}

TEST(OptionList, OptionsFollowOneAnotherWithNothingBetween) {
  OptionList options;
  options.add(u"-I", u"inc;lib");
  options.add(u"-O", u"");
  options.add(u"", u"-g");
  std::u16string text = u"tool ";
  options.expand(text);
  EXPECT_EQ(text, u"tool -Iinc -Ilib -g ");
}

TEST(FileFields, AMissingFieldStaysEmptyOnlyBeforeOneThatIsPresent) {
  const auto fields = [](bool first, bool second) {
    std::u16string text = u"x";
    addFileFields(text, {{first, u"a"}, {second, u"b"}});
    return text;
  };
  EXPECT_EQ(fields(false, false), u"x");
  EXPECT_EQ(fields(true, false), u"x,a");
  EXPECT_EQ(fields(false, true), u"x,,b");
  EXPECT_EQ(fields(true, true), u"x,a,b");
}

}  // namespace
}  // namespace forgeyard
