// Statuses, their messages, and what captures the message service's output.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "miroxgcl/gcl_imsg_collector.h"
#include "miroxgcl/gcl_imsg_redirect.h"
#include "miroxgcl/gcl_os_user.h"
#include "support/child.h"
#include "support/failing_allocator.h"

namespace {

void print(int slot, std::string const& text) { imsg_print(slot, "%s", -1, text.c_str()); }

// The message service's table as it is now, its context at the end.
std::vector<void*> table() {
  imsg_redirect_proc procs[IMSG_PROC_COUNT];
  void* context = nullptr;
  imsg_get_redirect_procs(IMSG_PROC_COUNT, procs, &context);
  std::vector<void*> result;
  for (auto const proc : procs) result.push_back(reinterpret_cast<void*>(proc));
  result.push_back(context);
  return result;
}

std::string texts_of(GCL_Status const& status) { return status.error_message().c_str(); }

std::string texts_of(GCL_ImsgCollector const& collector) {
  GCL_StringList list(4);
  collector.messages(list);
  std::string result;
  for (unsigned int i = 0; i < list.Length(); ++i) result += list[i].c_str();
  return result;
}

// A client with a table of its own while it lives. What it was given does not depend on the
// context: under a collector that is the collector.
struct client {
  client() {
    imsg_get_redirect_procs(IMSG_PROC_COUNT, m_procs, &m_context);
    std::vector<imsg_redirect_proc> const procs(IMSG_PROC_COUNT, take);
    imsg_set_redirect_procs(procs.data(), IMSG_PROC_COUNT, this);
  }
  ~client() { imsg_set_redirect_procs(m_procs, IMSG_PROC_COUNT, m_context); }
  static void take(void*, char* text) { s_taken += text; }

  static inline std::string s_taken;
  imsg_redirect_proc m_procs[IMSG_PROC_COUNT];
  void* m_context;
};

// Every test leaves the process's table and switch as it found them.
class Status : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(table(), m_found);
    EXPECT_FALSE(GCL_ImsgRedirect::m_no_redirect);
  }

  std::vector<void*> const m_found = table();
};

TEST_F(Status, ZeroDiscardsMessagesOtherCodesKeepThem) {
  GCL_Status status;
  EXPECT_TRUE(status.is_ok() && status.get_message_stack() == nullptr && texts_of(status).empty());
  status.add_message("one\n");
  status.set(-5);
  status.add_message("two");
  EXPECT_TRUE(status == -5 && -5 == status && !status.is_ok() && status.peek() == status.value());
  EXPECT_EQ(texts_of(status), "one\ntwo");

  for (int way : {0, 1, 2, 7}) {
    GCL_Status copy(status);
    way == 0 ? copy.set(0) : way == 1 ? copy.set_ok() : copy.reset(way == 7 ? 7 : 0);
    EXPECT_TRUE(copy == (way == 7 ? 7 : 0) && copy.get_message_stack() == nullptr);
  }
}

TEST_F(Status, CopiesAreDeepMovesTakeTheMessages) {
  GCL_Status a, quiet;
  a.set(3);
  a.add_message("a");
  GCL_Status b(a), c;
  c.add_message("c");
  c = a;
  b.add_message("b");
  c.add_message("d");
  a = *&a;
  EXPECT_EQ(texts_of(a) + "," + texts_of(b) + "," + texts_of(c), "a,ab,ad");
  EXPECT_TRUE(a == b && b == c && c == 3);
  c = quiet;
  EXPECT_EQ(c.get_message_stack(), nullptr);

  GCL_ErrMsgStack* const stack = a.get_message_stack();
  GCL_Status d(std::move(a));
  b = std::move(d);
  EXPECT_TRUE(b == 3 && b.get_message_stack() == stack);
  for (GCL_Status* left : {&a, &d}) EXPECT_TRUE(*left == 0 && !left->get_message_stack());
}

