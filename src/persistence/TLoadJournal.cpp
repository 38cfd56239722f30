#include "TLoadJournal.h"

#include "rtl/TMemoryStream.h"
#include "rtl/TObject.h"
#include "streaming/TReader.h"
#include "streaming/TWriter.h"

namespace tarn {
namespace {

/// Puts an old state back while an error passes on. What an object refuses to take back must
/// neither hide that error nor keep the others from theirs.
template <class F> void Restore(F&& putBack) {
    try {
        putBack();
    } catch (...) {
        return;
    }
}

} // namespace

// --- A property -------------------------------------------------------------------------------

void* TPropChange::AddressOf(TSlot& slot) {
    return std::visit([](auto& value) -> void* { return &value; }, slot);
}

TPropChange::TPropChange(TPersistent& instance, const TPropInfo& prop, const void* slot)
    : FInstance(&instance), FProp(&prop) {
    switch (prop.PropType->Kind) {
    case tkInt64:
        FValue = *static_cast<const std::int64_t*>(slot);
        break;
    case tkFloat:
        FValue = *static_cast<const long double*>(slot);
        break;
    case tkString:
    case tkLString:
    case tkWString:
        FValue = *static_cast<const std::string*>(slot);
        break;
    case tkVariant:
        FValue = *static_cast<const TVariant*>(slot);
        break;
    case tkMethod:
        FValue = *static_cast<const TRawMethod*>(slot);
        break;
    case tkClass:
        FValue = *static_cast<TObject* const*>(slot);
        break;
    default:
        FValue = *static_cast<const std::int32_t*>(slot);
    }
}

void TPropChange::Swap() {
    TSlot old;
    std::visit([&old]<class T>(const T&) { old.emplace<T>(); }, FValue);
    FProp->Get(*FInstance, AddressOf(old));
    try {
        FProp->Set(*FInstance, AddressOf(FValue));
    } catch (...) {
        // A setter may have changed something before it raised.
        Restore([&] { FProp->Set(*FInstance, AddressOf(old)); });
        throw;
    }
    FValue = std::move(old);
}

// --- A block ----------------------------------------------------------------------------------

std::string TBlockChange::Written() const {
    if (!FWriteData) return {};
    TMemoryStream stream;
    TWriter writer(stream);
    FWriteData(writer);
    writer.FlushBuffer();
    return std::string(stream.Text());
}

void TBlockChange::Read(std::string_view value) const {
    if (value.empty()) return; // there was nobody to write what was there
    TReader reader(value);
    reader.OnPlace = [this](std::int64_t) { return FWhere; };
    const TReader::TPlace place(reader, FPath);
    FReadData(reader);
    if (reader.BytesLeft() != 0) reader.Fail("a block that is not read to its end");
}

void TBlockChange::Swap() {
    std::string old = Written();
    try {
        Read(FValue);
    } catch (...) {
        Restore([&] { Read(old); });
        throw;
    }
    FValue = std::move(old);
}

// --- The journal ------------------------------------------------------------------------------

void TLoadJournal::Swap(TEntry& entry) {
    if (auto* const prop = std::get_if<TPropChange>(&entry))
        prop->Swap();
    else
        std::get<std::unique_ptr<TChange>>(entry)->Swap();
}

void TLoadJournal::Commit() {
    auto next = FChanges.begin();
    try {
        for (; next != FChanges.end(); ++next) Swap(*next);
    } catch (...) {
        while (next != FChanges.begin()) {
            --next;
            Restore([&] { Swap(*next); });
        }
        throw;
    }
}

} // namespace tarn
