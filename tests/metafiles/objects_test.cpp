#include "imaging/codecs/metafile/objects.h"

#include <gtest/gtest.h>

namespace lumo::imaging::codecs::metafile {
namespace {

ColourRef ColourAt(const ObjectTable& table, std::size_t index) {
    const ObjectHandle object = table.Get(index);
    return object ? std::get<Brush>(*object).colour : 0xDEAD;
}

TEST(ObjectTable, NewObjectsTakeTheLowestFreeNumber) {
    ObjectTable table;
    for (const ColourRef colour : {10U, 11U, 12U, 13U}) table.Add(Brush{.colour = colour});
    table.Delete(2);
    table.Delete(1);
    table.Add(Brush{.colour = 20});
    table.Add(Brush{.colour = 21});
    table.Add(Brush{.colour = 22});
    EXPECT_EQ(ColourAt(table, 1), 20U);
    EXPECT_EQ(ColourAt(table, 2), 21U);
    EXPECT_EQ(ColourAt(table, 3), 13U);
    EXPECT_EQ(ColourAt(table, 4), 22U);
}

TEST(ObjectTable, ObjectsThatCouldNotBeReadTakeANumberToo) {
    ObjectTable table;
    table.Add({});
    table.Add(Brush{.colour = 7});
    EXPECT_EQ(ColourAt(table, 1), 7U);
}

TEST(ObjectTable, HandlesOutliveTheirNumber) {
    ObjectTable table;
    table.Add(Brush{.colour = 7});
    const ObjectHandle kept = table.Get(0);
    table.Delete(0);
    EXPECT_EQ(table.Get(0), nullptr);
    EXPECT_EQ(std::get<Brush>(*kept).colour, 7U);
}

TEST(ObjectTable, FarNumbersAreIgnored) {
    ObjectTable table;
    table.Set(0xFFFFFFF0, Brush{});
    table.Delete(0xFFFFFFF0);
    EXPECT_EQ(table.Get(0xFFFFFFF0), nullptr);
}

TEST(PenOfStyle, ReadsLineCapAndJoin) {
    const Pen pen = PenOfStyle(0x00012202, -3, 9);
    EXPECT_EQ(pen.line, Pen::Dot);
    EXPECT_EQ(pen.cap, Pen::Cap::Flat);
    EXPECT_EQ(pen.join, Pen::Join::Miter);
    EXPECT_EQ(pen.width, 3);
    EXPECT_EQ(PenOfStyle(0x0F, 1, 0).line, Pen::Solid);
}

}  // namespace
}  // namespace lumo::imaging::codecs::metafile