TEST_F(Status, GrabBelongsToTheObject) {
  GCL_Status status;
  status.release_imsg_out();  // without a grab: nothing
  for (int grabs = 0; grabs < 2; ++grabs) status.grab_imsg_out();
  auto const grabbed = table();
  GCL_Status copy(status), moved(std::move(status));
  status = copy;
  status = std::move(moved);
  for (GCL_Status* other : {&copy, &moved}) other->release_imsg_out();
  EXPECT_EQ(table(), grabbed);
  print(9, "in");
  EXPECT_EQ(texts_of(status), "in");
}  // with two grabs open

TEST_F(Status, RedirectAsksAtEachEndWhetherItIsDisabled) {
  GCL_Status status;
  for (bool disabled_first : {true, false, true}) {
    GCL_ImsgRedirect::m_no_redirect = disabled_first;
    {
      GCL_ImsgRedirect const redirect(status);
      disabled_first ? GCL_ImsgRedirect::enable_redirection()
                     : GCL_ImsgRedirect::disable_redirection();
    }
    EXPECT_EQ(table() != m_found, !disabled_first);  // the last releases what the second left
  }
}

TEST_F(Status, FailedAllocationsPassThroughTheServiceAndLeaveNoMessage) {
  GCL_Status source;
  GCL_OSUser const missing(source, "no-such-login");
  int const receiving = fail_each_allocation(
      [] { return GCL_Status(); }, [&](GCL_Status& status) { missing.sid(status); },
      [&](GCL_Status& status, bool failed) {
        EXPECT_EQ(table(), m_found);
        EXPECT_EQ(status.get_message_stack() == nullptr, failed);
      });
  EXPECT_GE(receiving, 4);  // the service's buffer, the text, the stack, its node

  source.set(8);
  for (char const* text : {"one", "two"}) source.add_message(text);
  int const assigning = fail_each_allocation(
      [] { return GCL_Status(); }, [&](GCL_Status& target) { target = source; },
      [](GCL_Status& target, bool failed) {
        EXPECT_EQ(std::to_string(target.value()) + texts_of(target), failed ? "8" : "8onetwo");
      });
  EXPECT_GE(assigning, 3);  // the stack and its nodes
}

TEST_F(Status, CollectorRecordsSeverities) {
  struct marking : GCL_ImsgCollector {
    void add_message(GCL_String const& message, int severity) override {
      if (severity == 6) throw std::string(message.c_str());
      GCL_ImsgCollector::add_message("%s", severity);
    }
  };
  GCL_Status status;
  marking collector;
  for (int severity : {-1, 11, 10, 1 << 30}) collector.handle_message("x", severity);
  for (int s = -1; s <= 11; ++s) EXPECT_EQ(collector.has_message(s), s == 10);
  print(4, "y");
  EXPECT_EQ(texts_of(collector), "%s%s%s%s%s");
  EXPECT_THROW(GCL_OSUser(status, "no-such-login").sid(status), std::string);
  collector.clear_messages();
  EXPECT_FALSE(collector.has_messages() || collector.has_message(4) || collector.has_message(10));
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
  void check_texts() {
    for (auto& one : m_grabbing) {
      ASSERT_EQ(texts_of(one.status), std::exchange(one.taker.texts, ""));
      one.status.set_ok();
    }
    ASSERT_EQ(std::exchange(client::s_taken, ""), std::exchange(m_client.texts, ""));
  }

 private:
  struct receiver {
    bool is_collector = false;
    std::string texts = "";
    bool severities[11] = {};  // those that a collector got
  };
  struct grabbing {
    GCL_Status status;
    receiver taker;
    int grabs = 0;
  };

  void print_one() {
    int const slot = static_cast<int>(m_random() % IMSG_PROC_COUNT);
    bool const for_collectors = slot <= 1 || (slot >= 4 && slot <= 7);
    auto taker = m_open.rbegin();
    while ((*taker)->is_collector && !for_collectors) ++taker;
    std::string const text = std::to_string(m_printed++) + "\n";
    (*taker)->texts.insert((*taker)->is_collector ? 0 : (*taker)->texts.size(), text);
    if (for_collectors) (*taker)->severities[slot <= 1 ? 0 : slot <= 5 ? 4 : 6] = true;
    print(slot, text);
  }

  void run_under(receiver& taker, int depth) {
    m_open.push_back(&taker);
    run(depth);
    m_open.pop_back();
  }

  // While `one` is the status of an open grab, of which only the first installs anything.
  void run_grabbed(grabbing& one, int depth) {
    one.grabs++ == 0 ? run_under(one.taker, depth) : run(depth);
    --one.grabs;
  }

  void open_scope(int depth) {
    auto& one = m_grabbing[m_random() % 3];
    auto& disabled = GCL_ImsgRedirect::m_no_redirect;
    auto const kind = m_random() % 5;
    if (kind == 0) {
      one.status.grab_imsg_out();
      run_grabbed(one, depth);
      one.status.release_imsg_out();
    } else if (kind == 1) {
      GCL_ImsgRedirect const scope(one.status);
      disabled ? run(depth) : run_grabbed(one, depth);
    } else if (kind == 2) {
      GCL_ImsgCollector collector;
      ASSERT_TRUE(disabled);
      receiver taker{true};
      run_under(taker, depth);
      ASSERT_EQ(texts_of(collector), taker.texts);
      for (int s = 0; s <= 10; ++s) ASSERT_EQ(collector.has_message(s), taker.severities[s]);
    } else if (kind == 3) {
      client const scope;
      run_under(m_client, depth);
    } else {
      bool const before = std::exchange(disabled, m_random() % 2 != 0);
      run(depth);
      disabled = before;
    }
  }

  std::mt19937 m_random{2};
  int m_printed = 0;
  client const m_outermost;
  receiver m_client;
  grabbing m_grabbing[3];
  std::vector<receiver*> m_open = {&m_client};
};

