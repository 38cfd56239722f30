#pragma once

#include "TCustomExpert.h"
#include "ota/ToolsAPI.h"

namespace tarn {

enum TBlockActionID : std::uint8_t {
    aiSort,
    aiSetup,
    aiMoveLeftOne,
    aiMoveLeftTwo,
    aiMoveRightOne,
    aiMoveRightTwo
};

/// The place of a block: 1-based rows and columns, the end column behind the last character.
struct TBlockRect {
    int StartRow = 1;
    int StartCol = 1;
    int EndRow = 1;
    int EndCol = 1;
};

/// The editor block tools: moves the lines of the selected block by one or two columns and sorts
/// the selected declarations. A refused command changes nothing and beeps.
class TBlockMng : public TCustomExpert {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TBlockMng();

    /// After a shift the cursor goes to the start of the block, whatever end it was at.
    bool MoveCursorTopLeft = false;
    /// A left shift is refused as a whole when a line that is not blank has too few leading spaces.
    bool SafeStringMoving = true;

    void Init(TGetItemData getItemData) override;

    void MoveBlockLeftOne(TObject* sender);
    void MoveBlockLeftTwo(TObject* sender);
    void MoveBlockRightOne(TObject* sender);
    void MoveBlockRightTwo(TObject* sender);
    void SortLines(TObject* sender);
    void UpdateBlockState(TObject* sender); ///< enables the sender, a menu item or an action

    void DoAction(TBlockActionID action);
    /// \param count columns, -2 to 2; below 0 is left
    void DoMoveBlock(IOTAEditView& view, int count);
    void DoSortLines(IOTAEditView& view);
    /// Whether a block command can run in the IDE's top buffer.
    bool CheckState();
};

/// The source editor that the form and unit previewer shows; the block tools act on it when it is
/// set.
TIntf<IOTASourceEditor>& OpenEditor();

// Initialization and finalization of the unit, counted.
void InitializeBlockMng();
void FinalizeBlockMng();

} // namespace tarn
