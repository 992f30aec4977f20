#include "script/script.h"

#include <algorithm>
#include <cassert>

namespace lumo::script {

const std::string& Script::ParamsAt(int i) const {
    static const std::string kEmpty;
    assert(i >= 0);
    const auto index = static_cast<std::size_t>(i);
    return index < params.size() ? params[index] : kEmpty;
}

void Script::Add(std::string_view name, std::string_view parameterString) {
    Insert(Count(), name, parameterString);
}

void Script::Insert(int at, std::string_view name, std::string_view parameterString) {
    assert(at >= 0 && at <= Count());
    // A shorter parameter list is filled up first, so that each command keeps its own parameters.
    params.resize(names.size());
    names.emplace(names.begin() + at, name);
    params.emplace(params.begin() + at, parameterString);
}

void Script::Remove(int at) {
    assert(at >= 0 && at < Count());
    names.erase(names.begin() + at);
    if (static_cast<std::size_t>(at) < params.size()) params.erase(params.begin() + at);
}

void Script::Clear() {
    names.clear();
    params.clear();
}

int Script::Find(std::string_view name) const {
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

}  // namespace lumo::script
