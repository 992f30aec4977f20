#include <fmt/format.h>
#include <toml++/toml.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <sstream>

#include "settings/settings_document.h"
#include "settings/toml_text.h"

namespace lumo::settings {
namespace {

using platform::Error;
using platform::Result;

// Each dotted key opens tables in tables, and the library tears a deep nest down by recursion: a
// file of dots alone would end in a stack overflow.
constexpr int kMaxDots = 1000;
// Deeper nests are none of ours, and are not taken over.
constexpr std::size_t kMaxDepth = 16;

// Finds the most dots that one header, or one key with its value, has outside of texts and
// comments. It lexes as TOML does up to the file's first fault; the library goes no further.
class DotCounter {
  public:
    explicit DotCounter(std::string_view text) : text_(text) {}

    int Most() {
        while (at_ < text_.size()) {
            const char c = text_[at_];
            if (c == '"' || c == '\'') {
                SkipText(c);
            } else if (c == '#') {
                SkipTo('\n');
            } else {
                Take(c);
                ++at_;
            }
        }
        return most_;
    }

  private:
    bool Ahead(std::string_view what) const { return text_.substr(at_, what.size()) == what; }

    // A statement ends with its line, unless brackets are open.
    void Take(char c) {
        if (c == '.') most_ = std::max(most_, ++dots_);
        if (c == '[' || c == '{') ++open_;
        if (c == ']' || c == '}') open_ = std::max(open_ - 1, 0);
        if (c == '\n' && open_ == 0) dots_ = 0;
    }

    void SkipTo(char what) { at_ = std::min(text_.find(what, at_), text_.size()); }

    void SkipText(char quote) {
        const std::string triple(3, quote);
        const bool manyLines = Ahead(triple);
        const std::string end = manyLines ? triple : std::string(1, quote);
        at_ += end.size();
        while (at_ < text_.size() && !Ahead(end)) {
            if (!manyLines && text_[at_] == '\n') return;  // a fault: the text never closed
            at_ += quote == '"' && text_[at_] == '\\' ? 2 : 1;
        }
        at_ = std::min(at_ + end.size(), text_.size());
        // Up to two quotes of the text itself may stand before the three that close it.
        for (int more = 0; manyLines && more < 2 && at_ < text_.size() && text_[at_] == quote;
             ++more) {
            ++at_;
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
    int open_ = 0;
    int dots_ = 0;
    int most_ = 0;
};

template <class Node>
std::string TomlOf(const Node& node) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << node;
    return stream.str();
}

// An array goes to one line: our lines are "name = value".
std::string ArrayOf(const toml::array& array) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    toml::table holder{{"x", array}};
    holder.is_inline(true);
    stream << holder;
    std::string text = stream.str();  // { x = [...] }
    const std::size_t start = text.find('[');
    const std::size_t end = text.rfind(']');
    return text.substr(start, end - start + 1);
}

std::size_t DepthOf(const toml::node& node) {
    std::size_t deepest = 0;
    const auto look = [&](const toml::node& inner) { deepest = std::max(deepest, DepthOf(inner)); };
    if (const auto* array = node.as_array()) {
        for (const toml::node& inner : *array) look(inner);
    } else if (const auto* table = node.as_table()) {
        for (const auto& [key, inner] : *table) look(inner);
    }
    return deepest + 1;
}

Value ValueOf(const toml::node& node) {
    if (const auto* text = node.as_string()) return UnescapeBytes(text->get());
    if (const auto* number = node.as_integer()) return number->get();
    if (const auto* number = node.as_floating_point()) {
        if (std::isfinite(number->get())) return number->get();
        return ForeignValue{TomlOf(*number)};
    }
    if (const auto* flag = node.as_boolean()) return flag->get();
    if (const auto* array = node.as_array()) return ForeignValue{ArrayOf(*array)};
    if (const auto* date = node.as_date()) return ForeignValue{TomlOf(date->get())};
    if (const auto* time = node.as_time()) return ForeignValue{TomlOf(time->get())};
    return ForeignValue{TomlOf(node.as_date_time()->get())};
}

void TakeTable(const toml::table& table, const TablePath& path, Document& document) {
    document.AddTable(path);
    for (const auto& [key, node] : table) {
        if (!node.is_table() && DepthOf(node) <= kMaxDepth)
            document.Set(path, UnescapeBytes(key.str()), ValueOf(node));
    }
    for (const auto& [key, node] : table) {
        const auto* inner = node.as_table();
        if (inner != nullptr && path.size() < kMaxDepth) {
            TablePath below = path;
            below.push_back(UnescapeBytes(key.str()));
            TakeTable(*inner, below, document);
        }
    }
}

}  // namespace

Result<Document> ParseDocument(std::string_view text) {
    if (DotCounter(text).Most() > kMaxDots) return Error{"too many dots for a settings file"};
    try {
        const toml::table root = toml::parse(text);
        Document document;
        TakeTable(root, {}, document);
        return document;
    } catch (const toml::parse_error& fault) {
        const auto where = fault.source().begin;
        return Error{
            fmt::format("line {}, column {}: {}", where.line, where.column, fault.description())};
    } catch (const std::exception& fault) {
        return Error{fault.what()};
    }
}

}  // namespace lumo::settings
