// Reading the whole input and writing the whole output with plain system calls, in large
// blocks, so that the time spent stays proportional to the size of the text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace glyphmill::cli {

// The bytes of one input: a regular file is mapped, anything else (pipes, terminals) is read.
class InputBytes {
public:
    // Both throw Failure (unreadable input) naming the file and the system's reason.
    static InputBytes fromFile(const std::string &path);
    static InputBytes fromStandardInput();

    InputBytes(InputBytes &&other) noexcept;
    InputBytes &operator=(InputBytes &&) = delete;
    InputBytes(const InputBytes &) = delete;
    ~InputBytes();

    std::string_view bytes() const;

private:
    InputBytes() = default;
    void release();
    static InputBytes fromDescriptor(int descriptor, const std::string &name);

    void *mapping_ = nullptr;
    std::size_t mappingSize_ = 0;
    std::size_t mappingStart_ = 0; // standard input may already be positioned inside the file
    std::string buffer_;
};

// Strict UTF-8 to UTF-16. Throws Failure (invalid text), "WHAT is not valid UTF-8 at byte N".
std::u16string decodeText(std::string_view bytes, std::string_view what);

// Throws Failure (cannot write output) when the output is closed, full or broken.
void writeStandardOutput(std::string_view bytes);
// Encodes text as UTF-8 block by block while writing it, so a large result never needs a
// second full-size copy. Throws like writeStandardOutput.
void writeStandardOutput(std::u16string_view text);

// One line on standard error, "glyphmill: " first; a failure to write it is ignored, since
// there is nowhere left to report it.
void writeDiagnostic(std::string_view message);

} // namespace glyphmill::cli
