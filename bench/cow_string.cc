// The build gives this source the older string, which no interface to another source may name.
#include "cow_string.h"

#include <map>
#include <string>
#include <unordered_map>

#include "program_loops.h"
#include "string_loops.h"

static_assert(_GLIBCXX_USE_CXX11_ABI == 0, "std::string shares its bytes");

void cow::copy_and_drop(long rounds) { ::copy_and_drop<std::string>(rounds); }
void cow::assign_one_of_two(long rounds) { ::assign_one_of_two<std::string>(rounds); }
void cow::make_and_drop_12(long rounds) { ::make_and_drop<std::string, 12>(rounds); }
void cow::make_and_drop_100(long rounds) { ::make_and_drop<std::string, 100>(rounds); }
void cow::append_million(long rounds) { ::append_million<std::string>(rounds); }
void cow::append_runs(long rounds) { ::append_runs<std::string>(rounds); }
void cow::insert_and_erase(long rounds) { ::insert_and_erase<std::string>(rounds); }
void cow::copy_and_write(long rounds) { ::copy_and_write<std::string>(rounds); }

void cow::count_words(long rounds) {
  program::count_words<std::string, std::unordered_map<std::string, int>>(rounds);
}
void cow::count_words_in_order(long rounds) {
  program::count_words<std::string, std::map<std::string, int>>(rounds);
}
void cow::sort_strings(long rounds) { program::sort_strings<std::string>(rounds); }
void cow::build_strings(long rounds) { program::build_strings<std::string>(rounds); }
void cow::copy_and_drop_strings(long rounds) {
  program::copy_and_drop_strings<std::string>(rounds);
}
void cow::join_five_parts(long rounds) { program::join_five_parts<std::string>(rounds); }
void cow::take_tokens(long rounds) { program::take_tokens<std::string>(rounds); }
void cow::split_and_join_lines(long rounds) { program::split_and_join_lines<std::string>(rounds); }
void cow::find_literal_in_lines(long rounds) {
  program::find_literal_in_lines<std::string>(rounds);
}
double cow::memory_of_one(int size) { return program::memory_of_one<std::string>(size); }
