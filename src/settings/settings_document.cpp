#include "settings/settings_document.h"

#include <algorithm>

#include "settings/toml_text.h"

namespace lumo::settings {
namespace {

bool IsBareKey(std::string_view key) {
    constexpr std::string_view kBare =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-";
    return !key.empty() && key.find_first_not_of(kBare) == std::string_view::npos;
}

std::string KeyText(std::string_view key) {
    return IsBareKey(key) ? std::string(key) : QuoteToml(key);
}

std::string HeaderText(const TablePath& path) {
    std::string header = "[";
    for (const std::string& key : path) {
        if (header.size() > 1) header += '.';
        header += KeyText(key);
    }
    return header + "]\n";
}

struct ValueWriter {
    std::string operator()(const std::string& text) const { return QuoteToml(text); }
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(double number) const { return FloatText(number); }
    std::string operator()(bool flag) const { return flag ? "true" : "false"; }
    std::string operator()(const ForeignValue& value) const { return value.toml; }
};

bool StartsWith(const TablePath& path, const TablePath& start) {
    return path.size() >= start.size() && std::equal(start.begin(), start.end(), path.begin());
}

TablePath Below(TablePath path, std::string_view name) {
    path.emplace_back(name);
    return path;
}

}  // namespace

const Document::Table* Document::FindTable(const TablePath& path) const {
    const auto found = tables_.find(path);
    return found == tables_.end() ? nullptr : &found->second;
}

bool Document::HasTable(const TablePath& path) const {
    return LeadsToTable(path);
}

const Value* Document::Find(const TablePath& path, std::string_view name) const {
    const Table* table = FindTable(path);
    if (table == nullptr) return nullptr;
    const auto found = table->index.find(name);
    return found == table->index.end() ? nullptr : &table->values[found->second].second;
}

std::vector<std::string> Document::TablesBelow(const TablePath& path) const {
    std::vector<std::string> names;
    for (auto at = tables_.upper_bound(path); at != tables_.end() && StartsWith(at->first, path);
         ++at) {
        if (at->first.size() == path.size() + 1) names.push_back(at->first.back());
    }
    return names;
}

void Document::AddTable(const TablePath& path) {
    if (tables_.try_emplace(path).second) order_.push_back(path);
}

void Document::Set(const TablePath& path, std::string_view name, Value value) {
    AddTable(path);
    Table& table = tables_[path];
    const auto [at, isNew] = table.index.try_emplace(std::string(name), table.values.size());
    if (isNew) {
        table.values.emplace_back(name, std::move(value));
    } else {
        table.values[at->second].second = std::move(value);
    }
}

// Tables sort behind the paths that lead to them, and before all that do not begin so.
bool Document::LeadsToTable(const TablePath& path) const {
    const auto at = tables_.lower_bound(path);
    return at != tables_.end() && StartsWith(at->first, path);
}

bool Document::IsValue(const TablePath& path) const {
    if (path.empty()) return false;
    return Find(TablePath(path.begin(), path.end() - 1), path.back()) != nullptr;
}

void Document::Adopt(const Document& other) {
    for (const TablePath& path : other.order_) {
        bool crossesValue = false;
        TablePath part;
        for (const std::string& key : path) {
            part.push_back(key);
            crossesValue = crossesValue || IsValue(part);
        }
        if (crossesValue) continue;
        AddTable(path);
        for (const auto& [name, value] : other.tables_.at(path).values) {
            if (Find(path, name) == nullptr && !LeadsToTable(Below(path, name))) {
                Set(path, name, value);
            }
        }
    }
}

std::string Document::Text() const {
    std::string text;
    const auto write = [&](const TablePath& path) {
        if (!path.empty()) text.append(text.empty() ? "" : "\n").append(HeaderText(path));
        for (const auto& [name, value] : tables_.at(path).values) {
            text.append(KeyText(name)).append(" = ").append(std::visit(ValueWriter{}, value));
            text += '\n';
        }
    };
    // Values without a table are the file's first lines, or the header before would claim them.
    if (tables_.contains({})) write({});
    for (const TablePath& path : order_) {
        // A table that only leads to others needs no header of its own.
        const auto next = tables_.upper_bound(path);
        const bool leadsOn = next != tables_.end() && StartsWith(next->first, path);
        if (!path.empty() && !(leadsOn && tables_.at(path).values.empty())) write(path);
    }
    return text;
}

}  // namespace lumo::settings
