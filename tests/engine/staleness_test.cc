#include "engine/staleness.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/support/memory_files.h"

namespace forgeyard {
namespace {

using Why = Staleness::Why;

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> pieces;
  std::size_t begin = 0;
  while (begin < text.size()) {
    const std::size_t end = std::min(text.find(separator, begin), text.size());
    if (end > begin) pieces.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return pieces;
}

BString inProject(const std::string& name) {
  return BString::fromNarrow("\\p\\" + name);
}

// A disk and a question in words. "a.c a.h | a.o": two files of one age, then a later one; "dir/" is a
// directory. "a.c .\a.h; b.c": an input with its automatic dependency, and one without. Names are below \p,
// except dependencies, which are entries as the model stores them.
class Decision {
 public:
  Decision(const std::string& disk, const std::string& inputs, const std::string& outputs) {
    for (const std::string& age : split(disk, '|')) {
      disk_.tick();
      for (const std::string& name : split(age, ' ')) put(name);
    }
    for (const std::string& input : split(inputs, ';')) {
      std::vector<BString> entries;
      for (const std::string& entry : split(input, ' ')) entries.push_back(BString::fromNarrow(entry));
      names_.push_back(std::move(entries));
    }
    for (const auto& entries : names_) {
      inputs_.push_back({inProject(entries[0].narrow()), {}, std::span(entries).subspan(1)});
    }
    for (const std::string& output : split(outputs, ' ')) outputs_.push_back(inProject(output));
    question.component = u"Tool";
    question.inputs = inputs_;
    question.outputs = outputs_;
  }

  Staleness made() {
    inPlace.clear();
    return staleness(question, times_, inPlace);
  }
  // Moves the list of the dependencies to the manual ones.
  void makeManual() {
    for (StalenessInput& input : inputs_) std::swap(input.manualDependencies, input.automaticDependencies);
  }

  StalenessQuestion question;
  std::vector<InPlaceOutput> inPlace;

 private:
  void put(const std::string& name) {
    if (name.ends_with('/')) {
      disk_.createDirectories(inProject(name.substr(0, name.size() - 1)));
    } else {
      disk_.put(inProject(name));
    }
  }

