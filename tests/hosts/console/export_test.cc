// export: files for other build systems and for tools that read sources.

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/hosts/console/console_sandbox.h"
#include "tests/support/places.h"

namespace forgeyard::console {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

// A build system that is to do the same as ours.
struct OtherBuild {
  const char* name;  // of the export
  const char* file;
  Lines command;
  const char* idle;  // what it says when there is nothing to do
};
const OtherBuild kOtherBuilds[] = {{"ninja", "build.ninja", {"ninja"}, "no work to do"},
                                   {"make", "Makefile", {"make"}, "Nothing to be done"}};

class Export : public ConsoleSandbox {
 protected:
  void makeSample(const std::string& name) const {
    fs::copy(places::samples() + "/" + name, directory(), fs::copy_options::recursive);
    e2e::Start making = start({});
    making.environment.push_back("FORGEYARD=" + making.command.front());
    making.command = {path("make-project.sh")};
    EXPECT_EQ(e2e::RunningProgram(making).finish().exitCode, 0);
  }
  Outcome build(const OtherBuild& other) const {
    return run(other.command.front(), Lines(other.command.begin() + 1, other.command.end()));
  }
  std::string mustBuild(const OtherBuild& other) const {
    const Outcome outcome = build(other);
    EXPECT_EQ(outcome.exitCode, 0) << other.name << outcome.output << outcome.errors;
    return outcome.output;
  }
  // How often the other build runs the compiler.
  static int compilations(const std::string& output) {
    int found = 0;
    for (const char* mark : {"compile: ", " -MD -MF "}) {
      for (std::size_t at = output.find(mark); at != output.npos; at = output.find(mark, at + 1)) ++found;
    }
    return found;
  }
  std::string refusedExport(const std::string& kind) const {
    const Outcome outcome = forgeyard({"export", kind});
    EXPECT_EQ(outcome.exitCode, 2);
    return outcome.errors;
  }
  // Makes all that was built go.
  void forget() const {
    for (const char* made : {"out", "obj", ".ninja_log", ".ninja_deps"}) fs::remove_all(path(made));
  }
};

TEST_F(Export, HelloIsBuiltByOthersAndFollowsItsHeaders) {
  makeSample("hello");
  for (const OtherBuild& other : kOtherBuilds) {
    forget();
    must({"export", other.name});
    mustBuild(other);
    EXPECT_THAT(run(path("out/native/hello")).output, HasSubstr("4763 checks passed, 0 failed\n"))
        << other.name;
    EXPECT_THAT(mustBuild(other), HasSubstr(other.idle));
    touch("text tools/table.h");
    // ninja writes over its line in a terminal alone.
    Lines verbose = other.command;
    if (*other.name == 'n') verbose.emplace_back("-v");
    EXPECT_EQ(compilations(run(verbose.front(), Lines(verbose.begin() + 1, verbose.end())).output), 4);
    EXPECT_THAT(mustBuild(other), HasSubstr(other.idle));
    touch("src/roman.c");
    mustBuild(other);
    fs::remove(path("obj/native/roman.obj"));
    EXPECT_THAT(mustBuild(other), Not(HasSubstr(other.idle)));
  }
  // Objects of ours come without lists of headers for make.
  forget();
  must({"build"});
  EXPECT_EQ(compilations(mustBuild(kOtherBuilds[1])), 12);
  run("make", {"clean"});
  EXPECT_TRUE(fs::is_empty(path("obj/native")));
}

TEST_F(Export, RomIsTheSameToTheLastByte) {
  makeSample("rom");
  for (const auto& [configuration, file] : {std::pair<std::string, std::string>{"executable", "monitor.cpe"},
                                            {"binary", "monitor.bin"},
                                            {"srecord", "monitor.sre"}}) {
    must({"-c", configuration, "build"});
    const fs::path place = fs::path("out") / configuration;
    const std::string program = place / file;
    const std::string expected = content(program);
    const std::string symbols = content((place / "monitor.sym").string());
    for (const OtherBuild& other : kOtherBuilds) {
      forget();
      must({"-c", configuration, "export", other.name});
      mustBuild(other);
      EXPECT_TRUE(content(program) == expected) << configuration << " " << other.name;
      EXPECT_EQ(content((place / "monitor.sym").string()), symbols);
      EXPECT_THAT(mustBuild(other), HasSubstr(other.idle));
      touch("monitor.lk");
      EXPECT_THAT(mustBuild(other), Not(HasSubstr(other.idle)));
    }
  }
}

TEST_F(Export, NamesAreQuotedAsEachFormatDemands) {
  setDirectory("the dir/p q");
  std::string declarations;
  std::string sum = "0";
  int count = 0;
  Lines headers;
  for (const std::string name :
       {"a b", "c$d", "e#f", "k[l", "m%n", "-q", "r@s", "!t", "{v}", "y,z", "\xC3\xB6", "$(x"}) {
    const std::string function = "f" + std::to_string(++count);
    headers.push_back("in c/h " + name + ".h");
    put(headers.back(), "#define H 1\n");
    // A macro of ours begins like that, and can't be in a name that we build.
    if (name == "$(x") continue;
    put("in c/" + name + ".c",
        std::string("#include \"h ").append(name).append(".h\"\nint ").append(function) +
            "(void) { return H; }\n");
    declarations.append("int ").append(function).append("(void);\n");
    sum.append(" + ").append(function).append("()");
  }
  put("main.c",
      "#include <stdio.h>\n" + declarations + "int main(void) { printf(\"%d\" TEXT, " + sum + "); }\n");
  must({"import", "."});
  must({"set", "compile", "DefineMacros=\"TEXT=\\\" a$b #c\\\"\""});
  must({"config", "set", "OutputDirectory=my out", "IntermediateDirectory=my obj"});
  for (const OtherBuild& other : kOtherBuilds) {
    fs::remove_all(path("my obj"));
    must({"export", other.name});
    mustBuild(other);
    EXPECT_EQ(run(path("my out/p q")).output, "11 a$b #c");
    EXPECT_THAT(mustBuild(other), HasSubstr(other.idle));
    for (const std::string& header : headers) {
      touch(header);
      EXPECT_EQ(mustBuild(other).find(other.idle) == std::string::npos, header != "in c/h $(x.h") << header;
    }
  }
}

TEST_F(Export, NinjaCompilesEachTimeWhatItCantRemember) {
  put("it's.c", "int main(void) { return 0; }\n");
  must({"import", "."});
  EXPECT_THAT(must({"export", "ninja"}).errors, HasSubstr("compiled each time: it's.c\n"));
  for (int i = 0; i < 2; ++i) EXPECT_THAT(mustBuild(kOtherBuilds[0]), HasSubstr("compile: it's.c"));
}

TEST_F(Export, OrderAndCommandsOfOnesOwnStay) {
  // The generator makes a header besides, which no rule names; "note" makes nothing at all.
  put("make.sh",
      "#!/bin/sh\nmkdir -p gen && echo 'int made(void) { return 42; }' > gen/made.c && "
      "echo 'int made(void);' > gen/made.h\n");
  fs::permissions(path("make.sh"), fs::perms::owner_all);
  put("list.txt", "one");
  put("main.c", "#include \"gen/made.h\"\nint main(void) { return made(); }\n");
  must({"new", "p.nqp"});
  for (const char* folder : {"lists", "src"}) must({"folder", "add", folder});
  must({"file", "add", "--folder", "lists", "list.txt"});
  must({"file", "add", "--folder", "src", "main.c"});
  for (const char* tool : {"generate", "link", "note"}) must({"component", "add", "cmdline", tool});
  must({"component", "add", "cc", "compile"});
  const std::pair<const char*, const char*> connections[] = {{"lists", "generate"},
                                                             {"generate", "compile"},
                                                             {"src", "compile"},
                                                             {"compile", "link"},
                                                             {"lists", "note"}};
  for (const auto& [from, to] : connections) must({"connect", from, to});
  must({"config", "set", "Target=native", "OutputDirectory=out", "IntermediateDirectory=obj",
        "UpdateFileDependencies=yes"});
  must({"set", "generate", "Input=.txt", "Output=made.c", "CommandOutDir=gen", "RunOnce=yes",
        "Command=./make.sh"});
  must({"set", "note", "Input=.txt", "Output=", "Command=sh -c \"echo noted 'a  $$ b' >> out/notes\""});
  must({"set", "link", "Input=.obj", "Output=prog", "CommandOutDir=$(COutDir)", "RunOnce=yes",
        "FileSeparator=\" \"", "Command=gcc -o \"$(OutDir)prog\" \"$(FileFullPathList)\""});
  for (const OtherBuild& other : kOtherBuilds) {
    forget();
    fs::remove_all(path("gen"));
    must({"export", other.name});
    mustBuild(other);
    EXPECT_EQ(run(path("out/prog")).exitCode, 42) << other.name;
    mustBuild(other);
    EXPECT_THAT(content("out/notes"), testing::StrEq("noted a  $$ b\nnoted a  $$ b\n"));
  }
}

TEST_F(Export, ClangTidyUsesTheDatabase) {
  const bool missing = std::system("command -v clang-tidy > /dev/null") != 0;
  if (missing && !std::getenv("CI")) GTEST_SKIP() << "no clang-tidy";
  makeSample("hello");
  put("src/fault.c",
      "#include \"wrap.h\"\n#include \"numbers.h\"\nint fault(int x) { if (x = 1) return 2; return x; }\n");
  must({"file", "add", "src/fault.c"});
  must({"export", "compile-commands"});
  const Outcome good =
      run("clang-tidy", {"-p", directory(), "--checks=-*,bugprone-*,clang-diagnostic-*", path("src/page.c")});
  EXPECT_EQ(good.exitCode, 0) << good.output;
  EXPECT_THAT(good.output, Not(HasSubstr("error:")));
  const Outcome bad = run(
      "clang-tidy", {"-p", directory(), "--checks=-*,bugprone-*,clang-diagnostic-*", path("src/fault.c")});
  EXPECT_THAT(bad.output, HasSubstr("[clang-diagnostic-parentheses]"));
  EXPECT_THAT(bad.output, Not(HasSubstr("file not found")));
}

TEST_F(Export, DatabaseHasTheRealCompilerOfTheConfiguration) {
  makeSample("hello");
  const json native = json::parse(shown({"export", "compile-commands", "-o", "-"}));
  const json mips = json::parse(shown({"-c", "mips", "export", "compile-commands", "-o", "-"}));
  ASSERT_EQ(native.size(), 12U);
  EXPECT_EQ(native[3]["directory"], directory());
  EXPECT_EQ(native[3]["file"], path("src/main.c"));
  EXPECT_THAT(native[3]["arguments"].get<Lines>(),
              ElementsAre("gcc", "-c", "-Iinc", "-Itext tools", "-O2", "-Wall", "-std=c99",
                          path("src/main.c"), "-o" + path("obj/native/main.obj")));
  EXPECT_EQ(mips[3]["arguments"][0], "mipsel-linux-gnu-gcc");
  // What went out comes back.
  must({"export", "compile-commands"});
  must({"import", "--compile-commands", "compile_commands.json", "-p", "back.nqp"});
  must({"-p", "back.nqp", "build"});
  EXPECT_THAT(run(path("out/back")).output, HasSubstr("4763 checks passed, 0 failed\n"));
}

TEST_F(Export, OnlyWhatItMadeIsReplacedUnasked) {
  makeSample("hello");
  const std::pair<const char*, const char*> kinds[] = {
      {"compile-commands", "compile_commands.json"}, {"ninja", "build.ninja"}, {"make", "Makefile"}};
  for (const auto& [kind, file] : kinds) {
    put(file, "[\n{\"mine\": 1}\n]\n");
    EXPECT_THAT(refusedExport(kind), HasSubstr(std::string(file) + " was left as it is"));
    EXPECT_EQ(content(file), "[\n{\"mine\": 1}\n]\n");
    must({"-y", "export", kind});
    const std::string made = content(file);
    const auto time = fs::last_write_time(path(file));
    must({"export", kind});
    EXPECT_EQ(fs::last_write_time(path(file)), time) << "the same text again is no change";
    must({"-c", "mips", "export", kind});
    EXPECT_NE(content(file), made);
    fs::create_directory(path("dir"));
    EXPECT_THAT(forgeyard({"export", kind, "-o", "no/such/dir"}).errors, HasSubstr("can't be written: "));
  }
}

TEST_F(Export, WhatNoRuleCanSayIsRefusedByName) {
  makeToolProject({"a.c", "b.c"}, "cp $(FileFullPath) $(OutDir)");
  const struct {
    Lines change;
    const char* told;
  } cases[] = {
      {{"set", "tool", "Output=.c", "CommandOutDir=$(WorkDir)"}, "tool rewrites a.c"},
      {{"set", "tool", "Output=.o", "CommandOutDir=out", "RunOnce=no",
        "Command=gnu-as as /unknown $(FileFullPath),x.o"},
       "The component tool can't be exported: gnu-as: unknown switch"},
      {{"set", "tool", "Command=gnu-as as /g /w $(FileFullPath),$(OutDir)x.o", "Output=same"}, ""},
  };
  for (const auto& [change, told] : cases) {
    must(change);
    for (const OtherBuild& other : kOtherBuilds) {
      const Outcome outcome = forgeyard({"export", other.name});
      EXPECT_EQ(outcome.exitCode, *told ? 2 : 0) << outcome.errors;
      EXPECT_THAT(outcome.errors, HasSubstr(told));
      EXPECT_EQ(exists(other.file), !*told);
    }
  }
  EXPECT_THAT(forgeyard({"export", "compile-commands"}).errors, HasSubstr("compiles nothing"));
  must({"config", "set", "Target=nowhere"});
  must({"component", "add", "cc", "compile"});
  must({"connect", "src", "compile"});
  EXPECT_THAT(forgeyard({"export", "ninja"}).errors, HasSubstr("has no compiler setting registry entry"));
}

}  // namespace
}  // namespace forgeyard::console
