#pragma once

#include "vcl/TControl.h"
#include "vcl/TItemStrings.h"

#include <algorithm>

namespace tarn {

enum TDragMode : std::uint8_t { dmManual, dmAutomatic };
inline constexpr std::string_view DragModeNames[] = {"dmManual", "dmAutomatic"};
template <> inline constexpr TTypeInfo TypeInfoOf<TDragMode> = EnumType("TDragMode", DragModeNames);

enum TListBoxStyle : std::uint8_t {
    lbStandard,
    lbOwnerDrawFixed,   ///< a front end may draw the lines by itself, all of one height
    lbOwnerDrawVariable ///< or of a height each
};
inline constexpr std::string_view ListBoxStyleNames[] = {"lbStandard", "lbOwnerDrawFixed",
                                                         "lbOwnerDrawVariable"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TListBoxStyle> = EnumType("TListBoxStyle", ListBoxStyleNames);

/// Whether `source` may be dropped on the sender's line; `index` is Count behind the last line.
/// `accept` is false before.
using TDragOverEvent = TMethod<void(TObject* sender, TObject* source, int index, bool& accept)>;
using TDragDropEvent = TMethod<void(TObject* sender, TObject* source, int index)>;

/// A list of lines with a companion object each, of which one is selected, or with MultiSelect any.
/// An index outside the lines raises EStringListError where nothing else is said.
class TListBox : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TListBox(TComponent* owner = nullptr);

    /// The lines. Between their BeginUpdate and EndUpdate changes of the selection are not reported
    /// either. What happens to the selection with them: see TItemStrings.
    TStrings& Items() { return FItems; }
    TStrings* ItemsObject() const; ///< published as "Items"
    int Count() const { return FItems.Count(); }

    /// The current line, -1 when there is none: without MultiSelect the selected one, else the one
    /// that was clicked or set last.
    int ItemIndex() const { return FItems.Current(); }
    /// An index outside the lines gives -1. With MultiSelect the selection stays as it is.
    void SetItemIndex(int value);

    bool MultiSelect() const { return FMultiSelect; }
    /// Either way the current line is what is selected then, when it was.
    void SetMultiSelect(bool value);
    bool Selected(int index) const;
    void SetSelected(int index, bool value);
    int SelCount() const; ///< lines that are selected, in both modes
    void ClearSelection();
    void SelectAll(); ///< nothing without MultiSelect

    TListBoxStyle Style() const { return FStyle; }
    void SetStyle(TListBoxStyle value);
    /// In how many columns the lines are shown side by side; 0, the least, for one that scrolls
    /// down.
    int Columns() const { return FColumns; }
    void SetColumns(int value);
    /// Whether a front end shows as many whole lines as the height has room for, and no part of
    /// one.
    bool IntegralHeight() const { return FIntegralHeight; }
    void SetIntegralHeight(bool value);
    /// The first line that is shown; 0 in an empty list. An index outside the lines goes to the
    /// nearest one.
    int TopIndex() const { return std::clamp(FTopIndex, 0, std::max(Count() - 1, 0)); }
    void SetTopIndex(int value);

    /// Clicks a line as a user does, which takes the focus. With MultiSelect, Ctrl turns the line's
    /// selection over; Shift selects the lines from the one that was clicked last without Shift;
    /// both together add those to what is selected. False, and nothing, for a line that is not
    /// there or while the list is disabled or hidden.
    bool ClickItem(int index, TShiftState shift = {});
    bool DblClickItem(int index); ///< a click, then OnDblClick

    /// Whether a front end and DragItems begin to drag by themselves.
    TDragMode DragMode = dmManual;
    /// Drags the line, with all that are selected when it is one of them, onto another line of this
    /// list, or behind the last: OnDragOver, and OnDragDrop when that has accepted; moving lines is
    /// up to the handler. False when nothing was dropped.
    bool DragItems(int from, int to);

    TNotifyEvent OnClick;
    TNotifyEvent OnDblClick;
    TDragOverEvent OnDragOver;
    TDragDropEvent OnDragDrop;

protected:
    TItemStrings& Lines() { return FItems; }
    const TItemStrings& Lines() const { return FItems; }

private:
    bool CanClick(int index) const { return CanFocus() && FItems.Has(index); }
    void ItemsChanged(TObject*) { StateChanged(); }
    void ClickMany(int index, TShiftState shift);

    TItemStrings FItems;
    bool FMultiSelect = false;
    bool FIntegralHeight = false;
    TListBoxStyle FStyle = lbStandard;
    int FColumns = 0;
    int FTopIndex = 0;
};

} // namespace tarn
