#pragma once

#include "TSmartForm.h"
#include "vcl/THeaderControl.h"
#include "vcl/TPanel.h"
#include "vcl/TScrollBox.h"
#include "vcl/TSplitter.h"
#include "vcl/TStatusBar.h"
#include "vcl/TToolBar.h"
#include "vcl/TTreeView.h"

#include <vector>

namespace tarn {

class TSpcEditor;

// The private messages of the window.
inline constexpr std::uint32_t CM_SELECTSTARTNODE = 0xC011; ///< the tree is on the screen
inline constexpr std::uint32_t CM_RELEASEEDITOR = 0xC012;   ///< the window's last event is over

/// The settings editor's window: tool buttons above, the tree on the left, the header and the rows
/// on the right, the status bar below.
class TSpcForm : public TSmartForm {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// \param editor owns the form, and outlives it
    explicit TSpcForm(TSpcEditor& editor);
    ~TSpcForm() override;

    TSpcEditor& Editor() { return FEditor; }
    TTreeView& Tree() { return *FTree; }
    THeaderControl& Header() { return *FHeader; }
    TScrollBox& Rows() { return *FRows; }
    TPanel& LabelArea() { return *FLabelArea; }
    TPanel& ControlArea() { return *FControlArea; }
    TStatusBar& StatusBar() { return *FStatusBar; }
    TToolBar& ToolBar() { return *FToolBar; }
    TImageList& Images() { return *FImages; }

    /// Takes over the editor's fonts and options, and the stored state of the window: its place,
    /// the widths of the tree and of the label area. What is no number is passed over.
    void SetProperties() override;
    /// Gives the state back.
    void ReadFormData() override;

    /// Gives the areas of the rows the width that the labels need and what is left of the window.
    /// \param labelWidth, controlWidth with their margins \param height of the rows, pixels
    void LayOutAreas(int labelWidth, int controlWidth, int height);
    /// The width in which the areas have to find room, pixels: less when the rows need a scroll
    /// bar.
    int RowsWidth(int rowsHeight) const;
    /// Enter in the tree.
    void ToggleNode();

    bool IsShortCut(TShortCut shortCut) override;

protected:
    void AlignControls() override;
    bool CloseQuery() override;
    void WndProc(TMessage& message) override;

private:
    friend class TSpcEditor;
    struct TCommand;
    static const TCommand Commands[];

    void MakeControls();
    void MakeCommands();
    void ShowButtons();
    void UpdateCommand(TObject* sender);
    void RunCommand(TObject* sender);
    void Shown(TObject*);
    void Closed(TObject*);
    void SectionDragged(TObject* sender, int index);
    void CaptionEditing(TObject* sender, TTreeNode* node, bool& allow);

    TSpcEditor& FEditor;
    TImageList* FImages;
    TToolBar* FToolBar;
    TTreeView* FTree;
    TSplitter* FSplitter;
    TPanel* FRowsPanel;
    THeaderControl* FHeader;
    TScrollBox* FRows;
    TPanel* FLabelArea;
    TPanel* FControlArea;
    TStatusBar* FStatusBar;
};

} // namespace tarn
