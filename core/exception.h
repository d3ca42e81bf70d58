#pragma once

/// @file
/// The client's exception object, two ways to show a failure to the user, and the interfaces that a client
/// implements for the library.  The library itself throws nothing.
///
///     throw tarnException(TARN_EXCEPTION_TYPE{1}, message);
///     ...
///     catch (tarnException& failure) { if (failure.displayMessage(host) == 1) restoreFlow(); }
///
/// Threads: no shared state but the process's error mode, which loadDllFunc changes while it loads.  The
/// boxes block the caller's thread.

#include <cstdint>

#include "core/containers.h"
#include "core/export.h"
#include "core/string.h"
#include "platform/win32.h"

/// The kind of a failure.  1 is the kind that is shown to the user; the other values are the client's.
enum TARN_EXCEPTION_TYPE : std::int32_t {};

/// Host interface, which the client implements: asks the user.
class TARN_EXPORT tarnUserDialog {
  public:
    virtual ~tarnUserDialog() = default;
    /// Shows a text and a question in a box of this style.  Answers 6 for yes.
    virtual std::int32_t askUser(const char* text, const char* question, std::int32_t style) = 0;
};

namespace tarn {

/// The type codes of fields, as a dictionary answers them and convertFromLong (core/variant.h) takes them.
enum FieldType : std::int32_t {
    fieldShort = 1,
    fieldLong = 2,
    fieldSecondLong = 3,
    fieldCharacter = 4,
    fieldText = 5,
    fieldFloat = 6,
    fieldDouble = 7,
    fieldSecondText = 8,  ///< in a dictionary's answer a text like every other code
    fieldThirdText = 9,
};

}  // namespace tarn

/// Host interface, which the client implements: knows the type of each field.
class TARN_EXPORT tarnFieldDictionary {
  public:
    virtual ~tarnFieldDictionary() = default;
    /// Answers the type code of a field (tarn::FieldType) in the low 16 bits, signed.  Any other code means
    /// text; an unknown field answers such a code.
    virtual std::int32_t getFieldType(std::int32_t id) = 0;
};

/// Host interface, which the client implements: leads to the other two.
class TARN_EXPORT tarnGlobalInterfaces {
  public:
    virtual ~tarnGlobalInterfaces() = default;
    /// Answers the client's own dialog, or NULL where it has none.
    virtual tarnUserDialog* userDialog() = 0;
    /// Answers the client's own dictionary, or NULL where it has none.
    virtual tarnFieldDictionary* fieldDictionary() = 0;
};

/// A failure on its way to whoever shows it to the user.
class TARN_EXPORT tarnException : public tarnObject {
  public:
    tarnString message;
    TARN_EXCEPTION_TYPE type;
    std::int32_t code;

    /// Copies the text; `code` is 0.
    tarnException(TARN_EXCEPTION_TYPE kind, const tarnString& text);
    /// Copies the text; `type` is 0.
    tarnException(std::int32_t number, const tarnString& text);
    tarnException(const tarnException&) = default;
    tarnException& operator=(const tarnException&) = default;
    ~tarnException() override;

    /// Shows a failure of kind 1 to the user, through the host's dialog.
    /// - Answers 1 if the user said yes, else 0.  Any other kind answers 0 without asking, and so does a host
    ///   without a dialog.
    int displayMessage(tarnGlobalInterfaces* host);
};

/// Shows the text of the last system error in a box with the caption "GetLastError( 2 ) : title".  A code
/// without a text shows an empty box.
TARN_EXPORT void showGetLastError(const char* title);

/// Loads a module and finds a function in it.
/// - `module`: out, the module; NULL if it can't be loaded
/// - `function`: out, the function; NULL if there is none
/// - `quiet`: 0 shows the box of showGetLastError for a module that can't be loaded, any other value shows
///   nothing.  A function that the module lacks shows nothing in either case.
/// - Answers 1 if the function was found, else 0.
/// - Owner: the caller owns the module, also after an answer of 0: FreeLibrary.
TARN_EXPORT int loadDllFunc(HINSTANCE& module, int(__stdcall** function)(), const char* file,
                            const char* name, int quiet);
