// What the loops of all benchmarks are made of.
#ifndef MIROXGCL_BENCH_KEEP_H
#define MIROXGCL_BENCH_KEEP_H

// Performs an operation so many times.
using Loop = void (*)(long rounds);

// Makes the compiler believe that `value` is read and changed here, and all memory with it.
template <class T>
void keep(T& value) {
  asm volatile("" : : "r"(&value) : "memory");
}

#endif
