#pragma once

#include <memory>

#include "platform/storage/structured_storage.h"

namespace forgeyard {

class ProjectCore;

// What a project asks of its source control: made by a factory that the source control layer puts in place,
// one for each project, when it is first needed. Without a factory a project is uncontrolled. Operations
// throw StatusError unless they return a status. Main thread only.
class ISourceControlBinding {
 public:
  virtual ~ISourceControlBinding() = default;

  // The steps of putting a project under source control and of taking it out; they set the project's state. A
  // success of the first is followed by a save.
  virtual HRESULT Add() = 0;
  virtual HRESULT Remove() = 0;

  // The load of a controlled project: the storage to use, opened read-write. The settings were read from the
  // plain file; this reads them again from the storage it opens. A failure loads the project as an
  // uncontrolled one.
  virtual Ref<IStorage> OpenForLoad() = 0;
  // Behind the commit of a save: the local file goes over the plain one. Its failure doesn't matter.
  virtual void CopyLocalFile() = 0;
  // The end of a save of changes: the question to the user, and the store in the repository.
  virtual void Store() = 0;

  // The open database, or null.
  virtual IUnknown* Database() const = 0;
  virtual void Disconnect() = 0;
};

using SourceControlFactory = std::unique_ptr<ISourceControlBinding> (*)(ProjectCore& project);

// Null takes it away. The project outlives its binding.
void setSourceControlFactory(SourceControlFactory factory);
SourceControlFactory sourceControlFactory();

}  // namespace forgeyard
