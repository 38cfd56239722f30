#include "Source/EditorKeys.h"

#include "Modules/TIdeModule.h"
#include "Source/TSourceBuffer.h"
#include "TIde.h"

#include <algorithm>

namespace tarn {
namespace {

int EndColumn(const TSourceView& view, int row) {
    return static_cast<int>(view.Buffer().Text().LineLength(row)) + 1;
}

// --- Keys that move the cursor ----------------------------------------------------------------

using TCursorTarget = TTextPos (*)(const TSourceView& view, TTextPos cursor);

struct TCursorKey {
    TShortCut Key;
    int Pages; ///< that the view moves along
    TCursorTarget Target;
};

TTextPos Left(const TSourceView& view, TTextPos at) {
    return CharBefore(view.Buffer().Text(), at);
}
TTextPos Right(const TSourceView& view, TTextPos at) {
    return CharBehind(view.Buffer().Text(), at);
}
/// The position that is seen so many rows and pages below this one, as far as there are rows.
template <int rows, int pages = 0> TTextPos Below(const TSourceView& view, TTextPos at) {
    const TEditText& text = view.Buffer().Text();
    const int row = std::clamp(at.Row + rows + pages * view.Height(), 1, text.LineCount());
    return PosSeenAt(text, row, SeenAt(text, at));
}
TTextPos LineStart(const TSourceView&, TTextPos at) {
    return {at.Row, 1};
}
TTextPos LineEnd(const TSourceView& view, TTextPos at) {
    return {at.Row, EndColumn(view, at.Row)};
}
TTextPos TextStart(const TSourceView&, TTextPos) {
    return {1, 1};
}
TTextPos TextEnd(const TSourceView& view, TTextPos) {
    const int last = view.Buffer().Text().LineCount();
    return {last, EndColumn(view, last)};
}

constexpr TCursorKey CursorKeys[] = {
    {VK_LEFT, 0, Left},
    {VK_RIGHT, 0, Right},
    {VK_UP, 0, Below<-1>},
    {VK_DOWN, 0, Below<1>},
    {VK_PRIOR, -1, Below<0, -1>},
    {VK_NEXT, 1, Below<0, 1>},
    {VK_HOME, 0, LineStart},
    {VK_END, 0, LineEnd},
    {scCtrl | VK_HOME, 0, TextStart},
    {scCtrl | VK_END, 0, TextEnd},
};

bool MoveByKey(TSourceView& view, TShortCut key) {
    constexpr TShortCut columnKeys = scShift | scAlt;
    const TShortCut modifiers = key & columnKeys;
    if (modifiers == scAlt) return false;
    for (const TCursorKey& row : CursorKeys) {
        if (row.Key != (key & ~columnKeys)) continue;
        const TTextPos target = row.Target(view, view.Cursor());
        view.Scroll(row.Pages * view.Height(), 0);
        if (modifiers == columnKeys)
            view.ExtendTo(target, btColumn);
        else if (modifiers == scShift)
            view.ExtendTo(target);
        else
            view.MoveTo(target);
        return true;
    }
    return false;
}

// --- Keys that edit ---------------------------------------------------------------------------

/// Deletes the block, or what lies between the cursor and the other place.
void DeleteTo(TSourceView& view, TTextPos other) {
    if (!view.HasBlock()) {
        view.DropBlock();
        view.ExtendTo(other);
    }
    view.DeleteBlock();
}

void BackSpace(TSourceView& view) {
    const auto [row, col] = view.Cursor();
    if (col > 1)
        DeleteTo(view, Left(view, {row, col}));
    else
        DeleteTo(view, row > 1 ? TTextPos{row - 1, EndColumn(view, row - 1)} : TTextPos{});
}

void Delete(TSourceView& view) {
    const auto [row, col] = view.Cursor();
    if (view.HasBlock() || col < EndColumn(view, row))
        return DeleteTo(view, Right(view, {row, col}));
    if (row == view.Buffer().Text().LineCount()) return view.DropBlock();
    if (col > EndColumn(view, row)) { // the next line comes to the cursor, not to the line's end
        view.MoveTo({row, col - 1});
        view.TypeText(" ");
    }
    DeleteTo(view, {row + 1, 1});
}

void Tab(TSourceView& view) {
    view.DeleteBlock();
    const int width = TabSize - (SeenAt(view.Buffer().Text(), view.Cursor()) - 1) % TabSize;
    view.TypeText(std::string(static_cast<std::size_t>(width), ' '));
}

struct TEditKey {
    TShortCut Key;
    void (*Run)(TSourceView& view);
};

void Return(TSourceView& view) {
    view.TypeText("\n");
}

constexpr TEditKey EditKeys[] = {
    {VK_BACK, BackSpace},
    {scShift | VK_BACK, BackSpace},
    {VK_DELETE, Delete},
    {VK_RETURN, Return},
    {scShift | VK_RETURN, Return},
    {VK_TAB, Tab},
    {VK_INSERT, [](TSourceView&) {}}, // typing always inserts
};

bool EditByKey(TSourceView& view, TShortCut key) {
    for (const TEditKey& row : EditKeys)
        if (row.Key == key) {
            const TSourceBuffer::TEditScope scope(view.Buffer());
            row.Run(view);
            return true;
        }
    return false;
}

// --- Keys of commands -------------------------------------------------------------------------

struct TAlias {
    TShortCut Key, Meant;
};

/// Keys of old for what has another key in the menu.
constexpr TAlias Aliases[] = {
    {scShift | VK_DELETE, scCtrl | 'X'},    {scCtrl | VK_INSERT, scCtrl | 'C'},
    {scShift | VK_INSERT, scCtrl | 'V'},    {scAlt | VK_BACK, scCtrl | 'Z'},
    {scCtrl | 'Y', scShift | scCtrl | 'Z'},
};

bool RunByKey(TSourceView& view, TShortCut key) {
    for (const TAlias& alias : Aliases)
        if (alias.Key == key) {
            view.Buffer().Module().Ide().PressShortCut(alias.Meant);
            return true;
        }
    return false;
}

} // namespace

bool PressEditorKey(TSourceView& view, TShortCut key) {
    if (RunByKey(view, key)) return true;
    if (!MoveByKey(view, key) && !EditByKey(view, key)) return false;
    view.ScrollIntoView();
    return true;
}

} // namespace tarn
