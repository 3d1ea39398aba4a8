#include "miroxgcl/gcl_body.h"

GCL_Body::~GCL_Body() = default;

bool GCL_Body::is_null() const { return true; }

bool GCL_Body::operator==(GCL_Body const*) const { return false; }
