#include "platform/JsonFilePreferenceStore.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace glyphmill {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using Strings = std::vector<std::u16string>;

std::string readFile(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

void writeFile(const std::string &path, std::string_view bytes) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

std::vector<std::string> namesIn(const std::string &directory) {
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(directory))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

unsigned modeOf(const std::string &path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
}

class JsonFilePreferenceStoreTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = fs::temp_directory_path() / "glyphmill-prefs-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        root_ = pattern;
        directory_ = root_ + "/config/glyphmill";
        path_ = directory_ + "/preferences.json";
    }
    void TearDown() override {
        if (fs::exists(directory_))
            fs::permissions(directory_, fs::perms::owner_all, fs::perm_options::add);
        fs::remove_all(root_);
    }

    std::string root_, directory_, path_;
};

TEST_F(JsonFilePreferenceStoreTest, EveryTypeRoundTripsAndStaysDistinct) {
    PreferenceData allBytes;
    for (int byte = 0; byte < 256; ++byte)
        allBytes.push_back(std::uint8_t(byte));
    // Pairs that a careless encoding would confuse: "true" and true, a string and a one-string
    // list, base64 text and data; and data of every length modulo three.
    const std::vector<std::pair<std::string, PreferenceValue>> values = {
        {"bool.true", true},
        {"bool.false", false},
        {"string.true", u"true"},
        {"string.empty", u""},
        {"string.hard", u"Stra\u00dfe \"q\" \\ \n\t\u0001 \U0001F389"},
        {"string.base64", u"Zm9v"},
        {"strings.empty", Strings{}},
        {"strings.one", Strings{u"true"}},
        {"strings.many", Strings{u"", u"\u00e9", u"\U0001D49C"}},
        {"data.empty", PreferenceData{}},
        {"data.one", PreferenceData{0}},
        {"data.two", PreferenceData{0xFF, 0xFE}},
        {"data.text", PreferenceData{'Z', 'm', '9', 'v'}},
        {"data.all", allBytes},
    };
    JsonFilePreferenceStore writer(path_);
    for (const auto &[key, value] : values)
        ASSERT_TRUE(writer.setValue(key, value)) << key;

    JsonFilePreferenceStore reader(path_);
    for (const auto &[key, value] : values) {
        EXPECT_EQ(writer.value(key), value) << key;
        EXPECT_EQ(reader.value(key), value) << key;
    }
    EXPECT_EQ(reader.keys().size(), values.size());
    EXPECT_FALSE(reader.value("absent"));
}

TEST_F(JsonFilePreferenceStoreTest, FileIsSortedPrettyPrintedJson) {
    JsonFilePreferenceStore store(path_);
    store.setValue("zeta", true);
    store.setValue("list", Strings{u"a", u"b"});
    store.setValue("blob", PreferenceData{'f', 'o', 'o', 'b', 'a', 'r'});
    store.setValue("name", u"caf\u00e9");
    store.setValue("gone", false);
    store.removeValue("gone");
    EXPECT_EQ(readFile(path_), "{\n"
                               "    \"blob\": {\n"
                               "        \"data\": \"Zm9vYmFy\"\n"
                               "    },\n"
                               "    \"list\": [\n"
                               "        \"a\",\n"
                               "        \"b\"\n"
                               "    ],\n"
                               "    \"name\": \"caf\xc3\xa9\",\n"
                               "    \"zeta\": true\n"
                               "}\n");
}

TEST_F(JsonFilePreferenceStoreTest, ReadsForeignFilesAndKeepsUnknownShapes) {
    const Json unknown = Json::parse(R"({
        "number": 12.5, "nothing": null, "mixed": ["x", 1], "nested": {"a": {"b": [1, 2]}},
        "data.badLength": {"data": "Zg="}, "data.badDigit": {"data": "Zm9!"},
        "data.padInside": {"data": "Zg==Zg=="}, "data.allPadding": {"data": "===="},
        "data.extraKey": {"data": "", "more": 1}, "data.notString": {"data": 1}})");
    std::string file = unknown.dump();
    file.pop_back(); // reopen the object to add the known shapes
    file += R"(, "escaped": "caf\u00e9", "badUtf8": "a)"
            "\xff"
            R"(b", "bytes1": {"data": "Zg=="}, "bytes2": {"data": "Zm8="}, "bytes4": {"data": "Zm9vYg=="}})";
    writeFile(path_, file);

    JsonFilePreferenceStore store(path_);
    EXPECT_FALSE(store.setAsidePath());
    EXPECT_EQ(store.stringValue("escaped"), u"caf\u00e9");
    EXPECT_EQ(store.stringValue("badUtf8"), u"a\uFFFDb");
    EXPECT_EQ(store.dataValue("bytes1"), (PreferenceData{'f'}));
    EXPECT_EQ(store.dataValue("bytes2"), (PreferenceData{'f', 'o'}));
    EXPECT_EQ(store.dataValue("bytes4"), (PreferenceData{'f', 'o', 'o', 'b'}));
    for (const auto &[key, value] : unknown.items())
        EXPECT_FALSE(store.value(key)) << key;
    EXPECT_EQ(store.keys().size(), unknown.size() + 5);

    ASSERT_TRUE(store.setValue("added", true));
    const Json rewritten = Json::parse(readFile(path_));
    for (const auto &[key, value] : unknown.items())
        EXPECT_EQ(rewritten.at(key), value) << key;
    EXPECT_EQ(rewritten.at("badUtf8"), "a\xef\xbf\xbd"
                                       "b");
}

