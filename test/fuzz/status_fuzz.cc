// Whatever takes the message service's output, nested in any way, against who should get each
// message: the innermost that takes messages of its slot.
#include <algorithm>
#include <tuple>

#include "fuzz/fuzz_input.h"
#include "miroxgcl/gcl.h"

namespace {

// The message service's table, its context and whether redirection is disabled.
auto state() {
  std::vector<imsg_redirect_proc> procs(IMSG_PROC_COUNT);
  void* context = nullptr;
  imsg_get_redirect_procs(IMSG_PROC_COUNT, procs.data(), &context);
  return std::tuple(procs, context, GCL_ImsgRedirect::m_no_redirect);
}

// One that takes messages, and what it should hold.
struct taker {
  bool is_collector = false;
  std::string texts = "";
  GCL_Status status = {};  // of those that are no collector
};

// A client's procedure. It ignores the context: under a collector that is the collector.
taker* s_client = nullptr;
void take(void*, char* text) { s_client->status.add_message(text); }

struct nesting {
  // Opens a scope and others in it, up to the end of the scope or of the input.
  void open(unsigned int kind, int depth) {
    auto const [procs, context, redirect_is_disabled] = state();
    auto& grabbing = takers[input.number(2)];
    if (kind == 0) {
      imsg_set_redirect_procs(std::vector(IMSG_PROC_COUNT, &take).data(), IMSG_PROC_COUNT, this);
      run_under(*s_client, depth);
      imsg_set_redirect_procs(procs.data(), IMSG_PROC_COUNT, context);
    } else if (kind == 1) {
      taker mine{true};
      GCL_ImsgCollector const collector;
      run_under(mine, depth);
      GCL_StringList texts;
      collector.messages(texts);
      FUZZ_CHECK(GCL_ImsgRedirect::m_no_redirect && join(texts, "").c_str() == mine.texts);
    } else if (kind == 2) {
      grabbing.status.grab_imsg_out();
      run_under(grabbing, depth);
      grabbing.status.release_imsg_out();
    } else {
      GCL_ImsgRedirect const redirect(grabbing.status);
      run_under(redirect_is_disabled ? *innermost_last.back() : grabbing, depth);
    }
    FUZZ_CHECK(state() == std::tuple(procs, context, redirect_is_disabled));
  }

  // Of several grabs of one status only the first installs anything.
  void run_under(taker& one, int depth) {
    bool const is_open = std::count(innermost_last.begin(), innermost_last.end(), &one) != 0;
    innermost_last.push_back(is_open && &one != s_client ? innermost_last.back() : &one);
    while (depth > 0 && input.number(7) != 0) {
      auto const kind = input.number(7);
      kind <= 3 ? open(kind, depth - 1) : print();
      for (auto const& t : takers) FUZZ_CHECK(t.texts == t.status.error_message().c_str());
    }
    innermost_last.pop_back();
  }

  void print() {
    auto const slot = input.number(IMSG_PROC_COUNT - 1);
    bool const for_collectors = slot <= 1 || (slot >= 4 && slot <= 7);
    auto to = innermost_last.rbegin();
    while ((*to)->is_collector && !for_collectors) ++to;
    std::string const text = std::to_string(slot) + input.text(2, "%s\n");
    (*to)->texts.insert((*to)->is_collector ? 0 : (*to)->texts.size(), text);
    imsg_print(static_cast<int>(slot), "%s", -1, text.c_str());
  }

  fuzz_input& input;
  taker takers[4] = {};  // three that grab, and the client
  std::vector<taker*> innermost_last = {};
};

}  // namespace

void fuzz_one_input(fuzz_input& input) {
  nesting scopes{input};
  s_client = &scopes.takers[3];
  while (!input.empty()) scopes.open(0, 30);
}
