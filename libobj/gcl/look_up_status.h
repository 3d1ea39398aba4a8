// The status of a look-up: how the system-identity service's answers become statuses.
#ifndef MIROXGCL_LOOK_UP_STATUS_H
#define MIROXGCL_LOOK_UP_STATUS_H

#include "miroxgcl/gcl_status.h"
#include "miroxplat/sysutl.h"

// Sets the status from the code of a look-up by name.
inline void set_from_look_up(GCL_Status& status, int code) {
  if (code == SYSUTL_FOUND) {
    status.set_ok();
  } else {
    status.set(code == SYSUTL_NO_SUCH_NAME ? GCL_Status::no_such_name
                                           : GCL_Status::general_failure);
  }
}

// Sets the status from a text that a look-up answers, null when it failed, and copies the text: it
// belongs to the service.
inline GCL_String text_from_look_up(GCL_Status& status, char const* text) {
  GCL_String copy(text);
  status.set(text != nullptr ? 0 : GCL_Status::general_failure);
  return copy;
}

#endif
