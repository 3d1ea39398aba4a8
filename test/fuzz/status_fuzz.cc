// Whatever takes the message service's output, nested in any way, against who should get each
// message: the innermost that takes messages of its slot.
#include <tuple>
#include <utility>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "miroxgcl/gcl_imsg_redirect.h"
#include "miroxgcl/gcl_status_base.h"

namespace {

// The message service's table, its context and whether redirection is disabled.
auto state() {
  std::vector<imsg_redirect_proc> procs(IMSG_PROC_COUNT);
  void* context = nullptr;
  imsg_get_redirect_procs(IMSG_PROC_COUNT, procs.data(), &context);
  return std::tuple(procs, context, GCL_ImsgRedirect::m_no_redirect);
}

// A client's procedure. It ignores the context: under a collector that is the collector.
std::string s_taken;
void take(void*, char* text) { s_taken += text; }

struct collecting : GCL_StatusBase {
  GCL_String describe() const override { return {}; }
};

// One that takes messages, and what it should hold.
struct taker {
  bool is_collector = false;
  std::string texts = "";
  int grabs = 0;
  GCL_Status status = {};  // if that is what takes them
};

struct nesting {
  // Opens a scope and others in it, up to the end of the scope or of the input.
  void open(unsigned int kind, int depth) {
    auto const [procs, context, was_disabled] = state();
    bool& disabled = GCL_ImsgRedirect::m_no_redirect;
    auto& grabbing = grabbers[input.number(2)];
    taker mine{kind == 1};
    if (kind == 0) {
      auto const taken_outside = std::exchange(s_taken, "");
      imsg_set_redirect_procs(std::vector(IMSG_PROC_COUNT, &take).data(), IMSG_PROC_COUNT, this);
      run_under(mine, depth);
      imsg_set_redirect_procs(procs.data(), IMSG_PROC_COUNT, context);
      FUZZ_CHECK(std::exchange(s_taken, taken_outside) == mine.texts);
    } else if (kind == 1) {
      collecting status;
      run_under(mine, depth);
      GCL_String texts;
      status.messages(texts);
      FUZZ_CHECK(disabled && texts.c_str() == mine.texts);
    } else if (kind == 2) {
      grabbing.status.grab_imsg_out();
      run_under(grabbing, depth);
      grabbing.status.release_imsg_out();
    } else if (kind == 3) {
      GCL_ImsgRedirect const redirect(grabbing.status);
      run_under(disabled ? *innermost_last.back() : grabbing, depth);
    } else {
      disabled = !disabled;
      run_under(*innermost_last.back(), depth);
      disabled = was_disabled;
    }
    FUZZ_CHECK(state() == std::tuple(procs, context, was_disabled));
  }

  // Of several grabs of one status only the first installs anything.
  void run_under(taker& one, int depth) {
    if (one.grabs++ == 0) innermost_last.push_back(&one);
    while (depth > 0 && input.number(7) != 0) {
      auto const kind = input.number(7);
      kind <= 4 ? open(kind, depth - 1) : print();
      for (auto const& g : grabbers) FUZZ_CHECK(g.texts == g.status.error_message().c_str());
    }
    if (--one.grabs == 0) innermost_last.pop_back();
  }

  void print() {
    auto const slot = input.number(IMSG_PROC_COUNT - 1);
    bool const for_collectors = slot <= 1 || (slot >= 4 && slot <= 7);
    auto to = innermost_last.rbegin();
    while ((*to)->is_collector && !for_collectors) ++to;
    std::string const text = std::to_string(printed++) + input.text(2, "%s\n");
    (*to)->texts.insert((*to)->is_collector ? 0 : (*to)->texts.size(), text);
    imsg_print(static_cast<int>(slot), "%s", -1, text.c_str());
  }

  fuzz_input& input;
  int printed = 0;
  taker grabbers[3] = {};
  std::vector<taker*> innermost_last = {};
};

}  // namespace

void fuzz_one_input(fuzz_input& input) {
  nesting scopes{input};
  while (!input.empty()) scopes.open(0, 30);
}
