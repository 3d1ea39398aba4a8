/// @file
/// LX_TDynamic<T,M>: a circular array of slots that grows and shrinks in whole chunks, and
/// LX_TDynamicCollection<T,M>, the LX_TCollection<T> made of one.
///
/// Putting an item first or last moves no other; an insertion or removal inside moves the items on
/// one side. Growth is by one chunk, so n appends cost n/chunk reallocations: use a larger chunk,
/// or Preallocate(), for long arrays. A removal gives back the chunks that are no longer needed: at
/// a chunk's border, an append and a removal in turn move all items each time.
///
///     LX_TDynamic<int> a(4);      // chunks of 4 slots, none held yet
///     a.Append(1);                // 4 slots
///     a.Insert(0);                // in the last slot: the run wraps; a[0] is 0, a[1] is 1
///     a.Clear();                  // no slots
///
/// Invariants of the array:
/// 1. Each of the m_size slots at m_items holds a constructed T; m_items is null when m_size is 0.
/// 2. m_size is a multiple of the chunk size in force when the slots were obtained.
/// 3. Positions count from 1; 0 in both m_start and m_stop means empty.
/// 4. The items occupy positions m_start to m_stop, wrapping from m_size to 1 when m_start is
///    the greater.
#ifndef MIROXGCL_LX_DYNAMIC_H
#define MIROXGCL_LX_DYNAMIC_H

#ifndef __cpp_exceptions
#error "lx_dynamic.h needs exceptions: compile without -fno-exceptions"
#endif

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "miroxgcl/lx_collection.h"
#include "miroxgcl/lx_item.h"
#include "miroxgcl/lx_precondition.h"
#include "miroxgcl/lx_trivially_relocatable.h"
#include "miroxgcl/lx_unmanaged.h"

/// When T's copying or M throws, the array keeps its value. An argument may be an item of this
/// array, or belong to one. A slot that an item has left keeps a copy of it until it is overwritten
/// or the slots are released, where copying cannot throw.
///
/// As safe as the standard library's values, where the items and M are.
///
/// Items move when the array grows: a status with an open grab, for one, must not lie in an array.
/// @ingroup collections
template <class T, class M = LX_CUnmanaged>
class MIROXGCL_API LX_TDynamic {
 public:
  /// No slots. A chunk size of 0 grows as if by 32.
  /// @{
  LX_TDynamic() noexcept : LX_TDynamic(0) {}
  explicit LX_TDynamic(unsigned int chunk_size) noexcept : m_chunk_size(chunk_size) {}
  /// @}
  /// Takes the chunk size too.
  /// @{
  LX_TDynamic(LX_TDynamic const& other) : LX_TDynamic(other.m_chunk_size) { *this = other; }
  LX_TDynamic(LX_TDynamic&& other) noexcept : LX_TDynamic(other.m_chunk_size) { Steal(other); }
  LX_TDynamic(std::initializer_list<T> items) : LX_TDynamic() { *this = items; }
  ~LX_TDynamic() { Clear(); }
  /// @}

  /// Keeps this array's own chunk size. The move takes the other's slots and leaves it empty.
  /// @{
  LX_TDynamic& operator=(LX_TDynamic const& other);
  LX_TDynamic& operator=(LX_TDynamic&& other) noexcept;
  LX_TDynamic& operator=(std::initializer_list<T> items);
  /// @}

  /// 1 when both hold the same number of items, equal in order.
  /// @{
  int operator==(LX_TDynamic const& other) const;
  int operator!=(LX_TDynamic const& other) const { return !(*this == other); }
  /// @}

  /// The number of items.
  unsigned int Length() const {
    if (m_start == 0) return 0;
    return m_stop - m_start + 1 + (Wraps() ? m_size : 0);
  }

  /// REQUIRES: i < Length().
  /// @{
  T const& ItemAt(unsigned int i) const {
    RequireIndex(i, "LX_TDynamic::ItemAt");
    return m_items[SlotOf(i)];
  }
  T& ItemAt(unsigned int i) {
    RequireIndex(i, "LX_TDynamic::ItemAt");
    return m_items[SlotOf(i)];
  }
  T const& operator[](unsigned int i) const {
    RequireIndex(i, "LX_TDynamic<>::operator[]");
    return m_items[SlotOf(i)];
  }
  T& operator[](unsigned int i) {
    RequireIndex(i, "LX_TDynamic<>::operator[]");
    return m_items[SlotOf(i)];
  }
  /// @}

