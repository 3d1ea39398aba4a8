#include "redirect_context.h"

#include <algorithm>
#include <memory>
#include <new>

namespace {

// From the first to begin to the last, at the top. Few are ever open at once; more are on the heap.
// Constant-initialised, and nothing to destroy while none is open: static objects may grab, too.
class Stack {
 public:
  redirect_context* begin() { return m_items; }
  redirect_context* end() { return m_items + m_size; }

  void push(redirect_context const& taker) {
    if (m_size == m_capacity && !grow()) return;
    m_items[m_size++] = taker;
  }

  void remove(redirect_context* taker) {
    std::copy(taker + 1, end(), taker);
    if (--m_size == 0 && m_items != m_first) {
      delete[] m_items;
      m_items = m_first;
      m_capacity = few;
    }
  }

  // Null where there is none, for want of memory as it began.
  redirect_context* find(void* context) {
    auto const is_it = [=](redirect_context const& taker) { return taker.context == context; };
    auto const found =
        std::find_if(std::make_reverse_iterator(end()), std::make_reverse_iterator(begin()), is_it);
    return found.base() != begin() ? &*found : nullptr;
  }

 private:
  static constexpr unsigned int few = 4;

  bool grow() {
    auto* const more = new (std::nothrow) redirect_context[std::size_t{2} * m_capacity];
    if (more == nullptr) return false;
    std::copy(begin(), end(), more);
    if (m_items != m_first) delete[] m_items;
    m_items = more;
    m_capacity *= 2;
    return true;
  }

  redirect_context m_first[few] = {};
  redirect_context* m_items = m_first;
  unsigned int m_size = 0;
  unsigned int m_capacity = few;
};

thread_local Stack s_open __attribute__((tls_model("initial-exec")));

}  // namespace

void redirect_context_begin(redirect_context const& taker) noexcept { s_open.push(taker); }

void redirect_context_end(void* context, imsg_redirect_proc const* saved_procs,
                          void* saved_arg) noexcept {
  redirect_context* const taker = s_open.find(context);
  bool const is_on_top = taker == nullptr || taker + 1 == s_open.end();
  if (taker != nullptr) s_open.remove(taker);
  if (is_on_top) return imsg_set_redirect_procs(saved_procs, IMSG_PROC_COUNT, saved_arg);
  for (redirect_context const& other : s_open) {
    if (*other.saved_arg != context) continue;
    std::copy_n(saved_procs, IMSG_PROC_COUNT, other.saved_procs);
    *other.saved_arg = saved_arg;
  }
}

bool redirect_context_passes_flag(void* collector, bool redirect_was_enabled) noexcept {
  redirect_context* taker = s_open.find(collector);
  if (taker == nullptr) return false;
  auto const is_collector = [](redirect_context const& other) {
    return other.saved_redirect_was_enabled != nullptr;
  };
  taker = std::find_if(taker + 1, s_open.end(), is_collector);
  if (taker == s_open.end()) return false;
  *taker->saved_redirect_was_enabled = redirect_was_enabled;
  return true;
}

void* redirect_context_status(void* context) noexcept {
  redirect_context const* taker = s_open.find(context);
  while (taker != nullptr && taker->saved_redirect_was_enabled != nullptr) {
    context = *taker->saved_arg;
    taker = s_open.find(context);
  }
  return context;
}
