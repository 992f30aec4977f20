#pragma once

// What the sheets of preferences hold: pages of fields, described as those of a command are, and
// how they stand in the settings.

#include <span>
#include <string>
#include <string_view>

#include "script/schema.h"
#include "settings/settings.h"

namespace lumo::ui {

struct PreferencePage {
    std::string_view tab;
    std::string_view heading;  // above the fields; empty: none
    script::CommandSpec spec;  // its fields and their groups
    script::Fields (*read)(const settings::Settings&);
    void (*write)(settings::Settings&, const script::Fields&);
    /// A line below the fields that follows them; null: none.
    std::string (*note)(const script::Fields&) = nullptr;
    /// Titles of the choosers of its fields, in order; empty: their labels.
    std::span<const std::string_view> chooserTitles = {};
};

struct PreferenceSheet {
    std::string_view title;
    std::span<const PreferencePage> pages;
};

/// General settings, the folders and the logs.
extern const PreferenceSheet kGeneralSheet;
/// How files are written: TIF, JPG, GIF, PNG.
extern const PreferenceSheet kWriterSheet;
/// How files are read: WMF, EMF, PNG.
extern const PreferenceSheet kReaderSheet;

}  // namespace lumo::ui