  /// REQUIRES: Length() > 0.
  /// @{
  T const& First() const {
    RequireItems("LX_TDynamic::First");
    return m_items[m_start - 1];
  }
  T& First() {
    RequireItems("LX_TDynamic::First");
    return m_items[m_start - 1];
  }
  T const& Last() const {
    RequireItems("LX_TDynamic::Last");
    return m_items[m_stop - 1];
  }
  T& Last() {
    RequireItems("LX_TDynamic::Last");
    return m_items[m_stop - 1];
  }
  /// @}

  /// The slots of a chunk. A new size applies from the next reallocation. REQUIRES: c > 0.
  /// @{
  unsigned int ChunkSize() const { return m_chunk_size; }
  void SetChunkSize(unsigned int c) {
    LX_REQUIRE(c != 0, "Not_Null", "LX_TDynamic<>::SetChunkSize", LX_kNotEmpty);
    m_chunk_size = c;
  }
  /// @}

  /// Gives the array the fewest chunks that hold `n` items, when it has fewer items: more or fewer
  /// slots than before. The next removal gives unused chunks back.
  void Preallocate(unsigned int n) {
    if (Length() < n) Resize(Length(), n, 1);
  }

  /// Removes every item and releases all slots.
  void Clear() { Resize(0, 0, 0); }

  /// Put `item` first or last: constant time unless the array is full. `item` may be one of this
  /// array's own, here and below. (The slot beside the run is nearly always free.)
  /// @{
  void Insert(T const& item) {
    if (m_start <= 1 || m_start - 1 == m_stop) return PutFirstOrLast(item, false);
    LX_AssignItem(m_items[m_start - 2], item);
    --m_start;
  }
  void Append(T const& item) {
    if (m_start == 0 || Wraps() || m_stop == m_size) return PutFirstOrLast(item, true);
    LX_AssignItem(m_items[m_stop], item);
    ++m_stop;
  }
  /// @}

  /// Put `item` before or after the item at `i`; in an empty array, `i` does not matter.
  /// REQUIRES: i <= Length() for Insert, i < Length() for Append, or an empty array.
  /// @{
  void Insert(T const& item, unsigned int i);
  void Append(T const& item, unsigned int i);
  /// @}

  /// Takes the item at `i` out and gives back the chunks that are no longer needed; when memory for
  /// the smaller array cannot be had, keeps the larger one. REQUIRES: i < Length().
  void Remove(unsigned int i);

  /// REQUIRES: i < Length().
  void Replace(unsigned int i, T const& item) {
    LX_REQUIRE(i < Length(), "Range_Error", "LX_TDynamic::Replace", LX_kInvalidIndex);
    LX_ReplaceItem(m_items[SlotOf(i)], item);
  }

  /// The first index at or after `start` whose item equals `item`, or -1. REQUIRES: start <=
  /// Length().
  int Location(T const& item, unsigned int start) const;

  /// Gives the array the fewest chunks that hold `length` slots, keeping the first `count` items,
  /// in the first slots, when `keep` is not 0. Does nothing when it has that many slots already.
  /// Throws std::bad_alloc, or std::bad_array_new_length for more slots than an int counts, before
  /// anything changes. REQUIRES: count <= length, count <= Length().
  void Resize(unsigned int count, unsigned int length, int keep);

  /// The moving steps of insertion and removal, by slot (a slot counts from 0, a position from 1);
  /// what moves wraps at the array's end. Expand: make room towards the end for the items from slot
  /// `p` on, or towards the front for those before it; answer the slot opened. REQUIRES: a free
  /// slot.
  /// @{
  unsigned int ExpandRight(unsigned int p) { return Adopt(OpenRight(p)); }
  unsigned int ExpandLeft(unsigned int p) { return Adopt(OpenLeft(p)); }
  /// @}
  /// Shrink: close slot `p` with the items behind it, or before it.
  /// @{
  void ShrinkRight(unsigned int p);
  void ShrinkLeft(unsigned int p);
  /// @}

  /// operator[] for the iterators, whose index is as wide as a pointer: one comparison, and no
  /// virtual call. REQUIRES: i is an index.
  /// @{
  T& AtIndex(std::ptrdiff_t i) { return const_cast<T&>(std::as_const(*this).AtIndex(i)); }
  T const& AtIndex(std::ptrdiff_t i) const {
    RequireIndex(static_cast<unsigned int>(i), "LX_TDynamic<>::operator[]");
    std::size_t const slot = std::size_t{m_start} - 1 + static_cast<std::size_t>(i);
    return m_items[__builtin_expect(slot >= m_size, 0) ? slot - m_size : slot];
  }
  /// @}

