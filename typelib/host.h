#pragma once

#include <cstdint>
#include <span>

#include "platform/com/enumerators.h"
#include "platform/com/unknown.h"
#include "platform/storage/structured_storage.h"

namespace forgeyard {

// The host contract: what the module asks of the shell that loads it, and what the module's objects offer to
// it. Every service may be missing; callers test each reference and go without.

// Name of the manual-reset event that all hosts of a user share: it ends waiting and running tools. A host
// holds it from its first build run on.
inline constexpr const char* kStopEvent = "StopEvent";

// The gateway to every service. Objects get it from the site that the host gives them.
struct IServiceLookup : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("D31704D0-B4F6-11D0-B8BC-0000B46096F0");

  virtual HRESULT LookUp(const Guid& service, const Guid& iid, void** out) = 0;
};

inline constexpr Guid SID_ServiceLookup = guid("D31704D1-B4F6-11D0-B8BC-0000B46096F0");
inline constexpr Guid SID_MainFrame = guid("F7235CC3-F172-11D0-817F-00AA002676D3");
inline constexpr Guid SID_OutputWindow = guid("0E570930-083C-11D1-A0BB-004095E014E5");
inline constexpr Guid SID_SourceManager = guid("08ADB803-335E-11D1-817F-00AA002676D3");
inline constexpr Guid SID_CommandHost = guid("B2261397-0746-11D1-817F-00AA002676D3");
inline constexpr Guid SID_WorkspaceService = guid("66AB2D10-EBD5-11D0-A0BB-004095E014E5");
// The one build tool: its projects find it by the look-up that the tool gives them, the other objects of a
// host's start by the host's.
inline constexpr Guid SID_BuildTool = guid("5B2D7009-93C4-4E6F-A8D1-2F60C1B49E01");

// The service's interface I, or null.
template <class I>
Ref<I> lookUp(IServiceLookup* services, const Guid& service) {
  void* found = nullptr;
  if (!services || failed(services->LookUp(service, I::iid, &found))) return nullptr;
  return Ref<I>::adopt(static_cast<I*>(found));
}

using WindowHandle = std::uintptr_t;

struct IMainFrame : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("F7235CC2-F172-11D0-817F-00AA002676D3");

  // 0 before a message box or modal dialog, 1 behind it.
  virtual HRESULT EnableModeless(std::int32_t enable) = 0;
  // The owner of those boxes; not zero.
  virtual HRESULT GetWindow(WindowHandle* out) = 0;
  virtual HRESULT Reserved() = 0;
  // The view with the focus; it may have an ISelection.
  virtual HRESULT GetActiveView(Ref<IUnknown>* out) = 0;
};

enum class MessageButtons : std::uint8_t { Ok, OkCancel, YesNo };
enum class MessageIcon : std::uint8_t { None, Stop, Question, Exclamation, Information };
enum class MessageAnswer : std::uint8_t { Ok, Cancel, Yes, No };

// One labelled edit box of a modal dialog.
struct DialogField {
  BString label;  // with its accelerator mark
  BString text;   // what it holds at the start, and at the end what the user left in it
  std::uint32_t limit = 260;
};

// Questions to the user, with the main frame's window as owner: an interface of the main frame that the
// console answers from the terminal or its options, a desktop with boxes, a test from a script.
struct IUserInterface : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D700A-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT ShowMessage(const BString& text, const BString& title, MessageButtons buttons,
                              MessageIcon icon, MessageAnswer* answer) = 0;
  // A modal dialog of edit boxes with OK and Cancel.
  virtual HRESULT RunDialog(const BString& title, std::span<DialogField> fields, bool* ok) = 0;
  // One existing file, as a full path in the model's spelling.
  virtual HRESULT ChooseFile(const BString& title, const BString& filter, const BString& extension,
                             BString* path, bool* ok) = 0;
};

// What a view or pane has selected.
struct ISelection : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D700B-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT GetSelection(Ref<IEnumUnknown>* out) = 0;
};

