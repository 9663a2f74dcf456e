#include "registry_file.h"

#include <winerror.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <mutex>

#include "lasting.h"

namespace quorvane::platform {
namespace {

class Descriptor {
public:
    explicit Descriptor(int value) : value_(value) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (value_ >= 0) close(value_);
    }
    int get() const { return value_; }
    explicit operator bool() const { return value_ >= 0; }

private:
    int value_;
};

// The folder of the file (XDG base directories); empty when the user has no home.
std::string Folder() {
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && data[0] == '/') return std::string(data) + "/quorvane";
    const char* home = std::getenv("HOME");
    return home && home[0] == '/' ? std::string(home) + "/.local/share/quorvane" : std::string();
}

bool MakeFolder(const std::string& path) {
    for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        if (mkdir(path.substr(0, end).c_str(), 0700) != 0 && errno != EEXIST) return false;
        if (end == std::string::npos) return true;
    }
}

bool ReadWhole(int descriptor, std::string& text) {
    char piece[16384];
    for (;;) {
        const ssize_t count = read(descriptor, piece, sizeof piece);
        if (count == 0) return true;
        if (count > 0) {
            text.append(piece, static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        }
    }
}

bool WriteWhole(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(descriptor, text.data(), text.size());
        if (count > 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

// What tells one state of the file from another: each one is a file of its own. Two states that
// follow each other quickly can still look alike, so only readers rely on it.
struct Version {
    std::string path;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    timespec changed{};

    bool operator==(const Version& other) const {
        return path == other.path && device == other.device && inode == other.inode &&
               size == other.size && changed.tv_sec == other.changed.tv_sec &&
               changed.tv_nsec == other.changed.tv_nsec;
    }
};

// Guards the last state that this process has read.
std::mutex g_mutex;
struct LastState {
    Version version;
    RegistryTree tree;
};
Lasting<LastState> g_last;
Version& g_version = g_last.object.version;
RegistryTree& g_tree = g_last.object.tree;

// Brings g_tree up to date with the file; a file that isn't there is an empty one. False, with an
// empty tree, when the file can't be read. The mutex is held.
bool Refresh(const std::string& folder, bool evenIfItLooksTheSame) {
    Version version;
    version.path = folder + "/registry";
    const Descriptor file(open(version.path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status;
    if (!file || fstat(file.get(), &status) != 0) {
        const bool isMissing = !file && errno == ENOENT;
        g_version = {};
        g_tree = {};
        return isMissing;
    }
    version.device = status.st_dev;
    version.inode = status.st_ino;
    version.size = status.st_size;
    version.changed = status.st_mtim;
    if (version == g_version && !evenIfItLooksTheSame) return true;
    std::string text;
    g_version = {};
    g_tree = {};
    if (!ReadWhole(file.get(), text)) return false;
    g_tree.Parse(text);
    g_version = std::move(version);
    return true;
}

bool Store(const std::string& folder, const RegistryTree& tree) {
    const std::string path = folder + "/registry";
    const std::string fresh = path + ".new";
    {
        const Descriptor file(open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
        if (!file || !WriteWhole(file.get(), tree.Serialize())) return false;
    }
    return rename(fresh.c_str(), path.c_str()) == 0;
}

}  // namespace

void ReadRegistry(const std::function<void(const RegistryTree&)>& use) {
    const std::lock_guard guard(g_mutex);
    const std::string folder = Folder();
    if (folder.empty()) {
        use({});
        return;
    }
    Refresh(folder, false);
    use(g_tree);
}

LSTATUS ChangeRegistry(const std::function<LSTATUS(RegistryTree&)>& change) {
    const std::lock_guard guard(g_mutex);
    const std::string folder = Folder();
    if (folder.empty() || !MakeFolder(folder)) return ERROR_ACCESS_DENIED;
    // The lock is a file of its own, since the registry file is replaced.
    const Descriptor lock(
        open((folder + "/registry.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (!lock) return ERROR_ACCESS_DENIED;
    while (flock(lock.get(), LOCK_EX) != 0) {
        if (errno != EINTR) return ERROR_ACCESS_DENIED;
    }
    // What can't be read must not be replaced.
    if (!Refresh(folder, true)) return ERROR_ACCESS_DENIED;
    RegistryTree tree = g_tree;
    const LSTATUS answer = change(tree);
    if (answer != ERROR_SUCCESS) return answer;
    return Store(folder, tree) ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

}  // namespace quorvane::platform
