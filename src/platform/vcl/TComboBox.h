#pragma once

#include "vcl/TControl.h"
#include "vcl/TItemStrings.h"

namespace tarn {

enum TComboBoxStyle : std::uint8_t {
    csDropDown,     ///< a text of its own, for which the list offers some
    csDropDownList, ///< one of the list's lines
};
inline constexpr std::string_view ComboBoxStyleNames[] = {"csDropDown", "csDropDownList"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TComboBoxStyle> = EnumType("TComboBoxStyle",
                                                                 ComboBoxStyleNames);

/// A line of text with a list that drops down. What the program changes does not fire events.
class TComboBox : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TComboBox(TComponent* owner = nullptr);

    /// The lines of the list. The current one keeps its place while others come and go; when it
    /// goes, the text stays, but that of a csDropDownList is empty then.
    TStrings& Items() { return FItems; }
    TStrings* ItemsObject() const; ///< published as "Items"

    /// In a csDropDownList the first line of that text becomes the current one; a text that no line
    /// has changes nothing. Otherwise no line is current that has another text.
    void SetText(std::string_view value) override;
    int ItemIndex() const { return FItems.Current(); } ///< -1 when no line is current
    /// The text becomes that of the line; an index outside the list gives -1 and no text.
    void SetItemIndex(int value);
    TComboBoxStyle Style() const { return FStyle; }
    void SetStyle(TComboBoxStyle value);

    bool DroppedDown() const { return FDroppedDown; }
    /// Shows the list, after OnDropDown, where the lines may still be changed; false while the
    /// control is disabled or hidden.
    bool DropDown();
    void CloseUp(); ///< hides the list and leaves the text as it is

    /// The user types the text in place of the one that was there. False, and nothing, in a
    /// csDropDownList and while the control is disabled or hidden.
    bool TypeText(std::string_view text);
    /// The user chooses a line, whether the list was dropped down or not, which is hidden then.
    /// OnChange is fired when the text or the line is another one, OnClick in any case. False for a
    /// line that is not there or while the control is disabled or hidden.
    bool Choose(int index);

    /// Enter and Esc belong to a list that is dropped down.
    bool WantsKey(TShortCut key) const override;

    TNotifyEvent OnChange; ///< the user has typed or chosen another text
    TNotifyEvent OnClick;  ///< the user has chosen a line
    TNotifyEvent OnDropDown;

private:
    void ItemsChanged(TObject*);
    void Change(int index, std::string_view text);

    TItemStrings FItems;
    TComboBoxStyle FStyle = csDropDown;
    bool FDroppedDown = false;
};

} // namespace tarn
