// Mirrors of the fields that a user types into.

#include "Mirrors.h"
#include "QtKeys.h"
#include "TFrontEnd.h"

namespace tarn {
namespace {

// --- Places in a text -------------------------------------------------------------------------

/// The UTF-16 units of the widget in front of a byte of the control's text. A line break CR LF is
/// one unit to the widget.
int WidgetPlace(std::string_view text, int offset) {
    QString before = FromText(text.substr(0, static_cast<std::size_t>(offset)));
    before.replace("\r\n", "\n");
    return static_cast<int>(before.size());
}

int TextPlace(const std::string& text, int place) {
    // Byte by byte the place is found where the widget's text is as long.
    int low = 0, high = static_cast<int>(text.size());
    while (low < high) {
        const int middle = (low + high) / 2;
        if (WidgetPlace(text, middle) < place)
            low = middle + 1;
        else
            high = middle;
    }
    // Not inside a character.
    while (low < static_cast<int>(text.size()) &&
           (text[static_cast<std::size_t>(low)] & 0xC0) == 0x80)
        ++low;
    return low;
}

// --- Keys -------------------------------------------------------------------------------------

/// The keys that an edit knows as characters.
char32_t ControlCharOf(const QKeyEvent& key) {
    struct TRow {
        QKeySequence::StandardKey Key;
        char32_t Char;
    };
    constexpr TRow rows[] = {{QKeySequence::Copy, 3},
                             {QKeySequence::Paste, 22},
                             {QKeySequence::Cut, 24},
                             {QKeySequence::Undo, 26}};
    for (const TRow& row : rows)
        if (key.matches(row.Key)) return row.Char;
    const bool plain = (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == 0;
    if (plain && key.key() == Qt::Key_Backspace) return 8;
    if (plain && (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter)) return 13;
    return 0;
}

/// Deletes the selection, or the character behind the caret.
void DeleteForwards(TCustomEdit& edit) {
    if (edit.SelLength() == 0) {
        const std::string& text = edit.Text();
        auto end = static_cast<std::size_t>(edit.SelStart());
        if (end >= text.size()) return;
        if (text.substr(end, 2) == "\r\n") ++end;
        for (++end; end < text.size() && (text[end] & 0xC0) == 0x80;) ++end;
        edit.SetSelLength(static_cast<int>(end) - edit.SelStart());
    }
    edit.Perform(WM_CLEAR);
}

/// Gives a key to an edit; false for one that moves the caret, which the widget does.
bool PressKey(TFrontEnd& frontEnd, TCustomEdit& edit, const QKeyEvent& key) {
    const char32_t control = ControlCharOf(key);
    if (control == 13 && !edit.WantsKey(VK_RETURN)) return false;
    if (control != 0)
        frontEnd.AsUser([&] { edit.KeyPress(control); });
    else if (key.key() == Qt::Key_Delete && !edit.ReadOnly() && edit.CanFocus())
        frontEnd.AsUser([&] { DeleteForwards(edit); });
    else if (IsTyped(key))
        frontEnd.AsUser([&] { edit.TypeText(ToText(key.text())); });
    else
        return false;
    return true;
}

/// Text that comes from an input method.
bool TakeInput(TFrontEnd& frontEnd, TCustomEdit& edit, const QInputMethodEvent& event) {
    if (event.commitString().isEmpty()) return false;
    frontEnd.AsUser([&] { edit.TypeText(ToText(event.commitString())); });
    return true;
}

void ShowLine(QLineEdit& line, const TCustomEdit& edit) {
    const std::string& text = edit.Text();
    line.setText(FromText(text));
    line.setReadOnly(edit.ReadOnly());
    const int start = WidgetPlace(text, edit.SelStart());
    const int end = WidgetPlace(text, edit.SelStart() + edit.SelLength());
    if (end > start)
        line.setSelection(start, end - start);
    else
        line.setCursorPosition(start);
}

void TakeLineSelection(const QLineEdit& line, TCustomEdit& edit) {
    const std::string text = edit.Text();
    const bool selects = line.hasSelectedText();
    const int start = selects ? line.selectionStart() : line.cursorPosition();
    const int end = selects ? line.selectionEnd() : start;
    const int from = TextPlace(text, start);
    edit.Select(from, TextPlace(text, end) - from);
}

/// What a line edit does with its events; true when it is done.
bool FilterLine(TFrontEnd& frontEnd, TCustomEdit& edit, QLineEdit& line, QEvent& event) {
    switch (event.type()) {
    case QEvent::KeyPress:
        return PressKey(frontEnd, edit, static_cast<QKeyEvent&>(event));
    case QEvent::InputMethod:
        return TakeInput(frontEnd, edit, static_cast<QInputMethodEvent&>(event));
    case QEvent::KeyRelease:
    case QEvent::MouseButtonRelease:
        TakeLineSelection(line, edit);
        return false;
    case QEvent::MouseButtonDblClick:
        frontEnd.AsUser([&] { edit.DblClick(); });
        return false;
    case QEvent::Drop:
    case QEvent::DragEnter:
        return true; // text comes in by keys and the clipboard alone
    default:
        return false;
    }
}

} // namespace

// --- Edits ------------------------------------------------------------------------------------

TEditMirror::TEditMirror(TFrontEnd& frontEnd, TCustomEdit& edit)
    : TMirrorOf(frontEnd, edit, new QLineEdit) {
    View().installEventFilter(this);
    View().setContextMenuPolicy(Qt::NoContextMenu);
}

void TEditMirror::SyncState() {
    ShowLine(View(), Self());
}

bool TEditMirror::eventFilter(QObject*, QEvent* event) {
    return FilterLine(FrontEnd(), Self(), View(), *event);
}

TSpinEditMirror::TSpinEditMirror(TFrontEnd& frontEnd, TSpinEdit& edit)
    : TMirrorOf(frontEnd, edit, new QWidget), FLine(new QLineEdit) {
    auto* const row = new QHBoxLayout(&View());
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(FLine);
    FLine->installEventFilter(this);
    FLine->setContextMenuPolicy(Qt::NoContextMenu);
    View().setFocusProxy(FLine);
    for (const int step : {-1, 1}) {
        auto* const button = new QToolButton;
        button->setArrowType(step < 0 ? Qt::DownArrow : Qt::UpArrow);
        button->setFocusPolicy(Qt::NoFocus);
        button->setAutoRepeat(true);
        button->setFixedWidth(18);
        button->setAccessibleName(step < 0 ? "-" : "+");
        row->addWidget(button);
        connect(button, &QToolButton::clicked, this,
                [this, step] { FrontEnd().AsUser([&] { Self().Step(step); }); });
    }
}

void TSpinEditMirror::SyncState() {
    ShowLine(*FLine, Self());
    FLine->setAccessibleName(View().accessibleName());
}

bool TSpinEditMirror::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down) {
            FrontEnd().AsUser([&] { Self().Step(key == Qt::Key_Up ? 1 : -1); });
            return true;
        }
    }
    return FilterLine(FrontEnd(), Self(), *FLine, *event);
}

