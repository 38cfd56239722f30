#include "QtKeys.h"

#include <QKeyEvent>

namespace tarn {
namespace {

struct TKeyRow {
    int Key; ///< Qt::Key_...
    TVirtualKey Code;
};

/// Keys with a code that does not follow from Qt's own; of a sign, both that its key gives.
constexpr TKeyRow KeyRows[] = {
    {Qt::Key_Backspace, VK_BACK}, {Qt::Key_Tab, VK_TAB},       {Qt::Key_Backtab, VK_TAB},
    {Qt::Key_Return, VK_RETURN},  {Qt::Key_Enter, VK_RETURN},  {Qt::Key_Escape, VK_ESCAPE},
    {Qt::Key_Space, VK_SPACE},    {Qt::Key_PageUp, VK_PRIOR},  {Qt::Key_PageDown, VK_NEXT},
    {Qt::Key_End, VK_END},        {Qt::Key_Home, VK_HOME},     {Qt::Key_Left, VK_LEFT},
    {Qt::Key_Up, VK_UP},          {Qt::Key_Right, VK_RIGHT},   {Qt::Key_Down, VK_DOWN},
    {Qt::Key_Insert, VK_INSERT},  {Qt::Key_Delete, VK_DELETE}, {Qt::Key_Semicolon, 0xBA},
    {Qt::Key_Colon, 0xBA},        {Qt::Key_Equal, 0xBB},       {Qt::Key_Plus, 0xBB},
    {Qt::Key_Comma, 0xBC},        {Qt::Key_Less, 0xBC},        {Qt::Key_Minus, 0xBD},
    {Qt::Key_Underscore, 0xBD},   {Qt::Key_Period, 0xBE},      {Qt::Key_Greater, 0xBE},
    {Qt::Key_Slash, 0xBF},        {Qt::Key_Question, 0xBF},    {Qt::Key_QuoteLeft, 0xC0},
    {Qt::Key_AsciiTilde, 0xC0},   {Qt::Key_BracketLeft, 0xDB}, {Qt::Key_BraceLeft, 0xDB},
    {Qt::Key_Backslash, 0xDC},    {Qt::Key_Bar, 0xDC},         {Qt::Key_BracketRight, 0xDD},
    {Qt::Key_BraceRight, 0xDD},   {Qt::Key_Apostrophe, 0xDE},  {Qt::Key_QuoteDbl, 0xDE},
};

/// The digits' keys with Shift on a US keyboard.
constexpr char ShiftedDigits[] = ")!@#$%^&*(";

TVirtualKey CodeOf(int key) {
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9))
        return static_cast<TVirtualKey>(key);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24)
        return static_cast<TVirtualKey>(0x70 + key - Qt::Key_F1);
    for (int digit = 0; digit < 10; ++digit)
        if (key == ShiftedDigits[digit]) return static_cast<TVirtualKey>('0' + digit);
    for (const TKeyRow& row : KeyRows)
        if (row.Key == key) return row.Code;
    return 0;
}

} // namespace

TShortCut ShortCutOf(const QKeyEvent& event) {
    TShortCut result = CodeOf(event.key());
    if (result == 0) return 0;
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    if (modifiers & Qt::ShiftModifier) result |= scShift;
    if (modifiers & Qt::ControlModifier) result |= scCtrl;
    if (modifiers & Qt::AltModifier) result |= scAlt;
    return result;
}

bool HasCharacter(const QKeyEvent& event) {
    const QList<uint> characters = event.text().toUcs4(); // of which one may be two QChars
    return !characters.isEmpty() && QChar::isPrint(characters.front());
}

bool IsTyped(const QKeyEvent& event) {
    // The key that gives third characters is none of these.
    constexpr auto commands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    return HasCharacter(event) && (event.modifiers() & commands) == 0;
}

} // namespace tarn
