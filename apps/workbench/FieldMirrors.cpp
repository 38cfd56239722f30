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
    // Not inside a line break, nor a character.
    const auto at = static_cast<std::size_t>(low);
    if (at > 0 && at < text.size() && text[at - 1] == '\r' && text[at] == '\n') ++low;
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
    if (control != 0)
        frontEnd.AsUser([&] { edit.KeyPress(control); });
    else if (key.key() == Qt::Key_Delete && !edit.ReadOnly() && edit.CanFocus())
        frontEnd.AsUser([&] { DeleteForwards(edit); });
    else if (IsTyped(key))
        frontEnd.AsUser([&] { edit.TypeText(ToText(key.text())); });
    else
        return key.matches(QKeySequence::Redo); // the control takes back what was taken back
    return true;
}

/// A key that deletes more than a character, and the move of the caret over what it deletes.
struct TDeletion {
    QKeySequence::StandardKey Key;
    QTextCursor::MoveOperation Move;
    void (*Select)(QLineEdit& line);
};
constexpr TDeletion Deletions[] = {
    {QKeySequence::DeleteStartOfWord, QTextCursor::PreviousWord,
     [](QLineEdit& line) { line.cursorWordBackward(true); }},
    {QKeySequence::DeleteEndOfWord, QTextCursor::NextWord,
     [](QLineEdit& line) { line.cursorWordForward(true); }},
    {QKeySequence::DeleteEndOfLine, QTextCursor::EndOfLine,
     [](QLineEdit& line) { line.end(true); }},
    {QKeySequence::DeleteCompleteLine, QTextCursor::NoMove,
     [](QLineEdit& line) { line.selectAll(); }},
};

/// The deletion of a key; null when it is none, or there is nothing that may be deleted.
const TDeletion* DeletionOf(const TCustomEdit& edit, const QKeyEvent& key) {
    for (const TDeletion& deletion : Deletions)
        if (key.matches(deletion.Key)) return edit.ReadOnly() ? nullptr : &deletion;
    return nullptr;
}

/// Text that comes from an input method.
bool TakeInput(TFrontEnd& frontEnd, TCustomEdit& edit, const QInputMethodEvent& event) {
    if (event.commitString().isEmpty()) return false;
    frontEnd.AsUser([&] { edit.TypeText(ToText(event.commitString())); });
    return true;
}

void ShowLine(QLineEdit& line, TCustomEdit& edit) {
    const std::string& text = edit.Text();
    line.setText(FromText(text));
    line.setReadOnly(edit.ReadOnly());
    const int start = WidgetPlace(text, edit.SelStart());
    const int end = WidgetPlace(text, edit.SelStart() + edit.SelLength());
    if (end > start && edit.Focused()) // of fields without the keys nobody asks what is selected
        line.setSelection(start, end - start);
    else
        line.setCursorPosition(start);
}

/// The same selection again would part what is typed into two steps.
void TakeSelection(TCustomEdit& edit, int start, int end) {
    const std::string text = edit.Text();
    const int from = TextPlace(text, start);
    const int length = TextPlace(text, end) - from;
    if (from != edit.SelStart() || length != edit.SelLength()) edit.Select(from, length);
}

void TakeLineSelection(const QLineEdit& line, TCustomEdit& edit) {
    const bool selects = line.hasSelectedText();
    const int start = selects ? line.selectionStart() : line.cursorPosition();
    TakeSelection(edit, start, selects ? line.selectionEnd() : start);
}

/// The menu of the second mouse button, for an edit without one of its own.
void ShowEditMenu(TFrontEnd& frontEnd, TCustomEdit& edit, QPoint place) {
    const TWeak<TCustomEdit> alive(&edit);
    QMenu menu;
    const auto add = [&](const char* caption, bool enabled, void (*run)(TCustomEdit&)) {
        QAction* const action = menu.addAction(caption, &menu, [&frontEnd, alive, run] {
            if (alive) frontEnd.AsUser([&] { run(*alive); });
        });
        action->setEnabled(enabled);
    };
    const bool selects = edit.SelLength() > 0;
    const bool changes = !edit.ReadOnly() && edit.CanFocus();
    add("&Undo", changes && edit.CanUndo(), [](TCustomEdit& e) { e.Undo(); });
    menu.addSeparator();
    add("Cu&t", changes && selects, [](TCustomEdit& e) { e.KeyPress(24); });
    add("&Copy", selects, [](TCustomEdit& e) { e.KeyPress(3); });
    add("&Paste", changes, [](TCustomEdit& e) { e.KeyPress(22); });
    add("&Delete", changes && selects, [](TCustomEdit& e) { e.Perform(WM_CLEAR); });
    menu.addSeparator();
    add("Select &all", !edit.Text().empty(), [](TCustomEdit& e) { e.SelectAll(); });
    menu.exec(place);
}

