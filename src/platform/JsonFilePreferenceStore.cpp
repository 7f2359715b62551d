#include "JsonFilePreferenceStore.h"

#include "common/Utf8.h"

#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <type_traits>
#include <unistd.h>
#include <utility>

namespace glyphmill {
namespace {

using Json = nlohmann::json;

// Data values are stored as {"data": "<base64>"}, which keeps them apart from strings.
constexpr const char *dataKey = "data";
// Far deeper than anything this program writes; a deeper file is treated as unreadable so
// that copying and printing it can never exhaust the stack.
constexpr int maximumNestingDepth = 100;
constexpr int maximumSetAsideAttempts = 1000;

constexpr std::string_view base64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string base64Encode(const PreferenceData &bytes) {
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    std::size_t i = 0;
    for (; i + 3 <= bytes.size(); i += 3) {
        std::uint32_t group =
            (std::uint32_t(bytes[i]) << 16) | (std::uint32_t(bytes[i + 1]) << 8) | bytes[i + 2];
        for (int shift = 18; shift >= 0; shift -= 6)
            out.push_back(base64Alphabet[(group >> shift) & 0x3F]);
    }
    const std::size_t rest = bytes.size() - i;
    if (rest > 0) {
        std::uint32_t group = std::uint32_t(bytes[i]) << 16;
        if (rest == 2)
            group |= std::uint32_t(bytes[i + 1]) << 8;
        out.push_back(base64Alphabet[(group >> 18) & 0x3F]);
        out.push_back(base64Alphabet[(group >> 12) & 0x3F]);
        out.push_back(rest == 2 ? base64Alphabet[(group >> 6) & 0x3F] : '=');
        out.push_back('=');
    }
    return out;
}

int base64Digit(char c) {
    if (c >= 'A' && c <= 'Z')
        return c - 'A';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 26;
    if (c >= '0' && c <= '9')
        return c - '0' + 52;
    if (c == '+')
        return 62;
    if (c == '/')
        return 63;
    return -1;
}

std::optional<PreferenceData> base64Decode(std::string_view text) {
    if (text.size() % 4 != 0)
        return std::nullopt;
    std::size_t padding = 0;
    if (!text.empty() && text.back() == '=')
        padding = text[text.size() - 2] == '=' ? 2 : 1;
    PreferenceData out;
    out.reserve(text.size() / 4 * 3);
    for (std::size_t i = 0; i < text.size(); i += 4) {
        const bool last = i + 4 == text.size();
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            int digit = 0;
            if (!last || k < 4 - padding) {
                digit = base64Digit(text[i + k]);
                if (digit < 0)
                    return std::nullopt;
            }
            group = (group << 6) | std::uint32_t(digit);
        }
        out.push_back(std::uint8_t(group >> 16));
        if (!last || padding < 2)
            out.push_back(std::uint8_t(group >> 8));
        if (!last || padding < 1)
            out.push_back(std::uint8_t(group));
    }
    return out;
}

Json toJson(const PreferenceValue &value) {
    return std::visit(
        [](const auto &held) -> Json {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, bool>) {
                return Json(held);
            } else if constexpr (std::is_same_v<Held, std::u16string>) {
                return Json(utf8::encode(held));
            } else if constexpr (std::is_same_v<Held, std::vector<std::u16string>>) {
                Json array = Json::array();
                for (const auto &string : held)
                    array.push_back(utf8::encode(string));
                return array;
            } else {
                Json object = Json::object();
                object[dataKey] = base64Encode(held);
                return object;
            }
        },
        value);
}

