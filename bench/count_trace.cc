// Runs `count` rounds of one kind of loop: "empty", "scope" (a disabled trace) or "message" (a
// message of a disabled trace). Comparing two counts under an instruction counter gives the cost of
// a round.
#include <cstdlib>
#include <cstring>

#include "miroxgcl/gcl_ctrace.h"

namespace {

// Keeps the compiler from knowing what the loop does.
void touch(long& value) { asm volatile("" : "+r"(value) : : "memory"); }

void empty(long count) {
  for (long i = 0; i < count; ++i) touch(i);
}

void scope(long count) {
  for (long i = 0; i < count; ++i) {
    GCL_CTRACE("Bench", "scope", GCL_Debug::parsing, GCL_Debug::coarse);
    touch(i);
  }
}

void message(long count) {
  GCL_CTRACE("Bench", "message", GCL_Debug::parsing, GCL_Debug::coarse);
  for (long i = 0; i < count; ++i) {
    GCL_CTRACE_OUT("i=" << i);
    touch(i);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  long const count = std::atol(argv[2]);
  if (std::strcmp(argv[1], "empty") == 0) empty(count);
  if (std::strcmp(argv[1], "scope") == 0) scope(count);
  if (std::strcmp(argv[1], "message") == 0) message(count);
}
