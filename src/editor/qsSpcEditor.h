#pragma once

#include "PropKinds.h"
#include "SpcEditorTypes.h"
#include "TControlInfo.h"
#include "TIniStrings.h"
#include "TPaintAreaInfo.h"
#include "TSpcForm.h"
#include "vcl/Forms.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class TAllSteps;

/// The settings editor: shows the objects of a settings tree as nodes and the published properties
/// of the selected node as rows, a label and a control each, and writes what the user changes back.
/// It knows no class of the tree, only their type information.
///
/// On a settings file it edits a copy of the tree, which a save writes to the file: the tree itself
/// is never touched. On live objects it writes into the tree: with eoSaveSpcOnChange at once, else
/// when the changes are saved.
///
///     made -- Init, SetSpcRoot --> bound -- ShowTree --> window open -- Release --> bound
///
/// The window and its rows exist while it is open, the copy from Prepare to UnPrepare.
class TSpcEditor : public TComponent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TSpcEditor(TComponent* owner = nullptr);
    ~TSpcEditor() override;

    // --- Published properties -----------------------------------------------------------------

    bool ShowStatusBar() const { return FShowStatusBar; }
    void SetShowStatusBar(bool value);
    /// Turns every translation off.
    bool SimpleMode() const { return FSimpleMode; }
    void SetSimpleMode(bool value);
    /// Sections of the header, which repeat "Parameter" and "Value". Raises ESpcEditorError 51509
    /// below 1.
    int ColCount() const { return FColCount; }
    void SetColCount(int value);
    TControlAreaInfo* ControlAreaInfo() const { return FControlAreaInfo.get(); }
    void SetControlAreaInfo(TControlAreaInfo* value) { FControlAreaInfo->Assign(value); }
    TLabelAreaInfo* LabelAreaInfo() const { return FLabelAreaInfo.get(); }
    void SetLabelAreaInfo(TLabelAreaInfo* value) { FLabelAreaInfo->Assign(value); }

    // The lists; what is given to a setter is copied.
    /// INI text: the parameter section of each kind's control, called "IntegerControl" and so on.
    TStrings* ControlParams() const { return FControlParams.get(); }
    void SetControlParamsText(TStrings* value) { FControlParams->Assign(value); }
    /// The same, which goes before those key by key.
    TStrings* RedefiedParams() const { return FRedefiedParams.get(); }
    void SetRedefiedParams(TStrings* value) { FRedefiedParams->Assign(value); }
    /// Full names of properties that are shown, and not to be edited.
    TStrings* DisabledProps() const { return FDisabledProps.get(); }
    void SetDisabledProps(TStrings* value) { FDisabledProps->Assign(value); }
    /// Full names of properties that are not shown.
    TStrings* InvisibleProps() const { return FInvisibleProps.get(); }
    void SetInvisibleProps(TStrings* value) { FInvisibleProps->Assign(value); }
    /// INI text: sections named after classes and types, a display text for each property or value.
    TStrings* TranslatingTable() const { return FTranslatingTable.get(); }
    void SetTranslatingTable(const TStrings* value) { FTranslatingTable->Assign(value); }
    /// Replaces one of the five lists.
    void SetStringsProp(TSpcEdStringsKind kind, const TStrings& strings);
    TStrings* StringsProp(TSpcEdStringsKind kind) const;

    const std::string& FormCaption() const { return FFormCaption; }
    void SetFormCaption(std::string_view value);
    /// What the editor is unless its host says otherwise.
    static constexpr TSpcFormOptions BaseFormOptions{foAreasDynamicResize, foModalShowing,
                                                     foTreeExpandOnEnter, foMultiLineCaptions};
    TSpcFormOptions FormOptions = BaseFormOptions; ///< looked at each time the editor opens
    TSpcEdOptions Options;
    static constexpr TSpcEdVisibleButtons AllButtons =
        TSpcEdVisibleButtons::FromMask((1u << (vbCollapseNode + 1)) - 1);
    TSpcEdVisibleButtons VisibleButtons = AllButtons; ///< looked at when the editor opens
    TFont* HeaderFont() const { return FHeaderFont.get(); }
    void SetHeaderFont(TFont* value) { FHeaderFont->Assign(value); }
    TFont* TreeFont() const { return FTreeFont.get(); }
    void SetTreeFont(TFont* value) { FTreeFont->Assign(value); }
    std::string IniFileName; ///< where the window's state is kept, unless an event does it
    std::string IniSection;
    int TopInc = 0; ///< pixels above the first row

    // --- Events -------------------------------------------------------------------------------

    TControlNotifyEvent AfterCreateControl;
    TAfterGetControlDataEvent AfterGetControlData;
    TAfterSaveSpcEvent AfterSaveSpc;
    TControlNotifyEvent AfterSetControlData;
    TBeforeCreateControlEvent BeforeCreateControl;
    TBeforeGetControlDataEvent BeforeGetControlData;
    TBeforeSaveSpcEvent BeforeSaveSpc;
    TControlHandlingEvent BeforeSetControlData;
    TCollectionChangeEvent OnCollectionChange;
    TCollectionChangingEvent OnCollectionChanging;
    TControlNotifyEvent OnControlChange;
    TCreateLabelEvent OnCreateLabel;
    TCreateSpc OnCreateSpc;            ///< fills the copy from the tree, in place of its Assign
    TControlNotifyEvent OnDropControl; ///< a row is taken off
    TCreateSpc OnLoadSpc;              ///< the copy was loaded from a file
    TPlaceNodeImageEvent OnPlaceNodeImage;
    TReadFormSettingEvent OnReadFormSetting;
    TResizeControlEvent OnResizeControl;
    TSelectStartNodeEvent OnSelectStartNode;
    TWriteFormSettingEvent OnWriteFormSetting;

    // --- Life cycle ---------------------------------------------------------------------------

    /// Binds the editor to a tree, which stays its owner's, and to a file when the data names one.
    virtual void Init(const TInitData& data);
    /// Raises ESpcEditorError 51500 before anything was bound, 51501 when the tree is not there
    /// (any more).
    void CheckInit() const;
    /// A settings tree, or any other object with published properties. A window that is open shows
    /// it; what was changed in the former one and not saved is forgotten.
    void SetSpcRoot(TPersistent* root);
    TPersistent* SpcRoot() const { return FRoot.Get(); }
    /// With a name the editor works on that settings file, without one on live objects.
    void SetSpcFileName(std::string_view name);
    const std::string& SpcFileName() const { return FSpcFileName; }
    /// Whether the editor works on a settings file, which may have no name yet.
    bool OnFile() const { return FOnFile; }
    void SetOnFile(bool value) { FOnFile = value; }

    /// Makes ready for a window: the parameter sections and, on a file, the copy.
    void Prepare();
    void UnPrepare();
    /// Makes the window, not shown yet, unless there is one.
    virtual void MakeForm();
    /// Shows the tree. A modal window is closed when this returns; then, true when the tree was
    /// saved since. A window that is not modal stays open: false.
    bool ShowTree() { return ShowTreeEx(nullptr); }
    bool ShowTree(TPersistent& root);
    /// The same with the node of an object of the tree selected, or that of its copy.
    bool ShowTreeEx(TObject* selected);
    TSpcForm* Form() const { return FForm.Get(); } ///< null while there is none
    /// Frees the window, the rows and the copy: at once, or when its current event is over.
    void Release();
    void DoRelease();

    TSpcEdState State() const { return FState; }
    bool Modified() const { return FModified; } ///< there are changes that are not saved
    /// Whether the tree was saved since the window was shown.
    bool ChangedSinceShown() const { return FChangedSinceShown; }
    /// What the rows edit: the copy, or the tree itself.
    TPersistent* GetUpdatingSpc() const;

    // --- The tree -----------------------------------------------------------------------------

    void BuildTree();
    /// Adds an item to the collection of the node, or behind the item of the node, and selects it.
    /// Null when the handler refuses, or there is no collection that takes new items.
    TTreeNode* AddNode(TTreeNode& node);
    /// Deletes the item of the node, or all items when it is a collection; false when refused.
    bool DeleteNode(TTreeNode& node);
    /// Moves the item of the node among those of its collection; false at the end, or refused.
    bool MoveNode(TTreeNode& node, TNodeMotion motion);
    bool CanAddNode(const TTreeNode& node) const;
    bool CanDeleteNode(const TTreeNode& node) const;
    bool CanMoveNode(const TTreeNode& node, TNodeMotion motion) const;

    static std::string GetNodeName(TObject& object);
    std::string FindNodeName(TObject& object, std::string_view defaultName) const;
    std::string FindNodeNameEx(TObject& object, std::string_view section,
                               std::string_view defaultName) const;
    std::string FindItemNodeName(TCollectionItem& item, std::string_view section,
                                 std::string_view collectionName, int index) const;
    /// Node captions cannot be edited: raises Exception "Operation not supported".
    static void SetNodeName(TTreeNode& node, std::string_view name);
    static std::string GetClassName(const TObject& object);
    /// The kind of a node's object.
    static TBaseClassIdent GetInstanceID(const TObject* object);
    /// The first node of an object of that kind from `from` on, in the order of the tree; null when
    /// there is none.
    static TTreeNode* FindInstanceID(TTreeNode* from, TBaseClassIdent ident);
    /// The same below `node` only, behind `after`, which is null for the first one.
    static TTreeNode* NextDescendantID(TTreeNode& node, TTreeNode* after, TBaseClassIdent ident);
    /// The node that shows the object; null when none does.
    TTreeNode* FindNode(const TObject* object) const;
    void PlaceNodeImages();
    /// Makes room for another picture in the tree's image list; its index.
    int AddNewImage();

    // --- The rows -----------------------------------------------------------------------------

    const TControlList& Controls() const { return FControls; }
    /// Shows the rows of an object, in place of those there are.
    void CreateNodeControls(TPersistent* instance);
    /// Whether a property is shown, as a row or a node.
    virtual bool CanProcessProperty(TPersistent& instance, const TPropInfo& prop);
    /// Makes the row of a property at `top`, which goes below it. Null when it has none.
    TControlInfo* CreatePropControl(TPersistent& instance, const TPropInfo& prop, int propIndex,
                                    int& top);
    void DropControl(TControlInfo& info); ///< takes a row off and frees it
    void FreeControl(TControlInfo& info); ///< frees the control and the label of a row
    void FreeControlInfo(std::unique_ptr<TControlInfo> info);
    /// Makes the rows on show anew; changes that are not written yet stay.
    void RebuildControls();
    /// Gives a control the place that its width and the control area's alignment say.
    /// \param areaWidth of the control area, less its margins
    void ResizeControl(TControlInfo& info, int areaWidth);
    void UpdateLabelArea();
    void UpdateControlArea();
    void UpdatePaintAreas(TAreaKind kind);
    /// Gives the label area a width of its own, to which it may grow again; pixels.
    void SetLabelWidth(int value);
    /// Between the two an area is not painted; the pairs nest.
    void BeginUpdate(TAreaKind kind);
    void EndUpdate(TAreaKind kind);
    void SetRedrawMode(TAreaKind kind, bool on);
    void RedrawWnd(TAreaKind kind);
    /// Applies a parameter section to a row: the lines of an INI section.
    void SetControlParams(TControlInfo& info, const TStrings& section);
    /// Makes the list the merged parameter section of a kind; empty when there is none.
    void ReadParamSection(std::string_view kindName, TStrings& lines) const;
    void UpdateControlParams(TControlInfo& info, std::string_view kindName);
    /// Merges the parameter texts. Raises ESpcEditorError 51512 for a line that is none.
    void PrepareParams();

    // --- Data ---------------------------------------------------------------------------------

    /// Fills the control of a row from its property.
    virtual void SetControlData(TControlInfo& info);
    /// Writes the control's content into the property of a row; conversion errors pass through.
    virtual void GetControlData(TControlInfo& info);
    void SetControlsData();
    /// Writes the rows on show back, all or none: an error passes on with the row named, and the
    /// objects are as before. False when a handler has stopped it.
    bool GetControlsData();
    /// The same with the rows of other nodes whose changes wait.
    bool GetControlsDataEx();
    /// The change event of every control. \param sender the row's EModifyObject
    void ControlChange(TObject* sender);
    TNotifyEvent ChangeAction() { return TNotifyEvent::Of<&TSpcEditor::ControlChange>(this); }

    /// Before the window closes: asks when there are changes. False when it is to stay open.
    bool SaveChanges();
    bool DoSaveChanges();
    /// Forgets the changes; a window that stays open shows the values of before.
    void UndoChanges();
    /// Saves to the file, or asks for one. False when refused, cancelled or stopped.
    bool Save();
    bool SaveAs();
    void SaveToFile(const std::string& fileName, TObjectStorageFormat format);
    bool Load(); ///< asks for a file; false when cancelled
    /// Loads a file into the copy, all or nothing; the changes wait to be saved. False when the
    /// file is not there, or the user does not want it.
    bool LoadFromFile(const std::string& fileName);
    /// Makes the copy, or fills it anew.
    void MakeSpcClone();
    void DropSpcClone();
    /// Fills the copy anew and shows it.
    void UpdateSpc();

    // --- Texts --------------------------------------------------------------------------------

    /// The text of a name in a section of the table; the name when there is none.
    std::string Translate(std::string_view section, std::string_view name) const;
    std::string TranslateEx(std::string_view section, std::string_view name,
                            std::string_view defaultText) const;
    void TranslateEnumNames(TStrings& list, std::string_view section) const;
    /// Makes the list the names of an enumeration's values, or of a set's elements, as the user
    /// reads them.
    void ReadValueNames(const TTypeInfo& type, TStrings& names) const;
    /// The class name and the property name, joined by ".".
    static std::string GetFullPropName(const TPersistent& instance, const TPropInfo& prop);

    // --- The window's state -------------------------------------------------------------------

    virtual void ReadFormSetting(std::string_view iniFileName, std::string_view section,
                                 TStrings& data);
    virtual void WriteFormSetting(std::string_view iniFileName, std::string_view section,
                                  const TStrings& data);

    const TKeyFilter& KeyFilter() const { return FKeyFilter; }

