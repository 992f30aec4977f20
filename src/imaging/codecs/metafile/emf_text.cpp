// Text records of enhanced metafiles.

#include "imaging/codecs/metafile/charsets.h"
#include "imaging/codecs/metafile/emf_player_class.h"

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr std::uint32_t kAdvancedMode = 2;
enum TextOption : std::uint32_t {
    kOpaque = 0x2,
    kClipped = 0x4,
    kGlyphIndex = 0x10,
    kNoBox = 0x100,
    kSmallCharacters = 0x200,
    kPairs = 0x2000,
};

// The fonts of Windows number their glyphs in the order of ASCII, from the blank as the third on;
// text that is stored as glyph numbers shows its letters by this, and a mark for all others.
void GlyphsToText(std::vector<Character>& characters) {
    for (Character& c : characters) c.code = c.code >= 3 && c.code <= 97 ? c.code + 29 : 0xFFFD;
}

}  // namespace

bool EmfPlayer::HandleText(EmfType type, RecordReader& record) {
    switch (type) {
        case EmfType::ExtTextOut:
        case EmfType::ExtTextOutBytes:
            ExtTextOut(record, type == EmfType::ExtTextOut);
            return true;
        case EmfType::PolyTextOut:
        case EmfType::PolyTextOutBytes:
            PolyTextOut(record, type == EmfType::PolyTextOut);
            return true;
        case EmfType::SmallTextOut:
            SmallTextOut(record);
            return true;
        default:
            return false;
    }
}

void EmfPlayer::ExtTextOut(RecordReader& record, bool wide) {
    record.Skip(16);
    const bool turns = record.U32() == kAdvancedMode;
    record.Skip(8);
    TextRecord(record, wide, turns);
}

void EmfPlayer::PolyTextOut(RecordReader& record, bool wide) {
    record.Skip(16);
    const bool turns = record.U32() == kAdvancedMode;
    record.Skip(8);
    const std::size_t count = record.U32();
    for (std::size_t i = 0; i < count && record.IsGood() && !canvas_.IsExhausted(); ++i)
        TextRecord(record, wide, turns);
}

void EmfPlayer::TextRecord(RecordReader& record, bool wide, bool turns) {
    TextCall call;
    call.turnsWithWorld = turns;
    call.at = ReadPoint(record);
    const std::size_t count = record.U32(), textAt = record.U32();
    const std::uint32_t options = record.U32();
    const Box box = ReadEmfBox(record);
    const std::size_t advancesAt = record.U32();
    if (!record.IsGood()) return;
    call.fillBox = (options & kOpaque) != 0;
    call.clipToBox = (options & kClipped) != 0;
    if (call.fillBox || call.clipToBox) call.box = box;

    RecordReader text(record.All());
    text.Seek(textAt);
    const ByteView bytes = text.Take(count * (wide ? 2 : 1));
    std::vector<double> advances;
    RecordReader numbers(record.All());
    numbers.Seek(advancesAt);
    const std::size_t stride = (options & kPairs) != 0 ? 8 : 4;
    while (advancesAt != 0 && advances.size() < count && numbers.Left() >= stride) {
        advances.push_back(numbers.I32());
        numbers.Skip(stride - 4);
    }
    const Font& font = dc_.State().font;
    std::vector<Character> characters = wide ? DecodeUtf16(bytes) : DecodeInFont(bytes, font);
    if ((options & kGlyphIndex) != 0) GlyphsToText(characters);
    SetCharacters(call, characters, font, advances);
    dc_.DrawText(call);
}

void EmfPlayer::SmallTextOut(RecordReader& record) {
    TextCall call;
    call.at = ReadPoint(record);
    const std::size_t count = record.U32();
    const std::uint32_t options = record.U32();
    call.turnsWithWorld = record.U32() == kAdvancedMode;
    record.Skip(8);
    call.fillBox = (options & kOpaque) != 0;
    call.clipToBox = (options & kClipped) != 0;
    if ((options & kNoBox) == 0) call.box = ReadEmfBox(record);
    const bool narrow = (options & kSmallCharacters) != 0;
    const ByteView bytes = record.Take(count * (narrow ? 1 : 2));
    const Font& font = dc_.State().font;
    std::vector<Character> characters = narrow ? DecodeInFont(bytes, font) : DecodeUtf16(bytes);
    if ((options & kGlyphIndex) != 0) GlyphsToText(characters);
    SetCharacters(call, characters, font, {});
    dc_.DrawText(call);
}

}  // namespace lumo::imaging::codecs::metafile
