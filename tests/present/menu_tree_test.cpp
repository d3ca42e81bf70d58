// Menu trees with a report: present/menu_tree.cpp, store/reported_file.cpp.

#include "present/menu_tree.h"

#include "store/file_tools.h"
#include "tests/plain/menu_text.h"
#include "tests/support.h"

namespace {

using namespace std::string_literals;
using namespace tarntest;
using tarn::LoadError;
using tarn::LoadReport;
using tarn::MenuTree;
using tarn::Next;
using tarn::Scrambled;

struct MenuReports : testing::Test {
    TemporaryFolder folder{inMemory};
    const std::string file = folder.file("menu");

    LoadReport load(const std::string& text, MenuTree& tree) const {
        fill(file, text);
        return tree.load(file);
    }
    std::string treeOfTheParser() const {
        tarnMenuParser parser;
        return tarnplain::menuTextOf(*parser.getMenuDef(file.c_str(), 0));
    }
};

std::string shown(const MenuTree& tree) {
    return tarnplain::menuTextOf(*tree.root().operator->());
}

TEST_F(MenuReports, WhatIsntWholeIsReportedWhereItBegins) {
    const struct {
        std::string text;
        LoadError error;
        std::uint64_t offset;
        std::int32_t item;
        std::int64_t values, skipped;
        std::uint64_t skippedAt;
    } rows[] = {
        {"P,a,1,M,b,1,2,c,M,S,P,d,2,E,E\n", LoadError::none, 30, -1, 3, 0, 0},
        {"x,y,P,a,1,what,E,z", LoadError::none, 18, -1, 0, 4, 0},
        {"P,a,1,E\0more"s, LoadError::none, 12, -1, 0, 1, 7},
        {"P,a,1,M,b,1,2", LoadError::truncated, 6, 3, 0, 0, 0},
        {"P,a,1,P,b", LoadError::truncated, 6, 3, 0, 0, 0},
        {"P,a,1,P,b,2,P,c,3,E", LoadError::truncated, 6, 3, 2, 0, 0},
        {"P,a,1,x,M,S", LoadError::truncated, 0, 0, 1, 1, 6},
        {"x,y", LoadError::wrongForm, 3, -1, 0, 2, 0},
    };
    for (const auto& each : rows) {
        MenuTree tree;
        const LoadReport report = load(each.text, tree);
        EXPECT_EQ(report.error, each.error) << each.text;
        EXPECT_EQ(report.offset, each.offset) << each.text;
        EXPECT_EQ(report.item, each.item) << each.text;
        EXPECT_EQ(report.values, each.values) << each.text;
        EXPECT_EQ(report.skipped, each.skipped) << each.text;
        EXPECT_EQ(report.skippedAt, each.skippedAt) << each.text;
        EXPECT_EQ(shown(tree), treeOfTheParser());
    }
}

std::int64_t nodesOf(const tarnMenuDef& node) {
    std::int64_t count = 1;
    for (const tarnMenuDef* child : tarn::MenuNode(&node)) count += nodesOf(*child);
    return count;
}

// The tree is the parser's for each cut and each changed byte; a text that is reported as whole has all its ENDs.
TEST_F(MenuReports, ADamagedTextHasAnotherTreeOrAMilderReport) {
    const std::string good =
        "x, POPUP,Orders,7,\n\tMENUITEM,Open,2,100,Open an order,\n\tMENUITEM,SEPARATOR,POPUP,More,"
        "1,\n\tMENUITEM,Last,3,101,y,END,END\n";
    const auto check = [&](const std::string& text) {
        MenuTree tree;
        const LoadReport report = load(text, tree);
        EXPECT_EQ(shown(tree), treeOfTheParser()) << text;
        EXPECT_EQ(report.values, nodesOf(*tree.root().operator->()) - 1) << text;
        if (text.find('\0') == std::string::npos) {  // an END behind a whole text is one too many
            MenuTree more;
            const bool isOneTooMany = load(text + ",END", more).skipped > report.skipped;
            EXPECT_EQ(report.error != LoadError::truncated, isOneTooMany) << text;
        }
        return static_cast<bool>(report);
    };
    const std::size_t lastEnd = good.find(",END,END") + 5;
    for (std::size_t size = 0; size <= good.size(); ++size)
        EXPECT_EQ(check(good.substr(0, size)), size > lastEnd) << size;
    for (std::size_t i = 0; i < 8 * good.size(); ++i) {
        std::string text = good;
        text[i / 8] = static_cast<char>(text[i / 8] ^ 1 << i % 8);
        check(text);
    }
}

TEST_F(MenuReports, AnyOtherFailureLeavesTheTreeAsItWas) {
    MenuTree tree;
    std::string text = "POPUP,kept,1,MENUITEM,SEPARATOR,END             ";
    scramble(text.data(), static_cast<std::int32_t>(text.size()));
    fill(file, text);
    ASSERT_TRUE(tree.load(file, Scrambled::yes));
    EXPECT_EQ(tree.root().label(), "kept");
    EXPECT_EQ(GetMenuItemCount(tree.createMenu()), 1);

    fill(file, "POPUP,other,1," + std::string(200'000, ' ') + ",END");
    for (int nth = 1; nth <= 4; ++nth) {
        std::uint64_t done = 0;
        int calls = 0;
        const auto report = tree.load(file, Scrambled::no, [&](const tarn::LoadProgress& state) {
            EXPECT_GT(state.done, done);
            EXPECT_LE(state.done - done, 65536U);
            done = state.done;
            if (++calls != nth) return Next::goOn;
            if (nth % 2 == 0) throw nth;
            return Next::cancel;
        });
        EXPECT_EQ(report.error, LoadError::cancelled) << nth;
        EXPECT_EQ(report.offset, done);
    }
    EXPECT_EQ(tree.load("menu\0x"s).error, LoadError::badName);
    const LoadReport missing = tree.load(folder.file("none"));
    EXPECT_EQ(missing.error, LoadError::cantOpen);
    EXPECT_EQ(missing.system, DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(tree.root().label(), "kept");
    EXPECT_EQ(tree.load(file).values, 0);
    EXPECT_EQ(tree.root().label(), "other");
}

}  // namespace