TMemoMirror::TMemoMirror(TFrontEnd& frontEnd, TMemo& memo)
    : TMirrorOf(frontEnd, memo, new QPlainTextEdit) {
    View().installEventFilter(this);
    View().viewport()->installEventFilter(this);
    View().setContextMenuPolicy(Qt::NoContextMenu);
    View().setUndoRedoEnabled(false);
    View().setTabChangesFocus(true);
}

void TMemoMirror::SyncState() {
    const TMemo& memo = Self();
    View().setReadOnly(memo.ReadOnly());
    View().setLineWrapMode(memo.WordWrap() ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
    const std::string& text = memo.Text();
    if (text != FShown) {
        View().setPlainText(FromText(text));
        FShown = text;
    }
    QTextCursor cursor = View().textCursor();
    cursor.setPosition(WidgetPlace(text, memo.SelStart()));
    cursor.setPosition(WidgetPlace(text, memo.SelStart() + memo.SelLength()),
                       QTextCursor::KeepAnchor);
    View().setTextCursor(cursor);
}

void TMemoMirror::TakeSelection() {
    const QTextCursor cursor = View().textCursor();
    const std::string text = Self().Text();
    const int from = TextPlace(text, cursor.selectionStart());
    Self().Select(from, TextPlace(text, cursor.selectionEnd()) - from);
}

bool TMemoMirror::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress:
        return PressKey(FrontEnd(), Self(), static_cast<QKeyEvent&>(*event));
    case QEvent::InputMethod:
        return TakeInput(FrontEnd(), Self(), static_cast<QInputMethodEvent&>(*event));
    case QEvent::KeyRelease:
    case QEvent::MouseButtonRelease:
        TakeSelection();
        return false;
    case QEvent::MouseButtonDblClick:
        FrontEnd().AsUser([&] { Self().DblClick(); });
        return false;
    case QEvent::Drop:
    case QEvent::DragEnter:
        return true;
    default:
        return false;
    }
}

// --- Hot keys, dates, colours, fonts ----------------------------------------------------------

