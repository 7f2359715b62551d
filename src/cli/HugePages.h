// Large inputs pass through several buffers of their size; on transparent huge pages they cost a
// fraction of the page faults.
#pragma once

#include <optional>
#include <string>

namespace glyphmill::cli {

// Before a large input is read (the file, or with none standard input when it is a regular
// file): when glibc's allocator has not been asked to put its memory on transparent huge pages
// and the kernel offers them on request, starts this program again with that request (the
// glibc.malloc.hugetlb tunable). Returns when it does not. A pipe's size is unknown beforehand:
// reading it goes on without the restart.
void restartOnHugePagesForLargeInput(char **argv, const std::optional<std::string> &file);

// The same whatever the input's size: for commands whose memory is many times their input.
void restartOnHugePages(char **argv);

} // namespace glyphmill::cli
