#pragma once

// The default parameter strings of the commands, by their defaults keys.

#include <span>
#include <string>
#include <string_view>

#include "settings/settings.h"

namespace lumo::settings {

/// All keys in the order of saving.
std::span<const std::string_view> DefaultsKeys();

/// A stored default as it is taken over: replaced by the factory string, whose paths begin with
/// <INSTALL_FOLDER>, where its count is not that of the command's present layout.
std::string CheckedDefault(std::string_view key, std::string_view stored);
std::string FactoryDefault(std::string_view key);

/// The defaults of a first start: the factory strings with the paths of settings.files in them.
void SetFirstBootDefaults(Settings& settings);

}  // namespace lumo::settings
