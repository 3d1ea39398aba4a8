// Statuses, their messages, and what captures the message service's output.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "miroxgcl/gcl_imsg_collector.h"
#include "miroxgcl/gcl_imsg_redirect.h"
#include "miroxgcl/gcl_os_user.h"
#include "support/child.h"
#include "support/failing_allocator.h"

namespace {

using texts = std::vector<std::string>;

constexpr int slots_under_collector[] = {2, 3, 8, 9, 10};  // those that a collector leaves alone

void print(int slot, std::string const& text) { imsg_print(slot, "%s", -1, text.c_str()); }

// The message service's table as it is now, context included.
std::vector<void*> table() {
  imsg_redirect_proc procs[IMSG_PROC_COUNT];
  void* context = nullptr;
  imsg_get_redirect_procs(IMSG_PROC_COUNT, procs, &context);
  std::vector<void*> result = {context};
  for (auto const proc : procs) result.push_back(reinterpret_cast<void*>(proc));
  return result;
}

std::string message_of(GCL_Status const& status) { return status.error_message().c_str(); }

texts messages_of(GCL_ImsgCollector const& collector) {
  GCL_StringList list(4);
  collector.messages(list);
  texts result;
  for (unsigned int i = 0; i < list.Length(); ++i) result.push_back(list[i].c_str());
  return result;
}

texts top_to_bottom(LX_TStack<GCL_String> const& stack) {
  texts result;
  for (LX_TStackActiveIterator<GCL_String> i(stack); !i.IsDone(); i.Next()) {
    result.push_back(i.CurrentItem()->c_str());
  }
  return result;
}

// A client with a table of its own while it lives. What it was given does not depend on the
// context: under a collector that is the collector.
class client {
 public:
  client() {
    imsg_get_redirect_procs(IMSG_PROC_COUNT, m_procs, &m_context);
    std::vector<imsg_redirect_proc> const procs(IMSG_PROC_COUNT, take);
    imsg_set_redirect_procs(procs.data(), IMSG_PROC_COUNT, this);
  }
  ~client() { imsg_set_redirect_procs(m_procs, IMSG_PROC_COUNT, m_context); }
  static texts taken() { return std::exchange(s_taken, {}); }

 private:
  static void take(void*, char* text) { s_taken.push_back(text); }

  static inline texts s_taken;
  imsg_redirect_proc m_procs[IMSG_PROC_COUNT];
  void* m_context;
};

// Every test leaves the process's table and switch as it found them.
class Status : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(table(), m_found);
    EXPECT_FALSE(GCL_ImsgRedirect::m_no_redirect);
    EXPECT_EQ(client::taken(), texts());
  }

 private:
  std::vector<void*> m_found = table();
};
using Redirect = Status;
using Collector = Status;
using Environment = Status;

TEST_F(Status, StackIsAssignedThroughEachOfItsBases) {
  GCL_ErrMsgStack a, other;
  a.Push("A");
  a.Push("B");
  other.Push("x");
  LX_TStack<GCL_String> const& as_stack = a;
  GCL_ErrMsgStack::Base const& as_base = a;
  EXPECT_STREQ(a.Top().c_str(), "B");

  GCL_ErrMsgStack b(a), c(other), d(other), e(other);
  LX_TStack<GCL_String>& c_as_stack = c;
  GCL_ErrMsgStack::Base& d_as_base = d;
  EXPECT_EQ(&(c_as_stack = as_stack), &c);
  EXPECT_EQ(&(d_as_base = as_base), &d);
  EXPECT_EQ(&(e = a), &e);
  for (GCL_ErrMsgStack* copy : {&b, &c, &d, &e}) {
    EXPECT_EQ(top_to_bottom(*copy), (texts{"B", "A"}));
    EXPECT_TRUE(*copy == as_stack && *copy == as_base);
    copy->Push("C");
    EXPECT_FALSE(*copy == as_stack || *copy == as_base);
  }
  a = *&a;
  GCL_ErrMsgStack const taken(std::move(a));
  EXPECT_EQ(top_to_bottom(taken), (texts{"B", "A"}));
}

