// Gives each file of the folders that are its arguments to a fuzz target, as the fuzzer does with a
// corpus, in a build of any compiler. Looks for no new inputs.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

int main(int argc, char** argv) {
  int files = 0;
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
      // A copy of its own, so that a sanitizer sees a read past its end.
      const std::vector<unsigned char> input(bytes.begin(), bytes.end());
      LLVMFuzzerTestOneInput(input.data(), input.size());
      ++files;
    }
  }
  std::printf("%d inputs hold\n", files);
  return files > 0 ? 0 : 1;
}
