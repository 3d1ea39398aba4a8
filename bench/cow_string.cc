// The build gives this source the older string, which no interface to another source may name.
#include "cow_string.h"

#include <string>

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
