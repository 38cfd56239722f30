#include "Source/EditorKeys.h"

#include "Source/TSourceBuffer.h"

namespace tarn {
namespace {

int EndColumn(const TSourceView& view, int row) {
    return static_cast<int>(view.Buffer().Text().LineLength(row)) + 1;
}

// --- Keys that move the cursor ----------------------------------------------------------------

using TCursorTarget = TTextPos (*)(const TSourceView& view, TTextPos cursor);

struct TCursorKey {
    TShortCut Key;
    int PageScroll; ///< rows that the view moves along
    TCursorTarget Target;
};

constexpr int Page = TSourceView::Height;

/// The place that is so many rows and columns away.
template <int rows, int cols> TTextPos Away(const TSourceView&, TTextPos at) {
    return {at.Row + rows, at.Col + cols};
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
    {VK_LEFT, 0, Away<0, -1>},         {VK_RIGHT, 0, Away<0, 1>},
    {VK_UP, 0, Away<-1, 0>},           {VK_DOWN, 0, Away<1, 0>},
    {VK_PRIOR, -Page, Away<-Page, 0>}, {VK_NEXT, Page, Away<Page, 0>},
    {VK_HOME, 0, LineStart},           {VK_END, 0, LineEnd},
    {scCtrl | VK_HOME, 0, TextStart},  {scCtrl | VK_END, 0, TextEnd},
};

bool MoveByKey(TSourceView& view, TShortCut key) {
    const bool extends = (key & scShift) != 0;
    for (const TCursorKey& row : CursorKeys) {
        if (row.Key != (key & ~scShift)) continue;
        const TTextPos target = row.Target(view, view.Cursor());
        view.Scroll(row.PageScroll, 0);
        if (extends)
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
        DeleteTo(view, {row, col - 1});
    else
        DeleteTo(view, row > 1 ? TTextPos{row - 1, EndColumn(view, row - 1)} : TTextPos{});
}

void Delete(TSourceView& view) {
    const auto [row, col] = view.Cursor();
    if (view.HasBlock() || col < EndColumn(view, row)) return DeleteTo(view, {row, col + 1});
    if (row == view.Buffer().Text().LineCount()) return view.DropBlock();
    if (col > EndColumn(view, row)) { // the next line comes to the cursor, not to the line's end
        view.MoveTo({row, col - 1});
        view.TypeText(" ");
    }
    DeleteTo(view, {row + 1, 1});
}

void Tab(TSourceView& view) {
    constexpr int tabSize = 8;
    view.DeleteBlock();
    const int width = tabSize - (view.Cursor().Col - 1) % tabSize;
    view.TypeText(std::string(static_cast<std::size_t>(width), ' '));
}

struct TEditKey {
    TShortCut Key;
    void (*Run)(TSourceView& view);
};

constexpr TEditKey EditKeys[] = {
    {VK_BACK, BackSpace},
    {VK_DELETE, Delete},
    {VK_RETURN, [](TSourceView& view) { view.TypeText("\n"); }},
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

} // namespace

bool PressEditorKey(TSourceView& view, TShortCut key) {
    if (!MoveByKey(view, key) && !EditByKey(view, key)) return false;
    view.ScrollIntoView();
    return true;
}

} // namespace tarn
