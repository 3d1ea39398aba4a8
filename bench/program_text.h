// The texts that whole programs work on, made once: the same bytes for every string class. No
// string class is named here, so that a source with the older std::string may read it too.
#ifndef MIROXGCL_BENCH_PROGRAM_TEXT_H
#define MIROXGCL_BENCH_PROGRAM_TEXT_H

#include <string_view>
#include <vector>

// 2,000,000 words of 3 to 12 letters, of which 20,000 differ.
std::vector<std::string_view> const& words();

// 500,000 texts of 8 to 24 letters in no order.
std::vector<std::string_view> const& names();

// A permutation of as many indices as there are names.
std::vector<unsigned int> const& shuffled();

// The words in lines of at most 80 bytes: in memory, and as the name of a file that goes with the
// process.
std::string_view prose();
char const* prose_file();

// 10,000 lines of 10 fields each, 1 MB, with commas between the fields and no line ends.
std::vector<std::string_view> const& csv_lines();

// 200,000 lines of 10 to 100 bytes; one of 1,000 holds the word "needle".
std::vector<std::string_view> const& log_lines();

#endif
