#include "cli/InputOutput.h"

#include "cli/Failure.h"
#include "common/Utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace glyphmill::cli {
namespace {

constexpr std::size_t firstReadSize = std::size_t(1) << 16;
// Files from this size on are read into memory of their own on huge pages.
constexpr std::size_t largeFileBytes = std::size_t(1) << 20;
constexpr std::size_t hugePageBytes = std::size_t(2) << 20;

[[noreturn]] void failReading(const std::string &name, const std::string &reason) {
    fail(ExitStatus::unreadableInput, "cannot read " + name + ": " + reason);
}

[[noreturn]] void failReading(const std::string &name, int error) {
    failReading(name, std::strerror(error));
}

// Zero when every byte went out, otherwise the reason the system gave.
int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return 0;
}

// The bytes a regular file still holds past the descriptor's position; 0 for anything else,
// or when the file reports no size (as those under /proc do).
std::size_t bytesLeftInFile(int descriptor, const struct stat &status) {
    if (!S_ISREG(status.st_mode) || status.st_size <= 0)
        return 0;
    off_t position = ::lseek(descriptor, 0, SEEK_CUR);
    if (position < 0 || position >= status.st_size)
        return 0;
    return static_cast<std::size_t>(status.st_size - position);
}

} // namespace

void InputBytes::Release::operator()(char *bytes) const noexcept {
    if (mapped)
        ::munmap(bytes, mapped);
    else
        delete[] bytes;
}

InputBytes::Buffer InputBytes::heapBuffer(std::size_t size) {
    return Buffer(std::make_unique_for_overwrite<char[]>(size).release(), Release{0});
}

// Faulting a large buffer in page by page costs several times the reading itself, so a large file
// gets anonymous memory aligned for transparent huge pages and asked for them, filled in at once.
InputBytes::Buffer InputBytes::largeBuffer(std::size_t size) {
    const std::size_t length = (size + hugePageBytes - 1) / hugePageBytes * hugePageBytes;
    void *mapping =
        ::mmap(nullptr, length + hugePageBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED)
        throw std::bad_alloc();
    const auto start = reinterpret_cast<std::uintptr_t>(mapping);
    const std::uintptr_t aligned = (start + hugePageBytes - 1) & ~std::uintptr_t(hugePageBytes - 1);
    if (aligned > start)
        ::munmap(mapping, aligned - start);
    if (const std::size_t tail = start + hugePageBytes - aligned)
        ::munmap(reinterpret_cast<void *>(aligned + length), tail);
    auto *bytes = reinterpret_cast<char *>(aligned);
    // Hints: without them the buffer only fills in slower.
    ::madvise(bytes, length, MADV_HUGEPAGE);
#ifdef MADV_POPULATE_WRITE
    ::madvise(bytes, length, MADV_POPULATE_WRITE);
#endif
    return Buffer(bytes, Release{length});
}

InputBytes InputBytes::fromFile(const std::string &path) {
    const std::string name = quoted(path);
    int descriptor;
    do {
        descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0)
        failReading(name, errno);
    try {
        InputBytes input = fromDescriptor(descriptor, name);
        ::close(descriptor);
        return input;
    } catch (...) {
        ::close(descriptor);
        throw;
    }
}

InputBytes InputBytes::fromStandardInput() {
    return fromDescriptor(STDIN_FILENO, "standard input");
}