TEST_F(JsonFilePreferenceStoreTest, OpeningWritesNothingAndEmptyFileIsEmptyStore) {
    JsonFilePreferenceStore missing(path_);
    EXPECT_TRUE(missing.keys().empty());
    EXPECT_FALSE(fs::exists(root_ + "/config"));

    writeFile(path_, " \n");
    JsonFilePreferenceStore empty(path_);
    EXPECT_TRUE(empty.keys().empty());
    EXPECT_FALSE(empty.setAsidePath());
    EXPECT_EQ(namesIn(directory_), std::vector<std::string>{"preferences.json"});
}

TEST_F(JsonFilePreferenceStoreTest, FilesArePrivateWhateverTheUmaskAndNoTemporaryIsLeft) {
    const mode_t savedUmask = ::umask(0);
    JsonFilePreferenceStore store(path_);
    EXPECT_TRUE(store.setValue("key", true));
    ::umask(savedUmask);
    EXPECT_EQ(modeOf(root_ + "/config"), 0700u);
    EXPECT_EQ(modeOf(directory_), 0700u);
    EXPECT_EQ(modeOf(path_), 0600u);
    EXPECT_EQ(namesIn(directory_), (std::vector<std::string>{"preferences.json", "preferences.json.lock"}));

    ::chmod(path_.c_str(), 0644);
    EXPECT_TRUE(store.setValue("key", false));
    EXPECT_EQ(modeOf(path_), 0600u);
}

TEST_F(JsonFilePreferenceStoreTest, UnreadableFileIsSetAsideWithItsBytesIntact) {
    const std::vector<std::string> corrupt = {
        "{",
        "[]",
        "\"text\"",
        "null",
        "{\"a\":1,}",
        "{\"a\":1e999}",
        "{\"a\":\"\\ud800\"}",
        "{\"a\":" + std::string(150, '[') + std::string(150, ']') + "}",
    };
    for (const auto &bytes : corrupt) {
        writeFile(path_, bytes);
        JsonFilePreferenceStore store(path_);
        EXPECT_EQ(store.setAsidePath(), path_ + ".corrupt") << bytes;
        EXPECT_EQ(readFile(path_ + ".corrupt"), bytes);
        EXPECT_TRUE(store.keys().empty());
        EXPECT_FALSE(fs::exists(path_));
        EXPECT_TRUE(store.setValue("after", true));
        EXPECT_EQ(JsonFilePreferenceStore(path_).boolValue("after"), true);
        fs::remove(path_ + ".corrupt");
    }
}

TEST_F(JsonFilePreferenceStoreTest, LaterCorruptFilesNeverReplaceEarlierOnes) {
    writeFile(path_, "first");
    JsonFilePreferenceStore store(path_);
    EXPECT_TRUE(store.setValue("mine", true));

    // Another program spoils the file while the store is open: the next write finds it.
    writeFile(path_, "second");
    EXPECT_TRUE(store.setValue("other", true));
    EXPECT_EQ(store.setAsidePath(), path_ + ".corrupt-2");
    writeFile(path_, "third");
    EXPECT_TRUE(store.removeValue("other"));
    EXPECT_EQ(store.setAsidePath(), path_ + ".corrupt-3");

    EXPECT_EQ(readFile(path_ + ".corrupt"), "first");
    EXPECT_EQ(readFile(path_ + ".corrupt-2"), "second");
    EXPECT_EQ(readFile(path_ + ".corrupt-3"), "third");
    EXPECT_TRUE(store.keys().empty()); // the store goes on from what the file now holds: nothing
}

