// The build run of CBuildTool: from a command to "Final result".

#include <algorithm>
#include <system_error>

#include "engine/build_tool/build_tool.h"
#include "engine/component/macro_map.h"
#include "engine/run/dependency_times.h"
#include "engine/run/exclude_multi_build.h"
#include "typelib/configuration.h"
#include "typelib/folder.h"

namespace forgeyard {

HRESULT CBuildTool::get_CurrentTask(e_task* value) {
  *value = task_;
  return S_OK;
}

HRESULT CBuildTool::put_CurrentTask(e_task value) {
  task_ = value;
  return S_OK;
}

HRESULT CBuildTool::PreBuildSelection(Ref<IEnumString>* out) {
  return guard([&] { *out = make<ListEnumerator<IEnumString>>(selection_); });
}

HRESULT CBuildTool::Error() {
  return answered(errors_);
}

HRESULT CBuildTool::Completed() {
  return answered(completed_);
}

HRESULT CBuildTool::Stopped() {
  return answered(stopped_);
}

HRESULT CBuildTool::answered(std::int32_t& counter) {
  return guard([&] {
    ++counter;
    CheckBuildRunDone();
  });
}

void CBuildTool::build(e_task task) {
  task_ = task;
  StartBuildRun();
}

// Whether every sink lets the build run start and there is something to build.
bool CBuildTool::buildMayStart() {
  std::int16_t refused = 0;
  point<DBuildToolE>()->fire([&](DBuildToolE& sink) { ignore(sink.OnBuildStart(task_, &refused)); });
  if (refused == DBuildToolE::VARIANT_TRUE) return false;
  std::int32_t cancel = 0;
  point<IBuildToolE>()->fire([&](IBuildToolE& sink) {
    ignore(sink.OnBuildStart(task_, &cancel));
    return cancel == 0;
  });
  return cancel == 0 && active_;
}

BString CBuildTool::projectLine() {
  BString name;
  BString configurationName;
  check(active_->get_Name(&name));
  Ref<IConfiguration> configuration;
  check(active_->get_ActiveConfiguration(&configuration));
  if (configuration) check(configuration->get_Name(&configurationName));
  return BString::concat(BString::concat(u"Project: ", name, u" - Configuration: "), configurationName);
}

void CBuildTool::beginOutput() {
  BString tab;
  check(get_OutputTab(&tab));
  const Ref<IOutputWindow> window = lookUp<IOutputWindow>(site_.get(), SID_OutputWindow);
  const Ref<IOutputLines> lines = window.as<IOutputLines>();
  if (lines) {
    std::int32_t value = 0;
    ignore(window->OpenTab(tab, &value, 1));
    ignore(lines->ClearTab(tab));
    ignore(window->ShowTab(tab));
  }
  say(kSeparatorLine);
  say(projectLine());
  say(kSeparatorLine);
}

void CBuildTool::prepareStopEvent() {
  try {
    stopEvent_ = NamedEvent::create(kStopEvent);
    stopEvent_->reset();
  } catch (const std::system_error&) {
    // The components find the same and say so, each with its result: the run has begun, and ends in order.
    stopEvent_.reset();
  }
}

void CBuildTool::StartBuildRun() {
  if (const Ref<ISourceManager> sources = lookUp<ISourceManager>(site_.get(), SID_SourceManager)) {
    ignore(sources->SaveAll(&saveToken_));
  }
  if (!buildMayStart()) return;
  beginOutput();
  const Ref<IBuilderInput> input = active_.as<IBuilderInput>();
  if (!input) throw StatusError(E_FAIL);
  inputs_ = {input};
  completed_ = errors_ = stopped_ = 0;
  building_ = true;
  chained_ = false;
  prepareStopEvent();
  // Anything may have changed since the last run.
  forgetFileTimes();
  check(input->PreBuild(static_cast<IBuilderOutput*>(this)));
}

void CBuildTool::CheckBuildRunDone() {
  const auto expected = static_cast<std::int32_t>(inputs_.size());
  if (completed_ + errors_ + stopped_ != expected) return;
  if (!chained_) {
    building_ = false;
    lastResult_ = runResult();
    if (completed_ == expected && (task_ == E_TASK_BUILD || task_ == E_TASK_REBUILD)) clearBuildDirty();
    point<DBuildToolE>()->fire([](DBuildToolE& sink) { ignore(sink.OnBuildEnd()); });
    point<IBuildToolE>()->fire([](IBuildToolE& sink) { ignore(sink.OnBuildEnd()); });
    saveToken_ = nullptr;
  }
  EndBuildRun();
}

e_btr CBuildTool::runResult() const {
  return stopped_ ? E_BTR_STOPPED : errors_ ? E_BTR_ERROR : E_BTR_COMPLETED;
}

HRESULT CBuildTool::get_LastResult(e_btr* result) {
  *result = lastResult_.value_or(E_BTR_COMPLETED);
  return lastResult_ ? S_OK : S_FALSE;
}

void CBuildTool::clearBuildDirty() {
  if (!active_) return;
  Ref<IConfiguration> configuration;
  check(active_->get_ActiveConfiguration(&configuration));
  if (configuration) check(configuration->put_BuildDirty(0));
  check(active_->put_BuildDirty(0));
}

void CBuildTool::EndBuildRun() {
  forgetFileTimes();
  if (active_) say(projectLine());
  const e_btr result = runResult();
  const std::u16string_view text = result == E_BTR_STOPPED ? u"STOPPED"
                                   : result == E_BTR_ERROR ? u"ERRORS"
                                                           : u"OK";
  say(BString::concat(u"Final result: ", text));
  say(kSeparatorLine);
}

// What the view with the focus has selected, or else the files of the active pane.
Ref<IEnumUnknown> CBuildTool::selectedItems() {
  Ref<IEnumUnknown> items;
  const Ref<IMainFrame> frame = lookUp<IMainFrame>(site_.get(), SID_MainFrame);
  if (!frame) return items;
  Ref<IUnknown> view;
  ignore(frame->GetActiveView(&view));
  if (const Ref<ISelection> selection = view.as<ISelection>()) ignore(selection->GetSelection(&items));
  if (items) return items;
  Ref<IUnknown> pane;
  if (const Ref<IPaneHost> panes = frame.as<IPaneHost>()) ignore(panes->GetActivePane(&pane));
  if (const Ref<IKVSourceSafe> files = pane.as<IKVSourceSafe>())
    ignore(files->GetSourceControlFileEnum(&items));
  return items;
}

void CBuildTool::takeSelection() {
  std::vector<BString> chosen;
  forEach(selectedItems(), [&](const Ref<IUnknown>& item) {
    const Ref<ISourceFile> file = item.as<ISourceFile>();
    if (!file) return;
    BString name;
    check(file->get_Name(&name));
    chosen.push_back(name);
  });
  std::sort(chosen.begin(), chosen.end());
  chosen.erase(std::unique(chosen.begin(), chosen.end()), chosen.end());
  selection_ = std::make_shared<const std::vector<BString>>(std::move(chosen));
}

void CBuildTool::compileSelection() {
  takeSelection();
  if (!selection_->empty()) build(E_TASK_COMPILE);
}

// The task goes through the nodes as in a build run, and each component tells what it would do and answers at
// once.
HRESULT CBuildTool::PlanBuild(e_task task, std::vector<PlannedComponent>* out) {
  return guard([&] {
    out->clear();
    if (building_) return E_BUILDING;
    const Ref<IBuilderInput> input = active_.as<IBuilderInput>();
    if (!input) return E_FAIL;
    if (task == E_TASK_COMPILE) takeSelection();
    const e_task before = std::exchange(task_, task);
    plan_ = out;
    timeToCome_ = kTimeToCome;
    forgetFileTimes();
    const HRESULT planned = input->PreBuild(nullptr);
    forgetFileTimes();
    plan_ = nullptr;
    task_ = before;
    return planned;
  });
}

HRESULT CBuildTool::GetDependencies(const BString& file, std::vector<BString>* out) {
  return guard([&] {
    out->clear();
    if (!active_) return E_FAIL;
    Ref<ISourceFile> found;
    BString directory;
    check(active_->FindFileInProject(file, &found));
    check(active_->get_WorkingDirectory(&directory));
    const Ref<ISourceFileDependencies> source = found.as<ISourceFileDependencies>();
    if (!source) return S_OK;
    for (const auto* list : {&source->manualDependencies(), &source->automaticDependencies()}) {
      for (const BString& entry : *list) out->push_back(resolveDependency(entry, directory));
    }
    return S_OK;
  });
}

HRESULT CBuildTool::AddPlanned(PlannedComponent planned) {
  return guard([&] { plan_->push_back(std::move(planned)); });
}

void CBuildTool::stop() {
  if (!active_) return;
  if (const auto event = NamedEvent::open(kStopEvent)) event->set();
  // The event ends waiting and running tools; this marks the components.
  if (const Ref<IBuilderInput> input = active_.as<IBuilderInput>()) check(input->Stop());
}

}  // namespace forgeyard
