#include "miroxplat/adm.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <mutex>

#include "miroxplat/imsg.h"

namespace {

std::mutex s_mutex;  // guards the two below
adm_handle_t s_last = 0;
adm_handle_t s_held[ADM_MAX_HANDLES] = {};  // 0: free

// ADM_OK and a new handle, or the code that says why there is none.
int add_handle(adm_handle_t* handle) {
  std::lock_guard const lock(s_mutex);
  if (s_last == std::numeric_limits<adm_handle_t>::max()) return ADM_NUMBERS_USED;
  adm_handle_t* const place = std::find(std::begin(s_held), std::end(s_held), 0u);
  if (place == std::end(s_held)) return ADM_TABLE_FULL;
  *handle = *place = ++s_last;
  return ADM_OK;
}

// 0, or the code and printed error for a name that nothing can have.
int check_name(char const* name) {
  if (name == nullptr || *name == '\0') {
    imsg_print(IMSG_ERROR,
               "The name \"\" of an administrative handle is empty: it must have 1 to %d bytes. "
               "Give the name of what is to be administered.\n",
               -1, int{ADM_MAX_NAME_LENGTH});
    return ADM_EMPTY_NAME;
  }
  std::size_t const length = std::strlen(name);
  if (length <= ADM_MAX_NAME_LENGTH) return ADM_OK;
  imsg_print(IMSG_ERROR,
             "The name \"%s\" of an administrative handle has %zu bytes: it must have 1 to %d. "
             "Give a shorter one.\n",
             -1, name, length, int{ADM_MAX_NAME_LENGTH});
  return ADM_LONG_NAME;
}

}  // namespace

int adm_get_handle(char const* name, adm_handle_t* handle) {
  if (handle == nullptr) {
    imsg_print(IMSG_ERROR, "The address for an administrative handle is null. Give a variable's.\n",
               -1);
    return ADM_NO_PLACE;
  }
  *handle = 0;
  if (int const code = check_name(name); code != ADM_OK) return code;
  int const code = add_handle(handle);
  if (code == ADM_TABLE_FULL) {
    imsg_print(IMSG_ERROR,
               "No administrative handle is left for \"%s\": a process can hold %d. Free those no "
               "longer needed.\n",
               -1, name, int{ADM_MAX_HANDLES});
  } else if (code == ADM_NUMBERS_USED) {
    imsg_print(IMSG_ERROR,
               "No administrative handle is left for \"%s\": this process has had all %u. Restart "
               "it.\n",
               -1, name, std::numeric_limits<adm_handle_t>::max());
  }
  return code;
}

void adm_free_handle(adm_handle_t* handle) {
  if (handle == nullptr) return;
  if (*handle != 0) {
    std::lock_guard const lock(s_mutex);
    std::replace(std::begin(s_held), std::end(s_held), *handle, 0u);
  }
  *handle = 0;
}
