#pragma once

#include "SpcEditorTypes.h"

#include <memory>
#include <string_view>
#include <vector>

namespace tarn {

/// The characters that a numeric field takes.
enum TPropFlag : std::uint8_t { pfNone, pfInteger, pfFloat };

/// Which characters the numeric fields take, by their numbers. The separators are those of the
/// locale at the time when the filter is made. A kept quirk: the character of a keyboard cut is not
/// among them, and the thousands separator is, which the conversion then refuses.
class TKeyFilter {
public:
    TKeyFilter();

    bool Accepts(TPropFlag flag, char32_t c) const;
    bool AcceptsAll(TPropFlag flag, std::string_view text) const;

private:
    std::u32string FSeparators;
};

/// How wide a row's control is, and whether the label stands at the middle of its height.
struct TRowParams {
    int Width = 0;        ///< in pixels, or percent of the control area's width
    bool Percent = false; ///< 0 to 100
    bool HasWidth = false;
    bool CentredLabel = true;
};

/// One row of the editor: a property and the control that edits it. It belongs to the editor's
/// control list.
class TControlInfo {
public:
    TControlInfo() = default;
    TControlInfo(const TControlInfo&) = delete;
    TControlInfo& operator=(const TControlInfo&) = delete;

    /// The editor kind, or a kind of a derived editor.
    std::int32_t GetETag() const { return FETag; }
    void SetETag(std::int32_t value) {
        if (FETag != value) FETag = value;
    }
    /// 0 for a control of the editor itself; a derived editor and a BeforeCreateControl handler
    /// give their own numbers.
    std::int32_t NativeMarker = 0;
    bool IsNativeControl(std::int32_t n) const { return NativeMarker == n; }

    /// The row frees it. Who does that himself, in OnDropControl, leaves null here.
    TControl* EControl = nullptr;
    TObject* EModifyObject = nullptr; ///< whose change notifications mean this row
    TWeak<TPersistent> EInstance;     ///< whose property is edited; null once it is freed
    TWeak<TPersistent> NodeObject;    ///< that of the row's node: the instance, or what wraps it
    int PropIndex = -1;               ///< in the instance's list of properties
    const TPropInfo* EPropInfo = nullptr;
    bool Modified = false;  ///< the control has reported a change
    bool Disabled = false;  ///< the editor has disabled the control
    bool WasEnabled = true; ///< before that
    bool Dropped = false;   ///< taken off; it is freed when nobody goes through the rows any more

    TLabel* Label = nullptr;
    TRowParams Params;

    /// Has a numeric field refuse other characters, typed or pasted. The filter must outlive the
    /// row.
    void InstallKeyFilter(TPropFlag flag, const TKeyFilter& filter);
    TPropFlag CharFilter() const { return FCharFilter; }

private:
    void ControlWndProc(TMessage& message);
    bool Refuses(const TMessage& message) const;

    std::int32_t FETag = 0;
    TPropFlag FCharFilter = pfNone;
    const TKeyFilter* FKeyFilter = nullptr;
    TWndMethod FPrevWndProc;
};

/// The rows on show, in display order. Both searches halve an order of their own, which is made
/// anew after rows have come or gone.
class TControlList {
public:
    int Count() const { return static_cast<int>(FRows.size()); }
    /// The row at a place of the display order; raises EListError outside the list.
    TControlInfo& Get(int index) const;
    TControlInfo& Add(std::unique_ptr<TControlInfo> info);
    /// Takes a row out and hands it to the caller.
    std::unique_ptr<TControlInfo> Take(int index);
    std::vector<std::unique_ptr<TControlInfo>> TakeAll();
    int IndexOf(const TControlInfo& info) const; ///< -1 when it is not here

    /// Makes the orders of the searches, if need be.
    void Sort() const;
    /// The place of a row; a control or object that several rows share gives the first of them.
    bool FindByControl(const TControl* control, int& index) const;
    bool FindByModifyObject(const TObject* object, int& index) const;

private:
    struct TKey {
        const TObject* Object;
        int Index;
    };
    using TOrder = std::vector<TKey>;
    static bool Find(const TOrder& order, const TObject* object, int& index);
    void Changed() { FSorted = false; }

    std::vector<std::unique_ptr<TControlInfo>> FRows;
    mutable TOrder FByControl;
    mutable TOrder FByModifyObject;
    mutable bool FSorted = true;
};

} // namespace tarn
