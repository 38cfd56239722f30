#pragma once

#include "vcl/TControl.h"

#include <optional>

namespace tarn {

/// A key has given a character; WParam is its code point, that of a control character for a key
/// such as Backspace, or RawByteCode and a byte.
inline constexpr std::uint32_t WM_CHAR = 0x102;
// What an edit does with its selection and its last change.
inline constexpr std::uint32_t WM_CUT = 0x300, WM_COPY = 0x301, WM_PASTE = 0x302, WM_CLEAR = 0x303,
                               WM_UNDO = 0x304;

/// A byte of 128 to 255 that is no part of UTF-8 is typed as this code and the byte: 0xDC80 to
/// 0xDCFF, which are no characters. So any bytes that are typed arrive as they are.
inline constexpr char32_t RawByteCode = 0xDC00;

/// A text that the user can edit and select. Places are offsets in bytes of Text, from 0; none lies
/// inside a line break CR LF.
///
/// What the user does goes through the window procedure as messages, typing character by character:
/// one that takes its place can filter it. The messages themselves ask whether the control is
/// read-only alone.
class TCustomEdit : public TControl {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TCustomEdit(TComponent* owner = nullptr) : TControl(owner) {}

    /// Another text puts the caret before it.
    void SetText(std::string_view value) override;
    bool ReadOnly() const { return FReadOnly; }
    void SetReadOnly(bool value);
    /// The characters that the user can make the text have, a line break counting two; 0 is no
    /// limit. What is typed or pasted beyond is left out with a beep; a text of the program's may
    /// be longer.
    int MaxLength() const { return FMaxLength; }
    void SetMaxLength(int value);

    /// The selection, which is the caret's place when its length is 0. What lies outside the text
    /// is cut off.
    int SelStart() const { return FSelStart; }
    void SetSelStart(int value) { Select(value, 0); }
    int SelLength() const { return FSelLength; }
    void SetSelLength(int value) { Select(FSelStart, value); }
    void Select(int start, int length);
    void SelectAll();
    std::string SelText() const;
    /// Puts the text in place of the selection and the caret behind it.
    void SetSelText(std::string_view value);

    void CopyToClipboard() const; ///< the selection; nothing when there is none

    /// Whether there is a change of the user's to take back. One of the program's ends that.
    bool CanUndo() const { return FUndo.has_value(); }

    // What the user does. False, and nothing, while the control is read-only, disabled or hidden.
    /// Types the text in place of the selection; an empty one deletes that. Line breaks are the
    /// Enter key, other control characters the keys that give them, see KeyPress.
    bool TypeText(std::string_view text);
    /// Presses the key of a character: 8 deletes the selection or the character before the caret,
    /// 13 breaks the line of a memo, 3, 22, 24 and 26 copy, paste, cut and undo; other control
    /// characters do nothing. To copy, the control may be read-only.
    bool KeyPress(char32_t key);
    bool CutToClipboard();
    bool PasteFromClipboard(); ///< false also when there is no text to paste
    /// Takes the last change back, or does it again when that was the last; characters that were
    /// typed or deleted one behind the other are one change. False also when there is none.
    bool Undo();
    bool DblClick(); ///< false while the control is disabled or hidden

    TNotifyEvent OnChange;   ///< the text has changed, by the user or by the program
    TNotifyEvent OnDblClick; ///< the user has clicked the control twice

protected:
    void WndProc(TMessage& message) override;
    /// The text as the control keeps it.
    virtual std::string Kept(std::string_view text) const { return std::string(text); }
    /// The part of a text that can be typed.
    virtual std::string_view Typed(std::string_view text) const { return text; }
    /// What Enter types.
    virtual std::string_view EnterText() const { return {}; }
    /// Keeps a text, which differs from the one that there is, and tells the front end.
    virtual void Store(const std::string& text) { TControl::SetText(text); }
    /// The text has become another one: nothing is selected, nothing can be taken back.
    void ForgetEditing();
    void Changed();

private:
    /// How a change of the user's came about: those of a kind in a row are taken back together.
    enum TStep : std::uint8_t { stTyped, stDeleted, stOther };
    struct TState {
        std::string Text;
        int SelStart, SelLength;
    };

    bool CanEdit() const { return !FReadOnly && CanFocus(); }
    /// The offset, or that of the break in which it lies.
    int Place(int offset) const;
    std::string WithSelection(std::string_view replaced) const;
    void Replace(const std::string& text, int caret);
    void HandleChar(char32_t key);
    void Insert(std::string_view text, TStep step);
    void Edit(std::string_view text, TStep step);
    std::string_view Fitting(std::string_view text) const;
    void DeleteBackwards();
    bool SwapUndo();

    bool FReadOnly = false;
    int FMaxLength = 0;
    int FSelStart = 0;
    int FSelLength = 0;
    std::optional<TState> FUndo; ///< before the last change of the user's
    TStep FStep = stOther;       ///< how that was made, until the caret is put elsewhere
};

/// A line of text. Of what is typed or pasted, the first line is taken.
class TEdit : public TCustomEdit {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    using TCustomEdit::TCustomEdit;

protected:
    std::string_view Typed(std::string_view text) const override;
};

} // namespace tarn
