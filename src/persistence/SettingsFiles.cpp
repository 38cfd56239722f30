#include "SettingsFiles.h"

#include "SpcStrings.h"
#include "TFitReader.h"
#include "TObjectSaver.h"
#include "TSpcObject.h"
#include "qsLocale.h"
#include "rtl/SafeFile.h"
#include "vcl/TComponent.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace tarn {

TSaveSpcProc SaveSpcProc = SaveSpcInner;
TLoadSpcProc LoadSpcProc = LoadSpcInner;

namespace {

TSpcObject& Required(TSpcObject* spc) {
    if (!spc) throw ESpcMngError(LocaleStr(strNoSpcObject));
    return *spc;
}

} // namespace

void SaveSpcAs(TSpcObject& spc, const std::string& fileName, TObjectStorageFormat format,
               std::string_view headerName) {
    TObjectSaver saver;
    saver.Format = format == osfBin ? 1 : format == osfText ? 2 : 0;
    TPersistent* const object = &spc;
    saver.SaveObjects({&object, 1}, fileName, TStringList{MakeVerInfo(format)}, headerName);
}

void SaveSpcInner(TSpcObject& spc, const std::string& fileName, TObjectStorageFormat format) {
    SaveSpcAs(spc, fileName, format, {});
}

bool LoadSpcInner(TSpcObject& spc, const std::string& fileName, bool stopAtErrors,
                  const TCheckVerData& check) {
    if (!IdentityOf(fileName)) return false;
    TObjectSaver saver;
    saver.DetectFormat = true;
    saver.KeepGoing = !stopAtErrors;
    saver.OnCheckDescription = [&check](std::string_view description, bool text, bool& cancel) {
        CheckVer(description, text, cancel, check);
    };
    TPersistent* const object = &spc;
    return saver.LoadObjects({&object, 1}, fileName);
}

void SaveSpc(TSpcObject* spc, const std::string& fileName, TObjectStorageFormat format) {
    SaveSpcProc(Required(spc), fileName, format);
}

bool LoadSpc(TSpcObject* spc, const std::string& fileName, bool stopAtErrors,
             const TCheckVerData& check) {
    return LoadSpcProc(Required(spc), fileName, stopAtErrors, check);
}

void RecreateSpc(std::unique_ptr<TSpcObject>& spc) {
    const TClassRecord& record = Required(spc.get()).ClassType();
    if (!record.Create) throw EInvalidOperation(Format("%s is abstract", {record.Name}));
    spc.reset(); // the old one gives back what it holds before the new one takes it
    spc.reset(static_cast<TSpcObject*>(record.Create().release()));
}

namespace {

/// Reads one node of a root instead of the whole.
class TNodeSaver final : public TObjectSaver {
public:
    explicit TNodeSaver(std::string_view path) : FPath(path) { DetectFormat = true; }

    bool Found() const { return FFound; }

protected:
    void ReadRoot(TFitReader& reader, TPersistent& node) const override {
        FFound = reader.ReadNode(node, FPath);
    }

private:
    std::string_view FPath;
    mutable bool FFound = false;
};

} // namespace

bool LoadSingleNode(TPersistent& node, const std::string& fileName, std::string_view nodePath) {
    if (!IdentityOf(fileName)) throw ESpcMngError(Format(LocaleStr(strNoSpcFile), {fileName}));
    const TNodeSaver saver(nodePath);
    TPersistent* const object = &node;
    saver.LoadWhole({&object, 1}, fileName);
    return saver.Found();
}

// --- What the settings editor starts with -----------------------------------------------------

namespace {

struct TUserData {
    TWeak<TComponent> Editor;
    void* Data;
};

struct TInitState {
    std::optional<TInitData> Data;
    std::vector<TUserData> UserData;
};

TInitState& InitState() {
    static TInitState state;
    return state;
}

} // namespace

void FillInitData(std::string_view fileName, TObjectStorageFormat format, TSpcObject* spc) {
    SetInitData({std::string(fileName), format, spc});
}

void SetInitData(const TInitData& data) {
    InitState().Data = data;
}

const TInitData& GetInitData() {
    if (!InitState().Data) throw ESpcMngError(LocaleStr(strNoInitData));
    return *InitState().Data;
}

void AddUserData(TComponent& editor, void* data) {
    std::vector<TUserData>& all = InitState().UserData;
    const auto gone = [&editor](const TUserData& each) {
        return !each.Editor || each.Editor == &editor;
    };
    all.erase(std::remove_if(all.begin(), all.end(), gone), all.end());
    if (data) all.push_back({&editor, data});
}

void* GetUserData(const TComponent& editor) {
    for (const TUserData& each : InitState().UserData)
        if (each.Editor == &editor) return each.Data;
    return nullptr;
}

} // namespace tarn
