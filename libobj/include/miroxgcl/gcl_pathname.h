/// @file
/// GCL_Pathname: a string that holds a pathname of the file system.
#ifndef MIROXGCL_GCL_PATHNAME_H
#define MIROXGCL_GCL_PATHNAME_H

#include "miroxgcl/gcl_string.h"

/// A pathname: all that a string does, and the operations on its components.
///
/// Shares its body with the string it was made from, as strings do. A derived pathname that cannot
/// be had (the result would be longer than 1023 bytes, the current directory is gone, ...) is the
/// empty one.
///
/// As safe as the standard library's values.
/// @ingroup files
class MIROXGCL_API GCL_Pathname : public GCL_String {
 public:
  /// The empty pathname.
  GCL_Pathname() noexcept = default;
  /// Shares the body of `s`.
  GCL_Pathname(GCL_String const& s) : GCL_String(s) {}  // NOLINT(google-explicit-constructor)
  /// Copies a text: a `char const*`, a std::string_view or a std::string.
  /// @{
  template <class Text, gcl_text::IfText<Text> = 0>
  explicit GCL_Pathname(Text const& s) : GCL_String(s) {}
  template <class Text, gcl_text::IfText<Text> = 0>
  GCL_Pathname& operator=(Text const& s) {
    GCL_String::operator=(s);
    return *this;
  }
  /// @}

  /// "/".
  static char const* separator() noexcept;

  /// Whether the text begins with the separator. The empty pathname is relative.
  /// @{
  bool is_absolute() const noexcept { return *c_str() == m_seperator_char; }
  bool is_relative() const noexcept { return !is_absolute(); }
  /// @}

  /// Joins `other` onto this pathname with one separator at the seam: adds it unless this pathname
  /// is empty or ends with it, and drops one that `other` begins with. "a" with "" becomes "a/", ""
  /// with "/b" becomes "b". `other` may be this object. When memory is lacking, throws and leaves
  /// the value as it was.
  GCL_Pathname& append_path(GCL_Pathname const& other);
  /// The same for a text.
  /// @{
  template <class Text, gcl_text::IfText<Text> = 0>
  GCL_Pathname& append_path(Text const& other) {
    return append_path(GCL_Pathname(other));
  }
  template <class Other>
  GCL_Pathname& operator/=(Other const& other) {
    return append_path(other);
  }
  template <class Other>
  friend GCL_Pathname operator/(GCL_Pathname path, Other const& other) {
    return path.append_path(other);
  }
  /// @}

  /// The absolute form: the current directory in front, and the components "." and "..", and
  /// doubled separators, resolved by the text alone.
  GCL_Pathname absolute() const;

  /// The directory part and the last component, as dirname(1) and basename(1) split.
  /// @{
  GCL_Pathname dirname() const;
  GCL_Pathname basename() const;
  /// @}

  /// Where an existing file is: the source of the mounted file system, its mount point, and the
  /// path below that; all three empty when the file does not exist. The source is "-" where the
  /// system does not name it, as after chroot(2). What the arguments held is lost. Nothing is
  /// printed.
  void components(GCL_String& source, GCL_Pathname& mount, GCL_Pathname& below) const;

 private:
  static constexpr char m_seperator_char = '/';
  static GCL_String m_seperator;
};

/// Hashes as GCL_String does.
template <>
struct std::hash<GCL_Pathname> : std::hash<GCL_String> {};

/// Shows GoogleTest the text in quotes, not its bytes as those of any container.
/// @ingroup files
inline void PrintTo(GCL_Pathname const& path, std::ostream* os) {
  PrintTo(static_cast<GCL_String const&>(path), os);
}

#endif
