#pragma once

// The names of options as the client's screens show them: root symbol, expiration month, strike and side, as
// in XYZ JAN 25 1/2 PUT.  tarnOptionSymbol splits such a line of words and compares two options; the three
// functions below it cut the same kind of text by fixed columns.  Nothing here knows which roots, months or
// strikes exist.
//
//   tarnOptionSymbol option("XYZ JAN 25 1/2 PUT");
//   option.strikeText;      // "25 1/2"
//   option.sideType;        // 3, a put
//
// Threads: an object belongs to one thread at a time.  Each function has one result for the whole process.

#include "core/export.h"

// An option by name.  Every text is NULL until it is found, and the object's own.
class TARN_EXPORT tarnOptionSymbol {
  public:
    char* symbolText;       // the whole text last read
    char* rootSymbol;       // at most 3 characters
    char* expirationMonth;  // 3 characters of any kind
    char* strikeText;       // one word, or two: 25 1/2
    char* sideText;         // "CALL" or "PUT"
    int sideType;           // 0 not read to the end, 1 the text ends behind the strike, 2 call, 3 put

    // Each begins without a text; the second then takes one as setOptionSymbol does.
    tarnOptionSymbol();
    explicit tarnOptionSymbol(const char* text);
    tarnOptionSymbol(const tarnOptionSymbol&) = delete;
    tarnOptionSymbol& operator=(const tarnOptionSymbol&) = delete;
    ~tarnOptionSymbol();

    // Takes another text; one that the object already holds changes nothing.  The words are parted by blanks.
    // A word that starts with a digit behind the strike is its second word, and what is left must be just
    // CALL, Call, call, PUT, Put or put.
    //   text  may be one of the object's own texts, or a part of one
    // Bad input: reading stops at a root above 3 characters, a month of other than 3, and the end of the
    // text; what was found up to there stays.  NULL is the empty text.
    void setOptionSymbol(const char* text);

    // Answers 1 if root, month and strike are set and equal, with case, and both are calls, both puts or both
    // neither.  NULL equals nothing.
    int isEqual(const tarnOptionSymbol* other) const;

  private:
    void parseSymbol(const char* text);
    void clearSymbol();
};

// Answer columns of XYZ JAN 100.00 CALL without looking at them: the root from column 0, the month from 4,
// both up to 3 characters, and the strike from 8, up to 8 characters: "XYZ", "JAN", "100.00 C".
// Owner: the library; the next call of the same function overwrites the text.
// Bad input: a text that doesn't reach the column, and NULL, give the empty text.
TARN_EXPORT char* OptSymToJustSym(const char* s);
TARN_EXPORT char* OptSymToExpnMth(const char* s);
TARN_EXPORT char* OptSymToStrikePrc(const char* s);