/// The second button of three types what is selected somewhere, where it is clicked.
bool TypeSelected(TFrontEnd& frontEnd, TCustomEdit& edit, const QMouseEvent& event) {
    if (event.button() != Qt::MiddleButton) return false;
    const QString text = QApplication::clipboard()->text(QClipboard::Selection);
    if (!text.isEmpty()) frontEnd.AsUser([&] { edit.TypeText(ToText(text)); });
    return true;
}

/// What a line edit does with its events; true when it is done.
bool FilterLine(TFrontEnd& frontEnd, TCustomEdit& edit, QLineEdit& line, QEvent& event) {
    switch (event.type()) {
    case QEvent::KeyPress: {
        const auto& key = static_cast<QKeyEvent&>(event);
        TakeLineSelection(line, edit); // the key before may still be held
        const TDeletion* const deletion = DeletionOf(edit, key);
        if (!deletion) return PressKey(frontEnd, edit, key);
        if (!line.hasSelectedText()) deletion->Select(line);
        TakeLineSelection(line, edit);
        frontEnd.AsUser([&] { edit.Perform(WM_CLEAR); });
        return true;
    }
    case QEvent::InputMethod:
        return TakeInput(frontEnd, edit, static_cast<QInputMethodEvent&>(event));
    case QEvent::KeyRelease:
        TakeLineSelection(line, edit);
        return false;
    case QEvent::MouseButtonRelease:
        TakeLineSelection(line, edit);
        return TypeSelected(frontEnd, edit, static_cast<QMouseEvent&>(event));
    case QEvent::MouseButtonDblClick:
        frontEnd.AsUser([&] { edit.DblClick(); });
        return false;
    case QEvent::ContextMenu:
        TakeLineSelection(line, edit);
        ShowEditMenu(frontEnd, edit, static_cast<QContextMenuEvent&>(event).globalPos());
        return true;
    default:
        return false;
    }
}

/// A line whose text comes in through the control alone.
void SetUpLine(QLineEdit& line, QObject* filter) {
    line.installEventFilter(filter);
    line.setAcceptDrops(false);
    line.setDragEnabled(false);
}

} // namespace

// --- Edits ------------------------------------------------------------------------------------

TEditMirror::TEditMirror(TFrontEnd& frontEnd, TCustomEdit& edit)
    : TMirrorOf(frontEnd, edit, new QLineEdit) {
    SetUpLine(View(), this);
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
    SetUpLine(*FLine, this);
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
    View().setAcceptDrops(false);
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
    tarn::TakeSelection(Self(), cursor.selectionStart(), cursor.selectionEnd());
}

/// What a key does that deletes more than a character.
void TMemoMirror::Delete(QTextCursor::MoveOperation move) {
    QTextCursor cursor = View().textCursor();
    if (move == QTextCursor::NoMove) {
        cursor.movePosition(QTextCursor::StartOfLine);
        move = QTextCursor::EndOfLine;
    }
    if (!cursor.hasSelection()) cursor.movePosition(move, QTextCursor::KeepAnchor);
    View().setTextCursor(cursor);
    TakeSelection();
    FrontEnd().AsUser([&] { Self().Perform(WM_CLEAR); });
}

bool TMemoMirror::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress: {
        const auto& key = static_cast<QKeyEvent&>(*event);
        TakeSelection();
        const TDeletion* const deletion = DeletionOf(Self(), key);
        if (!deletion) return PressKey(FrontEnd(), Self(), key);
        Delete(deletion->Move);
        return true;
    }
    case QEvent::InputMethod:
        return TakeInput(FrontEnd(), Self(), static_cast<QInputMethodEvent&>(*event));
    case QEvent::KeyRelease:
        TakeSelection();
        return false;
    case QEvent::MouseButtonRelease:
        TakeSelection();
        return TypeSelected(FrontEnd(), Self(), static_cast<QMouseEvent&>(*event));
    case QEvent::MouseButtonDblClick:
        FrontEnd().AsUser([&] { Self().DblClick(); });
        return false;
    case QEvent::ContextMenu:
        TakeSelection();
        ShowEditMenu(FrontEnd(), Self(), static_cast<QContextMenuEvent*>(event)->globalPos());
        return true;
    default:
        return false;
    }
}

// --- Hot keys, dates, colours, fonts ----------------------------------------------------------

namespace {

QColor ToColor(TColor color) {
    return {color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF};
}

bool IsColor(const QString& text, TColor color) {
    try {
        return StringToColor(Trim(ToText(text))) == color;
    } catch (const EConvertError&) {
        return false;
    }
}

/// Puts a list into a field, with a button behind it that opens a dialog.
void JoinWithDialog(QWidget& field, QComboBox& list, const std::function<void()>& open) {
    auto* const button = new QToolButton;
    button->setText("...");
    button->setFocusPolicy(Qt::NoFocus);
    button->setFixedWidth(22);
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
    auto* const row = new QHBoxLayout(&field);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(&list, 1);
    row->addWidget(button);
    field.setFocusProxy(&list);
    QObject::connect(button, &QToolButton::clicked, &field, open);
}

} // namespace

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
    constexpr long last = 24 * 60 * 60 - 1; // a moment just before midnight is none of this day
    const long seconds =
        shown ? std::min(std::lround(std::fabs(Self().Time()) * (last + 1)), last) : 0;
    const QDateTime moment(date, QTime(0, 0).addSecs(static_cast<int>(seconds)));
    if (View().dateTime() != moment) View().setDateTime(moment); // it ends what is being typed
}

