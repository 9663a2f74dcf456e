// Gives every file of a folder to the fuzzed function once, and then a number of inputs that are
// made of them, the same in each run. Where the function doesn't come back, the input is left in a
// file.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::size_t kMaxSize = 4096;  // of an input that is made

void Try(const std::string& input) {
    // In a block of its own size, so that a byte read behind it is found.
    const std::vector<std::uint8_t> bytes(input.begin(), input.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

std::vector<std::string> Read(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) paths.push_back(entry);
    std::sort(paths.begin(), paths.end());
    std::vector<std::string> inputs;
    for (const auto& path : paths) {
        std::cout << path.filename().string() << std::endl;
        std::ifstream file(path, std::ios::binary);
        inputs.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
        Try(inputs.back());
    }
    return inputs;
}

// One input that is kept, up to four times changed: a byte, a piece taken out or said twice, or a
// piece of another one put in.
class Maker {
public:
    explicit Maker(const std::vector<std::string>& inputs) : m_inputs(inputs) {}

    std::string Make() {
        std::string made = Any();
        for (std::size_t changes = Below(4) + 1; changes > 0; --changes) Change(made);
        made.resize(std::min(made.size(), kMaxSize));
        return made;
    }

private:
    std::size_t Below(std::size_t limit) { return m_random() % limit; }
    const std::string& Any() { return m_inputs[Below(m_inputs.size())]; }

    std::string Piece(const std::string& text) {
        return text.substr(Below(text.size() + 1), Below(32) + 1);
    }

    void Change(std::string& text) {
        const std::size_t at = Below(text.size() + 1);
        switch (Below(4)) {
            case 0:
                if (at < text.size()) text[at] = static_cast<char>(Below(256));
                break;
            case 1:
                text.erase(at, Below(16) + 1);
                break;
            case 2:
                text.insert(at, Piece(text));
                break;
            default:
                text.insert(at, Piece(Any()));
        }
    }

    const std::vector<std::string>& m_inputs;
    std::mt19937 m_random;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::vector<std::string> inputs = Read(argv[1]);
    if (inputs.empty()) return 1;
    const std::string current = std::string(argv[0]) + "-input";
    std::ofstream file(current, std::ios::binary);
    Maker maker(inputs);
    const int count = std::atoi(argv[2]);
    for (int i = 0; i < count; ++i) {
        const std::string input = maker.Make();
        file.seekp(0) << input << std::flush;
        std::filesystem::resize_file(current, input.size());
        Try(input);
    }
    std::filesystem::remove(current);
    std::cout << inputs.size() << " inputs kept, " << count << " made of them\n";
    return 0;
}
