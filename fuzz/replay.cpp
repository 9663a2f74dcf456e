// Gives every file of a folder to the fuzzed function once.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    int files = 0;
    if (argc == 2) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
            std::cout << entry.path().filename().string() << std::endl;
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string bytes(std::istreambuf_iterator<char>(file), {});
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                   bytes.size());
            ++files;
        }
    }
    std::cout << files << " inputs\n";
    return files > 0 ? 0 : 1;
}
