// Statuses, their messages, and what captures the message service's output.
#include <gtest/gtest.h>

#include <vector>

#include "miroxgcl/gcl.h"
#include "support/child.h"
#include "support/failing_allocator.h"

namespace {

void print(int slot, std::string const& text) { imsg_print(slot, "%s", -1, text.c_str()); }

// The message service's table as it is now, and its context.
auto table() {
  std::vector<imsg_redirect_proc> procs(IMSG_PROC_COUNT);
  void* context = nullptr;
  imsg_get_redirect_procs(IMSG_PROC_COUNT, procs.data(), &context);
  return std::pair(procs, context);
}

std::string texts_of(GCL_Status const& status) { return status.error_message().c_str(); }

// Every test leaves the process's table and switch as it found them.
class Status : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(table(), m_found);
    EXPECT_FALSE(GCL_ImsgRedirect::m_no_redirect);
  }

  decltype(table()) const m_found = table();
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
  for (int slot : {0, 1, 4, 5}) {
    collector.clear_messages();
    print(slot, "y");
    for (int s = 0; s <= 10; ++s) EXPECT_EQ(collector.has_message(s), s == (slot & ~1));
  }
  GCL_StringList list(4);
  collector.messages(list);
  EXPECT_TRUE(list.Length() == 1 && list[0] == "%s");
  EXPECT_THROW(GCL_OSUser(status, "no-such-login").sid(status), std::string);
  collector.clear_messages();
  EXPECT_FALSE(collector.has_messages() || collector.has_message(4) || collector.has_message(10));
}

TEST_F(Status, CopiesOfCapturedMessagesAreAskedForEachTime) {
  for (std::string const value : {"true", "TRUE", "True", "tru"}) {
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
        {{"GCL_STATUS_IMSG_COPY", value.c_str()}});
    EXPECT_EQ(child.out, value == "true" || value == "TRUE" ? "100%s%n\nno end" : "no end");
    EXPECT_EQ(child.exit_code, 0);
  }
}

TEST_F(Status, LostMessagesAreShownWhenTheFirstCollectorFoundItAskedFor) {
  for (char const* value : {"0", " ", ""}) {
    bool const shown = *value != '\0';
    auto const child = run_in_child(
        [] {
          { GCL_ImsgCollector const empty; }  // decides, though it has nothing to show
          setenv("IMSG_LOST_OUTPUT", std::getenv("LATER"), 1);
          GCL_ImsgCollector collector;
          collector.add_message("100%s%n\n", 0);
          collector.add_message("later", 6);
        },
        {{"IMSG_LOST_OUTPUT", value}, {"LATER", shown ? "" : "1"}});
    std::string const notice = "Notice: some imsg output may not have been displayed:\n";
    EXPECT_EQ(child.out, shown ? notice + "later\n100%s%n\n\n" : "");
  }
}

}  // namespace
