#include "imaging/codecs/metafile/charsets.h"
#include "imaging/codecs/metafile/device_context.h"

namespace lumo::imaging::codecs::metafile {

std::vector<Character> DecodeInFont(ByteView bytes, const Font& font) {
    if (!IsSymbolFace(font.face)) return DecodeBytes(bytes, font.charset);
    std::vector<Character> codes;
    for (const std::uint8_t byte : bytes) codes.push_back({byte, 1});
    return codes;
}

void SetCharacters(TextCall& call, const std::vector<Character>& characters, const Font& font,
                   std::span<const double> advances) {
    const bool symbols = font.charset == kSymbolCharset || IsSymbolFace(font.face);
    std::size_t unit = 0;
    for (const Character& character : characters) {
        char32_t code = character.code;
        if (symbols && (code < 0x100 || (code >= 0xF000 && code < 0xF100)))
            code = SymbolToUnicode(font.face, code);
        // Line breaks and the like have no shape, but take their place.
        AppendUtf8(call.text, code < 0x20 || code == 0x7F ? U' ' : code);
        double sum = 0;
        for (int i = 0; i < character.units; ++i, ++unit)
            if (unit < advances.size()) sum += advances[unit];
        if (unit <= advances.size()) call.advances.push_back(sum);
    }
}

}  // namespace lumo::imaging::codecs::metafile
