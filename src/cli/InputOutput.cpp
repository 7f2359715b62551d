#include "cli/InputOutput.h"

#include "cli/Failure.h"
#include "transform/Utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace glyphmill::cli {
namespace {

constexpr std::size_t firstReadSize = std::size_t(1) << 16;

[[noreturn]] void failReading(const std::string &name, int error) {
    fail(ExitStatus::unreadableInput, "cannot read " + name + ": " + std::strerror(error));
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

} // namespace

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

InputBytes InputBytes::fromDescriptor(int descriptor, const std::string &name) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0)
        failReading(name, errno);
    if (S_ISDIR(status.st_mode))
        failReading(name, EISDIR);

    InputBytes input;
    // A regular file with a size is mapped whole; files that report no size (such as those under
    // /proc) and pipes are read until their end instead.
    if (S_ISREG(status.st_mode) && status.st_size > 0) {
        off_t position = ::lseek(descriptor, 0, SEEK_CUR);
        auto size = static_cast<std::size_t>(status.st_size);
        if (position >= 0 && static_cast<std::size_t>(position) <= size) {
            void *mapping = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, descriptor, 0);
            if (mapping != MAP_FAILED) {
                input.mapping_ = mapping;
                input.mappingSize_ = size;
                input.mappingStart_ = static_cast<std::size_t>(position);
                return input;
            }
        }
    }

    std::string &buffer = input.buffer_;
    std::size_t used = 0;
    buffer.resize(firstReadSize);
    for (;;) {
        if (used == buffer.size())
            buffer.resize(buffer.size() * 2);
        ssize_t count = ::read(descriptor, buffer.data() + used, buffer.size() - used);
        if (count < 0) {
            if (errno == EINTR)
                continue;
            failReading(name, errno);
        }
        if (count == 0)
            break;
        used += static_cast<std::size_t>(count);
    }
    buffer.resize(used);
    return input;
}

InputBytes::InputBytes(InputBytes &&other) noexcept
    : mapping_(other.mapping_), mappingSize_(other.mappingSize_), mappingStart_(other.mappingStart_),
      buffer_(std::move(other.buffer_)) {
    other.mapping_ = nullptr;
    other.mappingSize_ = 0;
}

InputBytes::~InputBytes() {
    release();
}

std::string_view InputBytes::bytes() const {
    if (mapping_)
        return {static_cast<const char *>(mapping_) + mappingStart_, mappingSize_ - mappingStart_};
    return buffer_;
}

void InputBytes::release() {
    if (mapping_)
        ::munmap(mapping_, mappingSize_);
    mapping_ = nullptr;
    mappingSize_ = 0;
    std::string().swap(buffer_);
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

void writeDiagnostic(std::string_view message) {
    std::string line = "glyphmill: ";
    line += message;
    line += '\n';
    writeAll(STDERR_FILENO, line);
}

} // namespace glyphmill::cli
