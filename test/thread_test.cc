// Four threads over what they share, each beside a model of its own or beside what one thread alone
// gets. Under the thread checker (preset `thread`) they also touch nothing without order.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <mutex>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "miroxgcl/gcl.h"
#include "support/child.h"

namespace {

constexpr int thread_count = 4;

// Calls `work` with 0 to 3, each in a thread; all begin at once.
template <class Work>
void in_threads(Work work) {
  std::atomic<int> missing(thread_count);
  std::vector<std::thread> threads;
  for (int k = 0; k < thread_count; ++k) {
    threads.emplace_back([&, k] {
      for (--missing; missing != 0;) std::this_thread::yield();
      work(k);
    });
  }
  for (auto& thread : threads) thread.join();
}

// What `work` writes in each thread is what it writes where no other runs.
void expect_as_alone(std::function<void(int, std::ostream&)> const& work) {
  std::vector<std::ostringstream> together(thread_count);
  in_threads([&](int k) { work(k, together[static_cast<std::size_t>(k)]); });
  for (int k = 0; k < thread_count; ++k) {
    std::ostringstream alone;
    work(k, alone);
    EXPECT_EQ(together[static_cast<std::size_t>(k)].str(), alone.str());
  }
}

// The same numbers each time, others in each thread.
class numbers {
 public:
  explicit numbers(int thread) : m_engine(static_cast<unsigned int>(thread)) {}
  unsigned int below(unsigned int n) { return static_cast<unsigned int>(m_engine()) % n; }

 private:
  std::mt19937 m_engine;
};

// A string and what it is to hold.
struct beside {
  GCL_String real;
  std::string model;

