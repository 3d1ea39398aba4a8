// The loops of string_loops.h on the standard library's older string, which shares like ours.
#ifndef MIROXGCL_BENCH_COW_STRING_H
#define MIROXGCL_BENCH_COW_STRING_H

namespace cow {

void copy_and_drop(long rounds);
void assign_one_of_two(long rounds);
void make_and_drop_12(long rounds);
void make_and_drop_100(long rounds);
void append_million(long rounds);
void append_runs(long rounds);
void insert_and_erase(long rounds);
void copy_and_write(long rounds);

}  // namespace cow

#endif
