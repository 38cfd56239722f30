#include "Source/TSourceView.h"

#include "Modules/TIdeModule.h"
#include "Services/OtaEditors.h"
#include "Source/TSourceBuffer.h"
#include "TIde.h"
#include "rtl/SysUtils.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace tarn {
namespace {

constexpr std::string_view BreakBytes = "\r\n";

/// The size in bytes of the line break that the text starts with; 0 when it does not.
std::size_t BreakLength(std::string_view text) {
    if (text.starts_with(BreakBytes)) return 2;
    return !text.empty() && BreakBytes.find(text.front()) != BreakBytes.npos ? 1 : 0;
}

/// Calls piece(text, break) for each line of the text; the break of the last one is empty.
template <class F> void ForEachPiece(std::string_view text, F&& piece) {
    for (bool more = true; more;) {
        const std::string_view line = text.substr(0, text.find_first_of(BreakBytes));
        text.remove_prefix(line.size());
        const std::string_view lineBreak = text.substr(0, BreakLength(text));
        text.remove_prefix(lineBreak.size());
        piece(line, lineBreak);
        more = !lineBreak.empty();
    }
}

std::string Indented(std::string_view text, std::string_view indentation) {
    std::string result;
    ForEachPiece(text, [&](std::string_view line, std::string_view lineBreak) {
        result.append(line).append(lineBreak);
        if (!lineBreak.empty()) result += indentation;
    });
    return result;
}

int SaturatedSum(int a, int b) {
    constexpr std::int64_t most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(std::int64_t{a} + b, -most, most));
}

} // namespace

const TEditText& TSourceView::Text() const {
    return FBuffer.Text();
}

// --- The cursor -------------------------------------------------------------------------------

TTextPos TSourceView::Nearest(TTextPos pos) const {
    // One column below the limit leaves room for "the column behind".
    constexpr int lastColumn = std::numeric_limits<int>::max() - 1;
    return {.Row = std::clamp(pos.Row, 1, Text().LineCount()),
            .Col = std::clamp(pos.Col, 1, lastColumn)};
}

bool TSourceView::SetCursor(TTextPos pos) {
    FCursor = Nearest(pos);
    return FCursor == pos;
}

bool TSourceView::MoveTo(TTextPos pos) {
    DropBlock();
    return SetCursor(pos);
}

bool TSourceView::ExtendTo(TTextPos pos) {
    if (!FHasAnchor) {
        FAnchor = FCursor;
        FStyle = btNonInclusive;
        FHasAnchor = true;
    }
    return SetCursor(pos);
}

bool TSourceView::ExtendTo(TTextPos pos, TOTABlockType style) {
    const bool asAsked = ExtendTo(pos);
    FStyle = style;
    return asAsked;
}

bool TSourceView::GoTo(TTextPos pos) {
    const bool asAsked = MoveTo(pos);
    ScrollIntoView();
    return asAsked;
}

char TSourceView::CharAtCursor() const {
    const auto column = static_cast<std::size_t>(FCursor.Col - 1);
    if (column >= Text().LineLength(FCursor.Row)) return '\r';
    return Text().CharAt(Text().LineStart(FCursor.Row) + column);
}

// --- The block --------------------------------------------------------------------------------

void TSourceView::Select(TTextPos from, TTextPos to, TOTABlockType style, bool cursorAtStart) {
    MoveTo(cursorAtStart ? to : from);
    ExtendTo(cursorAtStart ? from : to, style);
    ScrollIntoView();
}

void TSourceView::SelectAll() {
    Select({}, Text().PosAt(Text().Size()));
}

TSourceView::TRange TSourceView::Block() const {
    if (!FHasAnchor) return {FCursor, FCursor};
    TRange block{std::min(FAnchor, FCursor), std::max(FAnchor, FCursor)};
    switch (FStyle) {
    case btColumn: {
        const TColumnBlock columns = ColumnBlock();
        return {columns.From(columns.FirstRow()), columns.To(columns.LastRow())};
    }
    case btLine:
        block.Start.Col = 1;
        if (block.End.Row < Text().LineCount())
            block.End = {.Row = block.End.Row + 1, .Col = 1};
        else
            block.End.Col = static_cast<int>(Text().LineLength(block.End.Row)) + 1;
        break;
    case btInclusive:
        ++block.End.Col;
        break;
    default:
        break;
    }
    return block;
}

TColumnBlock TSourceView::ColumnBlock() const {
    return {Text(), FAnchor, FCursor};
}

bool TSourceView::HasBlock() const {
    if (BlockStyle() == btColumn) return !ColumnBlock().Empty();
    const TRange block = Block();
    return Text().OffsetAt(block.Start) < Text().OffsetAt(block.End);
}

std::string TSourceView::BlockText() const {
    if (!HasBlock()) return {};
    const auto [start, end] = Block();
    const auto between = [this](TTextPos from, TTextPos to) {
        return Text().Text(Text().OffsetAt(from), Text().OffsetAt(to));
    };
    if (BlockStyle() != btColumn) return between(start, end);
    const TColumnBlock columns = ColumnBlock();
    std::string result;
    for (int row = start.Row; row <= end.Row; ++row) {
        if (row > start.Row) result += LineBreak;
        result += between(columns.From(row), columns.To(row));
    }
    return result;
}

// --- Editing ----------------------------------------------------------------------------------

