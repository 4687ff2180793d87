// import --compile-commands: a project of a compilation database.

#include <nlohmann/json.hpp>

#include "tests/hosts/console/console_sandbox.h"
#include "workbench/import/compiler_names.h"
#include "workbench/import/compiler_settings.h"

namespace forgeyard::console {

using namespace workbench;
namespace {

using nlohmann::json;
using testing::ElementsAreArray;
using testing::HasSubstr;

TEST(ShellCommand, IsCutAsAShellDoes) {
  const struct {
    const char* command;
    Lines words;
  } rows[] = {
      {"", {}},
      {"  cc\t-c \n a.c ", {"cc", "-c", "a.c"}},
      {R"(-DA="a b" 'c "d' e\ f "")", {"-DA=a b", "c \"d", "e f", ""}},
      {R"("a\"b\\c\d" 'a\b' \"x\")", {"a\"b\\c\\d", "a\\b", "\"x\""}},
      {R"(-DTEXT=\"1.2\" '-DU="x;y"')", {"-DTEXT=\"1.2\"", "-DU=\"x;y\""}},
      {"a\\\nb \"c\\\nd", {"ab", "cd"}},
  };
  for (const auto& [command, words] : rows) EXPECT_THAT(splitShellCommand(command), ElementsAreArray(words));
}

TEST(CompilerSettings, OptionsBecomeSettings) {
  const struct {
    const char* command;
    const char* settings;  // "NAME=VALUE ..."
    const char* notes;     // a part of them; "" for none
  } rows[] = {
      {"gcc -c -o x.o -MD -MF x.d -MT x /d/a.c", "", ""},
      {"ccache /usr/bin/g++-12 -c a.c -Iinc -I ../up -I/abs -Iinc", "IncludePath=<d/inc>;<up>;<abs>", ""},
      {"gcc -DA -D B=1 '-DC=\"x y\"' -DA=2 -UX -DX -UY",
       R"(DefineMacros=B=1;"C=\"x y\"";A=2;X|UndefineMacros=Y)", ""},
      {"gcc -O2 -g -O3 -Wall -Wextra -Wno-unused -Wunused -Wno-extra",
       "OptimisationLevel=3|DebugInfo=yes|WarningLevel=2|EnableSpecificWarnings=unused|"
       "DisableSpecificWarnings=extra",
       ""},
      {"gcc -O -g -g0 -w -Wall", "OptimisationLevel=1|WarningLevel=0", ""},
      {"gcc -Os -g3 -std=c99 -pthread -x c --param a=1", "Options=-g3;-std=c99;-pthread;-x;c;--param;a=1;-Os",
       ""},
      {"gcc -fPIC -fno-x -fPIC -m32 -ansi -save-temps",
       "AnsiCompliance=yes|SaveIntFiles=yes|SpecificOptimisations=no-x;PIC|TargetCPUOptions=32", ""},
      {"gcc -isystem third -includepre.h -Wp,-DX,-DY -Wa,-adh -Wl,-O1 -L. -lm",
       "PreprocessorOptions=-DX,-DY|AssemblerOptions=-adh|Options=-isystem;<d/third>;-include;<d/pre.h>", ""},
      {"gcc '-DA=1;2' '-I/a;b' '-Dx=$(OutDir)' -DOK", "DefineMacros=OK", "A=1;2"},
      {"gcc -c a.c stray -o", "", "stray"},
  };
  for (const auto& [command, settings, expected] : rows) {
    CompileCommand read{"/d", "/d/a.c", "", splitShellCommand(command)};
    Notes notes;
    const auto spelled = [](const std::string& path) { return "<" + path.substr(1) + ">"; };
    std::string text;
    for (const Assignment& setting : readCompilerOptions(read, spelled, notes).settings)
      text.append(text.empty() ? "" : "|").append(setting.property).append("=").append(setting.value);
    EXPECT_EQ(text, settings) << command;
    std::string told;
    for (const std::string& line : notes.lines()) told += line;
    EXPECT_THAT(told, HasSubstr(expected)) << command;
    EXPECT_EQ(told.empty(), *expected == '\0') << command << told;
  }
}

TEST(CompilerSettings, DriversAreKnownByTheirNames) {
  for (const char* name : {"gcc", "/usr/bin/g++-12.2", "mipsel-linux-gnu-gcc", "clang++", "cc", "x-clang-14"})
    EXPECT_TRUE(isCompilerDriver(name)) << name;
  for (const char* name : {"nvcc", "rustc", "cl.exe", "gccgo"}) EXPECT_FALSE(isCompilerDriver(name)) << name;
  EXPECT_EQ(driverForC("/opt/bin/mipsel-linux-gnu-g++-12"), "mipsel-linux-gnu-gcc");
}

class ImportDatabase : public ConsoleSandbox {
 protected:
  void putDatabase(const json& entries) const { put("build/db.json", entries.dump()); }
  json entry(const std::string& file, const Lines& arguments) const {
    return {{"directory", path("build")}, {"file", file}, {"arguments", arguments}};
  }
  Outcome import(Lines more = {}) const {
    more.insert(more.begin(), {"import", "--compile-commands", "build/db.json"});
    return must(more);
  }
};

TEST_F(ImportDatabase, BuildsWhatItsBuildSystemBuilds) {
  put("CMakeLists.txt",
      "cmake_minimum_required(VERSION 3.20)\nproject(demo C CXX)\n"
      "add_library(core STATIC src/core.cc src/util.c)\n"
      "target_include_directories(core PUBLIC \"src/my inc\")\n"
      "target_include_directories(core SYSTEM PUBLIC third)\n"
      "target_compile_definitions(core PUBLIC \"GREETING=\\\"hello there\\\"\" NUM=3)\n"
      "target_compile_features(core PUBLIC cxx_std_17)\n"
      "add_executable(app src/main.cc)\ntarget_link_libraries(app core)\n"
      "add_executable(check test/main.cc test/util.c)\ntarget_link_libraries(check core)\n"
      "target_compile_options(check PRIVATE -O2 -include ${CMAKE_SOURCE_DIR}/test/pre.h)\n");
  put("src/my inc/core.h", "#include <string>\nstd::string greet();\n");
  put("third/third.h", "#define THIRD 40\n");
  put("test/pre.h", "#define PRE 5\n");
  put("src/core.cc",
      "#include \"core.h\"\n#include <third.h>\n#include <string_view>\nextern \"C\" int util(int);\n"
      "std::string greet() { std::string_view v = GREETING; return std::string(v) + "
      "std::to_string(util(NUM)); }\n");
  put("src/util.c", "#include \"third.h\"\nint util(int x) { return x * 2 + THIRD; }\n");
  put("src/main.cc", "#include <iostream>\n#include \"core.h\"\nint main() { std::cout << greet(); }\n");
  put("test/util.c", "int checked(void) { return PRE; }\n");
  put("test/main.cc",
      "#include \"core.h\"\nextern \"C\" int checked();\nint main() { return greet().empty() ? 1 : "
      "checked(); }\n");
  const Outcome configured =
      run("cmake", {"-S", directory(), "-B", path("build"), "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON"});
  ASSERT_EQ(configured.exitCode, 0) << configured.output << configured.errors;
  must({"import", "--compile-commands", "build/compile_commands.json"});
  EXPECT_GT(toolRuns(must({"build"})), 0);
  EXPECT_EQ(run(path("out/app")).output, "hello there46");
  EXPECT_EQ(run(path("out/check")).exitCode, 5);
  EXPECT_EQ(toolRuns(must({"build"})), 0);
  touch("third/third.h");
  EXPECT_THAT(compiled(must({"build"})), ElementsAreArray({"core", "util"}));
}

TEST_F(ImportDatabase, EntriesOfEveryFormAreTaken) {
  put("main.c", "#include <h.h>\nint other(void);\nint main(void) { return H + other(); }\n");
  put("sub/other.c", "int other(void) { return OTHER; }\n");
  put("sub/h.h", "#define H 1\n");
  put("build/options", "-I../sub \"-DTEXT=a b\"\n");
  json list = {{{"directory", "."}, {"file", "../main.c"}, {"command", "cc @options -c ../main.c"}}};
  list.push_back(entry("../sub/other.c", {"cc", "-DOTHER=20", "-c", "../sub/other.c"}));
  list.push_back(entry("../sub/other.c", {"cc", "-DOTHER=30", "-c", "../sub/other.c"}));
  list.push_back(entry("../gpu.cu", {"nvcc", "-c", "../gpu.cu"}));
  list.push_back(entry("../a.c", {"armcc", "-c", "../a.c"}));
  putDatabase(list);
  const std::string told = import().errors;
  EXPECT_THAT(told, HasSubstr("of which the first are taken: sub/other.c"));
  EXPECT_THAT(told, HasSubstr("no source of a C or C++ compiler: gpu.cu"));
  EXPECT_THAT(told, HasSubstr("no C compiler's options: a.c"));
  EXPECT_EQ(shown({"file", "list"}), "project\n  main.c\nsub\n  sub/other.c\n  sub/h.h\n");
  EXPECT_EQ(shown({"get", "compile", "DefineMacros"}), "\"TEXT=a b\"\n");
  must({"build"});
  EXPECT_EQ(run(path("out/project")).exitCode, 21);
}

TEST_F(ImportDatabase, TargetIsThatOfTheCompiler) {
  put("a.c", "int a;\n");
  putDatabase(json::array({entry("../a.c", {"mipsel-linux-gnu-gcc", "-c", "../a.c"})}));
  EXPECT_THAT(import().errors, HasSubstr("a library is made"));
  EXPECT_THAT(shown({"config", "list"}), HasSubstr("Target=mips "));
  EXPECT_THAT(shown({"get", "archive", "Command"}), HasSubstr("mipsel-linux-gnu-ar rcs"));
  putDatabase(json::array({entry("../a.c", {"avr-gcc", "-c", "../a.c"})}));
  EXPECT_THAT(import({"-y"}).errors, HasSubstr("No target has this compiler"));
}

TEST_F(ImportDatabase, WrongOnesAreRefusedByTheirFault) {
  const struct {
    const char* text;
    const char* told;
  } rows[] = {
      {"[{]", "no JSON: byte 3"},
      {"{}", "it holds no list"},
      {"[]", "compiles no source"},
      {"[1]", "entry 1: it is no object"},
      {R"([{"file": "a.c"}])", "neither \"command\" nor \"arguments\""},
      {R"([{"command": "cc a.c"}])", "entry 1: \"file\" is missing"},
      {R"([{"file": "a.c", "arguments": "cc"}])", "\"arguments\" is no list"},
      {R"([{"file": "a.c", "arguments": ["cc", 1]}])", "what is no text"},
      {R"([{"file": 1, "command": "cc"}])", "\"file\" is no text"},
  };
  for (const auto& [text, told] : rows) {
    put("build/db.json", text);
    const Outcome outcome = forgeyard({"import", "--compile-commands", "build/db.json"});
    EXPECT_EQ(outcome.exitCode, 2) << text;
    EXPECT_THAT(outcome.errors, HasSubstr(told)) << text;
    EXPECT_FALSE(exists("project.nqp"));
  }
  EXPECT_THAT(forgeyard({"import", "--compile-commands", "nothing.json"}).errors, HasSubstr("can't be read"));
  EXPECT_THAT(forgeyard({"import", "--compile-commands", "build"}).errors, HasSubstr("is a directory"));
}

}  // namespace
}  // namespace forgeyard::console
