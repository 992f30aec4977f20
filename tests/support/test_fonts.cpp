#include "support/test_fonts.h"

#include <cairo.h>
#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include <pango/pango.h>

#include <cstdlib>
#include <string>
#include <thread>

#include "support/test_files.h"

namespace lumo::test {
namespace {

void SetFonts(FcConfig* config) {
    // It has no patterns to complete and no folders to scan: just the files added to it.
    if (config == nullptr || !FcConfigSetCurrent(config)) std::abort();
}

bool AddTestFonts() {
    FcConfig* const config = FcConfigCreate();
    for (const char* name : {"LumoTestSans.ttf", "LumoTestSans-Bold.ttf",
                             "LumoTestSans-Oblique.ttf", "LumoTestAsian.ttf"}) {
        const std::string path = (DataFolder() / "fonts" / name).string();
        if (!FcConfigAppFontAddFile(config, reinterpret_cast<const FcChar8*>(path.c_str())))
            std::abort();
    }
    SetFonts(config);
    FcConfigDestroy(config);  // the current one stays
    return true;
}

// Before any test: the first text drawn decides which fonts there are.
const bool kAdded = AddTestFonts();

}  // namespace

bool HasTestFonts() {
    return kAdded;
}

void WithoutFonts(const std::function<void()>& body) {
    FcConfig* const before = FcConfigReference(nullptr);
    FcConfig* const none = FcConfigCreate();
    SetFonts(none);
    // Each thread asks once which fonts there are.
    std::thread(body).join();
    SetFonts(before);
    FcConfigDestroy(none);
    FcConfigDestroy(before);
}

bool FontLibrariesOfGoldens() {
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) return false;
    FT_Int major = 0, minor = 0, patch = 0;
    FT_Library_Version(library, &major, &minor, &patch);
    FT_Done_FreeType(library);
    const bool pango = pango_version() / 100 == PANGO_VERSION_ENCODE(1, 50, 0) / 100;
    const bool cairo = cairo_version() / 100 == CAIRO_VERSION_ENCODE(1, 16, 0) / 100;
    return pango && cairo && major == 2 && minor == 12;
}

}  // namespace lumo::test
