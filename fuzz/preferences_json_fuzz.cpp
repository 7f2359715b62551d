// Arbitrary bytes as the preferences file: opening, reading every key and writing one must
// never crash; a file the store cannot read must be moved aside intact without replacing an
// earlier set-aside file; and a file the store writes must read back with every value kept.
#include "platform/JsonFilePreferenceStore.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using glyphmill::JsonFilePreferenceStore;
using glyphmill::PreferenceValue;

constexpr std::string_view earlierSetAside = "left from an earlier run";
constexpr std::string_view writtenKey = "fuzz.written";

struct Scratch {
    Scratch() {
        // Memory-backed when possible: every write syncs, and syncing a disk is slow.
        const fs::path base = fs::is_directory("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
        std::string pattern = base / "glyphmill-fuzz-XXXXXX";
        if (!::mkdtemp(pattern.data()))
            std::abort();
        directory = pattern;
        path = directory + "/preferences.json";
    }
    ~Scratch() { fs::remove_all(directory); }
    std::string directory, path;
};

void writeFile(const std::string &path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string readFile(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

void check(bool condition, const char *failure) {
    if (!condition) {
        std::fprintf(stderr, "%s\n", failure);
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static Scratch scratch;
    const std::string input(reinterpret_cast<const char *>(data), size);
    for (const auto &entry : fs::directory_iterator(scratch.directory))
        fs::remove(entry.path());
    writeFile(scratch.path + ".corrupt", earlierSetAside);
    writeFile(scratch.path, input);

    JsonFilePreferenceStore store(scratch.path);
    std::vector<std::pair<std::string, std::optional<PreferenceValue>>> before;
    for (auto &key : store.keys())
        before.emplace_back(key, store.value(key));
    check(readFile(scratch.path + ".corrupt") == earlierSetAside, "an earlier set-aside file was replaced");
    if (store.setAsidePath()) {
        check(*store.setAsidePath() == scratch.path + ".corrupt-2", "set aside under an unexpected name");
        check(readFile(*store.setAsidePath()) == input, "the set-aside file differs from the original");
        check(before.empty(), "a set-aside file left values behind");
    }
    check(store.setValue(writtenKey, true), "a write failed");

    JsonFilePreferenceStore reopened(scratch.path);
    check(!reopened.setAsidePath(), "the store wrote a file it cannot read back");
    check(reopened.boolValue(writtenKey) == true, "the written value was not read back");
    bool hadWrittenKey = false;
    for (const auto &[key, value] : before) {
        hadWrittenKey = hadWrittenKey || key == writtenKey;
        check(key == writtenKey || reopened.value(key) == value,
              "a value changed when the file was rewritten");
    }
    check(reopened.keys().size() == before.size() + (hadWrittenKey ? 0 : 1), "keys were lost or added");
    return 0;
}
