// What operations cost as the work grows: each on four sizes, a size ten times the one before. Prints
// a line an operation, separated by tabs: the width in bits, the operation, its smallest size, the
// nanoseconds an element for each size, and what to know where those rise.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <sstream>
#include <string>

#include "keep.h"
#include "miroxgcl/gcl_integer_list.h"
#include "miroxgcl/gcl_status.h"
#include "miroxgcl/lx_stack.h"
#include "miroxgcl/lx_unbounded.h"

namespace {

using Clock = std::chrono::steady_clock;

// Performs an operation on so many elements once; what it prepares is not measured.
using Work = double (*)(unsigned int n);

double nanoseconds_since(Clock::time_point start) {
  return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

// Runs `operation` until a millisecond has gone, and answers the time of one run.
template <class Operation>
double measure(Operation operation) {
  for (long rounds = 1;; rounds *= 4) {
    auto const start = Clock::now();
    for (long i = 0; i < rounds; ++i) operation();
    double const elapsed = nanoseconds_since(start);
    if (elapsed > 1e6) return elapsed / static_cast<double>(rounds);
  }
}

GCL_String text_of(unsigned int n) { return GCL_String('x', n); }

double append_bytes(unsigned int n) {
  return measure([n] {
    GCL_String s;
    for (unsigned int i = 0; i < n; ++i) s.append('x');
    keep(s);
  });
}

double insert_first(unsigned int n) {
  return measure([n, byte = GCL_String("x")] {
    GCL_String s;
    for (unsigned int i = 0; i < n; ++i) s.insert(0, byte);
    keep(s);
  });
}

double find(unsigned int n) {
  return measure([text = text_of(n).append("eight  8"), sought = GCL_String("eight  8")] {
    unsigned int found = text.find(sought);
    keep(found);
  });
}

double find_first_not_of(unsigned int n) {
  return measure([text = text_of(n), set = GCL_String("xyz")] {
    unsigned int found = text.find_first_not_of(set);
    keep(found);
  });
}

double rfind(unsigned int n) {
  return measure([text = text_of(n).append("eight  8"), sought = GCL_String("eight  8")] {
    unsigned int found = text.rfind(sought);
    keep(found);
  });
}

double hash(unsigned int n) {
  return measure([text = text_of(n)] {
    unsigned int hash = text.hash();
    keep(hash);
  });
}

double compare(unsigned int n) {
  return measure([a = text_of(n), b = text_of(n)] {
    int order = a.compare(b);
    keep(order);
  });
}

double read_line(unsigned int n) {
  std::istringstream in(std::string(n, 'x') + '\n');
  return measure([&in] {
    in.seekg(0);
    GCL_String line;
    getline(in, line);
    keep(line);
  });
}

double to_pc_mode(unsigned int n) {
  GCL_String text;
  for (unsigned int i = 0; i < n / 10; ++i) text.append("nine ....\n");
  return measure([text] {
    GCL_String copy(text);
    copy.to_pc_mode();
    keep(copy);
  });
}

void append_items(LX_TDynamic<int>& array, unsigned int n) {
  for (unsigned int i = 0; i < n; ++i) array.Append(7);
  keep(array);
}

template <unsigned int chunk>
double append_by_chunks(unsigned int n) {
  return measure([n] {
    LX_TDynamic<int> array(chunk);
    append_items(array, n);
  });
}

double append_preallocated(unsigned int n) {
  return measure([n] {
    LX_TDynamic<int> array;
    array.Preallocate(n);
    append_items(array, n);
  });
}

double remove_last(unsigned int n) {
  LX_TDynamic<int> full;
  full.Preallocate(n);
  append_items(full, n);
  return measure([&full, n] {
    LX_TDynamic<int> array(full);
    for (unsigned int i = n; i > 0; --i) array.Remove(i - 1);
    keep(array);
  });
}

double insert_into_list(unsigned int n) {
  return measure([n] {
    LX_TUnbounded<int> list;
    for (unsigned int i = 0; i < n; ++i) list.Insert(7);
    keep(list);
  });
}

// The multiplier steps to an item far away from the last one.
double look_up_anywhere(unsigned int n) {
  LX_TUnbounded<int> list;
  for (unsigned int i = 0; i < n; ++i) list.Insert(7);
  unsigned int const step = n / 2 + 7;
  unsigned int const look_ups = 10;
  return n / look_ups * measure([&list, n, step] {
           unsigned int at = 0;
           for (unsigned int i = 0; i < look_ups; ++i) {
             at = (at + step) % n;
             keep(list[at]);
           }
         });
}

double push_on_stack(unsigned int n) {
  return measure([n] {
    LX_TUnboundedStack<int> stack;
    for (unsigned int i = 0; i < n; ++i) stack.Push(7);
    keep(stack);
  });
}

double explain(unsigned int n) {
  return measure([n, message = GCL_String("It failed.\n")] {
    GCL_Status status;
    for (unsigned int i = 0; i < n; ++i) status.add_message(message);
    GCL_String text = status.error_message();
    keep(text);
  });
}

struct Operation {
  char const* name;
  unsigned int smallest;
  Work work;
  char const* note;
};

constexpr Operation operations[] = {
    {"string: append a byte", 1000, append_bytes, ""},
    {"string: insert a byte first", 100, insert_first,
     "each moves the text: gather the parts at the end, or insert them as one"},
    {"string: find 8 bytes", 1000, find, ""},
    {"string: rfind 8 bytes", 1000, rfind, ""},
    {"string: find what is not of 3", 1000, find_first_not_of, ""},
    {"string: hash", 1000, hash, ""},
    {"string: compare", 1000, compare, ""},
    {"string: getline", 100, read_line, ""},
    {"string: to_pc_mode", 1000, to_pc_mode, ""},
    {"array: append, chunk 1", 100, append_by_chunks<1>,
     "each moves all items to a new array: a larger chunk, or Preallocate"},
    {"array: append, chunk 32", 100, append_by_chunks<32>,
     "each 32nd moves all items to a new array: a larger chunk, or Preallocate"},
    {"array: append, preallocated", 100, append_preallocated, ""},
    {"array: remove the last, chunk 32", 100, remove_last,
     "each 32nd moves all items to a smaller array: a larger chunk, or Clear"},
    {"list: insert first", 100, insert_into_list, ""},
    {"list: look up anywhere", 100, look_up_anywhere,
     "each walks from the head: walk in order, or use an array"},
    {"stack: push", 100, push_on_stack, ""},
    {"status: add a message, join all", 100, explain, ""},
};

// The median of five runs; of one where a run takes long.
double nanoseconds_an_element(Operation const& operation, unsigned int n) {
  double times[5];
  for (double& time : times) {
    time = operation.work(n) / n;
    if (time * n > 3e8) return time;
  }
  std::sort(std::begin(times), std::end(times));
  return times[2];
}

}  // namespace

int main() {
  for (Operation const& operation : operations) {
    std::printf("%u\t%s\t%u", unsigned{sizeof(void*)} * 8, operation.name, operation.smallest);
    unsigned int n = operation.smallest;
    for (int i = 0; i < 4; ++i, n *= 10)
      std::printf("\t%.2f", nanoseconds_an_element(operation, n));
    std::printf("\t%s\n", operation.note);
  }
}
