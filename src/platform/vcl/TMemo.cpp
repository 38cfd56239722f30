#include "vcl/TMemo.h"

#include "rtl/SysUtils.h"
#include "streaming/TFiler.h"

namespace tarn {
namespace {

constexpr TPropInfo MemoProps[] = {
    Published<&TMemo::LinesObject>("Lines"),
    Published<&TMemo::ScrollBars, &TMemo::SetScrollBars>("ScrollBars", {.Default = ssNone}),
    Published<&TMemo::WordWrap, &TMemo::SetWordWrap>("WordWrap", {.Default = true}),
};

} // namespace

constinit const TClassRecord TMemo::ClassRecord{"TMemo", &TCustomEdit::ClassRecord,
                                                CreateObject<TMemo>, MemoProps};

TMemo::TMemo(TComponent* owner) : TCustomEdit(owner) {
    FLines.OnChange = TNotifyEvent::Of<&TMemo::LinesChanged>(this);
}

TStrings* TMemo::LinesObject() const {
    return &const_cast<TMemo*>(this)->FLines;
}

const std::string& TMemo::Text() const {
    if (!FTextKnown) FText = FLines.GetTextStr();
    FTextKnown = true;
    return FText;
}

std::string TMemo::Kept(std::string_view text) const {
    std::string kept;
    kept.reserve(text.size());
    ForEachLine(text, [&kept](std::string_view line) { kept.append(line).append(LineBreak); });
    const bool open = !text.empty() && text.back() != '\r' && text.back() != '\n';
    if (open) kept.resize(kept.size() - LineBreak.size());
    return kept;
}

void TMemo::Store(const std::string& text) {
    {
        const TScopedValue storing(FStoring, true);
        FLines.SetTextStr(text);
    }
    FText = text;
    FTextKnown = true;
    StateChanged();
}

std::string_view TMemo::EnterText() const {
    return LineBreak;
}

void TMemo::LinesChanged(TObject*) {
    if (FStoring) return;
    FTextKnown = false;
    ForgetEditing();
    StateChanged();
    Changed();
}

void TMemo::SetWordWrap(bool value) {
    FWordWrap = value;
    StateChanged();
}

void TMemo::SetScrollBars(TScrollStyle value) {
    FScrollBars = value;
    StateChanged();
}

} // namespace tarn
