// Texts read as dates near the changes of a zone's clock. An operation is one text: a time in some layout,
// or "today" and its neighbours. The model has the periods between changes, each with its offset, found
// by asking the C library every few hours, and tries them all. What is read wrongly is printed with its
// zone.
#include <algorithm>
#include <climits>
#include <ctime>
#include <filesystem>
#include <random>

#include "fuzz/fuzz_input.h"
#include "miroxplat/date_fmt.h"

namespace {

struct period {
  long begin, end, offset;  // the clock shows t + offset while begin <= t < end
};

constexpr long day = 86'400, none = -77;

long offset_at(std::time_t t) {
  std::tm local;
  localtime_r(&t, &local);
  return local.tm_gmtoff;
}

std::vector<period> periods_around(long middle) {
  std::vector<period> result;
  long const last = middle + 200 * day;
  for (long begin = middle - 200 * day, t = begin; begin < last; begin = t) {
    long const offset = offset_at(begin);
    while (t < last && offset_at(t) == offset) t += day / 4;
    while (offset_at(t - 1) != offset) t -= offset_at(t - 600) != offset ? 600 : 1;
    result.push_back({begin, t, offset});
  }
  return result;
}

// The times at which the clock shows what it shows at `shown` in UTC. What it skips moves forward by
// the gap; of a date the rest of the day is left, if any.
std::vector<long> times_at(std::vector<period> const& periods, long shown, bool is_date) {
  std::vector<long> result;
  for (auto const& [begin, end, offset] : periods) {
    if (shown - offset >= begin && shown - offset < end) result.push_back(shown - offset);
  }
  for (std::size_t i = 1; i < periods.size() && result.empty(); ++i) {
    long const begin = periods[i].begin, gap = periods[i].offset - periods[i - 1].offset;
    long const late = shown - periods[i - 1].offset - begin;
    if (late < 0 || late >= gap) continue;
    if (is_date ? gap - late < day : gap < day) result.push_back(is_date ? begin : begin + late);
  }
  return result;
}

std::time_t s_now = 0;  // what the date service takes for it

std::string text_of(std::time_t shown, char const* format) {
  std::tm fields;
  gmtime_r(&shown, &fields);
  char text[80];
  return {text, std::strftime(text, sizeof text, format, &fields)};
}

void check_date(std::string const& text, int frame, std::vector<long> const& expected) {
  long t = none;
  date_str_to_time2(text.c_str(), frame, &t);
  bool const is_right = t == (expected.empty() ? none : expected[0]);
  if (!is_right) {
    std::fprintf(stderr, "TZ=%s now=%lld: \"%s\", frame %d, is read as %ld\n", std::getenv("TZ"),
                 static_cast<long long>(s_now), text.c_str(), frame, t);
  }
  FUZZ_CHECK(is_right);
}

// A text that leaves something open. What it means is among `times` unless it is far from now.
void check_open_date(std::string const& text, int frame, std::vector<long> times) {
  auto const is_beyond = [frame](long t) { return frame == 1 ? t < s_now : t > s_now; };
  times.erase(std::remove_if(times.begin(), times.end(), is_beyond), times.end());
  if (frame == 0) std::reverse(times.begin(), times.end());
  if (!times.empty()) check_date(text, frame, times);
}

void check_layout(fuzz_input& input, std::vector<period> const& periods, long shown) {
  long const minute = shown - (shown % 60 + 60) % 60, date = shown - (shown % day + day) % day;
  auto const times = times_at(periods, minute, false), first = times_at(periods, date, true);
  auto const frame = static_cast<int>(input.number(1));
  std::vector<long> daily;
  for (long days = -3; days <= 3; ++days) {
    for (long const t : times_at(periods, minute + days * day, false)) daily.push_back(t);
  }
  switch (input.number(5)) {
    case 0:
      return check_date(text_of(shown, "%Y-%m-%d.%H:%M:%S"), frame,
                        times_at(periods, shown, false));
    case 1:
      return check_date(text_of(date, "%Y-%m-%d"), frame, first);
    case 2:
      return check_open_date(text_of(date, "%m/%d/%y"), frame, first);
    case 3:
      return check_open_date(text_of(minute, "%m/%d/%y %H:%M"), frame, times);
    case 4:
      return check_open_date(text_of(minute, "%b %e %H:%M"), frame, times);
    default:
      return check_open_date(text_of(minute, "%H:%M"), frame, daily);
  }
}

void check_days(std::vector<period> const& periods) {
  long const shown = s_now + offset_at(s_now), today = shown - (shown % day + day) % day;
  auto const day_at = [&](long distance) {
    auto const first = times_at(periods, today + distance * day, true);
    return first.empty() ? times_at(periods, today + 2 * distance * day, true) : first;
  };
  check_date("yesterday", 0, day_at(-1));
  check_date("today", 0, day_at(0));
  check_date("tomorrow", 0, day_at(1));
}

void check_zone(std::string const& zone, fuzz_input& input, int rounds) {
  setenv("TZ", zone.c_str(), 1);
  tzset();
  long const middle = static_cast<int>(input.number(UINT_MAX)) / 17 * 16;  // within `long`
  auto const periods = periods_around(middle);
  auto const& last = periods[input.number(static_cast<unsigned int>(periods.size()) - 1)];
  long const change = std::clamp(last.end, middle - 190 * day, middle + 190 * day);
  auto const near = [&](unsigned int quarters) {
    auto const distance =
        static_cast<long>(input.number(2 * quarters)) - static_cast<long>(quarters);
    return change + distance * 900 + static_cast<long>(input.number(2)) - 1;
  };
  for (; rounds != 0 && !input.empty(); --rounds) {
    s_now = near(128);
    for (int i = 0; i < 4; ++i) check_layout(input, periods, near(30) + offset_at(change));
    check_days(periods);
  }
}

// The machine's zones, after some hundred reads in each. Those of right/ count leap seconds, which
// the model does not; those of posix/ are the same as the rest.
std::vector<std::string> swept_zones() {
  std::string const folder = "/usr/share/zoneinfo/";
  std::vector<std::string> zones{"UTC0", "<-04>4<-03>,M9.1.6/24,M4.1.6/24"};
  std::error_code none_there;
  for (auto const& file : std::filesystem::recursive_directory_iterator(folder, none_there)) {
    std::string const zone = file.path().string().substr(folder.size());
    bool const is_local = zone.rfind("right/", 0) != 0 && zone.rfind("posix/", 0) != 0;
    if (file.is_regular_file() && is_local) zones.push_back(zone);
  }
  if (none_there) std::fprintf(stderr, "No zones: %s is missing.\n", folder.c_str());
  std::sort(zones.begin(), zones.end());
  std::mt19937 random(1);
  for (std::string const& zone : zones) {
    for (int changes = 0; changes < 2; ++changes) {
      std::uint8_t bytes[300];
      for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
      fuzz_input input(bytes, sizeof bytes);
      check_zone(zone, input, 20);
    }
  }
  return zones;
}

std::vector<std::string> const s_zones = swept_zones();  // before the fuzzer looks at the clock

}  // namespace

void fuzz_one_input(fuzz_input& input) {
  auto const last_zone = static_cast<unsigned int>(s_zones.size()) - 1;
  check_zone(s_zones[input.number(last_zone)], input, 20);
}

// Takes the place of the C library's.
extern "C" std::time_t time(std::time_t* t) noexcept {
  if (t != nullptr) *t = s_now;
  return s_now;
}
