#include "rtl/TObject.h"

#include "rtl/SysUtils.h"

#include <exception>
#include <utility>

namespace tarn {

constinit const TClassRecord TObject::ClassRecord{"TObject"};
constinit const TClassRecord TPersistent::ClassRecord{"TPersistent", &TObject::ClassRecord};

bool TObject::GetInterface(const TGUID& iid, void*& obj) {
    for (const TClassRecord* record = &ClassType(); record; record = record->Parent)
        for (const TInterfaceEntry& entry : record->Interfaces)
            if (*entry.IID == iid) {
                obj = entry.Cast(*this);
                return true;
            }
    obj = nullptr;
    return false;
}

void FreeObject(TObject* object) {
    const std::unique_ptr<TObject> owned(object);
    if (object) object->BeforeDestruction();
}

void DeleteObject(TObject* object) noexcept {
    delete object;
}

TPersistent::~TPersistent() {
    while (FLinks) FLinks->Detach();
}

void TPersistent::Assign(const TPersistent* source) {
    if (source)
        source->AssignTo(*this);
    else
        throw EConvertError(Format("cannot assign nothing to a %s", {ClassName()}));
}

void TPersistent::AssignTo(TPersistent& dest) const {
    throw EConvertError(Format("cannot assign a %s to a %s", {ClassName(), dest.ClassName()}));
}

void TPersistent::DefineProperties(TFiler&) {}

TWeakLink& TWeakLink::operator=(const TWeakLink& other) {
    if (this != &other) {
        Detach();
        Attach(other.FObject);
    }
    return *this;
}

void TWeakLink::Attach(TPersistent* object) {
    FObject = object;
    if (!object) return;
    FNext = object->FLinks;
    if (FNext) FNext->FPrev = this;
    object->FLinks = this;
}

void TWeakLink::Detach() {
    if (!FObject) return;
    if (FNext) FNext->FPrev = FPrev;
    (FPrev ? FPrev->FNext : FObject->FLinks) = FNext;
    FObject = nullptr;
    FPrev = FNext = nullptr;
}

} // namespace tarn