  MemoryFileSystem disk_;
  FileTimeCache cache_{&disk_};
  DependencyTimes times_{u"\\p", cache_};
  std::vector<std::vector<BString>> names_;
  std::vector<StalenessInput> inputs_;
  std::vector<BString> outputs_;
};

struct Row {
  const char* name;
  const char* disk;
  const char* inputs;
  const char* outputs;
  Why why;
  const char* output = "";  // below \p
  const char* cause = "";
};

void expect(const Row& row, const Staleness& found) {
  const auto full = [](const std::string& name) { return name.empty() ? name : inProject(name).narrow(); };
  EXPECT_EQ(found.why, row.why) << row.name;
  EXPECT_EQ(found.output.narrow(), full(row.output)) << row.name;
  EXPECT_EQ(found.cause.narrow(), full(row.cause)) << row.name;
}

TEST(Staleness, FileTimesDecide) {
  const Row rows[] = {
      {"output later than its source", "a.c | a.o", "a.c", "a.o", Why::UpToDate},
      {"output as old as its source", "a.c a.o", "a.c", "a.o", Why::UpToDate},
      {"source later by the smallest step", "a.o | a.c", "a.c", "a.o", Why::DependencyNewer, "a.o", "a.c"},
      {"source gone", "a.o", "a.c", "a.o", Why::DependencyMissing, "a.o", "a.c"},
      {"source became a directory", "a.c/ | a.o", "a.c", "a.o", Why::DependencyMissing, "a.o", "a.c"},
      {"no outputs", "a.c", "a.c", "", Why::NoOutputs},
      {"output missing", "a.c", "a.c", "a.o", Why::OutputMissing, "a.o"},
      {"second output missing, the first stale", "a.o | a.c", "a.c", "a.o a.d", Why::OutputMissing, "a.d"},
      {"output is a directory", "a.c | a.o/", "a.c", "a.o", Why::OutputUnreadable, "a.o"},
      {"second output older", "a.d | a.c | a.o", "a.c", "a.o a.d", Why::DependencyNewer, "a.d", "a.c"},
      {"header as old as the output", "a.c | a.h a.o", "a.c .\\a.h", "a.o", Why::UpToDate},
      {"header later", "a.c | a.o | a.h", "a.c .\\a.h", "a.o", Why::DependencyNewer, "a.o", "a.h"},
      {"header gone", "a.c | a.o", "a.c .\\a.h", "a.o", Why::DependencyMissing, "a.o", "a.h"},
      {"header gone, source later", "a.o | a.c", "a.c .\\a.h", "a.o", Why::DependencyNewer, "a.o", "a.c"},
      {"header beside a later one that nothing names", "a.c a.h | a.o | b.h", "a.c .\\a.h", "a.o",
       Why::UpToDate},
      {"full name", "a.c | a.o | a.h", "a.c \\p\\a.h", "a.o", Why::DependencyNewer, "a.o", "a.h"},
      {"name by a detour", "a.c | a.o | s/a.h", "a.c .\\t\\..\\s\\a.h", "a.o", Why::DependencyNewer, "a.o",
       "s\\a.h"},
      {"header in other case", "a.c A.H | a.o", "a.c .\\a.h", "a.o", Why::UpToDate},
      {"one run of two inputs", "a.o b.o | prog", "a.o; b.o", "prog", Why::UpToDate},
      {"second of two inputs later", "a.o | prog | b.o", "a.o; b.o", "prog", Why::DependencyNewer, "prog",
       "b.o"},
      {"dependency of the second input", "a.c b.c | lib | b.h", "a.c; b.c .\\b.h", "lib",
       Why::DependencyNewer, "lib", "b.h"},
  };
  for (const Row& row : rows) {
    Decision decision(row.disk, row.inputs, row.outputs);
    expect(row, decision.made());
    EXPECT_TRUE(decision.inPlace.empty()) << row.name;
    decision.makeManual();
    expect(row, decision.made());
  }
}

TEST(Staleness, SomeReasonsNeedNoFileAndTheFirstOfThemCounts) {
  const struct {
    bool all, settings, unknown;
    Why why;
    const char* cause;
  } rows[] = {
      {true, true, true, Why::TaskRunsAll, ""},
      {false, true, true, Why::SettingsChanged, ""},
      {false, false, true, Why::DependenciesUnknown, "a.c"},
      {false, false, false, Why::UpToDate, ""},
  };
  for (const auto& row : rows) {
    Decision decision("a.c | a.o", "a.c", "a.o");
    decision.question.taskRunsAll = row.all;
    decision.question.settingsChanged = row.settings;
    decision.question.dependenciesUnknown = row.unknown;
    expect({"", "", "", "", row.why, "", row.cause}, decision.made());
  }
}

TEST(Staleness, AnOutputThatIsADependencyIsJudgedByItsMarker) {
  const Row rows[] = {
      {"first run", "a.x", "a.x", "a.x", Why::OutputUnreadable, "a.x.Tool.trg"},
      {"marker later", "a.x | a.x.Tool.trg", "a.x", "a.x", Why::UpToDate},
      {"marker as old", "a.x a.x.Tool.trg", "a.x", "a.x", Why::UpToDate},
      {"rewritten since", "a.x.Tool.trg | a.x", "a.x", "a.x", Why::DependencyNewer, "a.x.Tool.trg", "a.x"},
      {"another component's marker", "a.x | a.x.Other.trg", "a.x", "a.x", Why::OutputUnreadable,
       "a.x.Tool.trg"},
      {"in other case", "a.x", "a.x", "A.X", Why::OutputUnreadable, "A.X.Tool.trg"},
      {"a dependency of the input", "a.c b.x", "a.c .\\b.x", "b.x", Why::OutputUnreadable, "b.x.Tool.trg"},
      {"an entry with a dot at its end", "a.c b.x", "a.c .\\b.x\\.", "b.x", Why::OutputUnreadable,
       "b.x.Tool.trg"},
      {"the second input of one run", "a.x b.x", "a.x; b.x", "b.x", Why::OutputUnreadable, "b.x.Tool.trg"},
      {"missing, marker there", "a.c a.x.Tool.trg", "a.c .\\a.x", "a.x", Why::OutputMissing, "a.x"},
  };
  for (const Row& row : rows) {
    Decision decision(row.disk, row.inputs, row.outputs);
    const Staleness found = decision.made();
    expect(row, found);
    const bool looked = row.why != Why::OutputMissing;
    EXPECT_EQ(found.marker, looked && row.why != Why::UpToDate) << row.name;
    ASSERT_EQ(decision.inPlace.size(), looked ? 1U : 0U) << row.name;
    if (!looked) continue;
    EXPECT_EQ(decision.inPlace[0].output, inProject(row.outputs)) << row.name;
    EXPECT_EQ(decision.inPlace[0].marker, inProject(std::string(row.outputs) + ".Tool.trg")) << row.name;
  }
}

TEST(Staleness, AnOutputThatOnlyResemblesADependencyHasNoMarker) {
  const Row rows[] = {
      {"the same name elsewhere", "a.c s\\b.x | b.x", "a.c .\\s\\b.x", "b.x", Why::UpToDate},
      {"the beginning of a name", "b.xx | b.x", "b.xx", "b.x", Why::UpToDate},
      {"a name in full against a relative one", "a.c b.x | o\\b.x", "a.c b.x", "o\\b.x",
       Why::DependencyMissing, "o\\b.x"},
  };
  for (const Row& row : rows) {
    Decision decision(row.disk, row.inputs, row.outputs);
    EXPECT_EQ(decision.made().why, row.why) << row.name;
    EXPECT_TRUE(decision.inPlace.empty()) << row.name;
  }
}

TEST(Staleness, AReasonHoldsBothTimes) {
  Decision decision("a.c | a.o | a.h", "a.c .\\a.h", "a.o");
  const Staleness found = decision.made();
  EXPECT_EQ(found.causeTime - found.outputTime, 1);
  EXPECT_EQ(Decision("a.o", "a.c", "a.o").made().causeTime, 0);
  EXPECT_EQ(Decision("a.c", "a.c", "a.o").made().outputTime, 0);
}

}  // namespace
}  // namespace forgeyard
