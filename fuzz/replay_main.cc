// Runs a target's entry point over files and directories of inputs, without
// libFuzzer: the suite replays every seed and every past finding this way.
#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

int Replay(const std::string& path, int& count) {
  struct stat st {};
  if (stat(path.c_str(), &st) != 0) {
    std::fprintf(stderr, "cannot read %s\n", path.c_str());
    return 1;
  }
  if (S_ISDIR(st.st_mode)) {
    std::vector<std::string> names;
    if (DIR* dir = opendir(path.c_str())) {
      while (dirent* entry = readdir(dir)) {
        if (entry->d_name[0] != '.') names.push_back(entry->d_name);
      }
      closedir(dir);
    }
    std::sort(names.begin(), names.end());
    int failed = 0;
    for (const std::string& name : names) failed |= Replay(path + "/" + name, count);
    return failed;
  }
  std::ifstream file(path, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  ++count;
  LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  int count = 0;
  int failed = 0;
  for (int i = 1; i < argc; ++i) failed |= Replay(argv[i], count);
  std::printf("%d inputs replayed\n", count);
  return failed;
}
