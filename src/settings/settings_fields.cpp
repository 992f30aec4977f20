#include "settings/settings_fields.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

#include "platform/environment.h"
#include "platform/paths.h"
#include "settings/command_defaults.h"
#include "settings/toml_text.h"
#include "settings/visit_fields.h"

namespace lumo::settings {
namespace {

const TablePath kUsers{"Multiuser"};
const TablePath kMain{"1.0"};
const TablePath kCommands{"Cmds"};
const TablePath kWindows{"WinState"};

/// A flag that is written under one name and read under another.
struct TwoNames {
    std::string_view written, read;
};

// ---- Values as they are read ----

// Numbers and flags typed by hand without quotes are understood as well.
std::optional<std::string> TextOf(const Value* value) {
    if (value == nullptr) return std::nullopt;
    std::string text;
    if (const auto* own = std::get_if<std::string>(value)) {
        text = own->substr(0, own->find('\0'));
    } else if (const auto* number = std::get_if<std::int64_t>(value)) {
        text = std::to_string(*number);
    } else if (const auto* real = std::get_if<double>(value)) {
        text = FloatText(*real);
    } else if (const auto* flag = std::get_if<bool>(value)) {
        text = *flag ? "Yes" : "No";
    } else {
        return std::nullopt;
    }
    if (text.size() > kMaxTextBytes) text.resize(kMaxTextBytes);
    return text;
}

template <class Number>
std::optional<Number> NumberIn(const std::string& text) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, number);
    if (failure != std::errc() || stop != end) return std::nullopt;
    return number;
}

std::optional<std::int64_t> IntegerOf(const Value* value) {
    if (value == nullptr) return std::nullopt;
    if (const auto* number = std::get_if<std::int64_t>(value)) return *number;
    const auto* text = std::get_if<std::string>(value);
    return text == nullptr ? std::nullopt : NumberIn<std::int64_t>(*text);
}

std::optional<double> RealOf(const Value* value) {
    if (value == nullptr) return std::nullopt;
    if (const auto* real = std::get_if<double>(value)) return *real;
    if (const auto* number = std::get_if<std::int64_t>(value)) return static_cast<double>(*number);
    const auto* text = std::get_if<std::string>(value);
    return text == nullptr ? std::nullopt : NumberIn<double>(*text);
}

class Reader {
  public:
    Reader(const Document& document, const Settings& settings)
        : document_(document), settings_(settings) {}

    void Table(const TablePath& path) { table_ = path; }
    void Text(std::string_view name, std::string& value) const {
        if (auto text = TextOf(Find(name))) value = std::move(*text);
    }
    void Path(std::string_view name, std::string& value, const std::string& absent) const {
        const auto stated = TextOf(Find(name));
        value = stated ? NativePath(settings_, *stated) : absent;
    }
    void Folder(std::string_view name, std::string& value, const std::string& absent) const {
        Path(name, value, absent);
        if (value.empty()) value = absent;
    }
    void Flag(std::string_view name, bool& value) const {
        const auto text = TextOf(Find(name));
        if (text == (value ? "No" : "Yes")) value = !value;
    }
    void FlagUnderTwoNames(const TwoNames& names, bool& value) const { Flag(names.read, value); }
    void Palette(std::string_view name, int& value) const {
        if (const auto text = TextOf(Find(name))) value = *text == "1" ? 1 : *text == "2" ? 2 : 0;
    }
    template <class Int>
    void Integer(std::string_view name, Int& value) const {
        using Range = std::numeric_limits<Int>;
        const auto number = IntegerOf(Find(name));
        if (number && *number >= Range::min() && *number <= Range::max()) {
            value = static_cast<Int>(*number);
        }
    }
    void Real(std::string_view name, double& value) const {
        if (const auto number = RealOf(Find(name))) value = *number;
    }
    void Limit(std::string_view name, std::int64_t& value) const {
        // Whoever uses a limit multiplies it to bytes or pixels, or takes it for a side.
        constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
        const auto number = IntegerOf(Find(name));
        value = number ? std::clamp<std::int64_t>(*number, 0, kMost) : 0;
    }
    void StartMarks() const {}
    void MomentOfSave() const {}

  private:
    const Value* Find(std::string_view name) const { return document_.Find(table_, name); }

    const Document& document_;
    const Settings& settings_;
    TablePath table_;
};

// ---- Values as they are written ----

class Writer {
  public:
    Writer(const Settings& settings, const Document& before, const SaveStamp& stamp)
        : settings_(settings), before_(before), stamp_(stamp) {}

    void Table(const TablePath& path) {
        table_ = path;
        document.AddTable(path);
    }
    void Text(std::string_view name, const std::string& value) {
        document.Set(table_, name, value);
    }
    void Path(std::string_view name, const std::string& value, const std::string&) {
        const Value* old = before_.Find(table_, name);
        const auto stated = TextOf(old);
        const bool same = stated && !value.empty() && NativePath(settings_, *stated) == value;
        document.Set(table_, name, same ? *old : Value(value));
    }
    void Folder(std::string_view name, const std::string& value, const std::string& absent) {
        Path(name, value, absent);
    }
    void Flag(std::string_view name, bool value) { Text(name, value ? "Yes" : "No"); }
    void FlagUnderTwoNames(const TwoNames& names, bool value) { Flag(names.written, value); }
    void Palette(std::string_view name, int value) { Text(name, std::to_string(value)); }
    void Integer(std::string_view name, std::int64_t value) { document.Set(table_, name, value); }
    void Real(std::string_view name, double value) { document.Set(table_, name, value); }
    void Limit(std::string_view name, std::int64_t value) { Integer(name, value); }
    void StartMarks() {
        if (stamp_.firstBoot) Text("MainPath", settings_.installFolder);
        Text("bFirstBoot", "No");
    }
    void MomentOfSave() { Integer("DATE", stamp_.moment); }

