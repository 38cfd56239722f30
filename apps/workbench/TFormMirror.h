#pragma once

#include "Mirrors.h"
#include "Windows/TEditWindow.h"
#include "Windows/TIdeMainForm.h"

#include <QLabel>
#include <QMainWindow>

namespace tarn {

/// A form as a window of its own.
class TFormMirror : public TMirrorOf<TForm, QWidget> {
public:
    TFormMirror(TFrontEnd& frontEnd, TForm& form);

protected:
    TFormMirror(TFrontEnd& frontEnd, TForm& form, QWidget* window);
    void SyncPlace() override;
    void SyncState() override;
    bool eventFilter(QObject* object, QEvent* event) override;
    /// The user wants the window closed. The form decides.
    virtual void UserCloses();

private:
    bool HoldsActiveForm() const;
    bool FPlaced = false;
};

/// The IDE's main form: the menu bar and, inside, the editor.
class TMainFormMirror : public TFormMirror {
public:
    using TMirrored = TIdeMainForm;
    TMainFormMirror(TFrontEnd& frontEnd, TIdeMainForm& form);

    QMainWindow& Window() const { return static_cast<QMainWindow&>(*Widget()); }
    /// Shows which file is the current one, where its cursor is, and whether it is saved.
    void ShowFile();
    /// Shows the menu bar as it is now.
    void SyncMenu();
    /// Opens the menus down to that of the item, or the one that holds an item without a menu; the
    /// last one that was opened, which closes those above it.
    QMenu* OpenMenu(TMenuItem& item);

protected:
    void SyncPlace() override {}
    void SyncState() override;
    void UserCloses() override;

private:
    QLabel* const FPlace = new QLabel; ///< of the status bar
};

/// The window of the source editor stands in the main one.
class TEditWindowMirror : public TMirrorOf<TEditWindow, QWidget> {
public:
    TEditWindowMirror(TFrontEnd& frontEnd, TEditWindow& window);

protected:
    void SyncPlace() override;
};

} // namespace tarn
