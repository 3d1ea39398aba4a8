/// @file
/// The container library's exception class and the four reasons it gives.
/// @ingroup services
#ifndef MIROXPLAT_LX_EXCEPTION_H
#define MIROXPLAT_LX_EXCEPTION_H

#include <exception>

#include "miroxplat/plat_config.h"

extern "C" {
/// The reasons: an index is not below the length, the container is empty, storage is lacking, a
/// chunk size is 0.
/// @ingroup services
/// @{
MIROXPLAT_API extern char const* const LX_kInvalidIndex;
MIROXPLAT_API extern char const* const LX_kEmpty;
MIROXPLAT_API extern char const* const LX_kNull;
MIROXPLAT_API extern char const* const LX_kNotEmpty;
/// @}
}

/// The description of a violated precondition.
///
/// Describes a violated precondition by three texts, which it points to and does not copy, and by
/// the one that what() gives, which it holds itself. Building one allocates nothing.
/// @ingroup services
class MIROXPLAT_API LX_XException : public std::exception {
 public:
  /// `kind` names the class of failure, `location` the class and operation, `reason` is one of the
  /// four constants above. The texts must outlive the object.
  LX_XException(char const* kind, char const* location, char const* reason) noexcept;
  ~LX_XException() override = default;

  /// The texts given at construction.
  /// @{
  char const* kind() const noexcept { return m_kind; }
  char const* location() const noexcept { return m_location; }
  char const* reason() const noexcept { return m_reason; }
  /// @}
  /// The location and the reason: "LX_TDynamic::Remove: The collection is empty."
  char const* what() const noexcept override;

 private:
  char const* m_kind;
  char const* m_location;
  char const* m_reason;
  char m_what[128];
};

#endif