  void edit(unsigned int what, unsigned int number) {
    unsigned int const at = number % (real.length() + 1);
    if (what == 0) real.append("more"), model.append("more");
    if (what == 1) real.insert(at, "in"), model.insert(at, "in");
    if (what == 2) real.remove(at, 3), model.erase(at, 3);
    if (what == 3 && at < real.length()) real.put_at(at, '!'), model[at] = '!';
    if (what == 4) real.reserve(number % 64);
    if (what == 5) real = GCL_String(), model.clear();
  }
};

// Bodies also go from thread to thread: who drops one last deletes it, who is left alone edits in
// place.
TEST(Threads, StringsThatShareBodiesAreEditedApart) {
  std::mutex mutex;
  beside in_passing[4];
  beside const shared{"a text for all", "a text for all"};
  in_threads([&](int k) {
    numbers random(k);
    beside own[3];
    for (int step = 0; step < 3000; ++step) {
      beside& one = own[random.below(3)];
      if (random.below(8) == 0) one = shared;
      if (random.below(4) == 0) {
        std::lock_guard const lock(mutex);
        beside& place = in_passing[random.below(4)];
        random.below(2) == 0 ? one = place : place = one;
      }
      one.edit(random.below(9), random.below(1000));
      ASSERT_EQ(one.real, one.model);
      ASSERT_EQ(one.real.hash(), GCL_String(one.model).hash());
      ASSERT_EQ(shared.real.hash_fold_case(), GCL_String(shared.model).hash_fold_case());
      ASSERT_STREQ(shared.real.c_str(), "a text for all");
    }
  });
  EXPECT_EQ(shared.real, shared.model);
}

TEST(Threads, OneListIsReadByIndexInAnyOrder) {
  LX_TUnbounded<GCL_String> filled;
  for (int i = 0; i < 100; ++i) filled.Append(GCL_String(std::to_string(i)));
  auto const& list = filled;
  in_threads([&](int k) {
    numbers random(k);
    for (unsigned int i = 0, step = 0; step < 20000; ++step) {
      unsigned int const next[] = {(i + 1) % 100, (i + 99) % 100, i, random.below(100)};
      i = next[random.below(20) == 0 ? 3 : k % 3];
      ASSERT_EQ(list[i], std::to_string(i));
      if (step % 100 != 0) continue;
      ASSERT_EQ(list.Location(list.ItemAt(i), 0), static_cast<int>(i));
    }
  });
}

TEST(Threads, CopiesOfListsAreEditedApart) {
  GCL_StringList strings{"one", "two", "three"};
  GCL_Status status;
  GCL_OSUserList const users{GCL_OSUser(status, "root"), GCL_OSUser(status, "daemon")};
  expect_as_alone([&](int k, std::ostream& os) {
    for (int round = 0; round < 200; ++round) {
      GCL_StringList own(strings);
      own.Append(GCL_String(std::to_string(k)));
      own[static_cast<unsigned int>(k) % 3].append("!");
      for (GCL_String const& s : own) os << s << (own == strings) << ' ';
      GCL_OSUserList own_users(users);
      own_users.Remove(static_cast<unsigned int>(k) % 2);
      os << own_users.First().user_name() << users.Location(own_users.First()) << '\n';
    }
  });
}

TEST(Threads, ListThatWasMovedFromIsOneEmptyListForAll) {
  for (int round = 0; round < 100; ++round) {
    GCL_StringList list{"one"};
    GCL_StringList const taken(std::move(list));
    std::atomic<unsigned int> lengths(0);
    in_threads([&](int) { lengths += list.Length() + GCL_StringList(list).Length(); });
    EXPECT_EQ(lengths, 0u);
    list.Append("two");
    EXPECT_EQ(list.Last(), "two");
  }
}

TEST(Threads, CredentialsMakeEachPartOnceForAll) {
  for (int round = 0; round < 100; ++round) {
    GCL_Credentials const one;
    std::mutex mutex;
    std::set<void const*> parts;
    in_threads([&](int k) {
      GCL_Credentials copy(one);
      void const* const seen[] = {&one.user(), &one.primary_group(), &one.secondary_groups()};
      EXPECT_EQ(copy.user(), one.user());
      GCL_Status status;
      copy.set_user(GCL_OSUser(status, GCL_String(std::to_string(k))));
      EXPECT_EQ(copy.user().user_name(), std::to_string(k));
      std::lock_guard const lock(mutex);
      parts.insert(std::begin(seen), std::end(seen));
    });
    EXPECT_EQ(parts.size(), 3u);
    EXPECT_EQ(one.user().user_name(), "");
  }
}

// Each look-up that fails says why in the status that asked.
TEST(Threads, StatusesCaptureTheirOwnThreadsMessages) {
  GCL_Status failed;
  failed.add_message("one\n");
  failed.add_message("two\n");
  failed.set(7);
  expect_as_alone([&](int k, std::ostream& os) {
    GCL_String const name("no-such-login-" + std::to_string(k));
    for (int round = 0; round < 30; ++round) {
      GCL_Status status(failed);
      status.add_message(name);
      os << status.value() << status.error_message() << failed.error_message();
      auto const root = GCL_OSUser(status, "root").primary_group(status);
      os << root.group_name() << root.sid(status).bytes[5] << status.value();
      GCL_OSUser(status, name).sid(status);
      GCL_AdminHandle const unnamed(status, "");
      GCL_Assert::gcl_check(status, false, name.c_str(), round);
      os << status.value() << status.error_message();
      GCL_ImsgCollector collector;
      GCL_OSGroup(status, name).sid(status);
      GCL_StringList messages;
      collector.messages(messages);
      for (GCL_String const& message : messages) os << message << messages.Length();
    }
  });
}

TEST(Threads, GrabsAndCollectorsActOnTheirThreadAlone) {
  GCL_Status before, grabbing;
  before.grab_imsg_out();
  GCL_ImsgCollector const collecting;
  in_threads([&](int k) {
    void* context = &before;
    imsg_get_redirect_procs(0, nullptr, &context);
    EXPECT_EQ(context, nullptr);
    EXPECT_FALSE(GCL_ImsgRedirect::m_no_redirect);
    std::string received, sent;
    imsg_redirect_proc procs[IMSG_PROC_COUNT];
    std::fill(std::begin(procs), std::end(procs),
              [](void* to, char* text) { static_cast<std::string*>(to)->append(text); });
    imsg_set_redirect_procs(procs, IMSG_PROC_COUNT, &received);
    for (int i = 0; i < 500; ++i) {
      GCL_Status status;
      if (k % 2 == 0) status.grab_imsg_out();
      imsg_print(6, "%d of %d\n", -1, i, k);
      std::string const text = std::to_string(i) + " of " + std::to_string(k) + "\n";
      ASSERT_EQ(status.error_message(), k % 2 == 0 ? text : "");
      if (k % 2 != 0) sent += text;
    }
    EXPECT_EQ(received, sent);
  });
  EXPECT_FALSE(collecting.has_messages());
  before.release_imsg_out();
  EXPECT_EQ(before.error_message(), "");
}

TEST(Threads, DatesPathnamesAndAreasAreAsAlone) {
  GCL_DateTime const date(1000000000);
  GCL_TimePeriod const period(date, GCL_DateTime(1000086400), 86400u);
  GCL_Pathname const path("/usr/share/../lib");
  auto* const body = new GCL_StgAreaRep(8);
  GCL_Handle<GCL_StgAreaRep> const area(body);
  expect_as_alone([&](int k, std::ostream& os) {
    for (int round = 0; round < 100; ++round) {
      GCL_DateTime const own(date.time() + 86400 * k);
      GCL_Status status;
      for (GCL_String const& text : {own.token_date_time(), own.long_date_time(), own.short_date(),
                                     own.ls_date_time(), GCL_String("nonsense")}) {
        os << text << GCL_DateTime(status, text, GCL_DateTime::past).time() << status.value();
      }
      float days = 0;
      period.duration(days);
      os << days << (period < GCL_TimePeriod(own, own, 0u));
      GCL_Pathname longer(path);
      longer.append_path(GCL_Pathname(std::to_string(k).c_str()));
      os << longer << longer.absolute() << path.dirname() << path.basename();
      GCL_Handle<GCL_StgAreaRep> handle(area);
      handle = new GCL_StgAreaRep(static_cast<unsigned int>(round));
      os << (handle == area) << '\n';
    }
  });
  EXPECT_EQ(body->reference_count(), 1u);
}

TEST(Threads, EmptyStringsStayEmptyForAll) {
  auto const* const empty = GCL_StringRep::null_instance();
  GCL_String const held;
  in_threads([&](int) {
    for (int i = 0; i < 20000; ++i) {
      GCL_String a, b(held), c = b;
      a.append('x');
      c = std::move(a);
      ASSERT_EQ(b, "");
      ASSERT_GE(empty->reference_count(), 2u);
    }
  });
  EXPECT_GE(empty->reference_count(), 2u);
  EXPECT_EQ(empty->length(), 0u);
}

TEST(Threads, TracesAreWholeLinesWithNumbersAndDepthsOfTheirOwn) {
  auto const child = run_in_child(
      [] {
        in_threads([](int) {
          GCL_Indent const first_reads_the_variables(nullptr);
          for (int i = 0; i < 200; ++i) {
            GCL_CTRACE("C", "outer", GCL_Debug::general, GCL_Debug::coarse);
            { GCL_CTRACE("C", "inner", GCL_Debug::general, GCL_Debug::coarse); }
          }
        });
      },
      {{"MIROX_GCL_DEBUG", "0"}, {"GCL_INDENT_STRING", nullptr}});
  EXPECT_EQ(std::count(child.out.begin(), child.out.end(), '\n'), 3) << child.out;
  std::set<std::string> const whole = {"....DEBUG: >>[] C::outer", "....DEBUG:   >>[] C::inner",
                                       "....DEBUG:   <<[] C::inner", "....DEBUG: <<[] C::outer"};
  std::multiset<std::string> numbers;
  std::istringstream lines(child.err);
  for (std::string line; std::getline(lines, line);) {
    std::size_t const begin = std::min(line.find('['), line.size() - 1) + 1;
    std::size_t const size = line.find(']') - begin;
    numbers.insert(line.substr(begin, size));
    ASSERT_EQ(whole.count(line.erase(begin, size)), 1u) << line;
  }
  EXPECT_EQ(numbers.size(), thread_count * 200u * 4);
  for (std::string const& number : numbers) ASSERT_EQ(numbers.count(number), 2u) << number;
}

}  // namespace