  /// For range-for and the standard algorithms.
  /// @{
  using value_type = T;
  using iterator = LX_TIndexIterator<LX_TDynamic, T>;
  using const_iterator = LX_TIndexIterator<LX_TDynamic const, T const>;
  iterator begin() { return {*this, 0}; }
  iterator end() { return {*this, Length()}; }
  const_iterator begin() const { return {*this, 0}; }
  const_iterator end() const { return {*this, Length()}; }
  const_iterator cbegin() const { return begin(); }
  const_iterator cend() const { return end(); }
  std::reverse_iterator<iterator> rbegin() { return std::reverse_iterator<iterator>(end()); }
  std::reverse_iterator<iterator> rend() { return std::reverse_iterator<iterator>(begin()); }
  std::reverse_iterator<const_iterator> rbegin() const {
    return std::reverse_iterator<const_iterator>(end());
  }
  std::reverse_iterator<const_iterator> rend() const {
    return std::reverse_iterator<const_iterator>(begin());
  }
  /// @}

  /// The standard library's names for Length, Append, First, Last and Clear.
  /// @{
  using size_type = unsigned int;
  using difference_type = std::ptrdiff_t;
  using reference = T&;
  using const_reference = T const&;
  unsigned int size() const { return Length(); }
  [[nodiscard]] bool empty() const { return m_start == 0; }
  void push_back(T const& item) { Append(item); }
  T& front() { return First(); }
  T const& front() const { return First(); }
  T& back() { return Last(); }
  T const& back() const { return Last(); }
  void clear() { Clear(); }
  /// @}

  /// Allocate through M.
  /// @{
  static void* operator new(std::size_t n) { return M::AllocateBlock(n); }
  static void operator delete(void* p, std::size_t n) { M::ReleaseBlock(p, n); }
  /// @}

 private:
  class MIROXGCL_LOCAL Slots;

  bool Wraps() const { return m_start > m_stop; }
  // `n` items from the first slot on.
  void SetRun(unsigned int n) {
    m_stop = n;
    m_start = n != 0 ? 1 : 0;
  }
  bool IsFull() const { return Length() == m_size; }
  unsigned int SlotOf(unsigned int i) const {
    unsigned int const slot = m_start + i - 1;
    return slot >= m_size ? slot - m_size : slot;  // only a run that wraps gets there
  }
  unsigned int After(unsigned int position) const { return position == m_size ? 1 : position + 1; }
  unsigned int Before(unsigned int position) const { return position == 1 ? m_size : position - 1; }

  // Copying is the rule between slots; moving serves where only copying may throw. Where both may,
  // an item is put or taken out inside a copy of the array, which then takes this one's place.
  static constexpr bool CopiesSafely() { return std::is_nothrow_copy_assignable_v<T>; }
  static constexpr bool Moves() { return !CopiesSafely() && std::is_nothrow_move_assignable_v<T>; }
  static constexpr bool ChangesACopy() { return !CopiesSafely() && !Moves(); }

  void RequireIndex([[maybe_unused]] unsigned int i, [[maybe_unused]] char const* operation) const {
    LX_REQUIRE(i < Length(), "Range_Error", operation, LX_kInvalidIndex);
  }
  void RequireItems([[maybe_unused]] char const* operation) const {
    LX_REQUIRE(m_start != 0, "Underflow", operation, LX_kEmpty);
  }
  bool Holds(T const& item) const;
  void Grow() { Resize(m_size, m_size + 1, 1); }
  void PutFirstOrLast(T const& item, bool last);
  template <class Open>
  MIROXGCL_LOCAL void PutInside(T const& item, Open open);
  template <class Open, class Item>
  MIROXGCL_LOCAL void Fill(Open open, Item&& item);
  MIROXGCL_LOCAL void Close(unsigned int i);
  template <class Change>
  MIROXGCL_LOCAL void ChangeSafely(Change change);

  // A slot made free inside the run, and the positions that hold once it is filled.
  struct Opening {
    unsigned int slot;
    unsigned int start;
    unsigned int stop;
  };
  Opening OpenRight(unsigned int p);
  Opening OpenLeft(unsigned int p);
  unsigned int Adopt(Opening const& opening) {
    m_start = opening.start;
    m_stop = opening.stop;
    return opening.slot;
  }
  void Steal(LX_TDynamic& other) noexcept;
  template <class Source>
  MIROXGCL_LOCAL void AssignItems(unsigned int n, Source item_at);

  static void Shift(T& to, T& from) {
    if constexpr (Moves()) {
      to = std::move(from);
    } else {
      LX_AssignItem(to, static_cast<T const&>(from));
    }
  }
  // Shift slots `first` to `last` - 1 by one, towards the end or towards the front.
  void ShiftUp(unsigned int first, unsigned int last);
  void ShiftDown(unsigned int first, unsigned int last);

