#include "vcl/TStringGrid.h"

#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {

constinit const TClassRecord TStringGrid::ClassRecord{"TStringGrid", &TControl::ClassRecord,
                                                      CreateObject<TStringGrid>};

void TStringGrid::SetColCount(int value) {
    FColCount = std::max(value, 1);
    for (TRow& row : FRows) row.resize(static_cast<std::size_t>(FColCount));
    StateChanged();
}

void TStringGrid::SetRowCount(int value) {
    const TRow empty(static_cast<std::size_t>(FColCount));
    FRows.resize(static_cast<std::size_t>(std::max(value, 1)), empty);
    SetRow(FRow);
}

void TStringGrid::Check(int col, int row) const {
    if (col < 0 || col >= FColCount) throw EListError(Format(SListIndexError, {col}));
    if (row < 0 || row >= RowCount()) throw EListError(Format(SListIndexError, {row}));
}

const std::string& TStringGrid::Cell(int col, int row) const {
    Check(col, row);
    return FRows[static_cast<std::size_t>(row)][static_cast<std::size_t>(col)];
}

void TStringGrid::SetCell(int col, int row, std::string_view text) {
    Check(col, row);
    FRows[static_cast<std::size_t>(row)][static_cast<std::size_t>(col)] = text;
    StateChanged();
}

void TStringGrid::DeleteRow(int row) {
    Check(0, row);
    if (row == 0) return; // the headings stay
    FRows.erase(FRows.begin() + row);
    SetRow(FRow);
}

void TStringGrid::SetRow(int value) {
    FRow = std::clamp(value, std::min(1, RowCount() - 1), RowCount() - 1);
    StateChanged();
}

} // namespace tarn