TEST_F(Status, ZeroDiscardsMessagesOtherCodesKeepThem) {
  GCL_Status status;
  EXPECT_TRUE(status == 0 && status.is_ok() && status.get_message_stack() == nullptr);
  EXPECT_EQ(message_of(status), "");
  status.add_message("one\n");
  EXPECT_TRUE(status.is_ok());
  status.set(-5);
  status.add_message("two");
  status.must_check();
  EXPECT_TRUE(status == -5 && -5 == status && !status.is_ok());
  EXPECT_EQ(status.value(), status.peek());
  EXPECT_EQ(message_of(status), "one\ntwo");
  EXPECT_EQ(top_to_bottom(*status.get_message_stack()), (texts{"two", "one\n"}));
  status.get_message_stack()->Push("three");
  EXPECT_EQ(message_of(status), "one\ntwothree");

  void (*const discard[])(GCL_Status&) = {[](GCL_Status& s) { s.set(0); },
                                          [](GCL_Status& s) { s.set_ok(); },
                                          [](GCL_Status& s) { s.reset(0); }};
  for (auto const call : discard) {
    GCL_Status copy(status);
    call(copy);
    EXPECT_TRUE(copy == 0 && copy.get_message_stack() == nullptr);
  }
  status.reset(7);
  EXPECT_TRUE(status == 7 && status.get_message_stack() == nullptr);
}

TEST_F(Status, CopiesAreDeepMovesTakeTheMessages) {
  static_assert(std::is_nothrow_move_constructible_v<GCL_Status>);
  static_assert(std::is_nothrow_move_assignable_v<GCL_Status>);
  GCL_Status a, quiet;
  a.set(3);
  quiet.set(3);
  a.add_message("a");
  GCL_Status b(a), c;
  EXPECT_TRUE(a == quiet);
  c.add_message("c");
  c = a;
  b.add_message("b");
  c.add_message("d");
  a.add_message("e");
  EXPECT_EQ(message_of(a) + "," + message_of(b) + "," + message_of(c), "ae,ab,ad");
  EXPECT_TRUE(b == 3 && c == 3);
  a = *&a;
  a = std::move(*&a);
  EXPECT_EQ(message_of(a), "ae");
  c = quiet;
  EXPECT_EQ(c.get_message_stack(), nullptr);

  GCL_ErrMsgStack* const stack = a.get_message_stack();
  GCL_Status d(std::move(a));
  b = std::move(d);
  for (GCL_Status* left : {&a, &d}) {
    EXPECT_TRUE(*left == 0 && left->get_message_stack() == nullptr);
    left->add_message("usable");
  }
  EXPECT_TRUE(b == 3 && b.get_message_stack() == stack);
}

TEST_F(Status, GrabBelongsToTheObject) {
  auto const found = table();
  GCL_Status source;
  source.set(4);
  {
    GCL_Status status;
    status.release_imsg_out();  // without a grab: nothing
    EXPECT_EQ(table(), found);
    status.grab_imsg_out();
    auto const grabbed = table();
    EXPECT_NE(grabbed, found);
    status.grab_imsg_out();
    {
      GCL_Status copy(status), assigned, moved(std::move(status));
      assigned = copy;
      for (GCL_Status* other : {&copy, &assigned, &moved}) other->release_imsg_out();
    }
    EXPECT_EQ(table(), grabbed);
    status = source;
    print(9, "in");
    EXPECT_EQ(message_of(status), "in");
    status = GCL_Status(source);
    print(0, "again");
    EXPECT_EQ(message_of(status), "again");
    EXPECT_TRUE(status == 4);
  }  // with two grabs open
  EXPECT_EQ(table(), found);
}

template <class Field>
Field field_at(void const* object, std::size_t offset) {
  Field result;
  std::memcpy(&result, static_cast<char const*>(object) + offset, sizeof result);
  return result;
}

