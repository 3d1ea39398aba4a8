// Statuses beside Abseil's, the redirection of messages beside the table it copies, and what a
// trace costs that is switched off.
#include <algorithm>
#include <iterator>
#include <string>

#include "compare.h"
#include "miroxgcl/gcl_ctrace.h"
#include "miroxgcl/gcl_imsg_redirect.h"
#include "miroxgcl/gcl_status.h"
#ifdef HAS_ABSL
#include <absl/status/status.h>
#define ABSL(loop) loop
#else
#define ABSL(loop) nullptr
#endif

namespace {

constexpr char message[] = "The user nobody-here does not exist.";

template <class Status>
void copy_ok(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    Status status;
    keep(status);
    Status copy(status);
    keep(copy);
  }
}

void explain_ours(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    GCL_Status status;
    status.set(GCL_Status::no_such_name);
    status.add_message(message);
    GCL_String text = status.error_message();
    keep(text);
  }
}

#ifdef HAS_ABSL
void explain_absl(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    absl::Status const status(absl::StatusCode::kNotFound, message);
    std::string text(status.message());
    keep(text);
  }
}
#endif

void redirect(long rounds) {
  GCL_Status status;
  for (long i = 0; i < rounds; ++i) {
    GCL_ImsgRedirect const scope(status);
    keep(scope);
  }
}

// The limit: the table saved, and the table put back.
void copy_tables(long rounds) {
  imsg_redirect_proc table[IMSG_PROC_COUNT] = {};
  imsg_redirect_proc saved[IMSG_PROC_COUNT];
  for (long i = 0; i < rounds; ++i) {
    keep(table);
    std::copy(std::begin(table), std::end(table), saved);
    keep(saved);
    std::copy(std::begin(saved), std::end(saved), table);
  }
}

void empty_loop(long rounds) {
  for (long i = 0; i < rounds; ++i) keep(i);
}

void disabled_scope(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    GCL_CTRACE("Bench", "disabled_scope", GCL_Debug::parsing, GCL_Debug::coarse);
    keep(i);
  }
}

}  // namespace

int main(int argc, char** argv) {
  Row("status: make, copy, drop when ok", "absl::Status <= 3")
      .ours(copy_ok<GCL_Status>)
      .peer("absl::Status", ABSL(copy_ok<absl::Status>));
  Row("status: one message and its text", "absl::Status <= 3")
      .ours(explain_ours)
      .peer("absl::Status", ABSL(explain_absl));
  Row("redirect: open and close a grab", "two table copies <= 1.5")
      .ours(redirect)
      .peer("two table copies", copy_tables);
  Row("trace: a disabled scope", "empty loop + 1")
      .ours(disabled_scope)
      .peer("empty loop", empty_loop);
  return run_rows(argc, argv);
}
