// The free functions and objects of each family on several threads at once, each thread with data of its own.
// The thread sanitizer watches the build of the preset `tsan`; in every build the answers are compared.
//
// Left out, as their headers tell: OptSymToJustSym, OptSymToExpnMth and OptSymToStrikePrc, which have one
// result for the whole process; setClock, setScreen, addResource and removeResources, which are set before
// threads start; what the slot of getGlobalPointer leads to; and the last error, one word for the process.

#include <atomic>
#include <thread>

#include "tarnutil.h"
#include "tests/support.h"
#include "tests/values.h"

namespace {

using Text = std::unique_ptr<char[]>;

const tarntest::TemporaryFolder* folder = nullptr;

std::string file(const char* name, int n) {
    return folder->file(name + std::to_string(n));
}

template <class... Numbers>
std::string shown(Numbers... numbers) {
    return ((tarntest::shown(static_cast<double>(numbers)) + ' ') + ...);
}

std::string options(int n) {
    double out[6] = {};
    doCalculateBSValue(n % 2, 90 + n, 0.06, 0, 0.3, nullptr, nullptr, 0.5, 0, 10, 0, 0, 0, 12, 105, 120, out,
                       out + 1, out + 2, out + 3, out + 4, out + 5);
    tarnEngineData history;
    for (std::int32_t row = 0; row < 9; ++row)
        history.storeMultiData(336, row,
                               std::data({tarntest::text(std::to_string(20 + n * row % 7).c_str())}), 0);
    history.storeMultiData(737, 0, std::data({tarntest::text("01/02/118")}), 0);
    const tarnOptionSymbol symbol(("XYZ JAN 2" + std::to_string(n) + " 1/2 PUT").c_str());
    return shown(out[0], out[1], out[2], out[3], out[4], out[5]) + symbol.strikeText +
           shown(doCalculateHistoricalVolatility(&history));
}

std::string calendar(int n) {
    const std::string day = std::to_string(10 + n);
    std::string slashed = "11/" + day + "/1999 16:05:00", other = slashed;
    const std::string compact = "11" + day + "1999";
    std::tm moment{};
    gettmstruct(slashed.data(), moment);
    char wide[20], today[11], trading[11];
    convert2DigitYrTo4("11/30/19", wide, 0, n % 2);
    const Text settled(getSettlementDate(slashed.c_str(), n, 1));
    return shown(moment.tm_wday, datecmp(slashed.data(), other.data()), getUpdateTime(&moment),
                 getUpdateTime(slashed.data()), isValidDate(compact.c_str()), isFutureDate(compact.c_str()),
                 isValidTradeDate(compact.c_str()), DateToJulian({static_cast<std::uint16_t>(0x3B60 + n)}),
                 calculateDaystoExpiration(0x353C)) +
           wide + getCurrentDate(today, 1) + getCurrentTradingDate(trading, 0) + settled.get();
}

std::string financialText(int n) {
    const std::string price = "12345" + std::to_string(n) + ".60 ";
    char a[99] = "", b[99] = "", c[99] = "", d[99] = "", e[99] = "", f[99] = "", g[99] = "", h[99] = "";
    std::string text = price, lines = "a  b\nc " + price, change = "-1." + std::to_string(n);
    formatStringToFloat(price.c_str(), a, 1), formatStringToFloatWithRounding(price.c_str(), b, 1);
    asFraction(c, n / 8.0), asUniformFraction(d, "12 3/8", 16), asReducedFraction(e, "5 4/8");
    percentChange(f, 2, "110", change.c_str()), asPercentChange(g, "%.2f", "110", change.c_str());
    formatStringWithPattern(text.data(), "$*,###*.##", h, eNegParens);
    tarnString money;
    formatToMoneyFormat("1234.5", money, 1);
    const Text joined(concatstr(a, b)), converted(convertNewline(lines.c_str()));
    std::string all =
        std::string(a) + b + c + d + e + f + g + h + money.text + joined.get() + converted.get();
    fmtToTaxId("123456789", a), fmtToPhoneNumber("2125551234", b), formatStringToDate("11301999", c);
    formatDateToString("11/30/1999", d), getLocalTimeStr(e, n % 2), flipSign(change.data());
    removeDoubleSpaces(lines.data()), removeNewline(lines.data());
    stripTrailDecimalZeros(text.data(), 0), stripLeadZeros(text.data());
    return all + a + b + c + d + change.c_str() + lines.c_str() + text.c_str() + getInduSymFromID(-1) +
           shown(strToDouble(price.c_str()), fmtToLong("5k"), fmtToDouble("1.5mm"), isAlphaNum(a),
                 validateFloatFormat(price.c_str(), n, 2), signPriceChange(change.data()));
}

std::string values(int n) {
    double number = 0;
    const tarntest::Owned price = tarntest::number(tagDouble, 2.5 * n);
    const Text text(convertToString(&price)), formed(convertToString(&price, "%9.3f")), copy(newstr("copy"));
    tarnString string("12 1/2");
    string.append(&price), string.appendDouble(n), string.trim('0');
    return shown(convertToDouble("1,234 1/2", number), number, varcmp(price, price)) + string.text +
           text.get() + formed.get() + copy.get();
}

std::string bytes(int n) {
    std::string data(300, static_cast<char>('a' + n)), text(500, '\0'), back(400, '\0');
    const auto* const source = reinterpret_cast<const unsigned char*>(data.data());
    UUencode(source, 300, text.data(), '=', n % 2);
    UUdecode(text.data(), reinterpret_cast<unsigned char*>(back.data()), 0, n % 2);
    scramble(data.data(), 300);
    const std::string scrambled = data;
    unscramble(data.data(), 300);
    return text + back + scrambled + data;
}

std::string objects(int n) {
    tarnEngineData record, loaded;
    for (std::int32_t row = 0; row < 50; ++row)
        record.storeMultiData(336, row * 7 % 50, std::data({tarntest::number(tagDouble, row * n)}), 0);
    record.saveData(file("record", n).c_str());
    loaded.loadData(file("record", n).c_str(), loadReplace);
    tarnIndexDataFile set;
    set.addIndexRecord(7, n, 2);
    set.writeIndexDataFile(file("set", n).c_str());
    tarntest::fill(file("menu", n), "POPUP,a,1,MENUITEM,c,3,4,d,END");
    tarnMenuParser menu;
    menu.getMenuDef(file("menu", n).c_str(), 0)->createMenu();
    tarnPrintData print;
    print.storeDateTime(0);
    const HDC screen = GetDC(nullptr);
    const tarnBitmap bitmap(screen, 3, n + 1, 0);
    ReleaseDC(nullptr, screen);
    return tarntest::describe(loaded.root) + shown(set.readIndexDataFile(file("set", n).c_str()),
                                                   GetMenuItemCount(menu.root->menu), bitmap.height,
                                                   tarnMetrics().cxScreen);
}

// All threads write to one ini file and below one key of the registry, each under names of its own.
std::string settings(int n) {
    const std::string name = "n" + std::to_string(n);
    tarnIniFile ini("client");
    ini.setIniFileDirectory(folder->path().c_str());
    tarnRegistry registry(HKEY_CURRENT_USER);
    std::int32_t fromIni = 0;
    std::uint32_t fromRegistry = 0;
    static std::atomic<std::uint32_t> last{0};
    const std::uint32_t value = ++last;
    const int done = registry.openKey("client", 1) + registry.set(name.c_str(), value) +
                     ini.writeIniInt("s", name.c_str(), static_cast<int>(value)) +
                     ini.readIniInt("s", name.c_str(), 0, fromIni) + registry.get(name.c_str(), fromRegistry);
    const bool same = fromRegistry == value && static_cast<std::uint32_t>(fromIni) == value;
    return shown(done + registry.closeKey(), same ? 1 : 0);
}

constexpr struct {
    const char* name;
    std::string (*answer)(int);
} families[] = {{"options", options},  {"calendar", calendar}, {"financial text", financialText},
                {"values", values},    {"bytes", bytes},       {"objects", objects},
                {"settings", settings}};

struct Threads : testing::Test {
    tarntest::TemporaryFolder place{tarntest::inMemory};
    tarntest::HeldClock now{2020, 4, 17, 16};
    Threads() {
        folder = &place;
        tarntest::setEnvironment("XDG_DATA_HOME", place.path().c_str());
    }
    ~Threads() override { tarntest::setEnvironment("XDG_DATA_HOME", nullptr); }
};

TEST_F(Threads, FourAtOnceAnswerAsOneDoes) {
    constexpr int count = 4, rounds = 20;
    std::string expected[std::size(families)][count];
    testing::internal::CaptureStdout();  // settlement dates are printed too
    for (std::size_t family = 0; family < std::size(families); ++family)
        for (int n = 0; n < count; ++n) expected[family][n] = families[family].answer(n);
    std::vector<std::thread> threads;
    for (int n = 0; n < count; ++n)
        threads.emplace_back([&, n] {
            for (int round = 0; round < rounds; ++round)
                for (std::size_t family = 0; family < std::size(families); ++family)
                    EXPECT_EQ(families[family].answer(n), expected[family][n]) << families[family].name;
        });
    for (std::thread& thread : threads) thread.join();
    testing::internal::GetCapturedStdout();
    std::printf("%zu families, %d threads, %d rounds\n", std::size(families), count, rounds);
}

}  // namespace

// The C library guards its time zone by a lock that the sanitizer doesn't see.
extern "C" const char* __tsan_default_suppressions() {
    return "race:tzset_internal\n";
}
