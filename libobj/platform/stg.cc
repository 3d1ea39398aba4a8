#include "miroxplat/stg.h"

#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_map>

#include "miroxplat/imsg.h"

namespace {

using block = std::unique_ptr<unsigned char[]>;
using area_table = std::unordered_map<stg_area_t, block>;

std::mutex s_mutex;  // guards the two below
stg_area_t s_last = 0;
// A pointer rather than a static map, so that static destructors may still delete areas, whatever
// the order they run in. It is null while there has been no area yet, and after unloading began.
area_table* s_areas = nullptr;

// Frees what nobody deleted.
[[gnu::destructor]] void free_all_areas() {
  std::lock_guard const lock(s_mutex);  // other threads may still run while the process ends
  delete s_areas;
  s_areas = nullptr;
}

// A new area's number, or 0 when all numbers have been given. Throws std::bad_alloc.
stg_area_t add_area(unsigned int n) {
  block memory(new unsigned char[n]);
  std::lock_guard const lock(s_mutex);
  if (s_last == std::numeric_limits<stg_area_t>::max()) return 0;
  if (s_areas == nullptr) s_areas = new area_table;
  s_areas->emplace(s_last + 1, std::move(memory));
  return ++s_last;
}

}  // namespace

stg_area_t stg_create_area(unsigned int n) {
  stg_area_t area = 0;
  char const* reason = "all area numbers have been used; restart the process";
  try {
    area = add_area(n);
  } catch (std::bad_alloc const&) {
    reason = "there is no memory left; ask for less or delete areas no longer needed";
  }
  if (area == 0) {
    imsg_print(IMSG_ERROR, "Cannot create a storage area of %u bytes: %s.\n", -1, n, reason);
  }
  return area;
}

void stg_delete_area(stg_area_t* area) {
  if (area == nullptr) return;
  {
    std::lock_guard const lock(s_mutex);
    if (s_areas != nullptr) s_areas->erase(*area);
  }
  *area = 0;
}
