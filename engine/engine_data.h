#pragma once

/// @file
/// The generic record: the one structure in which screens and engines pass data to each other.  It is an
/// ordered set of fields, each a number of the client's data dictionary with a tagged value, and of columns
/// of rows, which are fields too.  It loads from two kinds of file and saves to one.
///
///     tarnEngineData record;
///     MOLTVARIANT price;
///     price.tag = tagDouble;
///     price.payload.doubleValue = 12.5;
///     record.storeData(17, &price);               // field 17
///     record.storeMultiData(336, 0, &price, 0);   // row 0 of column 336
///     record.getNumMulti();                       // 1
///     record.saveData("prices.dat");              // 1
///
/// The record owns its fields and cells.  What it hands out are views (core/variant.h), which are good until
/// the field is changed or removed: nobody calls destroyContent on them.  What it is given it copies; a view
/// of the record's own content may be handed in.
///
/// A field is found by its id and its kind: one id can name a single field and a column, and the two don't
/// disturb each other.  What isn't there answers -1.
///
/// Threads: a record belongs to one thread at a time, and reading changes it too: lookups are remembered, and
/// a column is sorted when a row is first looked up.

#include <cstdint>

#include "core/containers.h"
#include "core/export.h"
#include "core/variant.h"

class tarnGlobalInterfaces;  // core/exception.h

/// Where the rows of a file are put.  Single fields are read only into a record without any field;
/// loadReplace empties the record first.
enum eLoadType : std::int32_t {
    loadAppend = 0,   ///< rows behind the existing ones
    loadInsert = 1,   ///< rows from row 0, which move the existing ones up
    loadReplace = 2,  ///< rows from row 0
};

/// The kind of operation that a record describes; its values are the client's.
enum eOperation : std::int32_t {};

/// Host interface, which the client implements: the source of field descriptions.
class TARN_EXPORT tarnFieldDescriptions {
  public:
    virtual ~tarnFieldDescriptions() = default;
    /// Answers the address of the dictionary's record of a field, or NULL.  The description is a
    /// NUL-terminated text that starts 71 bytes behind that address.
    virtual const void* getFieldRecord(std::int32_t id) = 0;
};

/// A parameter block of the client's engines, which the library doesn't read.
class TARN_EXPORT tarnEngineParam {
  public:
    std::int32_t words[13] = {};
    std::int32_t last = -1;

    tarnEngineParam() = default;
    tarnEngineParam(const tarnEngineParam&) = default;
    tarnEngineParam& operator=(const tarnEngineParam&) = default;
    /// Copies all members; of NULL it makes a fresh block.
    explicit tarnEngineParam(const tarnEngineParam* source);
    virtual ~tarnEngineParam();
};

namespace tarn {
class RecordLoader;
}

/// One record: its fields and columns, loading and saving.
class TARN_EXPORT tarnEngineData : public tarnObject {
  public:
    MOLTVARIANT* root;                              ///< the whole record as one value of tag 22
    tarnFieldList* fields;                          ///< its payload
    std::int32_t lastId = 0;                        ///< the id of the field last found by searching
    std::int32_t lastIndex = -1;                    ///< its index
    std::int32_t numMulti = 0;                      ///< number of rows
    eOperation dataType{};                          ///< the client's
    tarnFieldDescriptions* descriptions = nullptr;  ///< the client's, set by the client, not owned

    /// An empty record.
    tarnEngineData();
    /// A deep copy of all fields, with the number of rows, `dataType` and `descriptions`; of NULL an empty
    /// record.
    explicit tarnEngineData(tarnEngineData* source);
    tarnEngineData(const tarnEngineData&) = delete;
    tarnEngineData& operator=(const tarnEngineData&) = delete;
    ~tarnEngineData() override;

    /// @name Single fields
    /// @{

    /// Answers the id of the field at an index, columns counted too, or -1.
    [[nodiscard]] std::int32_t getId(std::int32_t index) const;

    /// Makes `out` a view of a single field, or empties it; nothing in it is released.
    /// - Answers the field's index, or -1.
    std::int32_t getData(std::int32_t id, MOLTVARIANT* out);

    /// Stores a deep copy: in the field of this id, which keeps its place, or in a new one at the end.  NULL
    /// stores an empty value.
    void storeData(std::int32_t id, const MOLTVARIANT* value);

    /// Removes a single field; later fields move down by one index.  A column of the same id stays.
    void removeData(std::int32_t id);

    /// Answers 1 for a record without fields and columns, else 0.
    [[nodiscard]] int isEmpty() const;

    /// Answers 1 if the field at an index is a column, else 0.
    [[nodiscard]] int isMulti(std::int32_t index) const;

    /// Answers `root`.
    /// - Owner: the record.
    MOLTVARIANT* getRootData();

