#include "qsDataHndl.h"

#include "rtl/TMemoryStream.h"
#include "rtl/TStrings.h"
#include "streaming/TFiler.h"

namespace tarn {
namespace {

/// The storage as it was before its extended streams got a signature of their own.
class TFirstStorage : public TObjectStorage {
public:
    TFirstStorage() : TObjectStorage(FilerSignature) {}
};

bool HasPropertyBlocks(TObjectStorageFormat format) {
    return format == osfBin || format == osfText;
}

} // namespace

void SaveObjectBinary(TObjectList objects, const TStreamOrFile& target, bool asResource) {
    TFirstStorage().SaveObjectBinary(objects, target, asResource);
}

void SaveObjectBinaryEx(TObjectList objects, const TStreamOrFile& target) {
    TFirstStorage().SaveObjectBinaryEx(objects, target);
}

void SaveObjectText(TObjectList objects, const TStreamOrFile& target,
                    const TStrings& descriptions) {
    TFirstStorage().SaveObjectText(objects, target, descriptions);
}

void SaveObjectDataBinary(TObjectList objects, const TStreamOrFile& target,
                          std::string_view description, bool asResource) {
    TFirstStorage().SaveObjectDataBinary(objects, target, description, asResource);
}

void SaveObjectDataText(TObjectList objects, const TStreamOrFile& target,
                        const TStrings& descriptions, std::string_view description) {
    TFirstStorage().SaveObjectDataText(objects, target, descriptions, description);
}

void LoadObjectBinary(TObjectList objects, const TStreamOrFile& source, bool asResource) {
    TFirstStorage().LoadObjectBinary(objects, source, asResource);
}

void LoadObjectBinaryEx(TObjectList objects, const TStreamOrFile& source) {
    TFirstStorage().LoadObjectBinaryEx(objects, source);
}

void LoadObjectText(TObjectList objects, const TStreamOrFile& source) {
    TFirstStorage().LoadObjectText(objects, source);
}

void LoadComponentBinary(std::span<TComponent*> components, const TStreamOrFile& source,
                         bool asResource) {
    TFirstStorage().LoadComponentBinary(components, source, asResource);
}

void LoadComponentText(std::span<TComponent*> components, const TStreamOrFile& source) {
    TFirstStorage().LoadComponentText(components, source);
}

void LoadObjects(TObjectList objects, const TStreamOrFile& source) {
    TFirstStorage().LoadObjects(objects, source);
}

bool LoadObjectData(TObjectList objects, const TStreamOrFile& source,
                    const TDescriptionEvent& onDescription) {
    TFirstStorage storage;
    storage.OnDescription = onDescription;
    return storage.LoadObjectData(objects, source);
}

bool SafeLoadObjects(TObjectList objects, const TStreamOrFile& source, TObjectStorageFormat format,
                     bool asks, const TDescriptionEvent& onDescription) {
    TFirstStorage storage;
    storage.SetFormat(format);
    storage.AsksToContinue = asks;
    storage.OnDescription = onDescription;
    return storage.SafeLoadObjects(objects, source);
}

// --- Property blocks --------------------------------------------------------------------------

std::string GetProps(TObjectList objects, TObjectStorageFormat format) {
    if (!HasPropertyBlocks(format)) return {};
    TFirstStorage storage;
    storage.SetFormat(format);
    TMemoryStream stream;
    storage.SaveObjects(objects, stream, TStringList());
    return std::string(stream.Text());
}

void SetProps(TObjectList objects, std::string_view data, TObjectStorageFormat format) {
    TBytesStream stream(data);
    if (format == osfBin) LoadObjectBinary(objects, stream, false);
    if (format == osfText) LoadObjectText(objects, stream);
}

bool SetPropsEx(TObjectList objects, std::string_view data, TObjectStorageFormat format) {
    if (!HasPropertyBlocks(format)) return true;
    TBytesStream stream(data);
    return SafeLoadObjects(objects, stream, format);
}

bool ImportProps(TPersistent& dest, TPersistent& source) {
    const TScopedValue suppressed(SuppressErrorInfo, true);
    TPersistent* const from = &source;
    TPersistent* const to = &dest;
    return SetPropsEx({&to, 1}, GetProps({&from, 1}, osfBin), osfBin);
}

} // namespace tarn
