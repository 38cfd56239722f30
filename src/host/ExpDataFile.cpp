#include "ExpDataFile.h"

#include "qsErrorLog.h"
#include "qsExpShrData.h"
#include "rtl/SafeFile.h"
#include "rtl/TMemoryStream.h"

#include <optional>

namespace tarn {
namespace {

constexpr std::string_view HeaderName = "ExpertData";

/// What became of a file, as it stood then.
struct TRefusal {
    TFileIdentity File;
    std::string Reason;
};
struct TAnswer {
    TFileIdentity File;
    bool Cancel;
};

struct TKnownFiles {
    std::optional<TFileIdentity> Own; ///< read whole, written, or kept by this process
    std::string Form;                 ///< the settings as they were read last, see FormOf
    std::optional<TRefusal> Refused;
    std::optional<TAnswer> Answer; ///< to the question about a later version
};

TKnownFiles& Known() {
    static TKnownFiles files;
    return files;
}

/// The settings as a file holds them, without its header.
std::string FormOf(TExpData& data) {
    TObjectSaver saver;
    TPersistent* const object = &data;
    TMemoryStream stream;
    saver.SaveObjects({&object, 1}, stream, TStringList(), HeaderName);
    return {static_cast<const char*>(stream.Memory()), static_cast<std::size_t>(stream.Size())};
}

/// The check of the version record, whose question is not asked again for the same file.
void CheckOnce(const TFileIdentity& file, std::string_view description, bool text, bool& cancel,
               const std::string& fileName) {
    std::optional<TAnswer>& answer = Known().Answer;
    if (answer && answer->File == file) {
        cancel = answer->Cancel;
        return;
    }
    CheckVer(description, text, cancel, {fileName, true});
    answer = TAnswer{file, cancel};
}

/// Why nobody could read a file; empty when it is a stored object at least.
std::string FaultOf(const std::string& fileName) {
    TObjectSaver saver;
    saver.DetectFormat = true;
    saver.DoBeforeReadObject = [](TPersistent&, bool& accept) { accept = false; };
    TSpcObject any;
    TPersistent* const object = &any;
    std::string fault;
    (void)saver.SafeLoadObjects({&object, 1}, fileName, &fault);
    return fault;
}

/// Keeps the file that a save is going to replace, when its contents would be lost with it.
void KeepForeignFile(const std::string& fileName) {
    const std::optional<TFileIdentity> present = IdentityOf(fileName);
    if (present && (present->Size == 0 || present == Known().Own)) return;
    const std::optional<TRefusal>& refused = Known().Refused;
    const std::string fault =
        present && refused && refused->File == *present ? refused->Reason : FaultOf(fileName);
    if (fault.empty()) return;
    std::string kept;
    try {
        kept = KeepBeside(fileName);
    } catch (const EFileError& error) {
        if (error.Kind() == feMissing) return;
        throw;
    }
    Known().Own = present; // once is enough, even if the save fails
    try {
        WriteLogEntry(nullptr, Exception(Format("%s could not be read (%s) and is kept as %s",
                                                {fileName, fault, kept})));
    } catch (const Exception&) {
        // The file is safe; a log that cannot be written must not cost the settings.
        return;
    }
}

} // namespace

bool ReadExpDataFile(TExpData& data, const std::string& fileName) {
    const std::optional<TFileIdentity> file = IdentityOf(fileName);
    if (!file) return false;
    TObjectSaver saver;
    saver.DetectFormat = true;
    saver.OnCheckDescription = [&](std::string_view description, bool text, bool& cancel) {
        CheckOnce(*file, description, text, cancel, fileName);
    };
    TPersistent* const object = &data;
    std::string fault = "of a later version, and not wanted";
    if (saver.SafeLoadObjects({&object, 1}, fileName, &fault)) {
        Known().Own = file;
        Known().Form = FormOf(data);
        Known().Refused.reset();
        return true;
    }
    if (Known().Own == file) Known().Own.reset();
    Known().Refused = TRefusal{*file, fault};
    return false;
}

namespace {

/// What stands around every save of the file.
template <class F> void SaveOver(const std::string& fileName, F&& save) {
    KeepForeignFile(fileName);
    save();
    Known().Own = IdentityOf(fileName);
}

} // namespace

void SaveExpDataSpc(TSpcObject& spc, const std::string& fileName, TObjectStorageFormat format) {
    SaveOver(fileName, [&] { SaveSpcAs(spc, fileName, format, HeaderName); });
}

void WriteExpDataFile(TExpData& data, const std::string& fileName) {
    SaveExpDataSpc(data, fileName, osfBin);
}

void WriteExpDataFileOnExit(TExpData& data, const std::string& fileName) {
    const std::optional<TFileIdentity> present = IdentityOf(fileName);
    const bool isForeign = present && present->Size != 0 && Known().Own && present != Known().Own;
    if (isForeign && FormOf(data) == Known().Form && FaultOf(fileName).empty()) return;
    WriteExpDataFile(data, fileName);
}

namespace {

class TFilteringSaver final : public TObjectSaver {
public:
    std::function<bool(const TPersistent&, std::string_view)> OnFilter;

protected:
    std::unique_ptr<TFitWriter> MakeWriter(TStream& stream) const override {
        auto writer = std::make_unique<TFilteringWriter>(stream, BufferSize);
        writer->OnFilter = OnFilter;
        return writer;
    }
};

} // namespace

void WriteExpDataPart(TExpData& data, const std::string& fileName,
                      const std::function<bool(const TPersistent&, std::string_view)>& filter) {
    TFilteringSaver saver;
    saver.OnFilter = filter;
    TPersistent* const object = &data;
    SaveOver(fileName, [&] {
        saver.SaveObjects({&object, 1}, fileName, TStringList{MakeVerInfo(osfBin)}, HeaderName);
    });
}

std::string ExpDataFault(const std::string& fileName) {
    const std::optional<TRefusal>& refused = Known().Refused;
    return refused && refused->File == IdentityOf(fileName) ? refused->Reason : std::string();
}

void InstallSaveSpcRoutine() {
    SaveSpcProc = SaveExpDataSpc;
}

void ForgetExpDataFiles() {
    Known() = {};
}

} // namespace tarn
