#include "vcl/TEdit.h"

#include "vcl/Clipbrd.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr TPropInfo CustomEditProps[] = {
    Published<&TCustomEdit::ReadOnly, &TCustomEdit::SetReadOnly>("ReadOnly", {.Default = false}),
    Published<&TCustomEdit::OnChange>("OnChange"),
};

constexpr TPropInfo EditProps[] = {
    Published<&TControl::Text, &TControl::SetText>("Text"),
};

} // namespace

constinit const TClassRecord TCustomEdit::ClassRecord{"TCustomEdit", &TControl::ClassRecord,
                                                      nullptr, CustomEditProps};
constinit const TClassRecord TEdit::ClassRecord{"TEdit", &TCustomEdit::ClassRecord,
                                                CreateObject<TEdit>, EditProps};

// --- TCustomEdit ------------------------------------------------------------------------------

void TCustomEdit::SetText(std::string_view value) {
    Replace(Kept(value), 0);
}

/// Puts the caret and then stores the text, so that a front end sees both.
void TCustomEdit::Replace(const std::string& text, int caret) {
    if (text == Text()) return Select(caret, 0);
    FSelStart = caret;
    FSelLength = 0;
    Store(text);
    Changed();
}

void TCustomEdit::Changed() {
    if (const TNotifyEvent handler = OnChange) handler(this);
}

void TCustomEdit::SetReadOnly(bool value) {
    FReadOnly = value;
    StateChanged();
}

int TCustomEdit::Place(int offset) const {
    const std::string& text = Text();
    const auto at = static_cast<std::size_t>(offset);
    const bool inBreak = at > 0 && at < text.size() && text[at - 1] == '\r' && text[at] == '\n';
    return inBreak ? offset - 1 : offset;
}

void TCustomEdit::Select(int start, int length) {
    const int size = static_cast<int>(Text().size());
    const int from = std::clamp(start, 0, size);
    FSelStart = Place(from);
    FSelLength = Place(from + std::clamp(length, 0, size - from)) - FSelStart;
    StateChanged();
}

void TCustomEdit::SelectAll() {
    Select(0, static_cast<int>(Text().size()));
}

std::string TCustomEdit::SelText() const {
    return Text().substr(static_cast<std::size_t>(FSelStart), static_cast<std::size_t>(FSelLength));
}

void TCustomEdit::SetSelText(std::string_view value) {
    const std::string kept = Kept(value);
    std::string text = Text();
    text.replace(static_cast<std::size_t>(FSelStart), static_cast<std::size_t>(FSelLength), kept);
    Replace(text, FSelStart + static_cast<int>(kept.size()));
}

void TCustomEdit::CopyToClipboard() const {
    if (FSelLength > 0) Clipboard().SetAsText(SelText());
}

bool TCustomEdit::TypeText(std::string_view text) {
    if (FReadOnly || !CanFocus()) return false;
    SetSelText(Typed(text));
    return true;
}

bool TCustomEdit::CutToClipboard() {
    if (FReadOnly || !CanFocus()) return false;
    CopyToClipboard();
    return TypeText({});
}

bool TCustomEdit::PasteFromClipboard() {
    return Clipboard().HasText() && TypeText(Clipboard().AsText());
}

// --- TEdit ------------------------------------------------------------------------------------

std::string_view TEdit::Typed(std::string_view text) const {
    return text.substr(0, text.find_first_of("\r\n"));
}

} // namespace tarn