/// The blanks that the line of a place begins with, up to that place.
std::string TSourceView::IndentationAt(TTextPos pos) const {
    const std::size_t start = Text().LineStart(pos.Row);
    const std::size_t end = Text().OffsetAt(pos);
    std::size_t at = start;
    while (at < end && (Text().CharAt(at) == ' ' || Text().CharAt(at) == '\t')) ++at;
    return Text().Text(start, at);
}

void TSourceView::InsertText(std::string_view text) {
    if (FBuffer.AutoIndent && text.find_first_of(BreakBytes) != text.npos)
        Put(Indented(text, IndentationAt(BlockStart())));
    else
        Put(text);
}

void TSourceView::TypeText(std::string_view text) {
    const TSourceBuffer::TEditScope scope(FBuffer);
    ForEachPiece(text, [this](std::string_view line, std::string_view lineBreak) {
        if (!line.empty()) Put(line);
        if (!lineBreak.empty()) InsertText(lineBreak);
    });
    ScrollIntoView();
}

void TSourceView::DeleteBlock() {
    if (!HasBlock()) return DropBlock();
    Put({});
}

void TSourceView::Put(std::string_view text) {
    const TSourceBuffer::TEditScope scope(FBuffer);
    TEditText& store = FBuffer.Text();
    TRange block = Block();
    if (BlockStyle() == btColumn) {
        DeleteColumns();
        block.End = block.Start;
    }
    std::size_t from = store.OffsetAt(block.Start);
    std::size_t to = store.OffsetAt(block.End);
    const auto column = static_cast<std::size_t>(block.Start.Col - 1);
    const std::size_t lineLength = store.LineLength(block.Start.Row);
    if (column > lineLength && !text.empty() && BreakLength(text) == 0)
        from = to = store.Replace(from, to, std::string(column - lineLength, ' '));
    const std::size_t end = store.Replace(from, to, text, brConvert);
    DropBlock();
    SetCursor(text.empty() ? block.Start : store.PosAt(end));
    Scroll(0, 0);
}

void TSourceView::PutColumns(std::string_view text) {
    const TSourceBuffer::TEditScope scope(FBuffer);
    DeleteBlock();
    TEditText& store = FBuffer.Text();
    const auto insert = [&store](TTextPos at, std::string_view line) {
        const std::size_t column = static_cast<std::size_t>(at.Col - 1);
        const std::size_t length = store.LineLength(at.Row);
        const std::string blanks(line.empty() || column < length ? 0 : column - length, ' ');
        const std::size_t offset = store.OffsetAt(at);
        return store.PosAt(store.Replace(offset, offset, blanks + std::string(line)));
    };
    int row = FCursor.Row;
    const int left = SeenAt(store, FCursor);
    int right = left;
    std::vector<TTextPos> ends;
    ForEachPiece(text, [&](std::string_view line, std::string_view) {
        if (row > store.LineCount()) store.Replace(store.Size(), store.Size(), "\n", brConvert);
        const TTextPos at = PosSeenAt(store, row++, left);
        ends.push_back(line.empty() ? at : insert(at, line));
        right = std::max(right, SeenAt(store, ends.back()));
    });
    for (const TTextPos end : ends)
        if (static_cast<std::size_t>(end.Col - 1) < store.LineLength(end.Row))
            insert(end, std::string(static_cast<std::size_t>(right - SeenAt(store, end)), ' '));
    SetCursor(PosSeenAt(store, ends.back().Row, right));
    Scroll(0, 0);
}

void TSourceView::DeleteColumns() {
    TEditText& store = FBuffer.Text();
    const TColumnBlock columns = ColumnBlock();
    for (int row = columns.LastRow(); row >= columns.FirstRow(); --row)
        store.Replace(store.OffsetAt(columns.From(row)), store.OffsetAt(columns.To(row)), {});
}

// --- What is seen -----------------------------------------------------------------------------

void TSourceView::Scroll(int deltaRow, int deltaCol) {
    FTopRow = std::clamp(SaturatedSum(FTopRow, deltaRow), 1, Text().LineCount());
    FLeftColumn = std::max(SaturatedSum(FLeftColumn, deltaCol), 1);
}

void TSourceView::SetHeight(int rows) {
    const bool seen = FCursor.Row >= FTopRow && FCursor.Row <= BottomRow();
    FHeight = std::max(rows, 1);
    if (seen) ScrollIntoView();
}

void TSourceView::ScrollIntoView() {
    const int lowest = std::max(FCursor.Row - FHeight + 1, 1);
    FTopRow = std::clamp(FTopRow, lowest, FCursor.Row);
}

void TSourceView::Paint() {
    ++FPaintCount;
    FBuffer.Module().Ide().EditWindow().Editor().Invalidate();
}

TViewState TSourceView::State() const {
    return {.Cursor = FCursor,
            .BlockStart = FHasAnchor ? FAnchor : TTextPos{},
            .BlockEnd = FHasAnchor ? FCursor : TTextPos{},
            .BlockStyle = FHasAnchor ? FStyle : 0,
            .BlockValid = FHasAnchor};
}

void TSourceView::SetState(const TViewState& state) {
    SetCursor(state.Cursor);
    FAnchor = Nearest(state.BlockStart);
    FStyle = static_cast<TOTABlockType>(state.BlockStyle);
    FHasAnchor = state.BlockValid;
    Scroll(0, 0);
}

TIntf<IOTAEditView> TSourceView::Interface() {
    if (!FInterface) FInterface = MakeEditViewInterface(*this);
    return FInterface;
}

} // namespace tarn