TEST_F(Status, FieldsLieInOrder) {
  constexpr std::size_t word = sizeof(void*);
  static_assert(word != 4 || (sizeof(GCL_ErrMsgStack) == 24 && sizeof(GCL_ImsgRedirect) == 4 &&
                              sizeof(GCL_ImsgCollector) == 112));
  auto const found = table();  // the context, then the procedures
  GCL_Status status;
  status.set(9);
  status.add_message("x");
  status.grab_imsg_out();
  status.grab_imsg_out();
  EXPECT_EQ(field_at<int>(&status, 0), 9);
  EXPECT_EQ(field_at<void*>(&status, word), status.get_message_stack());
  EXPECT_EQ(field_at<int>(&status, 2 * word), 2);
  EXPECT_EQ(field_at<void*>(&status, 3 * word), found[1]);
  EXPECT_EQ(field_at<void*>(&status, 13 * word), found[11]);
  auto const grabbed = table();
  alignas(GCL_ImsgCollector) unsigned char memory[sizeof(GCL_ImsgCollector)];
  std::memset(memory, 1, sizeof memory);
  auto& collector = *new (memory) GCL_ImsgCollector;
  for (int s = 0; s <= 10; ++s) EXPECT_FALSE(collector.has_message(s));
  collector.add_message("x", 10);
  EXPECT_EQ(field_at<void*>(&collector, 2 * word), table()[1]);
  EXPECT_EQ(field_at<void*>(&collector, 13 * word), grabbed[1]);
  EXPECT_EQ(field_at<void*>(&collector, 24 * word), &status);
  EXPECT_EQ(field_at<bool>(&collector, 25 * word), true);
  EXPECT_EQ(field_at<bool>(&collector, 25 * word + 11), true);
  collector.~GCL_ImsgCollector();
}

TEST_F(Status, ManyMessagesAreJoinedInLinearTime) {
  GCL_Status status;
  std::string expected;
  for (int i = 0; i < 100000; ++i) {
    std::string const message = std::to_string(i) + "\n";
    expected += message;
    status.add_message(message.c_str());
  }
  auto const start = std::chrono::steady_clock::now();
  EXPECT_TRUE(message_of(status) == expected);  // not shown: comparing would take long
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
}

TEST_F(Redirect, EachEndAsksAnewWhetherItIsDisabled) {
  auto const found = table();
  {
    GCL_Status status;
    {
      GCL_ImsgRedirect const redirect(status);
      GCL_ImsgRedirect::disable_redirection();
    }
    GCL_ImsgRedirect::enable_redirection();
    print(6, "still open");
    EXPECT_EQ(message_of(status), "still open");
  }
  EXPECT_EQ(table(), found);

  GCL_Status status;
  for (int grabs : {0, 1}) {  // the end releases a grab that is not its own, if there is one
    if (grabs == 1) status.grab_imsg_out();
    GCL_ImsgRedirect::disable_redirection();
    auto const before = table();
    {
      GCL_ImsgRedirect const redirect(status);
      EXPECT_EQ(table(), before);
      GCL_ImsgRedirect::enable_redirection();
    }
    EXPECT_EQ(table(), found);
  }
}

TEST_F(Redirect, ReceiversFailedAllocationPassesThroughTheService) {
  GCL_Status ok;
  GCL_OSUser const missing(ok, "no-such-login");
  auto const found = table();
  int const failures = fail_each_allocation(
      [] { return GCL_Status(); }, [&](GCL_Status& status) { missing.sid(status); },
      [&](GCL_Status& status, bool failed) {
        EXPECT_EQ(table(), found);
        EXPECT_EQ(status.get_message_stack() == nullptr, failed);  // none that is empty stays
      });
  EXPECT_GE(failures, 4);  // the service's buffer, the text, the stack, its node
}

TEST_F(Status, FailedAssignmentHasTheCodeAndNoMessage) {
  GCL_Status source;
  source.set(8);
  source.add_message("one");
  source.add_message("two");
  int const failures = fail_each_allocation(
      [] {
        GCL_Status target;
        target.add_message("old");
        return target;
      },
      [&](GCL_Status& target) { target = source; },
      [](GCL_Status& target, bool failed) {
        EXPECT_TRUE(target == 8);
        EXPECT_EQ(message_of(target), failed ? "" : "onetwo");
      });
  EXPECT_GE(failures, 3);  // the stack and its nodes
}

