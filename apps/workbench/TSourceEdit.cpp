#include "TSourceEdit.h"

#include "TEditorMirror.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QInputMethodEvent>

namespace tarn {

// --- For screen readers -----------------------------------------------------------------------

namespace {

/// What stands for the editor while no screen reader listens. The widget's own interface, for which
/// null is given, counts the characters of the whole text after each change of it.
QAccessibleInterface* MakeAccessible(const QString&, QObject* object) {
    auto* const edit = dynamic_cast<TSourceEdit*>(object);
    if (!edit || QAccessible::isActive()) return nullptr;
    return new QAccessibleWidget(edit, QAccessible::EditableText, edit->accessibleName());
}

} // namespace

TSourceEdit::TSourceEdit(TEditorMirror& mirror) : FMirror(mirror) {
    QAccessible::installFactory(MakeAccessible); // nothing when it is
    QAccessible::installActivationObserver(this);
    accessibilityActiveChanged(QAccessible::isActive());
}

TSourceEdit::~TSourceEdit() {
    QAccessible::removeActivationObserver(this);
}

/// Has the interface made anew.
void TSourceEdit::accessibilityActiveChanged(bool) {
    if (QAccessibleInterface* const kept = QAccessible::queryAccessibleInterface(this))
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(kept));
}

// --- Events -----------------------------------------------------------------------------------

void TSourceEdit::keyPressEvent(QKeyEvent* event) {
    if (!FMirror.TakeKey(*event)) FMirror.AsOne([&] { QsciScintilla::keyPressEvent(event); });
}

/// What is being composed is shown beside the text until it is done: in the text it would have to
/// be taken back again, which is no undo of the user's.
void TSourceEdit::inputMethodEvent(QInputMethodEvent* event) {
    const QByteArray composed = event->preeditString().toUtf8();
    FMirror.Type(event->commitString());
    if (composed.isEmpty())
        SendScintilla(SCI_CALLTIPCANCEL);
    else
        SendScintilla(SCI_CALLTIPSHOW, SendScintilla(SCI_GETCURRENTPOS), composed.constData());
    event->accept();
}

void TSourceEdit::mousePressEvent(QMouseEvent* event) {
    FMirror.Follow();
    // The widget begins a column block with Ctrl, as some window managers keep Alt to themselves.
    Qt::KeyboardModifiers modifiers = event->modifiers();
    if (modifiers.testFlag(Qt::AltModifier)) modifiers |= Qt::ControlModifier;
    QMouseEvent press(event->type(), event->position(), event->scenePosition(),
                      event->globalPosition(), event->button(), event->buttons(), modifiers,
                      event->pointingDevice());
    QsciScintilla::mousePressEvent(&press);
}

void TSourceEdit::mouseReleaseEvent(QMouseEvent* event) {
    const QClipboard& clipboard = *QApplication::clipboard();
    if (event->button() == Qt::MiddleButton) {
        if (clipboard.supportsSelection())
            FMirror.PasteAt(event->pos(), clipboard.text(QClipboard::Selection));
        return;
    }
    QsciScintilla::mouseReleaseEvent(event);
    FMirror.Take();
}

void TSourceEdit::dropEvent(QDropEvent* event) {
    FMirror.AsOne([&] { QsciScintilla::dropEvent(event); });
}

void TSourceEdit::contextMenuEvent(QContextMenuEvent* event) {
    FMirror.ShowMenu(event->globalPos());
}

void TSourceEdit::focusInEvent(QFocusEvent* event) {
    QsciScintilla::focusInEvent(event);
    FMirror.Focused();
}

void TSourceEdit::resizeEvent(QResizeEvent* event) {
    QsciScintilla::resizeEvent(event);
    FMirror.Follow(); // the view has other rows
}

void TSourceEdit::changeEvent(QEvent* event) {
    QsciScintilla::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) FMirror.Recolour();
}

} // namespace tarn
