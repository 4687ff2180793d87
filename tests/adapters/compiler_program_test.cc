#include <signal.h>
#include <unistd.h>

#include "platform/threads/named_event.h"
#include "tests/adapters/component_reader.h"
#include "tests/adapters/program_test.h"
#include "tests/support/places.h"

namespace forgeyard {
namespace {

// Freestanding, so that only the headers of the test are read.
const std::string CC = "gnu-cc gcc -nostdinc -c ";

class CompilerProgramTest : public ProgramTest {
 protected:
  // The names that the component gets, with blanks where no-break spaces stand for them.
  std::vector<std::string> dependencies(const std::string& file) {
    std::vector<std::string> names = readAsComponent(tree_.content(file));
    for (std::string& name : names) {
      for (std::size_t at; (at = name.find("\xC2\xA0")) != name.npos;) name.replace(at, 2, " ");
    }
    return names;
  }
  std::vector<std::string> in(std::vector<std::string> texts) const {
    for (std::string& text : texts) text = tree_.in(text);
    return texts;
  }
};

TEST_F(CompilerProgramTest, CompilesAndLaysTheDependencyFile) {
  tree_.put("inc/a.h", "#define A 0\n");
  tree_.put("main.c", "#include \"a.h\"\nint main(void) { return A; }\n");
  tree_.put("main.d", "of an older build");
  EXPECT_EQ(run(CC + R"(-g -I~\inc -MD ~\main.c -o~\main.obj )"), (Result{0, ""}));
  EXPECT_EQ(tree_.content("main.d"), tree_.in("main.obj: main.c %/inc/a.h\r\n"));
  EXPECT_TRUE(tree_.has("main.obj"));
  EXPECT_EQ(joined(tree_.names("tmp")), "");
  EXPECT_EQ(joined(tree_.names(".")), "inc main.c main.d main.obj run tmp");
}

TEST_F(CompilerProgramTest, CarriesDifficultNames) {
  const std::vector<std::string> headers = {
      "h#1.h", "a$b.h", "x y.h", "größe.h", "in c/日.h", "long/" + std::string(60, 'n') + ".h", "q'q.h"};
  std::string source;
  for (const std::string& header : headers) {
    tree_.put(header, "");
    source += "#include \"" + header + "\"\n";
  }
  tree_.put("sub/main.c", "#include \"../h#1.h\"\n#include \"./../sub/own.h\"\n" + source);
  tree_.put("sub/own.h", "");
  ASSERT_EQ(run(CC + R"(-I. -MD ~\sub\main.c -o~\main.obj )"), (Result{0, ""}));
  std::vector<std::string> expected = {tree_ / "h#1.h", tree_ / "sub/own.h"};
  for (const std::string& header : headers) expected.push_back(tree_ / header);
  std::vector<std::string> names = dependencies("sub/main.d");
  // The same header by two ways is named twice.
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  std::sort(expected.begin(), expected.end());
  expected.erase(std::unique(expected.begin(), expected.end()), expected.end());
  EXPECT_EQ(names, expected);
}

TEST_F(CompilerProgramTest, AHeaderThatCannotBeNamedRebuildsForEver) {
  const struct {
    const char* name;
    std::string directory;
    std::string word;
  } cases[] = {
      {"line end", "d\nx", "/dev/null/list-not-understood/"},
      {"backslash", "d\\x", "/dev/null/name-not-carried/"},
      {"length", std::string(130, 'a') + "/" + std::string(130, 'b'), "/dev/null/name-not-carried/"},
  };
  for (const auto& [name, directory, word] : cases) {
    tree_.put(directory + "/n.h", "");
    tree_.put("main.c", "#include \"n.h\"\n");
    // A command can't name such a directory, but a compiler can find it.
    tree_.put("gcc.args", "-I\"" + directory + "\"");
    putScript("cc", "exec gcc \"-I$DIRECTORY\" \"$@\"");
    const ScopedVariable variable("DIRECTORY", tree_ / directory);
    for (const std::string phony : {"", "-MP "}) {
      ASSERT_EQ(run(R"(gnu-cc ~\cc -nostdinc -c -MD )" + phony + R"(~\main.c -o~\main.obj )"),
                (Result{0, ""}));
      const std::vector<std::string> names = dependencies("main.d");
      ASSERT_FALSE(names.empty()) << name;
      EXPECT_TRUE(names.back().starts_with(word)) << name << ": " << names.back();
    }
  }
}

TEST_F(CompilerProgramTest, LeavesNoDependencyFileThatIsNotTrue) {
  const struct {
    const char* name;
    const char* file;
    const char* content;
    int exitCode;
  } cases[] = {
      {"syntax error", "a.c", "int f( { }\n", 1},
      {"missing header", "a.c", "#include \"none.h\"\n", 1},
      {"assembler source", "a.s", "  .text\n", 0},
      {"preprocessed source", "a.i", "int a;\n", 0},
  };
  for (const auto& [name, file, content, exitCode] : cases) {
    tree_.put(file, content);
    tree_.put("a.d", "of an older build");
    EXPECT_EQ(run(CC + "-MD ~\\" + file + R"( -o~\a.obj )").exitCode, exitCode) << name;
    EXPECT_FALSE(tree_.has("a.d")) << name;
    EXPECT_EQ(tree_.has("a.obj"), exitCode == 0) << name;
    EXPECT_EQ(joined(tree_.names("tmp")), "") << name;
    std::filesystem::remove(tree_ / file);
    std::filesystem::remove(tree_ / "a.obj");
  }
}

TEST_F(CompilerProgramTest, WithoutMdNothingIsTouched) {
  tree_.put("a.c", "int a;\n");
  tree_.put("a.d", "something of the user's");
  EXPECT_EQ(run(CC + R"(~\a.c -o~\a.obj )"), (Result{0, ""}));
  EXPECT_EQ(tree_.content("a.d"), "something of the user's");
  EXPECT_TRUE(tree_.has("a.obj"));
}

TEST_F(CompilerProgramTest, TheUsersOwnDependencyOptionsHold) {
  tree_.put("x.h", "");
  tree_.put("a.c", "#include \"x.h\"\n");
  EXPECT_EQ(run(CC + R"(-MD -MT goal -MF~\own.d -MD -MP ~\a.c -o~\a.obj )"), (Result{0, ""}));
  EXPECT_EQ(tree_.content("own.d"), tree_.in("goal: %/a.c %/x.h\n%/x.h:\n"));
  EXPECT_EQ(tree_.content("a.d"), tree_.in("a.obj: a.c %/x.h\r\n"));
}

TEST_F(CompilerProgramTest, BuildsAProjectInADirectoryWithBlanks) {
  tree_.put("My Files/inc/x y.h", "");
  tree_.put("My Files/a b.c", "#include <x y.h>\n");
  tree_.makeDirectory("My Files/out");
  EXPECT_EQ(run(CC + R"(-I~\My Files\inc -MD ~\My Files\a b.c -o~\My Files\out\a b.obj )"), (Result{0, ""}));
  EXPECT_TRUE(tree_.has("My Files/out/a b.obj"));
  EXPECT_EQ(dependencies("My Files/a b.d"), in({"%/My Files/inc/x y.h"}));
}

TEST_F(CompilerProgramTest, NamesFollowTheProjectsSpelling) {
  tree_.put("real/inc/x.h", "");
  tree_.put("real/a.c", "#include \"x.h\"\n");
  std::filesystem::create_directory_symlink(tree_ / "real", tree_ / "link");
  const ScopedVariable pwd("PWD", tree_ / "link");
  EXPECT_EQ(run(CC + R"(-Iinc -MD a.c -oa.obj )", tree_ / "real"), (Result{0, ""}));
  EXPECT_EQ(dependencies("real/a.d"), in({"%/link/inc/x.h"}));

  tree_.put("registry", tree_.in("[HKEY_CURRENT_USER\\Software\\Korvel\\Build Tool\\Drives]\nP:=%/real\n"));
  EXPECT_EQ(run(CC + R"(-IP:\INC -MD P:\A.C -oP:\a.obj )"), (Result{0, ""}));
  EXPECT_EQ(dependencies("real/A.d"), (std::vector<std::string>{"P:/inc/x.h"}));
}

TEST_F(CompilerProgramTest, ADirectoryThatCannotBeWrittenToIsReasonToWarnButNotToFail) {
  tree_.put("a.c", "int a;\n");
  tree_.makeDirectory("out");
  namespace fs = std::filesystem;
  for (const char* open : {"out", "tmp"}) fs::permissions(tree_ / open, fs::perms(0777));
  fs::permissions(tree_.path(), fs::perms(0555));
  std::vector<std::string> words = {places::programs() + "/gnu-cc", "gcc", "-c", "-MD", tree_.model("a.c"),
                                    "-o" + tree_.model("out/a.obj")};
  // The superuser may write anywhere.
  const std::vector<std::string> nobody = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups",
                                           "--"};
  if (::geteuid() == 0) words.insert(words.begin(), nobody.begin(), nobody.end());
  EXPECT_EQ(
      runTool(words),
      (Result{0, "gnu-cc: warning: cannot write " + (tree_ / "a.d") +
                     ": Permission denied; when a file that a.c includes changes, nobody will know\n"}));
  EXPECT_TRUE(tree_.has("out/a.obj"));
  EXPECT_FALSE(tree_.has("a.d"));
  fs::permissions(tree_.path(), fs::perms(0755));
}

TEST_F(CompilerProgramTest, HandsOnHowTheDriverEnded) {
  tree_.put("a.c", "int a;\n");
  putScript("crash", "kill -SEGV $$");
  putScript("fail", "exit 33");
  const std::string crash = tree_ / "crash";
  for (const std::string flag : {"", "-MD "}) {
    EXPECT_EQ(run(R"(gnu-cc ~\fail )" + flag + R"(~\a.c -o~\a.obj )"), (Result{33, ""}));
    const Result killed = run(R"(gnu-cc ~\crash )" + flag + R"(~\a.c -o~\a.obj )");
    EXPECT_EQ(killed.exitCode, 139);
    EXPECT_NE(killed.output.find("was killed by signal 11 (Segmentation fault)"), std::string::npos)
        << killed.output;
    EXPECT_EQ(run("gnu-cc no-such-cc " + flag + R"(~\a.c -o~\a.obj )"),
              (Result{127, "gnu-cc: cannot start \"no-such-cc\": not found on PATH\n"}));
  }
}

TEST_F(CompilerProgramTest, SpeaksPlainEnglishAndKeepsFileNames) {
  tree_.put("gerät.c", "int f(void) { return x; }\n");
  const ScopedVariable locale("LC_ALL", "C.UTF-8");
  const Result result = run(CC + R"(~\gerät.c -o~\a.obj )");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.output.find(tree_.in("%/gerät.c:1:22: error: 'x' undeclared")), std::string::npos)
      << result.output;
}