TEST_F(Status, RandomNestingAgreesWithAModel) {
  nesting scopes;
  for (int round = 0; round < 3000 && !HasFatalFailure(); ++round) {
    scopes.run(round % 5);
    scopes.check_texts();
  }
}

TEST_F(Status, CopiesOfCapturedMessagesAreAskedForEachTime) {
  for (char const* value : {"true", "TRUE", "True", "", "tru", static_cast<char const*>(nullptr)}) {
    auto const child = run_in_child(
        [] {
          GCL_Status status;
          status.grab_imsg_out();
          print(6, "100%s%n\n");
          setenv("GCL_STATUS_IMSG_COPY", "TRUE", 1);
          print(0, "no end");
          unsetenv("GCL_STATUS_IMSG_COPY");
          print(0, "!");
          std::_Exit(texts_of(status) == "100%s%n\nno end!" ? 0 : 1);  // without a flush
        },
        {{"GCL_STATUS_IMSG_COPY", value}});
    bool const on =
        value != nullptr && (!std::strcmp(value, "true") || !std::strcmp(value, "TRUE"));
    EXPECT_EQ(child.out, on ? "100%s%n\nno end" : "no end");
    EXPECT_EQ(child.exit_code, 0);
  }
}

TEST_F(Status, LostMessagesAreShownWhenTheFirstCollectorFoundItAskedFor) {
  for (char const* value : {"0", " ", "", static_cast<char const*>(nullptr)}) {
    bool const shown = value != nullptr && *value != '\0';
    auto const child = run_in_child(
        [] {
          { GCL_ImsgCollector const empty; }  // decides, though it has nothing to show
          setenv("IMSG_LOST_OUTPUT", std::getenv("LATER"), 1);
          GCL_ImsgCollector collector, cleared;
          collector.add_message("100%s%n\n", 0);
          collector.add_message("later", 6);
          cleared.add_message("forgotten", 6);
          cleared.clear_messages();
        },
        {{"IMSG_LOST_OUTPUT", value}, {"LATER", shown ? "" : "1"}});
    std::string const notice = "Notice: some imsg output may not have been displayed:\n";
    EXPECT_EQ(child.out, shown ? notice + "later\n100%s%n\n\n" : "");
  }
}

}  // namespace
