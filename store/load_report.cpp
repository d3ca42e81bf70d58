// Reports of loads and saves, for people.
// Tests: tests/store/load_report_test.cpp.

#include "store/load_report.h"

#include <iterator>

#include "platform/win32.h"

namespace tarn {

namespace {

constexpr const char* loadTexts[] = {
    "nothing is wrong",
    "the load was cancelled",
    "the name is empty or has a NUL in it",
    "the file can't be opened",
    "the file can't be read",
    "it is too large",
    "the file isn't one of this form",
    "the file ends within it",
    "the counts in the header can't be",
    "the index can't be",
    "it isn't what belongs there",
    "it is nested too deeply",
};

constexpr const char* saveTexts[] = {
    "nothing is wrong",
    "the name is empty or has a NUL in it",
    "the new file can't be made",
    "the new file can't be written",
    "the old file can't be replaced",
    "the form of the file can't hold it",
    "it is too large",
    "it is nested too deeply",
};

template <class Error, std::size_t count>
const char* textOf(Error error, const char* const (&texts)[count]) {
    const auto index = static_cast<std::size_t>(error);
    return index < count ? texts[index] : "unknown";
}

// What the system says of a code, without the line end, and nothing for 0.
std::string systemText(std::uint32_t code) {
    if (code == ERROR_SUCCESS) return {};
    char text[256] = {};
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0, text, sizeof text, nullptr);
    std::string said(text);
    said.erase(said.find_last_not_of(" \r\n") + 1);
    return ": " + (said.empty() ? "system error " + std::to_string(code) : said);
}

// A name in front of what follows, without the NUL and what is behind it.
std::string named(std::string_view fileName) {
    const std::string_view shown = fileName.substr(0, fileName.find('\0'));
    return shown.empty() ? std::string() : std::string(shown) + ": ";
}

std::string place(std::int32_t item, std::int32_t id, std::int32_t row) {
    std::string text;
    if (id != 0) {
        text = "field " + std::to_string(id);
    } else if (item >= 0) {
        text = "item " + std::to_string(item);
    }
    if (row >= 0) text += (text.empty() ? "row " : ", row ") + std::to_string(row);
    return text.empty() ? text : text + ": ";
}

std::string counted(std::int64_t count, const char* name) {
    return std::to_string(count) + ' ' + name + (count == 1 ? "" : "s");
}

}  // namespace

const char* toText(LoadError error) {
    return textOf(error, loadTexts);
}

const char* toText(SaveError error) {
    return textOf(error, saveTexts);
}

std::string LoadReport::message(std::string_view fileName) const {
    std::string text = named(fileName);
    if (error == LoadError::none) {
        text += counted(values, "value");
        if (rows > 0) text += " in " + counted(rows, "row");
        if (skipped > 0)
            text +=
                ", " + std::to_string(skipped) + " skipped from byte " + std::to_string(skippedAt) + " on";
        return text;
    }
    const bool isInFile = error >= LoadError::wrongForm || error == LoadError::cancelled;
    if (isInFile) text += "byte " + std::to_string(offset) + " of " + std::to_string(fileSize) + ": ";
    return text + place(item, id, row) + toText(error) + systemText(system);
}

std::string SaveReport::message(std::string_view fileName) const {
    if (error == SaveError::none) return named(fileName) + "saved";
    return named(fileName) + place(-1, id, row) + toText(error) + systemText(system);
}

}  // namespace tarn