TEST_F(Collector, RecordsMessagesAndSeverities) {
  client const outermost;
  {
    GCL_ImsgCollector collector;
    EXPECT_FALSE(collector.has_messages());
    int const severity_of_slot[] = {0, 0, -1, -1, 4, 4, 6, 6, -1, -1, -1};
    for (int slot = 0; slot < IMSG_PROC_COUNT; ++slot) {
      int const severity = severity_of_slot[slot];
      collector.clear_messages();
      print(slot, "100%s%n\n");
      EXPECT_EQ(messages_of(collector), severity < 0 ? texts() : texts{"100%s%n\n"});
      EXPECT_EQ(client::taken(), severity < 0 ? texts{"100%s%n\n"} : texts());
      for (int s = -1; s <= 11; ++s) EXPECT_EQ(collector.has_message(s), s >= 0 && s == severity);
    }
    collector.clear_messages();
    for (int severity : {-1, 11, 10, 1 << 30, -(1 << 30)}) collector.add_message("x", severity);
    for (int s = -1; s <= 11; ++s) EXPECT_EQ(collector.has_message(s), s == 10);
    collector.handle_message("y", 3);
    print(6, "z");
    EXPECT_TRUE(collector.has_message(3) && collector.has_message(6) && collector.has_messages());
    EXPECT_EQ(messages_of(collector), (texts{"z", "y", "x", "x", "x", "x", "x"}));
  }
  print(6, "after");
  EXPECT_EQ(client::taken(), texts{"after"});
}

TEST_F(Collector, GivesMessagesToTheVirtualOperation) {
  class picky : public GCL_ImsgCollector {
   public:
    void add_message(GCL_String const& message, int severity) override {
      if (severity == 6) throw std::string(message.c_str());
      GCL_ImsgCollector::add_message("seen: ", severity);
    }
  };
  GCL_Status status;
  picky collector;
  collector.handle_message("x", 0);
  print(4, "y");
  EXPECT_EQ(messages_of(collector), (texts{"seen: ", "seen: "}));
  EXPECT_TRUE(collector.has_message(0) && collector.has_message(4));
  EXPECT_THROW(GCL_OSUser(status, "no-such-login").sid(status), std::string);
  EXPECT_EQ(message_of(status), "");
}

TEST_F(Collector, TurnsRedirectsOffAndGrabsNot) {
  GCL_Status status;
  {
    GCL_ImsgCollector collector;
    {
      GCL_ImsgRedirect const redirect(status);
      print(6, "a");
      GCL_ImsgCollector inner;
      print(0, "b");
      inner.add_message("c", -1);
      EXPECT_EQ(messages_of(inner), (texts{"c", "b"}));
    }
    EXPECT_TRUE(GCL_ImsgRedirect::m_no_redirect);  // the inner one found it so
    status.grab_imsg_out();
    for (int slot = 0; slot < IMSG_PROC_COUNT; ++slot) print(slot, "%d");
    status.release_imsg_out();
    print(6, "c");
    EXPECT_EQ(messages_of(collector), (texts{"c", "a"}));
    EXPECT_EQ(status.get_message_stack()->Depth(), 11u);

    GCL_ImsgRedirect::enable_redirection();
    { GCL_ImsgCollector const inner; }
    EXPECT_FALSE(GCL_ImsgRedirect::m_no_redirect);
    status.set_ok();
    GCL_ImsgRedirect const redirect(status);
    print(6, "d");
    EXPECT_EQ(message_of(status), "d");
  }
}

TEST_F(Collector, OtherSlotsStillReachTheStatusThatGrabs) {
  GCL_Status outer, inner;
  std::variant<std::monostate, GCL_ImsgCollector, GCL_Status> place;
  outer.grab_imsg_out();
  {
    GCL_ImsgCollector const first, second;
    for (int slot : slots_under_collector) print(slot, std::to_string(slot));
    inner.grab_imsg_out();
    {
      GCL_ImsgCollector const third;
      print(2, "third");
    }
    print(6, "inner");
    inner.release_imsg_out();
    print(10, "outer");
    EXPECT_EQ(messages_of(first).size() + messages_of(second).size(), 0u);
  }
  EXPECT_EQ(message_of(outer), "238910outer");
  EXPECT_EQ(message_of(inner), "thirdinner");

  // A status where a collector was before is a status again.
  place.emplace<GCL_ImsgCollector>();
  auto& status = place.emplace<GCL_Status>();
  status.grab_imsg_out();
  print(2, "here");
  EXPECT_EQ(message_of(status), "here");
  status.release_imsg_out();
  outer.release_imsg_out();
}

