#include "cli/remarks.h"

#include <gtest/gtest.h>

#include "script/catalogue.h"

namespace lumo::cli {
namespace {

TEST(NearestCommand, FindsWhatWasMeant) {
    const struct {
        const char *written, *meant;
    } cases[] = {
        {"blur", "Blur"},  // and not the four others that begin so
        {"Blur ", "Blur"},
        {"scale change image size", "Scale: change image size"},
        {"Scale", "Scale: change image size"},
        {"Loop End", "Loop End (by number)"},
        {"Grid overlay", "Grid overly"},
        {"Flip - horizontal", "Flip - horizonal"},
        {"IF END", "IF_END"},
        {"Mediam filter", "Median filter"},
        {"Vertical perspective", "Vertical perspective:"},
    };
    for (const auto& [written, meant] : cases) EXPECT_EQ(NearestCommand(written), meant) << written;
}

TEST(NearestCommand, IsSilentWhereNothingIsNear) {
    const std::string endless(1000000, 'x');
    for (const std::string_view name :
         {std::string_view(""), std::string_view("Resize"), std::string_view("Fl"),
          std::string_view("Swap"), std::string_view("6,1,0,128,96,3,0,"),
          std::string_view("\xC3\xBC"), std::string_view(endless)})
        EXPECT_EQ(NearestCommand(name), "") << name.substr(0, 20);
}

TEST(NearestCommand, EveryCommandIsNearestToItself) {
    for (const auto& row : script::Catalogue()) EXPECT_EQ(NearestCommand(row.name), row.name);
}

}  // namespace
}  // namespace lumo::cli
