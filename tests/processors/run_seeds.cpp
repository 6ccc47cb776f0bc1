// Runs a fuzz target once with each file of a folder: seeds FOLDER. A fault ends the process.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int count, char** words) {
  if (count != 2) return 2;
  int seeds = 0;
  for (const auto& entry : std::filesystem::directory_iterator(words[1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++seeds;
  }
  std::cout << words[1] << ": " << seeds << " seeds\n";
  return seeds > 0 ? 0 : 1;
}
