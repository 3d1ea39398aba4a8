// Words that other libraries and the system's headers define away, after the headers that use them.
#include <bits/stdc++.h>

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
