#include "TCustomSpcObject.h"

#include "rtl/SysUtils.h"

#include <algorithm>

namespace tarn {

constinit const TClassRecord TCustomSpcObject::ClassRecord{
    "TCustomSpcObject", &TPersistent::ClassRecord, CreateObject<TCustomSpcObject>};

namespace {

template <class TProcs> bool HasNamed(const TProcs& procs, std::string_view name) {
    return std::any_of(procs.begin(), procs.end(),
                       [name](const auto& proc) { return SameText(proc.Name, name); });
}

} // namespace

void TCustomSpcObject::RequireNewName(std::string_view name) const {
    if (HasStorageProc(name) || HasBinStorageProc(name))
        throw EInvalidOperation(Format("%s stores a block %s already", {ClassName(), name}));
}

void TCustomSpcObject::AddStorageProc(std::string_view name, TReaderProc readData,
                                      TWriterProc writeData, bool hasData) {
    RequireNewName(name);
    FProcs.push_back({std::string(name), std::move(readData), std::move(writeData), hasData});
}

void TCustomSpcObject::AddBinStorageProc(std::string_view name, TStreamProc readData,
                                         TStreamProc writeData, bool hasData) {
    RequireNewName(name);
    FBinProcs.push_back({std::string(name), std::move(readData), std::move(writeData), hasData});
}

bool TCustomSpcObject::HasStorageProc(std::string_view name) const {
    return HasNamed(FProcs, name);
}

bool TCustomSpcObject::HasBinStorageProc(std::string_view name) const {
    return HasNamed(FBinProcs, name);
}

void TCustomSpcObject::DefineProperties(TFiler& filer) {
    TPersistent::DefineProperties(filer);
    for (const TStorageProc& proc : FProcs)
        filer.DefineProperty(proc.Name, proc.ReadData, proc.WriteData, proc.HasData);
    for (const TBinStorageProc& proc : FBinProcs)
        filer.DefineBinaryProperty(proc.Name, proc.ReadData, proc.WriteData, proc.HasData);
}

} // namespace tarn
