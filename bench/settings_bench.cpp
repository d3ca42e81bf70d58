// Settings against the least that the system needs for the same: opening, reading and closing the file, and
// a plain write of the whole content with fsync and rename.  Each program writes into a temporary folder of
// its own, which has to lie on a disk for the writing figures to mean anything.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/win32.h"

namespace {

constexpr const char* section = "settings";

class Folder {
  public:
    Folder() {
        path_ = std::filesystem::temp_directory_path() / ("tarnutil-bench-" + std::to_string(::getpid()));
        std::filesystem::create_directories(path_);
        ::setenv("XDG_DATA_HOME", path_.c_str(), 1);
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    [[nodiscard]] std::string file(const char* name) const { return path_ / name; }

  private:
    std::filesystem::path path_;
};

std::string iniText(std::int64_t keys) {
    std::string text = "[settings]\r\n";
    for (std::int64_t i = 0; i < keys; ++i) {
        text += "key" + std::to_string(i) + "=value " + std::to_string(i) + "\r\n";
    }
    return text;
}

// Writes, syncs and renames as the smallest program would.
bool plainWrite(const std::string& file, const std::string& content) {
    const std::string temporary = file + ".new";
    const int descriptor = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    const bool written = ::write(descriptor, content.data(), content.size()) == std::ssize(content);
    const bool synced = ::fsync(descriptor) == 0;
    ::close(descriptor);
    return written && synced && std::rename(temporary.c_str(), file.c_str()) == 0;
}

void readKey(benchmark::State& state) {
    const Folder folder;
    const std::string file = folder.file("x.ini");
    plainWrite(file, iniText(state.range(0)));
    std::vector<std::string> keys;
    std::vector<std::string> values;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        keys.push_back("key" + std::to_string(i));
        values.push_back("value " + std::to_string(i));
    }
    char value[64];
    std::size_t i = 0;
    for (auto _ : state) {
        i = (i + 7919) % keys.size();
        GetPrivateProfileStringA(section, keys[i].c_str(), "", value, sizeof value, file.c_str());
        if (value != values[i]) return state.SkipWithError("wrong value");
    }
}

void openReadClose(benchmark::State& state) {
    const Folder folder;
    const std::string file = folder.file("x.ini");
    const std::string text = iniText(state.range(0));
    plainWrite(file, text);
    std::string buffer(text.size() + 1, '\0');
    for (auto _ : state) {
        const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
        ::close(descriptor);
        if (count != std::ssize(text)) return state.SkipWithError("short read");
        benchmark::DoNotOptimize(buffer.data());
    }
}

void writeKey(benchmark::State& state) {
    const Folder folder;
    const std::string file = folder.file("x.ini");
    plainWrite(file, iniText(state.range(0)));
    std::int64_t i = 0;
    for (auto _ : state) {
        const std::string value = "other " + std::to_string(++i);
        if (WritePrivateProfileStringA(section, "key100", value.c_str(), file.c_str()) == FALSE) {
            return state.SkipWithError("not written");
        }
    }
}

void plainReplace(benchmark::State& state) {
    const Folder folder;
    const std::string file = folder.file("x.ini");
    const std::string text = iniText(state.range(0));
    for (auto _ : state) {
        if (!plainWrite(file, text)) return state.SkipWithError("not written");
    }
}

void writeRegistryValue(benchmark::State& state) {
    const Folder folder;
    const std::string data(static_cast<std::size_t>(state.range(0)), 'x');
    HKEY key = nullptr;
    RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\bench", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                    nullptr);
    for (auto _ : state) {
        if (RegSetValueExA(key, "value", 0, REG_BINARY, reinterpret_cast<const BYTE*>(data.data()),
                           static_cast<DWORD>(data.size())) != 0) {
            return state.SkipWithError("not written");
        }
    }
    RegCloseKey(key);
}

void plainValue(benchmark::State& state) {
    const Folder folder;
    const std::string file = folder.file("value");
    const std::string data(static_cast<std::size_t>(state.range(0)), 'x');
    for (auto _ : state) {
        if (!plainWrite(file, data)) return state.SkipWithError("not written");
    }
}

BENCHMARK(readKey)->Name("ini_read/ours")->Arg(20)->Arg(200)->Arg(20000);
BENCHMARK(openReadClose)->Name("ini_read/open_read_close")->Arg(20)->Arg(200)->Arg(20000);
BENCHMARK(writeKey)->Name("ini_write/ours")->Arg(200)->Iterations(50);
BENCHMARK(plainReplace)->Name("ini_write/plain_write_fsync_rename")->Arg(200)->Iterations(50);
BENCHMARK(writeRegistryValue)->Name("registry_write/ours")->Arg(16)->Arg(65536)->Iterations(50);
BENCHMARK(plainValue)->Name("registry_write/plain_write_fsync_rename")->Arg(16)->Arg(65536)->Iterations(50);

}  // namespace

BENCHMARK_MAIN();
