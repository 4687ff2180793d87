#include "tools/linker/linker_output.h"

#include <gtest/gtest.h>

namespace forgeyard {
namespace {

TEST(LinkerOutput, AnExtensionIsAddedOnlyWhereThereIsNone) {
  const struct {
    std::u16string_view name;
    std::uint32_t format;
    std::u16string_view main, symbols, map;
  } cases[] = {
      {u"prog", 0, u"prog.cpe", u"prog.sym", u"prog.map"},
      {u"prog", 1, u"prog.bin", u"prog.sym", u"prog.map"},
      {u"prog", 2, u"prog.sre", u"prog.sym", u"prog.map"},
      {u"prog", 7, u"prog.sre", u"prog.sym", u"prog.map"},
      {u"prog.abs", 1, u"prog.abs", u"prog.sym", u"prog.map"},
      {u"sub\\prog", 0, u"sub\\prog.cpe", u"sub\\prog.sym", u"sub\\prog.map"},
      {u"sub\\prog.abs", 0, u"sub\\prog.abs", u"prog.sym", u"prog.map"},
      {u"v1.2\\prog", 0, u"v1.2\\prog.cpe", u"v1.2\\prog.sym", u"v1.2\\prog.map"},
      {u"a.b.c", 0, u"a.b.c", u"a.b.sym", u"a.b.map"},
      {u"prog.", 0, u"prog.", u"prog.sym", u"prog.map"},
      {u"prog. x", 0, u"prog. x", u"prog.sym", u"prog.map"},
  };
  for (const auto& row : cases) {
    const LinkerOutput output = linkerOutput(row.name, static_cast<LinkFormat>(row.format));
    EXPECT_EQ(output.main, row.main);
    EXPECT_EQ(output.symbols, row.symbols);
    EXPECT_EQ(output.map, row.map);
  }
}

TEST(LinkerOutput, ALinkWithoutANameIsCalledLikeItsScript) {
  EXPECT_EQ(outputNameFor(u"C:\\p\\game.lk"), u"game");
  EXPECT_EQ(outputNameFor(u"\\home\\u\\v1.2\\my game.v2.lk"), u"my game.v2");
  EXPECT_EQ(outputNameFor(u"game.lk"), u"output");
  EXPECT_EQ(outputNameFor(u"C:\\p\\.lk"), u"output");
}

}  // namespace
}  // namespace forgeyard
