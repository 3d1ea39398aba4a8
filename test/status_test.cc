// Statuses, their messages, and what captures the message service's output.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <variant>
#include <vector>

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

TEST(Status, ZeroDiscardsMessagesCopiesAreDeepMovesTakeThem) {
  GCL_Status a, c;
  a.add_message("one\n");
  a.set(-5);
  a.add_message("two");
  GCL_Status b(a);
  c.add_message("c");
  c = a;
  b.add_message("b");
  a = *&a;
  EXPECT_EQ(texts_of(a) + texts_of(b) + texts_of(c), "one\ntwoone\ntwobone\ntwo");
  EXPECT_TRUE(a == -5 && -5 == b && a.failed() && !a.is_ok() && b.peek() == -5 && a == c);
  b.set(0);
  c = b;
  GCL_Status d(std::move(a)), e;
  e = std::move(d);
  EXPECT_TRUE(e == -5 && texts_of(e) == "one\ntwo");
  e.reset(7);
  EXPECT_TRUE(e == 7 && texts_of(e).empty());
  for (GCL_Status* s : {&a, &b, &c, &d}) EXPECT_TRUE(*s == 0 && s->get_message_stack() == nullptr);
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

// Some that grab and some that collect, begun and ended in any order. Each message is taken by the one
// that began last of those that are open.
TEST(Status, TakersEndInAnyOrder) {
  struct open_taker {
    std::unique_ptr<GCL_Status> status;
    std::unique_ptr<GCL_ImsgCollector> collector;
    bool has_messages() {
      return status ? status->get_message_stack() != nullptr : collector->has_messages();
    }
  };
  std::mt19937 random(1);
  for (int round = 0; round < 300; ++round) {
    std::vector<open_taker> open;
    for (int step = 0; step < 20 || !open.empty(); ++step) {
      if (step < 20 && random() % 2 == 0) {
        open.push_back(random() % 2 == 0
                           ? open_taker{std::make_unique<GCL_Status>(), nullptr}
                           : open_taker{nullptr, std::make_unique<GCL_ImsgCollector>()});
        if (open.back().status) open.back().status->grab_imsg_out();
      } else if (!open.empty()) {
        open.erase(open.begin() + static_cast<int>(random() % open.size()));
      }
      if (open.empty()) continue;
      for (auto& one : open) one.status ? one.status->set_ok() : one.collector->clear_messages();
      imsg_print(6, "error", -1);
      for (auto& one : open) ASSERT_EQ(one.has_messages(), &one == &open.back());
    }
    ASSERT_EQ(taker(), nullptr);
    ASSERT_FALSE(GCL_ImsgRedirect::m_no_redirect);
  }
}

TEST(Status, RedirectAsksAtEachEndWhetherItIsDisabled) {
  GCL_Status status;
  for (bool disabled_first : {true, false, true}) {
    GCL_ImsgRedirect::m_no_redirect = disabled_first;
    {
      GCL_ImsgRedirect const redirect(status);
      disabled_first ? GCL_ImsgRedirect::enable_redirection()
                     : GCL_ImsgRedirect::disable_redirection();
    }
    // The first releases nothing, the last what the second left.
    EXPECT_EQ(taker() != nullptr, !disabled_first);
  }
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
  struct marking : GCL_ImsgCollector {
    void add_message(GCL_String const& message, int severity) override {
      if (severity == 6) throw std::string(message.c_str());
      GCL_ImsgCollector::add_message(message, severity);
    }
  } collector;
  for (int severity : {-1, 11, 10}) collector.handle_message("x", severity);
  for (int s = -1; s <= 11; ++s) EXPECT_EQ(collector.has_message(s), s == 10);
  for (int slot : {0, 1, 4, 5}) {
    collector.clear_messages();
    imsg_print(slot, "y", -1);
    for (int s = 0; s <= 10; ++s) EXPECT_EQ(collector.has_message(s), s == (slot & ~1));
  }
  for (int slot : {6, 7}) EXPECT_THROW(imsg_print(slot, "z", -1), std::string);
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