TEST_F(JsonFilePreferenceStoreTest, WritesMergeWithWhatOthersWrote) {
    JsonFilePreferenceStore tray(path_);
    JsonFilePreferenceStore commandLine(path_);
    EXPECT_TRUE(tray.setValue("tray", true));
    EXPECT_TRUE(commandLine.setValue("commandLine", true));
    EXPECT_EQ(commandLine.boolValue("tray"), true); // refreshed by its own write
    EXPECT_FALSE(tray.value("commandLine"));        // not yet: reads come from memory
    EXPECT_TRUE(tray.removeValue("tray"));
    EXPECT_EQ(JsonFilePreferenceStore(path_).keys(), std::vector<std::string>{"commandLine"});
}

TEST_F(JsonFilePreferenceStoreTest, ConcurrentProcessesLoseNoKeyAndFileAlwaysParses) {
    constexpr int writesPerProcess = 150;
    pid_t children[2];
    for (int process = 0; process < 2; ++process) {
        children[process] = ::fork();
        ASSERT_GE(children[process], 0);
        if (children[process] == 0) {
            JsonFilePreferenceStore store(path_);
            bool ok = true;
            for (int i = 0; i < writesPerProcess; ++i)
                ok = store.setValue("p" + std::to_string(process) + "." + std::to_string(i), u"v") && ok;
            ::_exit(ok ? 0 : 1);
        }
    }
    // Every child is waited for, even after a failure, so none outlives the test's directory.
    int finished = 0, reads = 0, unparsable = 0;
    while (finished < 2) {
        if (std::string bytes = readFile(path_); !bytes.empty()) {
            ++reads;
            unparsable += Json::parse(bytes, nullptr, false).is_object() ? 0 : 1;
        }
        for (pid_t &child : children) {
            int status = 0;
            if (child > 0 && ::waitpid(child, &status, WNOHANG) == child) {
                EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
                child = 0;
                ++finished;
            }
        }
    }
    EXPECT_EQ(unparsable, 0);
    EXPECT_GT(reads, 0);
    JsonFilePreferenceStore result(path_);
    EXPECT_EQ(result.keys().size(), 2u * writesPerProcess);
    EXPECT_FALSE(fs::exists(path_ + ".corrupt"));
}

// Appends one entry to the list under "list" as a single read-modify-write.
bool appendToList(PreferenceStore &store, const std::u16string &entry) {
    return store.updateValue("list", [&](const std::optional<PreferenceValue> &stored) {
        Strings list;
        if (const auto *held = stored ? std::get_if<Strings>(&*stored) : nullptr)
            list = *held;
        list.push_back(entry);
        return std::optional<PreferenceValue>(list);
    });
}

TEST_F(JsonFilePreferenceStoreTest, UpdatesFromConcurrentProcessesLoseNoEntry) {
    constexpr int processes = 4, appendsPerProcess = 40;
    std::vector<pid_t> children;
    for (int process = 0; process < processes; ++process) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            // Each process keeps its own store, as the tray and the command line do.
            JsonFilePreferenceStore store(path_);
            bool ok = true;
            for (int i = 0; i < appendsPerProcess; ++i)
                ok = appendToList(store, u"p" + std::u16string(1, char16_t(u'0' + process)) + u"." +
                                             std::u16string(1, char16_t(u'A' + i))) &&
                     ok;
            ::_exit(ok ? 0 : 1);
        }
        children.push_back(child);
    }
    for (pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    const auto list = JsonFilePreferenceStore(path_).stringArrayValue("list");
    ASSERT_TRUE(list);
    EXPECT_EQ(list->size(), std::size_t(processes * appendsPerProcess));
    // Each process's entries keep their order.
    for (int process = 0; process < processes; ++process) {
        Strings own;
        for (const auto &entry : *list)
            if (entry[1] == char16_t(u'0' + process))
                own.push_back(entry);
        ASSERT_EQ(own.size(), std::size_t(appendsPerProcess));
        EXPECT_TRUE(std::is_sorted(own.begin(), own.end()));
    }
}

TEST_F(JsonFilePreferenceStoreTest, UpdateThatDeclinesWritesNothing) {
    JsonFilePreferenceStore store(path_);
    bool sawAbsent = false;
    EXPECT_TRUE(store.updateValue("absent", [&](const std::optional<PreferenceValue> &stored) {
        sawAbsent = !stored.has_value();
        return std::optional<PreferenceValue>();
    }));
    EXPECT_TRUE(sawAbsent);
    EXPECT_FALSE(fs::exists(path_));
}