// Files are read, not mapped: a mapped file that another program truncates ends the reader with
// SIGBUS, while read() only ends early, which is noticed here.
InputBytes InputBytes::fromDescriptor(int descriptor, const std::string &name) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0)
        failReading(name, errno);
    if (S_ISDIR(status.st_mode))
        failReading(name, EISDIR);

    // A regular file is read into a buffer of its size; pipes and terminals into one that grows.
    const std::size_t expected = bytesLeftInFile(descriptor, status);
    InputBytes input;
    std::size_t capacity = expected > 0 ? expected : firstReadSize;
    input.bytes_ = capacity >= largeFileBytes ? largeBuffer(capacity) : heapBuffer(capacity);
    // Once the buffer is full, a small read tells whether the end was reached without making the
    // buffer larger for nothing.
    char probe[16384];
    for (;;) {
        const bool full = input.size_ == capacity;
        char *target = full ? probe : input.bytes_.get() + input.size_;
        const std::size_t room = full ? sizeof probe : capacity - input.size_;
        ssize_t count = ::read(descriptor, target, room);
        if (count < 0) {
            if (errno == EINTR)
                continue;
            failReading(name, errno);
        }
        if (count == 0)
            break;
        if (full) {
            capacity = std::max(capacity * 2, input.size_ + static_cast<std::size_t>(count));
            Buffer larger = heapBuffer(capacity);
            std::memcpy(larger.get(), input.bytes_.get(), input.size_);
            input.bytes_ = std::move(larger);
            std::memcpy(input.bytes_.get() + input.size_, probe, static_cast<std::size_t>(count));
        }
        input.size_ += static_cast<std::size_t>(count);
    }

    // Less than the file held when it was opened: only an error if the file is shorter now. A
    // file that merely reports more than it gives (as some under /sys do) is taken as read.
    if (input.size_ < expected) {
        struct stat now {};
        if (::fstat(descriptor, &now) != 0)
            failReading(name, errno);
        if (now.st_size < status.st_size)
            failReading(name, "the file was truncated while it was read");
    }
    return input;
}

std::string_view InputBytes::bytes() const {
    return {bytes_.get(), size_};
}

std::u16string decodeText(std::string_view bytes, std::string_view what) {
    std::u16string text;
    if (auto error = utf8::decode(bytes, text))
        fail(ExitStatus::invalidText,
             std::string(what) + " is not valid UTF-8 at byte " + std::to_string(error->byteOffset));
    return text;
}

void writeStandardOutput(std::string_view bytes) {
    if (int error = writeAll(STDOUT_FILENO, bytes))
        fail(ExitStatus::cannotWriteOutput,
             std::string("cannot write to standard output: ") + std::strerror(error));
}

void writeStandardOutput(std::u16string_view text) {
    // Small enough for the block to stay in cache, large enough to keep system calls few.
    constexpr std::size_t blockUnits = std::size_t(1) << 15;
    std::string block;
    while (!text.empty()) {
        std::size_t units = std::min(blockUnits, text.size());
        // A surrogate pair cut in two would be encoded as two replacement characters.
        if (units < text.size() && (text[units - 1] & 0xFC00) == 0xD800)
            --units;
        block.clear();
        utf8::encode(text.substr(0, units), block);
        writeStandardOutput(block);
        text.remove_prefix(units);
    }
}

void writeDiagnostic(std::string_view message) noexcept {
    // Written without allocating: this may report that memory ran out.
    constexpr std::string_view prefix = "glyphmill: ";
    iovec parts[] = {{const_cast<char *>(prefix.data()), prefix.size()},
                     {const_cast<char *>(message.data()), message.size()},
                     {const_cast<char *>("\n"), 1}};
    std::size_t total = prefix.size() + message.size() + 1;
    // A short write on a pipe is finished from where it stopped.
    ssize_t count;
    do {
        count = ::writev(STDERR_FILENO, parts, 3);
    } while (count < 0 && errno == EINTR);
    if (count < 0 || static_cast<std::size_t>(count) == total)
        return;
    std::size_t skipped = static_cast<std::size_t>(count);
    for (const iovec &part : parts) {
        std::string_view piece(static_cast<const char *>(part.iov_base), part.iov_len);
        if (skipped >= piece.size()) {
            skipped -= piece.size();
            continue;
        }
        if (writeAll(STDERR_FILENO, piece.substr(skipped)) != 0)
            return;
        skipped = 0;
    }
}

} // namespace glyphmill::cli
