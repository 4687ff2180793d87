#include "hosts/console/build/build_display.h"

#include "hosts/console/build/json_view.h"
#include "hosts/console/build/text_view.h"
#include "workbench/project/configurations.h"

namespace forgeyard::console {

using namespace workbench;

namespace {

std::chrono::milliseconds since(std::chrono::steady_clock::time_point begin) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin);
}

// "build" of "ProjectBuild".
std::string taskOf(std::u16string_view command) {
  constexpr std::u16string_view kPrefix = u"Project";
  if (command.starts_with(kPrefix)) command.remove_prefix(kPrefix.size());
  std::string task = BString(command).narrow();
  for (char& c : task) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return task;
}

BuildSubject subjectOf(OpenProject& project, const ProjectPaths& paths, std::u16string_view command) {
  return {project.file().host, paths.directory(), nameOf(*project.configuration()), taskOf(command)};
}

std::unique_ptr<BuildView> makeView(Session& session, OpenProject& project, const ProjectPaths& paths,
                                    std::u16string_view command) {
  if (!session.options().json) return std::make_unique<TextView>(session);
  return std::make_unique<JsonView>(session.output(), subjectOf(project, paths, command));
}

}  // namespace

class BuildDisplay::Progress final : public ComObject<IBuildProgress> {
 public:
  explicit Progress(BuildDisplay& display) : display_(display) {}

  HRESULT OnComponentStart(const BString& component, std::int32_t inputs, std::int32_t* count) override {
    return guard([&] {
      *count = display_.view_->wantsCounts() ? 1 : 0;
      display_.component_ = component.narrow();
      display_.view_->componentStarted(component, inputs);
    });
  }
  HRESULT OnComponentEnd(const BString& component, e_btr result) override {
    return guard([&] { display_.view_->componentEnded(component, result); });
  }
  HRESULT OnToolStart(const ToolRun& run) override {
    return guard([&] { display_.toolStarted(run); });
  }
  HRESULT OnToolEnd(const ToolRun& run, std::optional<std::int32_t> exitCode) override {
    return guard([&] { display_.toolEnded(run, exitCode); });
  }

 private:
  BuildDisplay& display_;
};

BuildDisplay::BuildDisplay(Session& session, OpenProject& project, std::u16string_view command)
    : session_(session),
      paths_(project.project()),
      toolPaths_(paths_),
      view_(makeView(session, project, paths_, command)) {
  session_.host().outputWindow().setSink(this);
  session_.host().setBuildProgress(make<Progress>(*this).get());
}

BuildDisplay::~BuildDisplay() {
  session_.host().setBuildProgress(nullptr);
  session_.host().outputWindow().setSink(nullptr);
}

void BuildDisplay::end(ExitCode result) {
  view_->ended({result, findings_, tools_, since(begin_)});
}

void BuildDisplay::write(const BString& tab, const BString& text, LineOrigin origin) {
  std::optional<Diagnostic> found;
  if (toolRuns_ && origin == LineOrigin::Tab) {
    toolPaths_.follow(text.view());
    found = recognise(text.view());
  }
  if (found) {
    found->file = toolPaths_.toUser(found->file);
    findings_.add(*found, component_);
  }
  view_->line(tab, text, found ? &*found : nullptr);
}

std::string BuildDisplay::fileOf(const ToolRun& run) const {
  return run.file.isNull() ? "" : paths_.toUser(run.file);
}

void BuildDisplay::toolStarted(const ToolRun& run) {
  toolRuns_ = true;
  toolBegin_ = Clock::now();
  ++tools_;
  toolPaths_.toolStarted();
  findings_.toolStarted();
  view_->toolStarted(run, fileOf(run));
}

void BuildDisplay::toolEnded(const ToolRun& run, std::optional<std::int32_t> exitCode) {
  toolRuns_ = false;
  if (const auto failure = findings_.toolEnded(component_, fileOf(run), exitCode))
    view_->toolFailed(*failure);
  view_->toolEnded(run, exitCode, since(toolBegin_));
}

}  // namespace forgeyard::console
