#pragma once

#include "qsSpcMng.h"
#include "rtl/TStrings.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class TExpManager;

// --- The list of installed experts ------------------------------------------------------------

/// One installed expert and whether it takes part.
class TExpertInfo : public TSpcItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string ExpertNodeName; ///< what the user reads; stored ones never replace it
    std::string ExpertName;     ///< the registered name; the key
    bool Active = true;         ///< whether the expert is constructed

    const std::string& ShownName() const { return ExpertNodeName; }
    std::string GetNodeName() override { return ExpertNodeName; }
    void Assign(const TPersistent* source) override;
};

class TActiveExperts : public TFixedCollection {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TActiveExperts() : TFixedCollection(TClassRef<TCollectionItem>::Of<TExpertInfo>()) {}

    std::string GetUpdateName() const override { return "ExpertName"; }
    std::string GetNodeName() override;

    TExpertInfo* Get(int index) const { return static_cast<TExpertInfo*>(Items(index)); }
    /// The item of the expert registered under exactly that name; null when there is none.
    TExpertInfo* FindExpert(std::string_view name) const;
};

// --- The menu commands ------------------------------------------------------------------------

/// The settings of one menu command, and what it runs.
class TExpMenuItemData : public TSpcItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string ItemID; ///< the key
    std::string Caption;
    int ImageIndex = -1;         ///< in the IDE's image list
    bool HaveLineBefore = false; ///< whether a separator stands before the item
    std::string ShortCutText;    ///< for example "Ctrl+S"; empty is none

    // Set by the expert in its Init; not stored.
    TNotifyEvent OnExecute;
    TNotifyEvent OnUpdate;
    /// The caption of the current language. Only another one is stored, so that a change of the
    /// language shows.
    std::string DefaultCaption;

    bool HasOwnCaption() const { return Caption != DefaultCaption; }
    std::string GetNodeName() override { return Caption; }
    void PutAbsent(const TPutText& put) override { put("Caption", DefaultCaption); }
    /// Copies the identifier and the caption only.
    void Assign(const TPersistent* source) override;
};

class TExpMenuData : public TFixedCollection {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TExpMenuData() : TFixedCollection(TClassRef<TCollectionItem>::Of<TExpMenuItemData>()) {}

    std::string GetUpdateName() const override { return "ItemID"; }
    std::string GetNodeName() override;

    TExpMenuItemData* Get(int index) const { return static_cast<TExpMenuItemData*>(Items(index)); }
};

/// The items of the expert whose Init ran last: a list of references of its own, which an Init
/// clears and fills without touching the menu settings.
std::vector<TWeak<TExpMenuItemData>>& ExpMenuItems();

// --- The experts' own settings ----------------------------------------------------------------

/// One expert's settings object with its caption.
class TCustomDataItem : public TWrapperItem {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    std::string Caption;
    std::string DefaultCaption; ///< as for menu commands

    bool HasOwnCaption() const { return Caption != DefaultCaption; }
    std::string GetNodeName() override { return Caption; }
    void PutAbsent(const TPutText& put) override { put("Caption", DefaultCaption); }
};

class TCustomData : public TFreeCollection {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TCustomData() : TFreeCollection(TClassRef<TCollectionItem>::Of<TCustomDataItem>()) {}

    std::string GetNodeName() override;

    TCustomDataItem* Get(int index) const { return static_cast<TCustomDataItem*>(Items(index)); }
    /// Copies nothing but what the items refer to: identifiers, captions and references.
    void Assign(const TPersistent* source) override;
};

// --- The root ---------------------------------------------------------------------------------

/// All settings of the pack: the root of the settings tree.
class TExpData : public TSpcObject {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    TActiveExperts ActiveExperts;
    TExpMenuData MenuData;
    TCustomData CustomData;
    std::string LocalNames; ///< the property captions of all experts, INI text; not stored
    /// What the custom settings of a working copy refer to; see WorkingCopy.h.
    std::vector<std::unique_ptr<TPersistent>> OwnObjects;

    TActiveExperts* ActiveExpertsObject() const; ///< published as "ActiveExperts"
    TExpMenuData* MenuDataObject() const;        ///< published as "MenuData"
    TCustomData* CustomDataObject() const;       ///< published as "CustomData"

    std::string GetNodeName() override;
    void Assign(const TPersistent* source) override;

protected:
    /// The collections are stored as blocks: "ActiveExperts_", "MenuData_" and "CustomData_".
    void DefineProperties(TFiler& filer) override;
};

/// The shared settings object. It exists from the package's initialization to its finalization.
TExpData& ExpData();
bool HasExpData();
/// Frees the shared settings object and makes a new, empty one.
void RecreateExpData();
void FreeExpData();

/// Puts a settings object, which stays its owner's, into the shared settings.
/// \param name the identifier under which it is stored; an object of that name is replaced
/// \param caption what the user reads; the name when empty
/// \param localPropNames captions of its properties, INI text; the newest stands first
void AddStoredData(TPersistent* obj, std::string_view name, std::string_view caption,
                   std::string_view localPropNames);

// --- The manager's settings -------------------------------------------------------------------

/// The state of the settings editor's window.
class TEditorFormData : public TSpcObject {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    bool AutoSaveSetting = true;
    std::string SaveSettingShortCut = "Ctrl+S";

    /// The saved state, an ini text.
    TStrings* Setting() const { return FSetting.get(); }
    void SetSetting(TStrings* value) { FSetting->Assign(value); }

    std::string GetNodeName() override;
    void Assign(const TPersistent* source) override;

private:
    std::unique_ptr<TStringList> FSetting = std::make_unique<TStringList>();
};

/// The settings of the manager itself. Bound to a manager, it switches the error log; a copy that
/// is bound to none switches nothing.
class TExpManagerData : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    explicit TExpManagerData(TExpManager* manager = nullptr);
    ~TExpManagerData() override;

    std::string ExpertVersion = "1.0";
    bool AutoSaveSettings = true;
    std::string MainMenuSearchItem = "Tools";
    bool InsertMenuBeforeItem = true;
    bool MenuHaveLineBefore = false;
    bool MenuHaveLineAfter = false;

    bool ErrorLogAllowed() const { return FErrorLogAllowed; }
    /// A new value puts the error log's handler before the application's, or takes it away.
    void SetErrorLogAllowed(bool value);
    std::uint32_t MaxLogSize() const { return FMaxLogSize; } ///< kilobytes; 0 is no limit
    void SetMaxLogSize(std::uint32_t value);

    TEditorFormData* EditorFormData() const { return FEditorFormData.get(); }
    void SetEditorFormData(TEditorFormData* value) { FEditorFormData->Assign(value); }

private:
    TExpManager* FManager;
    bool FErrorLogAllowed = false;
    std::uint32_t FMaxLogSize = 0;
    std::unique_ptr<TEditorFormData> FEditorFormData = std::make_unique<TEditorFormData>();
};

/// The window state of an expert's own form.
class TFormSetting : public TSpcObject {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    bool AutoSavePlacement = false;
    std::string FormPlacement;
    std::string SavePlacementShortCut = "Ctrl+S";

    std::string GetNodeName() override;
    void Assign(const TPersistent* source) override;
};

} // namespace tarn
