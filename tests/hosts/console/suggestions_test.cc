// Names that are unknown get the nearest one, or what there is, whatever they are names of.

#include "tests/hosts/console/console_sandbox.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;

class Suggestions : public ConsoleSandbox {};

TEST_F(Suggestions, AreMadeForEveryKindOfName) {
  makeProject();
  put("sub/main.c", "");
  put("sub/main.h", "");
  must({"file", "add", "sub/main.c"});
  must({"file", "add", "sub/main.h", "--folder", "inc"});
  must({"workspace", "add", "p.nqp"});
  const Refusal table[] = {
      {{"get", "lnk"}, "There is no component lnk. Did you mean link?"},
      {{"set", "lnk", "Output=x"}, "Did you mean link?"},
      {{"connect", "srcc", "link"}, "Did you mean src?"},
      {{"disconnect", "cc", "lnik"}, "Did you mean link?"},
      {{"component", "remove", "lin"}, "Did you mean link?"},
      {{"get", "#9"}, "There is no component #9. The components: src, inc, cc and link."},
      {{"file", "add", "x.c", "--folder", "sr"}, "There is no folder sr. Did you mean src?"},
      {{"file", "add", "x.c", "--folder", "cc"}, "The folders: src and inc."},
      {{"file", "remove", "sub/mian.c"}, "Did you mean sub/main.c?"},
      {{"compile", "main.c"}, "is no file of the project."},
      {{"why", "sub/man.c"}, "Did you mean sub/main.c?"},
      {{"why", "sub/man.h"}, "Did you mean sub/main.h?"},
      {{"component", "add", "linkr", "x"}, "There is no kind of component linkr. Did you mean linker?"},
      {{"set", "cc", "WarnngLevel=2"}, "Did you mean WarningLevel?"},
      {{"get", "cc", "Optoins"}, "Did you mean Options?"},
      {{"config", "set", "OutptuDirectory=x"}, "Did you mean OutputDirectory?"},
      {{"config", "set", "Traget=x"}, "Did you mean Target?"},
      {{"config", "use", "Smal"}, "There is no configuration Smal. Did you mean Small?"},
      {{"config", "add", "x", "--from", "defalt"}, "Did you mean Default?"},
      {{"-c", "Smll", "build"}, "Did you mean Small?"},
      {{"target", "remove", "natve"}, "There is no target natve. Did you mean native?"},
      {{"workspace", "use", "q"}, "There is no project q in the workspace."},
      {{"-p", "pp.nqp", "build"}, "Did you mean p.nqp?"},
      {{"typelib", "IProjct"}, "Did you mean IProject?"},
      {{"history", "Projct"}, "Did you mean Project?"},
      {{"graph", "--format", "sgv"}, "Did you mean svg?"},
      {{"import", "sub", "--folders", "knd"}, "Did you mean kind?"},
      {{"export", "nija"}, "Did you mean ninja?"},
      {{"completion", "bsh"}, "Did you mean bash?"},
      {{"man", "buidl"}, "Did you mean build?"},
      {{"folder", "add", "x", "--flter", "c"}, "folder add has no option --flter. Did you mean --filter?"},
      {{"dump", "--tre"}, "Did you mean --tree?"},
      {{"build", "-x"}, "build has no option -x."},
  };
  for (const Refusal& row : table) EXPECT_THAT(refused(row.arguments), HasSubstr(row.words));
  EXPECT_THAT(must({"config", "set", "Target=natve"}).errors, HasSubstr("Did you mean native?"));
}

}  // namespace
}  // namespace forgeyard::console