protected:
    /// What the parameter sections are unless ControlParams is changed.
    virtual std::string DefaultParams() const { return BuiltInParams(); }
    /// Makes the copy one of the tree as it is now: by OnCreateSpc, or else its Assign.
    virtual void FillClone(TPersistent& clone);
    /// Whether a property that CanProcessProperty accepts is a node instead of a row.
    virtual bool BecomesNode(const TPropInfo& prop) const;
    /// Supplies the control of a kind of its own, as a handler of BeforeCreateControl does.
    virtual void DoBeforeCreateControl(TControlInfo& info, TNewControlData& data, bool& handled);
    virtual void DoAfterCreateControl(TControlInfo& info);
    virtual void DoCreateLabel(TLabel& label, TControlInfo& info);
    virtual void DoControlChange(TControlInfo& info);
    virtual bool CanReadFormSetting(std::string_view iniFileName, std::string_view section,
                                    TStrings& data);
    virtual bool CanWriteFormSetting(std::string_view iniFileName, std::string_view section,
                                     TStrings& data);
    /// Shows a question over the window, with the application's title.
    /// \param buttons an MB_... value
    TDialogAnswer Ask(std::string_view question, std::uint32_t buttons) const;
    /// Calls `work` with the state set, which ends however it ends.
    template <class F> void InState(TSpcEdStateFlag flag, F&& work);

