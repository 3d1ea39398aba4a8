// Holds values of the classes that gdb shows, then aborts: see gdb_session.txt.
#include <cstdlib>
#include <cstring>

#include "miroxgcl/gcl.h"

// Laid out as a string's body is.
struct Disk : GCL_Body {
  int blocks = 12;
  int size = 13;
  char const* label = "not a string";
  bool operator==(GCL_Body const*) const override { return false; }
};

struct Report : GCL_StatusBase {
  GCL_String describe() const override { return {}; }
};

int main() {
  GCL_String text("caf\303\251 \"a\"\n"), copy = text, nul("a\0b\0", 4), empty, none,
                                          large('x', 300);
  none = nullptr;
  GCL_Pathname path("/etc/hosts");
  GCL_Handle<Disk> disk(new Disk), no_disk;
  GCL_HandleBase handle(disk);

  LX_TDynamic<int> ring(4);
  for (int i = 1; i <= 3; ++i) ring.Append(i);
  ring.Insert(0);
  GCL_IntegerList numbers(4);
  LX_TCollection<int>& collection = numbers;
  collection.Append(7);
  GCL_StringList moved(4), strings(4);
  for (GCL_String const& s : {text, none}) moved.Append(s);
  strings = std::move(moved);
  LX_TUnbounded<int> linked;
  for (int i = 1; i <= 3; ++i) linked.Append(i);

  GCL_Status ok, failed;
  failed.set(GCL_Status::no_such_name);
  failed.add_message("first");
  LX_TStack<GCL_String>& messages = *failed.get_message_stack();
  messages.Push("second");
  failed.grab_imsg_out();
  Report report;
  report.GCL_Status::add_message("its own");
  report.add_message("disk full", 6);
  report.add_message("careful", 4);

  GCL_DateTime never, then(1700000000), past(-1);
  GCL_TimePeriod period(then, never, 129600u), no_period;
  GCL_OSGroupList groups(4);
  groups.Append(GCL_OSGroup(ok, "disk"));
  GCL_Credentials nobody, somebody;
  somebody.set_user(GCL_OSUser(ok, "root"));
  somebody.set_secondary_groups(groups);

  alignas(8) char bytes[64];  // no object
  std::memset(bytes, 0x5A, sizeof bytes);
  std::abort();
}