  void CopyBytesTo(T* place, unsigned int count) const;

  T* m_items = nullptr;
  unsigned int m_size = 0;          // slots held: the capacity
  unsigned int m_total_chunks = 0;  // chunks they were obtained as
  unsigned int m_chunk_size;        // slots of a chunk
  unsigned int m_start = 0;         // position of the first item
  unsigned int m_stop = 0;          // position of the last item
};

/// The collection made of an array. As safe as the standard library's values, where the items and M
/// are. It forwards to its array; see there for what each operation costs and requires.
/// @ingroup collections
template <class T, class M = LX_CUnmanaged>
class MIROXGCL_API LX_TDynamicCollection : public LX_TCollection<T> {
 public:
  /// As the array's constructors.
  /// @{
  LX_TDynamicCollection() = default;
  explicit LX_TDynamicCollection(unsigned int chunk_size) : m_dynamic(chunk_size) {}
  LX_TDynamicCollection(std::initializer_list<T> items) : m_dynamic(items) {}
  /// @}
  LX_TDynamicCollection(LX_TDynamicCollection const& other) = default;
  LX_TDynamicCollection(LX_TDynamicCollection&& other) noexcept
      : LX_TCollection<T>(), m_dynamic(std::move(other.m_dynamic)) {}
  ~LX_TDynamicCollection() override = default;

  LX_TDynamicCollection& operator=(LX_TCollection<T> const& other) override {
    if (&other != this) this->Assign(other, [this](unsigned int n) { m_dynamic.Preallocate(n); });
    return *this;
  }
  int operator==(LX_TCollection<T> const& other) const override {
    return LX_TCollection<T>::operator==(other);
  }
  using LX_TCollection<T>::operator!=;

  T const& operator[](unsigned int i) const override { return m_dynamic[i]; }
  T& operator[](unsigned int i) override { return m_dynamic[i]; }
  void Clear() override { m_dynamic.Clear(); }
  void Insert(T const& item) override { m_dynamic.Insert(item); }
  void Insert(T const& item, unsigned int i) override { m_dynamic.Insert(item, i); }
  void Append(T const& item) override { m_dynamic.Append(item); }
  void Append(T const& item, unsigned int i) override { m_dynamic.Append(item, i); }
  void Remove(unsigned int i) override { m_dynamic.Remove(i); }
  void Replace(unsigned int i, T const& item) override { m_dynamic.Replace(i, item); }
  unsigned int Length() const override { return m_dynamic.Length(); }
  int IsEmpty() const override { return m_dynamic.Length() == 0; }
  T const& First() const override { return m_dynamic.First(); }
  T& First() override { return m_dynamic.First(); }
  T const& Last() const override { return m_dynamic.Last(); }
  T& Last() override { return m_dynamic.Last(); }
  int Location(T const& item) const override { return m_dynamic.Location(item, 0); }
  void Purge() override { m_dynamic.Clear(); }
  void Add(T const& item) override { m_dynamic.Append(item); }
  unsigned int Cardinality() const override { return m_dynamic.Length(); }
  T const& ItemAt(unsigned int i) const override { return m_dynamic.ItemAt(i); }

  /// Copies the array: this collection keeps its own chunk size. The move, which a temporary gets,
  /// is not virtual: assigned through a reference to this class, it does not reach a derived
  /// class's.
  /// @{
  virtual LX_TDynamicCollection& operator=(LX_TDynamicCollection const& other) {
    m_dynamic = other.m_dynamic;
    return *this;
  }
  LX_TDynamicCollection& operator=(LX_TDynamicCollection&& other) noexcept {
    m_dynamic = std::move(other.m_dynamic);
    return *this;
  }
  LX_TDynamicCollection& operator=(std::initializer_list<T> items) {
    m_dynamic = items;
    return *this;
  }
  virtual int operator==(LX_TDynamicCollection const& other) const {
    return m_dynamic == other.m_dynamic;
  }
  int operator!=(LX_TDynamicCollection const& other) const { return !(*this == other); }
  /// @}
#if __cplusplus > 201703L
  /// C++20 also tries comparisons with their sides exchanged; these leave it no choice. (A
  /// collection of one's own class that overrides operator== compares with this one as an
  /// LX_TCollection<T>.)
  /// @{
  template <class N>
  int operator==(LX_TDynamicCollection<T, N> const& other) const {
    return *this == static_cast<LX_TCollection<T> const&>(other);
  }
  friend int operator==(LX_TCollection<T> const& a, LX_TDynamicCollection const& b) {
    return a.operator==(b);
  }
  /// @}
#endif
  /// As the array's.
  /// @{
  virtual void SetChunkSize(unsigned int c) { m_dynamic.SetChunkSize(c); }
  virtual void Preallocate(unsigned int n) { m_dynamic.Preallocate(n); }
  virtual unsigned int ChunkSize() const { return m_dynamic.ChunkSize(); }
  /// @}

