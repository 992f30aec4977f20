// Real files of four formats: their pictures, found right by eye and beside other programs, and
// what becomes of them when they are damaged.

#include <gtest/gtest.h>

#include "imaging/codecs/decoders.h"
#include "support/codec_files.h"

namespace lumo::imaging::codecs {
namespace {

using namespace test;  // NOLINT: what the tests of formats share

// ---- BMP --------------------------------------------------------------------------------------

TEST(BmpFiles, ShowTheirPictures) {
    const std::vector<KnownFile> files{
        {"12m_Blue_Lace_16.bmp", {48, 48}, 0x82093B6D1AC399C0},
        {"12m_blauesglas_4.bmp", {301, 331}, 0x00E696C4336FC5A0},
        {"bmpsuite_g01p1.bmp", {127, 64}, 0x3BC99C66AA5E301A},
        {"bmpsuite_g04rle.bmp", {127, 64}, 0xB6D2E603BF4F45EE},
        {"bmpsuite_g08rle.bmp", {127, 64}, 0x0D3D4F28C864847C},
        {"bmpsuite_pal8rlecut.bmp", {127, 64}, 0x6863825C93F5430F},
        {"bmpsuite_pal8v4.bmp", {127, 64}, 0xC0588AD214E0F76F},
        {"bmpsuite_rgb16-3103.bmp", {127, 64}, 0xC7993BDE7233B25D},
        {"commons-imaging_V4-bitfields.bmp", {16, 16}, 0xE420EB5031204DDB},
        {"commons-imaging_rle4.bmp", {5, 5}, 0x98D7238CA9B0EEF7},
        {"commons-imaging_rle8.bmp", {5, 5}, 0x98D7238CA9B0EEF7},
        {"commons-imaging_test-72_6-dpi.bmp", {50, 50}, 0xB13E0987D35BF02E},
        {"image-rs_V3_A4_R4_G4_B4_Top_Down.bmp", {6, 6}, 0x8097217E8A5A6569},
        {"image-rs_V3_R5_G6_B5_Top_Down.bmp", {6, 6}, 0x8097217E8A5A6569},
        {"image-rs_V4_R5_G6_B5.bmp", {16, 16}, 0x9C3E15FBD1E5A8FC},
        {"image-rs_pal4rlecut.bmp", {127, 64}, 0x8CFB58D8C618F792},
        {"image-rs_pal8os2-hs.bmp", {127, 64}, 0xC0588AD214E0F76F},
        {"image-rs_rgba32-61754.bmp", {127, 64}, 0xB5CACC2594DED5FF},
        {"mei_QCb.bmp", {82, 112}, 0xD04A41D10BF4EE0D},
        {"mei_QH.bmp", {58, 79}, 0x2CB224B8A717DC6C},
        {"pillow_pal4rle.bmp", {127, 64}, 0x3ACEB6BEA73A153E},
        {"pillow_pal8os2v2-16.bmp", {127, 64}, 0xC0588AD214E0F76F},
        {"pillow_pal8topdown.bmp", {127, 64}, 0xC0588AD214E0F76F},
        {"pillow_rgb24prof.bmp", {127, 64}, 0x68AF4DC93523998C},
        {"pillow_rgba32h56.bmp", {127, 64}, 0x86E8F550D59D7F78},
        {"rust-skia_randPixels.bmp", {8, 8}, 0x1D5A6A4DD7A0B9A7},
        {"sdl_palette.bmp", {23, 42}, 0x2606549BBABC69EA},
        {"sdl_svg.bmp", {32, 32}, 0xCDE49BDFEC3147C5},
        {"sdl_svg64.bmp", {64, 64}, 0xB0DF57C1515EE645},
        {"serenity_bitmap-xor.bmp", {399, 400}, 0x6C0DFFB54E821CFF},
        {"serenity_tpgdon0.bmp", {8, 3}, 0x3897C841FD20C36E},
        {"serenity_tpgdon1.bmp", {7, 3}, 0xFCDADB75D9182D4F},
        {"serenity_tpgdon3.bmp", {7, 2}, 0xE63C38A80E0720C9},
        {"serenity_tpgron-ref.bmp", {3, 3}, 0x001F1720F0B9CC17},
        {"wuffs_bricks-dither.bmp", {160, 120}, 0xA64C5F2720AD2861},
    };
    CheckKnownFiles(DecodeBmp, "bmp", files);
}

TEST(BmpFiles, EndAsAPictureOrAReason) {
    CheckFilesEndWell(DecodeBmp, "bmp");
    CheckFilesEndWell(DecodeBmp, "bmp/invalid");
}

TEST(BmpFiles, DamagedOnesEndAsAPictureOrAReason) {
    CheckMutationsEndWell(DecodeBmp, "bmp", 1000);
}

// ---- PCX --------------------------------------------------------------------------------------

TEST(PcxFiles, ShowTheirPictures) {
    const std::vector<KnownFile> files{
        {"12m_CGA_BW.pcx", {640, 200}, 0x81362CA285508778},
        {"12m_CGA_FSD.pcx", {320, 200}, 0x2A25DE726EFDEEE4},
        {"12m_CGA_RGBI.pcx", {320, 200}, 0xB45C7F1A75529A4A},
        {"12m_CGA_TST1.pcx", {320, 200}, 0x06C39D48EDE7FD76},
        {"12m_DARKSTAR.pcx", {88, 52}, 0x5ADE68A5556EF7E9},
        {"12m_input.pcx", {70, 46}, 0x7EBA708C2EA1134A},
        {"12m_no-palette-monochrome.pcx", {128, 152}, 0x1D3466144B831C61},
        {"commons-imaging_1plane1bppCompressed.pcx", {10, 10}, 0xD17F0A3F2788D141},
        {"commons-imaging_1plane2bppCompressed.pcx", {10, 10}, 0x6366C8D3F4FCE30D},
        {"commons-imaging_1plane8bppUncompressed.pcx", {10, 10}, 0x6366C8D3F4FCE30D},
        {"commons-imaging_2plane1bppCompressed.pcx", {10, 10}, 0x6366C8D3F4FCE30D},
        {"commons-imaging_3plane1bppCompressed.pcx", {10, 10}, 0x6366C8D3F4FCE30D},
        {"commons-imaging_3plane8bppCompressed.pcx", {10, 10}, 0x6366C8D3F4FCE30D},
        {"commons-imaging_4plane1bppCompressed.pcx", {10, 10}, 0x6366C8D3F4FCE30D},
        {"exiftool_PCX.pcx", {8, 8}, 0x702431C0613B7205},
        {"kimg-w_Format_ARGB8555_Premultiplied.pcx", {96, 96}, 0x17D64E14AF546C1A},
        {"kimg-w_Format_Indexed8.pcx", {96, 96}, 0x6514FF824628499D},
        {"kimg-w_Format_Mono.pcx", {96, 96}, 0x1279C84D0A0676DE},
        {"kimg-w_bw.pcx", {32, 32}, 0x76A5C1A96EEB72ED},
        {"kimg-w_rgb.pcx", {32, 32}, 0xD7D92949B63FB44E},
        {"kimg-w_rgba.pcx", {32, 32}, 0x22C54D198D948A25},
        {"kimg_16color.pcx", {200, 168}, 0x63C5FB5B7272D826},
        {"pillow_p_4_planes.pcx", {1, 1}, 0x67C37D710F49D6EE},
        {"sdl_sample.pcx", {23, 42}, 0xAC5158705B344A37},
    };
    CheckKnownFiles(DecodePcx, "pcx", files);
}

TEST(PcxFiles, EndAsAPictureOrAReason) {
    CheckFilesEndWell(DecodePcx, "pcx");
    CheckFilesEndWell(DecodePcx, "pcx/invalid");
}

TEST(PcxFiles, DamagedOnesEndAsAPictureOrAReason) {
    CheckMutationsEndWell(DecodePcx, "pcx", 1000);
}

// ---- TGA --------------------------------------------------------------------------------------

TEST(TgaFiles, ShowTheirPictures) {
    const std::vector<KnownFile> files{
        {"12m_CBW8.tga", {128, 128}, 0x4BA61C88091842C5},
        {"12m_UCM8.tga", {128, 128}, 0x6851660EAD0E7AC5},
        {"gdkpix_gtk-logo-cmap-8bpp-top-right.tga", {48, 48}, 0xDCBABA8C66CF2464},
        {"gdkpix_gtk-logo-gray-16bpp-bottom-left.tga", {48, 48}, 0xF784836658D21445},
        {"gdkpix_gtk-logo-gray-16bpp-bottom-right.tga", {48, 48}, 0xF784836658D21445},
        {"image-rs-reg_sixteen-bit-gray-colormap2.tga", {1, 1}, 0x47F4876FDBCF9F2F},
        {"image-rs_b5-attrib.tga", {4, 4}, 0x814BFEE618E7B1A4},
        {"image-rs_bottom_left.tga", {75, 70}, 0x0E269CF08DDA30C1},
        {"image-rs_cmap_offset.tga", {12, 6}, 0x7FE8B1D6AD0461E5},
        {"kimg-w_Format_Grayscale16.tga", {96, 96}, 0x505CC256F885F091},
        {"kimg-w_bwa.tga", {32, 32}, 0x65F5973DCF28E12B},
        {"kimg-w_rgba.tga", {32, 32}, 0x22C54D198D948A25},
        {"kimg_colormapped.tga", {48, 48}, 0xD68EFEFAC9706488},
        {"kimg_rgb-gimp-2.8.10-rle-bottom-left.tga", {32, 32}, 0xD7D92949B63FB44E},
        {"kimg_rgba.tga", {32, 32}, 0x22C54D198D948A25},
        {"mei_simple_armor_0.tga", {128, 128}, 0x5104064A7DE98757},
        {"mei_simple_g_nail2_0.tga", {128, 128}, 0x0F352689C5592C85},
        {"oiio-t_1x1.tga", {1, 1}, 0xDB2A97702F2D5324},
        {"oiio-t_rgba.tga", {40, 40}, 0x73176CF240D7F82E},
        {"pillow_1x1_l_bl_raw.tga", {1, 1}, 0xB029E670A6D137E7},
        {"pillow_200x32_la_bl_raw.tga", {200, 32}, 0x92DF62289BC90DB6},
        {"pillow_200x32_p_bl_rle.tga", {200, 32}, 0x5BEA37B5194749A7},
        {"pillow_rgba16.tga", {2, 1}, 0xBD634378D24B765A},
        {"sdl_sample.tga", {23, 42}, 0xAC5158705B344A37},
        {"serenity_image-with-identifier.tga", {24, 24}, 0xF53A10120AEC7C20},
        {"serenity_square-bottom-left.tga", {2, 2}, 0x7AEBB0D5EE1A0A82},
        {"vips_targa.tga", {433, 433}, 0xDF8EDAFD536A7A04},
    };
    CheckKnownFiles(DecodeTga, "tga", files);
}

TEST(TgaFiles, EndAsAPictureOrAReason) {
    CheckFilesEndWell(DecodeTga, "tga");
    CheckFilesEndWell(DecodeTga, "tga/invalid");
}

TEST(TgaFiles, DamagedOnesEndAsAPictureOrAReason) {
    CheckMutationsEndWell(DecodeTga, "tga", 1000);
}

// ---- PSD --------------------------------------------------------------------------------------

TEST(PsdFiles, ShowTheirPictures) {
    const std::vector<KnownFile> files{
        {"12m_buttons.psd", {20, 20}, 0x74FC69077FF298BB},
        {"ag-psd_group-blend-expected.psd", {573, 351}, 0xACE4A855389CFBE3},
        {"kimg_rgb16-raw-affinityphoto-1.8.5.psd", {32, 32}, 0xBFB6B02BE5C03707},
        {"mei_8x4x8bit-Grayscale.psd", {8, 4}, 0xEB4F0EA4E57BD9A9},
        {"mnet_Player.psd", {64, 64}, 0x998E77C55932D055},
        {"oiio-t_pattern2-8-indexed.psd", {200, 150}, 0x45A7C6D0D77BC10B},
        {"oiio-t_pattern2-8-multichannel.psd", {200, 150}, 0x45A7C6D0D77BC10B},
        {"pillow_psd-oob-write-x.psd", {1, 1}, 0x5D1EE66E34429D67},
        {"pillow_rgba.psd", {100, 100}, 0xE21C160CADDE3C75},
        {"psd-tools_4x4_16bit_lab.psd", {4, 4}, 0xD750EFE60137C6C3},
        {"psd-tools_4x4_1bit_bitmap.psd", {4, 4}, 0x79DF061FD126AA4C},
        {"psd-tools_4x4_32bit_grayscale.psd", {4, 4}, 0xFA556AFC6DEF57AD},
        {"psd-tools_4x4_32bit_rgb.psd", {4, 4}, 0x939912E961EC4F5D},
        {"psd-tools_4x4_8bit_duotone.psd", {4, 4}, 0x7D2DEA6D6F223A58},
        {"rust-psd_luni.psd", {1, 1}, 0x697FC87110C28C64},
        {"rust-psd_non-utf8-pascal-string.psd", {1, 1}, 0x4E35596EBC66C5DD},
        {"rust-psd_one-channel-1x1.psd", {1, 1}, 0xC5AFE87021D59394},
        {"rust-psd_two-channel-8x8.psd", {8, 8}, 0xBF17D998D85554F0},
    };
    CheckKnownFiles(DecodePsd, "psd", files);
}

TEST(PsdFiles, EndAsAPictureOrAReason) {
    CheckFilesEndWell(DecodePsd, "psd");
    CheckFilesEndWell(DecodePsd, "psd/invalid");
}

TEST(PsdFiles, DamagedOnesEndAsAPictureOrAReason) {
    CheckMutationsEndWell(DecodePsd, "psd", 1000);
}

}  // namespace
}  // namespace lumo::imaging::codecs
