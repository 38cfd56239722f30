#pragma once

#include "rtl/TStrings.h"

namespace tarn {

/// The lines of a list control: each may be selected and may be checked, one is the current one and
/// one the anchor from which ranges are selected. All of that goes with its line when lines are
/// inserted, deleted, moved or exchanged, and is gone after Clear, and so after Assign and
/// SetTextStr.
class TItemStrings : public TStrings {
public:
    int Count() const override { return FItems.Count(); }
    const std::string& Get(int index) const override { return At(index).Text; }
    void Put(int index, std::string_view s) override;
    TObject* GetObject(int index) const override { return At(index).Object; }
    void PutObject(int index, TObject* object) override;
    void InsertObject(int index, std::string_view s, TObject* object) override;
    void Delete(int index) override;
    void Clear() override;
    void Exchange(int index1, int index2) override;
    void Move(int curIndex, int newIndex) override;

    // What follows reports no change: who has made several calls Changed.
    bool Has(int index) const { return index >= 0 && index < Count(); }
    int Current() const { return FCurrent; } ///< -1: none
    void SetCurrent(int index) { FCurrent = Has(index) ? index : -1; }
    int Anchor() const { return FAnchor; } ///< -1: none
    void SetAnchor(int index) { FAnchor = Has(index) ? index : -1; }
    bool Selected(int index) const { return At(index).Selected; }
    void Select(int index, bool value);
    void SelectAll(bool value);
    int SelCount() const { return FSelCount; }
    bool Checked(int index) const { return At(index).Checked; }
    void Check(int index, bool value) { At(index).Checked = value; }

    /// Calls OnChange, in an update of the lines at its end.
    void Changed();

    /// Told after each change, or once after an update.
    TNotifyEvent OnChange;

protected:
    void SetUpdateState(bool updating) override;

private:
    struct TItem {
        std::string Text;
        TObject* Object = nullptr;
        bool Selected = false;
        bool Checked = false;
    };

    const TItem& At(int index) const;
    TItem& At(int index) { return const_cast<TItem&>(std::as_const(*this).At(index)); }
    /// Gives the current line and the anchor the index that `newIndex` makes of theirs.
    template <class F> void Renumber(F&& newIndex);

    TChunkedList<TItem> FItems;
    int FCurrent = -1;
    int FAnchor = -1;
    int FSelCount = 0;
};

} // namespace tarn
