#pragma once

#include "rtl/TVariant.h"
#include "rtl/TypInfo.h"
#include "streaming/TFiler.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <variant>

namespace tarn {

class TPersistent;

/// A change that stands ready to be made.
class TChange {
public:
    TChange() = default;
    TChange(const TChange&) = delete;
    TChange& operator=(const TChange&) = delete;
    virtual ~TChange() = default;

    /// Puts the new state in and keeps the old one, so that a second call takes the change back.
    /// What raises leaves the old state.
    virtual void Swap() = 0;
};

/// The value of a published property, in the slot of its kind. There are many of them.
class TPropChange {
public:
    TPropChange(TPersistent& instance, const TPropInfo& prop, const void* slot);
    void Swap(); ///< as TChange does

private:
    using TSlot = std::variant<std::int32_t, std::int64_t, long double, std::string, TVariant,
                               TRawMethod, TObject*>;
    static void* AddressOf(TSlot& slot);

    TPersistent* FInstance;
    const TPropInfo* FProp;
    TSlot FValue;
};

/// A block of data that an object reads and writes itself.
class TBlockChange final : public TChange {
public:
    /// \param value one value of the component stream
    /// \param where its place, for errors: "offset 5" \param path and whose it is
    TBlockChange(TReaderProc readData, TWriterProc writeData, std::string_view value,
                 std::string where, std::string path)
        : FReadData(std::move(readData)), FWriteData(std::move(writeData)), FValue(value),
          FWhere(std::move(where)), FPath(std::move(path)) {}
    void Swap() override;

private:
    std::string Written() const;
    void Read(std::string_view value) const;

    TReaderProc FReadData;
    TWriterProc FWriteData;
    std::string FValue, FWhere, FPath;
};

/// Whatever can be exchanged: `swap` does it, and does it back when called again.
class TSwapChange final : public TChange {
public:
    explicit TSwapChange(std::function<void()> swap) : FSwap(std::move(swap)) {}
    void Swap() override { FSwap(); }

private:
    std::function<void()> FSwap;
};

/// The changes that a load would make, read beside the objects and made at once when the whole load
/// has turned out well. The objects outlive it.
class TLoadJournal {
public:
    void Add(std::unique_ptr<TChange> change) { FChanges.emplace_back(std::move(change)); }
    void AddProp(TPersistent& instance, const TPropInfo& prop, const void* slot) {
        FChanges.emplace_back(std::in_place_type<TPropChange>, instance, prop, slot);
    }

    /// Makes all changes in their order. When one raises, those before it are taken back, in
    /// reverse, and the error passes on.
    void Commit();

private:
    using TEntry = std::variant<TPropChange, std::unique_ptr<TChange>>;
    static void Swap(TEntry& entry);

    std::deque<TEntry> FChanges;
};

} // namespace tarn