// None for a shape this program does not write; such values are kept but not offered.
std::optional<PreferenceValue> fromJson(const Json &json) {
    switch (json.type()) {
    case Json::value_t::boolean:
        return PreferenceValue(json.get<bool>());
    case Json::value_t::string:
        return PreferenceValue(utf8::decodeLossy(json.get_ref<const std::string &>()));
    case Json::value_t::array: {
        std::vector<std::u16string> strings;
        strings.reserve(json.size());
        for (const auto &element : json) {
            if (!element.is_string())
                return std::nullopt;
            strings.push_back(utf8::decodeLossy(element.get_ref<const std::string &>()));
        }
        return PreferenceValue(std::move(strings));
    }
    case Json::value_t::object: {
        auto data = json.find(dataKey);
        if (json.size() != 1 || data == json.end() || !data->is_string())
            return std::nullopt;
        if (auto bytes = base64Decode(data->get_ref<const std::string &>()))
            return PreferenceValue(std::move(*bytes));
        return std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

// None when the text is not a JSON object.
std::optional<Json> parseObject(std::string_view bytes) {
    // An empty file holds nothing that could be lost, so it is an empty store rather than a bad file.
    if (bytes.find_first_not_of(" \t\r\n") == std::string_view::npos)
        return Json::object();
    // Invalid UTF-8 inside a string costs that string a replacement character, not the whole file.
    const std::string text = utf8::encode(utf8::decodeLossy(bytes));
    bool tooDeep = false;
    Json parsed = Json::parse(
        text,
        [&tooDeep](int depth, Json::parse_event_t, Json &) {
            tooDeep = tooDeep || depth > maximumNestingDepth;
            return !tooDeep;
        },
        false);
    if (tooDeep || parsed.is_discarded() || !parsed.is_object())
        return std::nullopt;
    return parsed;
}

std::string serialized(const Json &object) {
    return object.dump(4, ' ', false, Json::error_handler_t::replace) + '\n';
}

class FileDescriptor {
public:
    explicit FileDescriptor(int fd = -1) : fd_(fd) {}
    FileDescriptor(FileDescriptor &&other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    FileDescriptor &operator=(FileDescriptor &&) = delete;
    ~FileDescriptor() { close(); }

    int get() const { return fd_; }
    bool valid() const { return fd_ >= 0; }
    bool close() {
        const int fd = std::exchange(fd_, -1);
        return fd < 0 || ::close(fd) == 0;
    }

private:
    int fd_;
};

enum class FileState { missing, read, unreadable };
struct FileBytes {
    FileState state;
    std::string bytes;
    std::string failure; // why an unreadable file could not be read
};

FileBytes unreadable(std::string reason) {
    return {FileState::unreadable, {}, std::move(reason)};
}

FileBytes readWholeFile(const std::string &path) {
    // Non-blocking so that a FIFO in the file's place cannot hang the program.
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    // A file in the place of a folder on the way means there are no preferences either.
    if (!file.valid() && (errno == ENOENT || errno == ENOTDIR))
        return {FileState::missing, {}, {}};
    if (!file.valid())
        return unreadable(std::strerror(errno));
    struct stat info {};
    if (::fstat(file.get(), &info) != 0)
        return unreadable(std::strerror(errno));
    if (S_ISDIR(info.st_mode))
        return unreadable(std::strerror(EISDIR));
    if (!S_ISREG(info.st_mode))
        return unreadable("not a regular file");
    std::string bytes;
    char buffer[16384];
    for (;;) {
        const ssize_t count = ::read(file.get(), buffer, sizeof buffer);
        if (count > 0)
            bytes.append(buffer, std::size_t(count));
        else if (count == 0)
            break;
        else if (errno != EINTR)
            return unreadable(std::strerror(errno));
    }
    return {FileState::read, std::move(bytes), {}};
}

constexpr const char *cannotSetAside = "it holds no valid preferences and could not be moved aside";

bool writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(fd, text.data(), text.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        text.remove_prefix(std::size_t(count));
    }
    return true;
}

std::string directoryOf(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool isDirectory(const std::string &path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// Levels that are missing are created private to the user; existing ones keep their mode.
bool createDirectories(const std::string &directory) {
    for (std::size_t slash = directory.find('/', 1);; slash = directory.find('/', slash + 1)) {
        const std::string level = directory.substr(0, slash);
        if (::mkdir(level.c_str(), 0700) != 0 && errno != EEXIST && !isDirectory(level))
            return false;
        if (slash == std::string::npos)
            break;
    }
    return isDirectory(directory);
}

void fsyncDirectory(const std::string &directory) {
    FileDescriptor handle(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (handle.valid())
        ::fsync(handle.get());
}

// Held until the returned descriptor closes. The lock file is never removed: removing it
// would let two processes lock two different files.
FileDescriptor lockBeside(const std::string &path) {
    FileDescriptor lock(::open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (!lock.valid())
        return lock;
    while (::flock(lock.get(), LOCK_EX) != 0) {
        if (errno != EINTR)
            return FileDescriptor();
    }
    return lock;
}

// Moves path to path.corrupt, path.corrupt-2, ... without ever replacing an existing file.
std::optional<std::string> moveAside(const std::string &path) {
    for (int attempt = 1; attempt <= maximumSetAsideAttempts; ++attempt) {
        const std::string candidate = path + ".corrupt" + (attempt == 1 ? "" : "-" + std::to_string(attempt));
        if (::renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, candidate.c_str(), RENAME_NOREPLACE) == 0)
            return candidate;
        if (errno == EEXIST)
            continue;
        if (errno != EINVAL && errno != ENOSYS)
            return std::nullopt;
        // A file system without no-replace renames: a hard link refuses an existing name too.
        if (::link(path.c_str(), candidate.c_str()) == 0) {
            ::unlink(path.c_str());
            return candidate;
        }
        if (errno != EEXIST)
            return std::nullopt;
    }
    return std::nullopt;
}

std::string temporaryPrefix(const std::string &path) {
    return path + ".tmp-";
}

// Temporaries are only made while the lock is held, so one found by a lock holder was left by a
// writer that died before renaming it.
void removeStaleTemporaries(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    const std::string prefix = temporaryPrefix(path).substr(slash == std::string::npos ? 0 : slash + 1);
    DIR *listing = ::opendir(directoryOf(path).c_str());
    if (!listing)
        return;
    while (const dirent *entry = ::readdir(listing)) {
        if (std::string_view(entry->d_name).starts_with(prefix))
            ::unlinkat(::dirfd(listing), entry->d_name, 0);
    }
    ::closedir(listing);
}

bool replaceFile(const std::string &path, std::string_view text) {
    removeStaleTemporaries(path);
    std::string temporaryPath = temporaryPrefix(path) + "XXXXXX";
    FileDescriptor file(::mkostemp(temporaryPath.data(), O_CLOEXEC));
    if (!file.valid())
        return false;
    bool written = ::fchmod(file.get(), 0600) == 0 && writeAll(file.get(), text) && ::fsync(file.get()) == 0;
    written = file.close() && written;
    if (!written || ::rename(temporaryPath.c_str(), path.c_str()) != 0) {
        ::unlink(temporaryPath.c_str());
        return false;
    }
    // The new file is in place; a failed directory sync only weakens durability.
    fsyncDirectory(directoryOf(path));
    return true;
}

struct LoadedFile {
    Json object;
    bool existed;
};

// Reads the file while the caller holds the lock; a file that is not a JSON object is moved
// aside and the store goes on from empty. None when the file can be neither read nor moved,
// with the reason in failure.
std::optional<LoadedFile> loadLocked(const std::string &path, std::optional<std::string> &setAsidePath,
                                     std::optional<std::string> &failure) {
    FileBytes file = readWholeFile(path);
    failure.reset();
    if (file.state == FileState::unreadable) {
        failure = std::move(file.failure);
        return std::nullopt;
    }
    if (file.state == FileState::missing)
        return LoadedFile{Json::object(), false};
    if (auto object = parseObject(file.bytes))
        return LoadedFile{std::move(*object), true};
    auto aside = moveAside(path);
    if (!aside) {
        failure = cannotSetAside;
        return std::nullopt;
    }
    setAsidePath = std::move(aside);
    return LoadedFile{Json::object(), false};
}

} // namespace

struct JsonFilePreferenceStore::Entries {
    Json object = Json::object();
};

std::string JsonFilePreferenceStore::defaultPath() {
    std::string base;
    // The XDG rules say a relative XDG_CONFIG_HOME is to be ignored.
    if (const char *config = std::getenv("XDG_CONFIG_HOME"); config && config[0] == '/') {
        base = config;
    } else {
        const char *home = std::getenv("HOME");
        if (!home || !*home) {
            const passwd *account = ::getpwuid(::getuid());
            home = account ? account->pw_dir : nullptr;
        }
        base = std::string(home ? home : ".") + "/.config";
    }
    return base + "/glyphmill/preferences.json";
}

JsonFilePreferenceStore::JsonFilePreferenceStore() : JsonFilePreferenceStore(defaultPath()) {}

JsonFilePreferenceStore::JsonFilePreferenceStore(std::string path)
    : path_(std::move(path)), entries_(std::make_unique<Entries>()) {
    // A missing file is an empty store; an unreadable one leaves the store empty and every
    // write failing, so the file is never replaced unseen.
    FileBytes file = readWholeFile(path_);
    if (file.state == FileState::unreadable)
        readFailure_ = std::move(file.failure);
    if (file.state != FileState::read)
        return;
    if (auto object = parseObject(file.bytes)) {
        entries_->object = std::move(*object);
        return;
    }
    // Set a bad file aside at once, so the user can be told now rather than at the first write.
    FileDescriptor lock = lockBeside(path_);
    if (!lock.valid()) {
        readFailure_ = cannotSetAside;
        return;
    }
    if (auto loaded = loadLocked(path_, setAsidePath_, readFailure_))
        entries_->object = std::move(loaded->object);
}

JsonFilePreferenceStore::~JsonFilePreferenceStore() = default;

std::optional<PreferenceReadFailure> JsonFilePreferenceStore::readFailure() const {
    if (!readFailure_)
        return std::nullopt;
    return PreferenceReadFailure{path_, *readFailure_};
}

std::optional<PreferenceValue> JsonFilePreferenceStore::value(std::string_view key) const {
    auto found = entries_->object.find(key);
    if (found == entries_->object.end())
        return std::nullopt;
    return fromJson(*found);
}

std::vector<std::string> JsonFilePreferenceStore::keys() const {
    std::vector<std::string> names;
    names.reserve(entries_->object.size());
    for (const auto &item : entries_->object.items())
        names.push_back(item.key());
    return names;
}

bool JsonFilePreferenceStore::setValue(std::string_view key, const PreferenceValue &value) {
    return rewrite(key, [&](Entries &entries) { entries.object[std::string(key)] = toJson(value); });
}

bool JsonFilePreferenceStore::removeValue(std::string_view key) {
    return rewrite(key, [&](Entries &entries) { entries.object.erase(std::string(key)); });
}

bool JsonFilePreferenceStore::updateValue(std::string_view key, const PreferenceUpdate &update) {
    return rewrite(key, [&](Entries &entries) {
        auto found = entries.object.find(key);
        auto stored = found == entries.object.end() ? std::nullopt : fromJson(*found);
        if (auto changed = update(stored))
            entries.object[std::string(key)] = toJson(*changed);
    });
}

void JsonFilePreferenceStore::reload() {
    // No lock: writers replace the file by renaming, so a read sees one whole version.
    FileBytes file = readWholeFile(path_);
    if (file.state == FileState::unreadable) {
        readFailure_ = std::move(file.failure);
        return;
    }
    readFailure_.reset();
    Json object = Json::object();
    if (file.state == FileState::read) {
        auto parsed = parseObject(file.bytes);
        if (!parsed)
            return;
        object = std::move(*parsed);
    }
    if (object == entries_->object && !unannouncedChanges_)
        return;
    entries_->object = std::move(object);
    unannouncedChanges_ = false;
    notifyObservers();
}

bool JsonFilePreferenceStore::createDirectory() const {
    return createDirectories(directoryOf(path_));
}

bool JsonFilePreferenceStore::rewrite(std::string_view key, const std::function<void(Entries &)> &change) {
    if (!createDirectory())
        return false;
    FileDescriptor lock = lockBeside(path_);
    if (!lock.valid())
        return false;
    auto loaded = loadLocked(path_, setAsidePath_, readFailure_);
    if (!loaded)
        return false;

    Entries updated{loaded->object};
    change(updated);
    const bool unchanged = updated.object == loaded->object && (loaded->existed || updated.object.empty());
    const bool stored = unchanged || replaceFile(path_, serialized(updated.object));

    // Memory follows the file either way. Keys other than this one that differ from what this
    // store held were written by another program; observers hear of them at the next reload.
    Json othersBefore = entries_->object;
    Json othersNow = loaded->object;
    othersBefore.erase(std::string(key));
    othersNow.erase(std::string(key));
    unannouncedChanges_ = unannouncedChanges_ || othersBefore != othersNow;
    entries_->object = stored ? std::move(updated.object) : std::move(loaded->object);
    return stored;
}

} // namespace glyphmill
