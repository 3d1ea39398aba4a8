// The loops of program_loops.h on the standard library's older string, which shares like ours.
#ifndef MIROXGCL_BENCH_COW_PROGRAM_H
#define MIROXGCL_BENCH_COW_PROGRAM_H

struct Programs;

namespace cow {

Programs programs();

// Some of them on the same string in blocks of the size that ours have, so that what the growth rule
// costs can be told from the rest.
Programs programs_in_our_blocks();

}  // namespace cow

#endif
