#include "qsErrorLog.h"

#include "qsAppUtils.h"
#include "qsExpMng.h"
#include "rtl/DateUtils.h"
#include "vcl/TComponent.h"

#include <utility>

namespace tarn {

TErrorLogState& ErrorLog() {
    static TErrorLogState state;
    return state;
}

namespace {

std::string SourceName(TObject* sender) {
    if (!sender) return "Unknown";
    const auto* const component = ClassCast<TComponent>(sender);
    if (!component || component->Name().empty()) return std::string(sender->ClassName());
    return Format("%s: %s", {component->Name(), sender->ClassName()});
}

void AppendLine(std::string& entry, std::string_view line) {
    entry.append(LineBreak).append(line);
}

/// One trace with its list of experts; nothing for an empty trace.
void AppendTrace(std::string& entry, std::string_view what, const std::string& trace,
                 const std::string& experts) {
    if (trace.empty()) return;
    AppendLine(entry, Format("< Start %s >", {what}));
    AppendLine(entry, trace);
    AppendLine(entry, experts);
    AppendLine(entry, Format("< Finish %s >", {what}));
}

} // namespace

void WriteLogEntry(TObject* sender, const std::exception& error) {
    if (ErrorLog().LogAllowed && ExpManagerSlots().WriteLogEntry)
        ExpManagerSlots().WriteLogEntry(sender, error);
}

void AppendLogEntry(TObject* sender, const std::exception& error) {
    TErrorLogState& log = ErrorLog();
    std::string entry;
    AppendLine(entry, "[ " + DateTimeToStr(Now()) + " ]");
    AppendLine(entry, GetFullExceptionStr(error));
    AppendLine(entry, "Source object: " + SourceName(sender));
    AppendTrace(entry, "constructor", log.ConstructorTrace, log.CreatedExperts);
    AppendTrace(entry, "destructor", log.DestructorTrace, log.DeletedExperts);
    log.ClearTraces();
    constexpr std::uint64_t kilobyte = 1024;
    AddLogData(PackageDir() + std::string(ErrorLogName), entry, log.LogLimit * kilobyte);
}

} // namespace tarn
