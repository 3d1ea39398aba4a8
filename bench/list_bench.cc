// The linked list and the stack beside std::list, on items of int, 1,000 of them.
#include <list>

#include "compare.h"
#include "miroxgcl/lx_stack.h"
#include "miroxgcl/lx_unbounded.h"

namespace {

constexpr int count = 1000;

using List = LX_TUnbounded<int>;
using Stack = LX_TUnboundedStack<int>;

void push(List& list, int item) { list.Insert(item); }
void pop(List& list) { list.Remove(0); }
void push(LX_TStack<int>& stack, int item) { stack.Push(item); }
void pop(LX_TStack<int>& stack) { stack.Pop(); }
void push(std::list<int>& list, int item) { list.push_front(item); }
void pop(std::list<int>& list) { list.pop_front(); }

template <class Container>
Container filled() {
  Container container;
  for (int i = 0; i < count; ++i) push(container, i);
  return container;
}

template <class Container>
void push_and_pop(long rounds) {
  Container container;
  for (long i = 0; i < rounds; ++i) {
    for (int n = 0; n < count; ++n) push(container, n);
    keep(container);
    for (int n = 0; n < count; ++n) pop(container);
    keep(container);
  }
}

template <class Container>
void copy(long rounds) {
  Container const original = filled<Container>();
  for (long i = 0; i < rounds; ++i) {
    Container copy(original);
    keep(copy);
  }
}

void walk_list(long rounds) {
  List const list = filled<List>();
  for (long i = 0; i < rounds; ++i) {
    int sum = 0;
    for (unsigned int n = 0; n < list.Length(); ++n) sum += list[n];
    int const total = sum;
    keep(total);
  }
}

void walk_stack(long rounds) {
  Stack const stack = filled<Stack>();
  for (long i = 0; i < rounds; ++i) {
    int sum = 0;
    LX_TStackActiveIterator<int> item(stack);
    for (; !item.IsDone(); item.Next()) sum += *item.CurrentItem();
    int const total = sum;
    keep(total);
  }
}

void walk_std(long rounds) {
  std::list<int> const list = filled<std::list<int>>();
  for (long i = 0; i < rounds; ++i) {
    int sum = 0;
    for (int item : list) sum += item;
    int const total = sum;
    keep(total);
  }
}

}  // namespace

int main(int argc, char** argv) {
  Row("list: push and pop 1,000", "std::list <= 1", 10)
      .ours(push_and_pop<List>)
      .peer("std::list", push_and_pop<std::list<int>>);
  Row("list: walk 1,000 by index", "std::list <= 1", 10)
      .ours(walk_list)
      .peer("std::list", walk_std);
  Row("list: copy 1,000", "std::list <= 1", 10)
      .ours(copy<List>)
      .peer("std::list", copy<std::list<int>>);
  Row("stack: push and pop 1,000", "std::list <= 1", 10)
      .ours(push_and_pop<Stack>)
      .peer("std::list", push_and_pop<std::list<int>>);
  Row("stack: walk 1,000 by iterator", "std::list <= 1", 10)
      .ours(walk_stack)
      .peer("std::list", walk_std);
  Row("stack: copy 1,000", "std::list <= 1", 10)
      .ours(copy<Stack>)
      .peer("std::list", copy<std::list<int>>);
  return run_rows(argc, argv);
}