    /// Takes a value of tag 22 over as the record's whole content.  The number of rows becomes one above the
    /// highest row of all columns and, if there is a row, is stored as a value of tag 2 in field 185.
    /// - Owner: the record takes `value` itself too, which must come from new, or be a part of the record.
    /// - Bad input: a value of another tag, or without a field list, stays the caller's and nothing happens.
    void setRootData(MOLTVARIANT* value);
    /// @}

    /// @name Rows
    /// Columns are sparse: a column has no cell for a row that was never stored in it.
    /// @{

    /// Stores a deep copy in one row of a column, which is made if needed; `numMulti` is raised to row + 1.
    /// - `appendOnly`: not 0 adds the cell without looking whether the row has one.  A row can then be in the
    ///   column twice; the cell stored first is the one that is found.
    void storeMultiData(std::int32_t id, std::int32_t row, const MOLTVARIANT* value, int appendOnly);

    /// Opens a gap in this one column: its cells from `row` on move up by one row, and a deep copy is
    /// put there.
    void insertMultiData(std::int32_t id, std::int32_t row, const MOLTVARIANT* value);

    /// Makes `out` a view of a cell, or empties it.
    /// - Answers the column's field index, or -1.
    std::int32_t getMultiData(std::int32_t id, std::int32_t row, MOLTVARIANT* out);

    /// Answers the position of the first cell, in the column's present order, that equals the value by
    /// isVarEqual, or -1.  A position is a row number only in a sorted column without gaps.
    std::int32_t findMultiData(std::int32_t id, const MOLTVARIANT* value);

    /// Deletes one cell and leaves its gap; no row number changes.
    void removeMultiData(std::int32_t id, std::int32_t row);

    /// Deletes a row in all columns and closes the gap; `numMulti` becomes one less in any case.
    void removeMultiData(std::int32_t row);

    /// Deletes all columns.
    void removeMultiData();

    /// Moves a row in all columns; its new row is exactly `to`, counted without the moved row.  A column that
    /// lacks the row gets a cell without a value there.
    void moveMultiData(std::int32_t from, std::int32_t to);

    /// Adds the rows of another record below this one's, empty cells left out, and takes its field -26 over,
    /// or an empty value.  The record itself may be handed in.
    void appendMultiData(tarnEngineData* other);

    /// Answers `numMulti`.
    [[nodiscard]] std::int32_t getNumMulti() const;
    /// Writes `numMulti`; no cell is made or removed.
    void setNumMulti(std::int32_t rows);
    /// @}

    /// @name Files
    /// docs/file-formats.md has both forms byte by byte.
    /// @{

    /// Loads either form; the first byte of an indexed file is `@`.  A text file takes time in proportion to
    /// its length.  What an indexed file promises and doesn't hold reads as readIndexDataFile says.
    /// - Answers 1, or 0 for a file that can't be read or a text that isn't in order; what was stored up to
    ///   there stays.
    /// - Without memory it throws std::bad_alloc.  What was stored up to there stays too, a single field that
    ///   wasn't reached may be empty, and the record can be used and destroyed.
    int loadData(const char* fileName, eLoadType mode);

    /// Saves the indexed form.  Each row below `numMulti` that a column has no cell for takes 16 bytes.
    /// Values of tags 16, 20 and 22 have no form in a file and are saved as empty ones.  Vectors nested
    /// deeper than 64 are saved whole, but a reader takes them for empty values.
    /// - Answers 1, or 0 if the file can't be written.  A file that would become longer than loadData takes
    ///   can't: the old file stays.
    int saveData(const char* fileName);
    /// @}

    /// @name Operations and descriptions
    /// @{

    /// Writes `dataType`.
    void setDataType(eOperation operation);

    /// Turns each text field, tag 10 or 17, into the type that the host's dictionary gives for its id; the
    /// text of an unknown id becomes tag 10.  Columns, fields of other tags and NULL texts don't change.
    void convertOperation(tarnGlobalInterfaces* host);

    /// Answers the description of a field; NULL without `descriptions` or without a record of the field.
    /// - Owner: the dictionary.
    const char* getDataDescription(std::int32_t id);
    /// @}

  private:
    friend class tarn::RecordLoader;

    inline std::int32_t findField(const tarnFieldList* list, std::int32_t id, int multi);
    TARN_HIDDEN std::int32_t addColumn(std::int32_t id);
    inline nodeList* columnAt(std::int32_t index) const;
    TARN_HIDDEN nodeList* findColumn(std::int32_t id);
    TARN_HIDDEN nodeList* findOrMakeColumn(std::int32_t id);
    TARN_HIDDEN void raiseNumMulti(std::int32_t row);
    TARN_HIDDEN void countRows();
    TARN_HIDDEN void releaseAll();
    TARN_HIDDEN void makeEmpty();
    TARN_HIDDEN int loadTextData(const char* fileName, eLoadType mode);
    TARN_HIDDEN int loadBinaryData(const char* fileName, eLoadType mode);
    TARN_HIDDEN int saveBinaryData(const char* fileName);
};
