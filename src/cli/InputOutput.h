// Reading the whole input and writing the whole output with plain system calls, in large
// blocks, so that the time spent stays proportional to the size of the text.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace glyphmill::cli {

// The bytes of one input, read whole: files, pipes and terminals alike.
class InputBytes {
public:
    // Both throw Failure (unreadable input) naming the file and the system's reason, or saying
    // that the file was truncated while it was read.
    static InputBytes fromFile(const std::string &path);
    static InputBytes fromStandardInput();

    InputBytes(InputBytes &&) noexcept = default;
    InputBytes &operator=(InputBytes &&) = delete;
    InputBytes(const InputBytes &) = delete;

    std::string_view bytes() const;

private:
    // Frees memory from new[] or, when mapped is set, a mapping of that many bytes.
    struct Release {
        std::size_t mapped;
        void operator()(char *bytes) const noexcept;
    };
    using Buffer = std::unique_ptr<char[], Release>;

    InputBytes() = default;
    static InputBytes fromDescriptor(int descriptor, const std::string &name);
    static Buffer heapBuffer(std::size_t size);
    static Buffer largeBuffer(std::size_t size);

    Buffer bytes_;
    std::size_t size_ = 0;
};

// Strict UTF-8 to UTF-16. Throws Failure (invalid text), "WHAT is not valid UTF-8 at byte N".
std::u16string decodeText(std::string_view bytes, std::string_view what);

// Throws Failure (cannot write output) when the output is closed, full or broken.
void writeStandardOutput(std::string_view bytes);
// Encodes text as UTF-8 block by block while writing it, so a large result never needs a
// second full-size copy. Throws like writeStandardOutput.
void writeStandardOutput(std::u16string_view text);

// One line on standard error, "glyphmill: " first; a failure to write it is ignored, since
// there is nowhere left to report it. Allocates nothing.
void writeDiagnostic(std::string_view message) noexcept;

} // namespace glyphmill::cli
