#pragma once

#include "rtl/TObject.h"
#include "streaming/TFiler.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// A named block of data that an object stores beside its published properties: exactly one value
/// of the component stream, written and read by the two procedures.
struct TStorageProc {
    std::string Name;
    TReaderProc ReadData;
    TWriterProc WriteData; ///< also writes the state before a load, to be put back if that fails
    bool HasData = true;   ///< whether there is anything to save
};

/// The same for a block of raw bytes.
struct TBinStorageProc {
    std::string Name;
    TStreamProc ReadData;
    TStreamProc WriteData;
    bool HasData = true;
};

/// The base of settings objects: published properties, and named blocks of data behind them.
class TCustomSpcObject : public TPersistent {
public:
    static const TClassRecord ClassRecord;
    const TClassRecord& ClassType() const override { return ClassRecord; }

    /// Registers a block under a name that is not registered yet (without case); otherwise raises
    /// EInvalidOperation. Blocks are saved in the order of their registration, those of values
    /// before those of bytes.
    void AddStorageProc(std::string_view name, TReaderProc readData, TWriterProc writeData,
                        bool hasData);
    void AddBinStorageProc(std::string_view name, TStreamProc readData, TStreamProc writeData,
                           bool hasData);
    bool HasStorageProc(std::string_view name) const;
    bool HasBinStorageProc(std::string_view name) const;

    /// What was stored for this object and has no place in it, as it was read; saved again behind
    /// everything else. See TFitReader.
    std::string UnplacedProps;

protected:
    void DefineProperties(TFiler& filer) override;

private:
    void RequireNewName(std::string_view name) const;

    std::vector<TStorageProc> FProcs;
    std::vector<TBinStorageProc> FBinProcs;
};

} // namespace tarn
