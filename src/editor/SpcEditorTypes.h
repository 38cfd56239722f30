#pragma once

#include "qsDataHndl2.h"
#include "qsSpcMng.h"
#include "rtl/TMethod.h"
#include "rtl/TSet.h"
#include "rtl/TStrings.h"
#include "rtl/TypInfo.h"
#include "vcl/TLabel.h"
#include "vcl/TTreeView.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

class TControlInfo;

/// A control with a window of its own; all controls are.
using TWinControl = TControl;

struct TSpcEditorErrorTag {
    static constexpr std::string_view Name = "ESpcEditorError";
};
/// The errors of the settings editor itself; those of conversions pass through it as they are.
using ESpcEditorError = TNamedException<TSpcEditorErrorTag>;

/// The texts of the settings editor.
enum TSpcEditorStr : int {
    strPercentRange = 51508,
    strColCount = 51509,
    strParamSection = 51512,
    strReplaceFile = 51514,
    strSaveChanges = 51515,
    strSpcFilter = 51538,
    strSaveSpc = 51539,
    strLoadSpc = 51540,
    strSpecification = 51541,
    strParameter = 51544,
    strValue = 51545,
    strProperties = 51546
};

// --- Options ----------------------------------------------------------------------------------

enum TSpcEdOption : std::uint8_t {
    eoSaveSpcOnExit,   ///< save without asking when the editor closes
    eoSaveSpcOnChange, ///< write each change into the object at once
    eoSortProps,       ///< rows in name order instead of declaration order
    eoExpandCompProps
};
inline constexpr std::string_view SpcEdOptionNames[] = {"eoSaveSpcOnExit", "eoSaveSpcOnChange",
                                                        "eoSortProps", "eoExpandCompProps"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TSpcEdOption> = EnumType("TSpcEdOption", SpcEdOptionNames);
using TSpcEdOptions = TSet<TSpcEdOption>;

enum TSpcFormOption : std::uint8_t {
    foAutoSaveParams,     ///< the window's state is stored when it is closed
    foAreasDynamicResize, ///< the control area takes the width that the window has
    foModalShowing,
    foStayOnTop,
    foTreeExpandOnEnter, ///< Enter in the tree expands a node, or collapses it
    foEllipsisLabels,    ///< labels that are too narrow end with an ellipsis
    foMultiLineCaptions  ///< "##" in a caption breaks the line
};
inline constexpr std::string_view SpcFormOptionNames[] = {
    "foAutoSaveParams",    "foAreasDynamicResize", "foModalShowing",     "foStayOnTop",
    "foTreeExpandOnEnter", "foEllipsisLabels",     "foMultiLineCaptions"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TSpcFormOption> = EnumType("TSpcFormOption",
                                                                 SpcFormOptionNames);
using TSpcFormOptions = TSet<TSpcFormOption>;

enum TSpcEdVisibleButton : std::uint8_t {
    vbExitEditor,
    vbLoadSpc,
    vbSaveSpc,
    vbSaveSpcAs,
    vbAddNode,
    vbDeleteNode,
    vbMoveNodeUp,
    vbMoveNodeDown,
    vbExpandNode,
    vbCollapseNode
};
inline constexpr std::string_view SpcEdVisibleButtonNames[] = {
    "vbExitEditor", "vbLoadSpc",    "vbSaveSpc",      "vbSaveSpcAs",  "vbAddNode",
    "vbDeleteNode", "vbMoveNodeUp", "vbMoveNodeDown", "vbExpandNode", "vbCollapseNode"};
template <>
inline constexpr TTypeInfo TypeInfoOf<TSpcEdVisibleButton> = EnumType("TSpcEdVisibleButton",
                                                                      SpcEdVisibleButtonNames);
using TSpcEdVisibleButtons = TSet<TSpcEdVisibleButton>;

/// What the editor is doing.
enum TSpcEdStateFlag : std::uint8_t {
    esTreeBuilding,
    esNodeDeleting,
    esDataSetting, ///< it fills the controls itself: their change events are not the user's
    esFormShowing,
    esFormDestroying
};
using TSpcEdState = TSet<TSpcEdStateFlag>;

/// The editor's properties that are string lists.
enum TSpcEdStringsKind : std::uint8_t {
    skDisabledProps,
    skInvisibleProps,
    skTranslatingTable,
    skControlParams,
    skRedefiedParams
};

enum TAreaKind : std::uint8_t { akLabel, akControl, akAll };
enum TNodeMotion : std::uint8_t { nmUp, nmDown };
enum TCollNotification : std::uint8_t { cnAdding, cnDeleting, cnClearing };

/// The pictures of a tree node.
enum TNodeImageIndex : std::uint8_t {
    niiImageIndex,
    niiSelectedIndex,
    niiStateIndex,
    niiOverlayIndex
};
/// An index of each into the tree's image list; -1 for none.
struct TPlaceImage {
    int Index[4] = {-1, -1, -1, -1};
    int& operator[](TNodeImageIndex image) { return Index[image]; }
};

/// What a BeforeCreateControl handler supplies for a row.
struct TNewControlData {
    std::string Params;              ///< the parameter section, "Width=50%" and the like
    TObject* ModifyObject = nullptr; ///< null: the control
    TControl* Control = nullptr;     ///< the editor takes it over
    std::intptr_t Reserved = 0;
    std::int32_t ETag = 0;
    std::int32_t NativeMarker = -1;
};

// --- Events; the sender is the editor ----------------------------------------------------------

using TCreateSpc = TMethod<void(TObject* sender, TSpcObject& spc)>;
using TControlNotifyEvent = TMethod<void(TObject* sender, TControlInfo& info)>;
using TControlHandlingEvent = TMethod<void(TObject* sender, TControlInfo& info, bool& handled)>;
using TAfterGetControlDataEvent = TMethod<void(TObject* sender, TControlInfo& info, bool& aborted)>;
using TBeforeGetControlDataEvent =
    TMethod<void(TObject* sender, TControlInfo& info, bool& handled, bool& aborted)>;
using TAfterSaveSpcEvent =
    TMethod<void(TObject* sender, TSpcObject& spc, const std::string& fileName)>;
using TBeforeSaveSpcEvent =
    TMethod<void(TObject* sender, TSpcObject& spc, const std::string& fileName, bool& allowSave)>;
using TBeforeCreateControlEvent = TMethod<void(
    TObject* sender, TPersistent& instance, const TPropInfo& propInfo, TWinControl* parent,
    TNotifyEvent changeAction, TNewControlData& controlData, bool& handled)>;
using TCollectionChangeEvent = TMethod<void(TObject* sender, TCollection& collection,
                                            TCollectionItem* item, TCollNotification action)>;
using TCollectionChangingEvent =
    TMethod<void(TObject* sender, TCollection& collection, TCollectionItem* item,
                 TCollNotification action, bool& allowChange)>;
using TCreateLabelEvent = TMethod<void(TObject* sender, TLabel& label, TControlInfo& info)>;
using TWriteFormSettingEvent =
    TMethod<void(TObject* sender, std::string_view iniFileName, std::string_view section,
                 TStrings& iniData, bool& allowWrite)>;
using TReadFormSettingEvent =
    TMethod<void(TObject* sender, std::string_view iniFileName, std::string_view section,
                 TStrings& iniData, bool& allowRead)>;
using TResizeControlEvent =
    TMethod<void(TObject* sender, TControlInfo& info, int areaWidth, bool& handled)>;
using TPlaceNodeImageEvent =
    TMethod<void(TObject* sender, TTreeNode& node, TBaseClassIdent nodeIdent, TObject* instance,
                 TPlaceImage& placeImage)>;
using TSelectStartNodeEvent =
    TMethod<void(TObject* sender, TTreeView& treeView, bool& defaultSelect)>;

} // namespace tarn
