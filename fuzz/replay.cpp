// Passes each file of the folders in its arguments to a fuzz target, like the fuzzer does with a
// corpus, in a build by any compiler.
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
      // A separate copy, so that a sanitizer notices a read past its end.
      const std::vector<unsigned char> input(bytes.begin(), bytes.end());
      LLVMFuzzerTestOneInput(input.data(), input.size());
      ++files;
    }
  }
  std::printf("%d inputs hold\n", files);
  return files > 0 ? 0 : 1;
}