TColorMirror::TColorMirror(TFrontEnd& frontEnd, TColorEdit& edit)
    : TMirrorOf(frontEnd, edit, new QWidget), FNames(new QComboBox) {
    FNames->setEditable(true);
    FNames->setInsertPolicy(QComboBox::NoInsert);
    FNames->setCompleter(nullptr);
    for (const TColorName& row : ColorNames()) {
        QPixmap pixmap(12, 12);
        const TColor color = row.Color;
        pixmap.fill(color >= 0 && color <= 0xFFFFFF ? ToColor(color) : QColor(Qt::transparent));
        FNames->addItem(pixmap, FromText(row.Ident));
    }
    JoinWithDialog(View(), *FNames, [this] { AskForColor(); });
    connect(FNames, &QComboBox::activated, this, [this](int index) {
        FrontEnd().AsUser(
            [&] { Self().ChooseColor(ColorNames()[static_cast<std::size_t>(index)].Color); });
    });
    // Each text that is a colour is taken at once: a key may be the next thing that the user does.
    connect(FNames->lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) {
        FrontEnd().AsUser([&] { Self().TypeText(ToText(text)); });
    });
    connect(FNames->lineEdit(), &QLineEdit::editingFinished, this, [this] {
        if (!Syncing()) FNames->setEditText(FromText(Self().ShownText()));
    });
}

void TColorMirror::AskForColor() {
    // One of the system's colours, which are below 0, has no parts to begin with.
    const TColor before = std::max(Self().SelectedColor(), TColor{0});
    const QColor chosen = QColorDialog::getColor(ToColor(before), View().window());
    if (!chosen.isValid()) return;
    const int color = chosen.red() | chosen.green() << 8 | chosen.blue() << 16;
    FrontEnd().AsUser([&] { Self().ChooseColor(static_cast<TColor>(color)); });
}

void TColorMirror::SyncState() {
    FNames->setAccessibleName(View().accessibleName());
    // What is being typed stays as long as it is the colour.
    if (FNames->hasFocus() && IsColor(FNames->currentText(), Self().SelectedColor())) return;
    const QString shown = FromText(Self().ShownText());
    FNames->setCurrentIndex(FNames->findText(shown)); // from where the arrow keys go on
    FNames->setEditText(shown);
}

TFontMirror::TFontMirror(TFrontEnd& frontEnd, TFontEdit& edit)
    : TMirrorOf(frontEnd, edit, new QWidget), FName(new QComboBox), FSize(new QSpinBox) {
    FName->setEditable(true);
    FName->setInsertPolicy(QComboBox::NoInsert);
    FName->setCompleter(nullptr);
    for (int i = 0; i < edit.Items().Count(); ++i) FName->addItem(FromText(edit.Items()[i]));
    FSize->setRange(0, 400);
    JoinWithDialog(View(), *FName, [this] { AskForFont(); });
    static_cast<QHBoxLayout*>(View().layout())->insertWidget(1, FSize);
    const auto choose = [this](const QString& name) {
        FrontEnd().AsUser([&] { Self().ChooseName(ToText(name)); });
    };
    connect(FName, &QComboBox::textActivated, this, choose);
    connect(FName->lineEdit(), &QLineEdit::textEdited, this, choose);
    connect(FSize, &QSpinBox::valueChanged, this, [this](int size) {
        if (!Syncing()) FrontEnd().AsUser([&] { Self().ChooseSize(size); });
    });
}

void TFontMirror::AskForFont() {
    bool chosen = false;
    const QFont font =
        QFontDialog::getFont(&chosen, FromFont(Self().SelectedFont()), View().window());
    if (!chosen) return;
    TFont result;
    result.Assign(&Self().SelectedFont());
    result.SetName(ToText(font.family()));
    if (font.pointSize() > 0) result.SetSize(font.pointSize());
    TFontStyles style;
    if (font.bold()) style.Include(fsBold);
    if (font.italic()) style.Include(fsItalic);
    if (font.underline()) style.Include(fsUnderline);
    if (font.strikeOut()) style.Include(fsStrikeOut);
    result.SetStyle(style);
    FrontEnd().AsUser([&] { Self().ChooseFont(result); });
}

void TFontMirror::SyncState() {
    const QString name = FromText(Self().SelectedFont().Name());
    if (FName->currentText() != name) FName->setEditText(name);
    FSize->setValue(Self().SelectedFont().Size());
    FName->setAccessibleName(View().accessibleName());
}

} // namespace tarn
