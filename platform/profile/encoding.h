#pragma once

// The layer's own reading of an ini file's bytes as text and back; programs use the profile operations of
// platform/win32.h.
//
// Most files are bytes that mean what the program takes them for.  A UTF-8 mark in front is passed over.  A
// UTF-16 file, little-endian with its mark, is worked on as bytes too, so that there is one reader: each of
// its 16-bit units stands as one to three bytes (the way of UTF-8, surrogates one by one), which loses
// nothing on the way back.  Its names and values meet the program in the code page 1252.
//
// Threads: all functions only read their arguments.

#include <string>
#include <string_view>

namespace tarn::profile {

enum class Encoding { bytes, utf8, utf16 };

struct Document {
    Encoding encoding = Encoding::bytes;
    std::string text;  // without the mark
};

// A last odd byte of a UTF-16 file is dropped.
Document decode(std::string bytes);
std::string encode(const Document& document);

// A program's name or value as it stands in a document's text, and back.  What the code page lacks becomes
// `?`.
std::string toDocument(std::string_view text, Encoding encoding);
std::string fromDocument(std::string_view text, Encoding encoding);

}  // namespace tarn::profile
