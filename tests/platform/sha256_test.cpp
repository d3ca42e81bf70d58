// The digest behind the names of long keys and values on disk, and the checksums of their files:
// platform/registry/sha256.cpp, checksum.cpp, record.cpp.

#if !defined(_WIN32)

#include "platform/registry/sha256.h"

#include "platform/registry/checksum.h"
#include "platform/registry/record.h"
#include "tests/support.h"

namespace {

TEST(Sha256, GivesThePublishedDigests) {  // FIPS 180-2, appendix B
    EXPECT_EQ(tarn::sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(tarn::sha256(std::string(1000000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(Checksum, GivesThePublishedOnes) {  // by xxhsum 0.8.1, and from the appendix of the FNV draft
    EXPECT_EQ(tarn::registry::xxh32(""), 0x02CC5D05U);
    EXPECT_EQ(tarn::registry::xxh32("Nobody inspects the spammish repetition"), 0xE2293B2FU);
    EXPECT_EQ(tarn::registry::xxh32(std::string(1000000, 'a')), 0xE1155920U);
    EXPECT_EQ(tarn::registry::fnv1a("foobar"), 0xBF9CF968U);
}

TEST(Checksum, LargeValuesOfTheFirstVersionAreRead) {
    using namespace tarn::registry;
    const Record written{3, "Raw", std::string(smallestLargeValue, 'x')};
    std::string bytes = encodeRecord(RecordKind::value, written);
    Record record;
    EXPECT_TRUE(bytes.starts_with("TRV2"));
    EXPECT_TRUE(decodeRecord(RecordKind::value, bytes, record));
    EXPECT_FALSE(decodeRecord(RecordKind::key, bytes, record));
    bytes[3] = '1';
    EXPECT_FALSE(decodeRecord(RecordKind::value, bytes, record)) << "the other checksum";
    const std::uint32_t former = fnv1a(bytes.substr(8));
    for (std::size_t i = 0; i < 4; ++i) bytes[4 + i] = static_cast<char>(former >> 8 * i);
    EXPECT_TRUE(decodeRecord(RecordKind::value, bytes, record));
    EXPECT_EQ(record.data, written.data);
}

}  // namespace

#endif