  /// For range-for and the standard algorithms, without virtual calls.
  /// @{
  using iterator = LX_TIndexIterator<LX_TDynamicCollection, T>;
  using const_iterator = LX_TIndexIterator<LX_TDynamicCollection const, T const>;
  T& AtIndex(std::ptrdiff_t i) { return m_dynamic.AtIndex(i); }
  T const& AtIndex(std::ptrdiff_t i) const { return m_dynamic.AtIndex(i); }
  iterator begin() { return {*this, 0}; }
  iterator end() { return {*this, m_dynamic.Length()}; }
  const_iterator begin() const { return {*this, 0}; }
  const_iterator end() const { return {*this, m_dynamic.Length()}; }
  const_iterator cbegin() const { return begin(); }
  const_iterator cend() const { return end(); }
  std::reverse_iterator<iterator> rbegin() { return std::reverse_iterator<iterator>(end()); }
  std::reverse_iterator<iterator> rend() { return std::reverse_iterator<iterator>(begin()); }
  std::reverse_iterator<const_iterator> rbegin() const {
    return std::reverse_iterator<const_iterator>(end());
  }
  std::reverse_iterator<const_iterator> rend() const {
    return std::reverse_iterator<const_iterator>(begin());
  }
  /// @}

  /// Allocate through M.
  /// @{
  static void* operator new(std::size_t n) { return M::AllocateBlock(n); }
  static void operator delete(void* p, std::size_t n) { M::ReleaseBlock(p, n); }
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void*, void*) noexcept {}
  /// @}

 private:
  LX_TDynamic<T, M> m_dynamic;
};

/// @cond IMPLEMENTATION
// --- Implementation.

// For many appends: doubles the room of a list that is full, where it would grow by one chunk, and
// so keeps their cost linear. `room` is how many items it has room for.
template <class List>
void LX_DoubleWhenFull(List& list, unsigned int& room) {
  if (list.Length() == room) list.Preallocate(room *= 2);
}

// How many chunks an array of `length` slots takes, and how many slots that makes.
struct LX_ChunkPlan {
  unsigned int chunks;
  unsigned int size;
};

// A chunk size of 0 counts as 32. Throws std::bad_array_new_length when an int cannot count the
// slots, or their bytes exceed what an object may have.
inline LX_ChunkPlan LX_PlanChunks(unsigned int length, unsigned int chunk_size,
                                  std::size_t slot_bytes) {
  if (length == 0) return {0, 0};
  std::uint64_t const chunk = chunk_size != 0 ? chunk_size : 32;
  std::uint64_t const chunks = (length - 1) / chunk + 1;
  std::uint64_t const size = chunks * chunk;
  if (size > INT_MAX || size > PTRDIFF_MAX / slot_bytes) throw std::bad_array_new_length();
  return {static_cast<unsigned int>(chunks), static_cast<unsigned int>(size)};
}

// An array of slots, all of them built but for those of one gap, which may wrap at the array's end.
// It destroys and releases them unless they are taken.
template <class T, class M>
class LX_TDynamic<T, M>::Slots {
 public:
  // None is built yet.
  explicit Slots(unsigned int size)
      : Slots(size == 0 ? nullptr : static_cast<T*>(LX_AllocateFor<T, M>(size * sizeof(T))), size,
              0, size) {
    LX_REQUIRE(size == 0 || m_items != nullptr, "Storage_Error", "LX_TDynamic::Resize", LX_kNull);
  }
  Slots(T* items, unsigned int size, unsigned int gap, unsigned int gap_size)
      : m_items(items), m_size(size), m_gap(gap), m_gap_size(gap_size) {}
  Slots(Slots const&) = delete;
  Slots& operator=(Slots const&) = delete;
  ~Slots() {
    unsigned int const end = m_gap + m_gap_size;
    if (end <= m_size) {
      std::destroy(m_items, m_items + m_gap);
      std::destroy(m_items + end, m_items + m_size);
    } else {
      std::destroy(m_items + (end - m_size), m_items + m_gap);
    }
    if (m_items != nullptr) LX_ReleaseFor<T, M>(m_items, m_size * sizeof(T));
  }