private:
    friend class TSpcForm;
    using TProps = std::vector<const TPropInfo*>;
    using TRows = std::vector<std::unique_ptr<TControlInfo>>;
    class TAreaUpdate;
    class TRowWalk;
    struct TRowRun;

    // Life
    std::unique_ptr<TPersistent> NewClone();
    void FormShown();
    void FormSettled(); ///< the window is on the screen: selects the start node
    void FormHidden();
    void FormGone() noexcept;
    void ForgetRows();
    void SetCaption();
    TPersistent* InShownTree(TObject* object);
    // Tree
    const TProps& PropsOf(const TClassRecord& record);
    TPersistent* ValueOf(TPersistent& instance, const TPropInfo& prop) const;
    static bool SharesNode(TPersistent& parent, const TPropInfo& prop);
    static bool NamesNode(const TPropInfo& prop);
    void ProcessItem(TPersistent& object, TTreeNode* parent, std::string_view name);
    void ProcessProps(TPersistent& object, TTreeNode& node);
    void ProcessContent(TPersistent& object, TTreeNode& node);
    bool IsOnWay(const TObject& object) const;
    void ProcessItems(TCollection& collection, TTreeNode& node);
    void RenameItems(TTreeNode& collectionNode, const TCollection& collection);
    TTreeNode* AddItemNode(TCollectionItem& item, TTreeNode& collectionNode);
    void DropRowsBelow(const TTreeNode& node, bool itself, TAllSteps& steps);
    void DeleteNodes(TTreeNode& node, const TCollection& collection, TAllSteps& steps);
    bool PlaceImages(TTreeNode& node);
    bool AllowCollectionChange(TCollection& collection, TCollectionItem* item,
                               TCollNotification action);
    void CollectionChanged(TCollection& collection, TCollectionItem* item,
                           TCollNotification action);
    void PlaceImagesFrom(TTreeNode& node);
    void AddRoot();
    static std::string NameByProperty(TPersistent& object);
    std::string ItemName(TCollectionItem& item, const TTreeNode& collectionNode, int index);
    TObject* ObjectOf(const TTreeNode& node) const;
    TCollection* CollectionOf(const TTreeNode& node) const;
    TPersistent* Counterpart(TPersistent& original, TPersistent& copy, const TObject& wanted);
    TPersistent* PropCounterpart(TPersistent& original, TPersistent& copy, const TPropInfo& prop,
                                 const TObject& wanted);
    TPersistent* ItemCounterpart(TPersistent& original, TPersistent& copy, const TObject& wanted);
    bool MayLeaveRows();
    void SpcTreeChanging(TObject* sender, TTreeNode* node, bool& allow);
    void SpcTreeChange(TObject* sender, TTreeNode* node);
    void SelectStartNode();
    // Rows
    bool IsCurrent(unsigned build) const;
    void MakeRows(TPersistent* instance, unsigned build);
    void FinishRows(unsigned build);
    void DropHalf(TPersistent* instance);
    void CreateRows(TPersistent& instance, TRowRun& run);
    bool IsInvisible(const TPersistent& instance, const TPropInfo& prop) const;
    std::unique_ptr<TControlInfo> MakeControl(TPersistent& instance, const TPropInfo& prop,
                                              int propIndex);
    bool MakeSuppliedControl(TControlInfo& info, bool& handled);
    bool MakeBuiltInControl(TControlInfo& info);
    void MakeLabel(TControlInfo& info);
    std::string LabelCaption(const TControlInfo& info) const;
    void LabelClicked(TObject* label);
    void GrowLabelArea(const TLabel& label);
    static int PlaceRow(TControlInfo& info, int top);
    static bool ReadPlaceParam(TControlInfo& info, std::string_view line);
    void UpdatePlaceParams(TControlInfo& info);
    void ClearPaintAreas(bool pendingToo = false);
    void Drop(std::unique_ptr<TControlInfo> info);
    void DropAll(TRows rows);
    void FreeGone();
    static bool CanWrite(const TControlInfo& info);
    bool KeepsPending() const;
    std::unique_ptr<TControlInfo> TakePending(const TPersistent& instance, const TPropInfo& prop);
    void DropPending();
    void DropPendingBelow(const TTreeNode& node, bool itself);
    void CheckDisabledState();
    void ShowCount();
    TControl* Area(TAreaKind kind) const;
    template <class F> void ForEachArea(TAreaKind kind, F&& visit) const;
    // Data
    void FillRow(TControlInfo& info);
    bool ReadRow(TControlInfo& info, bool& stopped);
    void Saved();
    bool ReadRows(const std::vector<TControlInfo*>& rows);
    std::string RowName(const TControlInfo& info) const;
    void ShowFault(TControlInfo& info);
    void ReadTolerantly();
    std::vector<TControlInfo*> Rows(bool pending) const;
    bool DoSave(const std::string& fileName);
    bool InternalSaveAs(std::string& fileName);
    TSpcObject& SpcToSave();
    // The lists
    void AreasChange(TObject*);
    void FontsChange(TObject*);
    void TranslatingTableChange(TObject*);
    void ControlParamsChange(TObject*);
    void RedefiedParamsChange(TObject*) { ControlParamsChange(nullptr); }
    void DisabledPropsChange(TObject*) { CheckDisabledState(); }
    void InvisiblePropsChange(TObject*) { RebuildControls(); }

    bool FShowStatusBar = true;
    bool FSimpleMode = false;
    int FColCount = 1;
    std::unique_ptr<TControlAreaInfo> FControlAreaInfo = std::make_unique<TControlAreaInfo>();
    std::unique_ptr<TLabelAreaInfo> FLabelAreaInfo = std::make_unique<TLabelAreaInfo>();
    std::unique_ptr<TStringList> FControlParams = std::make_unique<TStringList>();
    std::unique_ptr<TStringList> FRedefiedParams = std::make_unique<TStringList>();
    std::unique_ptr<TStringList> FDisabledProps = std::make_unique<TStringList>();
    std::unique_ptr<TStringList> FInvisibleProps = std::make_unique<TStringList>();
    std::unique_ptr<TStringList> FTranslatingTable = std::make_unique<TStringList>();
    std::string FFormCaption;
    std::unique_ptr<TFont> FHeaderFont = std::make_unique<TFont>();
    std::unique_ptr<TFont> FTreeFont = std::make_unique<TFont>();

    TIniStrings FTable;    ///< the translating table
    TIniStrings FSections; ///< the merged parameter sections
    bool FSectionsReady = false;
    std::map<const TClassRecord*, TProps> FProps; ///< in the order of the rows
    bool FPropsSorted = false;
    TKeyFilter FKeyFilter;

    bool FBound = false;
    TWeak<TPersistent> FRoot;
    std::unique_ptr<TPersistent> FClone;
    std::string FSpcFileName;
    TObjectStorageFormat FFormat = osfBin;
    bool FOnFile = false;

    TWeak<TSpcForm> FForm;   ///< owned
    bool FFormUsed = false;  ///< it was shown already
    bool FModalForm = false; ///< it is being shown as a modal one
    TSpcEdState FState;
    bool FModified = false;
    bool FChangedSinceShown = false;
    TWeak<TPersistent> FStartObject; ///< of ShowTreeEx
    TWeak<TPersistent> FShown;       ///< whose rows are shown
    TControlList FControls;
    /// Rows of other nodes of live objects, hidden, with changes that wait to be written.
    TRows FPending;
    TRows FGone;              ///< rows that were taken off while somebody goes through them
    int FWalks = 0;           ///< those who do
    unsigned FBuild = 0;      ///< the number of the last build of rows
    int FLabelWidth = 0;      ///< of the label area, pixels
    int FUpdates[2] = {0, 0}; ///< nested updates of the two areas
    std::vector<const TObject*> FOnWay; ///< the objects above the one that is put into the tree
};

template <class F> void TSpcEditor::InState(TSpcEdStateFlag flag, F&& work) {
    const bool outer = !FState.Contains(flag);
    FState.Include(flag);
    try {
        work();
    } catch (...) {
        if (outer) FState.Exclude(flag);
        throw;
    }
    if (outer) FState.Exclude(flag);
}

} // namespace tarn
