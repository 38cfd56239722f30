#pragma once

#include "Source/Columns.h"
#include "ota/ToolsAPI.h"

namespace tarn {

class TSourceBuffer;

/// The view of a source buffer: cursor, block and scroll position, and the editing that starts
/// from them. A cursor may stand in the virtual space behind the end of its line; text that comes
/// in there, unless it begins with a line break, is preceded by the spaces that are missing.
class TSourceView : public TPersistent {
public:
    explicit TSourceView(TSourceBuffer& buffer) : FBuffer(buffer) {}

    TSourceBuffer& Buffer() const { return FBuffer; }

    // The cursor. A place outside the text becomes the nearest one; the result is false then.
    TTextPos Cursor() const { return FCursor; }
    bool MoveTo(TTextPos pos);   ///< drops the block, does not scroll
    bool ExtendTo(TTextPos pos); ///< moves the cursor's end of the block; begins one where it was
    /// The same, and the block is of that style from then on.
    bool ExtendTo(TTextPos pos, TOTABlockType style);
    /// Moves the cursor as a user does: drops the block and scrolls to the cursor.
    bool GoTo(TTextPos pos);
    /// The character at the cursor; CR at and beyond the end of its line.
    char CharAtCursor() const;

    // The block, between its anchor and the cursor.
    /// Selects as a user does: the cursor ends at `from` when it is to stand at the start, else at
    /// `to`, and is scrolled into view.
    void Select(TTextPos from, TTextPos to, TOTABlockType style = btNonInclusive,
                bool cursorAtStart = false);
    void SelectAll();
    void DropBlock() { FHasAnchor = false; }
    TOTABlockType BlockStyle() const { return FHasAnchor ? FStyle : btNonInclusive; }
    bool HasBlock() const; ///< whether there is a block that is not empty
    /// The first place of the block and the place behind its last character, in a column block the
    /// corners at the top left and the bottom right; the cursor's place when there is no block.
    TTextPos BlockStart() const { return Block().Start; }
    TTextPos BlockEnd() const { return Block().End; }
    /// The bytes of the block; the lines of a column block are joined by CR LF.
    std::string BlockText() const;
    /// What a column block is in each of its rows.
    TColumnBlock ColumnBlock() const;

    // Editing. Each call outside a command is one undo step.
    /// Replaces the block, or inserts at the cursor. Line breaks take the form that prevails; while
    /// the buffer indents by itself each is followed by the indentation of the line at the place.
    void InsertText(std::string_view text);
    /// The same without any indentation.
    void Put(std::string_view text);
    /// Replaces the block, or inserts, as a column block: each line at the place where the cursor
    /// is seen, in its row and those below it, which are added where the text has none. What stands
    /// behind the lines stays in one column.
    void PutColumns(std::string_view text);
    /// Inserts as if typed: a line break is the Enter key, whose line indents as the one before it.
    void TypeText(std::string_view text);
    void DeleteBlock();

    // What is seen of the text.
    int Height() const { return FHeight; } ///< rows, at least 1
    /// Told by whoever shows the view. A cursor that was seen still is.
    void SetHeight(int rows);
    int TopRow() const { return FTopRow; }
    int BottomRow() const { return FTopRow + FHeight - 1; } ///< also behind the end of the text
    int LeftColumn() const { return FLeftColumn; }
    void Scroll(int deltaRow, int deltaCol); ///< keeps the top row in the text
    void ScrollIntoView();                   ///< to the cursor, by as little as possible
    void Paint();                            ///< has the editor repainted
    int PaintCount() const { return FPaintCount; }

    /// Cursor and block as an undo step keeps them.
    TViewState State() const;
    void SetState(const TViewState& state);

    TIntf<IOTAEditView> Interface();

private:
    struct TRange {
        TTextPos Start;
        TTextPos End;
    };

    const TEditText& Text() const;
    TRange Block() const;
    TTextPos Nearest(TTextPos pos) const;
    bool SetCursor(TTextPos pos);
    std::string IndentationAt(TTextPos pos) const;
    void DeleteColumns();

    TSourceBuffer& FBuffer;
    TTextPos FCursor;
    TTextPos FAnchor;
    TOTABlockType FStyle = btNonInclusive;
    bool FHasAnchor = false;
    int FHeight = 25;
    int FTopRow = 1;
    int FLeftColumn = 1;
    int FPaintCount = 0;
    TIntf<IOTAEditView> FInterface;
};

} // namespace tarn