  // Builds the slots from `first` to the gap's end empty (a scalar is 0).
  void BuildEmpty([[maybe_unused]] unsigned int first) {
    if constexpr (LX_IsDefaultConstructible<T>()) {
      std::uninitialized_value_construct(m_items + first, m_items + m_gap + m_gap_size);
      m_gap_size = first - m_gap;
    }
  }
  // Builds the gap's first slot from `value`.
  template <class Value>
  void Build([[maybe_unused]] Value&& value) {
    if constexpr (LX_IsCopyConstructible<T>()) {
      ::new (static_cast<void*>(m_items + m_gap)) T(std::forward<Value>(value));
      ++m_gap;
      --m_gap_size;
    }
  }
  T* Data() { return m_items; }
  T* Take() {
    m_gap = m_gap_size = m_size = 0;
    return std::exchange(m_items, nullptr);
  }

 private:
  T* m_items;
  unsigned int m_size;
  unsigned int m_gap;  // the first slot that is not built
  unsigned int m_gap_size;
};

// The empty slots are built before any item is moved to the new array, so that one that throws
// finds all items in the old.
template <class T, class M>
void LX_TDynamic<T, M>::Resize(unsigned int count, unsigned int length, int keep) {
  LX_ChunkPlan const plan = LX_PlanChunks(length, m_chunk_size, sizeof(T));
  if (plan.size == m_size) return;
  unsigned int const kept = keep != 0 ? count : 0;
  Slots fresh(plan.size);
  fresh.BuildEmpty(kept);
  bool const relocates = LX_TIsTriviallyRelocatable<T>::value && kept != 0;
  if (relocates) {
    CopyBytesTo(fresh.Data(), kept);
  } else {
    for (unsigned int i = 0; i < kept; ++i) fresh.Build(std::move_if_noexcept(m_items[SlotOf(i)]));
  }
  Slots const old(m_items, m_size, relocates ? m_start - 1 : 0, relocates ? kept : 0);  // goes last
  m_items = fresh.Take();
  m_size = plan.size;
  m_total_chunks = plan.chunks;
  SetRun(length != 0 ? count : 0);
}

// The bytes of the first `count` items, count > 0, which are two runs where the array wraps.
template <class T, class M>
void LX_TDynamic<T, M>::CopyBytesTo(T* place, unsigned int count) const {
  unsigned int const first = m_start - 1;
  unsigned int const run = count < m_size - first ? count : m_size - first;
  std::memcpy(static_cast<void*>(place), static_cast<void const*>(m_items + first),
              run * sizeof(T));
  std::memcpy(static_cast<void*>(place + run), static_cast<void const*>(m_items),
              (count - run) * sizeof(T));
}

template <class T, class M>
LX_TDynamic<T, M>& LX_TDynamic<T, M>::operator=(LX_TDynamic const& other) {
  if (&other == this) return *this;
  unsigned int const n = other.Length();
  if constexpr (LX_MayOwn<T>()) {
    AssignItems(n, [&other](unsigned int i) -> T const& { return other.m_items[other.SlotOf(i)]; });
  } else {
    Resize(0, n, 0);
    if (n != 0) other.CopyBytesTo(m_items, n);
    SetRun(n);
  }
  return *this;
}

template <class T, class M>
LX_TDynamic<T, M>& LX_TDynamic<T, M>::operator=(std::initializer_list<T> items) {
  AssignItems(static_cast<unsigned int>(items.size()),
              [&items](unsigned int i) -> T const& { return items.begin()[i]; });
  return *this;
}

// Makes the array `n` items, each a copy of what `item_at` answers for its index, which one of this
// array's items may own: the new slots are complete before the old ones go. Where their number
// stays, those behind the items keep what they hold.
template <class T, class M>
template <class Source>
void LX_TDynamic<T, M>::AssignItems(unsigned int n, Source item_at) {
  LX_ChunkPlan const plan = LX_PlanChunks(n, m_chunk_size, sizeof(T));
  bool const keeps_rest = plan.size == m_size;
  Slots fresh(plan.size);
  if (!keeps_rest) fresh.BuildEmpty(n);
  for (unsigned int i = 0; i < n; ++i) fresh.Build(item_at(i));
  if (keeps_rest) {
    for (unsigned int q = n; q < m_size; ++q) fresh.Build(static_cast<T const&>(m_items[q]));
  }
  Slots const old(m_items, m_size, 0, 0);  // goes last
  m_items = fresh.Take();
  m_size = plan.size;
  m_total_chunks = plan.chunks;
  SetRun(n);
}