TEST_F(JsonFilePreferenceStoreTest, WriterKilledAtAnyMomentLeavesAValidFileAndNoLitter) {
    ASSERT_TRUE(JsonFilePreferenceStore(path_).setValue("list", Strings{u"first"}));
    for (int round = 0; round < 30; ++round) {
        int ready[2];
        ASSERT_EQ(::pipe(ready), 0);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            ::close(ready[0]);
            JsonFilePreferenceStore store(path_);
            ::close(ready[1]); // tells the parent the writes begin
            for (int i = 0;; ++i)
                appendToList(store, u"x" + std::u16string(std::size_t(i % 50), u'y'));
        }
        ::close(ready[1]);
        char ignored;
        (void)::read(ready[0], &ignored, 1);
        ::close(ready[0]);
        // A different moment of the write cycle each round.
        ::usleep(useconds_t(200 + (round * 733) % 4000));
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);

        const Json parsed = Json::parse(readFile(path_), nullptr, false);
        ASSERT_TRUE(parsed.is_object()) << "round " << round;
        ASSERT_TRUE(parsed.contains("list"));
        EXPECT_EQ(parsed["list"][0], "first");
    }
    // The next writer clears away what killed writers left half-made.
    ASSERT_TRUE(JsonFilePreferenceStore(path_).setValue("after", true));
    EXPECT_EQ(namesIn(directory_), (std::vector<std::string>{"preferences.json", "preferences.json.lock"}));
}

TEST_F(JsonFilePreferenceStoreTest, ReloadAnnouncesOnlyWhatOtherProgramsChanged) {
    JsonFilePreferenceStore tray(path_);
    JsonFilePreferenceStore other(path_);
    int announcements = 0;
    tray.addObserver([&] { ++announcements; });

    ASSERT_TRUE(tray.setValue("own", true));
    tray.reload();
    EXPECT_EQ(announcements, 0) << "its own write";

    ASSERT_TRUE(other.setValue("theirs", u"1"));
    tray.reload();
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(tray.stringValue("theirs"), u"1");
    tray.reload();
    EXPECT_EQ(announcements, 1) << "nothing new";

    // Taken in silently by the tray's own write, yet still announced at the next reload.
    ASSERT_TRUE(other.setValue("theirs", u"2"));
    ASSERT_TRUE(tray.setValue("own", false));
    EXPECT_EQ(announcements, 1);
    tray.reload();
    EXPECT_EQ(announcements, 2);
    EXPECT_EQ(tray.stringValue("theirs"), u"2");

    // A file that does not parse is left for the next write to set aside; memory stays.
    writeFile(path_, "{ not json");
    tray.reload();
    EXPECT_EQ(announcements, 2);
    EXPECT_EQ(tray.stringValue("theirs"), u"2");

    // A removed file means the defaults again.
    fs::remove(path_);
    tray.reload();
    EXPECT_EQ(announcements, 3);
    EXPECT_TRUE(tray.keys().empty());
}

TEST_F(JsonFilePreferenceStoreTest, WriteCutShortKeepsTheOldFile) {
    JsonFilePreferenceStore store(path_);
    ASSERT_TRUE(store.setValue("kept", u"old"));
    const std::string before = readFile(path_);

    // The size limit makes the temporary file's write fail half-way.
    rlimit saved{};
    ::getrlimit(RLIMIT_FSIZE, &saved);
    rlimit limited = saved;
    limited.rlim_cur = before.size() + 16;
    auto savedHandler = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &limited);
    const bool written = store.setValue("large", std::u16string(4096, u'x'));
    ::setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, savedHandler);

    EXPECT_FALSE(written);
    EXPECT_EQ(readFile(path_), before);
    EXPECT_FALSE(store.value("large"));
    EXPECT_EQ(store.stringValue("kept"), u"old");
    EXPECT_EQ(namesIn(directory_), (std::vector<std::string>{"preferences.json", "preferences.json.lock"}));
}

