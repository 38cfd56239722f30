#pragma once

#include "rtl/TObject.h"
#include "rtl/TStrings.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// A line of the unit list.
struct TUnitLine {
    std::string Caption;
    int Tab = 0;                  ///< the index of the editor's tab that it stands for
    TObject* Companion = nullptr; ///< what tells the unit from others; never looked into
    bool Selected = false;
};
using TUnitLines = std::vector<TUnitLine>;

/// A line for each tab, in the order of the tabs.
TUnitLines LinesOfTabs(const TStrings& tabs);

/// Keeps the lines whose caption contains the text, whatever the case of both.
void FilterLines(TUnitLines& lines, std::string_view text);

/// Sorts the lines by their captions, as the IDE orders texts without case; the first line of equal
/// ones stays first, and comes last when the order is turned round.
void SortLines(TUnitLines& lines, bool descending);

/// Moves the selected lines by one place, up when `up`, else down. Lines at the end stay there, and
/// so do selected ones that stand right behind them: a block never passes over itself, and no line
/// moves by more than one place but those that the selected ones pass.
/// \return whether anything has moved
bool MoveLines(TUnitLines& lines, bool up);

/// Puts the selected lines together, in their order, in front of the line `to` or, when that is the
/// number of lines, at the end; in front of a selected line, they gather around it.
void DropLines(TUnitLines& lines, int to);

/// Brings the lines up to date with the tabs, which others may have changed: each stands for the
/// tab of its unit, in the same order of lines. A unit is known by its companion and its caption;
/// lines whose unit is gone are dropped. No two lines stand for one tab.
void FollowTabs(TUnitLines& lines, const TStrings& tabs);

/// Gives the tabs the order of the lines. Units that the lines do not show keep their places: the
/// lines are put, in their order, into the places that they have between them. Then each line
/// stands for its new tab. \return the new tabs' old indexes, in their order
std::vector<int> OrderTabs(TUnitLines& lines, int tabCount);

/// Puts a filter at the top of the history, unless it is there already in any case; then the last
/// entry goes when there are more than `limit`. With a limit below 1 the history is empty.
void SaveHistory(TStrings& history, std::string_view text, int limit);

} // namespace tarn