THotKeyMirror::THotKeyMirror(TFrontEnd& frontEnd, THotKeyEx& field)
    : TMirrorOf(frontEnd, field, new QLineEdit) {
    View().setReadOnly(true);
    View().setContextMenuPolicy(Qt::NoContextMenu);
    View().installEventFilter(this);
}

bool THotKeyMirror::eventFilter(QObject*, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return false;
    const TShortCut key = ShortCutOf(*static_cast<QKeyEvent*>(event));
    if (!Self().WantsKey(key)) return false;
    FrontEnd().AsUser([&] { Self().PressKey(key); });
    return true;
}

TDateTimeMirror::TDateTimeMirror(TFrontEnd& frontEnd, TDateTimePicker& picker)
    : TMirrorOf(frontEnd, picker,
                picker.Kind() == dtkDate ? static_cast<QDateTimeEdit*>(new QDateEdit)
                                         : static_cast<QDateTimeEdit*>(new QTimeEdit)) {
    View().setCalendarPopup(picker.Kind() == dtkDate);
    View().setDateRange(QDate(1, 1, 1), QDate(9999, 12, 31));
    if (picker.Kind() == dtkTime) View().setDisplayFormat("HH:mm:ss");
    connect(&View(), &QDateTimeEdit::dateTimeChanged, this, [this](const QDateTime& moment) {
        if (Syncing()) return;
        FrontEnd().AsUser([&] {
            if (Self().Kind() == dtkDate)
                Self().ChooseDate(moment.date().year(), moment.date().month(), moment.date().day());
            else
                Self().ChooseTime(moment.time().hour(), moment.time().minute(),
                                  moment.time().second());
        });
    });
}

void TDateTimeMirror::SyncState() {
    // Day 0 is 30 December 1899. What is no moment of the calendar is shown as the first day.
    const bool shown = !Self().ShownText().empty();
    const QDate date = shown ? QDate(1899, 12, 30).addDays(static_cast<qint64>(Self().Date()))
                             : View().minimumDate();
    const auto seconds = shown ? static_cast<int>(std::fabs(Self().Time()) * 86400 + 0.5) : 0;
    View().setDateTime(QDateTime(date, QTime(0, 0).addSecs(seconds)));
}

TColorMirror::TColorMirror(TFrontEnd& frontEnd, TColorEdit& edit)
    : TMirrorOf(frontEnd, edit, new QComboBox) {
    View().setEditable(true);
    for (const TColorName& row : ColorNames()) {
        QPixmap pixmap(12, 12);
        const TColor color = row.Color;
        pixmap.fill(color >= 0 && color <= 0xFFFFFF
                        ? QColor(color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF)
                        : QColor(Qt::transparent));
        View().addItem(pixmap, FromText(row.Ident));
    }
    connect(&View(), &QComboBox::activated, this, [this](int index) {
        FrontEnd().AsUser(
            [&] { Self().ChooseColor(ColorNames()[static_cast<std::size_t>(index)].Color); });
    });
    connect(View().lineEdit(), &QLineEdit::editingFinished, this, [this] {
        if (Syncing()) return;
        const std::string text = ToText(View().currentText());
        if (text == Self().ShownText()) return;
        FrontEnd().AsUser([&] { Self().TypeText(text); });
        Sync();
    });
}

void TColorMirror::SyncState() {
    View().setEditText(FromText(Self().ShownText()));
}

TFontMirror::TFontMirror(TFrontEnd& frontEnd, TFontEdit& edit)
    : TMirrorOf(frontEnd, edit, new QWidget), FName(new QComboBox), FSize(new QSpinBox) {
    auto* const row = new QHBoxLayout(&View());
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(FName, 1);
    row->addWidget(FSize);
    FName->setEditable(true);
    for (int i = 0; i < edit.Items().Count(); ++i) FName->addItem(FromText(edit.Items()[i]));
    FSize->setRange(0, 400);
    View().setFocusProxy(FName);
    connect(FName, &QComboBox::textActivated, this, [this](const QString& name) {
        FrontEnd().AsUser([&] { Self().ChooseName(ToText(name)); });
    });
    connect(FSize, &QSpinBox::valueChanged, this, [this](int size) {
        if (!Syncing()) FrontEnd().AsUser([&] { Self().ChooseSize(size); });
    });
}

void TFontMirror::SyncState() {
    FName->setEditText(FromText(Self().SelectedFont().Name()));
    FSize->setValue(Self().SelectedFont().Size());
    FName->setAccessibleName(View().accessibleName());
}

} // namespace tarn
