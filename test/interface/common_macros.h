// Words that other libraries and the system's headers define away, after the headers that use them.
#include <algorithm>
#include <any>
#include <array>
#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#define slots
#define signals public
#define emit
#define foreach for
#define forever for (;;)
#define min(a, b) ((a) < (b) ? (a) : (b))
#define max(a, b) ((a) < (b) ? (b) : (a))
#define major(device) ((device) >> 8)
#define minor(device) ((device)&0xFF)
#define check(condition)
