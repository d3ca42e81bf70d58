// The digest behind the names of long keys and values on disk: platform/registry/sha256.cpp.

#if !defined(_WIN32)

#include "platform/registry/sha256.h"

#include "tests/support.h"

namespace {

TEST(Sha256, GivesThePublishedDigests) {  // FIPS 180-2, appendix B
    EXPECT_EQ(tarn::sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(tarn::sha256(std::string(1000000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

}  // namespace

#endif
