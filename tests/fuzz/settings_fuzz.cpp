// Any bytes as the settings file: they read without harm, what is written reads back, and settings
// that have been read once stay as they are when they are saved and read again.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "settings/settings_fields.h"
#include "settings/toml_text.h"

namespace {

using namespace lumo::settings;

Document Parsed(std::string_view text) {
    auto document = ParseDocument(text);
    if (!document) std::abort();
    return *std::move(document);
}

Settings Read(const Document& document) {
    Settings settings;
    settings.installFolder = "/install";
    settings.userFolderSet = true;
    settings.userFolder = "/data";
    ReadUsers(document, settings);
    ReadWindowsAndLimits(document, settings);
    ReadFields(document, settings);
    return settings;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (UnescapeBytes(EscapeBytes(text)) != text) std::abort();

    const auto document = ParseDocument(text);
    if (!document) return 0;
    const std::string written = document->Text();
    if (Parsed(written).Text() != written) std::abort();

    const Settings settings = Read(*document);
    const SaveStamp stamp{.moment = LastSave(*document, 1)};
    const Document saved = Parsed(WriteFields(settings, *document, stamp).Text());
    if (!IsSaved(saved)) std::abort();
    Settings again = Read(saved);
    if (settings.userMode == 0)
        again.userMode = 0;  // a mode that is not known is saved as one user
    if (!(again == settings)) std::abort();
    return 0;
}
