#pragma once

#include "vcl/TControl.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// A grid of texts. The first row holds the headings.
class TStringGrid : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TStringGrid(TComponent* owner = nullptr) : TControl(owner) { SetRowCount(1); }

    int ColCount() const { return FColCount; }
    void SetColCount(int value); ///< at least 1; cells outside are gone
    int RowCount() const { return static_cast<int>(FRows.size()); } ///< the headings included
    void SetRowCount(int value);                                    ///< at least 1
    /// A cell by its 0-based column and row; outside the grid EListError is raised.
    const std::string& Cell(int col, int row) const;
    void SetCell(int col, int row, std::string_view text);
    void DeleteRow(int row);

    /// The selected row, 0 when there is none below the headings.
    int Row() const { return FRow; }
    void SetRow(int value);

private:
    using TRow = std::vector<std::string>;
    void Check(int col, int row) const;

    int FColCount = 2;
    int FRow = 0;
    std::vector<TRow> FRows;
};

} // namespace tarn
