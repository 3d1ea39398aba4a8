// Wrong on purpose: two threads edit one string. The thread checker is to say so.
#include <thread>

#include "miroxgcl/gcl_string.h"

int main() {
  GCL_String text("edited by two");
  auto const edit = [&text] {
    for (int i = 0; i < 1000; ++i) text.put_at(0, 'E');
  };
  std::thread other(edit);
  edit();
  other.join();
}
