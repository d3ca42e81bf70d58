// Scrambling and the codec beside memcpy to another buffer, the least that the machine can do, and beside
// OpenSSL's Base64.  A scrambled buffer is scrambled again and again, as it lies, so that each call waits for
// the one before it. Every answer is checked before it is timed.

#include <benchmark/benchmark.h>
#include <openssl/evp.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "store/file_tools.h"
#include "store/uu_codec.h"

namespace {

void require(bool good, const char* what) {
    if (good) return;
    std::fprintf(stderr, "file_tools_bench: %s is wrong\n", what);
    std::exit(1);
}

using Bytes = std::vector<unsigned char>;

Bytes randomBytes(std::size_t size) {
    std::mt19937 random(1);
    Bytes bytes(size);
    for (auto& byte : bytes) byte = static_cast<unsigned char>(random());
    return bytes;
}

// What all jobs work on: bytes, their text, and room for either.
struct Job {
    int size;
    Bytes bytes, text, room;

    explicit Job(const benchmark::State& state)
        : size(static_cast<int>(state.range(0))),
          bytes(randomBytes(static_cast<std::size_t>(size))),
          text(4 * ((bytes.size() + 2) / 3) + 1),
          room(text.size() + 3) {
        EVP_EncodeBlock(text.data(), bytes.data(), size);
    }
    [[nodiscard]] int textLength() const { return static_cast<int>(text.size() - 1); }
    int encode() {
        return UUencode(bytes.data(), static_cast<std::uint32_t>(size), reinterpret_cast<char*>(room.data()),
                        '=', 1);
    }
    int decode() { return UUdecode(reinterpret_cast<const char*>(text.data()), room.data(), 0, 1); }
};

template <typename Call>
void time(benchmark::State& state, std::size_t bytes, Call call) {
    for (auto _ : state) {
        call();
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(bytes));
}

void copy(benchmark::State& state) {
    Job job(state);
    time(state, job.bytes.size(), [&] {
        std::size_t size = job.bytes.size();
        benchmark::DoNotOptimize(size);
        std::memcpy(job.room.data(), job.bytes.data(), size);
    });
}

void scrambleOurs(benchmark::State& state) {
    Job job(state);
    auto* const data = reinterpret_cast<char*>(job.bytes.data());
    const Bytes plain = job.bytes;
    scramble(data, job.size);
    unscramble(data, job.size);
    require(job.bytes == plain, "the way back");
    time(state, job.bytes.size(), [&] { scramble(data, job.size); });
}

void unscrambleOurs(benchmark::State& state) {
    Job job(state);
    time(state, job.bytes.size(), [&] { unscramble(reinterpret_cast<char*>(job.bytes.data()), job.size); });
}

void encodeOurs(benchmark::State& state) {
    Job job(state);
    require(
        job.encode() == job.textLength() && std::equal(job.text.begin(), job.text.end(), job.room.begin()),
        "the text");
    time(state, job.bytes.size(), [&] { job.encode(); });
}

void encodeOpenssl(benchmark::State& state) {
    Job job(state);
    time(state, job.bytes.size(), [&] { EVP_EncodeBlock(job.room.data(), job.bytes.data(), job.size); });
}

void decodeOurs(benchmark::State& state) {
    Job job(state);
    require(job.decode() == job.size && std::equal(job.bytes.begin(), job.bytes.end(), job.room.begin()),
            "the decoded text");
    time(state, job.bytes.size(), [&] { job.decode(); });
}

void decodeOpenssl(benchmark::State& state) {
    Job job(state);
    time(state, job.bytes.size(),
         [&] { EVP_DecodeBlock(job.room.data(), job.text.data(), job.textLength()); });
}

void sizes(benchmark::internal::Benchmark* job) {
    job->Arg(48)->Arg(1 << 10)->Arg(1 << 15)->Arg(1 << 20);
}

BENCHMARK(scrambleOurs)->Name("scramble/ours")->Apply(sizes);
BENCHMARK(copy)->Name("scramble/memcpy")->Apply(sizes);
BENCHMARK(unscrambleOurs)->Name("unscramble/ours")->Apply(sizes);
BENCHMARK(copy)->Name("unscramble/memcpy")->Apply(sizes);
BENCHMARK(encodeOurs)->Name("uuencode/ours")->Apply(sizes);
BENCHMARK(encodeOpenssl)->Name("uuencode/openssl")->Apply(sizes);
BENCHMARK(copy)->Name("uuencode/memcpy")->Apply(sizes);
BENCHMARK(decodeOurs)->Name("uudecode/ours")->Apply(sizes);
BENCHMARK(decodeOpenssl)->Name("uudecode/openssl")->Apply(sizes);
BENCHMARK(copy)->Name("uudecode/memcpy")->Apply(sizes);

}  // namespace

BENCHMARK_MAIN();
