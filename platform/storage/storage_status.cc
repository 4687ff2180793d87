#include "platform/storage/storage_status.h"

#include <cerrno>

namespace forgeyard::compound {

HRESULT statusOf(int error, Attempt attempt) noexcept {
  switch (error) {
    case ENOENT:
      return STG_E_FILENOTFOUND;
    case ENOTDIR:
    case ELOOP:
      return STG_E_PATHNOTFOUND;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ETXTBSY:
      return STG_E_ACCESSDENIED;
    case EEXIST:
      return STG_E_FILEALREADYEXISTS;
    case ENAMETOOLONG:
    case EILSEQ:
      return STG_E_INVALIDNAME;
    case EWOULDBLOCK:
      return STG_E_SHAREVIOLATION;
    case ENOLCK:
      return STG_E_LOCKVIOLATION;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return STG_E_MEDIUMFULL;
    case ENOMEM:
    case EMFILE:
    case ENFILE:
      return STG_E_INSUFFICIENTMEMORY;
    default:
      return attempt == Attempt::Read ? STG_E_READFAULT : STG_E_WRITEFAULT;
  }
}

void throwErrno(Attempt attempt) {
  throw StatusError(statusOf(errno, attempt));
}

}  // namespace forgeyard::compound
