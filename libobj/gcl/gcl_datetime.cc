#include "miroxgcl/gcl_datetime.h"

#include "miroxplat/date_fmt.h"

GCL_DateTime::GCL_DateTime(GCL_Status& status, GCL_String const& text, TimeFrame frame) {
  long time = 0;
  int const code = date_str_to_time2(text.c_str(), frame != past ? 1 : 0, &time);
  status.set(code == 0 ? 0 : GCL_Status::general_failure);
  setTime(time);
}

GCL_String GCL_DateTime::format(char const* (*layout)(long)) const {
  return m_time == 0 ? GCL_String() : GCL_String(layout(m_time));
}

GCL_String GCL_DateTime::token_date() const { return format(date_fmt_token_date); }

GCL_String GCL_DateTime::token_short_date_time() const {
  return format(date_fmt_token_short_date_time);
}

GCL_String GCL_DateTime::token_date_time() const { return format(date_fmt_token_date_time); }

GCL_String GCL_DateTime::ls_date_time() const { return format(date_fmt_ls_date_time); }

GCL_String GCL_DateTime::short_time() const { return format(date_fmt_short_time); }

GCL_String GCL_DateTime::short_date() const { return format(date_fmt_short_date); }

GCL_String GCL_DateTime::short_date_time() const { return format(date_fmt_short_date_time); }

GCL_String GCL_DateTime::long_date_time() const { return format(date_fmt_long_date_time); }