TEST_F(JsonFilePreferenceStoreTest, PathThatIsNotAFileIsReportedFailsWritesAndIsLeftAlone) {
    fs::create_directories(path_ + "/inside");
    JsonFilePreferenceStore store(path_);
    ASSERT_TRUE(store.readFailure());
    EXPECT_EQ(store.readFailure()->file, path_);
    EXPECT_EQ(store.readFailure()->reason, "Is a directory");
    EXPECT_FALSE(store.setValue("key", true));
    EXPECT_FALSE(store.setAsidePath());
    EXPECT_TRUE(fs::is_directory(path_ + "/inside"));
    fs::remove_all(path_);

    // Until what is there can be read: a reload or a write takes it in and clears the failure.
    ASSERT_EQ(::mkfifo(path_.c_str(), 0600), 0);
    JsonFilePreferenceStore fifo(path_);
    ASSERT_TRUE(fifo.readFailure());
    EXPECT_EQ(fifo.readFailure()->reason, "not a regular file");
    EXPECT_FALSE(fifo.setValue("key", true));
    EXPECT_EQ(fs::status(path_).type(), fs::file_type::fifo);
    fs::remove(path_);
    writeFile(path_, R"({"kept": true})");
    fifo.reload();
    EXPECT_FALSE(fifo.readFailure());
    EXPECT_EQ(fifo.boolValue("kept"), true);
    EXPECT_TRUE(fifo.setValue("key", true));

    // A file where a folder on the way should be: there are no preferences yet, nothing failed.
    writeFile(root_ + "/plain", "not a folder");
    EXPECT_FALSE(JsonFilePreferenceStore(root_ + "/plain/preferences.json").readFailure());
    EXPECT_FALSE(JsonFilePreferenceStore(root_ + "/missing/preferences.json").readFailure());
}

// Run as another user when the test runs as root, for whom permission bits do not bind. The
// folder and the lock are open to that user, so only reading the file itself is refused.
TEST_F(JsonFilePreferenceStoreTest, FileWithoutReadPermissionIsReportedAndNeverReplaced) {
    ASSERT_TRUE(JsonFilePreferenceStore(path_).setValue("kept", u"mine"));
    const std::string before = readFile(path_);
    for (const std::string &folder : {root_, root_ + "/config", directory_})
        ::chmod(folder.c_str(), 0777);
    ::chmod((path_ + ".lock").c_str(), 0666);
    ::chmod(path_.c_str(), 0);

    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (::getuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
            ::_exit(2);
        JsonFilePreferenceStore store(path_);
        const auto failure = store.readFailure();
        const bool reported = failure && failure->file == path_ && failure->reason == "Permission denied";
        const bool refused =
            reported && !store.value("kept") && !store.setValue("kept", u"default") && store.readFailure();
        ::_exit(reported && refused ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0) << "1: not reported or not refused; 2: cannot become another user";
    ::chmod(path_.c_str(), 0600);
    EXPECT_EQ(readFile(path_), before);
}

TEST_F(JsonFilePreferenceStoreTest, ReadOnlyDirectoryFailsWritesAndKeepsTheFile) {
    JsonFilePreferenceStore store(path_);
    ASSERT_TRUE(store.setValue("kept", true));
    const std::string before = readFile(path_);
    ::chmod(directory_.c_str(), 0500);
    if (::access(directory_.c_str(), W_OK) == 0)
        GTEST_SKIP() << "permission bits do not bind this user (root)";
    EXPECT_FALSE(store.setValue("kept", false));
    EXPECT_EQ(store.boolValue("kept"), true);
    EXPECT_EQ(readFile(path_), before);
}

TEST(JsonFilePreferenceStorePath, FollowsXdgConfigHome) {
    const char *saved = std::getenv("XDG_CONFIG_HOME");
    const std::optional<std::string> savedXdg = saved ? std::optional<std::string>(saved) : std::nullopt;
    const std::string savedHome = std::getenv("HOME") ? std::getenv("HOME") : "";
    ::setenv("HOME", "/home/someone", 1);
    const std::string fromHome = "/home/someone/.config/glyphmill/preferences.json";
    // A relative XDG_CONFIG_HOME is ignored, as the XDG rules say.
    for (const char *xdg : {"/xdg/config", "", "relative/config", static_cast<const char *>(nullptr)}) {
        xdg ? ::setenv("XDG_CONFIG_HOME", xdg, 1) : ::unsetenv("XDG_CONFIG_HOME");
        const std::string expected = xdg && *xdg == '/' ? "/xdg/config/glyphmill/preferences.json" : fromHome;
        EXPECT_EQ(JsonFilePreferenceStore::defaultPath(), expected) << (xdg ? xdg : "(unset)");
    }
    ::setenv("HOME", savedHome.c_str(), 1);
    savedXdg ? ::setenv("XDG_CONFIG_HOME", savedXdg->c_str(), 1) : ::unsetenv("XDG_CONFIG_HOME");
}

} // namespace
} // namespace glyphmill
