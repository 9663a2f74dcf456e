// The registry's file: what is read is stored and read again as it was, and a damaged file is an
// empty one.
#include "platform/system/registry_file.h"

#include <winerror.h>

#include <filesystem>
#include <fstream>

#include "fuzz/input.h"

namespace {

using namespace quorvane::platform;
using quorvane::fuzzing::Require;

// A home of the process's own, in memory, which goes with it.
class Home {
public:
    Home() {
        char folder[] = "/dev/shm/quorvane-fuzz-XXXXXX";
        Require(mkdtemp(folder) != nullptr, "there is a folder");
        m_folder = folder;
        setenv("XDG_DATA_HOME", folder, 1);
        std::filesystem::create_directory(m_folder / "quorvane");
    }
    ~Home() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    void Write(std::string_view text) const { std::ofstream(file(), std::ios::binary) << text; }
    std::string Read() const {
        std::ifstream stream(file(), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

private:
    std::filesystem::path file() const { return m_folder / "quorvane/registry"; }
    std::filesystem::path m_folder;
};

std::string ReadAndStoreAgain() {
    std::string read;
    const LSTATUS status = ChangeRegistry([&](RegistryTree& tree) {
        read = tree.Serialize();
        return ERROR_SUCCESS;
    });
    Require(status == ERROR_SUCCESS, "the file can be read and written");
    return read;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Home home;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    RegistryTree tree;
    const bool whole = tree.Parse(text);
    const std::string stored = tree.Serialize();
    Require(whole || stored == RegistryTree().Serialize(), "a damaged file is an empty one");
    RegistryTree again;
    Require(again.Parse(stored), "what is stored can be read");
    Require(again.Serialize() == stored, "and gives the same");
    // A cut anywhere is noticed, so nobody goes on with half of the keys.
    if (size > 0) {
        const std::size_t cut = (data[0] * std::size_t{257} + data[size - 1]) % stored.size();
        Require(!again.Parse(std::string_view(stored).substr(0, cut)), "a cut is noticed");
    }
    home.Write(text);
    Require(ReadAndStoreAgain() == stored, "the file reads as its text does");
    Require(home.Read() == stored, "and is stored as it was read");
    return 0;
}
