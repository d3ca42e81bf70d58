#pragma once

/// @file
/// Menus from a text definition: tarnMenuParser reads the file and builds a tree of tarnMenuDef nodes, and
/// createMenu turns the tree into real popup menus.  Their entries are all owner-drawn; each carries its node
/// as item data, which the client's drawing code reads.
///
///     // orders.mnu:  POPUP,Orders,7,MENUITEM,Open,2,100,Open an order,MENUITEM,SEPARATOR,END
///     tarnMenuParser parser;
///     tarnMenuDef* root = parser.getMenuDef("orders.mnu", 0);   // root->label "Orders", two children
///     root->createMenu();                                       // root->menu has two entries
///
/// The text is a row of tokens between commas, tabs and line ends; a run of those counts as one, and blanks
/// at a token's ends don't count.  The first POPUP is followed by a body:
///
///     body    label, number, then entries up to END
///     entry   MENUITEM label, number, id, extra
///             or  MENUITEM SEPARATOR  or  POPUP body  or any other token, which is skipped
///
/// A token that is the beginning of a keyword is that keyword: P, ME.  An empty token is any of them: END
/// among entries.  A text may end anywhere: the tree stays as far as it was built, and an entry that isn't
/// whole isn't made.  Popups may be nested to any depth.
///
/// Threads: no shared state; a parser and its tree belong to one thread at a time.

#include <cstdint>

#include "core/export.h"
#include "platform/win32.h"

namespace tarn {

class MenuBuilder;

/// What a node of a menu tree is.
enum MenuKind : std::int32_t { menuPopup = 1, menuItem = 2, menuSeparator = 3 };

}  // namespace tarn

/// A token: the trimmed text inside the parsed one.
struct _link {
    char* text;            ///< inside the parsed text, NUL-terminated
    std::uint32_t length;  ///< in bytes
    _link* next;           ///< NULL at the end
};

/// Cuts a text into tokens.  One parser reads one text.
class TARN_EXPORT tarnParser {
  public:
    char* buffer = nullptr;      ///< the text of the loaded file, new char[]
    _link* tokens = nullptr;     ///< the list, owned
    char* delimiters = nullptr;  ///< comma, line feed, tab, carriage return; new char[]

    /// A parser without a text.
    tarnParser();
    tarnParser(const tarnParser&) = delete;
    tarnParser& operator=(const tarnParser&) = delete;
    ~tarnParser();

    /// Cuts the text up in place, as strtok does, but without its shared position.  The text has to stay as
    /// long as the list.  A second text's tokens are put behind the first one's.
    /// - Answers the head of the list, NULL if there is no token.
    /// - Owner: the parser.
    /// - Bad input: NULL has no token.
    _link* parseTokens(char* text);

  private:
    friend class tarnMenuParser;

    TARN_HIDDEN void setDelimiters(const char* characters);
    // Reads a file into `buffer`, with two bytes of 0 behind it, and unscrambles it if `scrambled` is not 0.
    // Answers the buffer, NULL if the file can't be opened, measured or read.
    TARN_HIDDEN char* loadFile(const char* fileName, int scrambled);
    TARN_HIDDEN void append(_link* token);
    TARN_HIDDEN void releaseTokens();

    _link* last_ = nullptr;
};

/// A node of a menu tree.  Its texts are in the parser's buffer, so that no tree outlives its parser; it owns
/// its children.  Only the parser makes nodes.
class TARN_EXPORT tarnMenuDef {
  public:
    std::int32_t kind = 0;         ///< a tarn::MenuKind
    char* label = nullptr;         ///< NUL-terminated; NULL for a separator
    std::int32_t labelLength = 0;  ///< in bytes
    std::int32_t id = -1;          ///< an item's command
    std::int32_t number = -1;      ///< of an item or a popup; its meaning is the client's
    char* extra = nullptr;         ///< of an item; its meaning is the client's
    std::int32_t childCount = 0;
    tarnMenuDef** children = nullptr;
    std::int32_t childCapacity = 0;  ///< 16 at the first child, and 16 more at a time
    std::int32_t flag = 1;           ///< the client's, like `reserved`
    std::int32_t reserved = 0;
    HMENU menu = nullptr;  ///< a popup's, once createMenu made it; owned
    tarnMenuDef* parent;   ///< NULL at the root

    tarnMenuDef(const tarnMenuDef&) = delete;
    tarnMenuDef& operator=(const tarnMenuDef&) = delete;
    /// Releases the nodes below, then the node's own menu.  A node without a menu that is deleted on its own
    /// takes its entry out of its parent's menu, by its id; the parent has to be alive then.
    ~tarnMenuDef();

    /// Puts a child at the end.  Its `parent` stays as it is.
    /// - Owner: this node owns the child from now on.
    /// - Bad input: NULL changes nothing.
    void addChild(tarnMenuDef* child);

    /// Puts `newChild` into the place of a direct child.
    /// - Owner: the caller owns `oldChild` from now on, this node `newChild`.
    /// - Bad input: an old one that is no child, or NULL for either, changes nothing.
    void replaceChild(tarnMenuDef* oldChild, tarnMenuDef* newChild);

    /// Answers a direct child, NULL for an index out of range.
    [[nodiscard]] tarnMenuDef* getChild(std::int32_t index) const;

    /// Answers the first node of this id in the order of the text, this one included, or NULL.  Popups and
    /// separators have the id -1.
    [[nodiscard]] tarnMenuDef* find(std::int32_t wantedId);

    /// Answers the index of the first direct child whose label the text begins with, without regard to case,
    /// or -1: "FILE MENU" finds "File".  A child without a label is never found.
    [[nodiscard]] std::int32_t find(const char* text) const;

    /// Makes this node's popup menu and those of all popups below, and fills them.  Called again it destroys
    /// them first and makes new ones.
    void createMenu();

  private:
    friend class tarn::MenuBuilder;

    explicit tarnMenuDef(tarnMenuDef* above) : parent(above) {}

    TARN_HIDDEN void renewMenu();
    TARN_HIDDEN void appendEntry(tarnMenuDef& child) const;
    TARN_HIDDEN void releaseBelow();
};

/// Reads one menu file.
class TARN_EXPORT tarnMenuParser : public tarnParser {
  public:
    tarnMenuDef* root = nullptr;  ///< owned
    _link* head = nullptr;        ///< the same list as `tokens`

    tarnMenuParser() = default;
    tarnMenuParser(const tarnMenuParser&) = delete;
    tarnMenuParser& operator=(const tarnMenuParser&) = delete;
    /// Releases the tree with its menus, and then the text.
    ~tarnMenuParser();

    /// Reads a menu text, scrambled on disk (store/file_tools.h) if `scrambled` isn't 0.
    /// - Answers the root, a popup.
    /// - Owner: the parser; a second call releases the first tree.
    /// - Bad input: a file that can't be read, NULL, and a text without a POPUP give a root with
    ///   nothing in it.
    tarnMenuDef* getMenuDef(const char* fileName, int scrambled);
};
