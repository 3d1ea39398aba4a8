#include "miroxgcl/gcl_assert.h"

#include <cstdlib>

#include "gcl_environment.h"
#include "miroxgcl/gcl_imsg_redirect.h"
#include "miroxgcl/gcl_msg_tables.h"

namespace {

// Entries of the general messages.
enum Entry { not_yet_implemented = 0, unexpected_error = 1, assertion_failure = 2 };

void log(Entry entry, char const* file, int line) {
  tbs_log_int_error("gcl", &_gcl_gcl_msg_table, entry, file, line, 0);
}

}  // namespace

bool GCL_Assert::gcl_check(bool condition, char const* file, int line) {
  if (!condition) log(unexpected_error, file, line);
  return condition;
}

bool GCL_Assert::gcl_check(GCL_Status& status, bool condition, char const* file, int line) {
  if (condition) return true;
  GCL_ImsgRedirect const redirect(status);
  status.set(GCL_Status::general_failure);
  return gcl_check(false, file, line);
}

void GCL_Assert::gcl_not_yet_implemented(char const* file, int line) {
  log(not_yet_implemented, file, line);
}

void GCL_Assert::gcl_not_yet_implemented(GCL_Status& status, char const* file, int line) {
  GCL_ImsgRedirect const redirect(status);
  gcl_not_yet_implemented(file, line);
  status.set(GCL_Status::general_failure);
}

void GCL_Assert::gcl_assert(bool condition, char const* file, int line) {
  if (condition) return;
  if (!gcl_environment_is_set("GCL_ASSERT_DONT_LOG")) log(assertion_failure, file, line);
  if (!gcl_environment_is_set("GCL_ASSERT_CONTINUE")) std::abort();
}
