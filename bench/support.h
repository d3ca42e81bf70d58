#pragma once

// What the benchmark programs share: the check of an answer, a temporary folder, and the start, which names
// the peers' versions in the report and refuses a program that was built without optimisation.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>
#include <utility>

namespace bench {

inline void require(bool good, const char* what) {
    if (good) return;
    std::fprintf(stderr, "wrong: %s\n", what);
    std::exit(1);
}

// A folder that is removed with the object.  It has to be on a disk, or the figures of synchronised writes
// mean nothing.
class Folder {
  public:
    Folder() {
        std::string path = std::filesystem::temp_directory_path() / "tarnutil-bench-XXXXXX";
        require(::mkdtemp(path.data()) != nullptr, "the temporary folder");
        path_ = path;
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    [[nodiscard]] std::string file(const char* name) const { return path_ / name; }
    [[nodiscard]] const char* name() const { return path_.c_str(); }

  private:
    std::filesystem::path path_;
};

inline std::string contentOf(const std::string& name) {
    std::ifstream stream(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

inline std::string version(unsigned major, unsigned minor, unsigned patch) {
    return std::to_string(major) + '.' + std::to_string(minor) + '.' + std::to_string(patch);
}

// The main function of a program.
//   peers  names and versions, for the report's context
inline int run(int argc, char** argv, std::initializer_list<std::pair<const char*, std::string>> peers) {
#ifndef __OPTIMIZE__
    require(false, "built without optimisation");
#endif
    for (const auto& [name, version] : peers)
        benchmark::AddCustomContext(std::string("peer ") + name, version);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace bench
