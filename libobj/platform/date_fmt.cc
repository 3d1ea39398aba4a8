#include "miroxplat/date_fmt.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <ctime>
#include <limits>
#include <string_view>
#include <utility>

namespace {

constexpr int success = 0;
constexpr int failure = 1;

// The layouts. A letter names a field; any other character is written as it is:
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

// What a layout leaves to the frame.
enum class open_part { nothing, century, year, date };

struct readable_layout {
  char const* pattern;
  open_part open;

  bool is_date() const { return std::strchr(pattern, 'h') == nullptr; }  // without a time
};

// No text has two of these layouts.
constexpr readable_layout readable_layouts[] = {
    {token_date, open_part::nothing},      {token_short_date_time, open_part::nothing},
    {token_date_time, open_part::nothing}, {ls_recent, open_part::year},
    {ls_other, open_part::nothing},        {short_time, open_part::date},
    {short_date, open_part::century},      {short_date_time, open_part::century},
    {long_date_time, open_part::nothing}};

constexpr std::string_view month_names[] = {"January",   "February", "March",    "April",
                                            "May",       "June",     "July",     "August",
                                            "September", "October",  "November", "December"};
constexpr std::string_view weekday_names[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                              "Thursday", "Friday", "Saturday"};
constexpr std::size_t short_name = 3;  // letters

using seconds = long long;  // wide enough for sums of what `long` and local offsets hold

constexpr seconds minute = 60;
constexpr seconds hour = 60 * minute;
constexpr seconds day = 24 * hour;
constexpr seconds half_a_year = 31556952 / 2;  // as ls has it

// The calendar repeats itself after a cycle of 400 years, and so do the zones in years far from
// ours. The C library computes changes of the clock in `int`: it is asked about no year beyond
// `far_years`, but about the same year of a cycle near it.
constexpr int years_per_cycle = 400;
constexpr long long days_per_cycle = 146'097;
constexpr seconds cycle = days_per_cycle * day;
constexpr seconds far_years = 1'000'000;

// How many whole cycles lie between `value` and what is near: -limit to limit.
long long cycles_beyond(long long limit, long long value, long long per_cycle) {
  return (value - std::clamp(value, -limit, limit)) / per_cycle;
}

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

// What the local clock shows at `t`, which std::time_t must be able to hold.
calendar_time to_calendar(seconds t) {
  long long const cycles = cycles_beyond(far_years * 365 * day, t, cycle);
  auto const near = static_cast<std::time_t>(t - cycles * cycle);
  std::tm local = {};
  localtime_r(&near, &local);
  return {local.tm_year + 1900 + cycles * years_per_cycle,
          local.tm_mon + 1,
          local.tm_mday,
          local.tm_hour,
          local.tm_min,
          local.tm_sec,
          local.tm_wday};
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
  tzset();
  calendar_time const time = to_calendar(t);
  char* end = text;
  for (; *pattern != '\0'; ++pattern) put_field(end, *pattern, time);
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
  if (!take_number(text, 4, 12, year)) return false;
  if (is_negative) *year = -*year;
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
      return take_number(text, 2, 2, &time->year);  // of its century
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

// Finding the times at which the clock shows a date.

// Days since 1970-01-01. Years are counted from March here: a leap day is then a year's last day.
long long day_number(long long year, int month, int day_of_month) {
  if (month < 3) --year;
  long long const cycles = (year - (year < 0 ? years_per_cycle - 1 : 0)) / years_per_cycle;
  auto const year_of_cycle = static_cast<int>(year - cycles * years_per_cycle);
  int const day_of_year = (153 * ((month + 9) % 12) + 2) / 5 + day_of_month - 1;
  int const day_of_cycle =
      year_of_cycle * 365 + year_of_cycle / 4 - year_of_cycle / 100 + day_of_year;
  return cycles * days_per_cycle + day_of_cycle - 719'468;
}

int days_in_month(long long year, int month) {
  long long const next = month < 12 ? day_number(year, month + 1, 1) : day_number(year + 1, 1, 1);
  return static_cast<int>(next - day_number(year, month, 1));
}

int weekday_of(calendar_time const& time) {
  constexpr int first_weekday = 4;  // 1970-01-01 was a Thursday
  auto const past_it = static_cast<int>(day_number(time.year, time.month, time.day) % 7);
  return (past_it + 7 + first_weekday) % 7;
}

// Some minutes have a second 60; whether this one has is for the zone to say.
bool is_valid(calendar_time const& time) {
  return time.month >= 1 && time.month <= 12 && time.day >= 1 &&
         time.day <= days_in_month(time.year, time.month) && time.hour <= 23 && time.minute <= 59 &&
         time.second <= 60 && (time.weekday < 0 || time.weekday == weekday_of(time));
}

// The seconds since the local clock showed 1970-01-01 00:00:00, had it never been changed.
seconds shown_by(calendar_time const& time) {
  return day_number(time.year, time.month, time.day) * day + time.hour * hour +
         time.minute * minute + time.second;
}

seconds shown_at(seconds t) { return shown_by(to_calendar(t)); }

// What std::time_t can hold.
seconds nearest_time(seconds t) {
  using limits = std::numeric_limits<std::time_t>;
  return std::clamp<seconds>(t, limits::min(), limits::max());
}

// Picks, of the times offered to it, the earliest not before its limit, or the latest not after it.
class choice {
 public:
  choice(bool is_future, seconds limit) : m_is_future(is_future), m_limit(limit) {}

  // The earliest of all.
  choice() : choice(true, std::numeric_limits<seconds>::min()) {}

  bool is_made() const { return m_is_made; }
  long time() const { return m_time; }

  // A time that lies `cycles` later than `t`; what `long` cannot hold is not taken.
  void offer(seconds t, long long cycles) {
    seconds shift = 0;
    long time = 0;
    if (__builtin_mul_overflow(cycles, cycle, &shift) || __builtin_add_overflow(t, shift, &time)) {
      return;
    }
    if (m_is_future ? time < m_limit : time > m_limit) return;
    if (m_is_made && (m_is_future ? time >= m_time : time <= m_time)) return;
    m_time = time;
    m_is_made = true;
  }

 private:
  bool m_is_future;
  seconds m_limit;
  bool m_is_made = false;
  long m_time = 0;
};

// A point in time as a text describes it. A date without a time is its midnight or, where the clock
// skipped that, the day's first moment.
struct description {
  seconds shown;     // on the clock; 23:59:60 counts as the midnight after it
  long long cycles;  // to be added
  bool is_leap_second;
  bool is_date;
};

// The point `days` after `time`, which is valid.
description description_of(calendar_time time, bool is_date, int days) {
  long long const cycles = cycles_beyond(far_years, time.year, years_per_cycle);
  time.year -= cycles * years_per_cycle;
  return {shown_by(time) + days * day, cycles, time.second == 60, is_date};
}

// No local clock is farther from UTC than `reach`, and none keeps its offset for less than
// `shortest_period`.
constexpr seconds reach = 26 * hour;
constexpr seconds shortest_period = 3 * hour;

// Offers every time at which the clock shows the point, two where the clock was put back, and
// returns whether there is any. The times are looked for with each offset that the zone has nearby.
bool offer_shown(description const& point, choice& best) {
  bool exists = false;
  seconds last_offset = reach;
  for (seconds t = point.shown - reach; t <= point.shown + reach; t += shortest_period) {
    seconds const offset = shown_at(nearest_time(t)) - nearest_time(t);
    if (std::exchange(last_offset, offset) == offset) continue;
    seconds const candidate = point.shown - offset;
    if (candidate != nearest_time(candidate)) continue;
    calendar_time const time = to_calendar(candidate);
    if (shown_by(time) != point.shown || (time.second == 60) != point.is_leap_second) continue;
    best.offer(candidate, point.cycles);
    exists = true;
  }
  return exists;
}

// For a point that the clock never shows because it was put forward: offers the time to which the
// gap moves it. When the clock skipped a whole day, there is none.
void offer_skipped(description const& point, choice& best) {
  seconds before = nearest_time(point.shown - reach);
  seconds after = nearest_time(point.shown + reach);
  if (shown_at(before) > point.shown || shown_at(after) < point.shown) return;
  while (after - before > 1) {
    seconds const middle = before + (after - before) / 2;
    (shown_at(middle) < point.shown ? before : after) = middle;
  }
  if (point.is_date) {
    if (shown_at(after) - point.shown < day) best.offer(after, point.cycles);
  } else if (shown_at(after) - shown_at(before) <= day) {
    best.offer(before + point.shown - shown_at(before), point.cycles);
  }
}

void offer_times(description const& point, choice& best) {
  if (!offer_shown(point, best) && !point.is_leap_second) offer_skipped(point, best);
}

bool store(choice const& best, long* t) {
  if (best.is_made()) *t = best.time();
  return best.is_made();
}

// `time` in a century or year `distance` after that of `today`, or on the day of `today`.
calendar_time filled(calendar_time time, open_part open, calendar_time const& today, int distance) {
  if (open == open_part::century) time.year += (today.year / 100 + distance) * 100;
  if (open == open_part::year) time.year = today.year + distance;
  if (open == open_part::date) {
    time.year = today.year;
    time.month = today.month;
    time.day = today.day;
  }
  return time;
}

// The time nearest to `now`, on the side of it that `is_future` tells, at which the calendar shows
// `time` with its open part filled. The search begins a step on the other side: where the clock was
// put back over midnight, tomorrow began before now.
bool fill(calendar_time const& time, readable_layout const& layout, bool is_future, seconds now,
          long* t) {
  calendar_time const today = to_calendar(now);
  choice best(is_future, now);
  constexpr int farthest = 8;  // years from one February 29 to another
  for (int i = -1; i <= farthest && !best.is_made(); ++i) {
    int const distance = is_future ? i : -i;
    calendar_time const candidate = filled(time, layout.open, today, distance);
    if (!is_valid(candidate)) continue;
    int const days = layout.open == open_part::date ? distance : 0;
    description const point = description_of(candidate, layout.is_date(), days);
    bool const is_on_side =
        is_future ? point.shown + reach >= now : point.shown - reach <= now;  // saves time
    if (is_on_side) offer_times(point, best);
  }
  return store(best, t);
}

bool read_layout(std::string_view text, bool is_future, seconds now, long* t) {
  for (readable_layout const& layout : readable_layouts) {
    calendar_time time;
    if (!read(text, layout.pattern, &time)) continue;
    if (layout.open != open_part::nothing) return fill(time, layout, is_future, now, t);
    choice best;
    if (is_valid(time)) offer_times(description_of(time, layout.is_date(), 0), best);
    return store(best, t);
  }
  return false;
}

// The beginning of the day `days` after today; of the day beyond, when that one was skipped.
bool read_day(int days, seconds now, long* t) {
  calendar_time today = to_calendar(now);
  today.hour = today.minute = today.second = 0;
  choice best;
  offer_times(description_of(today, true, days), best);
  if (!best.is_made()) offer_times(description_of(today, true, 2 * days), best);
  return store(best, t);
}

bool read_seconds(std::string_view text, long* t) {
  char const* const end = text.data() + text.size();
  auto const [stop, error] = std::from_chars(text.data(), end, *t);
  return error == std::errc() && stop == end;
}

template <class Wide, class Narrow>
bool narrow(Wide value, Narrow* result) {
  *result = static_cast<Narrow>(value);
  return *result == value;
}

// The clock is asked once, so that all parts of the answer are of one moment.
bool read_any(std::string_view text, bool is_future, long* t) {
  seconds const now = std::time(nullptr);
  if (text == "now") return narrow(now, t);
  if (text == "today") return read_day(0, now, t);
  if (text == "yesterday") return read_day(-1, now, t);
  if (text == "tomorrow") return read_day(1, now, t);
  if (take(text, "@")) return read_seconds(text, t);
  return read_layout(text, is_future, now, t);
}

}  // namespace

char const* date_fmt_token_date(long t) {
  static thread_local text_buffer text;
  return format(token_date, t, text);
}

char const* date_fmt_token_short_date_time(long t) {
  static thread_local text_buffer text;
  return format(token_short_date_time, t, text);
}

char const* date_fmt_token_date_time(long t) {
  static thread_local text_buffer text;
  return format(token_date_time, t, text);
}

char const* date_fmt_ls_date_time(long t) {
  static thread_local text_buffer text;
  std::time_t const now = std::time(nullptr);
  bool const is_recent = t > now - half_a_year && t <= now;
  return format(is_recent ? ls_recent : ls_other, t, text);
}

char const* date_fmt_short_time(long t) {
  static thread_local text_buffer text;
  return format(short_time, t, text);
}

char const* date_fmt_short_date(long t) {
  static thread_local text_buffer text;
  return format(short_date, t, text);
}

char const* date_fmt_short_date_time(long t) {
  static thread_local text_buffer text;
  return format(short_date_time, t, text);
}

char const* date_fmt_long_date_time(long t) {
  static thread_local text_buffer text;
  return format(long_date_time, t, text);
}

int date_str_to_time2(char const* text, int frame, long* t) {
  tzset();
  long result = 0;
  if (text == nullptr || t == nullptr || !read_any(text, frame != 0, &result)) return failure;
  *t = result;
  return success;
}
