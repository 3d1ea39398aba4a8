// Statuses, their messages, and what captures the message service's output.
#include <gtest/gtest.h>

#include <memory>
#include <variant>

#include "miroxgcl/gcl.h"
#include "support/child.h"
#include "support/failing_allocator.h"

namespace {

// The status or collector that takes the message service's output; null for none.
void* taker() {
  void* context = nullptr;
  imsg_get_redirect_procs(0, nullptr, &context);
  return context;
}

std::string texts_of(GCL_Status const& status) { return status.error_message().c_str(); }

TEST(Status, CopiesAreDeepAndMovesTakeTheMessages) {
  GCL_Status a;
  a.add_message("one\n");
  a.set(-5);
  a.add_message("two");
  GCL_Status copy(a), assigned, moved(std::move(a));
  copy.add_message("more");
  assigned.add_message("old");
  assigned = moved;
  moved = *&moved;

  EXPECT_EQ(texts_of(copy), "one\ntwomore");
  EXPECT_EQ(texts_of(assigned), "one\ntwo");
  EXPECT_EQ(texts_of(moved), "one\ntwo");
  EXPECT_EQ(moved, -5);
  EXPECT_EQ(a, 0);  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(a.get_message_stack(), nullptr);
  assigned = std::move(copy);
  EXPECT_EQ(texts_of(assigned), "one\ntwomore");
  assigned = a;
  EXPECT_EQ(assigned.get_message_stack(), nullptr);
}

TEST(Status, SuccessDiscardsMessages) {
  GCL_Status set, reset;
  set.add_message("one");
  reset.add_message("two");
  set.set(0);
  reset.reset(7);

  EXPECT_EQ(set.get_message_stack(), nullptr);
  EXPECT_EQ(reset.get_message_stack(), nullptr);
  EXPECT_EQ(reset, 7);
}

TEST(Status, GrabBelongsToTheObject) {
  {
    std::variant<GCL_ImsgCollector, GCL_Status> place;
    auto& status = place.emplace<GCL_Status>();  // where a collector was
    for (int grabs = 0; grabs < 2; ++grabs) status.grab_imsg_out();
    GCL_Status copy(status), moved(std::move(status));
    status = copy;
    status = std::move(moved);
    for (GCL_Status* other : {&copy, &moved}) other->release_imsg_out();
    imsg_print(9, "in", -1);
    EXPECT_EQ(texts_of(status), "in");
  }  // with two grabs open
  EXPECT_EQ(taker(), nullptr);
}

// Each message is taken by the one that began last of those that are open.
TEST(Status, TakersEndInAnyOrder) {
  auto first = std::make_unique<GCL_ImsgCollector>();
  auto second = std::make_unique<GCL_Status>();
  second->grab_imsg_out();
  auto third = std::make_unique<GCL_ImsgCollector>();

  second.reset();
  imsg_print(6, "to the third", -1);
  EXPECT_TRUE(third->has_messages());
  EXPECT_FALSE(first->has_messages());
  third.reset();
  imsg_print(6, "to the first", -1);
  EXPECT_TRUE(first->has_messages());
  first.reset();
  EXPECT_EQ(taker(), nullptr);
  EXPECT_FALSE(GCL_ImsgRedirect::m_no_redirect);
}

TEST(Status, FailedAllocationsPassThroughTheServiceAndLeaveNoMessage) {
  GCL_Status source;
  GCL_OSUser const missing(source, "no-such-login");
  int const receiving = fail_each_allocation(
      [] { return GCL_Status(); }, [&](GCL_Status& status) { missing.sid(status); },
      [](GCL_Status& status, bool failed) {
        EXPECT_EQ(taker(), nullptr);
        EXPECT_EQ(status.get_message_stack() == nullptr, failed);
      });
  EXPECT_GE(receiving, 4);  // the service's buffer, the text, the stack, its node

  source.set(8);
  for (char const* text : {"one", "two"}) source.add_message(text);
  fail_each_allocation([] { return GCL_Status(); }, [&](GCL_Status& target) { target = source; },
                       [](GCL_Status& target, bool failed) {
                         EXPECT_EQ(std::to_string(target.value()) + texts_of(target),
                                   failed ? "8" : "8onetwo");
                       });
}

TEST(Status, CollectorRecordsSeverities) {
  GCL_ImsgCollector collector;
  imsg_print(5, "a warning", -1);
  collector.add_message("of no severity", 11);
  EXPECT_TRUE(collector.has_message(4));
  EXPECT_FALSE(collector.has_message(6));
  EXPECT_FALSE(collector.has_message(11));
}

TEST(Status, CopiesOfCapturedMessagesAreAskedForEachTime) {
  auto const child = run_in_child([] {
    GCL_Status status;
    status.grab_imsg_out();
    for (char const* value : {"", "true", "tru", "True", "TRUE"}) {
      setenv("GCL_STATUS_IMSG_COPY", value, 1);
      imsg_print(6, "%s 100%%s%%n\n", -1, value);
    }
    std::_Exit(static_cast<int>(status.get_message_stack()->Depth()));  // without a flush
  });
  EXPECT_EQ(child.out, "true 100%s%n\nTRUE 100%s%n\n");
  EXPECT_EQ(child.exit_code, 5);
}

TEST(Status, LostMessagesAreShownWhenTheFirstCollectorFoundItAskedFor) {
  for (bool shown : {false, true}) {
    auto const child = run_in_child(
        [] {
          { GCL_ImsgCollector const empty; }  // decides, though it has nothing to show
          setenv("IMSG_LOST_OUTPUT", *std::getenv("IMSG_LOST_OUTPUT") == '0' ? "" : "1", 1);
          GCL_ImsgCollector collector;
          collector.add_message("100%s%n\n", 0);
        },
        {{"IMSG_LOST_OUTPUT", shown ? "0" : ""}});
    std::string const notice = "Notice: some imsg output may not have been displayed:\n";
    EXPECT_EQ(child.out, shown ? notice + "100%s%n\n\n" : "");
  }
}

}  // namespace
