// The whole output of builds, line by line.
#include <algorithm>

#include "tests/e2e/sandbox.h"

namespace forgeyard::e2e {
namespace {

using testing::ElementsAreArray;

class BuildOutput : public Sandbox {
 protected:
  BuildOutput() {
    put("a.c", "int main(void) { return 0; }\n");
    put("b.c", "int b;\n");
    makeProgramProject({"a.c", "b.c"});
    must({"set", "cc", "Options=-fno-diagnostics-show-caret"});
  }

  // A path below the project as the module spells it.
  std::string model(const std::string& name) const {
    std::string text = path(name);
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
  }
  std::string compileLine(const std::string& stem) const {
    return "gnu-cc gcc -c -fno-diagnostics-show-caret -MD " + model(stem + ".c") + " -o" +
           model("obj/" + stem + ".obj") + " ";
  }
  std::string linkLine() const {
    return "gcc -o \"" + model("out/prog") + "\" \"" + model("obj/a.obj") + "\" \"" + model("obj/b.obj") +
           "\"";
  }
};

TEST_F(BuildOutput, OfABuildFromNothing) {
  EXPECT_THAT(must({"build"}).lines(), ElementsAreArray(Lines{
                                           "-----",
                                           "Project: p - Configuration: Default",
                                           "-----",
                                           "Component \"cc\"",
                                           "",
                                           compileLine("a"),
                                           "Exit Code: 0 (0x0).",
                                           "",
                                           compileLine("b"),
                                           "Exit Code: 0 (0x0).",
                                           "Component \"cc\" result: OK",
                                           "-----",
                                           "Component \"link\"",
                                           "",
                                           linkLine(),
                                           "Exit Code: 0 (0x0).",
                                           "Component \"link\" result: OK",
                                           "-----",
                                           "Project: p - Configuration: Default",
                                           "Final result: OK",
                                           "-----",
                                       }));
}

TEST_F(BuildOutput, OfABuildWithNothingToDo) {
  must({"build"});
  EXPECT_THAT(must({"build"}).lines(), ElementsAreArray(Lines{
                                           "-----",
                                           "Project: p - Configuration: Default",
                                           "-----",
                                           "Component \"cc\"",
                                           "All outputs up to date.",
                                           "-----",
                                           "Component \"link\"",
                                           "All outputs up to date.",
                                           "-----",
                                           "Project: p - Configuration: Default",
                                           "Final result: OK",
                                           "-----",
                                       }));
}

TEST_F(BuildOutput, OfABuildWithAnError) {
  put("a.c", "int main(void) { return nowhere; }\n");
  const Outcome build = forgeyard({"build"});
  EXPECT_THAT(
      build.lines(),
      ElementsAreArray(Lines{
          "-----",
          "Project: p - Configuration: Default",
          "-----",
          "Component \"cc\"",
          "",
          compileLine("a"),
          path("a.c") + ": In function 'main':",
          path("a.c") + ":1:25: error: 'nowhere' undeclared (first use in this function)",
          path("a.c") + ":1:25: note: each undeclared identifier is reported only once for each function "
                        "it appears in",
          "Exit Code: 1 (0x1).",
          "",
          compileLine("b"),
          "Exit Code: 0 (0x0).",
          "Component \"cc\" result: ERROR",
          "-----",
          "Project: p - Configuration: Default",
          "Final result: ERRORS",
          "-----",
          "a.c:1:25: error: 'nowhere' undeclared (first use in this function)",
          "1 error.",
      }));
  EXPECT_EQ(build.errors, "");
}

TEST_F(BuildOutput, OfACompileAndAClean) {
  must({"build"});
  EXPECT_THAT(must({"compile", "b.c"}).lines(), ElementsAreArray(Lines{
                                                    "-----",
                                                    "Project: p - Configuration: Default",
                                                    "-----",
                                                    "Component \"cc\"",
                                                    "",
                                                    compileLine("b"),
                                                    "Exit Code: 0 (0x0).",
                                                    "Component \"cc\" result: OK",
                                                    "-----",
                                                    "-----",
                                                    "Project: p - Configuration: Default",
                                                    "Final result: OK",
                                                    "-----",
                                                }));
  EXPECT_THAT(must({"clean"}).lines(), ElementsAreArray(Lines{
                                           "-----",
                                           "Project: p - Configuration: Default",
                                           "-----",
                                           "Component \"cc\"",
                                           "Deleting " + model("obj/a.obj"),
                                           "Deleting " + model("obj/b.obj"),
                                           "-----",
                                           "Component \"link\"",
                                           "Deleting " + model("out/prog"),
                                           "-----",
                                           "Project: p - Configuration: Default",
                                           "Final result: OK",
                                           "-----",
                                       }));
}

TEST_F(BuildOutput, OfComponentsWithoutInputs) {
  must({"disconnect", "src", "cc"});
  EXPECT_THAT(must({"build"}).lines(), ElementsAreArray(Lines{
                                           "-----",
                                           "Project: p - Configuration: Default",
                                           "-----",
                                           "Component \"cc\"",
                                           "No inputs to build.",
                                           "All outputs up to date.",
                                           "-----",
                                           "Component \"link\"",
                                           "No inputs to build.",
                                           "All outputs up to date.",
                                           "-----",
                                           "Project: p - Configuration: Default",
                                           "Final result: OK",
                                           "-----",
                                       }));
}

TEST_F(Sandbox, OutputOfABuildWithAWrongCommand) {
  makeToolProject({"1.in"}, "tool $(Nope)");
  EXPECT_THAT(forgeyard({"build"}).lines(),
              ElementsAreArray(Lines{
                  "-----",
                  "Project: p - Configuration: Default",
                  "-----",
                  "Component \"tool\"",
                  "ERROR: Undefined macro in command line: $(Nope). Use \"Project, Settings\" to correct.",
                  "Command Line: tool $(Nope)",
                  "Component \"tool\" result: ERROR",
                  "-----",
                  "Project: p - Configuration: Default",
                  "Final result: ERRORS",
                  "-----",
              }));
}

}  // namespace
}  // namespace forgeyard::e2e
