#pragma once

/// @file
/// The names of options as the client's screens show them: root symbol, expiration month, strike and side, as
/// in XYZ JAN 25 1/2 PUT.  tarnOptionSymbol splits such a line of words and compares two options; the three
/// functions below it cut the same kind of text by fixed columns.  Nothing here knows which roots, months or
/// strikes exist.
///
///     tarnOptionSymbol option("XYZ JAN 25 1/2 PUT");
///     option.strikeText;      // "25 1/2"
///     option.sideType;        // 3, a put
///
/// Threads: an object belongs to one thread at a time.  Each function has one result buffer for the whole
/// process.

#include "core/export.h"

/// An option by name.  Every text is the object's own, and NULL until it is found.
class TARN_EXPORT tarnOptionSymbol {
  public:
    char* symbolText;       ///< the whole text last read
    char* rootSymbol;       ///< at most 3 characters
    char* expirationMonth;  ///< 3 characters of any kind
    char* strikeText;       ///< one word, or two: 25 1/2
    char* sideText;         ///< "CALL" or "PUT"
    int sideType;           ///< 0 not read to the end, 1 the text ends behind the strike, 2 call, 3 put

    /// An object without a text.
    tarnOptionSymbol();
    /// Reads a text as setOptionSymbol does.
    explicit tarnOptionSymbol(const char* text);
    tarnOptionSymbol(const tarnOptionSymbol&) = delete;
    tarnOptionSymbol& operator=(const tarnOptionSymbol&) = delete;
    ~tarnOptionSymbol();

    /// Takes another text; one that the object already holds changes nothing.  Blanks separate the words.  A
    /// word behind the strike that starts with a digit is the strike's second word, and the rest must be
    /// exactly CALL, Call, call, PUT, Put or put.
    /// - `text`: may be one of the object's own texts, or a part of one
    /// - Bad input: reading stops at a root above 3 characters, a month of other than 3, and the end of the
    ///   text; what was found up to there stays.  NULL is the empty text.
    void setOptionSymbol(const char* text);

    /// Answers 1 if root, month and strike are set and equal, with case, and both are calls, both puts or
    /// both neither.  NULL equals nothing.
    int isEqual(const tarnOptionSymbol* other) const;

  private:
    TARN_HIDDEN void parseSymbol(const char* text);
    TARN_HIDDEN void clearSymbol();
};

/// Answers the root: up to 3 characters from column 0, whatever they are.
/// - Owner: the library; the next call of the same function overwrites the text.
/// - Bad input: NULL gives the empty text.
/// - Example: "XYZ JAN 100.00 CALL" -> "XYZ".
TARN_EXPORT char* OptSymToJustSym(const char* s);
/// Answers the expiration month: up to 3 characters from column 4, whatever they are.
/// - Owner: the library; the next call of the same function overwrites the text.
/// - Bad input: NULL and a text that doesn't reach the column give the empty text.
/// - Example: "XYZ JAN 100.00 CALL" -> "JAN".
TARN_EXPORT char* OptSymToExpnMth(const char* s);
/// Answers the strike: up to 8 characters from column 8, whatever they are.
/// - Owner: the library; the next call of the same function overwrites the text.
/// - Bad input: NULL and a text that doesn't reach the column give the empty text.
/// - Example: "XYZ JAN 100.00 CALL" -> "100.00 C".
TARN_EXPORT char* OptSymToStrikePrc(const char* s);