// A pane of project files that lends its selection to file commands.
struct IKVSourceSafe : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D700C-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT GetSourceControlFileEnum(Ref<IEnumUnknown>* out) = 0;
};

struct IPaneHost : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("4F8BCD00-5A84-11D1-817F-006097836880");

  virtual HRESULT GetActivePane(Ref<IUnknown>* out) = 0;
};

struct IOutputWindow : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("0E57092F-083C-11D1-A0BB-004095E014E5");

  // Makes sure that the tab exists.
  virtual HRESULT OpenTab(const BString& tab, std::int32_t* value, std::int32_t create) = 0;
  virtual HRESULT Reserved() = 0;
  virtual HRESULT ShowTab(const BString& tab) = 0;
};

struct IOutputLines : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("6CDA2506-6CAE-11D1-A0BC-004095E014E5");

  virtual HRESULT AddLine(const BString& tab, const BString& text) = 0;
  virtual HRESULT ClearTab(const BString& tab) = 0;
};

struct ISourceManager : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("54B43780-3406-11D1-817F-00AA002676D3");

  virtual HRESULT Reserved() = 0;
  // Saves all modified sources; what it hands back is held for the length of the build run.
  virtual HRESULT SaveAll(Ref<IUnknown>* token) = 0;
};

// State of one command as the host shows it.
struct IHostCommand : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D700D-93C4-4E6F-A8D1-2F60C1B49E01");

  virtual HRESULT get_Enabled(std::int32_t* value) = 0;
  virtual HRESULT put_Enabled(std::int32_t value) = 0;
  virtual HRESULT get_Checked(std::int32_t* value) = 0;
  virtual HRESULT put_Checked(std::int32_t value) = 0;
  virtual HRESULT put_MenuText(const BString& value) = 0;
};

// Objects that serve commands of one class register here, and menus whose texts have changed are drawn anew.
struct ICommandHost : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("B2261396-0746-11D1-817F-00AA002676D3");

  virtual HRESULT RegisterObject(const Guid& clsid, IUnknown* object) = 0;
  virtual HRESULT UnregisterObject(const Guid& clsid, IUnknown* object) = 0;
  // Forgets the texts of the commands first to last.
  virtual HRESULT RefreshMenu(std::uint32_t firstId, std::uint32_t lastId) = 0;
};

enum class CommandKind : std::uint32_t { PaneLocal = 1, Command = 2, PopUp = 3, ByClass = 4 };

struct CommandEntry {
  CommandKind kind;
  std::uint32_t id;
  std::uint32_t lastId;  // of a dynamic range, else 0
  const char16_t* name;
  const char16_t* menuText;  // "!" where the text is given at run time
  const char16_t* statusText;
  const char16_t* tip;
};

struct IUseCommands : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("D4661A40-0759-11D1-817F-00AA002676D3");

  // The table lives as long as the module.
  virtual HRESULT GetCommands(std::span<const CommandEntry>* out) = 0;
  virtual HRESULT RunCommand(std::uint32_t id) = 0;
  // Brings the command up to date; *changed says whether anything was set.
  virtual HRESULT UpdateCommand(std::uint32_t id, IHostCommand* command, std::int32_t* changed) = 0;
};

// Created by the host at its start.
struct ILoadedObject : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("7B42446B-B7D2-11D0-B8BC-0000B46096F0");

  // The site answers to IServiceLookup. It is kept until OnUnload, which closes what the object owns.
  virtual HRESULT OnLoad(IUnknown* site) = 0;
  virtual HRESULT OnUnload() = 0;
};

// Inside the module: an object that reaches services through the look-up it is given, the build tool's among
// them.
struct IComponentSite : IUnknown {
  using Base = IUnknown;
  static constexpr Guid iid = guid("5B2D7030-93C4-4E6F-A8D1-2F60C1B49E01");

  // Kept until the object is closed.
  virtual HRESULT SetServices(IServiceLookup* services) = 0;
};

}  // namespace forgeyard
