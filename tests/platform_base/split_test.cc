#include "platform/text/split.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace forgeyard {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SplitList, CutsAtSemicolonsStripsBlanksAndDropsEmptyPieces) {
  EXPECT_THAT(SplitList(" .c ;;.i;  ; a b;.C "), ElementsAre(".c", ".i", "a b", ".C"));
  EXPECT_THAT(SplitList("one"), ElementsAre("one"));
  EXPECT_THAT(SplitList(""), IsEmpty());
  EXPECT_THAT(SplitList(" ; ;"), IsEmpty());
  EXPECT_THAT(SplitList(u"inc; C:\\My Dir ;"), ElementsAre(u"inc", u"C:\\My Dir"));
}

TEST(SplitList, StripsNoOtherWhiteSpace) {
  EXPECT_THAT(SplitList("\ta\t;\n"), ElementsAre("\ta\t", "\n"));
  EXPECT_THAT(SplitList(u" \u00A0 "), ElementsAre(u"\u00A0"));
}

}  // namespace
}  // namespace forgeyard
