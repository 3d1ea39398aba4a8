// The dynamic array beside QList, std::deque and std::vector, on items of int.
#include <cstring>
#include <deque>
#include <memory>
#include <vector>

#include "compare.h"
#include "miroxgcl/gcl_integer_list.h"
#include "miroxgcl/gcl_string_list.h"
#include "qt.h"

namespace {

constexpr int count = 1000;

using Ours = LX_TDynamic<int>;

void preallocate(Ours& array) { array.Preallocate(count); }
void append(Ours& array, int item) { array.Append(item); }
void insert_first(Ours& array, int item) { array.Insert(item); }
void insert_middle(Ours& array, int item) { array.Insert(item, count / 2); }
void remove_middle(Ours& array) { array.Remove(count / 2); }

template <class Array>
void preallocate(Array& array) {
  array.reserve(count);
}
void preallocate(std::deque<int>&) {}  // knows nothing of the kind
template <class Array>
void append(Array& array, int item) {
  array.push_back(item);
}
template <class Array>
void insert_first(Array& array, int item) {
  array.insert(array.begin(), item);
}
template <class Array>
void insert_middle(Array& array, int item) {
  array.insert(array.begin() + count / 2, item);
}
template <class Array>
void remove_middle(Array& array) {
  array.erase(array.begin() + count / 2);
}

template <class Array>
Array filled() {
  Array array;
  for (int i = 0; i < count; ++i) append(array, i);
  return array;
}

template <class Array>
void append_preallocated(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    Array array;
    preallocate(array);
    for (int n = 0; n < count; ++n) {
      append(array, n);
      keep(array);
    }
  }
}

template <class Array>
void insert_first_preallocated(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    Array array;
    preallocate(array);
    for (int n = 0; n < count; ++n) {
      insert_first(array, n);
      keep(array);
    }
  }
}

template <class Array>
void insert_and_remove(long rounds) {
  Array array = filled<Array>();
  for (long i = 0; i < rounds; ++i) {
    insert_middle(array, 7);
    keep(array);
    remove_middle(array);
    keep(array);
  }
}

template <class Array, class Index>
void walk_by_index(long rounds) {
  Array const array = filled<Array>();
  for (long i = 0; i < rounds; ++i) {
    int sum = 0;
    for (Index n = 0; n < count; ++n) sum += array[n];
    int const total = sum;
    keep(total);
  }
}

template <class Array>
void walk_by_iterator(long rounds) {
  Array const array = filled<Array>();
  for (long i = 0; i < rounds; ++i) {
    int sum = 0;
    for (int item : array) sum += item;
    int const total = sum;
    keep(total);
  }
}

void walk_by_our_iterator(long rounds) {
  GCL_IntegerList list(count);
  for (int n = 0; n < count; ++n) list.Append(n);
  LX_TCollection<int> const* collection = &list;
  keep(collection);
  for (long i = 0; i < rounds; ++i) {
    int sum = 0;
    LX_TCollectionActiveIterator<int> item(*collection);
    for (; !item.IsDone(); item.Next()) sum += *item.CurrentItem();
    int const total = sum;
    keep(total);
  }
}

constexpr std::size_t chunk = 32;
constexpr std::size_t strings = 10'000;

void grow_by_chunks(long rounds) {
  GCL_String const text("text");
  for (long i = 0; i < rounds; ++i) {
    GCL_StringList list(chunk);
    for (std::size_t n = 0; n < strings; ++n) list.Append(text);
    keep(list);
  }
}

// The limit: what the reallocations of the same growth move, and nothing else.
void move_chunks(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    std::unique_ptr<void*[]> slots;
    for (std::size_t size = 0; size < strings; size += chunk) {
      std::unique_ptr<void*[]> larger(new void*[size + chunk]);
      if (size != 0) std::memcpy(larger.get(), slots.get(), size * sizeof(void*));
      keep(*larger.get());
      slots = std::move(larger);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  Row("array: append 1,000, preallocated", "QList, std::deque <= 1", 10)
      .ours(append_preallocated<Ours>)
      .peer("QList", QT(append_preallocated<QList<int>>))
      .peer("std::deque", append_preallocated<std::deque<int>>)
      .peer("std::vector", append_preallocated<std::vector<int>>);
  Row("array: walk 1,000 by index", "QList, std::deque <= 1", 100)
      .ours(walk_by_index<Ours, unsigned int>)
      .peer("QList", QT(walk_by_index<QList<int>, qsizetype>))
      .peer("std::deque", walk_by_index<std::deque<int>, std::size_t>)
      .peer("std::vector", walk_by_index<std::vector<int>, std::size_t>);
  Row("array: insert 1,000 first, preallocated", "QList, std::deque <= 1", 10)
      .ours(insert_first_preallocated<Ours>)
      .peer("QList", QT(insert_first_preallocated<QList<int>>))
      .peer("std::deque", insert_first_preallocated<std::deque<int>>)
      .peer("std::vector", insert_first_preallocated<std::vector<int>>);
  Row("array: insert and remove amid 1,000", "QList, std::deque <= 1")
      .ours(insert_and_remove<Ours>)
      .peer("QList", QT(insert_and_remove<QList<int>>))
      .peer("std::deque", insert_and_remove<std::deque<int>>)
      .peer("std::vector", insert_and_remove<std::vector<int>>);
  Row("array: walk 1,000 by iterator", "QList, std::deque <= 3", 100)
      .ours(walk_by_our_iterator)
      .peer("QList", QT(walk_by_iterator<QList<int>>))
      .peer("std::deque", walk_by_iterator<std::deque<int>>)
      .peer("std::vector", walk_by_iterator<std::vector<int>>);
  Row("list of strings: grow to 10,000 by 32", "memcpy of the slots <= 2", 1)
      .ours(grow_by_chunks)
      .peer("memcpy of the slots", move_chunks);
  return run_rows(argc, argv);
}
