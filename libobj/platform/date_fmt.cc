#include "miroxplat/date_fmt.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <ctime>
#include <limits>
#include <string_view>

namespace {

constexpr int success = 0;
constexpr int failure = 1;

// The layouts. A letter stands for a field, any other character for itself:
//   Y year, at least four digits   y year, the last two digits
//   M month, two digits            N month's name   n month's name, three letters
//   D day, two digits              d day            e day, padded with a blank
//   W weekday's name               h m s            hour, minute, second, two digits
constexpr char token_date[] = "Y-M-D";
constexpr char token_short_date_time[] = "Y-M-D.h:m";
constexpr char token_date_time[] = "Y-M-D.h:m:s";
constexpr char ls_recent[] = "n e h:m";
constexpr char ls_other[] = "n e  Y";
constexpr char short_time[] = "h:m";
constexpr char short_date[] = "M/D/y";
constexpr char short_date_time[] = "M/D/y h:m";
constexpr char long_date_time[] = "W, N d, Y h:m:s";

enum class open_part { nothing, year, date };

struct readable_layout {
  char const* pattern;
  open_part open;
};

// No text has two of these layouts.
constexpr readable_layout readable_layouts[] = {
    {token_date, open_part::nothing},      {token_short_date_time, open_part::nothing},
    {token_date_time, open_part::nothing}, {ls_recent, open_part::year},
    {ls_other, open_part::nothing},        {short_time, open_part::date},
    {short_date, open_part::nothing},      {short_date_time, open_part::nothing},
    {long_date_time, open_part::nothing}};

constexpr std::string_view month_names[] = {"January",   "February", "March",    "April",
                                            "May",       "June",     "July",     "August",
                                            "September", "October",  "November", "December"};
constexpr std::string_view weekday_names[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                              "Thursday", "Friday", "Saturday"};
constexpr std::size_t short_name = 3;  // letters

constexpr long half_a_year = 31556952 / 2;  // seconds, as ls has it

// A point in local time. Months and days count from 1, weekdays from Sunday, 0.
struct calendar_time {
  long long year = 0;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int weekday = -1;  // -1: unknown
};

bool to_calendar(long t, calendar_time* result) {
  tzset();
  std::time_t const time = t;
  std::tm local = {};
  if (localtime_r(&time, &local) == nullptr) return false;
  *result = {local.tm_year + 1900LL, local.tm_mon + 1, local.tm_mday, local.tm_hour,
             local.tm_min,           local.tm_sec,     local.tm_wday};
  return true;
}

// Formatting.

using text_buffer = char[64];  // more than the long layout with its longest names and year

void put(char*& to, std::string_view text) { to = std::copy(text.begin(), text.end(), to); }

// A number of at least `width` digits.
void put_number(char*& to, long long number, std::size_t width, char fill = '0') {
  char digits[std::numeric_limits<long long>::digits10 + 2];
  if (number < 0) put(to, "-");
  char const* const end =
      std::to_chars(digits, std::end(digits), number < 0 ? -number : number).ptr;
  auto const length = static_cast<std::size_t>(end - digits);
  to = std::fill_n(to, width > length ? width - length : 0, fill);
  put(to, {digits, length});
}

void put_field(char*& to, char field, calendar_time const& time) {
  switch (field) {
    case 'Y':
      return put_number(to, time.year, 4);
    case 'y':
      return put_number(to, (time.year % 100 + 100) % 100, 2);
    case 'M':
      return put_number(to, time.month, 2);
    case 'N':
      return put(to, month_names[time.month - 1]);
    case 'n':
      return put(to, month_names[time.month - 1].substr(0, short_name));
    case 'D':
      return put_number(to, time.day, 2);
    case 'd':
      return put_number(to, time.day, 1);
    case 'e':
      return put_number(to, time.day, 2, ' ');
    case 'W':
      return put(to, weekday_names[time.weekday]);
    case 'h':
      return put_number(to, time.hour, 2);
    case 'm':
      return put_number(to, time.minute, 2);
    case 's':
      return put_number(to, time.second, 2);
    default:
      *to++ = field;
  }
}

char const* format(char const* pattern, long t, text_buffer& text) {
  char* end = text;
  calendar_time time;
  if (to_calendar(t, &time)) {
    for (; *pattern != '\0'; ++pattern) put_field(end, *pattern, time);
  }
  *end = '\0';
  return text;
}

// Reading. Each function takes what it reads off the front of the text, and answers false if the
// text is another.

bool take(std::string_view& text, std::string_view expected) {
  if (text.substr(0, expected.size()) != expected) return false;
  text.remove_prefix(expected.size());
  return true;
}

bool is_digit(char c) { return c >= '0' && c <= '9'; }

template <class Number>
bool take_number(std::string_view& text, std::size_t least, std::size_t most, Number* number) {
  std::size_t length = 0;
  while (length < text.size() && is_digit(text[length])) ++length;
  if (length < least || length > most) return false;
  std::from_chars(text.data(), text.data() + length, *number);
  text.remove_prefix(length);
  return true;
}

bool take_year(std::string_view& text, long long* year) {
  bool const is_negative = take(text, "-");
  if (!take_number(text, 4, 10, year)) return false;
  if (is_negative) *year = -*year;
  return true;
}

bool take_short_year(std::string_view& text, long long* year) {
  if (!take_number(text, 2, 2, year)) return false;
  *year += *year < 69 ? 2000 : 1900;
  return true;
}

// One of `names`, or of their first `length` letters; `*index` counts from 0.
template <std::size_t Count>
bool take_name(std::string_view& text, std::string_view const (&names)[Count], std::size_t length,
               int* index) {
  for (std::size_t i = 0; i < Count; ++i) {
    *index = static_cast<int>(i);
    if (take(text, names[i].substr(0, length))) return true;
  }
  return false;
}

bool take_month_name(std::string_view& text, std::size_t length, int* month) {
  int index = 0;
  if (!take_name(text, month_names, length, &index)) return false;
  *month = index + 1;
  return true;
}

bool take_field(std::string_view& text, char field, calendar_time* time) {
  switch (field) {
    case 'Y':
      return take_year(text, &time->year);
    case 'y':
      return take_short_year(text, &time->year);
    case 'M':
      return take_number(text, 1, 2, &time->month);
    case 'N':
      return take_month_name(text, text.npos, &time->month);
    case 'n':
      return take_month_name(text, short_name, &time->month);
    case 'e':
      take(text, " ");
      [[fallthrough]];
    case 'd':
    case 'D':
      return take_number(text, 1, 2, &time->day);
    case 'W':
      return take_name(text, weekday_names, text.npos, &time->weekday);
    case 'h':
      return take_number(text, 1, 2, &time->hour);
    case 'm':
      return take_number(text, 2, 2, &time->minute);
    case 's':
      return take_number(text, 2, 2, &time->second);
    default:
      return take(text, {&field, 1});
  }
}

bool read(std::string_view text, std::string_view pattern, calendar_time* time) {
  return std::all_of(pattern.begin(), pattern.end(),
                     [&](char field) { return take_field(text, field, time); }) &&
         text.empty();
}

// The calendar repeats itself after 400 years.
int year_of_cycle(long long year) { return static_cast<int>((year % 400 + 400) % 400); }

int days_in_month(long long year, int month) {
  if (month == 2) {
    int const y = year_of_cycle(year);
    return y % 4 == 0 && (y % 100 != 0 || y == 0) ? 29 : 28;
  }
  return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

// Counted from Sunday, 0. January and February belong to the year before.
int weekday_of(calendar_time const& time) {
  constexpr int month_shift[] = {0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
  int const y = year_of_cycle(time.year) + 400 - (time.month < 3 ? 1 : 0);
  return (y + y / 4 - y / 100 + y / 400 + month_shift[time.month - 1] + time.day) % 7;
}

bool is_valid(calendar_time const& time) {
  return time.month >= 1 && time.month <= 12 && time.day >= 1 &&
         time.day <= days_in_month(time.year, time.month) && time.hour <= 23 && time.minute <= 59 &&
         time.second <= 59 && (time.weekday < 0 || time.weekday == weekday_of(time));
}

template <class Wide, class Narrow>
bool narrow(Wide value, Narrow* result) {
  *result = static_cast<Narrow>(value);
  return *result == value;
}

// The time of day of `time`, `days` calendar days after its date. False for what is no time, or
// none that `long` can hold.
bool to_time(calendar_time const& time, int days, long* t) {
  std::tm local = {};
  if (!is_valid(time) || !narrow(time.year - 1900, &local.tm_year)) return false;
  local.tm_mon = time.month - 1;
  local.tm_mday = time.day + days;
  local.tm_hour = time.hour;
  local.tm_min = time.minute;
  local.tm_sec = time.second;
  local.tm_isdst = -1;
  local.tm_wday = -1;  // mktime sets it when it succeeds; its result -1 is a time, too
  std::time_t const result = std::mktime(&local);
  return local.tm_wday >= 0 && narrow(result, t);
}

// The time nearest to `now`, on the side of it that `is_future` tells, at which the calendar shows
// `time` with its open part replaced.
bool fill(calendar_time time, open_part open, bool is_future, long now, long* t) {
  calendar_time today;
  if (!to_calendar(now, &today)) return false;
  constexpr int farthest = 8;  // from one February 29 to another
  for (int i = 0; i <= farthest; ++i) {
    int const distance = is_future ? i : -i;
    time.year = today.year;
    if (open == open_part::year) {
      time.year += distance;
    } else {
      time.month = today.month;
      time.day = today.day;
    }
    long candidate = 0;
    if (!to_time(time, open == open_part::date ? distance : 0, &candidate)) continue;
    if (is_future ? candidate >= now : candidate <= now) {
      *t = candidate;
      return true;
    }
  }
  return false;
}

bool read_layout(std::string_view text, bool is_future, long* t) {
  for (readable_layout const& layout : readable_layouts) {
    calendar_time time;
    if (!read(text, layout.pattern, &time)) continue;
    return layout.open == open_part::nothing
               ? to_time(time, 0, t)
               : fill(time, layout.open, is_future, std::time(nullptr), t);
  }
  return false;
}

// The beginning of the day `days` after today.
bool read_day(int days, long* t) {
  calendar_time today;
  if (!to_calendar(std::time(nullptr), &today)) return false;
  today.hour = today.minute = today.second = 0;
  return to_time(today, days, t);
}

bool read_seconds(std::string_view text, long* t) {
  char const* const end = text.data() + text.size();
  auto const [stop, error] = std::from_chars(text.data(), end, *t);
  return error == std::errc() && stop == end;
}

bool read_any(std::string_view text, bool is_future, long* t) {
  if (text == "now") return narrow(std::time(nullptr), t);
  if (text == "today") return read_day(0, t);
  if (text == "yesterday") return read_day(-1, t);
  if (text == "tomorrow") return read_day(1, t);
  if (take(text, "@")) return read_seconds(text, t);
  return read_layout(text, is_future, t);
}

}  // namespace

char const* date_fmt_token_date(long t) {
  static text_buffer text;
  return format(token_date, t, text);
}

char const* date_fmt_token_short_date_time(long t) {
  static text_buffer text;
  return format(token_short_date_time, t, text);
}

char const* date_fmt_token_date_time(long t) {
  static text_buffer text;
  return format(token_date_time, t, text);
}

char const* date_fmt_ls_date_time(long t) {
  static text_buffer text;
  std::time_t const now = std::time(nullptr);
  bool const is_recent = t > now - half_a_year && t <= now;
  return format(is_recent ? ls_recent : ls_other, t, text);
}

char const* date_fmt_short_time(long t) {
  static text_buffer text;
  return format(short_time, t, text);
}

char const* date_fmt_short_date(long t) {
  static text_buffer text;
  return format(short_date, t, text);
}

char const* date_fmt_short_date_time(long t) {
  static text_buffer text;
  return format(short_date_time, t, text);
}

char const* date_fmt_long_date_time(long t) {
  static text_buffer text;
  return format(long_date_time, t, text);
}

int date_str_to_time2(char const* text, int frame, long* t) {
  long result = 0;
  if (text == nullptr || t == nullptr || !read_any(text, frame != 0, &result)) return failure;
  *t = result;
  return success;
}
