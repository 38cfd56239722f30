#include "os/portable/TPortableOS.h"
#include "vcl/ShortCuts.h"

#include <gtest/gtest.h>

#include <map>

namespace tarn {
namespace {

constexpr HKL German = 0x407, Russian = 0x419;

class ShortCuts : public testing::Test {
protected:
    ShortCuts() : FBefore(InstallOS(&FOS)) {}
    ~ShortCuts() override { InstallOS(FBefore); }
    void Layout(HKL layout) { FOS.ActivateKeyboardLayout(layout); }

private:
    TPortableOS FOS;
    TOperatingSystem* FBefore;
};

TEST_F(ShortCuts, Texts) {
    const struct {
        unsigned ShortCut;
        std::string_view Text;
    } cases[] = {
        {'A', "A"},
        {scShift | '0', "Shift+0"},
        {scCtrl | 0xBE, "Ctrl+."},
        {scAlt | VK_BACK, "Alt+BkSp"},
        {scShift | scCtrl | VK_DELETE, "Shift+Ctrl+Del"},
        {scShift | scCtrl | scAlt | 0x70, "Shift+Ctrl+Alt+F1"},
        {0x87, "F24"},
        {scCtrl | VK_NEXT, "Ctrl+PgDn"},
        {scCtrl | 0xBB, "Ctrl+="},
        {scCtrl | VK_SPACE, "Ctrl+Space"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ShortCutToText(static_cast<TShortCut>(c.ShortCut)), c.Text);
        EXPECT_EQ(TextToShortCut(c.Text), c.ShortCut) << c.Text;
    }
    for (const unsigned nameless : {0u, 7u, 0x10u, 0x88u, 0xFFu, unsigned{scCtrl}})
        EXPECT_EQ(ShortCutToText(static_cast<TShortCut>(scAlt | nameless)), "") << nameless;
}

TEST_F(ShortCuts, RoundTrip) {
    for (const HKL layout : {LayoutUSEnglish, German, Russian}) {
        Layout(layout);
        std::map<std::string, unsigned> first; // two keys of one name: the first is meant
        for (unsigned key = 8; key <= 255; ++key)
            for (unsigned modifiers = 0; modifiers < 8; ++modifiers) {
                const unsigned shortCut = modifiers << 13 | key;
                const std::string text = ShortCutToText(static_cast<TShortCut>(shortCut));
                if (text.empty()) continue;
                const unsigned meant = first.emplace(text, shortCut).first->second;
                EXPECT_EQ(TextToShortCut(text), meant) << text;
            }
        // Named keys, letters, digits, function keys, and the keys that give a sign.
        EXPECT_EQ(first.size(), (15 + 26 + 10 + 24 + 11) * 8);
    }
}

TEST_F(ShortCuts, ReadsModifiersInAnyOrderWithoutCase) {
    for (const std::string_view text : {"Shift+Ctrl+Alt+Del", "Alt+Ctrl+Shift+Del",
                                        "ctrl+ALT+shift+dEL", "Ctrl+Shift+Alt+Ctrl+Del"})
        EXPECT_EQ(TextToShortCut(text), scShift | scCtrl | scAlt | VK_DELETE) << text;
    EXPECT_EQ(TextToShortCut("f12"), 0x7B);
}

TEST_F(ShortCuts, RefusesOtherTexts) {
    for (const std::string_view text :
         {"", " ", "+", "Ctrl", "Ctrl+", "Shift+Ctrl+", "Ctrl++", "F0", "F25", "F1 ", "Delete",
          "Ctrl-A", "AB", "Strg+A", "Ctrl+\u0416"})
        EXPECT_EQ(TextToShortCut(text), 0) << text;
}

TEST_F(ShortCuts, NamesSignsAsTheLayoutDoes) {
    const struct {
        std::string_view Text;
        HKL Layout;
        unsigned ShortCut;
    } cases[] = {
        {"Ctrl+;", LayoutUSEnglish, scCtrl | 0xBA},
        {"Ctrl+;", Russian, 0},
        {"Ctrl+,", Russian, 0},
        {"Ctrl+.", Russian, scCtrl | 0xBF},
        {"Ctrl+\u0436", Russian, scCtrl | 0xBA},
        {"Ctrl++", German, scCtrl | 0xBB},
        {"Alt+\u00FC", German, scAlt | 0xBA},
        {"Ctrl+A", German, scCtrl | 'A'},
    };
    for (const auto& c : cases) {
        Layout(c.Layout);
        EXPECT_EQ(TextToShortCut(c.Text), c.ShortCut) << c.Text;
    }
}

} // namespace
} // namespace tarn