// One of this array's items may own the other array: its slots are taken before these go.
template <class T, class M>
LX_TDynamic<T, M>& LX_TDynamic<T, M>::operator=(LX_TDynamic&& other) noexcept {
  if (&other != this) {
    LX_TDynamic taken(std::move(other));
    Clear();
    Steal(taken);
  }
  return *this;
}

// Takes the other's slots. REQUIRES: this array has none.
template <class T, class M>
void LX_TDynamic<T, M>::Steal(LX_TDynamic& other) noexcept {
  m_items = std::exchange(other.m_items, nullptr);
  m_size = std::exchange(other.m_size, 0u);
  m_total_chunks = std::exchange(other.m_total_chunks, 0u);
  m_start = std::exchange(other.m_start, 0u);
  m_stop = std::exchange(other.m_stop, 0u);
}

template <class T, class M>
int LX_TDynamic<T, M>::operator==(LX_TDynamic const& other) const {
  if (&other == this) return 1;
  unsigned int const n = Length();
  if (n != other.Length()) return 0;
  for (unsigned int i = 0; i < n; ++i) {
    if (!LX_AreEqual(m_items[SlotOf(i)], other.m_items[other.SlotOf(i)])) return 0;
  }
  return 1;
}

// Whether `item` is in one of the slots, where moving and reallocating would change it.
template <class T, class M>
bool LX_TDynamic<T, M>::Holds(T const& item) const {
  std::less<T const*> const before;
  T const* const p = std::addressof(item);
  return m_size != 0 && !before(p, m_items) && before(p, m_items + m_size);
}

// The positions advance only after the assignment, which may throw.
template <class T, class M>
void LX_TDynamic<T, M>::PutFirstOrLast(T const& item, bool last) {
  if (IsFull()) {
    if (m_size != 0 &&
        (LX_MayOwn<T>() || Holds(item))) {  // what goes with the old slots is copied first
      Slots copy(1);
      copy.Build(item);
      Grow();
      return PutFirstOrLast(*copy.Data(), last);
    }
    Grow();
  }
  bool const empty = m_start == 0;
  unsigned int const position = empty ? 1 : last ? After(m_stop) : Before(m_start);
  LX_AssignItem(m_items[position - 1], item);
  if (last || empty) m_stop = position;
  if (!last || empty) m_start = position;
}

template <class T, class M>
void LX_TDynamic<T, M>::Insert(T const& item, unsigned int i) {
  LX_REQUIRE(Length() == 0 || i <= Length(), "Range_Error", "LX_TDynamic::Insert",
             LX_kInvalidIndex);
  PutInside(item, [i](LX_TDynamic& a) {
    unsigned int const p = a.m_start + i - 1;
    if (a.Wraps()) return i > a.m_size - a.m_start ? a.OpenRight(p - a.m_size) : a.OpenLeft(p);
    return i > a.Length() - i ? a.OpenRight(p) : a.OpenLeft(p);
  });
}

template <class T, class M>
void LX_TDynamic<T, M>::Append(T const& item, unsigned int i) {
  LX_REQUIRE(Length() == 0 || i < Length(), "Range_Error", "LX_TDynamic::Append", LX_kInvalidIndex);
  PutInside(item, [i](LX_TDynamic& a) {
    unsigned int const p = a.m_start + i;
    if (a.Wraps()) return i > a.m_size - a.m_start ? a.OpenRight(p - a.m_size) : a.OpenLeft(p);
    return i >= a.Length() - 1 - i ? a.OpenRight(p) : a.OpenLeft(p);
  });
}

// An item of this array's own, or one that belongs to such an item, would change while others move;
// one that may throw while being copied must do so before anything moves. Either is copied first.
template <class T, class M>
template <class Open>
void LX_TDynamic<T, M>::PutInside(T const& item, Open open) {
  if (m_start == 0) return Append(item);
  if constexpr (!LX_MayOwn<T>()) {
    if (!Holds(item)) return Fill(open, item);
  }
  Slots copy(1);
  copy.Build(item);
  if (IsFull()) Grow();
  ChangeSafely([&](LX_TDynamic& a) { a.Fill(open, std::move(*copy.Data())); });
}

template <class T, class M>
template <class Open, class Item>
void LX_TDynamic<T, M>::Fill(Open open, Item&& item) {
  if (IsFull()) Grow();
  Opening const opening = open(*this);
  if constexpr (Moves()) {
    m_items[opening.slot] = std::forward<Item>(item);
  } else {
    LX_AssignItem(m_items[opening.slot], static_cast<T const&>(item));
  }
  Adopt(opening);
}

