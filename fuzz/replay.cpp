// Replays the files of a folder without the fuzzing engine: NAME_replay FOLDER

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: " << argv[0] << " FOLDER\n";
        return 2;
    }
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        std::cout << entry.path().filename() << std::endl; // flushed, in case the input crashes it
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        ++count;
    }
    return count > 0 ? 0 : 1;
}
