#pragma once

// The settings file as tables of named values, in the order in which they are written. It knows
// nothing of what the values mean. A table is named by the keys that lead to it: {"1.0", "Logs"}.

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/result.h"

namespace lumo::settings {

/// A value of a kind that no setting has (an array, a date), as its TOML text: kept, not read.
struct ForeignValue {
    std::string toml;
    friend bool operator==(const ForeignValue&, const ForeignValue&) = default;
};

/// Texts are bytes as the program knows them; the file's escapes are gone.
using Value = std::variant<std::string, std::int64_t, double, bool, ForeignValue>;
using TablePath = std::vector<std::string>;

class Document {
  public:
    bool HasTable(const TablePath& path) const;
    /// Null if there is no such value.
    const Value* Find(const TablePath& path, std::string_view name) const;
    /// The names of the tables directly below one.
    std::vector<std::string> TablesBelow(const TablePath& path) const;

    void AddTable(const TablePath& path);
    /// A new value comes behind those of its table, a new table behind the others.
    void Set(const TablePath& path, std::string_view name, Value value);
    /// Takes over what stands in the other document and has no place here yet. What would be a
    /// value here and a table there, or the other way round, is left out.
    void Adopt(const Document& other);

    /// The TOML text; parsing it gives the same document.
    std::string Text() const;

  private:
    struct Table {
        std::vector<std::pair<std::string, Value>> values;
        std::map<std::string, std::size_t, std::less<>> index;  // of a name in `values`
    };
    const Table* FindTable(const TablePath& path) const;
    bool IsValue(const TablePath& path) const;
    bool LeadsToTable(const TablePath& path) const;

    std::map<TablePath, Table> tables_;
    std::vector<TablePath> order_;
};

/// Reads a TOML text. The message of a failure names line and column. Safe with any bytes: what is
/// nested more than 16 deep is left out, what is nested much deeper is a failure.
platform::Result<Document> ParseDocument(std::string_view text);

}  // namespace lumo::settings
