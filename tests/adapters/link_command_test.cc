#include "adapters/linker/link_command.h"

#include <gtest/gtest.h>

#include "adapters/common/tool_family.h"
#include "adapters/linker/link.h"
#include "adapters/linker/linker_tools.h"
#include "adapters/linker/s_records.h"
#include "tests/adapters/scratch_tree.h"

namespace forgeyard {
namespace {

class LinkCommandTest : public testing::Test {
 protected:
  LinkCommand read(std::string_view command) {
    std::vector<std::string> words = tree_.words("TRAMLINK " + std::string(command));
    words.erase(words.begin());
    return readLinkCommand(words, spelling_);
  }
  std::string ld(std::string_view text) {
    const LinkerTools tools = LinkerTools::fromText(tree_.in(text), spelling_);
    return joined({tools.ld, tools.objcopy, tools.nm, tools.readelf, tools.driver});
  }

  ScratchTree tree_;
  UserRegistry registry_{Registry()};
  HostSpelling spelling_{registry_};
};

TEST_F(LinkCommandTest, ReadsTheSwitchesOfTheComponent) {
  tree_.makeDirectory("My Libs");
  const LinkCommand command = read(
      R"(/v /z /c /m /wl /wm /ps /gp0x80018000 /rmips=~\r.txt /eA=1 /eB=2 /l~\lib /l~\My Libs /s -L~\x -q @~\g.lk,~\g.sre,~\g.sym,~\g.map)");
  EXPECT_EQ(command.error, "");
  EXPECT_EQ(command.format, LinkFormat::SRecords);
  EXPECT_TRUE(command.zeroBss && command.crossReferences && command.warnCommon);
  EXPECT_EQ(command.globalPointer, "0x80018000");
  EXPECT_EQ(command.relocations, tree_ / "r.txt");
  EXPECT_EQ(joined(command.symbols), "A=1 B=2");
  EXPECT_EQ(joined(command.directories), tree_.in("%/lib %/My Libs"));
  EXPECT_EQ(joined(command.options), tree_.in("-L%/x -q"));
  EXPECT_EQ(joined({command.script, command.output, command.symbolFile, command.mapFile}),
            tree_.in("%/g.lk %/g.sre %/g.sym %/g.map"));
}

TEST_F(LinkCommandTest, ReadsTheFiles) {
  const LinkCommand plain = read(R"(/c /s @~\My Game\my game.lk,~\out\game.cpe)");
  EXPECT_EQ(plain.error, "");
  EXPECT_EQ(plain.format, LinkFormat::Executable);
  EXPECT_EQ(plain.script, tree_ / "My Game/my game.lk");
  EXPECT_EQ(plain.output, tree_ / "out/game.cpe");
  EXPECT_EQ(plain.symbolFile + plain.mapFile, "");
  const LinkCommand map = read("/p @g.lk,g.bin,,g.map");
  EXPECT_EQ(map.format, LinkFormat::Binary);
  EXPECT_EQ(map.symbolFile, "");
  EXPECT_EQ(map.mapFile, "g.map");
}

TEST_F(LinkCommandTest, RefusesWhatItDoesNotKnow) {
  const struct {
    const char* given;
    const char* error;
  } cases[] = {
      {"/y @g.lk,g", "unknown switch \"/y\""},
      {"/C @g.lk,g", "unknown switch \"/C\""},
      {"/w @g.lk,g", "unknown switch \"/w\""},
      {"/rabs=x @g.lk,g", "unknown switch \"/rabs=x\""},
      {"main.obj @g.lk,g", "unknown switch \"main.obj\""},
      {"/gp @g.lk,g", "/gp: a value is missing (/eNAME=VALUE, /gpADDRESS, /lDIRECTORY, /rmips=FILE)"},
      {"/eA @g.lk,g", "/eA: a value is missing (/eNAME=VALUE, /gpADDRESS, /lDIRECTORY, /rmips=FILE)"},
      {"", "a file is missing: @SCRIPT,OUTPUT[,SYMBOLS[,MAP]] is the form"},
      {"/s", "a file is missing: @SCRIPT,OUTPUT[,SYMBOLS[,MAP]] is the form"},
      {"@g.lk", "a file is missing: @SCRIPT,OUTPUT[,SYMBOLS[,MAP]] is the form"},
      {"@,g", "a file is missing: @SCRIPT,OUTPUT[,SYMBOLS[,MAP]] is the form"},
      {"@a,b,c,d,e",
       "too many files: @SCRIPT,OUTPUT[,SYMBOLS[,MAP]] is the form, and no name may have a comma in it"},
  };
  for (const auto& [given, error] : cases) EXPECT_EQ(read(given).error, error) << given;
}

TEST_F(LinkCommandTest, FindsTheToolsOfOneFamily) {
  tree_.makeDirectory("bin");
  EXPECT_EQ(ld("mips-elf-"), "mips-elf-ld mips-elf-objcopy mips-elf-nm mips-elf-readelf mips-elf-gcc");
  EXPECT_EQ(ld("%/bin"), tree_.in("%/bin/ld %/bin/objcopy %/bin/nm %/bin/readelf %/bin/gcc"));
  EXPECT_EQ(ld(R"(~\bin\mips-ld.bfd)"),
            tree_.in("%/bin/mips-ld.bfd %/bin/mips-objcopy %/bin/mips-nm %/bin/mips-readelf %/bin/mips-gcc"));
  EXPECT_EQ(ld("/opt/mips-link"), "/opt/mips-link objcopy nm readelf gcc");
}

TEST_F(LinkCommandTest, TheEnvironmentGoesBeforeTheRegistry) {
  UserRegistry set(Registry::parse("[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool]\nLinker=mips-elf-\n"));
  {
    const ScopedVariable none("FORGEYARD_LINKER", std::nullopt);
    EXPECT_EQ(LinkerTools::configured(registry_, spelling_).ld, "mipsel-linux-gnu-ld");
    EXPECT_EQ(LinkerTools::configured(set, spelling_).ld, "mips-elf-ld");
  }
  const ScopedVariable chosen("FORGEYARD_LINKER", "/opt/x-ld");
  EXPECT_EQ(LinkerTools::configured(set, spelling_).ld, "/opt/x-ld");
}

TEST(RelatedTool, NeedsTheToolsOwnNameAtTheEnd) {
  EXPECT_EQ(relatedTool("as", "as", "nm"), "nm");
  EXPECT_EQ(relatedTool("/t/mips-as", "as", "nm"), "/t/mips-nm");
  EXPECT_EQ(relatedTool("canvas", "as", "nm"), "nm");
}

TEST(SRecords, TheHeaderGivesTheNameAndNoPath) {
  EXPECT_EQ(withHeaderName("S00A00007365632E73726542\r\nS705800100007 9\r\n", "a.sre"),
            "S0080000612E7372651E\r\nS705800100007 9\r\n");
  EXPECT_EQ(withHeaderName("S705\r\n", "a"), "S705\r\n");
  EXPECT_EQ(withHeaderName("", "a"), "");
  EXPECT_EQ(withHeaderName("S0", std::string(100, 'a')).substr(0, 4), "S02B");
}

TEST(Layout, LosesOnlyItsGlobalPointer) {
  EXPECT_EQ(layoutWithoutGlobalPointer("GNU ld\nusing internal linker script:\n====================\nA\n"
                                       "  . = .; HIDDEN (_gp = ALIGN (16) + 0x7ff0); B\nC\n\n"
                                       "====================\n"),
            "A\n  . = .;  B\nC\n\n");
  EXPECT_EQ(layoutWithoutGlobalPointer("\n==========\nA\n==========\n"), "A\n");
  EXPECT_EQ(layoutWithoutGlobalPointer("no layout"), "");
  EXPECT_EQ(layoutWithoutGlobalPointer("\n=========="), "");
}

}  // namespace
}  // namespace forgeyard