TEST_F(CompilerProgramTest, AStopLeavesNothingBehind) {
  tree_.put("a.c", "int a;\n");
  putScript("slow", "echo ready\nexec sleep 1000");
  const auto event = NamedEvent::create("StopEvent");
  Spawned compile(tree_.in(R"(gnu-cc ~\slow -MD ~\a.c -o~\a.obj )"));
  ASSERT_EQ(compile.line(), "ready");
  event->set();
  EXPECT_EQ(compile.output(), "");
  EXPECT_EQ(compile.wait(), 143);
  EXPECT_EQ(joined(tree_.names("tmp")), "");
  EXPECT_FALSE(tree_.has("a.d"));
}

TEST_F(CompilerProgramTest, AKillLeavesNothingBehind) {
  tree_.put("a.c", "int a;\n");
  putScript("slow", "echo $PPID\nexec sleep 1000");
  Spawned compile(tree_.in(R"(gnu-cc ~\slow -MD ~\a.c -o~\a.obj )"));
  ASSERT_EQ(::kill(std::stoi(compile.line()), SIGKILL), 0);
  EXPECT_EQ(compile.wait(), 137);
  EXPECT_EQ(joined(tree_.names("tmp")), "");
  EXPECT_EQ(joined(tree_.names(".")), "a.c run slow tmp");
}

