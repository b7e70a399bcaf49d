// Runs a fuzz target over saved inputs with the ordinary compiler: every file named, or
// every file in every folder named, is one call. A crash or a failed property ends the
// run with a non-zero status, which fails the test that replays the corpus.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fs = std::filesystem;

static bool Replay(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        std::fprintf(stderr, "cannot read %s\n", file.c_str());
        return false;
    }
    std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::fprintf(stderr, "replaying %s (%zu bytes)\n", file.c_str(), bytes.size());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    return true;
}

int main(int argc, char** argv)
{
    int count = 0;
    bool ok = true;
    for (int i = 1; i < argc; ++i) {
        const fs::path path(argv[i]);
        std::error_code error;
        if (fs::is_directory(path, error)) {
            std::vector<fs::path> files;
            for (const auto& entry : fs::directory_iterator(path))
                if (entry.is_regular_file())
                    files.push_back(entry.path());
            std::sort(files.begin(), files.end());
            for (const auto& file : files) {
                ok = Replay(file) && ok;
                ++count;
            }
        } else {
            ok = Replay(path) && ok;
            ++count;
        }
    }
    std::fprintf(stderr, "%d inputs replayed\n", count);
    // An empty corpus is a mistake in the tree, not a pass.
    return ok && count > 0 ? 0 : 1;
}
