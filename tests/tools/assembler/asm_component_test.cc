// The assembler component at work in a project.

#include <filesystem>

#include "tests/support/build_fixture.h"
#include "tools/assembler/asm.h"
#include "typelib/cookies.h"

namespace forgeyard::test {
namespace {

// Makes all files of the list but the first. The list is the last word, in the model's spelling from its
// first comma on.
constexpr const char* kAssembler = R"sh(
for word; do list=$word; done
IFS=,
set -- $list
shift
for file; do [ -z "$file" ] || echo made > "$(printf %s "$file" | tr '\\' /)"; done
)sh";

class AsmComponentTest : public BuildFixture {
 protected:
  AsmComponentTest() {
    tool_ = putTool("asmtool", kAssembler);
    setRegistry("Assemblers", "mips", tool_);
    check(configuration().as<IKVSupportCookies>()->put_Cookie(u"Target", u"mips"));
    assembler_ = add<CAsm>(u"Assembler");
    folder_ = addFolder(u"Sources");
    connect(folder_.get(), assembler_.get());
  }

  std::string tool_;
  Ref<CAsm> assembler_;
  Ref<CFolder> folder_;
};

TEST_F(AsmComponentTest, MakesObjectAndListing) {
  addFile(*folder_, "a.s");
  const Ref<IAsmSettings> chosen = settings<IAsmSettings>(assembler_.get());
  check(chosen->put_CreateListingFile(1));
  check(chosen->put_Output(u".obj;.lst"));
  const Lines lines = run(E_TASK_BUILD);
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[2], tool_ + " /g /l /w " + narrowPath("a.s") + "," + narrowPath("obj/a.obj") + ",," +
                          narrowPath("obj/a.lst"));
  EXPECT_EQ(outputsOf(static_cast<IComponent*>(assembler_.get())),
            (Lines{narrowPath("obj/a.lst"), narrowPath("obj/a.obj")}));
  EXPECT_EQ(result(), E_BTR_COMPLETED);
  EXPECT_EQ(run(E_TASK_BUILD), (Lines{"Component \"Assembler\"", "All outputs up to date.", "-----"}));
  std::filesystem::remove(directory_ / "obj/a.lst");
  EXPECT_EQ(run(E_TASK_BUILD).size(), 6u);
}

TEST_F(AsmComponentTest, ReadsNoDependenciesBack) {
  addFile(*folder_, "a.s");
  directory_.put("a.d", "a.obj: a.s x.h\r\n");
  run(E_TASK_BUILD);
  EXPECT_TRUE(std::filesystem::exists(directory_ / "a.d"));
}

TEST_F(AsmComponentTest, WithoutAnAssemblerItSaysWhy) {
  addFile(*folder_, "a.s");
  check(configuration().as<IKVSupportCookies>()->put_Cookie(u"Target", u"arm"));
  EXPECT_EQ(run(E_TASK_BUILD), (Lines{"Specified target: arm has no assembler setting registry entry.",
                                      "Component \"Assembler\" result: ERROR", "-----"}));
}

}  // namespace
}  // namespace forgeyard::test