TEST_F(CompilerProgramTest, LaysTheDependencyFileBehindALauncher) {
  tree_.put("a.h", "");
  tree_.put("a.c", "#include \"a.h\"\n");
  putScript("ccache", "shift\nexec \"$@\"");
  EXPECT_EQ(run(R"(gnu-cc ~\ccache --some=thing gcc -nostdinc -c -MD ~\a.c -o~\a.obj )"), (Result{0, ""}));
  EXPECT_EQ(tree_.content("a.d"), tree_.in("a.obj: a.c %/a.h\r\n"));
}

TEST_F(CompilerProgramTest, FailsWhereDependenciesWouldBeLost) {
  tree_.put("a.c", "");
  putScript("unknown", "exec \"$@\"");
  const Result result = run(R"(gnu-cc ~\unknown gcc -c -MD ~\a.c -o~\a.obj )");
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_TRUE(
      result.output.starts_with("gnu-cc: -MD is for one source, and these would be several: \"gcc\" \""))
      << result.output;
  EXPECT_FALSE(tree_.has("a.obj"));
}

TEST_F(CompilerProgramTest, LinksMoreObjectsThanTheSystemTakesArguments) {
  const std::string object = std::string(200, 'o') + ".obj";
  tree_.put("a.c", "");
  ASSERT_EQ(run(CC + "~\\a.c -o~\\" + object), (Result{0, ""}));
  std::string command = R"(gnu-cc gcc -nostdlib -r -o~\all.obj)";
  for (int i = 0; i < 12'000; ++i) command += " ~\\" + object;
  EXPECT_EQ(spawn(optionsForInput(tree_.in(command))), (Result{0, ""}));
  EXPECT_TRUE(tree_.has("all.obj"));
}

TEST_F(CompilerProgramTest, SaysHowItIsCalled) {
  EXPECT_EQ(run("gnu-cc").exitCode, 2);
  EXPECT_TRUE(run("gnu-cc --help").output.starts_with("usage: gnu-cc DRIVER"));
  EXPECT_TRUE(run("gnu-cc --version").output.starts_with("gnu-cc "));
}

}  // namespace
}  // namespace forgeyard
