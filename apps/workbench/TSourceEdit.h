#pragma once

#include <QAccessible>
#include <Qsci/qsciscintilla.h>

namespace tarn {

class TEditorMirror;

/// The widget of the source editor. What text becomes and where the cursor goes is the buffer's to
/// say: keys go to the mirror first, and what is left for the widget to do, what the mouse selects
/// and what is dropped, is told to the mirror as it happens.
class TSourceEdit final : public QsciScintilla, private QAccessible::ActivationObserver {
public:
    explicit TSourceEdit(TEditorMirror& mirror);
    ~TSourceEdit() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void accessibilityActiveChanged(bool active) override;

    TEditorMirror& FMirror;
};

} // namespace tarn