// Changes this array or, where moving an item may throw, a copy of all its slots which then takes
// its place.
template <class T, class M>
template <class Change>
void LX_TDynamic<T, M>::ChangeSafely(Change change) {
  if constexpr (ChangesACopy()) {
    Slots slots_copied(m_size);
    for (unsigned int q = 0; q < m_size; ++q) {
      slots_copied.Build(static_cast<T const&>(m_items[q]));
    }
    LX_TDynamic copy(m_chunk_size);
    copy.m_size = m_size;
    copy.m_total_chunks = m_total_chunks;
    copy.m_start = m_start;
    copy.m_stop = m_stop;
    copy.m_items = slots_copied.Take();
    change(copy);
    *this = std::move(copy);
  } else {
    change(*this);
  }
}

template <class T, class M>
void LX_TDynamic<T, M>::ShiftUp(unsigned int first, unsigned int last) {
  if (first >= last) return;
  if constexpr (std::is_trivially_copyable_v<T>) {
    std::memmove(m_items + first + 1, m_items + first, (last - first) * sizeof(T));
  } else {
    for (unsigned int q = last; q > first; --q) Shift(m_items[q], m_items[q - 1]);
  }
}

template <class T, class M>
void LX_TDynamic<T, M>::ShiftDown(unsigned int first, unsigned int last) {
  if (first >= last) return;
  if constexpr (std::is_trivially_copyable_v<T>) {
    std::memmove(m_items + first - 1, m_items + first, (last - first) * sizeof(T));
  } else {
    for (unsigned int q = first; q < last; ++q) Shift(m_items[q - 1], m_items[q]);
  }
}

template <class T, class M>
typename LX_TDynamic<T, M>::Opening LX_TDynamic<T, M>::OpenRight(unsigned int p) {
  unsigned int const stop = After(m_stop);
  if (m_stop == m_size) {  // the run ends in the last slot: slot 0 is the next
    if (p == m_size) return {0, m_start, stop};
    Shift(m_items[0], m_items[m_size - 1]);
  }
  ShiftUp(p, stop == 1 ? m_size - 1 : m_stop);
  return {p, m_start, stop};
}

template <class T, class M>
typename LX_TDynamic<T, M>::Opening LX_TDynamic<T, M>::OpenLeft(unsigned int p) {
  unsigned int const start = Before(m_start);
  if (m_start == 1) {  // the run begins in slot 0: the last slot is the next
    if (p == 0) return {m_size - 1, start, m_stop};
    Shift(m_items[m_size - 1], m_items[0]);
  }
  ShiftDown(m_start == 1 ? 1 : start, p);
  return {p - 1, start, m_stop};
}

template <class T, class M>
void LX_TDynamic<T, M>::ShrinkRight(unsigned int p) {
  ShiftDown(p + 1, m_stop);
  m_stop = Before(m_stop);
}

template <class T, class M>
void LX_TDynamic<T, M>::ShrinkLeft(unsigned int p) {
  ShiftUp(m_start - 1, p);
  m_start = After(m_start);
}

template <class T, class M>
void LX_TDynamic<T, M>::Remove(unsigned int i) {
  unsigned int const n = Length();
  LX_REQUIRE(n != 0, "Underflow", "LX_TDynamic::Remove", LX_kEmpty);
  LX_REQUIRE(i < n, "Range_Error", "LX_TDynamic::Remove", LX_kInvalidIndex);
  if (n == 1) {
    m_start = m_stop = 0;
  } else {
    ChangeSafely([i](LX_TDynamic& a) { a.Close(i); });
  }
  try {
    Resize(n - 1, n - 1, 1);
  } catch (...) {  // the item is out all the same, and the larger array serves
  }
}

// Closes the slot of the item at `i`, one of several.
template <class T, class M>
void LX_TDynamic<T, M>::Close(unsigned int i) {
  unsigned int const p = m_start + i - 1;
  if (Wraps()) {
    i > m_size - m_start ? ShrinkRight(p - m_size) : ShrinkLeft(p);
  } else {
    i > Length() - i ? ShrinkRight(p) : ShrinkLeft(p);
  }
}

template <class T, class M>
int LX_TDynamic<T, M>::Location(T const& item, unsigned int start) const {
  unsigned int const n = Length();
  LX_REQUIRE(start <= n, "Range_Error", "LX_TDynamic::Location", LX_kInvalidIndex);
  for (unsigned int i = start; i < n; ++i) {
    if (LX_AreEqual(m_items[SlotOf(i)], item)) return static_cast<int>(i);
  }
  return -1;
}

/// @endcond

#endif
