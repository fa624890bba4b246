// fuzz_replay_main.cpp - runs a fuzz target over its checked-in corpus
//
// Linked with one fuzz/<target>.cpp in place of libFuzzer's main, so the
// target's property checks run over every seed in the ordinary test build.
// Arguments are files or folders (every regular file in a folder, in name
// order). A property that does not hold aborts the run; the replay also fails
// when it finds no input at all, so a lost corpus does not pass silently.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::uint8_t> read_file(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void run(const std::filesystem::path& path) {
  const std::vector<std::uint8_t> bytes = read_file(path);
  std::fprintf(stderr, "replay %s (%zu bytes)\n", path.string().c_str(), bytes.size());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t count = 0;
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path arg(argv[i]);
    if (std::filesystem::is_directory(arg)) {
      std::vector<std::filesystem::path> files;
      for (const auto& entry : std::filesystem::directory_iterator(arg)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
      }
      std::sort(files.begin(), files.end());
      for (const auto& file : files) run(file);
      count += files.size();
    } else if (std::filesystem::is_regular_file(arg)) {
      run(arg);
      ++count;
    } else {
      std::fprintf(stderr, "error: no such file or folder: %s\n", argv[i]);
      return 2;
    }
  }
  if (count == 0) {
    std::fprintf(stderr, "error: no corpus files given\n");
    return 2;
  }
  // libFuzzer also starts every run with the empty input.
  static const std::uint8_t none = 0;
  LLVMFuzzerTestOneInput(&none, 0);
  std::printf("%zu input(s) replayed, every property held\n", count);
  return 0;
}