    Document document;

  private:
    const Settings& settings_;
    const Document& before_;
    SaveStamp stamp_;
    TablePath table_;
};

template <class Visitor, class S>
void VisitPlacement(Visitor& v, S& window) {
    v.Flag("SavedState", window.saved);
    v.Integer("Flags", window.flags);
    v.Integer("ShowCmd", window.showCommand);
    v.Integer("Left", window.left);
    v.Integer("Top", window.top);
    v.Integer("Right", window.right);
    v.Integer("Bottom", window.bottom);
}

void WritePlacements(Writer& writer, const Settings& settings) {
    for (const auto& [name, window] : settings.windows) {
        writer.Table({kWindows.front(), name});
        VisitPlacement(writer, window);
    }
}

void WriteCommands(Writer& writer, const Settings& settings) {
    writer.Table(kCommands);
    for (const std::string_view key : DefaultsKeys()) {
        const auto found = settings.commandDefaults.find(key);
        if (found != settings.commandDefaults.end()) writer.Text(key, found->second);
    }
}

}  // namespace

std::string DataFolder(const Settings& settings) {
    if (settings.userFolderSet && !settings.userFolder.empty()) return settings.userFolder;
    return platform::AddBackSlash(platform::DocumentsFolder()) + "Lumoscript";
}

std::string NativePath(const Settings& settings, std::string_view stated) {
    const bool isNative = stated.find('/') != std::string_view::npos && !stated.starts_with('<');
    if (isNative) return std::string(stated);
    return platform::ParsePath(stated, settings.installFolder, settings.folders.temp);
}

void ReadUsers(const Document& document, Settings& settings) {
    const auto several = TextOf(document.Find(kUsers, "Multiuser"));
    if (several) settings.userMode = *several == "Yes" ? 2 : 1;
    const auto isSet = TextOf(document.Find(kUsers, "UserLSset"));
    if (isSet) settings.userFolderSet = *isSet == "Yes";
    if (!settings.userFolderSet) return;
    if (const auto folder = TextOf(document.Find(kUsers, "UserLSpath"))) {
        settings.userFolder = NativePath(settings, *folder);
    }
    while (settings.userFolder.size() > 1 && settings.userFolder.back() == '/') {
        settings.userFolder.pop_back();
    }
}

void ReadWindowsAndLimits(const Document& document, Settings& settings) {
    Reader reader(document, settings);
    for (const std::string& name : document.TablesBelow(kWindows)) {
        reader.Table({kWindows.front(), name});
        VisitPlacement(reader, settings.windows[name]);
    }
    VisitLimits(reader, settings);
}

void ReadFields(const Document& document, Settings& settings) {
    Settings fresh;
    fresh.installFolder = settings.installFolder;
    fresh.userMode = settings.userMode;
    fresh.userFolderSet = settings.userFolderSet;
    fresh.userFolder = settings.userFolder;
    fresh.windows = std::move(settings.windows);
    fresh.memoryBudgetMegabytes = settings.memoryBudgetMegabytes;
    fresh.maxPictureMegapixels = settings.maxPictureMegapixels;
    fresh.maxPictureSide = settings.maxPictureSide;
    settings = std::move(fresh);

    const std::string data = DataFolder(settings);
    settings.folders.temp = data + "/Temp";  // for paths with the token that stand before its own
    Reader reader(document, settings);
    VisitMain(reader, settings, data);
    VisitLogs(reader, settings.logs);
    VisitWindow(reader, settings);
    VisitRecent(reader, settings);
    for (const std::string_view key : DefaultsKeys()) {
        const auto stored = TextOf(document.Find(kCommands, key));
        settings.commandDefaults[std::string(key)] =
            stored ? CheckedDefault(key, *stored) : FactoryDefault(key);
    }
}

void ReadRecentLists(const Document& document, Settings& settings) {
    Reader reader(document, settings);
    VisitRecentLists(reader, settings);
}

Document WriteFields(const Settings& settings, const Document& before, const SaveStamp& stamp) {
    Writer writer(settings, before, stamp);
    writer.Table(kUsers);
    writer.Flag("Multiuser", settings.userMode >= 2);
    VisitMain(writer, settings, "");
    VisitLogs(writer, settings.logs);
    VisitWindow(writer, settings);
    VisitRecent(writer, settings);
    WriteCommands(writer, settings);
    WritePlacements(writer, settings);
    VisitLimits(writer, settings);
    writer.document.Adopt(before);
    return std::move(writer.document);
}

Document WriteRecentLists(const Settings& settings, const Document& before) {
    Writer writer(settings, before, {});
    VisitRecentLists(writer, settings);
    writer.document.Adopt(before);
    return std::move(writer.document);
}

Document WriteWindows(const Settings& settings, const Document& before) {
    Writer writer(settings, before, {});
    WritePlacements(writer, settings);
    writer.document.Adopt(before);
    return std::move(writer.document);
}

bool IsSaved(const Document& document) {
    return document.HasTable(kMain) && TextOf(document.Find(kMain, "bFirstBoot")) == "No";
}

std::time_t LastSave(const Document& document, std::time_t now) {
    return IntegerOf(document.Find(kMain, "DATE")).value_or(now);
}

}  // namespace lumo::settings
