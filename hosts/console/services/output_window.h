#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "hosts/console/services/line_writer.h"
#include "hosts/console/services/quiet_filter.h"
#include "platform/com/object.h"
#include "typelib/host.h"

namespace forgeyard::console {

enum class LineOrigin : std::uint8_t {
  Tab,     // as it came
  Module,  // one of the module's own that was kept and is shown late
};

// Writes the lines of the output window in its place.
class LineSink {
 public:
  virtual void write(const BString& tab, const BString& text, LineOrigin origin) = 0;

 protected:
  ~LineSink() = default;
};

// The output window on standard output: lines of all tabs go there as they come, since a terminal has but one
// place. Borrows the writer. Main thread only.
class OutputWindow final : public ComObject<IOutputWindow, IOutputLines> {
 public:
  enum class Form : std::uint8_t { Text, Json };
  OutputWindow(LineWriter& writer, bool quiet, Form form = Form::Text)
      : writer_(&writer), quiet_(quiet), form_(form) {}

  // Gets what is to be shown, until the next call; borrowed. Null ends that.
  void setSink(LineSink* sink) { sink_ = sink; }
  // Gets all lines in place of the writer, until the next call; null ends that.
  void setListener(std::function<void(const BString& tab, const BString& text)> listener) {
    listener_ = std::move(listener);
  }

  HRESULT OpenTab(const BString& tab, std::int32_t* value, std::int32_t create) override;
  HRESULT Reserved() override { return S_OK; }
  HRESULT ShowTab(const BString& tab) override;

  HRESULT AddLine(const BString& tab, const BString& text) override;
  // What a terminal has shown stays there.
  HRESULT ClearTab(const BString& tab) override;

 private:
  bool hasTab(const BString& tab) const;
  void addQuietly(const BString& tab, const BString& text);
  void write(const BString& tab, const BString& text, LineOrigin origin = LineOrigin::Tab);

  LineWriter* writer_;
  LineSink* sink_ = nullptr;
  std::function<void(const BString& tab, const BString& text)> listener_;
  bool quiet_;
  Form form_;
  QuietFilter filter_;
  BString held_;  // a command that is shown only if something follows; null: none
  std::vector<BString> tabs_;
};

}  // namespace forgeyard::console
