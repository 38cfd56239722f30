#pragma once

// The mirrors of the platform's standard controls.

#include "TMirror.h"
#include "vcl/TButton.h"
#include "vcl/TCheckBox.h"
#include "vcl/TCheckListBox.h"
#include "vcl/TColorEdit.h"
#include "vcl/TComboBox.h"
#include "vcl/TDateTimePicker.h"
#include "vcl/TEllipsisLabel.h"
#include "vcl/TFontEdit.h"
#include "vcl/THeaderControl.h"
#include "vcl/THotKeyEx.h"
#include "vcl/TImage.h"
#include "vcl/TLabel.h"
#include "vcl/TListBox.h"
#include "vcl/TMemo.h"
#include "vcl/TPanel.h"
#include "vcl/TScrollBox.h"
#include "vcl/TSpinEdit.h"
#include "vcl/TSplitter.h"
#include "vcl/TStatusBar.h"
#include "vcl/TStringGrid.h"
#include "vcl/TTabControl.h"
#include "vcl/TToolBar.h"
#include "vcl/TTreeView.h"

#include <QtWidgets>

#include <map>

namespace tarn {

/// A mirror of a control class by a widget class.
template <class C, class W> class TMirrorOf : public TMirror {
public:
    using TMirrored = C;
    TMirrorOf(TFrontEnd& frontEnd, C& control, W* widget) : TMirror(frontEnd, control, widget) {}
    C& Self() const { return static_cast<C&>(Control()); }
    W& View() const { return static_cast<W&>(*Widget()); }
};

// --- Plain ones -------------------------------------------------------------------------------

class TPanelMirror : public TMirrorOf<TControl, QWidget> {
public:
    TPanelMirror(TFrontEnd& frontEnd, TControl& control)
        : TMirrorOf(frontEnd, control, new QWidget) {}
};

class TLabelMirror : public TMirrorOf<TLabel, QLabel> {
public:
    TLabelMirror(TFrontEnd& frontEnd, TLabel& label);

protected:
    void SyncState() override;
    bool eventFilter(QObject* object, QEvent* event) override;
};

class TButtonMirror : public TMirrorOf<TButton, QPushButton> {
public:
    TButtonMirror(TFrontEnd& frontEnd, TButton& button);

protected:
    void SyncState() override;
};

class TCheckBoxMirror : public TMirrorOf<TCheckBox, QCheckBox> {
public:
    TCheckBoxMirror(TFrontEnd& frontEnd, TCheckBox& box);

protected:
    void SyncPlace() override;
    void SyncState() override;
};

class TStatusBarMirror : public TMirrorOf<TStatusBar, QLabel> {
public:
    TStatusBarMirror(TFrontEnd& frontEnd, TStatusBar& bar);

protected:
    void SyncState() override { View().setText(FromText(Self().SimpleText())); }
};

class TImageMirror : public TMirrorOf<TImage, QLabel> {
public:
    TImageMirror(TFrontEnd& frontEnd, TImage& image);

protected:
    void SyncState() override;
    bool eventFilter(QObject* object, QEvent* event) override;
};

// --- Fields -----------------------------------------------------------------------------------

/// A line that shows a control's text: what is typed goes to the control, character by character.
class TEditMirror : public TMirrorOf<TCustomEdit, QLineEdit> {
public:
    TEditMirror(TFrontEnd& frontEnd, TCustomEdit& edit);
    TEditMirror(TFrontEnd& frontEnd, TCustomEdit& edit, QLineEdit* line);

protected:
    void SyncState() override;
    bool eventFilter(QObject* object, QEvent* event) override;
};

class TSpinEditMirror : public TMirrorOf<TSpinEdit, QWidget> {
public:
    TSpinEditMirror(TFrontEnd& frontEnd, TSpinEdit& edit);

protected:
    void SyncState() override;
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QLineEdit* FLine;
};

class TMemoMirror : public TMirrorOf<TMemo, QPlainTextEdit> {
public:
    TMemoMirror(TFrontEnd& frontEnd, TMemo& memo);

protected:
    void SyncState() override;
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void TakeSelection();
    void Delete(QTextCursor::MoveOperation move);
    std::string FShown; ///< the text as it was put in
};

class THotKeyMirror : public TMirrorOf<THotKeyEx, QLineEdit> {
public:
    THotKeyMirror(TFrontEnd& frontEnd, THotKeyEx& field);

protected:
    void SyncState() override { View().setText(FromText(Self().ShownText())); }
    bool eventFilter(QObject* object, QEvent* event) override;
};

class TDateTimeMirror : public TMirrorOf<TDateTimePicker, QDateTimeEdit> {
public:
    TDateTimeMirror(TFrontEnd& frontEnd, TDateTimePicker& picker);

protected:
    void SyncState() override;
};

class TColorMirror : public TMirrorOf<TColorEdit, QWidget> {
public:
    TColorMirror(TFrontEnd& frontEnd, TColorEdit& edit);

protected:
    void SyncState() override;

private:
    void AskForColor();
    QComboBox* FNames;
};

class TFontMirror : public TMirrorOf<TFontEdit, QWidget> {
public:
    TFontMirror(TFrontEnd& frontEnd, TFontEdit& edit);

protected:
    void SyncState() override;

private:
    void AskForFont();
    QComboBox* FName;
    QSpinBox* FSize;
};

// --- Lists ------------------------------------------------------------------------------------

class TComboBoxMirror : public TMirrorOf<TComboBox, QComboBox> {
public:
    TComboBoxMirror(TFrontEnd& frontEnd, TComboBox& box);

protected:
    void SyncState() override;
};

/// A list whose clicks are the control's: the widget selects nothing by itself.
class TListBoxMirror : public TMirrorOf<TListBox, QListWidget> {
public:
    TListBoxMirror(TFrontEnd& frontEnd, TListBox& list);

protected:
    void SyncState() override;
    bool eventFilter(QObject* object, QEvent* event) override;
    virtual void DecorateItem(QListWidgetItem&, int) {}
    /// A click at that place of a line; true when it was more than a click on the line.
    virtual bool ClickedAt(int, QPoint) { return false; }

private:
    int LineAt(QPoint place) const;
    bool Mouse(QMouseEvent& event);
    bool Key(QKeyEvent& event);
    void Drop(int from, QPoint place, Qt::KeyboardModifiers modifiers);
    bool Search(const QKeyEvent& event);
    void Click(int line, Qt::KeyboardModifiers modifiers);
    int FDragFrom = -1;        ///< where the button went down on a line that can be dragged
    bool FClicksLater = false; ///< when it is let go
    QPoint FPressed;
};

class TCheckListMirror : public TListBoxMirror {
public:
    using TMirrored = TCheckListBox;
    TCheckListMirror(TFrontEnd& frontEnd, TCheckListBox& list) : TListBoxMirror(frontEnd, list) {}

protected:
    void DecorateItem(QListWidgetItem& item, int index) override;
    bool ClickedAt(int line, QPoint place) override;
};

class TTreeMirror : public TMirrorOf<TTreeView, QTreeWidget> {
public:
    TTreeMirror(TFrontEnd& frontEnd, TTreeView& tree);

protected:
    void SyncState() override;

private:
    bool IsCurrent() const;
    void Rebuild();
    std::map<const TTreeNode*, QTreeWidgetItem*> FItems;
};

class TTabsMirror : public TMirrorOf<TTabControl, QTabBar> {
public:
    TTabsMirror(TFrontEnd& frontEnd, TTabControl& tabs);

protected:
    void SyncState() override;
};

class TGridMirror : public TMirrorOf<TStringGrid, QTableWidget> {
public:
    TGridMirror(TFrontEnd& frontEnd, TStringGrid& grid);

protected:
    void SyncState() override;
};

// --- Containers -------------------------------------------------------------------------------

class THeaderMirror : public TMirrorOf<THeaderControl, QWidget> {
public:
    THeaderMirror(TFrontEnd& frontEnd, THeaderControl& header);

protected:
    void SyncState() override { View().update(); }
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void Paint();
    int EdgeAt(int x) const;
    int FDragged = -1;
};

class TScrollBoxMirror : public TMirrorOf<TScrollBox, QScrollArea> {
public:
    TScrollBoxMirror(TFrontEnd& frontEnd, TScrollBox& box);
    QWidget* ChildParent() const override { return View().widget(); }

protected:
    void SyncState() override;
};

class TSplitterMirror : public TMirrorOf<TSplitter, QWidget> {
public:
    TSplitterMirror(TFrontEnd& frontEnd, TSplitter& splitter);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
};

class TToolBarMirror : public TMirrorOf<TToolBar, QWidget> {
public:
    TToolBarMirror(TFrontEnd& frontEnd, TToolBar& bar) : TMirrorOf(frontEnd, bar, new QWidget) {}
};

class TToolButtonMirror : public TMirrorOf<TToolButton, QToolButton> {
public:
    TToolButtonMirror(TFrontEnd& frontEnd, TToolButton& button);

protected:
    void SyncState() override;

private:
    void MakeMenu();
};

} // namespace tarn
