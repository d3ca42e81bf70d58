#pragma once

/// @file
/// A menu file as an object: the tree of present/menu.h with its parser in one owner, and a report of what
/// isn't whole.
///
///     tarn::MenuTree menu;
///     const tarn::LoadReport loaded = menu.load("orders.mnu");
///     if (!loaded) return fail(loaded.message("orders.mnu"));
///     for (const tarnMenuDef* entry : menu.root()) add(entry->label, entry->id);
///
/// Threads: no shared state; a tree belongs to one thread at a time.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "core/export.h"
#include "present/menu.h"
#include "store/load_report.h"

namespace tarn {

/// A node of a menu tree and its children, or none.  It is valid as long as the tree.
class MenuNode {
  public:
    /// NULL is no node: it has no children and no label.
    MenuNode(const tarnMenuDef* node) noexcept : node_(node) {}
    [[nodiscard]] auto begin() const { return children().begin(); }
    [[nodiscard]] auto end() const { return children().end(); }
    /// Answers the direct children in their order.
    [[nodiscard]] std::span<tarnMenuDef* const> children() const {
        if (node_ == nullptr || node_->children == nullptr) return {};
        return {node_->children, static_cast<std::size_t>(node_->childCount)};
    }
    /// Answers the label, an empty text for a separator.
    [[nodiscard]] std::string_view label() const {
        return node_ == nullptr || node_->label == nullptr ? std::string_view() : node_->label;
    }
    /// Answers the node itself, NULL if there is none.
    const tarnMenuDef* operator->() const { return node_; }

  private:
    const tarnMenuDef* node_;
};

/// Whether a file is scrambled on disk (store/file_tools.h).
enum class Scrambled : std::int32_t { no = 0, yes = 1 };

/// Owns a menu tree and its text.
class MenuTree {
  public:
    /// Reads a menu text.  The tree is the one that tarnMenuParser::getMenuDef makes, also of a damaged text.
    /// - Answers `truncated` for an entry that isn't whole and for a popup without its END, with the offset of
    ///   its keyword, and `wrongForm` for a text without a POPUP.  `values` counts the entries, `skipped` the
    ///   tokens outside the grammar; what is behind a NUL counts as one.  A cut inside blanks can't be seen,
    ///   since a blank token is an END.
    /// - Bad input: a file that can't be read, one of more than 2147483647 bytes, and a cancelled load leave
    ///   the tree as it was.
    TARN_EXPORT LoadReport load(std::string_view fileName, Scrambled scrambled = Scrambled::no,
                                const ProgressFunction& progress = {});

    /// Answers the root, a popup; no node before a first load.
    [[nodiscard]] MenuNode root() const { return parser_ == nullptr ? nullptr : parser_->root; }

    /// Makes the popup menus of the whole tree.  Called again it destroys them and makes new ones.
    /// - Answers the root's menu, NULL before a first load.
    /// - Owner: the tree.
    TARN_EXPORT HMENU createMenu();

  private:
    std::unique_ptr<tarnMenuParser> parser_;
};

}  // namespace tarn
