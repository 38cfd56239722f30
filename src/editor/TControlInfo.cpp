#include "TControlInfo.h"

#include "rtl/FormatSettings.h"
#include "rtl/SysUtils.h"
#include "vcl/Clipbrd.h"
#include "vcl/TEdit.h"

#include <algorithm>
#include <functional>

namespace tarn {

// --- The key filter ---------------------------------------------------------------------------

namespace {

constexpr char32_t KeyCopy = 3, KeyBack = 8, KeyPaste = 22, KeyUndo = 26, KeyEscape = 27;

std::u32string CodePoints(std::string_view text) {
    std::u32string result;
    for (const char16_t unit : Utf8ToUtf16(text)) {
        if (unit >= 0xDC00 && unit < 0xE000 && !result.empty() && result.back() >= 0xD800 &&
            result.back() < 0xDC00)
            result.back() = 0x10000 + ((result.back() - 0xD800) << 10) + (unit - 0xDC00);
        else
            result += unit;
    }
    return result;
}

bool IsIntegerKey(char32_t c) {
    return (c >= U'0' && c <= U'9') || c == U'-' || c == KeyCopy || c == KeyBack || c == KeyPaste ||
           c == KeyUndo || c == KeyEscape;
}

} // namespace

TKeyFilter::TKeyFilter()
    : FSeparators(CodePoints(FormatSettings().DecimalSeparator) +
                  CodePoints(FormatSettings().ThousandSeparator)) {}

bool TKeyFilter::Accepts(TPropFlag flag, char32_t c) const {
    if (flag == pfNone || IsIntegerKey(c)) return true;
    return flag == pfFloat &&
           (c == U'E' || c == U'e' || FSeparators.find(c) != std::u32string::npos);
}

bool TKeyFilter::AcceptsAll(TPropFlag flag, std::string_view text) const {
    const std::u32string points = CodePoints(text);
    return std::all_of(points.begin(), points.end(), [&](char32_t c) { return Accepts(flag, c); });
}

void TControlInfo::InstallKeyFilter(TPropFlag flag, const TKeyFilter& filter) {
    FCharFilter = flag;
    FKeyFilter = &filter;
    FPrevWndProc = EControl->WindowProc();
    EControl->SetWindowProc(TWndMethod::Of<&TControlInfo::ControlWndProc>(this));
}

bool TControlInfo::Refuses(const TMessage& message) const {
    if (message.Msg == WM_CHAR)
        return !FKeyFilter->Accepts(FCharFilter, static_cast<char32_t>(message.WParam));
    return message.Msg == WM_PASTE && !FKeyFilter->AcceptsAll(FCharFilter, Clipboard().AsText());
}

void TControlInfo::ControlWndProc(TMessage& message) {
    if (Refuses(message))
        OS().MessageBeep();
    else
        FPrevWndProc(message);
}

// --- The list ---------------------------------------------------------------------------------

TControlInfo& TControlList::Get(int index) const {
    if (index < 0 || index >= Count()) throw EListError(Format(SListIndexError, {index}));
    return *FRows[static_cast<std::size_t>(index)];
}

TControlInfo& TControlList::Add(std::unique_ptr<TControlInfo> info) {
    Changed();
    return *FRows.emplace_back(std::move(info));
}

std::unique_ptr<TControlInfo> TControlList::Take(int index) {
    (void)Get(index);
    Changed();
    const auto at = FRows.begin() + index;
    std::unique_ptr<TControlInfo> info = std::move(*at);
    FRows.erase(at);
    return info;
}

std::vector<std::unique_ptr<TControlInfo>> TControlList::TakeAll() {
    Changed();
    return std::exchange(FRows, {});
}

int TControlList::IndexOf(const TControlInfo& info) const {
    for (int i = 0; i < Count(); ++i)
        if (FRows[static_cast<std::size_t>(i)].get() == &info) return i;
    return -1;
}

void TControlList::Sort() const {
    if (FSorted) return;
    FByControl.clear();
    FByModifyObject.clear();
    for (int i = 0; i < Count(); ++i) {
        FByControl.push_back({Get(i).EControl, i});
        FByModifyObject.push_back({Get(i).EModifyObject, i});
    }
    // Rows that share an object stay in display order.
    const auto before = [](const TKey& a, const TKey& b) {
        return std::less<>()(a.Object, b.Object);
    };
    std::stable_sort(FByControl.begin(), FByControl.end(), before);
    std::stable_sort(FByModifyObject.begin(), FByModifyObject.end(), before);
    FSorted = true;
}

bool TControlList::Find(const TOrder& order, const TObject* object, int& index) {
    const auto found = std::lower_bound(
        order.begin(), order.end(), object,
        [](const TKey& key, const TObject* wanted) { return std::less<>()(key.Object, wanted); });
    if (found == order.end() || found->Object != object) return false;
    index = found->Index;
    return true;
}

bool TControlList::FindByControl(const TControl* control, int& index) const {
    Sort();
    return Find(FByControl, control, index);
}

bool TControlList::FindByModifyObject(const TObject* object, int& index) const {
    Sort();
    return Find(FByModifyObject, object, index);
}

} // namespace tarn
