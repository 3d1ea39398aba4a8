#include "miroxgcl/gcl_stg_area_rep.h"

GCL_StgAreaRep::GCL_StgAreaRep(unsigned int n) : m_area(stg_create_area(n)) {}

GCL_StgAreaRep::~GCL_StgAreaRep() { stg_delete_area(&m_area); }

bool GCL_StgAreaRep::operator==(GCL_Body const* other) const {
  return other != nullptr && m_area == static_cast<GCL_StgAreaRep const*>(other)->m_area;
}
