// folder add, component add, list and remove, connect and disconnect.

#include "tests/hosts/console/console_sandbox.h"
#include "tests/hosts/console/project_builder.h"

namespace forgeyard::console {
namespace {

using testing::HasSubstr;

class ComponentCommands : public ConsoleSandbox {
 protected:
  void SetUp() override { makeProject(); }
};

TEST_F(ComponentCommands, ListShowsKindNameAndWhatEachOneFeeds) {
  EXPECT_EQ(shown({"component", "list"}),
            "#0   folder  src -> cc\n"
            "#1   folder  inc\n"
            "#2   cc      cc -> link\n"
            "#3   cmdline link\n");
}

TEST_F(ComponentCommands, EveryKindCanBeMade) {
  for (const char* kind : {"cmdline", "cc", "asm", "linker"}) {
    const std::string name = std::string("new ") + kind;
    must({"component", "add", kind, name});
    EXPECT_THAT(shown({"component", "list"}), HasSubstr(std::string(kind)));
    EXPECT_EQ(shown({"get", name, "Name"}), name + "\n");
  }
}

TEST_F(ComponentCommands, WrongUseChangesNothing) {
  const Refusal table[] = {
      {{"folder", "add", ""}, "needs a name"},
      {{"folder", "add", "cc"}, "There is a component cc already (#2, cc)."},
      {{"folder", "add", std::string(261, 'x')}, "260"},
      {{"component", "add", "cc", "src"}, "There is a component src already"},
      {{"component", "add", "compiler", "x"},
       "There is no kind of component compiler. The kinds: cmdline, cc"},
      {{"component", "add", "cdmline", "x"}, "Did you mean cmdline?"},
      {{"component", "add", "folder", "x"}, "forgeyard folder add"},
      {{"component", "remove", "likn"}, "There is no component likn. Did you mean link?"},
      {{"component", "remove", "#9"}, "There is no component #9."},
      {{"component", "remove", "link"}, "-y answers with yes"},
      {{"connect", "src", "likn"}, "Did you mean link?"},
      {{"connect", "cc", "cc"}, "cc can't feed itself"},
      {{"connect", "src", "cc"}, "src is connected to cc already"},
      {{"connect", "link", "src"}, "circle"},
      {{"disconnect", "src", "link"}, "src is not connected to link."},
      {{"disconnect", "cc", "src"}, "The connection runs from src to cc."},
  };
  for (const Refusal& row : table) EXPECT_THAT(refused(row.arguments), HasSubstr(row.words));
}

TEST_F(ComponentCommands, RemoveTakesTheConnectionsAlong) {
  must({"-y", "component", "remove", "cc"});
  EXPECT_EQ(shown({"component", "list"}), "#0   folder  src\n#1   folder  inc\n#3   cmdline link\n");
  // Numbers are not given twice.
  must({"component", "add", "cc", "cc"});
  EXPECT_THAT(shown({"component", "list"}), HasSubstr("#4   cc      cc\n"));
}

TEST_F(ComponentCommands, NumberNamesAComponentToo) {
  must({"connect", "#1", "#2"});
  EXPECT_THAT(shown({"component", "list"}), HasSubstr("inc -> cc\n"));
  must({"disconnect", "#1", "cc"});
  EXPECT_THAT(shown({"component", "list"}), HasSubstr("#1   folder  inc\n"));
  must({"folder", "add", "#2"});
  EXPECT_EQ(shown({"get", "#2", "Name"}), "#2\n") << "a name comes before a number";
}

TEST_F(ComponentCommands, EqualNamesAreToldApartByTheirNumbers) {
  // The module allows what this host refuses.
  renameComponent(path("p.nqp"), "inc", "src");
  EXPECT_THAT(refused({"set", "src", "Extension=x"}),
              HasSubstr("There are several components src: #0 (folder) and #1 (folder)."));
  EXPECT_THAT(refused({"file", "add", "--folder", "src", "a.c"}), HasSubstr("#0 (folder) and #1 (folder)"));
  must({"set", "#1", "Name=inc"});
  EXPECT_EQ(shown({"get", "#0", "Name"}), "src\n");
  EXPECT_EQ(shown({"get", "inc", "Name"}), "inc\n");
}

}  // namespace
}  // namespace forgeyard::console
