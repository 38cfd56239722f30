#include "vcl/TEdit.h"

#include "rtl/SysUtils.h"
#include "rtl/Unicode.h"
#include "vcl/Clipbrd.h"

#include <algorithm>

namespace tarn {
namespace {

constexpr TPropInfo CustomEditProps[] = {
    Published<&TCustomEdit::MaxLength, &TCustomEdit::SetMaxLength>("MaxLength", {.Default = 0}),
    Published<&TCustomEdit::ReadOnly, &TCustomEdit::SetReadOnly>("ReadOnly", {.Default = false}),
    Published<&TCustomEdit::OnChange>("OnChange"),
    Published<&TCustomEdit::OnDblClick>("OnDblClick"),
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
    ForgetEditing();
    FSelStart = caret;
    Store(text);
    Changed();
}

void TCustomEdit::ForgetEditing() {
    FSelStart = FSelLength = 0;
    FUndo.reset();
}

void TCustomEdit::Changed() {
    if (const TNotifyEvent handler = OnChange) handler(this);
}

void TCustomEdit::SetReadOnly(bool value) {
    FReadOnly = value;
    StateChanged();
}

void TCustomEdit::SetMaxLength(int value) {
    FMaxLength = std::max(value, 0);
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
    FStep = stOther;
    StateChanged();
}

void TCustomEdit::SelectAll() {
    Select(0, static_cast<int>(Text().size()));
}

std::string TCustomEdit::SelText() const {
    return Text().substr(static_cast<std::size_t>(FSelStart), static_cast<std::size_t>(FSelLength));
}

/// The text with another one in place of the selection.
std::string TCustomEdit::WithSelection(std::string_view replaced) const {
    std::string text = Text();
    text.replace(static_cast<std::size_t>(FSelStart), static_cast<std::size_t>(FSelLength),
                 replaced);
    return text;
}

void TCustomEdit::SetSelText(std::string_view value) {
    const std::string kept = Kept(value);
    Replace(WithSelection(kept), FSelStart + static_cast<int>(kept.size()));
}

void TCustomEdit::CopyToClipboard() const {
    if (FSelLength > 0) Clipboard().SetAsText(SelText());
}

// --- The user ---------------------------------------------------------------------------------

namespace {

// The control characters that have a meaning, by the key that gives them.
constexpr char32_t KeyCtrlC = 3, KeyBackspace = 8, KeyEnter = 13, KeyCtrlV = 22, KeyCtrlX = 24,
                   KeyCtrlZ = 26, FirstPrintable = 32, KeyCtrlBackspace = 127;

bool IsSurrogate(char32_t code) {
    return code >= 0xD800 && code <= 0xDFFF;
}

/// Takes the next key to be typed off the front of a text.
char32_t TakeKey(std::string_view& text) {
    if (text.front() == '\r' || text.front() == '\n') {
        text.remove_prefix(text.starts_with(LineBreak) ? 2 : 1);
        return KeyEnter;
    }
    const std::string_view before = text;
    const char32_t code = TakeUtf8(text);
    const bool oneByte = text.size() + 1 == before.size();
    if (!IsSurrogate(code) && !(oneByte && code > 127)) return code;
    text = before.substr(1);
    return RawByteCode + static_cast<unsigned char>(before.front());
}

/// What the key of a character adds to a text; nothing for the other keys.
std::string CharText(char32_t code) {
    constexpr char32_t lastCharacter = 0x10FFFF;
    std::string text;
    if (code >= RawByteCode + 128 && code <= RawByteCode + 255)
        text = static_cast<char>(code - RawByteCode);
    else if (code >= FirstPrintable && code != KeyCtrlBackspace && !IsSurrogate(code) &&
             code <= lastCharacter)
        AppendUtf8(text, code);
    return text;
}

/// The bytes of the last character of a text, which is not empty; a break CR LF is one.
std::size_t LastCharSize(std::string_view text) {
    if (text.ends_with(LineBreak)) return 2;
    for (std::size_t size = std::min<std::size_t>(text.size(), 4); size > 1; --size) {
        std::string_view last = text.substr(text.size() - size);
        TakeUtf8(last);
        if (last.empty()) return size;
    }
    return 1;
}

} // namespace

bool TCustomEdit::TypeText(std::string_view text) {
    if (!CanEdit()) return false;
    const std::string typed(Typed(text)); // it may be the control's own
    const TWeak<TCustomEdit> alive(this);
    if (typed.empty()) Perform(WM_CLEAR);
    for (std::string_view rest = typed; alive && !rest.empty();) Perform(WM_CHAR, TakeKey(rest));
    return true;
}

bool TCustomEdit::KeyPress(char32_t key) {
    if (!CanFocus() || (FReadOnly && key != KeyCtrlC)) return false;
    Perform(WM_CHAR, static_cast<std::intptr_t>(key));
    return true;
}

bool TCustomEdit::CutToClipboard() {
    if (!CanEdit()) return false;
    Perform(WM_CUT);
    return true;
}

bool TCustomEdit::PasteFromClipboard() {
    if (!CanEdit() || !Clipboard().HasText()) return false;
    Perform(WM_PASTE);
    return true;
}

bool TCustomEdit::Undo() {
    return CanEdit() && CanUndo() && Perform(WM_UNDO) != 0;
}

bool TCustomEdit::DblClick() {
    if (!CanFocus()) return false;
    if (const TNotifyEvent handler = OnDblClick) handler(this);
    return true;
}

// --- Messages ---------------------------------------------------------------------------------

void TCustomEdit::WndProc(TMessage& message) {
    switch (message.Msg) {
    case WM_CHAR:
        return HandleChar(static_cast<char32_t>(message.WParam));
    case WM_COPY:
        return CopyToClipboard();
    case WM_CUT:
        if (!FReadOnly) CopyToClipboard();
        return Edit({}, stOther);
    case WM_CLEAR:
        return Edit({}, stOther);
    case WM_PASTE:
        return Insert(Kept(Typed(Clipboard().AsText())), stOther);
    case WM_UNDO:
        message.Result = SwapUndo();
        return;
    default:
        TControl::WndProc(message);
    }
}

void TCustomEdit::HandleChar(char32_t key) {
    switch (key) {
    case KeyBackspace:
        return DeleteBackwards();
    case KeyEnter:
        return Insert(EnterText(), stTyped);
    case KeyCtrlC:
        return (void)Perform(WM_COPY);
    case KeyCtrlV:
        return (void)Perform(WM_PASTE);
    case KeyCtrlX:
        return (void)Perform(WM_CUT);
    case KeyCtrlZ:
        return (void)Perform(WM_UNDO);
    default:
        return Insert(CharText(key), stTyped);
    }
}

/// The front part of a text for which there is room in place of the selection.
std::string_view TCustomEdit::Fitting(std::string_view text) const {
    if (FMaxLength == 0) return text;
    const auto take = [](std::string_view& rest, int most) {
        int taken = 0;
        for (; taken < most && !rest.empty(); ++taken) TakeUtf8(rest);
        return taken;
    };
    const std::string others = WithSelection({});
    std::string_view all = others, rest = text;
    take(rest, FMaxLength - take(all, FMaxLength));
    std::string_view fitting = text.substr(0, text.size() - rest.size());
    if (fitting.ends_with('\r') && rest.starts_with('\n')) fitting.remove_suffix(1);
    return fitting;
}

void TCustomEdit::Insert(std::string_view text, TStep step) {
    if (FReadOnly || text.empty()) return;
    const std::string_view fitting = Fitting(text);
    const bool tooLong = fitting.size() < text.size();
    if (tooLong) OS().MessageBeep();
    if (!fitting.empty()) Edit(fitting, step);
}

/// Puts a text in place of the selection as the user does, which can be taken back.
void TCustomEdit::Edit(std::string_view text, TStep step) {
    if (FReadOnly) return;
    const std::string edited = WithSelection(text);
    const int caret = FSelStart + static_cast<int>(text.size());
    if (edited == Text()) return Select(caret, 0);
    const bool goesOn = FUndo && step == FStep && step != stOther;
    if (!goesOn) FUndo = TState{Text(), FSelStart, FSelLength};
    FStep = step;
    FSelStart = caret;
    FSelLength = 0;
    Store(edited);
    Changed();
}

void TCustomEdit::DeleteBackwards() {
    if (FReadOnly) return;
    if (FSelLength > 0) return Edit({}, stOther);
    if (FSelStart == 0) return;
    const std::string_view before(Text().data(), static_cast<std::size_t>(FSelStart));
    FSelLength = static_cast<int>(LastCharSize(before));
    FSelStart -= FSelLength;
    Edit({}, stDeleted);
}

/// What was taken back can be taken back in its turn.
bool TCustomEdit::SwapUndo() {
    if (FReadOnly || !FUndo) return false;
    const TState back = std::exchange(*FUndo, TState{Text(), FSelStart, FSelLength});
    FSelStart = back.SelStart;
    FSelLength = back.SelLength;
    FStep = stOther;
    Store(back.Text);
    Changed();
    return true;
}

// --- TEdit ------------------------------------------------------------------------------------

std::string_view TEdit::Typed(std::string_view text) const {
    return text.substr(0, text.find_first_of("\r\n"));
}

} // namespace tarn
