#include "cli/HugePages.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>

namespace glyphmill::cli {
namespace {

constexpr off_t largeFileBytes = off_t(4) << 20;
constexpr const char *tunableName = "glibc.malloc.hugetlb";

bool hugePagesOnRequest() {
    std::ifstream setting("/sys/kernel/mm/transparent_hugepage/enabled");
    std::string modes;
    std::getline(setting, modes);
    return modes.find("[madvise]") != std::string::npos;
}

// What is left to read of a regular file; 0 for anything else.
off_t regularFileBytesAhead(const std::optional<std::string> &file) {
    struct stat status {};
    if (file ? ::stat(file->c_str(), &status) != 0 : ::fstat(STDIN_FILENO, &status) != 0)
        return 0;
    if (!S_ISREG(status.st_mode))
        return 0;
    if (file)
        return status.st_size;
    const off_t position = ::lseek(STDIN_FILENO, 0, SEEK_CUR);
    return position < 0 ? 0 : status.st_size - position;
}

} // namespace

void restartOnHugePages(char **argv) {
    const char *tunables = std::getenv("GLIBC_TUNABLES");
    if (tunables && std::strstr(tunables, tunableName))
        return; // already restarted, or the user chose
    if (!hugePagesOnRequest())
        return;
    std::string value = std::string(tunableName) + "=1";
    if (tunables && *tunables)
        value = std::string(tunables) + ":" + value;
    if (::setenv("GLIBC_TUNABLES", value.c_str(), 1) != 0)
        return;
    ::execv("/proc/self/exe", argv);
    ::unsetenv("GLIBC_TUNABLES"); // the restart failed: carry on as we are
    if (tunables)
        ::setenv("GLIBC_TUNABLES", tunables, 1);
}

void restartOnHugePagesForLargeInput(char **argv, const std::optional<std::string> &file) {
    if (regularFileBytesAhead(file) >= largeFileBytes)
        restartOnHugePages(argv);
}

} // namespace glyphmill::cli
