/// @file
/// LX_TIsTriviallyRelocatable: which items an array may move by copying their bytes.
#ifndef MIROXGCL_LX_TRIVIALLY_RELOCATABLE_H
#define MIROXGCL_LX_TRIVIALLY_RELOCATABLE_H

#include <type_traits>

/// The trait's former name. A specialisation of it still counts.
/// @ingroup collections
template <class T>
struct LX_TIsRelocatable : std::is_trivially_copyable<T> {};

/// Whether an object of T may be moved to another place by copying its bytes, the old place then
/// being forgotten and not destroyed. A class that keeps no pointer into itself, and that nobody
/// keeps a pointer to, may say so in a specialisation with `value` true.
/// @ingroup collections
template <class T>
struct LX_TIsTriviallyRelocatable : std::bool_constant<LX_TIsRelocatable<T>::value> {};

#endif
