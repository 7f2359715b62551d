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

} // namespace

void restartOnHugePagesForLargeFile(char **argv, const std::string &file) {
    const char *tunables = std::getenv("GLIBC_TUNABLES");
    if (tunables && std::strstr(tunables, tunableName))
        return; // already restarted, or the user chose
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size < largeFileBytes)
        return;
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

} // namespace glyphmill::cli
