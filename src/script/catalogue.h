#pragma once

// The vocabulary of Scripts: all commands in the order of the menu "All commands", and the tree in
// which they are offered. A command is identified by its exact name, everywhere; there is no
// enumeration. All of it is constant data: it can be asked at any time, from any thread.

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lumo::script {

/// One command as the interface and the stored defaults know it.
struct CatalogueRow {
    /// Stable: the NN of "Cmd_NN" in failure texts and of "WSNN" in the placement of dialogs.
    int number = 0;
    std::string_view name;         // as stored and compared, one of names.h
    std::string_view menuText;     // shown only; often differs from the name
    std::string_view defaultsKey;  // of the stored default parameter string; empty: none
    std::string_view factory;      // default parameter string as shipped; empty: none
    /// Fields that the command reads; kNotOffered for the two markers of the image loop. A stored
    /// string states its own count and that is the one obeyed: "Add border", "Text overlay" and
    /// "Tile grid" have one field more in their strings than here.
    int fieldCount = 0;
    bool hasDialog = false;
    std::string_view helpTopic;  // empty: none
};

inline constexpr int kNotOffered = -1;
inline constexpr int kCommandCount = 91;

/// All rows; number n stands at n - 1.
std::span<const CatalogueRow> Catalogue();

/// The row of that exact name, or null.
const CatalogueRow* FindByName(std::string_view name);
/// The row of that defaults key, or null; null for an empty key too.
const CatalogueRow* FindByKey(std::string_view defaultsKey);

/// For names that come from outside, as from the clipboard: exact, case counts.
bool IsKnownCommand(std::string_view name);

/// The answer to a name that was picked for adding: "D" for a category, "N" for "Null" (nothing
/// picked), otherwise the number of fields in decimal, "0" for a command without parameters.
/// Empty for the markers of the image loop and for any other text.
std::string FieldCountText(std::string_view name);

/// The entry of the menu "All commands": "01 Add border...".
std::string NumberedMenuText(const CatalogueRow& row);

/// The default parameter string as shipped of a command; "0" for one that has none.
std::string_view FactoryParams(std::string_view name);

/// Whether a stored default can be given to the parser of its command: its first two characters,
/// the count and a comma or a count of two digits, must be those of the factory string. A default
/// that an older layout of the command wrote fails.
bool IsCurrentLayout(const CatalogueRow& row, std::string_view storedDefault);

/// A node of the command tree. Its commands stand before its children. A command may stand in
/// several nodes.
struct CategoryNode {
    std::string_view name;
    std::vector<std::string_view> commands;
    std::vector<CategoryNode> children;
};

/// The top-level nodes in order.
const std::vector<CategoryNode>& CategoryTree();

/// True for the name of any node of the tree.
bool IsCategoryName(std::string_view name);

}  // namespace lumo::script
