// Large inputs pass through several buffers of their size; on transparent huge pages they cost a
// fraction of the page faults.
#pragma once

#include <string>

namespace glyphmill::cli {

// Before a large input file is read: when glibc's allocator has not been asked to put its
// memory on transparent huge pages and the kernel offers them on request, starts this program
// again with that request (the glibc.malloc.hugetlb tunable). Returns when it does not.
void restartOnHugePagesForLargeFile(char **argv, const std::string &file);

} // namespace glyphmill::cli
