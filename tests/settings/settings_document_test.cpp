#include "settings/settings_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <locale>
#include <random>

namespace lumo::settings {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

Document Parsed(std::string_view text) {
    auto document = ParseDocument(text);
    EXPECT_TRUE(document) << (document ? "" : document.Message());
    return document ? *document : Document();
}

std::string Text(const Document& document, const TablePath& path, std::string_view name) {
    const Value* value = document.Find(path, name);
    const auto* text = value == nullptr ? nullptr : std::get_if<std::string>(value);
    return text == nullptr ? "<none>" : *text;
}

TEST(ParseDocument, ReadsTablesAndValues) {
    const Document document = Parsed(
        "top = 1 # c\n[\"1.0\"]\nPhotoPath = \"/p\"\nPNGgamma = 2.2\nflag = true\n"
        "[\"1.0\".Logs]\nErrorLog = 'Yes'\n[WinState.WS02]\n[WinState.WS01]\nLeft = -5\n");
    EXPECT_EQ(Text(document, {"1.0"}, "PhotoPath"), "/p");
    EXPECT_EQ(Text(document, {"1.0", "Logs"}, "ErrorLog"), "Yes");
    EXPECT_EQ(*document.Find({}, "top"), Value(std::int64_t{1}));
    EXPECT_EQ(*document.Find({"1.0"}, "PNGgamma"), Value(2.2));
    EXPECT_EQ(*document.Find({"1.0"}, "flag"), Value(true));
    EXPECT_EQ(*document.Find({"WinState", "WS01"}, "Left"), Value(std::int64_t{-5}));
    EXPECT_EQ(document.Find({"1.0"}, "photopath"), nullptr);
    EXPECT_EQ(document.Find({"1"}, "PhotoPath"), nullptr);
    EXPECT_TRUE(document.HasTable({"WinState"}));
    EXPECT_FALSE(document.HasTable({"Win"}));
    EXPECT_THAT(document.TablesBelow({"WinState"}), ElementsAre("WS01", "WS02"));
    EXPECT_THAT(document.TablesBelow({"1.0"}), ElementsAre("Logs"));
}

TEST(ParseDocument, NamesThePlaceOfAFault) {
    const auto faulty = ParseDocument("[a]\nb = 1\nc = = 2\n");
    ASSERT_FALSE(faulty);
    EXPECT_THAT(faulty.Message(), testing::StartsWith("line 3, column 5"));
    EXPECT_FALSE(ParseDocument("a = 1\na = 2\n"));
    EXPECT_FALSE(ParseDocument("a = \"\xFF\"\n"));
    EXPECT_FALSE(ParseDocument(std::string_view("\0", 1)));
}

TEST(Document, WritesInTheOrderGiven) {
    Document document;
    document.AddTable({"Z", "a b"});
    document.Set({"M"}, "text", std::string("x\"y"));
    document.Set({"M"}, "number", std::int64_t{-3});
    document.Set({"M"}, "real", 2.0);
    document.Set({"M"}, "text", std::string("z"));
    document.Set({}, "top", true);
    EXPECT_EQ(document.Text(),
              "top = true\n\n[Z.\"a b\"]\n\n[M]\ntext = \"z\"\nnumber = -3\nreal = 2.0\n");
}

TEST(Document, AnyBytesComeBack) {
    std::mt19937 random(5);
    Document document;
    for (int n = 0; n < 300; ++n) {
        std::string text(random() % 40, '\0');
        for (char& c : text) c = static_cast<char>(random());
        document.Set({"t", text}, text, text);
    }
    const std::string written = document.Text();
    EXPECT_EQ(Parsed(written).Text().size(), written.size());
    const Document again = Parsed(written);
    for (const std::string& name : document.TablesBelow({"t"})) {
        ASSERT_EQ(Text(again, {"t", name}, name), name);
    }
}

TEST(Document, EveryCharacterComesBack) {
    Document document;
    for (std::uint32_t code = 1; code <= 0x10FFFF; code += code < 0x3000 ? 1 : 37) {
        if (code >= 0xD800 && code <= 0xDFFF) continue;
        std::string text;
        if (code < 0x80) {
            text = {static_cast<char>(code)};
        } else if (code < 0x800) {
            text = {static_cast<char>(0xC0 | code >> 6), static_cast<char>(0x80 | (code & 63))};
        } else if (code < 0x10000) {
            text = {static_cast<char>(0xE0 | code >> 12),
                    static_cast<char>(0x80 | (code >> 6 & 63)),
                    static_cast<char>(0x80 | (code & 63))};
        } else {
            text = {
                static_cast<char>(0xF0 | code >> 18), static_cast<char>(0x80 | (code >> 12 & 63)),
                static_cast<char>(0x80 | (code >> 6 & 63)), static_cast<char>(0x80 | (code & 63))};
        }
        document.Set({"t"}, std::to_string(code), text);
    }
    EXPECT_EQ(Parsed(document.Text()).Text().size(), document.Text().size());
    const Document again = Parsed(document.Text());
    for (std::uint32_t code = 1; code <= 0x10FFFF; code += code < 0x3000 ? 1 : 37) {
        const Value* before = document.Find({"t"}, std::to_string(code));
        if (before != nullptr) {
            ASSERT_EQ(*again.Find({"t"}, std::to_string(code)), *before) << code;
        }
    }
}

TEST(Document, ValuesOfOtherKindsAreKeptAsTheyAre) {
    const Document document = Parsed(
        "a = [1, [\"x\\\"]\", 2.5], {b = 1}]\nd = 1979-05-27\nt = 07:32:00.5\n"
        "o = 1979-05-27T07:32:00-07:00\ni = -inf\n[[tables]]\nx = 1\n[[tables]]\n");
    EXPECT_TRUE(std::holds_alternative<ForeignValue>(*document.Find({}, "a")));
    EXPECT_TRUE(std::holds_alternative<ForeignValue>(*document.Find({}, "tables")));
    EXPECT_EQ(std::get<ForeignValue>(*document.Find({}, "d")).toml, "1979-05-27");
    EXPECT_EQ(std::get<ForeignValue>(*document.Find({}, "i")).toml, "-inf");
    const Document again = Parsed(document.Text());
    for (const char* name : {"a", "d", "t", "o", "i", "tables"}) {
        EXPECT_EQ(*again.Find({}, name), *document.Find({}, name)) << name;
    }
}

TEST(Document, AdoptsWhatHasNoPlaceHereYet) {
    Document mine;
    mine.Set({"a"}, "x", std::string("mine"));
    mine.Set({"a"}, "value", std::string("v"));
    mine.AddTable({"t", "u"});
    mine.Adopt(Parsed("t = 5\n[a]\nx = \"theirs\"\ny = 1\n[a.value]\nz = 1\n[b]\nw = 1\n"));
    EXPECT_EQ(mine.Text(), "[a]\nx = \"mine\"\nvalue = \"v\"\ny = 1\n\n[t.u]\n\n[b]\nw = 1\n");
    EXPECT_TRUE(ParseDocument(mine.Text()));
}

TEST(ParseDocument, DeepNestsAreRefusedAndNotFollowed) {
    std::string dots = "a";
    for (int n = 0; n < 500'000; ++n) dots += ".a";
    const auto deep = ParseDocument(dots + " = 1\n");
    ASSERT_FALSE(deep);
    EXPECT_THAT(deep.Message(), HasSubstr("dots"));
    EXPECT_FALSE(ParseDocument("[" + dots + "]\n"));
    EXPECT_FALSE(ParseDocument("x = \"\"\" \" \"\"\"\ny = \"'\"\n# \"\n" + dots + " = 1\n"));
    EXPECT_FALSE(ParseDocument("x = '''\n' '' ''''\ny = \"\\\"\"\n" + dots + " = 1\n"));
    EXPECT_FALSE(ParseDocument(std::string(200'000, '[')));
    EXPECT_FALSE(ParseDocument("x = " + std::string(200'000, '[')));
    EXPECT_FALSE(ParseDocument("x = " + std::string(200'000, '{')));
}

TEST(ParseDocument, ANestOverManyLinesIsCountedAsOne) {
    std::string dots = "a";
    for (int n = 0; n < 900; ++n) dots += ".a";
    std::string text = "x = [\n";
    for (int n = 0; n < 100; ++n) text += "{" + dots + " = [\n";
    for (int n = 0; n < 100; ++n) text += "]}\n";
    const auto deep = ParseDocument(text + "]\n");
    ASSERT_FALSE(deep);
    EXPECT_THAT(deep.Message(), HasSubstr("dots"));
    // Where all brackets are closed, each line counts for itself.
    EXPECT_TRUE(ParseDocument("x = [[1], [2]]\n[y]\n" + dots + " = 1\n" + dots + "b = 1\n"));
}

TEST(ParseDocument, DotsInTextsAndCommentsAreNoNest) {
    const std::string dots(100'000, '.');
    const Document document = Parsed("a = \"" + dots + "\" # " + dots + "\nb = '" + dots +
                                     "'\nc = \"\"\"\n" + dots + "\\\"\"\"\"\n");
    EXPECT_EQ(Text(document, {}, "a"), dots);
    EXPECT_EQ(Text(document, {}, "b"), dots);
    EXPECT_EQ(Text(document, {}, "c"), dots + "\"");
}

TEST(ParseDocument, ADeepNestIsLeftOutAndTheRestIsRead) {
    std::string dots = "a";
    for (int n = 0; n < 999; ++n) dots += ".a";
    std::string text = "[" + dots + "]\n" + dots + " = 1\n";  // 2000 deep
    text += "[x]\nv = 1\nw = [" + std::string(250, '[') + std::string(250, ']') + "]\n";
    text += "n = [{" + dots + " = [{" + dots.substr(0, 1) + " = 1}]}]\n";
    const Document document = Parsed(text);
    EXPECT_EQ(*document.Find({"x"}, "v"), Value(std::int64_t{1}));
    EXPECT_EQ(document.Find({"x"}, "w"), nullptr);
    EXPECT_EQ(document.Find({"x"}, "n"), nullptr);
    EXPECT_EQ(Parsed(document.Text()).Text(), document.Text());
}

TEST(ParseDocument, RandomBytesNeverHarm) {
    std::mt19937 random(3);
    constexpr std::string_view kPool = "[]{}=.,\"'#\\\n\r\t a1-+:Tu_\xFF\xC3\xA9";
    for (int n = 0; n < 30'000; ++n) {
        std::string text;
        for (std::size_t length = random() % 60; length > 0; --length) {
            text +=
                random() % 8 == 0 ? static_cast<char>(random()) : kPool[random() % kPool.size()];
        }
        const auto document = ParseDocument(text);
        if (!document) continue;
        const std::string written = document->Text();
        const auto again = ParseDocument(written);
        ASSERT_TRUE(again) << text << "\n---\n" << written;
        ASSERT_EQ(again->Text(), written) << text;
    }
}

TEST(ParseDocument, TheLocaleChangesNoNumber) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new Comma));
    Document document;
    document.Set({"t"}, "real", 1234567.25);
    document.Set({"t"}, "integer", std::int64_t{1234567});
    const std::string text = document.Text();
    const auto again = ParseDocument(text + "array = [1234567, 2.5]\n");
    const std::string third = again ? again->Text() : "";
    std::locale::global(before);
    EXPECT_EQ(text, "[t]\nreal = 1234567.25\ninteger = 1234567\n");
    ASSERT_TRUE(again);
    EXPECT_EQ(*again->Find({"t"}, "real"), Value(1234567.25));
    EXPECT_THAT(third, HasSubstr("array = [ 1234567, 2.5 ]"));
}

TEST(Document, HugeFilesTakeNoLongTime) {
    std::string text;
    for (int n = 0; n < 40'000; ++n) text += "[t" + std::to_string(n) + "]\na=1\n";
    const auto start = std::chrono::steady_clock::now();
    Document mine;
    mine.Adopt(Parsed(text));
    EXPECT_EQ(mine.TablesBelow({}).size(), 40'000U);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

}  // namespace
}  // namespace lumo::settings
