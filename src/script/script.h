#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumo::script {

/// A Script: two parallel lists, names and parameter strings. A file with an odd number of lines
/// leaves one name more than there are parameter strings; ParamsAt gives "" for it.
struct Script {
    std::vector<std::string> names;
    std::vector<std::string> params;

    int Count() const { return static_cast<int>(names.size()); }
    const std::string& NameAt(int i) const { return names[static_cast<std::size_t>(i)]; }
    const std::string& ParamsAt(int i) const;
    void Add(std::string_view name, std::string_view parameterString);
    /// Before the command at `at`, from 0 to Count(); at Count() behind all.
    void Insert(int at, std::string_view name, std::string_view parameterString);
    /// `at` from 0 to Count() - 1.
    void Remove(int at);
    void Clear();
    /// Index of the first command of that name, or -1.
    int Find(std::string_view name) const;

    friend bool operator==(const Script&, const Script&) = default;
};

}  // namespace lumo::script
