/// @file
/// GCL_StgAreaRep: a body that owns a storage area. The area is deleted with the last handle.
#ifndef MIROXGCL_GCL_STG_AREA_REP_H
#define MIROXGCL_GCL_STG_AREA_REP_H

#include "miroxgcl/gcl_body.h"
#include "miroxplat/stg.h"

/// The body that owns a storage area.
///
/// As safe as the standard library's values.
/// @ingroup resources
class MIROXGCL_API GCL_StgAreaRep : public GCL_Body {
 public:
  /// Creates an area of at least `n` bytes; area() is 0 when the service has none to give. The
  /// count is 0.
  explicit GCL_StgAreaRep(unsigned int n);
  ~GCL_StgAreaRep() override;

  /// The area's number; it stays this body's.
  stg_area_t area() const { return m_area; }

  /// Whether both own the same area. An area never equals null.
  bool operator==(GCL_Body const* other) const override;

 private:
  stg_area_t m_area;
};

#endif
