// The loops of string_loops.h and program_loops.h on the standard library's older string, which shares like ours.
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

void count_words(long rounds);
void count_words_in_order(long rounds);
void sort_strings(long rounds);
void build_strings(long rounds);
void copy_and_drop_strings(long rounds);
void join_five_parts(long rounds);
void take_tokens(long rounds);
void split_and_join_lines(long rounds);
void find_literal_in_lines(long rounds);
double memory_of_one(int size);

}  // namespace cow

#endif
