#pragma once

#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "settings/settings_document.h"
#include "settings/settings_store.h"
#include "support/temp_folder.h"

namespace lumo::settings {

/// A user with an empty home, and an installation of a few files.
struct StoreFixture : testing::Test {
    test::TempFolder root;
    std::string home = root / "home";
    std::string install = root / "install";
    test::ScopedVariable homeVariable{"HOME", home};
    test::ScopedVariable configVariable{"XDG_CONFIG_HOME", root / "config"};
    test::ScopedVariable installVariable{"LUMOSCRIPT_INSTALL_FOLDER", install};

    std::string file = root / "config/lumoscript/settings.toml";
    std::string data = home + "/Documents/Lumoscript";
    static constexpr std::time_t kNow = 1'700'000'000;

    StoreFixture() {
        test::PutFile(install + "/Scripts/thumb.whs", "script");
        test::PutFile(install + "/Scripts/odd\n\xFF.whs", "odd");
        test::PutFile(install + "/Subroutines/sub.sbr", "sub");
        test::PutFile(install + "/CustomFilters/soft.acf", "filter");
        test::PutFile(install + "/Lists/all.lst", "list");
        test::PutFile(install + "/Scripts/below/deep.whs", "deep");
    }

    Settings Opened(StoreAccess access = StoreAccess::ReadAndWrite, std::time_t now = kNow) {
        Settings settings;
        messages = OpenSettings(settings, access, now);
        return settings;
    }

    /// What is stored under a name, in words: the text, or the number.
    std::string Stored(const TablePath& table, std::string_view name) const {
        const auto document = ParseDocument(test::FileText(file));
        const Value* value = document ? document->Find(table, name) : nullptr;
        if (value == nullptr) return "<none>";
        if (const auto* text = std::get_if<std::string>(value)) return *text;
        if (const auto* number = std::get_if<std::int64_t>(value)) {
            return "integer " + std::to_string(*number);
        }
        if (const auto* real = std::get_if<double>(value)) return "real " + std::to_string(*real);
        return "<other>";
    }

    /// Replaces a text of the settings file, which must be there.
    void Edit(std::string_view from, std::string_view to) const {
        std::string text = test::FileText(file);
        const std::size_t at = text.find(from);
        ASSERT_NE(at, std::string::npos) << from << " in\n" << text;
        test::PutFile(file, text.replace(at, from.size(), to));
    }

    Messages messages;
};

}  // namespace lumo::settings
