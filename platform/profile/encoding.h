#pragma once

// The bytes of an ini file as text and back, for the layer itself; programs use the profile operations of
// platform/win32.h.
//
// The bytes of most files are passed to the program as they are.  A UTF-8 mark in front is passed over.  A
// UTF-16 file, little-endian with its mark, is worked on as bytes too, so that there is one reader: each of
// its 16-bit units becomes one to three bytes (as in UTF-8, surrogates one by one), and nothing is lost on
// the way back.  The program gets its names and values in the code page 1252.
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

// A program's name or value as it is in a document's text, and back.  A character that the code page lacks
// becomes `?`.
std::string toDocument(std::string_view text, Encoding encoding);
std::string fromDocument(std::string_view text, Encoding encoding);

}  // namespace tarn::profile
