// Scrambling and the codec beside the least that the machine can do, and beside OpenSSL's and GLib's Base64.
// A scrambled buffer is scrambled again and again, so that each call waits for the one before it, and so does
// each copy that it is compared with.  Every answer is checked before it is timed.

#include <glib.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "store/file_tools.h"
#include "store/uu_codec.h"
#include "support.h"

namespace {

using bench::require;

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
    char* roomText() { return reinterpret_cast<char*>(room.data()); }
};

// Each way to encode or decode: from the job's bytes or text into its room, answering the length.
using Codec = int (*)(Job&);

int encodeOurs(Job& job) {
    return UUencode(job.bytes.data(), static_cast<std::uint32_t>(job.size), job.roomText(), '=', 1);
}

int encodeOpenssl(Job& job) {
    return EVP_EncodeBlock(job.room.data(), job.bytes.data(), job.size);
}

int encodeGlib(Job& job) {
    int state = 0;
    int saved = 0;
    char* const text = job.roomText();
    const gsize length =
        g_base64_encode_step(job.bytes.data(), job.bytes.size(), FALSE, text, &state, &saved);
    return static_cast<int>(length + g_base64_encode_close(FALSE, text + length, &state, &saved));
}

int decodeOurs(Job& job) {
    return UUdecode(reinterpret_cast<const char*>(job.text.data()), job.room.data(), 0, 1);
}

// Counts the padding as bytes.
int decodeOpenssl(Job& job) {
    const int length = EVP_DecodeBlock(job.room.data(), job.text.data(), job.textLength());
    return length - (length - job.size) % 3;
}

int decodeGlib(Job& job) {
    int state = 0;
    guint saved = 0;
    return static_cast<int>(g_base64_decode_step(reinterpret_cast<const char*>(job.text.data()),
                                                 job.text.size() - 1, job.room.data(), &state, &saved));
}

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

// Back and forth within one buffer, each time from what the copy before it has written.
void copyWithin(benchmark::State& state) {
    Job job(state);
    Bytes both(2 * job.bytes.size());
    auto from = both.begin();
    auto to = from + job.size;
    time(state, job.bytes.size(), [&] {
        std::memmove(&*to, &*from, job.bytes.size());
        std::swap(from, to);
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

template <Codec codec>
void encode(benchmark::State& state) {
    Job job(state);
    require(
        codec(job) == job.textLength() && std::equal(job.text.begin(), job.text.end() - 1, job.room.begin()),
        "the text");
    time(state, job.bytes.size(), [&] { codec(job); });
}

template <Codec codec>
void decode(benchmark::State& state) {
    Job job(state);
    require(codec(job) == job.size && std::equal(job.bytes.begin(), job.bytes.end(), job.room.begin()),
            "the decoded text");
    time(state, job.bytes.size(), [&] { codec(job); });
}

void sizes(benchmark::internal::Benchmark* job) {
    job->Arg(48)->Arg(1536)->Arg(49'152)->Arg(1 << 20);
}

BENCHMARK(scrambleOurs)->Name("scramble/ours")->Apply(sizes);
BENCHMARK(copyWithin)->Name("scramble/memmove")->Apply(sizes);
BENCHMARK(unscrambleOurs)->Name("unscramble/ours")->Apply(sizes);
BENCHMARK(copyWithin)->Name("unscramble/memmove")->Apply(sizes);
BENCHMARK(encode<encodeOurs>)->Name("uuencode/ours")->Apply(sizes);
BENCHMARK(encode<encodeOpenssl>)->Name("uuencode/openssl")->Apply(sizes);
BENCHMARK(encode<encodeGlib>)->Name("uuencode/glib")->Apply(sizes);
BENCHMARK(copy)->Name("uuencode/memcpy")->Apply(sizes);
BENCHMARK(decode<decodeOurs>)->Name("uudecode/ours")->Apply(sizes);
BENCHMARK(decode<decodeOpenssl>)->Name("uudecode/openssl")->Apply(sizes);
BENCHMARK(decode<decodeGlib>)->Name("uudecode/glib")->Apply(sizes);
BENCHMARK(copy)->Name("uudecode/memcpy")->Apply(sizes);

}  // namespace

int main(int argc, char** argv) {
    const std::string glib = bench::version(glib_major_version, glib_minor_version, glib_micro_version);
    return bench::run(argc, argv, {{"OpenSSL", OpenSSL_version(OPENSSL_VERSION_STRING)}, {"GLib", glib}});
}
