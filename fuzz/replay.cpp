// The main function of a fuzzer without libFuzzer. It executes each file of a folder once.

#include "input.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

int main(int argc, char *argv[])
{
    const std::filesystem::path folder(argc == 2 ? argv[1] : "");
    std::error_code error;
    int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator(folder, error)) {
        std::cerr << entry.path().filename().string() << '\n'
                  << std::flush; // the last name is that of the file that ended the program
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes(std::istreambuf_iterator<char>(file), {});
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
        ++count;
    }
    if (count == 0)
        std::cerr << "there are no seeds in \"" << folder.string() << "\"\n";
    return count == 0 ? 1 : 0;
}
