// Uses what is compiled in its users' code: templates, inline operations, macros.
#include <cstdio>

#include "miroxgcl/gcl.h"

namespace {

class Report : public GCL_StatusBase {
 public:
  GCL_String describe() const override { return "report"; }
};

}  // namespace

int main(int argc, char**) {
  LX_TUnboundedStack<int> numbers, copy;
  numbers.Push(argc);
  static_cast<LX_TStack<int>&>(copy) = numbers;
  LX_TDynamicCollection<long> array;
  array.Append(argc);
  Report report;
  GCL_ASSERT(argc == 1);
  bool const is_equal = GCL_CHECK_STATUS(report, numbers == copy);
  std::puts(
      (report.describe() + (is_equal && array[0] == numbers.Top() ? " is good" : "")).c_str());
}