TEST_F(Collector, OtherSlotsStillReachAClientInBetween) {
  GCL_Status status, inner;
  GCL_ImsgRedirect const redirect(status);
  {
    GCL_ImsgCollector const below;
    client const in_between;
    GCL_ImsgCollector const collector;
    for (int slot : slots_under_collector) print(slot, std::to_string(slot));
    EXPECT_EQ(client::taken(), (texts{"2", "3", "8", "9", "10"}));
    inner.grab_imsg_out();
    print(2, "grabbed");
    inner.release_imsg_out();
    print(3, "client's");
    EXPECT_EQ(client::taken(), texts{"client's"});
  }
  EXPECT_EQ(message_of(status), "");
  EXPECT_EQ(message_of(inner), "grabbed");
}

// Random scopes in random order, against who should get each message: the innermost scope that
// takes messages of its slot.
class nesting {
 public:
  void run(int depth) {
    for (unsigned int steps = 1 + m_random() % 4; steps > 0; --steps) {
      print_one();
      auto const found = table();
      bool const disabled = GCL_ImsgRedirect::m_no_redirect;
      if (depth > 0) open_scope(depth - 1);
      ASSERT_EQ(table(), found);
      ASSERT_EQ(GCL_ImsgRedirect::m_no_redirect, disabled);
    }
  }
  void check_statuses() {
    for (auto& one : m_grabbing) {
      std::string expected;
      for (std::string const& text : one.taker.texts) expected += text;
      ASSERT_EQ(message_of(one.status), expected);
      one.status.set_ok();
      one.taker.texts.clear();
    }
    ASSERT_EQ(client::taken(), std::exchange(m_client.texts, {}));
  }

 private:
  struct receiver {
    bool takes_all;
    std::vector<std::string> texts;
  };
  struct grabbing {
    GCL_Status status;
    receiver taker{true, {}};
    int grabs = 0;
  };

  void print_one() {
    int const slot = static_cast<int>(m_random() % IMSG_PROC_COUNT);
    bool const for_collectors = slot <= 1 || (slot >= 4 && slot <= 7);
    std::string const text = std::to_string(m_printed++) + "\n";
    auto const taker = std::find_if(m_open.rbegin(), m_open.rend(), [=](receiver const* scope) {
      return scope->takes_all || for_collectors;
    });
    (*taker)->texts.push_back(text);
    print(slot, text);
  }

  void open_scope(int depth) {
    auto& one = m_grabbing[m_random() % 3];
    switch (m_random() % 4) {
      case 0:
        return grab(one, depth);
      case 1:
        return redirect(one, depth);
      case 2:
        return collect(depth);
      default:
        return set_switch(depth);
    }
  }

  // While `one` is the status of an open grab, of which only the first installs anything.
  void run_grabbed(grabbing& one, int depth) {
    bool const first = one.grabs++ == 0;
    if (first) m_open.push_back(&one.taker);
    run(depth);
    if (first) m_open.pop_back();
    --one.grabs;
  }

  void grab(grabbing& one, int depth) {
    one.status.grab_imsg_out();
    run_grabbed(one, depth);
    one.status.release_imsg_out();
  }

  void redirect(grabbing& one, int depth) {
    GCL_ImsgRedirect const scope(one.status);
    GCL_ImsgRedirect::m_no_redirect ? run(depth) : run_grabbed(one, depth);
  }

  void collect(int depth) {
    GCL_ImsgCollector const collector;
    receiver taker{false, {}};
    m_open.push_back(&taker);
    run(depth);
    m_open.pop_back();
    std::reverse(taker.texts.begin(), taker.texts.end());
    ASSERT_EQ(messages_of(collector), taker.texts);
  }

