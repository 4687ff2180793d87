// graph: the diagram of a project as text, for dot and as a picture.

#include "tests/hosts/console/console_sandbox.h"
#include "workbench/diagram/formats.h"

namespace forgeyard::console {

using namespace workbench;
namespace {

using testing::HasSubstr;
using testing::Not;

using GraphCommand = ConsoleSandbox;

TEST_F(GraphCommand, ShowsWhatFeedsWhatWithFilesAndState) {
  makeProject();
  must({"config", "set", "Target=native", "IntermediateDirectory=obj"});
  put("a.c", "int a;\n");
  must({"file", "add", "a.c", "b.h"});
  must({"set", "link", "Output=prog", "RunOnce=1", "Command=true"});
  EXPECT_EQ(shown({"graph"}),
            "p - Default\n"
            "src (folder, 1 file) -> cc\n"
            "  a.c\n"
            "inc (folder, 1 file)\n"
            "  b.h\n"
            "cc (cc, 1 out of date) -> link\n"
            "  obj/a.obj\n"
            "link (cmdline, out of date)\n"
            "  prog\n");
  EXPECT_THAT(shown({"-c", "Small", "graph"}),
              HasSubstr("cc (cc, can't run) -> link\n  a.obj\nlink (cmdline, waits"));
  EXPECT_EQ(
      shown({"graph", "--format", "dot"}),
      "digraph \"p - Default\" {\n"
      "  rankdir=LR;\n"
      "  node [shape=box, style=filled, fontname=\"sans-serif\"];\n"
      "  n0 [label=\"src\\nfolder, 1 file\\na.c\\l\", fillcolor=\"#e8f0fb\", color=\"#4a76b8\"];\n"
      "  n1 [label=\"inc\\nfolder, 1 file\\nb.h\\l\", fillcolor=\"#e8f0fb\", color=\"#4a76b8\"];\n"
      "  n2 [label=\"cc\\ncc, 1 out of date\\nobj/a.obj\\l\", fillcolor=\"#fdf1d8\", color=\"#b97f10\"];\n"
      "  n3 [label=\"link\\ncmdline, out of date\\nprog\\l\", fillcolor=\"#fdf1d8\", color=\"#b97f10\"];\n"
      "  n0 -> n2;\n"
      "  n2 -> n3;\n"
      "}\n");
  EXPECT_THAT(shown({"graph", "--format", "svg"}), HasSubstr(">cc, 1 out of date</text>"));
  EXPECT_THAT(refused({"graph", "--format", "svq"}), HasSubstr("Did you mean svg?"));
}

// Names are of any kind, and of long lists a picture shows the beginning.
TEST(GraphFormats, NamesAreQuotedAndLongListsCut) {
  Diagram diagram;
  diagram.title = "<a> & \"b\\c\"";
  Diagram::Node node{"n<\x01", "folder", Diagram::State::Folder, "20 files"};
  for (int i = 0; i < 20; ++i) node.files.push_back("f" + std::to_string(i));
  diagram.nodes = {node};
  const std::string svg = asSvg(diagram);
  EXPECT_THAT(svg, HasSubstr(">&lt;a&gt; &amp; &quot;b\\c&quot;</text>"));
  EXPECT_THAT(svg, HasSubstr(">n&lt; </text>"));
  EXPECT_THAT(svg, HasSubstr(">... 10 more</text>"));
  EXPECT_THAT(asDot(diagram), HasSubstr("digraph \"<a> & \\\"b\\\\c\\\"\""));
  EXPECT_THAT(asText(diagram, false), HasSubstr("  f7\n  ... 12 more\n"));
  EXPECT_THAT(asText(diagram, true), HasSubstr("  f19\n"));
}

}  // namespace
}  // namespace forgeyard::console
