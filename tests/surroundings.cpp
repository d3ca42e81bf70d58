// The locale and the zone that all tests of a program run in, where the caller names some: TARN_TEST_LOCALE,
// and TZ as a place.  Tests that would run in others than named fail.

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

struct Surroundings : testing::Environment {
    void SetUp() override {
        if (const char* const locale = std::getenv("TARN_TEST_LOCALE"); locale != nullptr) {
            ASSERT_NE(std::setlocale(LC_ALL, locale), nullptr) << locale << " isn't there";
            ASSERT_STREQ(std::localeconv()->decimal_point, ",");
        }
        if (const char* const zone = std::getenv("TZ");
            zone != nullptr && std::strchr(zone, '/') != nullptr) {
            std::tm secondDay{};
            secondDay.tm_mday = 2;
            secondDay.tm_year = 70;
            ASSERT_NE(std::mktime(&secondDay), 86400) << zone << " isn't there";
        }
    }
};

[[maybe_unused]] const testing::Environment* const surroundings =
    testing::AddGlobalTestEnvironment(new Surroundings);

}  // namespace