  void set_switch(int depth) {
    bool const before = GCL_ImsgRedirect::m_no_redirect;
    GCL_ImsgRedirect::m_no_redirect = m_random() % 2 != 0;
    run(depth);
    GCL_ImsgRedirect::m_no_redirect = before;
  }

  std::mt19937 m_random{2};
  int m_printed = 0;
  client const m_outermost;
  receiver m_client{true, {}};
  grabbing m_grabbing[3];
  std::vector<receiver*> m_open = {&m_client};
};

TEST_F(Collector, RandomNestingAgreesWithAModel) {
  nesting scopes;
  for (int round = 0; round < 3000 && !HasFatalFailure(); ++round) {
    scopes.run(round % 5);
    scopes.check_statuses();
  }
}

// Each message is written at once: the child ends without the usual clean-up.
void capture_and_show() {
  GCL_Status status;
  status.grab_imsg_out();
  print(6, "100%s%n\n");
  setenv("GCL_STATUS_IMSG_COPY", "TRUE", 1);
  print(0, "no end");
  unsetenv("GCL_STATUS_IMSG_COPY");
  print(0, "!");
  std::fputs(message_of(status).c_str(), stderr);
  std::_Exit(0);
}

TEST_F(Environment, CopiesOfCapturedMessagesAreAskedForEachTime) {
  for (char const* value : {"true", "TRUE", "True", "1", "", "true ", "tru", "TRUE\n"}) {
    bool const on = std::strcmp(value, "true") == 0 || std::strcmp(value, "TRUE") == 0;
    auto const child = run_in_child(capture_and_show, {{"GCL_STATUS_IMSG_COPY", value}});
    EXPECT_EQ(child.out, on ? "100%s%n\nno end" : "no end") << value;
    EXPECT_EQ(child.err, "100%s%n\nno end!");
    EXPECT_EQ(child.exit_code, 0);
  }
  EXPECT_EQ(run_in_child(capture_and_show, {{"GCL_STATUS_IMSG_COPY", nullptr}}).out, "no end");
}

// The first collector to end decides, though it has nothing to show.
void lose_messages() {
  bool const shown_if_asked_again = std::getenv("ASKED_AGAIN") != nullptr;
  { GCL_ImsgCollector const empty; }
  setenv("IMSG_LOST_OUTPUT", shown_if_asked_again ? "1" : "", 1);
  GCL_ImsgCollector collector;
  print(0, "100%s%n\n");
  print(6, "later");
  GCL_ImsgCollector cleared;
  print(6, "forgotten");
  cleared.clear_messages();
}

TEST_F(Environment, LostMessagesAreShownWhenTheFirstCollectorFoundItAskedFor) {
  for (char const* value : {"0", " "}) {
    auto const child =
        run_in_child(lose_messages, {{"IMSG_LOST_OUTPUT", value}, {"ASKED_AGAIN", nullptr}});
    EXPECT_EQ(child.out,
              "Notice: some imsg output may not have been displayed:\nlater\n100%s%n\n\n");
    EXPECT_EQ(child.err, "");
    EXPECT_EQ(child.exit_code, 0);
  }
  for (char const* value : {"", static_cast<char const*>(nullptr)}) {
    auto const child =
        run_in_child(lose_messages, {{"IMSG_LOST_OUTPUT", value}, {"ASKED_AGAIN", "1"}});
    EXPECT_EQ(child.out + child.err, "");
    EXPECT_EQ(child.exit_code, 0);
  }
}

TEST_F(Environment, ChildsStreamsAndEndAreToldApart) {
  auto const large = run_in_child([] {
    std::string const line(100000, 'x');
    for (int i = 0; i < 20; ++i) std::fputs(line.c_str(), i % 2 ? stdout : stderr);
    std::exit(3);
  });
  EXPECT_EQ(large.out.size(), 1000000u);
  EXPECT_EQ(large.err.size(), 1000000u);
  EXPECT_EQ(large.exit_code, 3);
  EXPECT_EQ(run_in_child([] { std::raise(SIGTERM); }).signal, SIGTERM);
}

}  // namespace
